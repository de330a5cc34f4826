#pragma once

#include <QString>

#include <cstdint>

namespace fldc {

// What the radio says, as it arrives. A busy mark (AE AE) starts the time-out of a read anew;
// bytesKeepAlive tells whether any other byte does so too.

//
// Three readings of the same stream, because the radio's answers have three shapes: frames and
// records of 16-bit words once it is in upgrade mode (ReplyWords), the text with which it logs on,
// where nothing is aligned (ReplyBytes), and the single byte with which it starts (StartUpText).
// None of them waits or knows the time; clsSerial feeds them and decides when to give up.

/// A reply of the radio as it arrives byte by byte, read as 16-bit words. Words inside a record
/// (header byte 43, then a count of data words) are data whatever they say.
class ReplyWords {
public:
    static constexpr bool bytesKeepAlive = true;

    /// @p terminator: the word that ends the reply, as 4 hex digits.
    explicit ReplyWords(QStringView terminator) : m_terminator(terminator) {}

    /// Takes one byte. True when it completed a busy word.
    bool take(std::uint8_t byte);
    [[nodiscard]] bool terminated() const { return m_terminated; }
    /// The terminator has come, or a record is complete.
    [[nodiscard]] bool finished() const { return m_terminated || m_recordComplete; }
    [[nodiscard]] const QString& text() const { return m_text; }
    /// text() and the first half of a word that is not complete.
    [[nodiscard]] QString received() const { return m_text + m_word; }

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
    static constexpr bool bytesKeepAlive = true;

    /// @p marker: hex digits.
    explicit ReplyBytes(QStringView marker) : m_marker(marker) {}

    /// Takes one byte. True when it completed a busy mark, behind which the search starts anew.
    bool take(std::uint8_t byte);
    [[nodiscard]] bool finished() const { return m_found; }
    [[nodiscard]] const QString& text() const { return m_text; }
    [[nodiscard]] const QString& received() const { return m_text; }

private:
    QStringView m_marker;
    QString m_text;
    qsizetype m_searchFrom = 0;
    bool m_found = false;
};

/// What a radio says when it starts: 56 or 76, found at any digit.
class StartUpText {
public:
    static constexpr bool bytesKeepAlive = false;

    /// @p doneWordToo: the word AF AF is an answer as well.
    explicit StartUpText(bool doneWordToo) : m_doneWordToo(doneWordToo) {}

    /// Takes one byte. True when it completed a busy mark, before which nothing counts.
    bool take(std::uint8_t byte);
    [[nodiscard]] bool finished() const { return m_answered; }
    /// The radio needs the upgrade application, unless 76 is all it said.
    [[nodiscard]] bool applicationRequired() const { return m_text != u"76"; }
    /// Behind the last busy mark.
    [[nodiscard]] const QString& received() const { return m_text; }

private:
    bool m_doneWordToo;
    QString m_text;
    bool m_answered = false;
};

} // namespace fldc
