#include "protocol/clsProtocol.h"

#include "platform/IEvents.h"
#include "platform/Platform.h"
#include "port/IPort.h"
#include "protocol/IProtocolWindow.h"
#include "protocol/wire/Frames.h"
#include "protocol/wire/LineSpeeds.h"
#include "shared/DisplayTexts.h"
#include "shared/LastError.h"

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

bool clsProtocol::confirmReady(IPort& port)
{
    return SendCommand(port, 0ms, Command::ConfirmReady) && readReply(port, 500ms);
}

} // namespace fldc
