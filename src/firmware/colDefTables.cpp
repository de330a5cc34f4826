#include "firmware/colDefTables.h"

#include "platform/PlatformFailure.h"

namespace fldc {

std::int32_t colDefTables::Add(std::int32_t lngStartAddress)
{
    m_tables.push_back({QString::number(lngStartAddress), 0, std::make_shared<colDataBlocks>()});
    return 0;
}

void colDefTables::SetLength(std::int32_t lngNewLength)
{
    if (m_tables.empty())
        throw PlatformFailure(FailureNumber::IndexOutOfRange);
    m_tables.back().Length = lngNewLength;
}

const DataDefinition& colDefTables::at(std::int32_t index) const
{
    if (index < 0 || index >= Count())
        throw PlatformFailure(FailureNumber::InvalidArgument);
    return m_tables[static_cast<std::size_t>(index)];
}

} // namespace fldc
