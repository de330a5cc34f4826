#include "ui/frmDownload.h"

#include "shared/DisplayTexts.h"
#include "ui/ConfigurationView.h"
#include "ui/FittingFont.h"
#include "ui/widgets/ChoiceBox.h"

#include <QCheckBox>
#include <QEvent>
#include <QFrame>
#include <QHeaderView>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QWindow>

namespace fldc {

namespace {

constexpr double frameTitlePointSize = 9.75;
// Pixels that a button needs beside its text.
constexpr int textRoom = 8;
constexpr int helpPicturePixels = 13;
constexpr int listPicturePixels = 16;
constexpr int listMargin = 12;

QString withoutMnemonic(QString text)
{
    return text.remove(u'&');
}

void fitText(QPushButton& button, const QFont& font)
{
    button.setFont(fittingFont(font, withoutMnemonic(button.text()), button.width() - textRoom));
}

// The longest of the component types fits into the first column, beside the box, and the longest
// status into the third.
QFont listFont(const QFont& font, int typeWidth, int pictureWidth, int statusWidth)
{
    return fittingFont(fittingFont(font, displayText(Text::SystemConfigTable),
                                   typeWidth - pictureWidth - listMargin),
                       displayText(Text::NoCodeComponent),
                       statusWidth - pictureWidth / 2 - listMargin);
}

} // namespace

/// Everything that follows from the desktop's font and the room on the screen.
void frmDownload::layOutControls()
{
    setScale(*this, fittingScale(*this, {clientWidth, clientHeight}));
    setFixedSize(toPixels({0, 0, clientWidth, clientHeight}, *this).size());
    for (const ControlPosition& position : controlPositions)
        findChild<QWidget*>(position.name)->setGeometry(toPixels(position.place, *this));

    // The text of the buttons of a row gets the same look, that of the longest one.
    setFont(fittingFont(windowFont(*this), withoutMnemonic(cmdConfig->text()),
                        cmdConfig->width() - textRoom));
    for (QPushButton* button : {cmdConfig, cmdErase, cmdDownload})
        fitText(*button, font());
    cmdHelp->setIconSize(QSize(helpPicturePixels, helpPicturePixels) * scaleOf(*this));
    layOutAccessLevel();
    layOutFrame();
}

void frmDownload::layOutAccessLevel()
{
    const QStyle& style = *chkAccessLevel->style();
    const int indicator = style.pixelMetric(QStyle::PM_IndicatorWidth) +
                          style.pixelMetric(QStyle::PM_CheckBoxLabelSpacing);
    chkAccessLevel->setFont(
        fittingFont(font(), chkAccessLevel->text(), chkAccessLevel->width() - indicator - 2));
    // The box itself does not shrink with the window.
    const int missing =
        style.pixelMetric(QStyle::PM_IndicatorHeight) + 2 - chkAccessLevel->height();
    if (missing > 0)
        chkAccessLevel->setGeometry(
            chkAccessLevel->geometry().adjusted(0, -missing / 2, 0, missing - missing / 2));
}

void frmDownload::layOutFrame()
{
    QFont titleFont = windowFont(*this);
    titleFont.setPointSizeF(frameTitlePointSize * scaleOf(*this));
    titleFont.setBold(true);
    fraConfiguration->setFont(titleFont);
    QFont textFont = font();
    textFont.setBold(false);
    fitText(*cmdSaveDetails, textFont);

    // The list fills its place to the last pixel, or its columns would not fit: the border is
    // around it.
    m_listBorder->setGeometry(ListView1->geometry().adjusted(-1, -1, 1, 1));
    ListView1->setIconSize(QSize(listPicturePixels, listPicturePixels) * scaleOf(*this));
    const auto columns = m_window->configurations().columnWidths(listWidth);
    ListView1->setFont(listFont(textFont, widthInPixels(columns[0], *this),
                                ListView1->iconSize().width(), widthInPixels(columns[2], *this)));
    ListView1->header()->setFont(textFont);
    ListView1->layOut();
}

/// The window has come to another screen: perhaps in the user's hand, so that it is not moved.
void frmDownload::followScreen()
{
    if (m_screen != nullptr)
        m_screen->disconnect(this);
    m_screen = screen();
    connect(m_screen.data(), &QScreen::availableGeometryChanged, this,
            &frmDownload::keepWithinReach);
    connect(m_screen.data(), &QScreen::logicalDotsPerInchChanged, this,
            &frmDownload::keepWithinReach);
    if (m_window != nullptr)
        layOutControls();
}

/// The desktop's font or the room on the screen has changed.
void frmDownload::keepWithinReach()
{
    if (m_window == nullptr)
        return;
    const QSize before = size();
    layOutControls();
    if (size() != before || !screen()->availableGeometry().contains(frameGeometry()))
        placeOnScreen();
}

bool frmDownload::event(QEvent* event)
{
    const bool handled = QWidget::event(event);
    if (event->type() == QEvent::ApplicationFontChange && m_screen != nullptr)
        QMetaObject::invokeMethod(this, &frmDownload::keepWithinReach, Qt::QueuedConnection);
    return handled;
}

} // namespace fldc
