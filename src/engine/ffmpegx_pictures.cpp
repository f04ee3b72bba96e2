// The picture forms as the engine offers them: a QImage for the picture object and the image
// handle, PNG bytes for the byte form. Qt needs no session, so opening one always succeeds.
#include "engine/ffmpegx.h"
#include "engine/stream_probe.h"
#include "imaging/image_container.h"
#include "imaging/image_conversion.h"
#include "imaging/image_encoder.h"

namespace qb::engine {

namespace {

bool sizeOut(const QSize &size, int &lW, int &lH)
{
    if (!size.isValid() || size.isEmpty())
        return false;
    lW = size.width();
    lH = size.height();
    return true;
}

imaging::EncodeSettings encodeSettings(const QString &encoderFormat, int lImageQuality, int lTIFF_ColorDepth,
    int lTIFF_Compression, qint32 lGIFTransparencyColor)
{
    return {encoderFormat, lImageQuality, lTIFF_ColorDepth, lTIFF_Compression, lGIFTransparencyColor};
}

} // namespace

bool FFmpegX::StartUpGDIP(qint64 &lToken)
{
    lToken = 1;
    return true;
}

void FFmpegX::ShutdownGDIP(qint64 &lToken)
{
    lToken = 0;
}

QImage FFmpegX::LoadStdPictureFromFile(const QString &FileName)
{
    const imaging::ConversionHooks hooks = pictureHooks();
    return imaging::LoadImageToGdip(FileName, hooks.isVideo, hooks.grabFrame);
}

bool FFmpegX::ConvertImageToStdPicture(const QImage &hImage, QImage &hTargetImage)
{
    if (hImage.isNull())
        return false;
    hTargetImage = hImage;
    return true;
}

bool FFmpegX::ConvertStdPictureToByte(const QImage &hSourceImage, QByteArray &hTargetByte)
{
    hTargetByte = imaging::ConvertImageToByte(hSourceImage);
    return !hTargetByte.isEmpty();
}

bool FFmpegX::ConvertByteToImage(const QByteArray &hSourceByte, QImage &hImage)
{
    hImage = imaging::ConvertByteToImage(hSourceByte);
    return !hImage.isNull();
}

bool FFmpegX::ConvertImageToByte(const QImage &hImage, QByteArray &hTargetByte)
{
    return ConvertStdPictureToByte(hImage, hTargetByte);
}

bool FFmpegX::DisposeImage(QImage &hImage)
{
    if (hImage.isNull())
        return false;
    hImage = QImage();
    return true;
}

bool FFmpegX::ConvertByteToStdPicture(const QByteArray &hSourceByte, QImage &hTargetImage, qint32 lBackColor)
{
    const QImage flat = imaging::ConvertByteToStdPicture(hSourceByte, lBackColor);
    if (flat.isNull())
        return false;
    hTargetImage = flat;
    return true;
}

bool FFmpegX::SaveStdPictureToFile(const QImage &hSourceImage, const QString &FileName,
    const QString &encoderFormat, int lImageQuality, int lTIFF_ColorDepth, int lTIFF_Compression,
    qint32 lGIFTransparencyColor)
{
    return imaging::SaveImageToFile(hSourceImage, FileName,
        encodeSettings(
            encoderFormat, lImageQuality, lTIFF_ColorDepth, lTIFF_Compression, lGIFTransparencyColor));
}

bool FFmpegX::SaveImageByteToFile(const QByteArray &hSourceByte, const QString &FileName,
    const QString &encoderFormat, int lImageQuality, int lTIFF_ColorDepth, int lTIFF_Compression,
    qint32 lGIFTransparencyColor)
{
    return SaveStdPictureToFile(imaging::ConvertByteToImage(hSourceByte), FileName, encoderFormat,
        lImageQuality, lTIFF_ColorDepth, lTIFF_Compression, lGIFTransparencyColor);
}

QByteArray FFmpegX::LoadImageFileToByte(const QString &src_FileName)
{
    return imaging::LoadImageFileToByte(src_FileName);
}

bool FFmpegX::GetImageSize(const QString &FileName, int &lW, int &lH)
{
    return sizeOut(imaging::GetImageSize(FileName), lW, lH);
}

bool FFmpegX::GetImageSize2(const QString &FileName, int &lW, int &lH)
{
    return sizeOut(LoadStdPictureFromFile(FileName).size(), lW, lH);
}

bool FFmpegX::GetImageSizeFromStdPicture(const QImage &hSourceImage, int &lW, int &lH)
{
    return !hSourceImage.isNull() && sizeOut(hSourceImage.size(), lW, lH);
}

bool FFmpegX::GetImageSizeFromByte(const QByteArray &hSourceByte, int &lW, int &lH)
{
    return sizeOut(imaging::GetImageSizeFromByte(hSourceByte), lW, lH);
}

} // namespace qb::engine
