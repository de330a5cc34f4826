#include "ui/FittingFont.h"

#include <QApplication>
#include <QFontMetricsF>

#include <algorithm>

namespace fldc {

namespace {

constexpr int fullStretch = 100;
constexpr int smallestStretch = 70;
constexpr int stretchStep = 2;

} // namespace

QFont windowFont()
{
    QFont font = QApplication::font();
    if (font.pointSizeF() <= 0 || font.pointSizeF() > designPointSize)
        font.setPointSizeF(designPointSize);
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
