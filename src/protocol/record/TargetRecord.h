#pragma once

#include "session/Listener.h"

#include <cstdint>

namespace fldc {

class colDefTables;

/// Tells of the data of one target as they go out; nothing while nobody listens.
class TargetRecord {
public:
    /// @p tables: all that will be written; they outlive this.
    TargetRecord(const session::Teller& teller, const colDefTables& tables);

    /// The radio took the address of table @p index (from 0), whose data follow in this form.
    void tableBegun(std::int32_t index, bool compressed);
    /// It took a frame of @p bytes.
    void frameAnswered(std::int64_t bytes);

private:
    [[nodiscard]] std::int64_t bytesFrom(std::int32_t index) const;

    const session::Teller& m_teller;
    const colDefTables& m_tables;
    bool m_plainOnly = false; ///< the radio does not take compressed data
    std::int64_t m_bytes = 0;
    std::int64_t m_total = 0; ///< 0 until the first table is begun
};

} // namespace fldc
