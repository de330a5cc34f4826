#include "ui/frmWait.h"

#include "ui/FittingFont.h"
#include "ui/Twips.h"
#include "ui/desktop/Transient.h"
#include "ui/frmIcon.h"

#include <QLabel>
#include <QPushButton>

#include <utility>

namespace fldc {

namespace {

// Twips.
constexpr TwipsRect client{0, 0, 3720, 1335};
constexpr TwipsRect messagePlace{120, 240, 3495, 495};
constexpr TwipsRect cancelPlace{1200, 840, 1335, 375};

} // namespace

frmWait::frmWait(const QString& title) : m_title(title), lblMessage(new QLabel(this))
{
    setObjectName(QStringLiteral("frmWait"));
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                   Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowIcon(frmIcon::picture(QStringLiteral("wait")));
    setScale(*this, fittingScale(*this, {client.width, client.height}));
    setFont(windowFont(*this));
    setFixedSize(toPixels(client, *this).size());

    lblMessage->setObjectName(QStringLiteral("lblMessage"));
    lblMessage->setGeometry(toPixels(messagePlace, *this));
    lblMessage->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    lblMessage->setWordWrap(true);
    lblMessage->setTextFormat(Qt::PlainText);

    auto* cmdCancel = new QPushButton(tr("&Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdCancel->setGeometry(toPixels(cancelPlace, *this));
    connect(cmdCancel, &QPushButton::clicked, this, &frmWait::reject);
}

void frmWait::SetMessage(const QString& strMessage)
{
    lblMessage->setText(strMessage);
}

void frmWait::Show()
{
    setWindowTitle(m_title);
    m_cancelled = false;
    // Above the window at work, but in the middle of the screen.
    keepAboveMainWindow(*this);
    keepOffTaskBar(*this);
    centre(*this);
    show();
}

// Also Escape and the close box: without the dialog nobody could end the wait any more.
void frmWait::reject()
{
    m_cancelled = true;
    QDialog::reject();
}

WaitDialogFactory::WaitDialogFactory(QString title) : m_title(std::move(title)) {}

std::unique_ptr<IWaitDialog> WaitDialogFactory::createWaitDialog()
{
    return std::make_unique<frmWait>(m_title);
}

} // namespace fldc
