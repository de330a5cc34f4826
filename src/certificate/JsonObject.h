#pragma once

#include "certificate/ObjectKinds.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <initializer_list>
#include <utility>

namespace fldc {

using Fields = std::initializer_list<std::pair<QLatin1StringView, QJsonValue>>;

/// An object of that kind. Its keys are those of the kind: one that the kind does not have, or that
/// is missing, is a fault of the program (PlatformFailure, internal error).
[[nodiscard]] QJsonObject makeObject(const ObjectKind& kind, Fields fields);
/// The same of what is told of an event, its parts included.
[[nodiscard]] QJsonObject makeObject(const ObjectKind& kind, const QVariantMap& fields);
/// The kind with that name; one that is not there is a fault of the program likewise.
[[nodiscard]] const ObjectKind& kindNamed(QAnyStringView name);
/// The same for keys that only some objects of the kind have: @p more goes on @p object.
[[nodiscard]] QJsonObject extended(QJsonObject object, const ObjectKind& kind, Fields more);

/// The line for an object: "type" and "time" (now, UTC) added, with its line end.
[[nodiscard]] QByteArray jsonLine(const ObjectKind& kind, QJsonObject object);

/// @p text as it can be written in UTF-8: half a surrogate pair (from a firmware file's 16-bit
/// tag) becomes U+FFFD.
[[nodiscard]] QString validText(const QString& text);
[[nodiscard]] QJsonArray jsonTexts(const QStringList& texts);

/// Now, as every line has it: "2026-11-23T05:30:00.123Z".
[[nodiscard]] QString utcNow();

} // namespace fldc
