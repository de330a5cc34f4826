#include "ui/frmReportDialog.h"

#include "ui/FittingFont.h"
#include "ui/Twips.h"
#include "ui/frmIcon.h"

#include <QPlainTextEdit>
#include <QPushButton>

namespace fldc {

namespace {

// Twips. The layout is given for a window with this frame around its client area; the frames of
// desktops differ, and here the client area counts.
constexpr int frameWidth = 120;
constexpr int frameHeight = 405;
constexpr int smallestWidth = 3000;
constexpr int smallestHeight = 3000;
constexpr TwipsRect designedClient{0, 0, 4695, 3105};

constexpr TwipsRect okButton(int width, int height)
{
    return {width - 1215, height - 870, 975, 375};
}

constexpr TwipsRect reportBox(int width, int height)
{
    return {120, 120, width - 360, height - 1095};
}

} // namespace

frmReportDialog::frmReportDialog(QWidget* owner)
    : QDialog(owner), txtReport(new QPlainTextEdit(this)), cmdOk(new QPushButton(tr("OK"), this))
{
    setObjectName(QStringLiteral("frmReportDialog"));
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                   Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
    setWindowTitle(tr("Download Failures"));
    setWindowIcon(frmIcon::picture(QStringLiteral("report")));
    setScale(*this, fittingScale(*this, {designedClient.width, designedClient.height}));
    setFont(windowFont(*this));

    txtReport->setObjectName(QStringLiteral("txtReport"));
    txtReport->setReadOnly(true);
    txtReport->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    txtReport->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    txtReport->setAccessibleName(windowTitle());
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    cmdOk->setDefault(true);
    connect(cmdOk, &QPushButton::clicked, this, &QDialog::accept);

    setMinimumSize(
        toPixels({0, 0, smallestWidth - frameWidth, smallestHeight - frameHeight}, *this).size());
    resize(toPixels(designedClient, *this).size());
}

void frmReportDialog::setReport(const QString& text)
{
    txtReport->setPlainText(text);
}

void frmReportDialog::resizeEvent(QResizeEvent* event)
{
    QDialog::resizeEvent(event);
    const double scale = scaleOf(*this);
    const int outerWidth = qRound(width() * 1440 / (scale * logicalDpiX())) + frameWidth;
    const int outerHeight = qRound(height() * 1440 / (scale * logicalDpiY())) + frameHeight;
    cmdOk->setGeometry(toPixels(okButton(outerWidth, outerHeight), *this));
    txtReport->setGeometry(toPixels(reportBox(outerWidth, outerHeight), *this));
}

} // namespace fldc
