#include "port/ReplyText.h"

#include "shared/HexText.h"

#include <algorithm>
#include <utility>

namespace fldc {

namespace {

constexpr QStringView busyMark = u"AEAE";
constexpr QStringView recordHeader = u"43";

// True when @p text holds @p mark and the byte taken last completed it: a mark may begin in the
// middle of a byte, but none can end before the last two digits that was not found before.
bool endsInMark(QStringView text, QStringView mark)
{
    return text.last(std::min(text.size(), mark.size() + 1)).contains(mark);
}

} // namespace

bool ReplyWords::take(std::uint8_t byte)
{
    appendHex(m_word, byte);
    if (m_word.size() < 4)
        return false;

    const QString word = std::exchange(m_word, {});
    m_text += word;
    if (m_wordsRemaining > 0) {
        --m_wordsRemaining;
        m_recordComplete = m_wordsRemaining == 0;
        return false;
    }
    if (word.startsWith(recordHeader)) {
        m_wordsRemaining = readHex(QStringView(word).last(2)).value_or(0) + 1; // and its checksum
        return false;
    }
    m_terminated = word == m_terminator;
    return !m_terminated && word == busyMark;
}

bool ReplyBytes::take(std::uint8_t byte)
{
    appendHex(m_text, byte);
    const QStringView searched = QStringView(m_text).sliced(m_searchFrom);
    if (endsInMark(searched, busyMark)) {
        m_searchFrom = m_text.size();
        return true;
    }
    m_found = endsInMark(searched, m_marker);
    return false;
}

bool StartUpText::take(std::uint8_t byte)
{
    appendHex(m_text, byte);
    if (endsInMark(m_text, busyMark)) {
        m_text.clear();
        return true;
    }
    m_answered = endsInMark(m_text, u"56") || endsInMark(m_text, u"76") ||
                 (m_doneWordToo && endsInMark(m_text, u"AFAF"));
    return false;
}

} // namespace fldc
