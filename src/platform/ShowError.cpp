#include "platform/ShowError.h"

#include "platform/IMessageBox.h"

#include <cstdio>

namespace fldc {

namespace {

IMessageBox*& errorBox()
{
    thread_local IMessageBox* box = nullptr;
    return box;
}

} // namespace

ErrorBoxScope::ErrorBoxScope(IMessageBox& messages) : m_previous(errorBox())
{
    errorBox() = &messages;
}

ErrorBoxScope::~ErrorBoxScope()
{
    errorBox() = m_previous;
}

void ShowError(const PlatformFailure& failure) noexcept
{
    try {
        const QString text = failure.text(QStringLiteral(" "));
        if (IMessageBox* box = errorBox())
            box->show(text, MessageKind::Error);
        else
            std::fprintf(stderr, "%s\n", qUtf8Printable(text));
    } catch (...) {
        std::fputs("An error could not be shown.\n", stderr);
    }
}

} // namespace fldc
