#pragma once

#include "fldc/output/ProgressView.h"
#include "fldc/process/OutputStream.h"
#include "session/Narrator.h"

#include <QString>

#include <vector>

namespace fldc::cli {

struct BoardLine {
    enum class Tone { Plain, Good, Bad };
    QString text;
    Tone tone = Tone::Plain;
};

/// Standard error, for people: what happened, hints, notes and the progress. On a terminal texts
/// have colours, unless NO_COLOR is set or the terminal is a dumb one.
class Terminal {
public:
    explicit Terminal(int descriptor);

    /// "fldc: what happened", and "hint: what to do" when there is a hint.
    void complain(const QString& what, const QString& hint = {});
    /// A line of its own.
    void note(const QString& text);
    void show(const Progress& progress);
    /// Draws lines that stay below everything else, over the last ones; those beyond boardRows()
    /// are left out, but for the last. Nothing where they can't be drawn over.
    void showBoard(const std::vector<BoardLine>& lines);
    [[nodiscard]] std::size_t boardRows() const;
    /// Behind the last text: as OutputStream.
    bool finish(int wakeDescriptor, bool isEnding);

    [[nodiscard]] bool isTerminal() const { return m_stream.isTerminal(); }
    /// Ends a progress line or a board that is open, for somebody else's text.
    void endLine();

private:
    [[nodiscard]] QString coloured(QStringView label, int colour) const;
    [[nodiscard]] QString eraseBoard();
    void write(const QString& text);

    OutputStream m_stream;
    bool m_isCapable; ///< understands the control sequences of a terminal
    bool m_hasColours;
    ProgressView m_progress;
    std::size_t m_boardLines = 0;
};

using session::printable;
/// The same for a name in the middle of a text: without line ends too.
[[nodiscard]] QString oneLine(const QString& name);

} // namespace fldc::cli
