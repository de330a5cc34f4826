#include "protocol/PadPlacement.h"

#include "firmware/clsFile.h"
#include "protocol/FlashPlan.h"
#include "radio/colFlashBlocks.h"
#include "shared/LastError.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <utility>
#include <vector>

namespace fldc {

namespace {

constexpr std::uint8_t padByte = 0xFF;

/// Runs of the file that are written as one. Addresses are those of the file's own bytes.
struct Piece {
    std::vector<DataDefinition> runs;
    std::size_t order = 0; ///< place of its first run in the file
    std::int64_t begin = 0;
    std::int64_t end = 0; ///< behind the last byte
    bool padBefore = false;
    bool padAfter = false;
    bool changed = false;

    [[nodiscard]] bool even() const { return (end - begin + (padBefore ? 1 : 0)) % 2 == 0; }
};

Piece pieceOf(const DataDefinition& run, std::size_t order)
{
    Piece piece{.runs = {run}, .order = order, .padBefore = run.padBefore};
    const std::int64_t address = runAddress(run);
    piece.begin = address + (run.padBefore ? 1 : 0);
    piece.end = address + run.Datablocks->Count() - (run.padAfter ? 1 : 0);
    return piece;
}

std::span<const std::uint8_t> ownBytes(const DataDefinition& run)
{
    const auto all = run.Datablocks->bytes();
    const auto before = static_cast<std::size_t>(run.padBefore ? 1 : 0);
    const auto after = static_cast<std::size_t>(run.padAfter ? 1 : 0);
    return all.subspan(before, static_cast<std::size_t>(run.Datablocks->Count()) - before - after);
}

DataDefinition runOf(const Piece& piece)
{
    if (!piece.changed)
        return piece.runs.front();
    const auto data = std::make_shared<colDataBlocks>();
    if (piece.padBefore)
        data->AddBytes(std::array{padByte});
    for (const DataDefinition& run : piece.runs)
        data->AddBytes(ownBytes(run));
    if (piece.padAfter)
        data->AddBytes(std::array{padByte});
    const std::int32_t length = data->Count();
    data->CompressData();
    return {.Address = QString::number(piece.begin - (piece.padBefore ? 1 : 0)),
            .Length = length,
            .Datablocks = data,
            .padBefore = piece.padBefore,
            .padAfter = piece.padAfter};
}

/// Goes through the pieces in the order of their addresses, so that what a pad could collide with
/// is the piece before or behind it.
class PadPlacer {
public:
    PadPlacer(const colFlashBlocks& blocks, BlockNumbers touched, bool evenAddresses)
        : m_blocks(blocks), m_touched(std::move(touched)), m_evenAddresses(evenAddresses)
    {
    }

    [[nodiscard]] bool place(std::vector<Piece> byAddress)
    {
        for (Piece& next : byAddress) {
            if (!m_placed.empty() && !settle(next))
                return false;
            if (!next.runs.empty() && !start(std::move(next)))
                return false;
        }
        return m_placed.empty() || padLast(nullptr) || fail(Code::DataLength);
    }
    [[nodiscard]] std::vector<Piece>& placed() { return m_placed; }

private:
    // The piece placed last gets its pad, before @p next is placed. One that @p next continues may
    // take it in: its runs are gone then.
    [[nodiscard]] bool settle(Piece& next)
    {
        Piece& last = m_placed.back();
        const bool continued = next.begin == last.end;
        const bool coversPad = next.padBefore && next.begin - 1 < last.end;
        if (!coversPad && padLast(&next))
            return true;
        if (!continued)
            return fail(Code::DataLength);
        last.runs.insert(last.runs.end(), next.runs.begin(), next.runs.end());
        last.end = next.end;
        last.order = std::min(last.order, next.order);
        last.changed = true;
        next.runs.clear();
        return true;
    }

    [[nodiscard]] bool start(Piece piece)
    {
        m_occupied = m_placed.empty() ? std::numeric_limits<std::int64_t>::min()
                                      : std::max(m_occupied, endOf(m_placed.back()));
        if (piece.padBefore && !fits(piece.begin - 1))
            return fail(Code::DataLength);
        m_placed.push_back(std::move(piece));
        return true;
    }

    // Gives the piece placed last the pad that it needs, if any; false where it can't.
    [[nodiscard]] bool padLast(const Piece* next)
    {
        Piece& last = m_placed.back();
        last.padAfter = false;
        if (last.even())
            return true;
        const bool freeBehind =
            last.end >= m_occupied && (next == nullptr || last.end < startOf(*next));
        if (freeBehind && isTouched(last.end)) {
            last.padAfter = true;
            return true;
        }
        const bool canMove = !last.padBefore && !m_evenAddresses;
        if (!canMove || !fits(last.begin - 1))
            return false;
        last.padBefore = true;
        last.changed = true;
        return true;
    }

    static std::int64_t startOf(const Piece& piece)
    {
        return piece.begin - (piece.padBefore ? 1 : 0);
    }
    static std::int64_t endOf(const Piece& piece) { return piece.end + (piece.padAfter ? 1 : 0); }

    // Whether a pad in front of the piece placed last would stand there alone.
    [[nodiscard]] bool fits(std::int64_t address) const
    {
        return address >= m_occupied && isTouched(address);
    }
    [[nodiscard]] bool isTouched(std::int64_t address) const
    {
        const auto block = m_blocks.blockAround(address);
        return block && std::ranges::find(m_touched, block->ID()) != m_touched.end();
    }

    const colFlashBlocks& m_blocks;
    BlockNumbers m_touched; ///< blocks that the file's own bytes touch
    bool m_evenAddresses;   ///< every run must begin at an even address
    std::int64_t m_occupied =
        std::numeric_limits<std::int64_t>::min(); ///< behind the pieces before
    std::vector<Piece> m_placed;
};

} // namespace

std::shared_ptr<const colDefTables> placePads(const clsFile& file, const colFlashBlocks& blocks)
{
    const auto tables = file.Definitiontables();
    if (file.intNumberOfBits() != 8)
        return tables;
    std::vector<Piece> pieces;
    BlockNumbers touched;
    for (std::int32_t i = 0; i < tables->Count(); ++i) {
        const Piece piece = pieceOf(tables->Item(i), static_cast<std::size_t>(i));
        if (!addBlocks(piece.begin, piece.end - piece.begin, blocks, touched))
            return nullptr;
        pieces.push_back(piece);
    }
    std::ranges::stable_sort(pieces, {}, &Piece::begin);

    PadPlacer placer(blocks, touched, file.padsOddAddresses());
    if (!placer.place(std::move(pieces)))
        return nullptr;
    std::ranges::sort(placer.placed(), {}, &Piece::order);
    const auto placed = std::make_shared<colDefTables>();
    for (const Piece& piece : placer.placed())
        placed->Append(runOf(piece));
    return placed;
}

} // namespace fldc
