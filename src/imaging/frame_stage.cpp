#include "imaging/frame_stage.h"

#include "imaging/drawing_colors.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QtMath>

#include <algorithm>
#include <array>
#include <cmath>

namespace qb::imaging {

namespace {

struct Corner
{
    double radius;
    int style;
};

// Clockwise from the top-left, the order the outline is walked in.
using Corners = std::array<Corner, 4>;

int NormalStyle(int style)
{
    return style == CornerCut || style == CornerBite ? style : CornerArc;
}

Corners CornersOf(const FrameSettings &s)
{
    return {{{double(std::max(0, s.radiusTL)), NormalStyle(s.radiusStyleTL)},
        {double(std::max(0, s.radiusTR)), NormalStyle(s.radiusStyleTR)},
        {double(std::max(0, s.radiusBR)), NormalStyle(s.radiusStyleBR)},
        {double(std::max(0, s.radiusBL)), NormalStyle(s.radiusStyleBL)}}};
}

// Angle of a direction in the painter's convention: degrees counter-clockwise from three o'clock,
// with y growing downwards.
double AngleOf(QPointF v)
{
    return qRadiansToDegrees(std::atan2(-v.y(), v.x()));
}

// Points that repeat would make segments of no length, and the stroker turns their joins into
// notches.
void LineTo(QPainterPath &path, QPointF point)
{
    if (path.currentPosition() != point)
        path.lineTo(point);
}

QPainterPath OutlinePath(const QRectF &rect, const Corners &corners)
{
    const std::array<QPointF, 4> points
        = {rect.topLeft(), rect.topRight(), rect.bottomRight(), rect.bottomLeft()};
    // Towards the previous corner and towards the next one, walking clockwise.
    const std::array<QPointF, 4> back = {QPointF(0, 1), QPointF(-1, 0), QPointF(0, -1), QPointF(1, 0)};
    const std::array<QPointF, 4> ahead = {QPointF(1, 0), QPointF(0, 1), QPointF(-1, 0), QPointF(0, -1)};
    const double limit = std::min(rect.width(), rect.height()) / 2;

    // Starting halfway along the top edge keeps the stroker's seam off the corners.
    QPainterPath path;
    path.moveTo(QPointF(rect.center().x(), rect.top()));
    for (int k : {1, 2, 3, 0}) {
        const double r = std::min(corners[k].radius, limit);
        const QPointF c = points[k];
        const QPointF a = c + back[k] * r;
        const QPointF b = c + ahead[k] * r;
        LineTo(path, a);
        if (r <= 0 || corners[k].style == CornerCut) {
            LineTo(path, b);
        } else if (corners[k].style == CornerBite) {
            path.arcTo(QRectF(c.x() - r, c.y() - r, 2 * r, 2 * r), AngleOf(a - c), 90);
        } else {
            const QPointF centre = a + b - c;
            path.arcTo(QRectF(centre.x() - r, centre.y() - r, 2 * r, 2 * r), AngleOf(a - centre), -90);
        }
    }
    path.closeSubpath();
    return path;
}

// What the corners cut away, each inside its own r by r square.
QPainterPath CornerAreas(const QRectF &rect, const Corners &corners, const QPainterPath &outline)
{
    const double limit = std::min(rect.width(), rect.height()) / 2;
    const std::array<QPointF, 4> points
        = {rect.topLeft(), rect.topRight(), rect.bottomRight(), rect.bottomLeft()};
    const std::array<QPointF, 4> inwards = {QPointF(1, 1), QPointF(-1, 1), QPointF(-1, -1), QPointF(1, -1)};
    QPainterPath squares;
    for (int k = 0; k < 4; ++k) {
        const double r = std::min(corners[k].radius, limit);
        if (r > 0)
            squares.addRect(QRectF(points[k], points[k] + inwards[k] * r).normalized());
    }
    return squares.subtracted(outline);
}

Qt::PenStyle DashStyle(int style)
{
    switch (style) {
    case 1:
        return Qt::DashLine;
    case 2:
        return Qt::DotLine;
    case 3:
        return Qt::DashDotLine;
    case 4:
        return Qt::DashDotDotLine;
    default:
        return Qt::SolidLine;
    }
}

// The border's corners keep their distance from the outline's: rounded and cut corners shrink as
// the line moves inwards, bitten ones grow.
Corners BorderCorners(Corners corners, double inwards)
{
    for (Corner &corner : corners) {
        if (corner.radius <= 0)
            continue;
        corner.radius
            = std::max(0.0, corner.style == CornerBite ? corner.radius + inwards : corner.radius - inwards);
    }
    return corners;
}

} // namespace

void ApplyFrame(QImage &image, const FrameSettings &s)
{
    if (image.isNull())
        return;
    const Corners corners = CornersOf(s);
    const bool anyCorner
        = std::any_of(corners.begin(), corners.end(), [](const Corner &c) { return c.radius > 0; });
    if (!anyCorner && s.edgeIndentation <= 0 && s.borderWidth <= 0)
        return;

    const QImage source = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QImage framed(source.size(), QImage::Format_ARGB32_Premultiplied);
    framed.setDotsPerMeterX(source.dotsPerMeterX());
    framed.setDotsPerMeterY(source.dotsPerMeterY());
    framed.fill(Qt::transparent);

    const QRectF whole(QPointF(0, 0), QSizeF(source.size()));
    const double shorter = std::min(whole.width(), whole.height());
    const double margin = std::clamp(double(s.edgeIndentation), 0.0, shorter / 2);
    const QRectF inner = whole.adjusted(margin, margin, -margin, -margin);
    const QPainterPath outline = OutlinePath(inner, corners);

    QPainter painter(&framed);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    // The picture as a brush anchored at the origin keeps every pixel where it was.
    painter.setBrush(QBrush(source));
    painter.drawPath(outline);

    if (anyCorner && (s.radiusStartAlpha > 0 || s.radiusEndAlpha > 0)) {
        QLinearGradient gradient(whole.topLeft(), whole.bottomRight());
        gradient.setColorAt(0, DrawingColor(s.radiusStartColor, s.radiusStartAlpha));
        gradient.setColorAt(1, DrawingColor(s.radiusEndColor, s.radiusEndAlpha));
        painter.setBrush(gradient);
        painter.drawPath(CornerAreas(inner, corners, outline));
    }

    if (s.borderWidth > 0) {
        const double width = std::min(double(s.borderWidth), shorter / 2);
        const double middle = std::max(0.0, double(s.borderIndentation)) + width / 2;
        const QRectF line = whole.adjusted(middle, middle, -middle, -middle);
        if (line.width() >= 0 && line.height() >= 0) {
            // Outlined by the stroker and filled: thin pens would otherwise take a fast path that
            // leaves the corners without their joins.
            QPainterPathStroker stroker;
            stroker.setWidth(width);
            stroker.setCapStyle(Qt::FlatCap);
            stroker.setJoinStyle(Qt::MiterJoin);
            stroker.setDashPattern(DashStyle(s.borderDashStyle));
            painter.fillPath(stroker.createStroke(OutlinePath(line, BorderCorners(corners, middle - margin))),
                DrawingColor(s.borderColor, s.borderAlpha));
        }
    }
    painter.end();
    image = framed;
}

} // namespace qb::imaging
