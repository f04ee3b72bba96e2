// Saving a picture by the extension-like format name the callers pass around: "jpg"/"jpeg",
// "png", "gif", "tif"/"tiff", matched in any case, and anything else written as BMP under the
// name given. Every save writes a temporary file beside the target and renames it over the
// target only when the whole file is written, so a failure leaves any earlier file untouched and
// never a half-written one.
#pragma once

#include <QImage>
#include <QString>

namespace qb::imaging {

struct EncodeSettings
{
    QString encoderFormat;
    int imageQuality = 85; // JPEG, 0 to 100
    int tiffColorDepth = 24; // 1, 4, 8, 24 or 32 (tiff_encoder.h)
    int tiffCompression = 2; // 2 LZW, 3 CCITT group 3, 4 CCITT group 4, 5 CCITT run length, 6 none
    qint32 gifTransparencyColor = -1; // 0x00BBGGRR made transparent in the GIF palette, -1 for none
};

// Writes the picture to fileName in the format the settings name. False, with a reason in
// problem when one is given, if the settings are refused or the file cannot be written.
bool SaveImageToFile(
    const QImage &image, const QString &fileName, const EncodeSettings &settings, QString *problem = nullptr);

// The text of a picture-library status code, 0 "OK." upward; "Unknown GDI+ Error." for others.
QString GdiplusStatusText(int status);

} // namespace qb::imaging
