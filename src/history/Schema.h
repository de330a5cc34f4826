#pragma once

#include <span>

namespace fldc::history {

/// A step from one version of the tables to the next. "TEXT_KEY" stands for the type of a text that
/// is compared byte by byte. Both databases take the statements; docs/history.md explains the
/// tables.
struct Migration {
    int version; ///< that the tables have afterwards; steps count up by 1 from 1
    std::span<const char* const> statements;
};

[[nodiscard]] std::span<const Migration> migrations();

} // namespace fldc::history
