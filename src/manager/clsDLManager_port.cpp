#include "manager/Operation.h"
#include "manager/Session.h"

#include "app/services/LogState.h"
#include "platform/IProgramInfo.h"
#include "platform/ISerialControl.h"
#include "port/Cancellation.h"
#include "port/PortEnumeration.h"
#include "port/clsSerial.h"
#include "shared/DisplayTexts.h"
#include "shared/NumberText.h"

namespace fldc {

namespace {

// A window can't be shown while a modal one is open; it then stays as it is, which is no failure.
bool isModalWindowOpen(const PlatformFailure& failure)
{
    return failure.number() == static_cast<int>(FailureNumber::ModalWindowOpen);
}

} // namespace

// Runs inside itself when the window's port list calls back; that is how a new manager gets its
// first port.
std::int16_t clsDLManager::SetPort(const QString& strPort, bool blnUI)
{
    if (operationRuns() && !m_creating)
        return refusedResult;

    // The log opened here stays open, named after the first port chosen.
    const auto log = logState().download;
    if (log)
        log->OpenLogFile(strPort);
    try {
        choosePort(strPort, blnUI);
    } catch (...) {
        const PlatformFailure failure = currentFailure();
        if (isModalWindowOpen(failure))
            lastError().clear();
        else
            lastError().setRuntimeError(failure);
    }
    const auto result = static_cast<std::int16_t>(lastError().number());
    if (m_window) {
        m_window->setStatusPanelStatus(statusLine(displayText(Text::Ready)));
        m_window->setStatusPanelBaud({});
    }
    return result;
}

void clsDLManager::choosePort(const QString& strPort, bool blnUI)
{
    ensureWindow();
    const std::shared_ptr<IDownloadWindow> window = m_window;
    window->setUIDisplay(blnUI);
    m_uiMode = blnUI;
    showWindow(blnUI);

    if (findPort(*window, strPort)) {
        const auto control = window->comSerialPort();
        m_port.reset(); // what is listed without a number ("no ports") is no port
        const std::int32_t number = PortNumber(strPort);
        m_port = std::make_shared<clsSerial>(
            m_platform, m_cancellation, [this] { return userPresent(); }, m_teller);
        const auto port = m_port; // held: closing a remote line serves events
        port->setPortType(control);
        port->ClosePort();
        control->setCommPort(number);
    } else {
        lastError().set(Code::PortDoesNotExist);
    }
    window->SetPortCombo(strPort);
}

// A port that the list shows as unavailable, or that came after the list was read, may be there
// now.
bool clsDLManager::findPort(IDownloadWindow& window, const QString& strPort)
{
    try {
        if (window.PortExists(strPort))
            return true;
    } catch (const PlatformFailure&) {
        // The list has no port at all.
    }
    window.RefreshPorts();
    return window.PortExists(strPort);
}

std::int16_t clsDLManager::SetUIMode(bool blnUIMode)
{
    const LastError before = lastError();
    Code code = Code::Success;
    try {
        ensureWindow();
        m_window->setUIDisplay(blnUIMode);
        m_uiMode = blnUIMode;
        if (blnUIMode && m_stayConnected && !operationRuns())
            closeConnection();
        if (blnUIMode)
            m_stayConnected = false;
        showWindow(blnUIMode);
    } catch (...) {
        if (!isModalWindowOpen(currentFailure()))
            code = Code::PortUnspecified;
        if (!operationRuns()) {
            lastError().set(code);
            return static_cast<std::int16_t>(code);
        }
    }
    lastError() = before; // it belongs to an operation, one that runs or the one before
    return static_cast<std::int16_t>(code);
}

// Whether somebody can see that an operation goes on, and end it.
bool clsDLManager::userPresent() const
{
    const IProgramInfo& program = m_platform.program;
    return (m_uiMode && program.screenPresent()) || program.userAtTerminal();
}

void clsDLManager::showWindow(bool blnUI)
{
    const std::shared_ptr<IDownloadWindow> window = m_window;
    if (!blnUI)
        window->hide();
    else if (!window->isVisible())
        window->show();
}

void clsDLManager::ensureWindow()
{
    if (m_window)
        return;
    m_window = m_windows.createWindow();
    m_window->setDownLoadManager(this);
    m_window->load();
}

void clsDLManager::ShutDownUiLessMode()
{
    if (operationRuns())
        cancelOperation();
    const std::shared_ptr<IDownloadWindow> window = std::move(m_window);
    m_window.reset();
    if (window)
        window->unload();
}

void clsDLManager::SetBaudRate(std::int32_t lngBaudRate)
{
    // The first entry is the automatic choice, no rate.
    IDownloadWindow& list = window();
    for (std::int32_t index = 1; index < list.baudRateCount(); ++index) {
        if (readNumber(list.baudRateEntry(index)) == lngBaudRate)
            list.setBaudRateIndex(index);
    }
}

void clsDLManager::chooseSpeed(std::int32_t lngBaudRate)
{
    SetBaudRate(lngBaudRate);
    m_speedChosen = true;
}

void clsDLManager::setStayConnected(bool blnNew)
{
    if (window().UIDisplay() || operationRuns())
        return;
    m_stayConnected = blnNew;
    if (!blnNew)
        closeConnection();
}

void clsDLManager::closeConnection()
{
    if (m_port)
        m_port->ClosePort();
    for (const auto& log : {logState().download, logState().configuration}) {
        if (log && log->LogFileOpen())
            log->CloseLogFile();
    }
}

void clsDLManager::setAccessLevel(enmAccessLevel level)
{
    if (level == DEFAULT_ACCESS)
        m_Protocol->SetUpgradeMode(0);
    else if (level == UNLIMITED_ACCESS)
        m_Protocol->SetUpgradeMode(1);
}

std::int32_t clsDLManager::ResetRadio()
{
    std::int16_t result = 0;
    {
        const OperationScope operation;
        if (!operation.granted())
            return refusedResult;
        const Session session = beginSession();
        m_teller->tell(session::OperationStarted{session::Operation::Restart});
        trap(Trap::KeepCode,
             [&] { session.protocol->RestartRadio(session.window(), session.port()); });
        result = takeResult();
        tellEnded(lastError());
    }
    complete();
    return result;
}

std::int16_t clsDLManager::RestartFromAnyState()
{
    return runOnLine(session::Operation::Restart, [](Session& session) {
        session.protocol->RestartFromAnyState(session.window(), session.port());
    });
}

std::int16_t clsDLManager::TestLink(std::int32_t rounds)
{
    return runOnLine(session::Operation::LinkTest,
                     [&](Session& session) { linkTestSteps(session, rounds); });
}

// A radio that a speed has lost is restarted from wherever it is.
void clsDLManager::linkTestSteps(Session& session, std::int32_t rounds)
{
    clsProtocol& protocol = *session.protocol;
    protocol.SetUpgradeMode(0);
    logRadioOn(session);
    if (!lastError().ok())
        return;
    protocol.TestLink(session.window(), session.port(), rounds);
    if (lastError().ok())
        protocol.RestartRadio(session.window(), session.port());
    else
        protocol.RestartFromAnyState(session.window(), session.port());
}

// What an operation that touches no component has in common with the others.
std::int16_t clsDLManager::runOnLine(session::Operation kind,
                                     const std::function<void(Session&)>& steps)
{
    std::int16_t result = 0;
    {
        const OperationScope operation;
        if (!operation.granted())
            return refusedResult;
        Session session = beginSession();
        m_teller->tell(session::OperationStarted{kind});
        trap(Trap::KeepCode, [&] {
            session.openLogs();
            if (session.openLine())
                steps(session);
        });
        result = takeResult();
        closeSession(session, statusLine(displayText(Text::Ready)));
        tellEnded(lastError());
    }
    complete();
    return result;
}

IDownloadWindow& clsDLManager::window() const
{
    if (!m_window)
        throw PlatformFailure(FailureNumber::ObjectNotSet);
    return *m_window;
}

} // namespace fldc
