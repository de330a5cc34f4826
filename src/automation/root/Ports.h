#pragma once

#include "automation/BusValue.h"

namespace fldc {

class IPortListing;

/// The machine's serial ports as they are at this moment; opens none. Throws PlatformFailure when
/// the machine can't be asked.
[[nodiscard]] QList<PortRecord> listPorts(IPortListing& listing);

/// Makes the types of the root object's answers known to the bus.
void registerRootTypes();

} // namespace fldc
