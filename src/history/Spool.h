#pragma once

#include "history/Record.h"
#include "history/StoreAddress.h"

#include <functional>

namespace fldc::history {

class Database;

/// The folder in which the records of one store wait until it has them. Any number of programs may
/// use it at once; a record that two deliver is kept once, because of its number.
class Spool {
public:
    /// @p folder: that of the user's history.
    Spool(const QString& folder, const StoreAddress& address);

    /// Puts a record in, safely on the disk and whole or not at all. Returns why that failed; empty
    /// when it did not.
    [[nodiscard]] QString put(const Record& record) const;

    struct Delivery {
        qsizetype delivered = 0;
        qsizetype waiting = 0; ///< still
        QString failure;       ///< why; empty when none waits
    };
    /// Gives every record to the store and takes it out; opens the store only when there are any.
    /// A file that holds no record is set aside (".bad"). Ends early after three records that the
    /// store refuses, or when @p wantsEnd.
    [[nodiscard]] Delivery deliver(Database& database, const std::function<bool()>& wantsEnd) const;

    [[nodiscard]] qsizetype waiting() const;
    [[nodiscard]] const QString& folder() const { return m_folder; }

private:
    QString m_folder;
};

} // namespace fldc::history
