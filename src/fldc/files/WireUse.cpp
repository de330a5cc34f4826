#include "fldc/files/WireUse.h"

#include "firmware/clsFile.h"
#include "protocol/wire/Frames.h"

namespace fldc::cli {

namespace {

// Code, word count and checksum of a frame; the address in an address frame; AF AF in answer.
constexpr std::int64_t frameBytes = 4;
constexpr std::int64_t addressBytes = 4;
constexpr std::int64_t answerBytes = 2;

WireUse wireUseOf(const colDataBlocks& data)
{
    WireUse use;
    use.dataBytes = data.CompressedCount() > 0 ? data.CompressedCount() : std::ssize(data.bytes());
    use.frames = 1 + (use.dataBytes + maximumFrameData - 1) / maximumFrameData;
    use.lineBytes = use.frames * (frameBytes + answerBytes) + addressBytes + use.dataBytes;
    return use;
}

} // namespace

WireUse& WireUse::operator+=(const WireUse& other)
{
    frames += other.frames;
    dataBytes += other.dataBytes;
    lineBytes += other.lineBytes;
    return *this;
}

WireUse wireUseOf(const clsFile& image)
{
    WireUse use;
    const auto tables = image.Definitiontables();
    for (std::int32_t i = 0; i < tables->Count(); ++i)
        use += wireUseOf(*tables->Datablocks(i));
    return use;
}

} // namespace fldc::cli
