#include "protocol/clsProtocol.h"

#include "platform/IClock.h"
#include "platform/IEvents.h"
#include "platform/Platform.h"
#include "port/IPort.h"
#include "protocol/IProtocolWindow.h"
#include "protocol/wire/Frames.h"
#include "protocol/wire/LineSpeeds.h"
#include "shared/DisplayTexts.h"
#include "shared/LastError.h"

#include <algorithm>

namespace fldc {

using namespace std::chrono_literals;

void clsProtocol::NegotiateBaud(IProtocolWindow& UIForm, IPort& port, std::int32_t intListIndex)
{
    UIForm.setStatusPanelStatus(displayText(Text::SettingBaudRate));
    for (const std::uint32_t speed : speedsToTry(intListIndex)) {
        if (ChangeBaudRate(UIForm, port, QString::number(speed))) {
            // The previous speed where the radio stayed at it.
            m_teller->tell(session::SpeedAgreed{m_previousBaudRate.toUInt()});
            return;
        }
    }
    lastError().set(Code::BaudRateNotSet);
}

// Succeeds in two cases: the radio answers at the new speed, or still at the previous one.
bool clsProtocol::ChangeBaudRate(IProtocolWindow& UIForm, IPort& port, const QString& strSpeed)
{
    // The radio acknowledges at the new speed, so the reply is not read before the line has it.
    if (!SendCommand(port, 0ms, Command::SetBaudRate, speedCode(strSpeed.toUInt())))
        return false;
    m_platform.events.pause(10ms);
    port.SetPortParameters(strSpeed, binaryInput);
    if (!lastError().ok())
        return false;

    if (!readReply(port, 500ms) && !confirmReady(port))
        return returnToPreviousSpeed(UIForm, port);

    UIForm.setStatusPanelBaud(strSpeed);
    m_previousBaudRate = strSpeed;
    return true;
}

bool clsProtocol::returnToPreviousSpeed(IProtocolWindow& UIForm, IPort& port)
{
    port.SetPortParameters(m_previousBaudRate, binaryInput);
    if (!lastError().ok())
        return false;
    // Whatever the radio still says here shows that it listens at this speed.
    strReply = port.ReadBinary(500, QStringLiteral("AFAF"));
    if (!lastError().ok() && !confirmReady(port))
        return false;
    UIForm.setStatusPanelBaud(m_previousBaudRate);
    return true;
}

void clsProtocol::TestLink(IProtocolWindow& UIForm, IPort& port, std::int32_t rounds)
{
    UIForm.setStatusPanelStatus(displayText(Text::SettingBaudRate));
    auto slowestFirst = lineSpeeds;
    std::ranges::reverse(slowestFirst);
    for (const std::uint32_t speed : slowestFirst) {
        const QString text = QString::number(speed);
        const bool answers = ChangeBaudRate(UIForm, port, text);
        session::LinkMeasured link{speed, answers && m_previousBaudRate == text};
        const bool goesOn = link.agreed ? measureLink(port, rounds, link) : answers;
        const LastError outcome = lastError();
        m_teller->tell(link);
        if (!goesOn) {
            lastError() = outcome;
            return;
        }
    }
    lastError().clear();
}

// False when the line failed or the operation was cancelled. That answers are missing is what is
// measured; so many in a row are enough.
bool clsProtocol::measureLink(IPort& port, std::int32_t rounds, session::LinkMeasured& link)
{
    constexpr int enough = 5;
    int missing = 0;
    while (link.rounds < rounds && missing < enough) {
        const auto start = m_platform.clock.monotonic();
        ++link.rounds;
        const bool sent = SendCommand(port, 0ms, Command::ConfirmReady);
        const bool answered = sent && readReply(port, 500ms);
        const Code code = lastError().code();
        if (!sent || code == Code::UserCancelled || code == Code::PortUnspecified) {
            ++link.lost;
            return false;
        }
        missing = answered ? 0 : missing + 1;
        if (answered)
            link.roundTrips.push_back(m_platform.clock.monotonic() - start);
        else if (port.LastReadSilent())
            ++link.lost;
        else
            ++link.corrupt;
    }
    return true;
}

bool clsProtocol::confirmReady(IPort& port)
{
    return SendCommand(port, 0ms, Command::ConfirmReady) && readReply(port, 500ms);
}

} // namespace fldc
