#pragma once

#include "history/StoreAddress.h"

#include <optional>

namespace fldc::history {

/// Where a program keeps its records.
struct ChosenStore {
    QString folder;                      ///< of the user's history
    std::optional<StoreAddress> address; ///< none: no history is kept
    QString text;                        ///< of the address, as another program takes it
    QString failure;                     ///< why there is none
};

/// The store that @p text names; SQLite in the user's data folder when it is empty. There is none
/// without a data folder, which the spool needs, too.
[[nodiscard]] ChosenStore chooseStore(const QString& text);

} // namespace fldc::history
