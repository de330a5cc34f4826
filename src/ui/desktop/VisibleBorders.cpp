#include "ui/desktop/VisibleBorders.h"

#include "ui/desktop/ReadablePalette.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>
#include <array>

namespace fldc {

namespace {

constexpr double sameColour = 1.1; // contrast below which nobody sees an edge

bool isFlat(const QPalette& palette)
{
    const QColor window = palette.color(QPalette::Window);
    return std::ranges::all_of(
        std::array{QPalette::Base, QPalette::Button, QPalette::Mid},
        [&](auto role) { return contrastOf(palette.color(role), window) < sameColour; });
}

void drawBorder(const QStyleOption& option, QPainter& painter)
{
    if (!isFlat(option.palette))
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(option.palette.color(QPalette::WindowText)); // of the control's own state
    painter.drawRect(option.rect.adjusted(0, 0, -1, -1));
    painter.restore();
}

bool hasBorder(QStyle::PrimitiveElement element, const QStyleOption& option)
{
    if (element == QStyle::PE_PanelLineEdit) { // one within a box has no frame of its own
        const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(&option);
        return frame != nullptr && frame->lineWidth > 0;
    }
    return element == QStyle::PE_IndicatorCheckBox ||
           element == QStyle::PE_IndicatorItemViewItemCheck ||
           element == QStyle::PE_PanelButtonCommand;
}

} // namespace

void VisibleBorders::install()
{
    // By name: a style that is replaced is deleted.
    QApplication::setStyle(new VisibleBorders(QApplication::style()->name()));
}

void VisibleBorders::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                   QPainter* painter, const QWidget* widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (hasBorder(element, *option))
        drawBorder(*option, *painter);
}

void VisibleBorders::drawControl(ControlElement element, const QStyleOption* option,
                                 QPainter* painter, const QWidget* widget) const
{
    QProxyStyle::drawControl(element, option, painter, widget);
    if (element == CE_ProgressBarGroove)
        drawBorder(*option, *painter);
}

void VisibleBorders::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                        QPainter* painter, const QWidget* widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_ComboBox)
        drawBorder(*option, *painter);
}

} // namespace fldc
