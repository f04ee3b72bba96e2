#include "imaging/opaque_picture.h"

namespace qb::imaging {

QImage FlattenOverBlack(const QImage &image)
{
    if (!image.hasAlphaChannel())
        return image;
    QImage out = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < out.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(out.scanLine(y));
        for (int x = 0; x < out.width(); ++x)
            row[x] |= 0xFF000000u;
    }
    out.reinterpretAsFormat(QImage::Format_RGB32);
    return out;
}

} // namespace qb::imaging
