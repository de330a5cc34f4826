#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace fldc::cli {

/// How far the writing of a target is.
struct Progress {
    QString file; ///< for people: the file's name, or its tag
    std::int32_t percent = 0;
    double bytesPerSecond = 0;
    std::optional<double> secondsLeft;
    std::int32_t baud = 0; ///< of the line
};

/// "[######......]", and a time as people read it.
[[nodiscard]] QString barText(std::int32_t percent);
[[nodiscard]] QString timeText(double seconds);

/// The text that shows progress: on a terminal one line, drawn over again and again; elsewhere a
/// line for every ten per cent. Holds no descriptor: it hands out what is to be written.
class ProgressView {
public:
    explicit ProgressView(bool redraws) : m_redraws(redraws) {}

    /// What to write for @p progress, on a terminal of that width; may be nothing.
    [[nodiscard]] QString next(const Progress& progress, int columns);
    /// What ends the line that is open; nothing when none is.
    [[nodiscard]] QString end();

private:
    bool m_redraws;
    bool m_lineOpen = false;
    QString m_file;
    std::int32_t m_tens = -1;
    std::int32_t m_percent = 0;
};

} // namespace fldc::cli
