#pragma once

#include "session/Events.h"

#include <QJsonObject>
#include <QString>

#include <optional>
#include <vector>

namespace fldc {

using LinkSpeeds = std::vector<session::LinkMeasured>;

/// What is told of one speed of the line, as a "link" object.
[[nodiscard]] QJsonObject linkObject(const session::LinkMeasured& link);
/// The same for people: a heading and a line for each speed; nothing for none.
[[nodiscard]] QString linkLines(const LinkSpeeds& links);
/// The highest speed in baud at which every exchange was answered, and rightly.
[[nodiscard]] std::optional<std::uint32_t> bestSpeed(const LinkSpeeds& links);

} // namespace fldc
