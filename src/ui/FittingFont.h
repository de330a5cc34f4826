#pragma once

#include <QFont>
#include <QString>

class QWidget;

namespace fldc {

/// The windows are laid out for text of this size.
inline constexpr double designPointSize = 8.25;

/// The desktop's default font, at the size that the windows are laid out for unless it is smaller,
/// times the scale of @p window.
[[nodiscard]] QFont windowFont(const QWidget& window);

/// @p font, made narrower as far as needed for @p text to fit into @p width pixels, but not beyond
/// what can still be read. Desktop fonts differ in width by a quarter.
[[nodiscard]] QFont fittingFont(QFont font, const QString& text, int width);

} // namespace fldc
