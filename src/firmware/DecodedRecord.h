#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace fldc {

/// A record as it nearly always is: two upper-case type characters, a count, and exactly the
/// hexadecimal digits that the count promises, with a line end or the end of the text behind them.
/// Reading one costs a table look-up per digit; a record of any other form is for SRecordLine.
class DecodedRecord {
public:
    /// Reads the record at the start of @p text; false when it has another type or another form.
    [[nodiscard]] bool decode(std::span<const std::uint8_t> text, std::array<std::uint8_t, 2> type);

    /// Characters of the record's line, without the line end.
    [[nodiscard]] std::size_t length() const { return 4 + 2 * m_count; }
    /// What follows the count: address, data and checksum.
    [[nodiscard]] std::span<std::uint8_t> bytes() { return std::span(m_bytes).first(m_count); }

private:
    std::array<std::uint8_t, 255> m_bytes{};
    std::size_t m_count = 0;
};

} // namespace fldc
