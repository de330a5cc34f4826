#pragma once

#include "protocol/wire/Commands.h"
#include "session/Listener.h"

#include <QByteArray>
#include <QStringView>

#include <cstdint>

namespace fldc {

// What the conversations tell of themselves. All of it does nothing while nobody listens, and
// leaves the last error alone.

/// @p command was given to the line. Nothing is told of one that changes nothing in the radio.
void tellSent(const session::Teller& teller, Command command);
/// What came of @p command, sent with @p data: the last error says it.
void tellAnswered(const session::Teller& teller, Command command, const QByteArray& data = {});
/// The same for the reset, which is no command.
void tellResetSent(const session::Teller& teller, session::Step step);
void tellResetAnswered(const session::Teller& teller, session::Step step);
/// @p command is about to be sent for the @p attempt-th time, because of the last error.
void tellRepeated(const session::Teller& teller, Command command, int attempt);
/// @p reply (hex text) to @p frame could not be read.
void tellUnreadable(const session::Teller& teller, QStringView reply, const QByteArray& frame);

} // namespace fldc
