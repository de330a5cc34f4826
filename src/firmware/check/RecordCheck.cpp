#include "firmware/check/RecordCheck.h"

#include "firmware/DecodedRecord.h"
#include "firmware/TextLines.h"
#include "shared/HexText.h"

#include <array>
#include <numeric>
#include <optional>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

std::optional<std::uint8_t> byteAt(QByteArrayView digits)
{
    const int high = hexDigit(static_cast<unsigned char>(digits[0]));
    const int low = hexDigit(static_cast<unsigned char>(digits[1]));
    if (high < 0 || low < 0)
        return std::nullopt;
    return static_cast<std::uint8_t>(high * 16 + low);
}

bool isRecord(QByteArrayView line)
{
    return line.size() >= 2 && line[0] == 'S' && line[1] >= '0' && line[1] <= '9';
}

// The checksum of @p bytes without the last one, which holds it.
std::uint8_t checksum(std::uint8_t count, std::span<const std::uint8_t> bytes)
{
    const unsigned sum = std::accumulate(bytes.begin(), bytes.end() - 1, unsigned{count});
    return static_cast<std::uint8_t>(~sum & 0xFFU);
}

// The record's fault; its line is left to the caller. What stands behind the bytes counted is no
// part of the record.
std::optional<RecordFault> faultOf(QByteArrayView line)
{
    RecordFault fault;
    fault.isData = line[1] >= '1' && line[1] <= '3';
    fault.kind = RecordFault::Kind::TooShort;
    if (line.size() < 4)
        return fault;
    const auto count = byteAt(line.sliced(2));
    if (count && (*count == 0 || line.size() < 4 + 2 * qsizetype{*count}))
        return fault;

    fault.kind = RecordFault::Kind::NotHexadecimal;
    if (!count)
        return fault;
    std::array<std::uint8_t, 255> bytes{};
    for (std::size_t i = 0; i < *count; ++i) {
        const auto byte = byteAt(line.sliced(4 + 2 * static_cast<qsizetype>(i)));
        if (!byte)
            return fault;
        bytes.at(i) = *byte;
    }

    fault.kind = RecordFault::Kind::Checksum;
    fault.expected = checksum(*count, std::span(bytes).first(*count));
    fault.found = bytes.at(*count - 1U);
    return fault.expected == fault.found ? std::nullopt : std::optional(fault);
}

// Nearly all records have the usual form and are right; those need no closer look.
bool isRight(DecodedRecord& record, QByteArrayView line)
{
    const auto* text = reinterpret_cast<const std::uint8_t*>(line.data());
    if (!record.decode({text, static_cast<std::size_t>(line.size())}, {text[0], text[1]}))
        return false;
    const auto bytes = record.bytes();
    return !bytes.empty() &&
           checksum(static_cast<std::uint8_t>(bytes.size()), bytes) == bytes.back();
}

} // namespace

QString RecordFault::reason() const
{
    switch (kind) {
    case Kind::Checksum:
        return u"the record's checksum is wrong"_s;
    case Kind::TooShort:
        return u"the record is shorter than its count says"_s;
    default:
        return u"the record holds something else than hexadecimal digits"_s;
    }
}

std::vector<RecordFault> checkRecords(TextLines& lines)
{
    std::vector<RecordFault> faults;
    DecodedRecord record;
    while (lines.next()) {
        const QByteArrayView line = lines.line();
        if (!isRecord(line) || isRight(record, line))
            continue;
        if (auto fault = faultOf(line)) {
            fault->line = lines.number();
            faults.push_back(*fault);
        }
    }
    return faults;
}

} // namespace fldc
