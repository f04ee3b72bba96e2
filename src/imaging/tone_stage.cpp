#include "imaging/tone_stage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace qb::imaging {

namespace {

QImage straightCopy(const QImage &image)
{
    return image.convertToFormat(QImage::Format_ARGB32);
}

uchar clampByte(double v)
{
    return uchar(std::clamp(std::lround(v), 0L, 255L));
}

// The normalised Gaussian taps out to three sigma either side.
std::vector<float> gaussianTaps(double sigma)
{
    const int reach = int(std::ceil(3 * sigma));
    std::vector<double> weights(size_t(2 * reach + 1));
    double sum = 0;
    for (int i = -reach; i <= reach; ++i)
        sum += weights[size_t(i + reach)] = std::exp(-(i * i) / (2 * sigma * sigma));
    std::vector<float> taps;
    for (const double w : weights)
        taps.push_back(float(w / sum));
    return taps;
}

// The rows of a picture blurred along themselves, premultiplied, four floats a pixel, worked out
// when first asked for. Only as many rows as the taps reach are kept, so a large picture costs a
// few rows rather than a copy of itself.
class AcrossRows
{
public:
    AcrossRows(const QImage &image, const std::vector<float> &taps)
        : m_image(image)
        , m_taps(taps)
        , m_slots(taps.size())
        , m_rows(m_slots * size_t(image.width()) * 4)
        , m_held(m_slots, -1)
    { }

    // Rows past the top and bottom repeat the edge row.
    const float *row(int y)
    {
        y = std::clamp(y, 0, m_image.height() - 1);
        const size_t slot = size_t(y) % m_slots;
        float *out = &m_rows[slot * size_t(m_image.width()) * 4];
        if (m_held[slot] != y) {
            fill(y, out);
            m_held[slot] = y;
        }
        return out;
    }

private:
    void fill(int y, float *out) const
    {
        const int width = m_image.width();
        const int reach = int(m_taps.size() / 2);
        const auto *line = reinterpret_cast<const QRgb *>(m_image.constScanLine(y));
        for (int x = 0; x < width; ++x) {
            float acc[4] = {0, 0, 0, 0};
            for (int k = -reach; k <= reach; ++k) {
                const QRgb p = line[std::clamp(x + k, 0, width - 1)];
                const float t = m_taps[size_t(k + reach)];
                const float a = qAlpha(p) / 255.0f;
                acc[0] += t * qRed(p) * a;
                acc[1] += t * qGreen(p) * a;
                acc[2] += t * qBlue(p) * a;
                acc[3] += t * a;
            }
            std::copy(acc, acc + 4, out + size_t(x) * 4);
        }
    }

    const QImage &m_image;
    const std::vector<float> &m_taps;
    size_t m_slots;
    std::vector<float> m_rows;
    std::vector<int> m_held;
};

} // namespace

QImage AdjustBrightnessContrast(const QImage &image, int brightness, int contrast)
{
    if (image.isNull())
        return {};
    QImage out = straightCopy(image);
    brightness = std::clamp(brightness, -255, 255);
    contrast = std::clamp(contrast, -100, 100);
    if (brightness == 0 && contrast == 0)
        return out;
    const double f = contrast <= 0 ? (100.0 + contrast) / 100.0
        : contrast < 100           ? 100.0 / (100 - contrast)
                                   : 0;
    std::array<uchar, 256> table;
    for (int v = 0; v < 256; ++v)
        table[size_t(v)] = contrast >= 100 ? (v + brightness >= 128 ? 255 : 0)
                                           : clampByte(127.5 + (v + brightness - 127.5) * f);
    for (int y = 0; y < out.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(out.scanLine(y));
        for (int x = 0; x < out.width(); ++x) {
            const QRgb p = line[x];
            line[x]
                = qRgba(table[size_t(qRed(p))], table[size_t(qGreen(p))], table[size_t(qBlue(p))], qAlpha(p));
        }
    }
    return out;
}

QImage SharpenImage(const QImage &image)
{
    if (image.isNull())
        return {};
    const QImage source = straightCopy(image);
    QImage out = source;
    const std::vector<float> taps = gaussianTaps(kSharpenSigma);
    const int reach = int(taps.size() / 2);
    AcrossRows across(source, taps);
    std::vector<const float *> rows(taps.size());
    for (int y = 0; y < out.height(); ++y) {
        // The rows a window reaches are distinct, so none of them pushes out another.
        for (int k = -reach; k <= reach; ++k)
            rows[size_t(k + reach)] = across.row(y + k);
        auto *line = reinterpret_cast<QRgb *>(out.scanLine(y));
        for (int x = 0; x < out.width(); ++x) {
            const QRgb p = line[x];
            if (qAlpha(p) == 0)
                continue;
            float b[4] = {0, 0, 0, 0};
            for (size_t k = 0; k < taps.size(); ++k) {
                const float *s = rows[k] + size_t(x) * 4;
                const float t = taps[k];
                for (int c = 0; c < 4; ++c)
                    b[c] += t * s[c];
            }
            if (b[3] <= 0)
                continue;
            const auto sharpen
                = [&](int v, float around) { return clampByte(v + kSharpenAmount * (v - around / b[3])); };
            line[x]
                = qRgba(sharpen(qRed(p), b[0]), sharpen(qGreen(p), b[1]), sharpen(qBlue(p), b[2]), qAlpha(p));
        }
    }
    return out;
}

QImage InvertImage(const QImage &image)
{
    if (image.isNull())
        return {};
    QImage out = straightCopy(image);
    out.invertPixels(QImage::InvertRgb);
    return out;
}

} // namespace qb::imaging
