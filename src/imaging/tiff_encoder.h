// TIFF files with the compression and colour depth numbered as the platform's picture encoder
// numbered them. Compression: 2 LZW, 3 CCITT group 3, 4 CCITT group 4, 5 CCITT run length
// (modified Huffman), 6 none. Depth: 1 (black and white), 4 and 8 (an optimal palette, dithered),
// 24 (RGB), 32 (RGB with unassociated alpha). The CCITT compressions only know black and white,
// so with them the picture is written at 1 bit whatever the depth.
//
// Black and white is a plain threshold on the luminance, not a dither: the CCITT codes are made
// for scanned pages and line art, where a threshold keeps edges clean and runs long, while a
// dither would turn every grey area into noise. Everything but 32 bits lays the picture over
// black first (opaque_picture.h).
#pragma once

#include <QIODevice>
#include <QImage>
#include <QString>
#include <QStringList>

namespace qb::imaging {

// Why a depth or compression is refused, naming the value and the accepted ones; empty when both
// are accepted.
QString TiffSettingsProblem(int colorDepth, int compression);

// Writes the picture as a one-page TIFF to an open device that can seek. Refuses what
// TiffSettingsProblem refuses. False with a reason on failure.
bool WriteTiff(const QImage &image, int colorDepth, int compression, QIODevice &out, QString *problem);

} // namespace qb::imaging
