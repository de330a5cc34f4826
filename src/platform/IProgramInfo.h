#pragma once

#include <QString>
#include <QStringList>

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

    /// The program's folder, which holds the help; no separator at its end, nor at those below.
    [[nodiscard]] virtual QString folder() const = 0;
    /// Folder of the logs; made when it is missing.
    [[nodiscard]] virtual QString logFolder() const { return folder(); }
    /// Folders of the boot files; a file in an earlier one hides that of its name in a later one.
    [[nodiscard]] virtual QStringList bootFolders() const { return {folder()}; }
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
