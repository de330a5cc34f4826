#pragma once

#include "session/Events.h"

namespace fldc::session {

/// What unexpected @p bytes look like when @p lastSent is what was written to the line before.
///
/// OwnEcho: all of @p lastSent, or at least two bytes of its beginning or end (a line that sends
/// back what it is given, its echo read in part). Text: two or more printable characters or line
/// ends of ASCII (a console, a modem, another program's commands). Other: anything else.
[[nodiscard]] LooksLike looksLike(const QByteArray& bytes, const QByteArray& lastSent);

/// The event for @p bytes, of any number.
[[nodiscard]] UnexpectedBytes unexpected(const QByteArray& bytes, const QByteArray& lastSent);

} // namespace fldc::session
