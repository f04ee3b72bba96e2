// The camera's metadata block of a JPEG file, carried from a source to the picture made of it:
// the encoder writes pixels only.
#pragma once

#include <QByteArray>
#include <QString>

namespace qb::imaging {

// The first "Exif" application segment of a JPEG file, marker and length included; empty when
// the bytes are no JPEG or hold none. Reads no further than the start of the picture data.
QByteArray ReadJpegExif(const QByteArray &jpeg);

// Puts the segment into the JPEG file after its opening segments (start and the JFIF header),
// through a temporary file renamed over it; false when the file is no JPEG or is not written.
bool InsertJpegExif(const QString &fileName, const QByteArray &segment);

} // namespace qb::imaging
