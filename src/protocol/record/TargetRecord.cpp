#include "protocol/record/TargetRecord.h"

#include "firmware/colDataBlocks.h"
#include "firmware/colDefTables.h"
#include "protocol/FlashPlan.h"

namespace fldc {

namespace {

// As GetNextChunk hands them out: padded to an even number.
std::int32_t wireBytes(const colDataBlocks& data, bool compressed)
{
    return compressed ? data.CompressedCount() : data.Count() + data.Count() % 2;
}

} // namespace

TargetRecord::TargetRecord(const session::Teller& teller, const colDefTables& tables)
    : m_teller(teller), m_tables(tables)
{
}

void TargetRecord::tableBegun(std::int32_t index, bool compressed)
{
    if (!m_teller.heard())
        return;
    const DataDefinition run = m_tables.Item(index);
    const colDataBlocks& data = *run.Datablocks;
    const bool expected = !m_plainOnly && data.CompressedCount() > 0;
    if (compressed != expected)
        m_plainOnly = !compressed;
    if (compressed != expected || m_total == 0)
        m_total = m_bytes + bytesFrom(index);
    m_teller.tell(session::TableBegun{static_cast<std::uint32_t>(runAddress(run)), data.Count(),
                                      wireBytes(data, compressed), compressed});
}

void TargetRecord::frameAnswered(std::int64_t bytes)
{
    m_bytes += bytes;
    if (m_total != 0)
        m_teller.tell(session::DataProgress{m_bytes, m_total});
}

std::int64_t TargetRecord::bytesFrom(std::int32_t index) const
{
    std::int64_t bytes = 0;
    for (std::int32_t i = index; i < m_tables.Count(); ++i) {
        const auto data = m_tables.Datablocks(i);
        bytes += wireBytes(*data, !m_plainOnly && data->CompressedCount() > 0);
    }
    return bytes;
}

} // namespace fldc
