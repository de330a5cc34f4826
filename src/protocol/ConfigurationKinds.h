#pragma once

#include <QString>

namespace fldc {

class colConfigurations;

/// Type code of a product identifier: its first character, upper-cased, and unless that is "R" its
/// fifth. "JVA1G" gives "JG", "RVKB1" gives "R".
[[nodiscard]] QString componentTypeCode(QStringView productId);

/// Works out what kind of component each configuration is and whether the user may erase it.
/// @p allErasable: a developer's machine, where everything may be erased.
/// Returns true when the radio must be power-cycled with its F1 key held.
[[nodiscard]] bool ClassifyConfigurations(colConfigurations& configurations, bool allErasable);

} // namespace fldc
