#pragma once

#include "history/Spool.h"
#include "history/StoreChoice.h"

#include <QProcess>
#include <QStringList>

#include <chrono>
#include <functional>

namespace fldc::history {

/// How keeping a record went.
struct Kept {
    bool isKept = false;
    QStringList remarks; ///< for people; none when all is well
};

/// Puts a record of a run into the spool of @p store, which has an address. Takes as long as a file
/// that is written safely; never throws.
[[nodiscard]] Kept keep(const ChosenStore& store, const QJsonObject& certificate) noexcept;

/// Makes @p process ready to deliver what waits for @p store, by this same program called with
/// @p arguments. A process of its own, so that nothing that a database does or fails to do reaches
/// a radio; the store's address, which may hold a password, is in its environment (storeVariable),
/// where no other user can read it.
void prepareDelivery(QProcess& process, const ChosenStore& store, const QStringList& arguments);

inline constexpr const char* storeVariable = "FLDC_STORE";

/// Delivers what waits for @p store; Database says how long @p patience is.
[[nodiscard]] Spool::Delivery deliver(const ChosenStore& store, std::chrono::milliseconds patience,
                                      const std::function<bool()>& wantsEnd);

} // namespace fldc::history
