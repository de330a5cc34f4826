#pragma once

#include "protocol/wire/Commands.h"
#include "session/Listener.h"

#include <QByteArray>
#include <QStringView>

#include <cstdint>

namespace fldc {

class colDefTables;

// What the conversations tell of themselves. All of it does nothing while nobody listens, and
// leaves the last error alone.

/// @p command was given to the line. Nothing is told of one that changes nothing in the radio.
void tellSent(const session::Teller& teller, Command command);
/// What came of @p command, sent with @p data: the last error says it.
void tellAnswered(const session::Teller& teller, Command command, const QByteArray& data = {});
/// The same for the reset, which is no command.
void tellResetSent(const session::Teller& teller);
void tellResetAnswered(const session::Teller& teller);
/// @p command is about to be sent for the @p attempt-th time, because of the last error.
void tellRepeated(const session::Teller& teller, Command command, int attempt);
/// @p reply (hex text) to @p frame could not be read.
void tellUnreadable(const session::Teller& teller, QStringView reply, const QByteArray& frame);

/// Tells of the data of one target as they go out.
class TargetRecord {
public:
    /// @p tables: all that will be written; they outlive this.
    TargetRecord(const session::Teller& teller, const colDefTables& tables);

    /// The radio took the address of table @p index (from 0), whose data follow in this form.
    void tableBegun(std::int32_t index, bool compressed);
    /// It took a frame of @p bytes.
    void frameAnswered(qsizetype bytes);

private:
    [[nodiscard]] std::int64_t bytesFrom(std::int32_t index) const;

    const session::Teller& m_teller;
    const colDefTables& m_tables;
    bool m_plainOnly = false; ///< the radio does not take compressed data
    std::int64_t m_bytes = 0;
    std::int64_t m_total = 0; ///< 0 until the first table is begun
};

} // namespace fldc
