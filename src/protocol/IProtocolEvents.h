#pragma once

#include <QString>

#include <cstdint>

namespace fldc {

/// Who hears of the protocol's events: called on the same thread while the operation that raises
/// them still runs.
///
/// A handler may wait for events, and may call the manager: reading members answer, operations are
/// refused. The radio is asked nothing until it has returned.
class IProtocolEvents {
public:
    virtual ~IProtocolEvents() = default;

    /// @p lngPercentage 0 to 100 of the file @p strCurrentfileName, the @p lngIndex-th of a
    /// download.
    virtual void onDownloadProgress(std::int32_t lngPercentage, const QString& strCurrentfileName,
                                    std::int32_t lngIndex) = 0;
    /// The radio waits to be power-cycled and no user is present.
    virtual void onPowerCycleRequired() = 0;
};

} // namespace fldc
