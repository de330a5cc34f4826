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

    // For the component's own use: units that are not the file's own.
    bool padBefore = false; ///< the run begins with a pad unit
    bool padAfter = false;  ///< the run ends with a pad unit, which Length counts
};

/// The runs of an image in the order of the file. Indexes count from 0; one outside 0 to Count - 1
/// fails with PlatformFailure (invalid argument, 5).
class colDefTables {
public:
    /// Appends a run with length 0 and new, empty data. Always returns 0.
    std::int32_t Add(std::int32_t lngStartAddress);
    /// Appends a run that is complete.
    void Append(const DataDefinition& run) { m_tables.push_back(run); }
    /// The run added last begins, or ends, with a pad unit; fails with 9 when there is none.
    void SetPadBefore() { last().padBefore = true; }
    void SetPadAfter() { last().padAfter = true; }
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
    [[nodiscard]] DataDefinition& last();

    std::vector<DataDefinition> m_tables;
};

} // namespace fldc
