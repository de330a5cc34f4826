#pragma once

#include "certificate/Outcome.h"
#include "history/StoreChoice.h"

#include <QJsonObject>

#include <functional>
#include <optional>

namespace fldc::cli {

struct Context;

/// The store that --store names, else the variable FLDC_STORE, else the setting History (True or
/// nothing: SQLite in the user's data folder; False: none). Without a data folder there is none
/// either, which is said on standard error. Returns an outcome (wrong usage) for a --store or
/// variable that can't be read; a setting that can't be is said on standard error.
[[nodiscard]] std::optional<Outcome> chooseStore(Context& context, history::ChosenStore& store);

/// Called with the certificate of a run whose result is known: puts the record into the spool, and
/// has it delivered by another process once the result was told. Never throws; what fails is said
/// on standard error and changes nothing else.
using Recorder = std::function<void(const QJsonObject& certificate)>;
/// Empty without a store.
[[nodiscard]] Recorder recorderOf(Context& context, const history::ChosenStore& store);

} // namespace fldc::cli
