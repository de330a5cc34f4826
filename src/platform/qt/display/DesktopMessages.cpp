#include "platform/qt/display/DesktopMessages.h"

#include <QApplication>
#include <QMessageBox>

#include <utility>

namespace fldc {

namespace {

QMessageBox* makeBox(QMessageBox::Icon icon, const QString& title, const QString& text,
                     QMessageBox::StandardButtons buttons)
{
    auto* box = new QMessageBox(icon, title, text, buttons, QApplication::activeWindow());
    box->setObjectName(QStringLiteral("messageBox"));
    box->setTextFormat(Qt::PlainText);
    return box;
}

} // namespace

DesktopMessages::DesktopMessages(QString title) : m_title(std::move(title)) {}

// Shows the box until it is answered or dismissed, and deletes it. The box goes with its parent
// when that is deleted meanwhile; the answer is then @p otherwise.
int DesktopMessages::answer(QMessageBox* box, int otherwise)
{
    const QPointer<QMessageBox> alive(box);
    m_open.push_back(alive);
    const int button = box->exec();
    std::erase(m_open, alive);
    if (!alive)
        return otherwise;
    delete box;
    return button;
}

void DesktopMessages::dismiss()
{
    const auto open = m_open;
    for (const QPointer<QMessageBox>& box : open) {
        if (box)
            box->reject();
    }
}

void DesktopMessages::show(const QString& text, MessageKind kind)
{
    const auto icon =
        kind == MessageKind::Information ? QMessageBox::Information : QMessageBox::Critical;
    answer(makeBox(icon, m_title, text, QMessageBox::Ok), QMessageBox::Ok);
}

bool DesktopMessages::askYesNo(const QString& text)
{
    auto* box = makeBox(QMessageBox::Question, m_title, text, QMessageBox::Yes | QMessageBox::No);
    box->setDefaultButton(QMessageBox::No);
    box->setEscapeButton(QMessageBox::No);
    return answer(box, QMessageBox::No) == QMessageBox::Yes;
}

} // namespace fldc
