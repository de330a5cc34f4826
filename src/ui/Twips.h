#pragma once

#include "ui/desktop/Placement.h"

#include <QRect>
#include <QSize>
#include <QWidget>

namespace fldc {

/// Left, top, width and height in twips (1/1440 inch): 15 twips are one pixel of a screen with 96
/// to the inch.
struct TwipsRect {
    int left;
    int top;
    int width;
    int height;
};

/// A width in pixels of the screen that @p widget is on, at the scale of its window.
[[nodiscard]] inline int widthInPixels(int twips, const QWidget& widget)
{
    return qRound(twips * scaleOf(widget) * widget.logicalDpiX() / 1440.0);
}

/// The rectangle in pixels of the screen that @p widget is on, at the scale of its window.
[[nodiscard]] inline QRect toPixels(const TwipsRect& rect, const QWidget& widget)
{
    const double scale = scaleOf(widget);
    const double x = scale * widget.logicalDpiX() / 1440;
    const double y = scale * widget.logicalDpiY() / 1440;
    return {qRound(rect.left * x), qRound(rect.top * y), qRound(rect.width * x),
            qRound(rect.height * y)};
}

} // namespace fldc
