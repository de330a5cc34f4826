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

/// Why the port can't be used now, with the hint, and beginning with which of the three it is: "No
/// adapter: ...", "No rights: ...", "In use: ...". Empty when it may be free, and when it is this
/// program that uses it.
[[nodiscard]] QString portObstacle(const DeviceFacts& facts);

} // namespace fldc
