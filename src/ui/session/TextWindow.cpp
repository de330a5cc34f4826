#include "ui/session/TextWindow.h"

#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace fldc {

namespace {

constexpr int textWide = 60; // characters
constexpr int textHigh = 14; // lines

} // namespace

TextWindow::TextWindow(const QString& title, const QString& text, QWidget* owner) : QDialog(owner)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setModal(false);
    setWindowTitle(title);
    setFont(owner->font());

    auto* shown = new QPlainTextEdit(text, this);
    shown->setReadOnly(true);
    shown->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto* copy = new QPushButton(tr("&Copy"), this);
    copy->setAutoDefault(false);
    auto* close = new QPushButton(tr("C&lose"), this);
    close->setDefault(true);
    connect(copy, &QPushButton::clicked, this, &TextWindow::copyWanted);
    connect(close, &QPushButton::clicked, this, &QDialog::close);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(copy);
    buttons->addWidget(close);
    auto* whole = new QVBoxLayout(this);
    whole->addWidget(shown);
    whole->addLayout(buttons);
    resize(fontMetrics().averageCharWidth() * textWide, fontMetrics().lineSpacing() * textHigh);
}

} // namespace fldc
