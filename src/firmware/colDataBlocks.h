#pragma once

#include "firmware/Compression.h"

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <cstdint>
#include <span>

namespace fldc {

/// The bytes of one run of contiguous addresses and, once the run is complete, a zlib-compressed
/// copy of them. Despite its name one growing byte buffer: filled with Add, finished once with
/// CompressData (or FinishUncompressed), then read any number of times.
///
/// Indexes count from 0. Failures are PlatformFailure: invalid argument (5) for the index of a
/// byte, index out of range (9), type mismatch (13), overflow (6) beyond 2 GiB.
class colDataBlocks {
public:
    colDataBlocks();

    /// Appends the bytes written in @p strData, two hexadecimal digits each. Text of odd length
    /// gives length / 2 bytes, halves rounded to the even neighbour; the last byte may then be a
    /// single digit. Fails with 13 at a character that is no hexadecimal digit, and then adds
    /// nothing.
    void Add(QStringView strData);
    /// The byte as two upper-case hexadecimal digits; fails with 5 outside 0 to Count - 1.
    [[nodiscard]] QString Item(std::int32_t lngIndex) const;
    /// Number of bytes added, without padding.
    [[nodiscard]] std::int32_t Count() const { return m_count; }
    /// All bytes added as upper-case hexadecimal text.
    [[nodiscard]] QString GetAllData() const;
    /// The byte array as it is held: before the finish with the unused (zero) room at its end,
    /// after it Count bytes and, when Count is odd, a zero.
    [[nodiscard]] QByteArray data() const { return m_data; }
    /// Size of the compressed bytes, always even; 0 before the finish, -1 when there are none after
    /// it.
    [[nodiscard]] std::int32_t CompressedCount() const { return m_compressedCount; }

    // For the component's own use.

    /// True once CompressData or FinishUncompressed was called: only then is data() all that there
    /// is, and nothing else.
    [[nodiscard]] bool finished() const { return m_compressedCount != 0; }
    /// Add for bytes that need no reading.
    void AddBytes(std::span<const std::uint8_t> bytes);
    /// The byte; fails with 5 outside 0 to Count - 1.
    [[nodiscard]] std::uint8_t ByteAt(std::int32_t lngIndex) const;
    /// What data() returns, in place: valid until the collection changes.
    [[nodiscard]] std::span<const std::uint8_t> bytes() const;
    /// Trims the data, makes the compressed copy and pads both to even sizes with a zero, so that
    /// every chunk of an even length is even. Data that do not get smaller have no compressed copy
    /// (CompressedCount -1). Fails with 9 when Count is 0. Both ways of compression make a zlib
    /// stream (RFC 1950) with a window of at most 32 KiB; that of Zlib has the bytes that zlib's
    /// compress() makes of the data in one call. @p pace is kept by Zlib alone, and more than 4 MiB
    /// are never given to Best; who gives up gets no compressed copy.
    void CompressData(Compression compression = Compression::Zlib, const Pace& pace = {});
    /// The same without a compressed copy: the radio will be sent the plain bytes.
    void FinishUncompressed();

    /// Index of the next byte that GetNextChunk returns.
    [[nodiscard]] std::int32_t ReadPosition() const { return m_readPosition; }
    void setReadPosition(std::int32_t position) { m_readPosition = position; }
    /// Copies the next bytes, at most @p lngLength, to @p abytChunk, sets @p lngLength to their
    /// number and moves on. False at the end of the data, which leaves both arguments alone. Fails
    /// with 9 when compressed bytes are wanted and there are none, and for a position below 0 or a
    /// length below 1.
    [[nodiscard]] bool GetNextChunk(std::int32_t& lngLength, bool blnCompressed,
                                    QByteArray& abytChunk);

private:
    std::uint8_t* roomFor(qsizetype bytes);
    void trim();
    void padToEven();

    QByteArray m_data;
    QByteArray m_compressed;
    std::int32_t m_count = 0;
    std::int32_t m_compressedCount = 0;
    std::int32_t m_readPosition = 0;
};

} // namespace fldc
