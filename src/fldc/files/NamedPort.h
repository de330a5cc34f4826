#pragma once

#include "certificate/Outcome.h"

#include <QString>

#include <optional>

namespace fldc::cli {

struct Options;

/// The port of the command line.
struct NamedPort {
    QString name;   ///< "COM3" for a numbered port, else as it was given; empty for none
    QString device; ///< path of its device; empty when the name means none
};

/// Finds what the command line's PORT means ("-" and, where @p needed, none: the variable
/// FLDC_PORT). Looks only; opens nothing. Returns the outcome that ends the command when it means
/// nothing: exit code 4, or 1 when none was named that is needed.
[[nodiscard]] std::optional<Outcome> namePort(const Options& options, bool needed, NamedPort& port);

/// @p outcome of a command on @p port; where the port itself was the obstacle, with what can be
/// seen of it now (no rights, in use by whom) and what to do about that.
[[nodiscard]] Outcome explainPort(Outcome outcome, const NamedPort& port);

} // namespace fldc::cli
