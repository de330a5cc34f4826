#pragma once

#include <QMap>
#include <QString>

#include <cstdint>

namespace fldc {

/// Value of each switch given, by its letter.
using SwitchTable = QMap<QChar, QString>;

/// Splits the command-line text at every "/" and reads one switch from each piece: its first
/// character, and the rest as its argument. "?" ends the reading; unknown letters are left out.
/// Throws PlatformFailure (duplicate key) for a switch that is given twice.
[[nodiscard]] SwitchTable ParseCommandLine(const QString& text);

/// True when the switch was given with a value.
[[nodiscard]] bool SwitchPresent(const SwitchTable& table, QChar letter);

/// The 16-bit number that the value of a switch gives. Throws PlatformFailure for any other value.
[[nodiscard]] std::int16_t switchNumber(const SwitchTable& table, QChar letter);

/// What the program tells of its switches; lines end with CR LF, the last one without.
[[nodiscard]] QString usageText();

} // namespace fldc
