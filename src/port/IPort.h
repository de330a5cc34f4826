#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>

namespace fldc {

class ISerialControl;

/// The way to the radio, as the protocol and the manager see it. Every operation returns when it is
/// done and reports through the last error: 0, or the code named. None throws.
///
/// Received bytes are hex text: two upper-case digits per byte, in order of arrival, no separators.
///
/// What ends a call that waits: the answer, its time-out, a line that fails or is closed by a
/// callback, a cancellation. A call that ends without an answer leaves nothing behind: the reply
/// timer is stopped, and what arrives later is thrown away by the next write.
///
/// Owned by the manager. An operation works on the port that it began with, also when a client has
/// chosen another one meanwhile; that one then serves the next operation.
class IPort {
public:
    virtual ~IPort() = default;

    /// Number of the serial port in decimal ("1"); the log files name it.
    [[nodiscard]] virtual QString PortName() const = 0;
    /// Opens with the settings last given. Codes 11, 12, 15.
    virtual void OpenPort() = 0;
    /// Reads until the marker @p strExist (hex text) or a whole period of @p intTimeout
    /// milliseconds without a byte. A marker of 4 digits selects word mode, in which *@p
    /// blnTerminatorFound is set true (never cleared) when the reply ended with the marker; any
    /// other length text mode. Returns what was received, empty on failure. Codes 42, 44 (more than
    /// 50 busy marks in text mode, or a device that goes on sending and never completes a reply),
    /// 41, 15, 1.
    virtual QString ReadBinary(std::int16_t intTimeout, const QString& strExist,
                               bool* blnTerminatorFound = nullptr) = 0;
    /// True when not one byte came during the last read.
    [[nodiscard]] virtual bool LastReadSilent() const = 0;
    /// Discards unread input and writes all of @p bytes. Codes 11, 12, 15, 1.
    virtual void WriteBinary(const QByteArray& bytes) = 0;
    /// Closes if open. Codes 12, 15.
    virtual void ClosePort() = 0;
    /// Closes, sets the speed (decimal text, 8 data bits, no parity, 1 stop bit) and opens again.
    /// @p comInputMode: 1 = binary. Codes as for OpenPort and ClosePort, 1.
    virtual void SetPortParameters(const QString& strBaudRate, std::int32_t comInputMode) = 0;
    /// Waits up to 2 seconds, restarted by each busy word, for the start-up byte of the radio,
    /// which says in @p blnUARequired whether it needs the upgrade application. With @p blnAFAF the
    /// word AF AF is an answer too. Codes 21, 1.
    virtual void WaitForReset(bool& blnUARequired, bool blnAFAF) = 0;
    /// Always 2.
    [[nodiscard]] virtual std::int16_t Step() const = 0;
    /// Writes the reset byte 5E. Codes as for WriteBinary.
    virtual void ResetRadio() = 0;
    /// The line that the port drives from now on.
    virtual void setPortType(std::shared_ptr<ISerialControl> control) = 0;
    /// Stops the reply timer if it runs.
    virtual void StopTimer() = 0;
};

} // namespace fldc
