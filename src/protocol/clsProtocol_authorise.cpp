#include "protocol/clsProtocol.h"

#include "platform/IEvents.h"
#include "platform/Platform.h"
#include "port/IPort.h"
#include "protocol/IProtocolWindow.h"
#include "protocol/record/CommandRecord.h"
#include "protocol/wire/Frames.h"
#include "protocol/wire/LineSpeeds.h"
#include "shared/DisplayTexts.h"
#include "shared/LastError.h"

namespace fldc {

using namespace std::chrono_literals;

void clsProtocol::AuthoriseSetMemory(IPort& port, const QString& strJNum, const QString& strMemId,
                                     bool blnDeviceSet)
{
    const QByteArray component = textAsWords(strJNum);

    // The newer form names component and memory device at once.
    if (SendCommand(port, 2000ms, Command::AuthoriseComponentOnDevice,
                    HexToBytes(strMemId) + component))
        return;
    const Code refusal = lastError().code();
    if (refusal != Code::CommandNotRecognised && refusal != Code::NetworkComponentNotFound)
        return;

    // The older form names only the component; a radio that knows neither needs no authorisation.
    if (!SendCommand(port, 2000ms, Command::AuthoriseComponent, component)) {
        if (lastError().code() != Code::CommandNotRecognised)
            return;
        lastError().clear();
    }
    if (!blnDeviceSet)
        (void)SetMemoryTarget(port, strMemId);
}

bool clsProtocol::SetMemoryTarget(IPort& port, const QString& strMemId)
{
    return SendCommand(port, 2000ms, Command::SetMemoryTarget, HexToBytes(strMemId));
}

void clsProtocol::CloseAllTunnels(IPort& port)
{
    (void)SetMemoryTarget(port, QStringLiteral("0000"));
}

void clsProtocol::RestartRadio(IProtocolWindow& UIForm, IPort& port)
{
    UIForm.setStatusPanelStatus(displayText(Text::ResettingRadio));
    if (!SendCommand(port, 0ms, Command::ResetRadio))
        return;
    awaitRestart(UIForm, port);
    tellAnswered(*m_teller, Command::ResetRadio);
}

void clsProtocol::awaitRestart(IProtocolWindow& UIForm, IPort& port)
{
    port.SetPortParameters(QStringLiteral("19200"), binaryInput);
    if (!lastError().ok())
        return;
    UIForm.setStatusPanelBaud(QStringLiteral("19200"));
    bool unused = false;
    port.WaitForReset(unused, false);
    if (lastError().ok())
        return;

    UIForm.setStatusPanelBaud(QStringLiteral("9600"));
    port.SetPortParameters(QStringLiteral("9600"), binaryInput);
    if (!lastError().ok())
        return;
    m_platform.events.pause(500ms);
    port.ResetRadio();
    port.WaitForReset(unused, false);
}

} // namespace fldc
