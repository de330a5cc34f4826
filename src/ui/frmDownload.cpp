#include "ui/frmDownload.h"

#include "manager/Operation.h"
#include "platform/IProgramInfo.h"
#include "platform/Platform.h"
#include "platform/PlatformFailure.h"
#include "ui/ConfigurationView.h"
#include "ui/StatusBar.h"
#include "ui/desktop/Transient.h"
#include "ui/frmReportDialog.h"
#include "ui/logic/ButtonOperations.h"
#include "ui/session/NoticeStrip.h"
#include "ui/session/SessionView.h"
#include "ui/session/TransferBar.h"
#include "ui/widgets/ChoiceBox.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QTimer>
#include <QWindow>

#include <chrono>
#include <utility>

namespace fldc {

using namespace std::chrono_literals;

namespace {

// A session that is about to end and still lives after this time has been kept by the user.
constexpr auto sessionEndLimit = 1min;

// Full paths of the files of this machine in what is dragged.
QStringList droppedFiles(const QMimeData& data)
{
    QStringList paths;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile())
            paths.append(url.toLocalFile());
    }
    return paths;
}

// Whatever the source proposes: it deletes what was moved.
void acceptAsCopy(QDropEvent& event)
{
    event.setDropAction(Qt::CopyAction);
    event.accept();
}

// A widget that is nothing else would be a filler to screen readers.
QAccessibleInterface* accessibleWindow(const QString& className, QObject* object)
{
    if (className != QLatin1String(frmDownload::staticMetaObject.className()))
        return nullptr;
    return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::Window);
}

} // namespace

DownloadWindow::ViewFactory frmDownload::factory(const Platform& platform, IFileDialogs& dialogs,
                                                 IHelpViewer& helpViewer, IDesktopSession* desktop)
{
    return [&platform, &dialogs, &helpViewer, desktop](DownloadWindow& window) {
        return std::shared_ptr<IWindowView>(
            new frmDownload(window, platform, dialogs, helpViewer, desktop),
            [](IWindowView* view) { static_cast<frmDownload*>(view)->dispose(); });
    };
}

frmDownload::frmDownload(DownloadWindow& window, const Platform& platform, IFileDialogs& dialogs,
                         IHelpViewer& helpViewer, IDesktopSession* desktop)
    : m_window(&window), m_operations(std::make_shared<ButtonOperations>(
                             window.weak_from_this(), platform, dialogs, helpViewer)),
      m_platform(platform)
{
    QAccessible::installFactory(accessibleWindow);
    setObjectName(QStringLiteral("frmDownload"));
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                   Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
    setWindowTitle(window.caption());
    setAcceptDrops(true);
    makeControls();
    if (window.downLoadManager() != nullptr)
        m_session = makeSessionView(platform, desktop);
    for (const WindowPart part :
         {WindowPart::Ports, WindowPart::BaudRate, WindowPart::AccessLevel, WindowPart::Status,
          WindowPart::FileName, WindowPart::Progress, WindowPart::Configurations,
          WindowPart::Controls, WindowPart::Remark})
        windowChanged(part);
    connect(qGuiApp, &QGuiApplication::commitDataRequest, this, &frmDownload::onSessionEnds);
}

frmDownload::~frmDownload() = default;

SessionView* frmDownload::makeSessionView(const Platform& platform, IDesktopSession* desktop)
{
    return new SessionView(*m_window,
                           {.view = *this,
                            .bar = *prgDownloadProgress,
                            .cancel = *cmdCancel,
                            .strip = *noticeStrip,
                            .status = *stsStatus,
                            .platform = platform,
                            .desktop = desktop,
                            .chooseFiles = [this] { run(&ButtonOperations::ChooseFiles); },
                            .download =
                                [this](const QStringList& paths) {
                                    whileHandling([&] { m_operations->DownloadFiles(paths); });
                                }});
}

// The deleter of the window's pointer.
void frmDownload::dispose()
{
    if (m_session != nullptr)
        m_session->detach();
    m_window = nullptr;
    ListView1->detach();
    hide();
    if (m_handling > 0 || operationRuns())
        deleteLater();
    else
        delete this;
}

void frmDownload::showView()
{
    if (QApplication::activeModalWidget() != nullptr)
        throw PlatformFailure(FailureNumber::ModalWindowOpen);
    if (!std::exchange(m_placed, true))
        placeOnScreen();
    show();
    if (m_screen == nullptr) {
        followScreen();
        connect(windowHandle(), &QWindow::screenChanged, this, &frmDownload::followScreen);
    }
    // Behind the first picture: it takes a look at every process of the machine.
    QTimer::singleShot(0, this, [this] { whileHandling([&] { m_window->describePorts(); }); });
}

void frmDownload::placeOnScreen()
{
    constexpr int step = 24; // a title bar
    centre(*this, m_number.value() * step);
}

// The window manager tells the size of the frame with the first place that it gives the window.
void frmDownload::moveEvent(QMoveEvent* event)
{
    QWidget::moveEvent(event);
    if (m_frameKnown || !isVisible() || frameGeometry() == geometry())
        return;
    m_frameKnown = true;
    placeOnScreen();
}

void frmDownload::windowChanged(WindowPart part)
{
    showPart(part);
    if (m_session != nullptr)
        m_session->windowChanged(part);
}

