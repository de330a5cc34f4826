#pragma once

#include <QByteArrayView>

#include <algorithm>
#include <cstdint>
#include <span>

namespace fldc {

/// The lines of a text, in order. A line ends at a carriage return, a line feed, or both in that
/// order; the end of the text ends the last one. The text must outlive the object.
class TextLines {
public:
    explicit TextLines(std::span<const std::uint8_t> text) : m_rest(text), m_size(text.size()) {}

    /// Moves on to the next line; false when the text has ended.
    [[nodiscard]] bool next()
    {
        if (m_rest.empty())
            return false;
        const auto isLineEnd = [](std::uint8_t c) { return c == '\r' || c == '\n'; };
        take(static_cast<std::size_t>(std::ranges::find_if(m_rest, isLineEnd) - m_rest.begin()));
        return true;
    }
    /// The present line without its end.
    [[nodiscard]] QByteArrayView line() const { return m_line; }
    /// Number of the present line, from 1; 0 before the first.
    [[nodiscard]] qint64 number() const { return m_number; }
    /// The text behind the present line.
    [[nodiscard]] std::span<const std::uint8_t> rest() const { return m_rest; }
    /// How much of the text is behind, from 0 to 1.
    [[nodiscard]] double share() const
    {
        return m_size == 0 ? 1
                           : 1 - static_cast<double>(m_rest.size()) / static_cast<double>(m_size);
    }
    /// Makes the next @p length bytes the present line. They hold no line end, and a line end or
    /// the end of the text follows them.
    void take(std::size_t length)
    {
        m_line = QByteArrayView(m_rest.data(), static_cast<qsizetype>(length));
        m_rest = m_rest.subspan(length);
        if (!m_rest.empty()) {
            const bool two = m_rest.size() > 1 && m_rest[0] == '\r' && m_rest[1] == '\n';
            m_rest = m_rest.subspan(two ? 2 : 1);
        }
        ++m_number;
    }

private:
    std::span<const std::uint8_t> m_rest;
    std::size_t m_size;
    QByteArrayView m_line;
    qint64 m_number = 0;
};

} // namespace fldc
