#pragma once

#include "automation/BoundClass.h"

#include <vector>

namespace fldc {

/// The radio model, the data blocks and the definition tables, as the bus calls them.
[[nodiscard]] std::vector<BoundClass> supportingClasses();

/// The download manager with its 24 members; its objects are ManagerObject.
[[nodiscard]] BoundClass managerClassBinding();

} // namespace fldc
