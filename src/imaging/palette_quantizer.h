// An optimal palette for a picture and the picture mapped onto it with error-diffusion dithering,
// for the encoders whose files hold palette indices (GIF, and TIFF at 4 and 8 bits).
#pragma once

#include <QImage>
#include <QList>
#include <QString>

#include <vector>

namespace qb::imaging {

struct IndexedPicture
{
    QList<QRgb> palette; // the colours chosen, opaque, at most the count asked for
    std::vector<uchar> indices; // width * height indices into palette, row after row
    int width = 0;
    int height = 0;
};

// Chooses up to maxColors (2..256) colours for the picture laid over black and dithers it onto
// them at full strength. False with a reason when the quantizer refuses.
bool QuantizeToPalette(const QImage &image, int maxColors, IndexedPicture &out, QString *problem);

} // namespace qb::imaging
