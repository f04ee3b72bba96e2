// Picture conversion as the engine offers it: the job's image branch, and the in-memory resize and
// flip entries with their fixed argument order.
#include "engine/ffmpegx.h"
#include "engine/image_settings.h"
#include "engine/stream_probe.h"
#include "imaging/drawing_colors.h"

namespace qb::engine {

namespace {

imaging::ProcessSettings processSettings(const QString &sTargetSize, int lStyle, int lBorderWidth,
    const QString &sBorderColor, quint8 bBorderAlpha, quint8 bBorderStyle, const QString &sEdgeIndentation,
    int lBorderIndentation, int lImageBrightness, int lImageContrast, bool bImageSharpen, int lRadiusTL,
    int lRadiusTR, int lRadiusBL, int lRadiusBR, int lRadiusStyleTL, int lRadiusStyleTR, int lRadiusStyleBL,
    int lRadiusStyleBR, int lImageBlurRectX, int lImageBlurRectY, int lImageBlurRectW, int lImageBlurRectH,
    int lTornEdge, bool bInvert, bool bImageBlurExpandEdge, int lImageBlurRadius, int CutX, int CutY,
    int CutW, int CutH, const QString &bBackColor, quint8 bBackAlpha, const QString &sShadowDepth,
    quint8 bShadowAlpha, qint32 lShadowColor, qint32 lRadiusStartColor, qint32 lRadiusEndColor,
    quint8 bRadiusStartAlpha, quint8 bRadiusEndAlpha)
{
    imaging::ProcessSettings p;
    p.targetSize = sTargetSize;
    p.style = lStyle;
    p.brightness = lImageBrightness;
    p.contrast = lImageContrast;
    p.sharpen = bImageSharpen;
    p.blur = QRect(lImageBlurRectX, lImageBlurRectY, lImageBlurRectW, lImageBlurRectH);
    p.blurRadius = lImageBlurRadius;
    p.blurExpandEdge = bImageBlurExpandEdge;
    p.tornEdge = lTornEdge;
    p.invert = bInvert;
    p.cutX = CutX;
    p.cutY = CutY;
    p.cutW = CutW;
    p.cutH = CutH;
    p.backColor = imaging::ColorTextToNumber(bBackColor);
    p.backAlpha = bBackAlpha;
    p.shadowDepth = sShadowDepth.trimmed().toInt();
    p.shadowAlpha = bShadowAlpha;
    p.shadowColor = QString::number(quint32(lShadowColor) & 0xFFFFFF, 16);
    imaging::FrameSettings &f = p.frame;
    f.radiusTL = lRadiusTL;
    f.radiusTR = lRadiusTR;
    f.radiusBL = lRadiusBL;
    f.radiusBR = lRadiusBR;
    f.radiusStyleTL = lRadiusStyleTL;
    f.radiusStyleTR = lRadiusStyleTR;
    f.radiusStyleBL = lRadiusStyleBL;
    f.radiusStyleBR = lRadiusStyleBR;
    f.edgeIndentation = sEdgeIndentation.trimmed().toInt();
    f.borderWidth = lBorderWidth;
    f.borderColor = sBorderColor;
    f.borderAlpha = bBorderAlpha;
    f.borderDashStyle = bBorderStyle;
    f.borderIndentation = lBorderIndentation;
    f.radiusStartColor = lRadiusStartColor;
    f.radiusEndColor = lRadiusEndColor;
    f.radiusStartAlpha = bRadiusStartAlpha;
    f.radiusEndAlpha = bRadiusEndAlpha;
    return p;
}

} // namespace

imaging::ConversionHooks FFmpegX::pictureHooks()
{
    imaging::ConversionHooks hooks;
    hooks.isVideo = [this](const QString &file) { return HasListedSuffix(file, Video.VideoSuffixSupported); };
    hooks.grabFrame = [this](const QString &file) { return GetVideoFrame(file, -1); };
    return hooks;
}

bool FFmpegX::ImageConversion(const QStringList &files, const QString &output, const QString &format)
{
    imaging::ConversionHooks hooks = pictureHooks();
    hooks.progress = [this](int done, int count) { Q_EMIT ImageProgress(done, count); };
    return imaging::ImageConversion(
        files, output, ConversionSettingsOf(Image, ImageWatermark, format), hooks);
}

bool FFmpegX::ResizeImagefromByte(const QByteArray &hSourceByte, QByteArray &hTargetByte,
    const QString &sTargetSize, int lStyle, int lBorderWidth, const QString &sBorderColor,
    quint8 bBorderAlpha, quint8 bBorderStyle, const QString &sEdgeIndentation, int lBorderIndentation,
    int lImageBrightness, int lImageContrast, bool bImageSharpen, int lRadiusTL, int lRadiusTR, int lRadiusBL,
    int lRadiusBR, int lRadiusStyleTL, int lRadiusStyleTR, int lRadiusStyleBL, int lRadiusStyleBR,
    int lImageBlurRectX, int lImageBlurRectY, int lImageBlurRectW, int lImageBlurRectH, int lTornEdge,
    bool bInvert, bool bImageBlurExpandEdge, int lImageBlurRadius, bool bExpandEdge, int CutX, int CutY,
    int CutW, int CutH, const QString &bBackColor, quint8 bBackAlpha, const QString &sShadowDepth,
    quint8 bShadowAlpha, qint32 lShadowColor, const QString &sShadowOffset, qint32 lRadiusStartColor,
    qint32 lRadiusEndColor, quint8 bRadiusStartAlpha, quint8 bRadiusEndAlpha)
{
    QImage target;
    if (!ResizeImagefromStdPicture(imaging::ConvertByteToImage(hSourceByte), target, sTargetSize, lStyle,
            lBorderWidth, sBorderColor, bBorderAlpha, bBorderStyle, sEdgeIndentation, lBorderIndentation,
            lImageBrightness, lImageContrast, bImageSharpen, lRadiusTL, lRadiusTR, lRadiusBL, lRadiusBR,
            lRadiusStyleTL, lRadiusStyleTR, lRadiusStyleBL, lRadiusStyleBR, lImageBlurRectX, lImageBlurRectY,
            lImageBlurRectW, lImageBlurRectH, lTornEdge, bInvert, bImageBlurExpandEdge, lImageBlurRadius,
            bExpandEdge, CutX, CutY, CutW, CutH, bBackColor, bBackAlpha, sShadowDepth, bShadowAlpha,
            lShadowColor, sShadowOffset, lRadiusStartColor, lRadiusEndColor, bRadiusStartAlpha,
            bRadiusEndAlpha))
        return false;
    hTargetByte = imaging::ConvertImageToByte(target);
    return !hTargetByte.isEmpty();
}

bool FFmpegX::ResizeImagefromStdPicture(const QImage &hSourceImage, QImage &hTargetImage,
    const QString &sTargetSize, int lStyle, int lBorderWidth, const QString &sBorderColor,
    quint8 bBorderAlpha, quint8 bBorderStyle, const QString &sEdgeIndentation, int lBorderIndentation,
    int lImageBrightness, int lImageContrast, bool bImageSharpen, int lRadiusTL, int lRadiusTR, int lRadiusBL,
    int lRadiusBR, int lRadiusStyleTL, int lRadiusStyleTR, int lRadiusStyleBL, int lRadiusStyleBR,
    int lImageBlurRectX, int lImageBlurRectY, int lImageBlurRectW, int lImageBlurRectH, int lTornEdge,
    bool bInvert, bool bImageBlurExpandEdge, int lImageBlurRadius, bool bExpandEdge, int CutX, int CutY,
    int CutW, int CutH, const QString &bBackColor, quint8 bBackAlpha, const QString &sShadowDepth,
    quint8 bShadowAlpha, qint32 lShadowColor, const QString &sShadowOffset, qint32 lRadiusStartColor,
    qint32 lRadiusEndColor, quint8 bRadiusStartAlpha, quint8 bRadiusEndAlpha)
{
    // The shadow lies its depth down and right and the blur has its own edge flag: the general
    // edge flag and the separate offset have nothing left to steer.
    Q_UNUSED(bExpandEdge);
    Q_UNUSED(sShadowOffset);
    if (hSourceImage.isNull())
        return false;
    const QImage result = imaging::ProcessImage(hSourceImage,
        processSettings(sTargetSize, lStyle, lBorderWidth, sBorderColor, bBorderAlpha, bBorderStyle,
            sEdgeIndentation, lBorderIndentation, lImageBrightness, lImageContrast, bImageSharpen, lRadiusTL,
            lRadiusTR, lRadiusBL, lRadiusBR, lRadiusStyleTL, lRadiusStyleTR, lRadiusStyleBL, lRadiusStyleBR,
            lImageBlurRectX, lImageBlurRectY, lImageBlurRectW, lImageBlurRectH, lTornEdge, bInvert,
            bImageBlurExpandEdge, lImageBlurRadius, CutX, CutY, CutW, CutH, bBackColor, bBackAlpha,
            sShadowDepth, bShadowAlpha, lShadowColor, lRadiusStartColor, lRadiusEndColor, bRadiusStartAlpha,
            bRadiusEndAlpha));
    if (result.isNull())
        return false;
    hTargetImage = result;
    return true;
}

bool FFmpegX::FlipImagefromStdPicture(const QImage &hSourceImage, QImage &hTargetImage, int lRotateFlip)
{
    if (hSourceImage.isNull())
        return false;
    hTargetImage = imaging::RotateFlip(hSourceImage, lRotateFlip);
    return true;
}

} // namespace qb::engine
