#pragma once

#include <QString>

#include <optional>
#include <vector>

namespace fldc {

struct DeviceFacts;

/// One thing that was found out about a port, in words.
struct PortFinding {
    bool ok;
    QString text;
    QString hint; ///< empty: nothing to do
};

/// What the facts of a port say, from the device to the adapter's timing.
[[nodiscard]] std::vector<PortFinding> findingsOf(const DeviceFacts& facts);

/// The finding that keeps the port from being used now; nothing when it may be free.
[[nodiscard]] std::optional<PortFinding> faultOf(const DeviceFacts& facts);

/// Why a port can't be used now.
struct PortObstacle {
    QString what;   ///< "no adapter", "no rights", or "in use by picocom (process 7)"
    QString remedy; ///< the hint of the finding
};

/// Nothing when the port may be free, and when it is this program that uses it.
[[nodiscard]] std::optional<PortObstacle> portObstacle(const DeviceFacts& facts);

} // namespace fldc
