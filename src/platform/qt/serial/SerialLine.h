#pragma once

#include "platform/ISerialControl.h"
#include "platform/PlatformFailure.h"
#include "platform/qt/FileDescriptor.h"

#include <QByteArray>
#include <QString>

#include <cstdint>

namespace fldc {

/// A failure of the serial control with its standard description, about @p device.
[[nodiscard]] PlatformFailure serialFailure(SerialFailure number, const QString& device);

/// An open serial device: the system calls of SerialControl.
///
/// Held exclusively: TIOCEXCL keeps other users out, an advisory lock (flock) also keeps out root
/// and whoever comes by another name of the device. Closing restores no line settings. The members
/// that return int return 0 or an errno; a line that has hung up gives EIO.
class SerialLine {
public:
    /// Opens without waiting for a carrier. Throws 8002 when there is no such device, 8005 when
    /// another program (or another object) holds it, else the errno. Reads and writes need
    /// configure() first.
    explicit SerialLine(const QString& path);
    /// Closes at once; what drain() has not seen off may be lost.
    ~SerialLine();
    SerialLine(const SerialLine&) = delete;
    SerialLine& operator=(const SerialLine&) = delete;

    /// Raw mode, 8 data bits, no parity, 1 stop bit, no flow control, no modem control, at @p speed
    /// bits per second. Takes effect at once: drain() first. Throws when the line can't do it.
    void configure(std::uint32_t speed);

    [[nodiscard]] int descriptor() const { return m_file.get(); }

    /// Appends what has arrived to @p received, at most @p limit bytes (4096 at a time).
    [[nodiscard]] int receive(QByteArray& received, qsizetype limit);
    /// Hands all of @p bytes to the system, at once unless more than a frame is still queued from
    /// before. Waits while its buffer is full, at most twice the time that the line needs for what
    /// is queued, and a margin; then ETIMEDOUT, and what is queued is thrown away.
    [[nodiscard]] int write(const QByteArray& bytes);
    /// Waits until everything written has left the machine; bounded as write() is.
    [[nodiscard]] int drain();
    /// Throws away what has arrived.
    [[nodiscard]] int discardReceived();

private:
    [[nodiscard]] int waitForQueue(int most);
    [[nodiscard]] int queuedBytes() const;
    void discardQueued();
    [[noreturn]] void fail(int error) const;

    QString m_path;
    FileDescriptor m_file;
    std::uint32_t m_speed = 9600;
};

} // namespace fldc
