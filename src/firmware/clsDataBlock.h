#pragma once

namespace fldc {

/// Published for programs that create it by name; it has no members and nothing here uses it.
class clsDataBlock {};

} // namespace fldc
