#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace fldc::bench {

/// The least that reading a file of S3 records takes: one pass over the mapped text, a table
/// look-up per digit, a growing vector. No addresses, no failures beyond "not such a file".
[[nodiscard]] std::optional<std::vector<std::uint8_t>>
parseBare(std::span<const std::uint8_t> text);

} // namespace fldc::bench
