#include "manager/Operation.h"
#include "manager/Session.h"

#include "app/services/LogState.h"
#include "firmware/clsFile.h"
#include "firmware/colFiles.h"
#include "platform/IEvents.h"
#include "platform/IFileService.h"
#include "platform/ISerialControl.h"
#include "port/Cancellation.h"
#include "radio/clsConfiguration.h"
#include "radio/colConfigurations.h"

namespace fldc {

namespace {

// Opens @p log if it is not open; returns it when this call opened it.
std::shared_ptr<clsLogFile> openIfClosed(const std::shared_ptr<clsLogFile>& log,
                                         const QString& portName)
{
    if (!log || log->LogFileOpen())
        return nullptr;
    log->OpenLogFile(portName);
    return log->LogFileOpen() ? log : nullptr;
}

// One closing step. Its own failure must not keep the others from running.
void closingStep(const std::function<void()>& step)
{
    try {
        step();
    } catch (...) {
        // What could not be closed is not there to be closed; the outcome is recorded already.
    }
}

} // namespace

void clsDLManager::Session::openDownloadLog()
{
    downloadLog = openIfClosed(logState().download, port().PortName());
}

void clsDLManager::Session::openLogs()
{
    openDownloadLog();
    configurationLog = openIfClosed(logState().configuration, port().PortName());
}

bool clsDLManager::Session::openLine()
{
    const auto control = window().comSerialPort();
    if (!control || !control->portOpen())
        port().OpenPort();
    lineOpen = lastError().ok();
    return lineOpen;
}

clsDLManager::Session clsDLManager::beginSession()
{
    m_cancellation->reset();
    claimOperation(m_cancellation);
    Session session;
    session.heldWindow = m_window;
    session.heldPort = m_port;
    session.protocol = m_Protocol;
    session.radio = m_radio;
    // What has come meanwhile, above all a request to end the program, counts before the first byte
    // goes out.
    m_platform.events.processPending();
    lastError().clear();
    return session;
}

// Resets the radio into upgrade mode and sends it the boot application when it asks for one.
void clsDLManager::logRadioOn(Session& session)
{
    QString bootFile;
    bool bootFileRequired = true;
    session.protocol->LogRadioIntoUpgradeMode(session.window(), session.port(), bootFile,
                                              bootFileRequired, m_uiMode);
    if (lastError().ok() && bootFileRequired)
        SendBootApplication(session, bootFile);
}

// The boot application is read apart from the loaded files, so that none of its images is taken for
// one of them.
void clsDLManager::SendBootApplication(Session& session, const QString& strFileName)
{
    if (!m_platform.files.exists(strFileName)) {
        lastError().set(Code::FileDoesNotExist);
        m_bootFileFault = {strFileName, {}};
        return;
    }
    const auto bootFiles = std::make_shared<colFiles>();
    const QString reason = readFile(strFileName, bootFiles);
    if (!lastError().ok()) {
        m_bootFileFault = {strFileName, reason};
        return;
    }
    session.protocol->SendUpgradeApplication(session.window(), session.port(),
                                             *bootFiles->Item(strFileName));
}

// An unexpected failure of the steps becomes code 9011.
void clsDLManager::trap(Trap kind, const std::function<void()>& steps)
{
    try {
        steps();
    } catch (...) {
        const PlatformFailure failure = currentFailure();
        if (kind == Trap::ReplaceCode || lastError().ok())
            lastError().setRuntimeError(failure);
    }
}

std::int16_t clsDLManager::takeResult() const
{
    if (m_cancellation->requested() && !lastError().ok())
        lastError().set(Code::UserCancelled);
    return static_cast<std::int16_t>(lastError().number());
}

session::Component clsDLManager::componentOf(const clsConfiguration& configuration)
{
    return {configuration.ProductID(), configuration.Status(), configuration.NetWorkID(),
            configuration.DeviceID(), configuration.blnCanBeErased()};
}

void clsDLManager::tellConfigurations(session::Reading when, const clsRadio& radio) const
{
    if (!m_teller->heard())
        return;
    session::ConfigurationsRead read{when, {}};
    for (const auto& each : radio.Configurations()->items())
        read.components.push_back(componentOf(*each));
    m_teller->tell(std::move(read));
}

// "JHA2U.Srec: File does not exist (in /var/lib/radios)"
QString clsDLManager::BootFileFault::text(const QString& message) const
{
    const qsizetype behindFolder = path.lastIndexOf(u'\\');
    const QString where = path.left(behindFolder) + (reason.isEmpty() ? QString() : u"; " + reason);
    return QStringLiteral("%1: %2 (in %3)").arg(path.mid(behindFolder + 1), message, where);
}

void clsDLManager::tellEnded(const LastError& outcome)
{
    const bool hasMessage = messageOf(outcome.number()).has_value();
    m_ended = {outcome.number(), hasMessage ? outcome.description() : QString()};
    const BootFileFault fault = std::exchange(m_bootFileFault, {});
    if (!fault.path.isEmpty() && outcome.code() != Code::UserCancelled)
        m_ended.text = fault.text(m_ended.text);
    m_teller->tell(session::OperationEnded(m_ended));
}

// Behind everything else of an operation, with the thread free. A copy: a handler may start the
// next one.
void clsDLManager::complete()
{
    const session::OperationEnded ended = m_ended;
    Q_EMIT OperationCompleted(ended.code, ended.text);
}

// Shows the outcome, then closes what the operation opened, unless the connection is kept.
void clsDLManager::closeSession(Session& session, const QString& statusText)
{
    const LastErrorKeeper outcome;
    showOutcome(session, statusText);
    if (m_stayConnected)
        return;
    closingStep([&] { session.port().ClosePort(); });
    closeLogs(session);
}

void clsDLManager::showOutcome(Session& session, const QString& statusText)
{
    closingStep([&] { session.window().setStatusPanelStatus(statusText); });
    closingStep([&] { session.window().setStatusPanelBaud({}); });
}

void clsDLManager::closeLogs(Session& session)
{
    for (const auto& log : {session.downloadLog, session.configurationLog}) {
        if (log)
            closingStep([&] { log->CloseLogFile(); });
    }
}

} // namespace fldc
