#pragma once

#include <QByteArray>

namespace fldc::bench {

/// @p size bytes that are to a compressor what machine code is: few instructions often, many
/// seldom, some with an operand. zlib makes a bit less than half of it, about as fast as of real
/// code. The same bytes at every call.
[[nodiscard]] QByteArray codeLikeBytes(qsizetype size);

/// A firmware file that holds @p payload from address 0 on: an S0 record with the text @p header,
/// S3 records of 32 bytes, CR LF, an S7 record. Addresses count units of @p unitBytes bytes.
[[nodiscard]] QByteArray sRecordText(const QByteArray& payload, const QByteArray& header,
                                     int unitBytes);

} // namespace fldc::bench
