#include "session/LooksLike.h"

#include <algorithm>

namespace fldc::session {

namespace {

// One byte of a frame may be chance: FF is what noise looks like, and how many frames end.
constexpr qsizetype leastEcho = 2;
constexpr qsizetype leastText = 2;

bool isText(char character)
{
    return (character >= ' ' && character <= '~') || character == '\r' || character == '\n' ||
           character == '\t';
}

} // namespace

LooksLike looksLike(const QByteArray& bytes, const QByteArray& lastSent)
{
    const bool whole = !lastSent.isEmpty() && bytes.startsWith(lastSent);
    const bool part =
        bytes.size() >= leastEcho && (lastSent.startsWith(bytes) || lastSent.endsWith(bytes));
    if (whole || part)
        return LooksLike::OwnEcho;
    if (bytes.size() >= leastText && std::ranges::all_of(bytes, isText))
        return LooksLike::Text;
    return LooksLike::Other;
}

UnexpectedBytes unexpected(const QByteArray& bytes, const QByteArray& lastSent)
{
    return {bytes.left(unexpectedLimit), looksLike(bytes, lastSent)};
}

} // namespace fldc::session
