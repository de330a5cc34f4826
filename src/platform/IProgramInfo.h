#pragma once

#include <QString>

#include <chrono>
#include <cstdint>

namespace fldc {

struct ProgramVersion {
    int major = 0;
    int minor = 0;
    int revision = 0;
};

class IProgramInfo {
public:
    virtual ~IProgramInfo() = default;

    /// Folder that holds boot files, logs and help; no separator at its end.
    [[nodiscard]] virtual QString folder() const = 0;
    /// The application's title, shown by message boxes.
    [[nodiscard]] virtual QString title() const = 0;
    [[nodiscard]] virtual ProgramVersion version() const = 0;
    /// Identifier of the calling thread.
    [[nodiscard]] virtual std::uint64_t threadId() const = 0;
    /// Whether windows appear on a screen.
    [[nodiscard]] virtual bool screenPresent() const = 0;
    /// Whether the program runs in the foreground of a terminal, where a user sees it and can end
    /// it.
    [[nodiscard]] virtual bool userAtTerminal() const = 0;
    /// How long an operation without a user waits for the radio to be power-cycled.
    [[nodiscard]] virtual std::chrono::milliseconds powerCycleLimit() const = 0;
};

} // namespace fldc
