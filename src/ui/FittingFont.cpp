#include "ui/FittingFont.h"

#include "ui/desktop/Placement.h"

#include <QApplication>
#include <QFontMetricsF>

#include <algorithm>

namespace fldc {

namespace {

constexpr int fullStretch = 100;
constexpr int smallestStretch = 70;
constexpr int stretchStep = 2;

} // namespace

QFont windowFont(const QWidget& window)
{
    QFont font = QApplication::font();
    const double points = font.pointSizeF() <= 0 ? designPointSize : font.pointSizeF();
    font.setPointSizeF(std::min(points, designPointSize) * scaleOf(window));
    return font;
}

QFont fittingFont(QFont font, const QString& text, int width)
{
    int stretch = font.stretch() == QFont::AnyStretch ? fullStretch : font.stretch();
    while (stretch > smallestStretch && QFontMetricsF(font).horizontalAdvance(text) > width) {
        stretch = std::max(stretch - stretchStep, smallestStretch);
        font.setStretch(stretch);
    }
    return font;
}

} // namespace fldc
