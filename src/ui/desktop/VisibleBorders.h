#pragma once

#include <QProxyStyle>

namespace fldc {

/// Draws the borders of buttons, boxes and bars in the colour of text where the desktop's colours
/// leave nothing to tell them by: in high-contrast themes all backgrounds are the same, and many
/// styles take the border's colour from them. Changes nothing in other colours.
class VisibleBorders final : public QProxyStyle {
public:
    /// In place of the application's present style.
    static void install();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;

private:
    using QProxyStyle::QProxyStyle;
};

} // namespace fldc
