#pragma once

namespace fldc {

/// Published by name only; definition tables are DataDefinition records (colDefTables.h).
class clsDefinitionTable {};

} // namespace fldc
