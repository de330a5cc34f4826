#include "firmware/clsFile.h"

#include "platform/PlatformFailure.h"
#include "platform/ShowError.h"
#include "shared/HexText.h"

#include <array>
#include <optional>
#include <string_view>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

// Ten bytes stand in front of the tag; the search looks for the first unit of a 16-bit image.
constexpr QStringView tagMarker = u"2A2F69426262456C2F2A";
constexpr QStringView tagMarkerStart = u"2A2F";
constexpr std::size_t tagMarkerBytes = 10;

constexpr std::uint32_t unitAt(const std::uint8_t* bytes, std::size_t size)
{
    std::uint32_t unit = 0;
    for (std::size_t i = 0; i < size; ++i)
        unit = unit << 8U | bytes[i];
    return unit;
}

QChar characterOf(std::uint32_t unit)
{
    if (unit > 0xFFFF)
        throw PlatformFailure(FailureNumber::InvalidArgument);
    return QChar(static_cast<char16_t>(unit));
}

template <std::size_t size>
std::int32_t findUnit(std::span<const std::uint8_t> data, std::int32_t start, std::uint32_t value)
{
    std::array<char, size> unit{};
    for (std::size_t i = 0; i < size; ++i)
        unit[i] = static_cast<char>(value >> 8U * (size - 1 - i) & 0xFFU);
    const std::string_view wanted(unit.data(), size);
    const std::string_view text(reinterpret_cast<const char*>(data.data()), data.size());
    const auto from = static_cast<std::size_t>(start);
    std::size_t at = text.find(wanted, from);
    while (at != std::string_view::npos && (at - from) % size != 0)
        at = text.find(wanted, at + 1);
    return at == std::string_view::npos ? -1 : static_cast<std::int32_t>(at);
}

// The value that digits stand for in units of that width; nothing when no unit can have it.
std::optional<std::uint32_t> unitValue(QStringView digits, std::int16_t bits)
{
    const auto number = [](QStringView text) { return static_cast<std::uint32_t>(hexToInt(text)); };
    switch (bits) {
    case 8:
        return number(digits) <= 0xFF ? std::optional(number(digits)) : std::nullopt;
    case 16:
        return number(digits.left(2)) << 8U | number(digits.right(2));
    case 32:
        return digits.size() == 8 ? std::optional(number(digits)) : std::nullopt;
    default:
        return std::nullopt;
    }
}

} // namespace

void clsFile::ParseFile()
{
    try {
        for (std::int32_t i = 0; i < m_tables->Count(); ++i) {
            const std::shared_ptr<colDataBlocks> blocks = m_tables->Datablocks(i);
            const auto data = blocks->bytes();
            for (std::int32_t p = FindValue(data, tagMarkerStart, 0); p != -1;
                 p = FindValue(data, tagMarkerStart, p + 2)) {
                if (MatchMarker(data, p, tagMarker)) {
                    m_tagName = ExtractTag(p, data);
                    return;
                }
            }
        }
    } catch (const std::exception&) {
        ShowError(currentFailure());
    }
}

std::int32_t clsFile::FindValue(std::span<const std::uint8_t> abytData, QStringView strValue,
                                std::int32_t lngStart) const
{
    if (lngStart < 0)
        throw PlatformFailure(FailureNumber::IndexOutOfRange);
    const auto value = unitValue(strValue, m_numberOfBits);
    if (!value)
        return -1;
    switch (m_numberOfBits) {
    case 8:
        return findUnit<1>(abytData, lngStart, *value);
    case 16:
        return findUnit<2>(abytData, lngStart, *value);
    default:
        return findUnit<4>(abytData, lngStart, *value);
    }
}

bool clsFile::MatchMarker(std::span<const std::uint8_t> abytData, std::int32_t lngPosition,
                          QStringView strMarker)
{
    auto p = static_cast<std::size_t>(lngPosition);
    for (qsizetype group = 0; group < strMarker.size(); group += 4, p += 2) {
        const auto value = static_cast<std::uint32_t>(hexToInt(strMarker.mid(group, 4)));
        if (p + 2 > abytData.size() || unitAt(&abytData[p], 2) != value)
            return false;
    }
    return true;
}

QString clsFile::ExtractTag(std::int32_t lngPosition, std::span<const std::uint8_t> abytData) const
{
    const auto unitBytes = static_cast<std::size_t>(m_zeroUnit.size() / 2);
    if (lngPosition < 0 || unitBytes == 0)
        throw PlatformFailure(FailureNumber::IndexOutOfRange);

    auto start = static_cast<std::size_t>(lngPosition) + tagMarkerBytes;
    while (start + unitBytes <= abytData.size() && unitAt(&abytData[start], unitBytes) == 0)
        start += unitBytes;

    const std::int32_t end = FindValue(abytData, m_zeroUnit, static_cast<std::int32_t>(start));
    QString tag;
    for (auto p = static_cast<std::int32_t>(start); p < end;
         p += static_cast<std::int32_t>(unitBytes))
        tag.append(characterOf(unitAt(&abytData[static_cast<std::size_t>(p)], unitBytes)));
    return tag;
}

} // namespace fldc
