#pragma once

#include "platform/Platform.h"
#include "port/IPort.h"
#include "port/modTimer.h"
#include "session/Listener.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace fldc {

class Cancellation;

/// The port over a serial line. Drives the line through the control that it is given, which also
/// keeps port number, speed and open state. Everything written is logged as sent and every
/// completed read as received.
///
/// A wait serves the thread's events and blocks until the next byte or timer. It ends at once with
/// code 1 after a cancellation, and when the line fails. A port that was given no line fails as one
/// that failed for an unknown reason: 15, waiting for the start-up byte 21.
///
/// A read also ends, with code 44, when 60 seconds or 64 KiB have passed since it began or since
/// its last busy word without the reply being complete: whatever sends that is no radio, or none
/// that speaks its protocol. A radio that says nothing but that it is busy (a long erasure) is
/// waited for as long as a user is present, who sees it and can give up; without one, 15 minutes.
class clsSerial final : public IPort {
public:
    /// @p userPresent is asked while a read goes on; empty: nobody is there. @p teller: who is told
    /// when the line is opened and when bytes come that nobody expects.
    clsSerial(const Platform& platform, std::shared_ptr<const Cancellation> cancellation,
              std::function<bool()> userPresent = {},
              std::shared_ptr<const session::Teller> teller = std::make_shared<session::Teller>());

    [[nodiscard]] QString PortName() const override;
    void OpenPort() override;
    QString ReadBinary(std::int16_t intTimeout, const QString& strExist,
                       bool* blnTerminatorFound) override;
    [[nodiscard]] bool LastReadSilent() const override { return m_lastReadSilent; }
    void WriteBinary(const QByteArray& bytes) override;
    void ClosePort() override;
    void SetPortParameters(const QString& strBaudRate, std::int32_t comInputMode) override;
    void WaitForReset(bool& blnUARequired, bool blnAFAF) override;
    [[nodiscard]] std::int16_t Step() const override { return 2; }
    void ResetRadio() override;
    void setPortType(std::shared_ptr<ISerialControl> control) override;
    void StopTimer() override { m_timer.StopTimer(); }

private:
    using milliseconds = std::chrono::milliseconds;

    template <class Reply>
    [[nodiscard]] bool readReply(Reply& reply, milliseconds timeout, int busyMarksAllowed);
    template <class Reply>
    [[nodiscard]] bool receive(Reply& reply, milliseconds timeout, int busyMarksAllowed);
    [[nodiscard]] const std::shared_ptr<ISerialControl>& control() const;
    [[nodiscard]] std::optional<std::uint8_t> nextByte(ISerialControl& line);
    [[nodiscard]] bool cancelled() const;
    [[nodiscard]] bool userPresent() const { return m_userPresent && m_userPresent(); }
    void tellOpened(const ISerialControl& line) const;
    void tellDiscarded(ISerialControl& line) const;
    void tellUnread(const QString& received) const;

    Platform m_platform;
    std::shared_ptr<const Cancellation> m_cancellation;
    std::function<bool()> m_userPresent;
    std::shared_ptr<const session::Teller> m_teller;
    std::shared_ptr<ISerialControl> m_control;
    QByteArray m_lastSent;
    bool m_lastReadSilent = true;
    modTimer m_timer;
    int m_runLeft = 0; ///< bytes that may be taken before events are served
};

} // namespace fldc
