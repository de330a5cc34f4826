#pragma once

#include "protocol/wire/Commands.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace fldc {

// The forms in which bytes travel between program and radio.
//
// Command frame: code (1 byte), N = number of 16-bit data words (1), data (2N), checksum (2).
// Record of a reply, as hex text: header byte, M (2 digits each), M data words, checksum (4
// digits). Checksum of both: 65535 minus the sum, modulo 65536, of the big-endian words before it.

/// Bytes of data that one frame can carry.
inline constexpr qsizetype maximumFrameData = 510;

/// Writes the checksum of the bytes @p intStart to @p intEnd (both included, an even number of
/// them) into the two bytes after @p intEnd, which must exist.
void AddChecksum(QByteArray& bytFrame, qsizetype intStart, qsizetype intEnd);

/// The frame of @p command; nothing, and last error 54, when the data have an odd number of bytes
/// or more than one frame holds.
[[nodiscard]] std::optional<QByteArray> buildFrame(Command command, const QByteArray& bytData);

/// Checksum of a hex text as 4 upper-case digits. Last error 0, or 55 (and empty text) when a group
/// of four digits is not hexadecimal.
[[nodiscard]] QString HexChecksum(QStringView strHex);

/// The 4M data digits of one record. On failure nothing, and last error 57 (empty), 54 (length) or
/// 55 (checksum).
[[nodiscard]] std::optional<QString> ExtractRecordData(QStringView strRecord);

/// @p strHex as bytes: length / 2 of them, each from two digits. "0060" gives 00 60.
/// Throws PlatformFailure as hexToBytes does: for odd text and for anything but hexadecimal digits.
[[nodiscard]] QByteArray HexToBytes(QStringView strHex);

/// The characters of @p strText as 16-bit codes, high byte first. "AB" gives 00 41 00 42.
[[nodiscard]] QByteArray textAsWords(QStringView strText);

/// @p value as two bytes, high byte first.
[[nodiscard]] QByteArray wordBytes(std::uint16_t value);

} // namespace fldc
