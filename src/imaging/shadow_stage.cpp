#include "imaging/shadow_stage.h"

#include "imaging/drawing_colors.h"

#include <QPainter>

#include <vector>

namespace qb::imaging {

namespace {

// One pass of a box blur over count values spaced step apart, edges counting as 0.
void BoxPass(quint8 *values, int count, qsizetype step, int radius, std::vector<int> &scratch)
{
    scratch.resize(size_t(count));
    for (int i = 0; i < count; ++i)
        scratch[size_t(i)] = values[i * step];
    const int window = 2 * radius + 1;
    int sum = 0;
    for (int i = 0; i < radius && i < count; ++i)
        sum += scratch[size_t(i)];
    for (int i = 0; i < count; ++i) {
        if (i + radius < count)
            sum += scratch[size_t(i + radius)];
        if (i - radius - 1 >= 0)
            sum -= scratch[size_t(i - radius - 1)];
        values[i * step] = quint8((sum + window / 2) / window);
    }
}

} // namespace

void DropShadow(QImage &image, int depth, const QString &color, int alpha)
{
    DropShadow(image, depth, DrawingColor(color, alpha));
}

void DropShadow(QImage &image, int depth, const QColor &color)
{
    if (image.isNull() || depth <= 0)
        return;
    const QImage source = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const qint64 width = qint64(source.width()) + depth;
    const qint64 height = qint64(source.height()) + depth;
    if (width > 32767 || height > 32767)
        return;
    QImage result(int(width), int(height), QImage::Format_ARGB32_Premultiplied);
    if (result.isNull())
        return;
    result.setDotsPerMeterX(source.dotsPerMeterX());
    result.setDotsPerMeterY(source.dotsPerMeterY());

    // The moved shape as one alpha plane, blurred along rows and then along columns.
    const int w = int(width);
    const int h = int(height);
    std::vector<quint8> plane(size_t(w) * size_t(h), 0);
    for (int y = 0; y < source.height(); ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(source.constScanLine(y));
        quint8 *out = plane.data() + size_t(y + depth) * size_t(w) + size_t(depth);
        for (int x = 0; x < source.width(); ++x)
            out[x] = quint8(qAlpha(row[x]));
    }
    const int radius = depth / 2;
    if (radius > 0) {
        std::vector<int> scratch;
        for (int y = 0; y < h; ++y)
            BoxPass(plane.data() + size_t(y) * size_t(w), w, 1, radius, scratch);
        for (int x = 0; x < w; ++x)
            BoxPass(plane.data() + x, h, w, radius, scratch);
    }

    const QRgb tone = color.rgb();
    const int opacity = color.alpha();
    for (int y = 0; y < h; ++y) {
        auto *row = reinterpret_cast<QRgb *>(result.scanLine(y));
        const quint8 *in = plane.data() + size_t(y) * size_t(w);
        for (int x = 0; x < w; ++x) {
            const int a = (in[x] * opacity + 127) / 255;
            row[x] = qPremultiply(qRgba(qRed(tone), qGreen(tone), qBlue(tone), a));
        }
    }

    QPainter painter(&result);
    painter.drawImage(0, 0, source);
    painter.end();
    image = result;
}

} // namespace qb::imaging
