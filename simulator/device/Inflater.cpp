#include "device/Inflater.h"

#include <array>
#include <new>

namespace simulator {

Inflater::Inflater()
{
    if (inflateInit(&m_stream) != Z_OK)
        throw std::bad_alloc();
}

Inflater::~Inflater()
{
    inflateEnd(&m_stream);
}

void Inflater::restart()
{
    inflateReset(&m_stream);
}

Inflater::Outcome Inflater::feed(ByteView part, Bytes& plain)
{
    std::array<std::uint8_t, 4096> room{};
    m_stream.next_in = const_cast<Bytef*>(part.data()); // zlib does not write to it
    m_stream.avail_in = static_cast<uInt>(part.size());
    int result = Z_OK;
    do {
        m_stream.next_out = room.data();
        m_stream.avail_out = static_cast<uInt>(room.size());
        result = inflate(&m_stream, Z_NO_FLUSH);
        plain.insert(plain.end(), room.begin(), room.end() - m_stream.avail_out);
    } while (result == Z_OK && (m_stream.avail_in > 0 || m_stream.avail_out == 0));
    if (result == Z_OK || result == Z_BUF_ERROR)
        return Outcome::MoreWanted;
    const std::size_t left = m_stream.avail_in;
    const bool padded = left == 0 || (left == 1 && part.back() == 0);
    return result == Z_STREAM_END && padded ? Outcome::StreamEnded : Outcome::Broken;
}

} // namespace simulator
