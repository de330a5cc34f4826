#pragma once

#include <QByteArray>

#include <functional>

namespace fldc::cli {

/// One of the standard outputs, written in whole lines. A radio never waits for a reader: what the
/// reader does not take at once is kept and written before the next text, or by finish().
///
/// A text goes out in one write call, but for texts longer than a pipe takes at once (4096 bytes).
class OutputStream {
public:
    /// @p onLost is called once, when the output turns out to be unwritable: its reader is gone, or
    /// the disk is full. Later texts are thrown away.
    explicit OutputStream(int descriptor, std::function<void()> onLost = {});

    /// Never throws and never blocks on a terminal or a pipe.
    void write(const QByteArray& text) noexcept;
    /// Notices a reader that has gone while there is nothing to write.
    void checkReader() noexcept;
    /// Writes what is left, waiting for the reader. False when @p wakeDescriptor became readable
    /// first (a signal: nobody wants the rest). @p isEnding: a signal has ended the run already;
    /// then also false when the reader takes nothing for 5 seconds.
    bool finish(int wakeDescriptor, bool isEnding) noexcept;

    [[nodiscard]] bool isTerminal() const { return m_isTerminal; }
    [[nodiscard]] int descriptor() const { return m_descriptor; }
    /// Why it can't be written, an errno; 0 while it can.
    [[nodiscard]] int error() const { return m_error; }

private:
    bool writeWhatFits();
    void lose(int error);

    int m_descriptor;
    std::function<void()> m_onLost;
    bool m_isTerminal;
    bool m_isFile;
    QByteArray m_pending;
    qsizetype m_written = 0; ///< of m_pending
    int m_error = 0;
};

} // namespace fldc::cli
