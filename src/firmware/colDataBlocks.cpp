#include "firmware/colDataBlocks.h"

#include "platform/PlatformFailure.h"
#include "shared/HexText.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

#include <libdeflate.h>
#include <zlib.h>

namespace fldc {

namespace {

// Room that a collection has beyond its bytes whenever it grows, and that an empty one starts with.
constexpr qsizetype spareRoom = 513;
constexpr qsizetype maximumSize = std::numeric_limits<std::int32_t>::max() - 1;

// Half of a number, halves rounded to the even neighbour: 3 gives 2, 5 gives 2.
constexpr qsizetype halfRoundedToEven(qsizetype number)
{
    return number / 2 + (number % 4 == 3 ? 1 : 0);
}

std::uint8_t byteOf(QStringView digits)
{
    int value = 0;
    for (const QChar digit : digits) {
        const int digitValue = hexDigit(digit.unicode());
        if (digitValue < 0)
            throw PlatformFailure(FailureNumber::TypeMismatch);
        value = value * 16 + digitValue;
    }
    return static_cast<std::uint8_t>(value);
}

// The streams have a destination no larger than the data: what does not get smaller is not worth
// sending, and the stream is then empty.

// Bytes compressed between two looks at the pace: some milliseconds.
constexpr qsizetype sliceSize = qsizetype{64} * 1024;

// libdeflate takes its data in one piece, 0.15 s for a mebibyte, in which nobody is served. More
// than this is no run of addresses in a radio.
constexpr qsizetype bestSize = qsizetype{4} * 1024 * 1024;

// Streams the data through deflate with the parameters of compress(), whose bytes come out however
// the data are sliced.
QByteArray standardStream(const QByteArray& data, const Pace& pace)
{
    QByteArray packed(data.size(), Qt::Uninitialized);
    z_stream stream{};
    if (deflateInit(&stream, Z_DEFAULT_COMPRESSION) != Z_OK)
        return {};
    const std::unique_ptr<z_stream, int (*)(z_stream*)> end(&stream, deflateEnd);
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    int result = Z_OK;
    for (qsizetype at = 0; result == Z_OK && at < data.size(); at += sliceSize) {
        if (at != 0 && !goesOn(pace, static_cast<double>(at) / static_cast<double>(data.size())))
            return {};
        const qsizetype size = std::min(sliceSize, data.size() - at);
        stream.next_in = reinterpret_cast<z_const Bytef*>(const_cast<char*>(data.constData())) + at;
        stream.avail_in = static_cast<uInt>(size);
        result = deflate(&stream, at + size == data.size() ? Z_FINISH : Z_NO_FLUSH);
        if (stream.avail_in != 0)
            break; // no room for what does not get smaller
    }
    packed.truncate(result == Z_STREAM_END ? static_cast<qsizetype>(stream.total_out) : 0);
    return packed;
}

QByteArray bestStream(const QByteArray& data)
{
    constexpr int highestLevel = 12;
    const std::unique_ptr<libdeflate_compressor, void (*)(libdeflate_compressor*)> compressor(
        libdeflate_alloc_compressor(highestLevel), libdeflate_free_compressor);
    if (!compressor)
        return {};
    QByteArray packed(data.size(), Qt::Uninitialized);
    const std::size_t size = libdeflate_zlib_compress(
        compressor.get(), data.constData(), static_cast<std::size_t>(data.size()), packed.data(),
        static_cast<std::size_t>(packed.size()));
    packed.truncate(static_cast<qsizetype>(size));
    return packed;
}

} // namespace

colDataBlocks::colDataBlocks() : m_data(spareRoom, '\0') {}

void colDataBlocks::Add(QStringView strData)
{
    const qsizetype added = halfRoundedToEven(strData.size());
    std::uint8_t* const to = roomFor(added);
    for (qsizetype j = 0; j < added; ++j)
        to[j] = byteOf(strData.mid(2 * j, 2));
    m_count += static_cast<std::int32_t>(added);
}

void colDataBlocks::AddBytes(std::span<const std::uint8_t> bytes)
{
    if (bytes.empty())
        return;
    std::memcpy(roomFor(std::ssize(bytes)), bytes.data(), bytes.size());
    m_count += static_cast<std::int32_t>(bytes.size());
}

// Where @p bytes more bytes go. The array's visible size grows in steps that leave spareRoom zero
// bytes; QByteArray keeps the memory behind it growing geometrically.
std::uint8_t* colDataBlocks::roomFor(qsizetype bytes)
{
    const qsizetype needed = m_count + bytes;
    const qsizetype present = m_data.size();
    const qsizetype capacity = m_count == 0 ? 0 : present;
    if (needed > capacity) {
        if (needed > maximumSize - spareRoom)
            throw PlatformFailure(FailureNumber::Overflow);
        m_data.resize(needed + spareRoom);
        if (m_data.size() > present)
            std::fill(m_data.begin() + present, m_data.end(), '\0');
    }
    return reinterpret_cast<std::uint8_t*>(m_data.data()) + m_count;
}

QString colDataBlocks::Item(std::int32_t lngIndex) const
{
    return hexNumber(ByteAt(lngIndex), 2);
}

QString colDataBlocks::GetAllData() const
{
    return bytesToHex(QByteArray::fromRawData(m_data.constData(), m_count));
}

std::uint8_t colDataBlocks::ByteAt(std::int32_t lngIndex) const
{
    if (lngIndex < 0 || lngIndex >= m_count)
        throw PlatformFailure(FailureNumber::InvalidArgument);
    return static_cast<std::uint8_t>(m_data[lngIndex]);
}

std::span<const std::uint8_t> colDataBlocks::bytes() const
{
    return {reinterpret_cast<const std::uint8_t*>(m_data.constData()),
            static_cast<std::size_t>(m_data.size())};
}

void colDataBlocks::CompressData(Compression compression, const Pace& pace)
{
    trim();
    const QByteArray standard = standardStream(m_data, pace);
    const bool wantsBest = compression == Compression::Best && m_data.size() <= bestSize;
    const QByteArray best = wantsBest ? bestStream(m_data) : QByteArray();
    const bool bestIsShorter =
        !best.isEmpty() && (standard.isEmpty() || best.size() < standard.size());
    if (const QByteArray& shorter = bestIsShorter ? best : standard; !shorter.isEmpty()) {
        m_compressed = shorter;
        if (m_compressed.size() % 2 != 0)
            m_compressed.append('\0');
        m_compressed.squeeze();
        m_compressedCount = static_cast<std::int32_t>(m_compressed.size());
    }
    padToEven();
}

void colDataBlocks::FinishUncompressed()
{
    trim();
    padToEven();
}

void colDataBlocks::trim()
{
    if (m_count == 0)
        throw PlatformFailure(FailureNumber::IndexOutOfRange);
    m_data.resize(m_count);
    m_compressed.clear();
    m_compressedCount = -1;
}

void colDataBlocks::padToEven()
{
    if (m_count % 2 != 0)
        m_data.append('\0');
    m_data.squeeze();
}

bool colDataBlocks::GetNextChunk(std::int32_t& lngLength, bool blnCompressed, QByteArray& abytChunk)
{
    const QByteArray& source = blnCompressed ? m_compressed : m_data;
    if (source.isEmpty() || m_readPosition < 0)
        throw PlatformFailure(FailureNumber::IndexOutOfRange);
    if (m_readPosition >= source.size())
        return false;
    if (lngLength < 1)
        throw PlatformFailure(FailureNumber::IndexOutOfRange);
    abytChunk = source.mid(m_readPosition, lngLength);
    lngLength = static_cast<std::int32_t>(abytChunk.size());
    m_readPosition += lngLength;
    return true;
}

} // namespace fldc
