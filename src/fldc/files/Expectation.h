#pragma once

#include "session/Events.h"

#include <QJsonArray>
#include <QJsonObject>

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace fldc::cli {

struct InputFile;

/// The components that a report has told of (`configuration.components`), from what `fldc report
/// --json` wrote: the last configuration of the file. Nothing when there is none, or one that is
/// not whole.
[[nodiscard]] std::optional<std::vector<session::Component>> readExpectation(const InputFile& file);

/// A component that is not as it was expected. Of one that is missing `found` is empty, of one that
/// is too many `expected`.
struct Difference {
    std::optional<session::Component> expected;
    std::optional<session::Component> found;
};

/// Compares by what identifies a component (its identifier without version, network and device),
/// whatever the order: version and status must be the same. In the order of @p expected, then of
/// @p found.
[[nodiscard]] std::vector<Difference> differences(std::span<const session::Component> expected,
                                                  std::span<const session::Component> found);

} // namespace fldc::cli
