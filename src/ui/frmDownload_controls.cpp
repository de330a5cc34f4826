#include "ui/frmDownload.h"

#include "ui/ConfigurationView.h"
#include "ui/StatusBar.h"
#include "ui/frmIcon.h"
#include "ui/logic/ButtonOperations.h"
#include "ui/session/NoticeStrip.h"
#include "ui/session/TransferBar.h"
#include "ui/widgets/ChoiceBox.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>

namespace fldc {

template <class Widget>
Widget* frmDownload::named(Control control, Widget* widget)
{
    widget->setObjectName(positionOf(control).name);
    return widget;
}

void frmDownload::makeControls()
{
    setWindowIcon(frmIcon::picture(QStringLiteral("download")));
    chkAccessLevel =
        named(Control::chkAccessLevel, new QCheckBox(tr("Allow Unprotected Upgrade"), this));
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

    txtCurrentDownload = named(Control::txtCurrentDownload, new QLineEdit(this));
    txtCurrentDownload->setReadOnly(true);
    txtCurrentDownload->setAcceptDrops(false);
    makeLabel(Control::lblProgress, tr("Progress :"));
    prgDownloadProgress = named(Control::prgDownloadProgress, new TransferBar(this));
    makeLabel(Control::lblCurrentDownload, tr("Current Download :"))->setBuddy(txtCurrentDownload);
    stsStatus = named(Control::stsStatus, new StatusBar(this));
    cmdCancel = named(Control::cmdCancel, new QPushButton(tr("&Cancel"), this));
    noticeStrip = named(Control::noticeStrip, new NoticeStrip(this));

    layOutControls();
    connectControls();
    describeControls();
    setTabOrderOfControls();
}

QLabel* frmDownload::makeLabel(Control control, const QString& text)
{
    return named(control, new QLabel(text, this));
}

QPushButton* frmDownload::makeButton(Control control, const QString& text, Operation operation)
{
    QWidget* holder = positionOf(control).inFrame ? fraConfiguration : this;
    auto* button = named(control, new QPushButton(text, holder));
    connect(button, &QPushButton::clicked, this, [this, operation] { run(operation); });
    return button;
}

ChoiceBox* frmDownload::makeCombo(Control control)
{
    return named(control, new ChoiceBox(this));
}

void frmDownload::makeHelpButton()
{
    cmdHelp = named(Control::cmdHelp, new QPushButton(this));
    cmdHelp->setIcon(frmIcon::picture(QStringLiteral("help")));
    connect(cmdHelp, &QPushButton::clicked, this, &frmDownload::askForHelp);
    auto* key = new QShortcut(QKeySequence(Qt::Key_F1), this);
    key->setAutoRepeat(false);
    connect(key, &QShortcut::activated, this, &frmDownload::askForHelp);
}

void frmDownload::makeFrame()
{
    fraConfiguration = named(Control::fraConfiguration, new QGroupBox(tr("Configuration"), this));
    m_listBorder = new QFrame(fraConfiguration);
    m_listBorder->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    ListView1 = named(Control::ListView1,
                      new ConfigurationView(m_window->configurations(), fraConfiguration));
    cmdSaveDetails =
        makeButton(Control::cmdSaveDetails, tr("&Save Details"), &ButtonOperations::SaveDetails);
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
