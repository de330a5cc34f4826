#pragma once

#include "platform/ISerialControl.h"
#include "platform/PlatformFailure.h"
#include "platform/qt/FileDescriptor.h"
#include "platform/qt/serial/ILine.h"

#include <QSocketNotifier>
#include <QString>

#include <cstdint>
#include <memory>

namespace fldc {

/// A failure of the serial control with its standard description, about @p device.
[[nodiscard]] PlatformFailure serialFailure(SerialFailure number, const QString& device);

/// An open serial device of this machine: the system calls of SerialControl.
///
/// Held exclusively: TIOCEXCL keeps other users out, an advisory lock (flock) also keeps out root
/// and whoever comes by another name of the device. Closing restores no line settings. A line that
/// has hung up gives EIO.
class SerialLine final : public ILine {
public:
    /// Opens without waiting for a carrier. Throws 8002 when there is no such device, 8005 when
    /// another program (or another object) holds it, else the errno. Reads and writes need
    /// configure() first.
    explicit SerialLine(const QString& path);
    /// Closes at once; what drain() has not seen off may be lost.
    ~SerialLine() override;
    SerialLine(const SerialLine&) = delete;
    SerialLine& operator=(const SerialLine&) = delete;

    void configure(std::uint32_t speed) override;
    void watch(std::function<void()> activity) override;
    void setWatching(bool on) override;

    /// At most 4096 bytes at a time.
    [[nodiscard]] int receive(QByteArray& received, qsizetype limit) override;
    /// Hands the bytes to the system at once unless more than a frame is still queued from before.
    /// Waits while its buffer is full, at most twice the time that the line needs for what is
    /// queued, and a margin; then what is queued is thrown away.
    [[nodiscard]] int write(const QByteArray& bytes) override;
    [[nodiscard]] int drain() override;
    void drainLast() noexcept override { static_cast<void>(drain()); }
    [[nodiscard]] int discardReceived() override;

private:
    [[nodiscard]] int descriptor() const { return m_file.get(); }
    [[nodiscard]] int waitForQueue(int most);
    [[nodiscard]] int queuedBytes() const;
    void discardQueued();
    [[noreturn]] void fail(int error) const;

    QString m_path;
    FileDescriptor m_file;
    std::uint32_t m_speed = 9600;
    std::unique_ptr<QSocketNotifier> m_notifier; ///< declared after the file that it watches
};

} // namespace fldc
