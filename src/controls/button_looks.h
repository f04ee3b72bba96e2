// The backgrounds of the multi-mode control's 28 styles as data: each look is a list of gradient bands
// in shifts of the state's back and fade colours, and one routine paints any of them.
#pragma once

#include "controls/ctl_button_properties.h"

#include <QColor>
#include <QRectF>

#include <span>

class QPainter;

namespace qb::controls {

// Which colour of the state a band's end takes.
enum class LookColor : quint8 {
    Back,
    Fade,
};

// One band: a slice of the height (fractions), a gradient at an angle, and its two colours as
// ShiftColor(colour, shift).
struct LookBand
{
    float top;
    float bottom;
    qint16 angle;
    LookColor from;
    float fromShift;
    LookColor to;
    float toShift;
};

// The style drawn by the platform's own style engine.
inline constexpr int kThemedStyle = 24;
inline constexpr int kStyleCount = 28;

// The bands of a style; styles out of range use the look of the default style 15. Style 24 has a
// plain look too, for where the platform style is not used.
std::span<const LookBand> LookForStyle(int style);

// A linear gradient from color1 to color2 across a rectangle. The angle is in degrees, clockwise
// from left-to-right on the screen: 90 runs top to bottom, 270 bottom to top.
void FillGradientRect(QPainter &painter, qreal x, qreal y, qreal w, qreal h, int angle, const QColor &color1,
    const QColor &color2);

// Paints a look's bands over rect with the state's colours.
void PaintLook(QPainter &painter, const QRectF &rect, std::span<const LookBand> bands, ButtonColor back,
    ButtonColor fade);

} // namespace qb::controls
