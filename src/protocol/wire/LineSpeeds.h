#pragma once

#include <QByteArray>

#include <array>
#include <cstdint>
#include <span>

namespace fldc {

/// Input mode of the port: bytes, untranslated.
inline constexpr std::int32_t binaryInput = 1;

/// Speeds in baud that the protocol uses, fastest first.
inline constexpr std::array<std::uint32_t, 4> lineSpeeds{115200, 57600, 19200, 9600};

/// The speeds to try for the entry @p listIndex of the window's baud-rate list ("Auto", "115200",
/// "19200", "9600", "57600"), in order; none for an index outside the list.
[[nodiscard]] std::span<const std::uint32_t> speedsToTry(std::int32_t listIndex);

/// Data of the command Set Baud Rate: speed / 1200 as two bytes, high byte first.
[[nodiscard]] QByteArray speedCode(std::uint32_t speed);

} // namespace fldc
