#include "imaging/torn_edge_stage.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <vector>

namespace qb::imaging {

namespace {

// A line of `length` samples, straight between points `step` apart drawn from [low, high].
std::vector<double> raggedLine(int length, int step, double low, double high, std::mt19937 &random)
{
    const int points = length / step + 2;
    std::vector<double> knots(static_cast<size_t>(points));
    for (double &k : knots)
        k = low + (high - low) * (double(random()) / 4294967296.0);
    std::vector<double> line(static_cast<size_t>(length));
    for (int i = 0; i < length; ++i) {
        const int k = i / step;
        const double t = double(i % step) / step;
        line[size_t(i)] = knots[size_t(k)] * (1 - t) + knots[size_t(k + 1)] * t;
    }
    return line;
}

std::vector<double> tearDepths(int length, double strength, std::mt19937 &random)
{
    const int waveStep = std::max(4, int(std::lround(3 * strength)));
    const int toothStep = std::max(2, int(std::lround(strength / 3)));
    std::vector<double> depth = raggedLine(length, waveStep, 0.3 * strength, 0.7 * strength, random);
    const std::vector<double> teeth
        = raggedLine(length, toothStep, -0.25 * strength, 0.25 * strength, random);
    for (size_t i = 0; i < depth.size(); ++i)
        depth[i] = std::clamp(depth[i] + teeth[i], 1.0, strength);
    return depth;
}

// How much of a pixel `distance` whole pixels in from a side lies inward of a tear `depth` deep.
double inward(int distance, double depth)
{
    return std::clamp(distance + 1 - depth, 0.0, 1.0);
}

} // namespace

QImage TearEdges(const QImage &image, int strength, quint32 seed)
{
    if (image.isNull())
        return {};
    QImage out = image.convertToFormat(QImage::Format_ARGB32);
    if (strength == 0)
        return out;
    const int width = out.width();
    const int height = out.height();
    const double depth
        = std::max(1.0, std::min<double>(std::abs(qint64(strength)), std::min(width, height) / 4.0));
    std::mt19937 random(seed);
    const std::vector<double> top = tearDepths(width, depth, random);
    const std::vector<double> bottom = tearDepths(width, depth, random);
    const std::vector<double> left = tearDepths(height, depth, random);
    const std::vector<double> right = tearDepths(height, depth, random);
    const int reach = int(std::ceil(depth));
    for (int y = 0; y < height; ++y) {
        auto *line = reinterpret_cast<QRgb *>(out.scanLine(y));
        const bool nearTopOrBottom = y < reach || y >= height - reach;
        for (int x = 0; x < width; ++x) {
            if (!nearTopOrBottom && x >= reach && x < width - reach) {
                x = width - reach - 1; // the untouched middle of the row
                continue;
            }
            const double keep
                = std::min({inward(y, top[size_t(x)]), inward(height - 1 - y, bottom[size_t(x)]),
                    inward(x, left[size_t(y)]), inward(width - 1 - x, right[size_t(y)])});
            if (keep < 1) {
                const QRgb p = line[x];
                line[x] = qRgba(qRed(p), qGreen(p), qBlue(p), int(std::lround(qAlpha(p) * keep)));
            }
        }
    }
    return out;
}

} // namespace qb::imaging
