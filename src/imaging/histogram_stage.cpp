#include "imaging/histogram_stage.h"

#include <QPainter>
#include <QPolygon>

#include <algorithm>
#include <array>

namespace qb::imaging {

namespace {

using Bins = std::array<qint64, 256>;

struct Counts
{
    Bins red {};
    Bins green {};
    Bins blue {};
    Bins grey {};
};

Counts CountChannels(const QImage &picture)
{
    Counts counts;
    for (int y = 0; y < picture.height(); ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(picture.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = row[x];
            if (qAlpha(pixel) == 0)
                continue;
            const int r = qRed(pixel);
            const int g = qGreen(pixel);
            const int b = qBlue(pixel);
            ++counts.red[size_t(r)];
            ++counts.green[size_t(g)];
            ++counts.blue[size_t(b)];
            ++counts.grey[size_t((299 * r + 587 * g + 114 * b + 500) / 1000)];
        }
    }
    return counts;
}

QPolygon Curve(const Bins &bins, const QRect &plot)
{
    const qint64 peak = std::max<qint64>(1, *std::max_element(bins.begin(), bins.end()));
    QPolygon curve(256);
    for (int k = 0; k < 256; ++k) {
        const int x = plot.left() + int(qint64(k) * (plot.width() - 1) / 255);
        const int y = plot.bottom() - int((bins[size_t(k)] * (plot.height() - 1) + peak / 2) / peak);
        curve.setPoint(k, x, y);
    }
    return curve;
}

} // namespace

void DrawHistogram(QImage &image)
{
    if (image.isNull())
        return;
    const int boxWidth = std::min(264, image.width() / 2);
    const int boxHeight = std::min(boxWidth / 2, image.height() / 2);
    if (boxWidth < 16 || boxHeight < 8)
        return;

    // Counting runs on straight ARGB so that colours are read unpremultiplied.
    const Counts counts = CountChannels(image.convertToFormat(QImage::Format_ARGB32));
    if (image.format() != QImage::Format_ARGB32_Premultiplied && image.format() != QImage::Format_ARGB32
        && image.format() != QImage::Format_RGB32)
        image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);

    const int gap = boxWidth / 33;
    const QRect box(image.width() - boxWidth - gap, image.height() - boxHeight - gap, boxWidth, boxHeight);
    const int inset = std::max(1, boxWidth / 66);
    const QRect plot = box.adjusted(inset, inset, -inset, -inset);

    QPainter painter(&image);
    painter.fillRect(box, QColor(0, 0, 0, 160));
    painter.setPen(QPen(Qt::white, 1));
    painter.drawRect(box.adjusted(0, 0, -1, -1));
    const std::array<std::pair<const Bins *, QColor>, 4> pens
        = {{{&counts.red, QColor(255, 0, 0)}, {&counts.green, QColor(0, 255, 0)},
            {&counts.blue, QColor(0, 0, 255)}, {&counts.grey, QColor(128, 128, 128)}}};
    for (const auto &[bins, colour] : pens) {
        painter.setPen(QPen(colour, 1));
        painter.drawPolyline(Curve(*bins, plot));
    }
}

} // namespace qb::imaging
