#include "ui/desktop/ReadablePalette.h"

#include <QApplication>
#include <QColor>
#include <QEvent>
#include <QPalette>

#include <algorithm>
#include <cmath>

namespace fldc {

namespace {

constexpr double least = 5.2; // 4.5, and a reserve for styles that make a gradient of the colour
constexpr int mostSteps = 40;
constexpr int stepPercent = 104;

// Relative luminance, 0 to 1: WCAG 2.1, definitions.
double luminanceOf(const QColor& colour)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

QPalette withReadableHighlight(QPalette palette)
{
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        QColor highlight = palette.color(group, QPalette::Highlight);
        const QColor text = palette.color(group, QPalette::HighlightedText);
        const bool isTextLight = luminanceOf(text) > luminanceOf(highlight);
        for (int step = 0; step < mostSteps && contrastOf(highlight, text) < least; ++step)
            highlight =
                isTextLight ? highlight.darker(stepPercent) : highlight.lighter(stepPercent);
        palette.setColor(group, QPalette::Highlight, highlight);
    }
    return palette;
}

void makeReadable()
{
    const QPalette before = QApplication::palette();
    const QPalette after = withReadableHighlight(before);
    if (after != before)
        QApplication::setPalette(after);
}

} // namespace

double contrastOf(const QColor& one, const QColor& other)
{
    const auto [dark, light] = std::minmax({luminanceOf(one), luminanceOf(other)});
    return (light + 0.05) / (dark + 0.05);
}

ReadablePalette::ReadablePalette(QObject* parent) : QObject(parent)
{
    makeReadable();
    qApp->installEventFilter(this);
}

bool ReadablePalette::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange)
        makeReadable();
    return false;
}

} // namespace fldc
