#pragma once

#include <QString>

#include <cstdint>

namespace fldc {

/// A reply of the radio as it arrives byte by byte, read as 16-bit words. Words inside a record
/// (header byte 43, then a count of data words) are data whatever they say.
class ReplyWords {
public:
    /// @p terminator: the word that ends the reply, as 4 hex digits.
    explicit ReplyWords(QStringView terminator) : m_terminator(terminator) {}

    /// Takes one byte. True when it completed a busy word.
    bool take(std::uint8_t byte);
    [[nodiscard]] bool terminated() const { return m_terminated; }
    /// The terminator has come, or a record is complete.
    [[nodiscard]] bool finished() const { return m_terminated || m_recordComplete; }
    [[nodiscard]] const QString& text() const { return m_text; }

private:
    QStringView m_terminator;
    QString m_text;
    QString m_word;
    std::uint32_t m_wordsRemaining = 0; ///< of the record that is being read
    bool m_recordComplete = false;
    bool m_terminated = false;
};

/// A reply read as a plain run of bytes up to a marker, which may be found at any digit.
class ReplyBytes {
public:
    /// @p marker: hex digits.
    explicit ReplyBytes(QStringView marker) : m_marker(marker) {}

    /// Takes one byte. True when it completed a busy mark, behind which the search starts anew.
    bool take(std::uint8_t byte);
    [[nodiscard]] bool finished() const { return m_found; }
    [[nodiscard]] const QString& text() const { return m_text; }

private:
    QStringView m_marker;
    QString m_text;
    qsizetype m_searchFrom = 0;
    bool m_found = false;
};

} // namespace fldc