void frmDownload::showPart(WindowPart part)
{
    switch (part) {
    case WindowPart::Ports:
        return showPorts();
    case WindowPart::BaudRate:
        return showBaudRate();
    case WindowPart::AccessLevel:
        return chkAccessLevel->setChecked(m_window->accessLevelChecked());
    case WindowPart::Status:
        stsStatus->showTag(m_window->statusPanelTag());
        stsStatus->showStatus(m_window->statusPanelStatus());
        return stsStatus->showBaud(m_window->statusPanelBaud());
    case WindowPart::FileName:
        return txtCurrentDownload->setText(m_window->fileName());
    case WindowPart::Progress:
        if (m_session == nullptr) // which knows more of a run, and fills the bar
            prgDownloadProgress->setValue(m_window->progress());
        return;
    case WindowPart::Configurations:
        showErasable();
        return ListView1->refill();
    case WindowPart::Marks:
        showErasable();
        return ListView1->showMarks();
    case WindowPart::Controls:
        return showEnabled();
    case WindowPart::Remark: // belongs to the session
        return;
    }
}

void frmDownload::showErasable()
{
    const QStringList marked = m_window->configurations().markedNames();
    cmdErase->setToolTip(marked.isEmpty() ? tr("Erase the components that are ticked in the list")
                                          : tr("Erase %1").arg(marked.join(QStringLiteral(", "))));
}

void frmDownload::showPorts()
{
    const int typing = cboPort->lineEdit()->cursorPosition();
    QStringList tips;
    for (const QString& entry : m_window->portEntries())
        tips.append(m_window->portTip(entry));
    // The toolkit keeps its own index when text is typed: what it holds may be the same number.
    cboPort->setEntries(m_window->portEntries(), tips, m_window->portIndex());
    cboPort->setEditText(m_window->portText());
    cboPort->lineEdit()->setCursorPosition(m_window->portIndex() < 0 ? typing : 0);
    // The box may be too narrow for its text.
    const QString tip = m_window->portTip(m_window->portText());
    cboPort->setToolTip(tip.isEmpty() ? m_window->portText() : m_window->portText() + u'\n' + tip);
}

void frmDownload::showBaudRate()
{
    const int index = m_window->baudRateIndex();
    if (index < 0)
        return; // typed text stays
    cboBaudRate->setCurrentIndex(index);
    cboBaudRate->setEditText(m_window->baudRateEntry(index));
}

void frmDownload::showEnabled()
{
    // A control that is disabled loses the focus to the next one, where the user's next key would
    // be text or a mark: it waits where keys do nothing, and comes back with the control.
    if (!m_window->controlsEnabled() && m_focused == nullptr) {
        m_focused = focusWidget();
        txtCurrentDownload->setFocus();
    }
    for (QWidget* each : {static_cast<QWidget*>(cmdConfig), static_cast<QWidget*>(cmdDownload),
                          static_cast<QWidget*>(cboPort)})
        each->setEnabled(m_window->controlsEnabled());
    cmdErase->setEnabled(m_window->eraseEnabled());
    if (!m_window->controlsEnabled())
        return setCursor(Qt::BusyCursor);
    unsetCursor();
    QWidget* before = std::exchange(m_focused, nullptr);
    if (before != nullptr && focusWidget() == txtCurrentDownload)
        (before->isEnabled() ? before : ListView1)->setFocus();
}

// Calls into the window and keeps it and this view for as long as that takes.
void frmDownload::whileHandling(const std::function<void()>& steps)
{
    if (m_window == nullptr)
        return;
    const auto held = m_window->shared_from_this();
    const QScopedValueRollback handling(m_handling, m_handling + 1);
    steps();
}

void frmDownload::run(Operation operation)
{
    whileHandling([&] {
        const auto operations = m_operations;
        (operations.get()->*operation)();
    });
}

void frmDownload::askForHelp()
{
    whileHandling([this] { m_operations->Help(winId()); });
}

void frmDownload::showFailureReport(const QString& text, std::function<void()> closed)
{
    auto* dialog = new frmReportDialog(this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setReport(text);
    connect(dialog, &QDialog::finished, this, std::move(closed));
    keepOffTaskBar(*dialog);
    dialog->open();
}

void frmDownload::showNotice(const QString& text)
{
    auto* box = new QMessageBox(QMessageBox::Information, m_platform.program.title(), text,
                                QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    // A modal one would lock the Cancel of the wait for the radio.
    box->setWindowModality(operationRuns() ? Qt::NonModal : Qt::WindowModal);
    keepOffTaskBar(*box);
    box->show();
}

void frmDownload::downloadRefused()
{
    if (m_session != nullptr)
        m_session->downloadRefused();
}

void frmDownload::onSessionEnds()
{
    m_sessionEnds = true;
    QTimer::singleShot(sessionEndLimit, this, [this] { m_sessionEnds = false; });
}

void frmDownload::closeEvent(QCloseEvent* event)
{
    whileHandling([&] {
        if (!m_window->requestClose(m_sessionEnds))
            event->ignore();
        if (!event->isAccepted() && m_session != nullptr)
            m_session->sayWhyOpen();
    });
}

void frmDownload::dragEnterEvent(QDragEnterEvent* event)
{
    if (m_window != nullptr && m_window->controlsEnabled() &&
        !droppedFiles(*event->mimeData()).isEmpty())
        acceptAsCopy(*event);
}

// The program that the files come from waits for the end of the drop: the download starts after it.
void frmDownload::dropEvent(QDropEvent* event)
{
    acceptAsCopy(*event);
    QTimer::singleShot(0, this, [this, paths = droppedFiles(*event->mimeData())] {
        whileHandling([&] { m_operations->DownloadFiles(paths); });
    });
}

} // namespace fldc
