#include "protocol/clsProtocol.h"

#include "app/services/LogState.h"
#include "firmware/clsFile.h"
#include "platform/IClock.h"
#include "platform/IEvents.h"
#include "platform/IFileService.h"
#include "platform/IProgramInfo.h"
#include "platform/Platform.h"
#include "platform/PlatformFailure.h"
#include "port/IPort.h"
#include "protocol/IProtocolEvents.h"
#include "protocol/IProtocolWindow.h"
#include "protocol/IWaitDialog.h"
#include "protocol/record/CommandRecord.h"
#include "protocol/wire/BootFiles.h"
#include "protocol/wire/Frames.h"
#include "protocol/wire/LineSpeeds.h"
#include "shared/DisplayTexts.h"
#include "shared/LastError.h"
#include "shared/NumberText.h"

#include <algorithm>

namespace fldc {

using namespace std::chrono_literals;

namespace {

constexpr auto normalLogOn = u"7E";
constexpr auto specialLogOn = u"3C5E23";

// A full wait of the port for the start-up byte takes 2 seconds. One that ends much earlier without
// an answer was not silence but a line that failed.
constexpr auto shortestSilence = 1500ms;

// Sets the line to @p speed; false when the port failed.
bool setSpeed(IPort& port, std::uint32_t speed)
{
    port.SetPortParameters(QString::number(speed), binaryInput);
    return lastError().ok();
}

// Where the file is; where it should be, when it is missing.
QString bootFilePath(const Platform& platform, const QString& identifier)
{
    const QString name = u'\\' + bootFileFor(identifier);
    const QStringList folders = platform.program.bootFolders();
    const auto found = std::ranges::find_if(
        folders, [&](const QString& folder) { return platform.files.exists(folder + name); });
    return (found == folders.end() ? folders.last() : *found) + name;
}

} // namespace

void clsProtocol::SetUpgradeMode(std::int16_t Value)
{
    m_upgrade.lngUpgradeMode = Value != 0 ? 10 : 0;
}

void clsProtocol::LogRadioIntoUpgradeMode(IProtocolWindow& UIForm, IPort& port, QString& strUAFile,
                                          bool& blnUARequired, bool blnUIMode)
{
    UIForm.setStatusPanelStatus(displayText(Text::ResettingRadio));
    bool blnInUpgradeMode = false;
    ResetAndWaitForRadio(port, blnUARequired, blnInUpgradeMode, blnUIMode);
    if (!lastError().ok() || blnInUpgradeMode)
        return;

    port.WriteBinary(HexToBytes(QStringView(m_upgrade.special() ? specialLogOn : normalLogOn)));
    if (!lastError().ok())
        return;

    const QString answer = port.ReadBinary(2000, QStringLiteral("2A"));
    if (!lastError().ok()) {
        lastError().set(Code::RadioDidNotLogOn);
        return;
    }
    m_previousBaudRate = QStringLiteral("19200");
    const QString identifier = hardwareIdentifier(QString::fromLatin1(HexToBytes(answer)));

    // "?" behind the identifier: the radio's own software takes part.
    (void)port.ReadBinary(750, QStringLiteral("3F"));
    const bool ownSoftware = lastError().ok();
    if (blnUARequired && !ownSoftware) {
        if (identifier.isEmpty()) {
            lastError().set(Code::RadioDidNotLogOn);
            return;
        }
        strUAFile = bootFilePath(m_platform, identifier);
        lastError().clear();
        m_teller->tell(session::LoggedOn{identifier, true});
        return;
    }
    blnUARequired = false;
    (void)port.ReadBinary(2000, QStringLiteral("AFAF"));
    if (lastError().ok())
        m_teller->tell(session::LoggedOn{identifier, false});
}

void clsProtocol::ResetAndWaitForRadio(IPort& port, bool& blnUARequired, bool& blnInUpgradeMode,
                                       bool blnUIMode)
{
    try {
        blnUARequired = false;
        m_upgrade.blnF1KeyRequired = false;
        if (!setSpeed(port, 19200))
            return;
        if (!m_upgrade.special() && resetAtEitherSpeed(port, blnUARequired))
            return;
        // The port failed, or the radio is silent: then it may be in upgrade mode already.
        if (!lastError().ok() && lastError().code() != Code::RadioDidNotReset)
            return;

        const bool powerCycle = m_upgrade.special() || m_upgrade.blnF1KeyRequired;
        if (powerCycle && !waitForPowerCycle(port, blnUARequired, blnUIMode))
            return;
        if (!m_upgrade.blnF1KeyRequired && lastError().ok())
            return;
        FindRadioBaudRate(port, blnUARequired, blnInUpgradeMode);
    } catch (...) {
        lastError().setRuntimeError(currentFailure());
    }
}

// True when the radio answered the reset at 19200 baud. Else the last error is 21 (silent at 9600
// too), 0 (it answered at 9600: it needs a power cycle with its F1 key) or the port's.
bool clsProtocol::resetAtEitherSpeed(IPort& port, bool& blnUARequired, session::Step step)
{
    resetAndListen(port, blnUARequired, step);
    if (lastError().ok())
        return true;

    if (!setSpeed(port, 9600))
        return false;
    m_platform.events.pause(500ms);
    resetAndListen(port, blnUARequired, step);
    const bool answered = lastError().ok();
    m_upgrade.blnF1KeyRequired = answered;
    if (setSpeed(port, 19200) && !answered)
        lastError().set(Code::RadioDidNotReset);
    return false;
}

// @p step: what the reset is for.
void clsProtocol::resetAndListen(IPort& port, bool& blnUARequired, session::Step step)
{
    port.ResetRadio();
    const bool sent = lastError().ok();
    if (sent)
        tellResetSent(*m_teller, step);
    port.WaitForReset(blnUARequired, false);
    if (sent)
        tellResetAnswered(*m_teller, step);
}

// False when the operation ends here: the user gave up (1), nobody power-cycled the radio in time
// (21), or the port had not come back by then (its code). A dialog that no screen shows would wait
// for ever.
bool clsProtocol::waitForPowerCycle(IPort& port, bool& blnUARequired, bool blnUIMode)
{
    m_teller->tell(session::PowerCycleRequired{upgradeState().blnF1KeyRequired});
    const bool byUser = blnUIMode && m_platform.program.screenPresent();
    const bool answered = byUser ? waitForPowerCycleByUser(port, blnUARequired)
                                 : waitForPowerCycleUnattended(port, blnUARequired);
    if (answered)
        tellResetAnswered(*m_teller, session::Step::Reset);
    return answered;
}

bool clsProtocol::waitForPowerCycleByUser(IPort& port, bool& blnUARequired)
{
    const auto dialog = m_dialogs.createWaitDialog();
    dialog->Show();
    dialog->SetMessage(powerCycleRequest(m_upgrade.blnF1KeyRequired));
    while (radioStillSilent(port, blnUARequired) && !dialog->IsCancelled()) {
    }
    dialog->Hide();
    port.StopTimer();
    if (dialog->IsCancelled())
        return fail(Code::UserCancelled);
    return lastError().ok();
}

bool clsProtocol::waitForPowerCycleUnattended(IPort& port, bool& blnUARequired)
{
    m_events.onPowerCycleRequired();
    const IClock& clock = m_platform.clock;
    const auto end = clock.monotonic() + m_platform.program.powerCycleLimit();
    while (radioStillSilent(port, blnUARequired) && clock.monotonic() < end) {
    }
    port.StopTimer();
    return lastError().ok();
}

// One wait of 2 seconds for the radio's start-up byte; only a cancellation ends the waiting here. A
// line that failed meanwhile is opened again. An adapter that loses its power with the radio takes
// a while to come back: its device is missing at first, then may still be closed to this user, or
// in the hands of a service that looks what has been plugged in.
bool clsProtocol::radioStillSilent(IPort& port, bool& blnUARequired)
{
    const auto start = m_platform.clock.monotonic();
    port.WaitForReset(blnUARequired, m_upgrade.blnF1KeyRequired);
    if (lastError().code() != Code::RadioDidNotReset)
        return false;
    if (m_platform.clock.monotonic() - start >= shortestSilence)
        return true;
    if (!setSpeed(port, 19200) && lastError().code() == Code::UserCancelled)
        return false;
    const Code code = lastError().ok() ? Code::RadioDidNotReset : lastError().code();
    m_platform.events.pause(500ms);
    lastError().set(code);
    return true;
}

void clsProtocol::FindRadioBaudRate(IPort& port, bool& blnUARequired, bool& blnInUpgradeMode)
{
    for (const std::uint32_t speed : lineSpeeds) {
        if (!setSpeed(port, speed) || !SendCommand(port, 0ms, Command::ConfirmReady))
            return;
        m_platform.events.pause(500ms);
        strReply = port.ReadBinary(500, QStringLiteral("AFAF"));
        if (lastError().ok()) {
            blnInUpgradeMode = true;
            m_teller->tell(session::LoggedOn{std::nullopt, false});
            blnUARequired = false;
            m_previousBaudRate = QString::number(speed);
            return;
        }
    }
}

void clsProtocol::RestartFromAnyState(IProtocolWindow& UIForm, IPort& port)
{
    UIForm.setStatusPanelStatus(displayText(Text::ResettingRadio));
    bool unused = false;
    if (!setSpeed(port, 19200) || resetAtEitherSpeed(port, unused, session::Step::Restart))
        return;
    // It came up at 9600 baud, or the port failed; else it is silent: it may be in upgrade mode.
    if (lastError().code() != Code::RadioDidNotReset)
        return;
    bool blnInUpgradeMode = false;
    FindRadioBaudRate(port, unused, blnInUpgradeMode);
    if (blnInUpgradeMode)
        RestartRadio(UIForm, port);
}

void clsProtocol::SendUpgradeApplication(IProtocolWindow& UIForm, IPort& port,
                                         const clsFile& objFile)
{
    UIForm.setFileNameTextBox(QStringLiteral("Upgrade Application"));
    UIForm.setStatusPanelStatus(displayText(Text::DownloadingUpgradeApplication));
    UIForm.setFileNameTextBox(QStringLiteral("Upgrade Application - ") + objFile.TagName());
    logDownload(QStringLiteral("Using boot file : ") + objFile.TagName());
    UIForm.setStatusPanelBaud(QStringLiteral("19200"));
    UIForm.ResetProgessBar();
    m_platform.events.processPending();

    // Raw bytes, one at a time: the radio's boot loader knows no frames yet.
    const auto data = objFile.Definitiontables()->Datablocks(0);
    const std::int32_t count = data->Count();
    std::int32_t shown = 0;
    for (std::int32_t i = 0; i < count; ++i) {
        port.WriteBinary(QByteArray(1, static_cast<char>(data->ByteAt(i))));
        if (!lastError().ok())
            return;
        const std::int32_t percentage = divideRounded(100LL * (i + 1), count);
        UIForm.setProgressBar(static_cast<std::int16_t>(percentage));
        if (percentage != shown) {
            shown = percentage;
            m_platform.events.processPending(); // repaints, and a cancel
        }
    }

    logDownload(QStringLiteral("Send Upgrade Application... "));
    (void)port.ReadBinary(2000, QStringLiteral("AFAF"));
    if (lastError().ok())
        m_teller->tell(session::BootApplicationSent{objFile.Name(), count});
}

} // namespace fldc
