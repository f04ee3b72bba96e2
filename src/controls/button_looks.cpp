// The style looks of the multi-mode control and the gradient primitive they are painted with.
#include "controls/button_looks.h"

#include "controls/button_colors.h"

#include <QLinearGradient>
#include <QPainter>

#include <array>
#include <cmath>

namespace qb::controls {

namespace {

constexpr LookColor B = LookColor::Back;
constexpr LookColor F = LookColor::Fade;

// Flat: styles 0, 10, 18 and 27.
constexpr LookBand kFlat[] = {{0, 1, 90, B, 0, B, 0}};
// The glass look shared by styles 1, 2 and 14: a lighter upper half over the back colour.
constexpr LookBand kGlass[] = {{0, 0.5f, 90, F, 0.05f, F, 0}, {0.5f, 1, 90, B, 0, B, 0.05f}};
constexpr LookBand kStyle3[] = {{0, 1, 90, F, 0, B, -0.05f}};
constexpr LookBand kStyle4[] = {{0, 0.45f, 90, F, 0.1f, F, 0}, {0.45f, 1, 90, B, -0.05f, B, 0.05f}};
constexpr LookBand kStyle5[] = {{0, 0.5f, 90, B, 0.15f, B, 0.05f}, {0.5f, 1, 90, B, 0, B, -0.05f}};
constexpr LookBand kStyle6[] = {{0, 1, 90, B, 0.1f, B, -0.1f}};
constexpr LookBand kStyle7[] = {{0, 0.5f, 90, B, 0.2f, B, 0.08f}, {0.5f, 1, 90, B, 0, B, 0.05f}};
constexpr LookBand kStyle8[]
    = {{0, 0.1f, 90, B, 0.1f, B, 0.1f}, {0.1f, 0.9f, 90, F, 0, B, 0}, {0.9f, 1, 90, B, -0.05f, B, -0.05f}};
constexpr LookBand kStyle9[] = {{0, 1, 0, B, 0, F, 0}};
constexpr LookBand kStyle11[] = {{0, 0.4f, 90, F, 0.08f, F, 0}, {0.4f, 1, 90, B, -0.03f, B, 0}};
constexpr LookBand kStyle12[] = {{0, 0.5f, 90, B, 0.1f, B, 0}, {0.5f, 1, 90, B, -0.08f, B, -0.02f}};
constexpr LookBand kStyle13[]
    = {{0, 0.33f, 90, F, 0, B, 0}, {0.33f, 0.66f, 90, B, 0, B, 0}, {0.66f, 1, 90, B, 0, B, -0.08f}};
constexpr LookBand kStyle15[] = {{0, 0.5f, 90, F, 0.05f, F, 0}, {0.5f, 1, 90, B, -0.02f, B, 0.06f}};
constexpr LookBand kStyle16[] = {{0, 0.8f, 90, F, 0, B, 0}, {0.8f, 1, 90, B, 0, B, -0.06f}};
constexpr LookBand kStyle17[] = {{0, 0.5f, 90, B, 0.25f, B, 0.12f}, {0.5f, 1, 90, B, 0, B, 0.1f}};
constexpr LookBand kStyle19[] = {{0, 1, 90, B, 0, F, 0}};
constexpr LookBand kStyle20[] = {{0, 1, 90, B, 0, B, -0.06f}};
constexpr LookBand kStyle21[] = {{0, 0.5f, 90, F, 0, F, 0}, {0.5f, 1, 90, B, 0, B, 0}};
constexpr LookBand kStyle22[] = {{0, 0.15f, 90, F, 0.1f, F, 0}, {0.15f, 1, 90, B, 0, B, -0.05f}};
constexpr LookBand kStyle23[] = {{0, 0.5f, 90, B, 0, B, 0}, {0.5f, 1, 90, B, -0.03f, B, -0.08f}};
constexpr LookBand kStyle25[] = {{0, 1, 90, B, 0, B, -0.1f}};
constexpr LookBand kStyle26[] = {{0, 1, 90, B, 0.05f, B, -0.05f}};

const std::array<std::span<const LookBand>, kStyleCount> kLooks {{
    kFlat, // 0
    kGlass, // 1
    kGlass, // 2
    kStyle3, kStyle4, kStyle5, kStyle6, kStyle7, kStyle8, kStyle9,
    kFlat, // 10
    kStyle11, kStyle12, kStyle13,
    kGlass, // 14
    kStyle15, kStyle16, kStyle17,
    kFlat, // 18
    kStyle19, kStyle20, kStyle21, kStyle22, kStyle23,
    kStyle15, // 24, where the platform style is not used
    kStyle25, kStyle26,
    kFlat, // 27
}};

QColor bandColor(LookColor which, float shift, ButtonColor back, ButtonColor fade)
{
    const ButtonColor base = which == LookColor::Back ? back : fade;
    return ToQColor(shift == 0 ? base : ShiftColor(base, shift));
}

} // namespace

std::span<const LookBand> LookForStyle(int style)
{
    if (style < 0 || style >= kStyleCount)
        return kLooks[15];
    return kLooks[size_t(style)];
}

void FillGradientRect(QPainter &painter, qreal x, qreal y, qreal w, qreal h, int angle, const QColor &color1,
    const QColor &color2)
{
    const QRectF rect(x, y, w, h);
    if (rect.isEmpty())
        return;
    if (color1 == color2) {
        painter.fillRect(rect, color1);
        return;
    }
    const double radians = double(angle) * M_PI / 180.0;
    const double dx = std::cos(radians);
    const double dy = std::sin(radians);
    // Half the rectangle's extent along the direction, so both colours reach the corners.
    const double half = (std::abs(dx) * w + std::abs(dy) * h) / 2;
    const QPointF centre = rect.center();
    QLinearGradient gradient(centre - QPointF(dx * half, dy * half), centre + QPointF(dx * half, dy * half));
    gradient.setColorAt(0, color1);
    gradient.setColorAt(1, color2);
    painter.fillRect(rect, gradient);
}

void PaintLook(QPainter &painter, const QRectF &rect, std::span<const LookBand> bands, ButtonColor back,
    ButtonColor fade)
{
    for (const LookBand &band : bands) {
        const qreal top = rect.top() + std::round(band.top * rect.height());
        const qreal bottom = rect.top() + std::round(band.bottom * rect.height());
        FillGradientRect(painter, rect.left(), top, rect.width(), bottom - top, band.angle,
            bandColor(band.from, band.fromShift, back, fade), bandColor(band.to, band.toShift, back, fade));
    }
}

} // namespace qb::controls
