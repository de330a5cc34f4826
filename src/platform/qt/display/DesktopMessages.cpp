#include "platform/qt/display/DesktopMessages.h"

#include <QApplication>
#include <QMessageBox>
#include <QPointer>

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

/// Shows the box until it is answered, and deletes it. The box goes with its parent when that is
/// deleted meanwhile; the answer is then @p otherwise.
int answer(QMessageBox* box, int otherwise)
{
    const QPointer<QMessageBox> alive(box);
    const int button = box->exec();
    if (!alive)
        return otherwise;
    delete box;
    return button;
}

} // namespace

DesktopMessages::DesktopMessages(QString title) : m_title(std::move(title)) {}

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
