#include "imaging/placement_stage.h"

#include <QDateTime>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <random>

namespace qb::imaging {

namespace {

int roundedSide(double v)
{
    return std::max(1, int(std::lround(v)));
}

// A place for a window of size `window` inside `room`: the middle, or a random one in the slack.
int offset(int room, int window, bool random, quint32 draw)
{
    const int slack = std::max(0, room - window);
    if (!random)
        return slack / 2;
    return int((quint64(draw) * quint64(slack + 1)) >> 32);
}

// The largest part of the area with the canvas's shape, where the sides say, to be stretched over it.
QRect fillCrop(const QRect &area, const QSize &canvas, bool randomAcross, bool randomDown, quint32 seed)
{
    std::mt19937 random(seed);
    const quint32 acrossDraw = quint32(random());
    const quint32 downDraw = quint32(random());
    const double scale
        = std::max(double(canvas.width()) / area.width(), double(canvas.height()) / area.height());
    const int w = std::min(area.width(), roundedSide(canvas.width() / scale));
    const int h = std::min(area.height(), roundedSide(canvas.height() / scale));
    return {area.left() + offset(area.width(), w, randomAcross, acrossDraw),
        area.top() + offset(area.height(), h, randomDown, downDraw), w, h};
}

} // namespace

QRect CutRectangle(int cutX, int cutY, int cutW, int cutH, int style, const QSize &picture)
{
    if (cutX == -1 || cutY == -1 || cutW == -1 || cutH == -1 || (style != 1 && style != 3))
        return {};
    if (cutW <= 0 || cutH <= 0)
        return {};
    const qint64 left = std::max(cutX, 0);
    const qint64 top = std::max(cutY, 0);
    const qint64 right = std::min<qint64>(left + cutW, picture.width());
    const qint64 bottom = std::min<qint64>(top + cutH, picture.height());
    if (left >= right || top >= bottom)
        return {};
    return {int(left), int(top), int(right - left), int(bottom - top)};
}

QImage CreateCanvas(int w, int h, qint32 backColor, int backAlpha)
{
    if (w <= 0 || h <= 0)
        return {};
    QImage canvas(w, h, QImage::Format_ARGB32);
    if (canvas.isNull())
        return {};
    canvas.fill(qRgba(
        backColor & 0xFF, (backColor >> 8) & 0xFF, (backColor >> 16) & 0xFF, std::clamp(backAlpha, 0, 255)));
    return canvas;
}

Placement PlanPlacement(const QSize &picture, const QSize &canvas, int style, const QRect &cut, quint32 seed)
{
    if (picture.isEmpty() || canvas.isEmpty())
        return {};
    const QRect whole(QPoint(0, 0), picture);
    const QRect full(QPoint(0, 0), canvas);
    const QRect chosen = cut.isEmpty() ? whole : (cut & whole);
    switch (style) {
    case 1:
        return {chosen, full};
    case 2:
        return {fillCrop(whole, canvas, true, false, seed), full};
    case 3:
        return {fillCrop(chosen, canvas, true, true, seed), full};
    case 4:
        return {fillCrop(whole, canvas, false, true, seed), full};
    case 5:
        return {fillCrop(whole, canvas, true, true, seed), full};
    case 6: {
        const double scale
            = std::min(double(canvas.width()) / picture.width(), double(canvas.height()) / picture.height());
        const int w = std::min(canvas.width(), roundedSide(picture.width() * scale));
        const int h = std::min(canvas.height(), roundedSide(picture.height() * scale));
        return {whole, {(canvas.width() - w) / 2, (canvas.height() - h) / 2, w, h}};
    }
    case 7:
        return {fillCrop(whole, canvas, false, false, seed), full};
    default:
        return {whole, full};
    }
}

quint32 ClockSeed()
{
    return quint32(QDateTime::currentMSecsSinceEpoch());
}

QImage PlacePicture(const QImage &picture, int w, int h, int style, const QRect &cut, qint32 backColor,
    int backAlpha, std::optional<quint32> seed)
{
    if (picture.isNull() || w <= 0 || h <= 0)
        return picture;
    QImage canvas = CreateCanvas(w, h, backColor, backAlpha);
    if (canvas.isNull())
        return picture;
    const Placement place
        = PlanPlacement(picture.size(), canvas.size(), style, cut, seed.value_or(ClockSeed()));
    if (place.source.isEmpty() || place.target.isEmpty())
        return canvas;
    // Cut first and scale alone: the smooth scaler averages over the whole area it shrinks,
    // and nothing beyond the part taken can reach into it.
    QImage part = picture.copy(place.source);
    if (part.size() != place.target.size())
        part = part.scaled(place.target.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QPainter painter(&canvas);
    painter.setRenderHints(QPainter::SmoothPixmapTransform | QPainter::Antialiasing);
    painter.drawImage(place.target.topLeft(), part);
    painter.end();
    return canvas;
}

} // namespace qb::imaging
