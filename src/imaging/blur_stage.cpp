#include "imaging/blur_stage.h"

#include <QRect>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace qb::imaging {

namespace {

constexpr int kPasses = 3;

// Three box passes over n premultiplied pixels of four floats; samples past either end repeat
// the end, which is right wherever the ends lie far enough outside what is kept.
void boxLine(std::vector<float> &line, int n, int half, std::vector<float> &scratch)
{
    scratch.resize(line.size());
    const double width = 2 * half + 1;
    const auto at = [n](int i) { return size_t(std::clamp(i, 0, n - 1)) * 4; };
    for (int pass = 0; pass < kPasses; ++pass) {
        for (int c = 0; c < 4; ++c) {
            double sum = 0;
            for (int j = -half; j <= half; ++j)
                sum += line[at(j) + size_t(c)];
            for (int i = 0; i < n; ++i) {
                scratch[size_t(i) * 4 + size_t(c)] = float(sum / width);
                sum += line[at(i + half + 1) + size_t(c)] - line[at(i - half) + size_t(c)];
            }
        }
        line.swap(scratch);
    }
}

} // namespace

QImage BlurRectangle(const QImage &image, int x, int y, int w, int h, int radius, bool expandEdge)
{
    if (image.isNull())
        return {};
    const QImage source = image.convertToFormat(QImage::Format_ARGB32);
    radius = int(std::min<qint64>(std::abs(qint64(radius)), kMaxBlurRadius));
    if (w <= 0 || h <= 0 || radius == 0)
        return source;
    // 64-bit corners, so that a rectangle far out cannot overflow on its way to being clipped.
    const qint64 left = std::max<qint64>(x, 0);
    const qint64 top = std::max<qint64>(y, 0);
    const qint64 right = std::min<qint64>(qint64(x) + w, source.width());
    const qint64 bottom = std::min<qint64>(qint64(y) + h, source.height());
    if (left >= right || top >= bottom)
        return source;
    const QRect area(int(left), int(top), int(right - left), int(bottom - top));

    const int half = (radius + 2) / 3;
    const int reach = kPasses * half; // how far the finished kernel reads
    const int paddedWidth = area.width() + 2 * reach;
    const int paddedHeight = area.height() + 2 * reach;
    const auto sample = [&](int sx, int sy, float *out) {
        if (!source.rect().contains(sx, sy)) {
            if (!expandEdge) {
                std::fill(out, out + 4, 0.0f);
                return;
            }
            sx = std::clamp(sx, 0, source.width() - 1);
            sy = std::clamp(sy, 0, source.height() - 1);
        }
        const QRgb p = reinterpret_cast<const QRgb *>(source.constScanLine(sy))[sx];
        const float a = float(qAlpha(p));
        out[0] = qRed(p) * a / 255.0f;
        out[1] = qGreen(p) * a / 255.0f;
        out[2] = qBlue(p) * a / 255.0f;
        out[3] = a;
    };

    // Across first, keeping only the columns of the area, in 1/256 steps to halve the memory.
    std::vector<quint16> across(size_t(area.width()) * size_t(paddedHeight) * 4);
    std::vector<float> line(size_t(std::max(paddedWidth, paddedHeight)) * 4);
    std::vector<float> scratch;
    for (int row = 0; row < paddedHeight; ++row) {
        line.resize(size_t(paddedWidth) * 4);
        for (int i = 0; i < paddedWidth; ++i)
            sample(area.left() - reach + i, area.top() - reach + row, &line[size_t(i) * 4]);
        boxLine(line, paddedWidth, half, scratch);
        quint16 *kept = &across[size_t(row) * size_t(area.width()) * 4];
        for (size_t i = 0; i < size_t(area.width()) * 4; ++i)
            kept[i] = quint16(std::lround(line[size_t(reach) * 4 + i] * 256.0f));
    }

    QImage out = source;
    for (int column = 0; column < area.width(); ++column) {
        line.resize(size_t(paddedHeight) * 4);
        for (int row = 0; row < paddedHeight; ++row) {
            for (int c = 0; c < 4; ++c) {
                const size_t from = (size_t(row) * size_t(area.width()) + size_t(column)) * 4 + size_t(c);
                line[size_t(row) * 4 + size_t(c)] = across[from] / 256.0f;
            }
        }
        boxLine(line, paddedHeight, half, scratch);
        for (int row = 0; row < area.height(); ++row) {
            const float *p = &line[size_t(row + reach) * 4];
            const int alpha = std::clamp(int(std::lround(p[3])), 0, 255);
            const auto straight
                = [&](float v) { return std::clamp(int(std::lround(v * 255.0f / p[3])), 0, 255); };
            auto *target = reinterpret_cast<QRgb *>(out.scanLine(area.top() + row));
            target[area.left() + column] = alpha == 0
                ? qRgba(0, 0, 0, 0)
                : qRgba(straight(p[0]), straight(p[1]), straight(p[2]), alpha);
        }
    }
    return out;
}

QImage ImageBlur(const QImage &image, int radius)
{
    return BlurRectangle(image, 0, 0, image.width(), image.height(), radius, true);
}

} // namespace qb::imaging
