#pragma once

#include <QString>

#include <sys/types.h>

namespace fldc {

/// A radio's end of a pseudo-terminal in a process of its own, which acknowledges each command
/// frame with AF AF. Ends with the object.
class Peer {
public:
    enum class Pace {
        AtOnce,     ///< as soon as a frame is complete
        Line115200, ///< frame and answer take the time that they have on a line at 115200 baud
        Silent,     ///< never
    };

    explicit Peer(Pace pace);
    ~Peer();
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    [[nodiscard]] const QString& path() const { return m_path; }

private:
    pid_t m_process = -1;
    int m_master = -1;
    int m_slave = -1; ///< kept open and raw, so that the line never hangs up
    QString m_path;
};

/// Seconds that one byte takes at 115200 baud: start bit, 8 data bits, stop bit.
inline constexpr double byteTime = 10.0 / 115200.0;

} // namespace fldc
