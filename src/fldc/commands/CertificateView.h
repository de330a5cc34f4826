#pragma once

#include <QJsonObject>
#include <QString>

namespace fldc::cli {

/// A certificate for people, several lines.
[[nodiscard]] QString certificateText(const QJsonObject& certificate);

} // namespace fldc::cli
