#pragma once

#include <QRect>
#include <QSize>
#include <QWidget>

namespace fldc {

/// A length on the screen in twips (1/1440 inch), in pixels of @p dpi: 15 twips are one pixel
/// at 96.
[[nodiscard]] inline int twipsToPixels(int twips, int dpi)
{
    return qRound(twips * static_cast<double>(dpi) / 1440.0);
}

[[nodiscard]] inline int pixelsToTwips(int pixels, int dpi)
{
    return qRound(pixels * 1440.0 / dpi);
}

/// Left, top, width and height in twips.
struct TwipsRect {
    int left;
    int top;
    int width;
    int height;
};

/// The rectangle in pixels of the screen that @p widget is on.
[[nodiscard]] inline QRect toPixels(const TwipsRect& rect, const QWidget& widget)
{
    const int x = widget.logicalDpiX();
    const int y = widget.logicalDpiY();
    return {twipsToPixels(rect.left, x), twipsToPixels(rect.top, y), twipsToPixels(rect.width, x),
            twipsToPixels(rect.height, y)};
}

} // namespace fldc
