#pragma once

#include "firmware/colDataBlocks.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

namespace fldc {

/// One run of contiguous addresses of a firmware image. A plain record, returned by value; the data
/// are shared, not copied.
struct DataDefinition {
    QString Address;         ///< start address in units, decimal digits, signed
    std::int32_t Length = 0; ///< number of units, pad units included; 0 until set
    std::shared_ptr<colDataBlocks> Datablocks;
};

/// The runs of an image in the order of the file. Indexes count from 0; one outside 0 to Count - 1
/// fails with PlatformFailure (invalid argument, 5).
class colDefTables {
public:
    /// Appends a run with length 0 and new, empty data. Always returns 0.
    std::int32_t Add(std::int32_t lngStartAddress);
    [[nodiscard]] DataDefinition Item(std::int32_t lngIndex) const { return at(lngIndex); }
    [[nodiscard]] std::int32_t Count() const { return static_cast<std::int32_t>(m_tables.size()); }
    /// Sets the length of the run added last; fails with 9 (index out of range) when there is none.
    void SetLength(std::int32_t lngNewLength);
    [[nodiscard]] std::shared_ptr<colDataBlocks> Datablocks(std::int32_t lngIndex) const
    {
        return at(lngIndex).Datablocks;
    }
    [[nodiscard]] QString Address(std::int32_t lngIndex) const { return at(lngIndex).Address; }
    [[nodiscard]] std::int32_t Length(std::int32_t lngIndex) const { return at(lngIndex).Length; }

private:
    [[nodiscard]] const DataDefinition& at(std::int32_t index) const;

    std::vector<DataDefinition> m_tables;
};

} // namespace fldc
