#pragma once

namespace fldc {

class colConfigurations;

/// Gives every configuration the product identifier of its network's hardware (the last one on that
/// network that begins with "RVK"), or empty text when the network has none.
void AssignHardwareStrings(colConfigurations& configurations);

} // namespace fldc
