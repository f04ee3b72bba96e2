// GIF files: an optimal palette of up to 256 colours with error-diffusion dithering, and at most
// one transparent colour chosen by value. The picture's own alpha never makes a pixel
// transparent: the picture is laid over black first (opaque_picture.h).
#pragma once

#include <QIODevice>
#include <QImage>
#include <QList>
#include <QString>

namespace qb::imaging {

// The palette index that becomes transparent for a colour 0x00BBGGRR: the first entry with the
// same red, green and blue; -1 when the colour is -1 or no entry holds it.
int TransparentPaletteIndex(const QList<QRgb> &palette, qint32 transparencyColor);

// Writes the picture as one GIF image to an open device. False with a reason on failure.
bool WriteGif(const QImage &image, qint32 transparencyColor, QIODevice &out, QString *problem);

} // namespace qb::imaging
