#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>

namespace fldc {

/// Failure numbers of the serial control that the port layer tells apart. Everything else carries
/// the errno of the system call that failed.
enum class SerialFailure : int {
    InvalidPortNumber = 8002, ///< no such device
    PortAlreadyOpen = 8005,   ///< open already, or held by another program
    DeviceNotOpen = 8012,     ///< close of a line that is not open
    OnlyWhilePortOpen = 8018, ///< input or output on a closed line
};

/// One serial line, driven by its properties. Each member may throw PlatformFailure.
///
/// The main window makes one at its beginning and the manager hands it to its port; both keep it
/// alive. Only the port drives it. It is used on the thread that made it, where bytes that arrive
/// are taken over while events are served, whether or not anybody reads.
///
/// Opening, closing, a change of settings and output serve events where the line is another
/// machine's: hold the object by a copy of its pointer meanwhile.
///
/// A line that hangs up (an unplugged adapter, a connection that drops) delivers the bytes it had
/// received; then every operation but closing fails, and a wait in IEvents ends at once.
class ISerialControl {
public:
    virtual ~ISerialControl() = default;

    /// Port number, 1 for COM1:. Written only while the line is closed.
    [[nodiscard]] virtual int commPort() const = 0;
    virtual void setCommPort(int number) = 0;

    [[nodiscard]] virtual bool portOpen() const = 0;
    /// Opens the line exclusively with the present settings, or closes it after everything written
    /// has left the machine (bounded in time). Line settings are not restored.
    virtual void setPortOpen(bool open) = 0;

    /// "speed,n,8,1", for example "19200,n,8,1"; takes effect at once on an open line, after
    /// everything written has left the machine.
    [[nodiscard]] virtual QString settings() const = 0;
    virtual void setSettings(const QString& settings) = 0;

    /// 1 = binary, the only mode in use.
    virtual void setInputMode(int mode) = 0;
    /// Bytes that one input() returns; always 1 in use.
    virtual void setInputLen(int bytes) = 0;

    /// Bytes received and not yet taken, as far as they are known; 0 only when there are none.
    [[nodiscard]] virtual int inBufferCount() = 0;
    /// 0 throws away what has been received; other values are not in use.
    virtual void setInBufferCount(int count) = 0;

    /// The next byte received, as an array of one; empty when none waits.
    [[nodiscard]] virtual QByteArray input() = 0;
    /// Gives all of @p bytes to the line. Waits, bounded in time, while the line's buffer is full.
    virtual void output(const QByteArray& bytes) = 0;

    /// What a network between here and the line may add to the time of an exchange, to be allowed
    /// for in every wait for an answer; 0 for a line of this machine.
    [[nodiscard]] virtual std::chrono::milliseconds delay() const { return {}; }
    /// Opening a line of another machine serves events while it waits; it fails at once when
    /// @p wanted says so. Everything else that waits is short, and goes through to its end.
    virtual void setGiveUp(std::function<bool()> wanted) { static_cast<void>(wanted); }
};

class ISerialControlFactory {
public:
    virtual ~ISerialControlFactory() = default;
    [[nodiscard]] virtual std::shared_ptr<ISerialControl> create() = 0;
};

} // namespace fldc
