// The three picture forms of the engine on Qt: a QImage stands for both the picture object and the
// image handle, and the byte form is a whole encoded file (PNG for everything made here). Nothing
// throws: failures give a null picture, an empty array or false.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

#include <functional>

namespace qb::imaging {

// The file's bytes as they stand, undecoded; empty for a missing or unreadable file.
QByteArray LoadImageFileToByte(const QString &fileName);

// A picture as PNG bytes; empty for a null picture.
QByteArray ConvertImageToByte(const QImage &image);

// Whatever a byte array holds that a reader here knows (the layered format too); null otherwise.
QImage ConvertByteToImage(const QByteArray &bytes);

// The bytes decoded and laid over backColor (0x00BBGGRR) at full opacity; null for an empty array.
QImage ConvertByteToStdPicture(const QByteArray &bytes, qint32 backColor);

// Takes one frame of a video file, for the loader's last step.
using VideoFrameGrabber = std::function<QImage(const QString &video)>;

// The loader: a layered-image file through our reader, anything else by its file name and, when
// that fails, once more from its bytes; a file that is none of these but a video (isVideo) is a
// frame taken by grabFrame.
// With atLeast, a reader that can decode at a smaller scale (JPEG) does so, keeping the shape and
// both sides at least that large: a large photograph made small never decodes whole.
QImage LoadImageToGdip(const QString &fileName, const std::function<bool(const QString &)> &isVideo = {},
    const VideoFrameGrabber &grabFrame = {}, QSize atLeast = {});

// Sizes in pixels; an invalid size when the source holds no picture.
QSize GetImageSize(const QString &fileName);
QSize GetImageSizeFromByte(const QByteArray &bytes);

// The platform's rotate-and-flip codes: 0 none, 1 90°, 2 180°, 3 270° clockwise, and 4 to 7 the
// same followed by a horizontal flip. Other codes leave the picture.
QImage RotateFlip(const QImage &image, int code);

} // namespace qb::imaging
