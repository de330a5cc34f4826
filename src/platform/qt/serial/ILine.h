#pragma once

#include <QByteArray>

#include <chrono>
#include <cstdint>
#include <functional>

namespace fldc {

/// An open line, exclusively ours: a device of this machine or a line of another one. The members
/// that return int return 0 or an errno; ETIMEDOUT leaves the line alive, anything else means that
/// it is lost.
class ILine {
public:
    virtual ~ILine() = default;

    /// Raw, 8 data bits, no parity, 1 stop bit, no flow control, at @p speed bits per second. Takes
    /// effect at once: drain() first. Throws PlatformFailure when the line can't do it.
    virtual void configure(std::uint32_t speed) = 0;
    /// Has @p activity called from the event loop when something has come, or the line is lost.
    virtual void watch(std::function<void()> activity) = 0;
    /// Off: nothing is reported, for a line that hung up or whose reader has no more room.
    virtual void setWatching(bool on) = 0;

    /// Appends what has arrived to @p received, at most @p limit bytes.
    [[nodiscard]] virtual int receive(QByteArray& received, qsizetype limit) = 0;
    /// Gives all of @p bytes to the line; bounded in time, then ETIMEDOUT.
    [[nodiscard]] virtual int write(const QByteArray& bytes) = 0;
    /// Waits until everything written has left for the radio; bounded as write() is.
    [[nodiscard]] virtual int drain() = 0;
    /// The same from a destructor, where no events may be served; as far as that goes.
    virtual void drainLast() noexcept = 0;
    /// Throws away what has arrived.
    [[nodiscard]] virtual int discardReceived() = 0;

    /// What ISerialControl::delay() says.
    [[nodiscard]] virtual std::chrono::milliseconds delay() const { return {}; }
    /// Whether a line that is closed and opened again before events are served stays connected
    /// meanwhile: where closing takes more than the line's own settings along.
    [[nodiscard]] virtual bool outlivesReopening() const { return false; }
};

} // namespace fldc
