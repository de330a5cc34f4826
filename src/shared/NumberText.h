#pragma once

#include <QString>
#include <QStringView>

#include <cstdint>
#include <optional>

namespace fldc {

/// The whole number that @p text reads as, or nothing when it does not read as a number: blanks
/// around it, an optional sign, decimal digits, an optional fraction. A fraction is rounded to the
/// nearest whole number, halves to the even neighbour. Numbers beyond 32 bits are not read.
[[nodiscard]] std::optional<std::int32_t> readNumber(QStringView text);

/// As readNumber, for an argument that must be a 16-bit number. Throws PlatformFailure: type
/// mismatch for text that is not a number, overflow for one outside 16 bits.
[[nodiscard]] std::int16_t toInt16(QStringView text);

/// @p numerator / @p denominator rounded to the nearest whole number, halves to the even neighbour.
/// Both are positive.
[[nodiscard]] std::int32_t divideRounded(std::int64_t numerator, std::int64_t denominator);

/// "1 file", "2 files".
[[nodiscard]] QString counted(std::int64_t count, QStringView noun);

} // namespace fldc
