#include "firmware/colDefTables.h"

#include "platform/PlatformFailure.h"

namespace fldc {

std::int32_t colDefTables::Add(std::int32_t lngStartAddress)
{
    m_tables.push_back({.Address = QString::number(lngStartAddress),
                        .Length = 0,
                        .Datablocks = std::make_shared<colDataBlocks>()});
    return 0;
}

void colDefTables::SetLength(std::int32_t lngNewLength)
{
    last().Length = lngNewLength;
}

DataDefinition& colDefTables::last()
{
    if (m_tables.empty())
        throw PlatformFailure(FailureNumber::IndexOutOfRange);
    return m_tables.back();
}

const DataDefinition& colDefTables::at(std::int32_t index) const
{
    if (index < 0 || index >= Count())
        throw PlatformFailure(FailureNumber::InvalidArgument);
    return m_tables[static_cast<std::size_t>(index)];
}

} // namespace fldc
