#include "ui/frmDownload.h"

#include "shared/DisplayTexts.h"
#include "ui/ConfigurationView.h"
#include "ui/FittingFont.h"
#include "ui/StatusBar.h"
#include "ui/frmIcon.h"
#include "ui/logic/ButtonOperations.h"
#include "ui/session/NoticeStrip.h"
#include "ui/session/TransferBar.h"
#include "ui/widgets/ChoiceBox.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QStyle>

namespace fldc {

namespace {

constexpr double frameTitlePointSize = 9.75;
// Pixels that a button needs beside its text.
constexpr int buttonMargin = 8;
constexpr int helpPicturePixels = 13;
constexpr int listPicturePixels = 16;
constexpr int listMargin = 12;

QString withoutMnemonic(QString text)
{
    return text.remove(u'&');
}

// The text of the buttons of a row gets the same look, that of the longest one.
QFont buttonFont(const QWidget& window, int width)
{
    return fittingFont(windowFont(window), QStringLiteral("Report Configuration"), width);
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

template <class Widget>
Widget* frmDownload::place(Control control, Widget* widget)
{
    const ControlPosition& position = positionOf(control);
    widget->setObjectName(position.name);
    widget->setGeometry(toPixels(position.place, *this));
    return widget;
}

void frmDownload::makeControls()
{
    setWindowIcon(frmIcon::picture(QStringLiteral("download")));
    setScale(*this, fittingScale(*this, {clientWidth, clientHeight}));
    setFixedSize(toPixels({0, 0, clientWidth, clientHeight}, *this).size());
    setFont(buttonFont(*this, toPixels(positionOf(Control::cmdConfig).place, *this).width() -
                                  buttonMargin));

    chkAccessLevel =
        place(Control::chkAccessLevel, new QCheckBox(tr("Allow Unprotected Upgrade"), this));
    const int indicator = chkAccessLevel->style()->pixelMetric(QStyle::PM_IndicatorWidth) +
                          chkAccessLevel->style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing);
    chkAccessLevel->setFont(
        fittingFont(font(), chkAccessLevel->text(), chkAccessLevel->width() - indicator - 2));
    // The box itself does not shrink with the window.
    const int missing = chkAccessLevel->style()->pixelMetric(QStyle::PM_IndicatorHeight) + 2 -
                        chkAccessLevel->height();
    if (missing > 0)
        chkAccessLevel->setGeometry(
            chkAccessLevel->geometry().adjusted(0, -missing / 2, 0, missing - missing / 2));
    chkAccessLevel->setVisible(m_window->accessLevelVisible());

    QLabel* portLabel = makeLabel(Control::Label1, tr("Port"));
    cboPort = makeCombo(Control::cboPort);
    portLabel->setBuddy(cboPort);
    QLabel* speedLabel = makeLabel(Control::Label2, tr("Baud Rate"));
    cboBaudRate = makeCombo(Control::cboBaudRate);
    speedLabel->setBuddy(cboBaudRate);
    for (int i = 0; i < m_window->baudRateCount(); ++i)
        cboBaudRate->addItem(m_window->baudRateEntry(i));

    cmdConfig = makeButton(Control::cmdConfig, tr("&Report Configuration"),
                           &ButtonOperations::ReportConfiguration);
    cmdErase = makeButton(Control::cmdErase, tr("&Erase Configuration"),
                          &ButtonOperations::EraseConfiguration);
    cmdDownload = makeButton(Control::cmdDownload, tr("&Download"), &ButtonOperations::Download);
    makeHelpButton();
    makeFrame();

    txtCurrentDownload = place(Control::txtCurrentDownload, new QLineEdit(this));
    txtCurrentDownload->setReadOnly(true);
    txtCurrentDownload->setAcceptDrops(false);
    makeLabel(Control::lblProgress, tr("Progress :"));
    prgDownloadProgress = place(Control::prgDownloadProgress, new TransferBar(this));
    makeLabel(Control::lblCurrentDownload, tr("Current Download :"))->setBuddy(txtCurrentDownload);
    stsStatus = place(Control::stsStatus, new StatusBar(this));
    cmdCancel = place(Control::cmdCancel, new QPushButton(tr("&Cancel"), this));
    noticeStrip = place(Control::noticeStrip, new NoticeStrip(this));

    connectControls();
    describeControls();
    setTabOrderOfControls();
}

QLabel* frmDownload::makeLabel(Control control, const QString& text)
{
    return place(control, new QLabel(text, this));
}

QPushButton* frmDownload::makeButton(Control control, const QString& text, Operation operation)
{
    QWidget* holder = positionOf(control).inFrame ? fraConfiguration : this;
    auto* button = place(control, new QPushButton(text, holder));
    button->setFont(
        fittingFont(button->font(), withoutMnemonic(text), button->width() - buttonMargin));
    connect(button, &QPushButton::clicked, this, [this, operation] { run(operation); });
    return button;
}

ChoiceBox* frmDownload::makeCombo(Control control)
{
    return place(control, new ChoiceBox(this));
}

void frmDownload::makeHelpButton()
{
    cmdHelp = place(Control::cmdHelp, new QPushButton(this));
    cmdHelp->setIcon(frmIcon::picture(QStringLiteral("help")));
    cmdHelp->setIconSize(QSize(helpPicturePixels, helpPicturePixels) * scaleOf(*this));
    connect(cmdHelp, &QPushButton::clicked, this, &frmDownload::askForHelp);
    auto* key = new QShortcut(QKeySequence(Qt::Key_F1), this);
    key->setAutoRepeat(false);
    connect(key, &QShortcut::activated, this, &frmDownload::askForHelp);
}

void frmDownload::makeFrame()
{
    auto* frame = place(Control::fraConfiguration, new QGroupBox(tr("Configuration"), this));
    fraConfiguration = frame;
    QFont textFont = font();
    textFont.setBold(false);
    QFont titleFont = windowFont(*this);
    titleFont.setPointSizeF(frameTitlePointSize * scaleOf(*this));
    titleFont.setBold(true);
    frame->setFont(titleFont);

    // The list fills its place to the last pixel, or its columns would not fit: the border is
    // around it.
    auto* border = new QFrame(frame);
    border->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    ListView1 = place(Control::ListView1, new ConfigurationView(m_window->configurations(), frame));
    border->setGeometry(ListView1->geometry().adjusted(-1, -1, 1, 1));
    ListView1->setIconSize(QSize(listPicturePixels, listPicturePixels) * scaleOf(*this));
    const auto columns = m_window->configurations().columnWidths(listWidth);
    ListView1->setFont(listFont(textFont, widthInPixels(columns[0], *this),
                                ListView1->iconSize().width(), widthInPixels(columns[2], *this)));
    ListView1->header()->setFont(textFont);
    cmdSaveDetails =
        makeButton(Control::cmdSaveDetails, tr("&Save Details"), &ButtonOperations::SaveDetails);
    cmdSaveDetails->setFont(textFont);
}

void frmDownload::connectControls()
{
    connect(cboPort, &QComboBox::activated, this,
            [this](int index) { whileHandling([&] { m_window->selectPort(index); }); });
    connect(cboPort->lineEdit(), &QLineEdit::textEdited, this,
            [this](const QString& text) { whileHandling([&] { m_window->typePort(text); }); });
    connect(cboPort, &QComboBox::editTextChanged, cboPort, &QWidget::setToolTip);
    connect(cboPort, &ChoiceBox::opening, this,
            [this] { whileHandling([&] { m_window->lookForPorts(); }); });
    connect(cboBaudRate, &QComboBox::activated, this,
            [this](int index) { whileHandling([&] { m_window->setBaudRateIndex(index); }); });
    connect(cboBaudRate->lineEdit(), &QLineEdit::textEdited, this,
            [this] { whileHandling([&] { m_window->setBaudRateIndex(-1); }); });
    connect(chkAccessLevel, &QCheckBox::toggled, this, [this](bool checked) {
        whileHandling([&] { m_window->setAccessLevelChecked(checked); });
    });
    connect(ListView1, &ConfigurationView::rowToggled, this, [this](int row) {
        whileHandling([&] { m_window->toggleMark(static_cast<std::size_t>(row)); });
    });
}

void frmDownload::describeControls()
{
    chkAccessLevel->setToolTip(tr("Put the radio into its special upgrade mode for the next "
                                  "download or erasure; it then needs a hard reset"));
    cboBaudRate->setToolTip(tr("Fastest link speed to try for a download; Auto starts at 115200"));
    cmdConfig->setToolTip(tr("Read the list of the radio's components"));
    cmdDownload->setToolTip(tr("Choose firmware files and write them into the radio; files can "
                               "also be dropped on this window"));
    cmdHelp->setToolTip(tr("Help (F1)"));
    ListView1->setToolTip(tr("Click a row with a box, or press the space bar, to tick it for "
                             "erasure"));
    cmdSaveDetails->setToolTip(tr("Save this list as a comma-separated text file"));
    prgDownloadProgress->setToolTip(tr("How much of the present file has been written"));

    cboPort->setAccessibleName(tr("Port"));
    cboBaudRate->setAccessibleName(tr("Baud Rate"));
    cmdHelp->setAccessibleName(tr("Help"));
    ListView1->setAccessibleName(tr("Configuration"));
    txtCurrentDownload->setAccessibleName(tr("Current Download"));
    prgDownloadProgress->setAccessibleName(tr("Progress"));
    stsStatus->setAccessibleName(tr("Status"));
}

void frmDownload::setTabOrderOfControls()
{
    QWidget* previous = nullptr;
    for (const ControlPosition& position : controlPositions) {
        auto* widget = findChild<QWidget*>(position.name);
        if (previous != nullptr)
            setTabOrder(previous, widget);
        previous = widget;
    }
    cboPort->setFocus();
}

} // namespace fldc
