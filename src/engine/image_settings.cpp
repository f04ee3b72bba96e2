#include "engine/image_settings.h"

#include "imaging/drawing_colors.h"

namespace qb::engine {

imaging::ConversionSettings ConversionSettingsOf(
    const ImageFamily &f, const ImageWatermarkFamily &m, const QString &encoderFormat)
{
    imaging::ConversionSettings s;
    imaging::ProcessSettings &p = s.process;
    p.targetSize = f.ImageSize;
    p.style = f.ImageResizeMethod;
    p.brightness = f.ImageBrightness;
    p.contrast = f.ImageContrast;
    p.sharpen = f.ImageSharpen;
    p.blur = QRect(f.ImageBlurRectX, f.ImageBlurRectY, f.ImageBlurRectW, f.ImageBlurRectH);
    p.blurRadius = f.ImageBlurRadius;
    p.blurExpandEdge = f.ImageBlurExpandEdge;
    p.tornEdge = f.ImageTornEdge;
    p.invert = f.ImageInvert;
    p.backColor = imaging::ColorTextToNumber(f.ImageBackColor);
    p.backAlpha = f.ImageAlpha;
    p.shadowDepth = f.ImageShadowDepth;
    p.shadowColor = f.ImageShadowColor;
    p.shadowAlpha = f.ImageShadowAlpha;
    imaging::FrameSettings &frame = p.frame;
    frame.radiusTL = f.ImageRadiusTL;
    frame.radiusTR = f.ImageRadiusTR;
    frame.radiusBL = f.ImageRadiusBL;
    frame.radiusBR = f.ImageRadiusBR;
    frame.radiusStyleTL = f.ImageRadiusStyleTL;
    frame.radiusStyleTR = f.ImageRadiusStyleTR;
    frame.radiusStyleBL = f.ImageRadiusStyleBL;
    frame.radiusStyleBR = f.ImageRadiusStyleBR;
    frame.edgeIndentation = f.ImageEdgeWidth;
    frame.borderWidth = f.ImageBorderWidth;
    frame.borderColor = f.ImageBorderColor;
    frame.borderAlpha = f.ImageBorderAlpha;
    frame.borderDashStyle = f.ImageBorderDashStyle;
    frame.borderIndentation = f.ImageBorderIndentation;

    s.encoderFormat = encoderFormat;
    s.encode.imageQuality = f.ImageQuality;
    s.encode.tiffColorDepth = f.TIFF_ColorDepth;
    s.encode.tiffCompression = f.TIFF_Compression;
    s.backColor = p.backColor;
    s.alpha = f.ImageAlpha;
    s.titleString = f.ImageTitleString;
    s.bottomString = f.ImageBottomString;
    s.showFileName = f.ImageShowFileName;
    s.showHistogram = f.ImageShowHistogram;
    s.rotateFlip = f.ImageRotateFlip;
    s.dpiX = f.ImageDpiX;
    s.dpiY = f.ImageDpiY;
    s.stitchingSize = f.ImageStitchingSize;
    s.stitchingRow = f.ImageStitchingRow;

    imaging::TextMark &text = s.textMark;
    text.enabled = m.ImageWatermarkTextEnabled;
    text.text = m.ImageWatermarkTextString;
    text.font = m.ImageWatermarkTextFont;
    text.foreColor = m.ImageWatermarkTextForeColor;
    text.outlineColor = m.ImageWatermarkTextOutlineColor;
    text.outlineWidth = m.ImageWatermarkTextOutlineWidth;
    text.align = m.ImageWatermarkTextAlign;
    text.padding = m.ImageWatermarkTextPadding;
    text.alpha = m.ImageWatermarkTextAlpha;
    text.backColor = m.ImageWatermarkTextBackColor;
    text.backAlpha = m.ImageWatermarkTextBackAlpha;
    text.shadowDepth = m.ImageWatermarkTextShadowDepth;
    text.shadowColor = m.ImageWatermarkTextShadowColor;
    text.shadowAlpha = m.ImageWatermarkTextShadowAlpha;
    imaging::ImageMark &picture = s.imageMark;
    picture.enabled = m.ImageWatermarkImageEnabled;
    picture.file = m.ImageWatermarkImageFile;
    picture.align = m.ImageWatermarkImageAlign;
    picture.padding = m.ImageWatermarkImagePadding;
    picture.alpha = m.ImageWatermarkImageAlpha;
    picture.backColor = m.ImageWatermarkImageBackColor;
    picture.backAlpha = m.ImageWatermarkImageBackAlpha;
    picture.shadowDepth = m.ImageWatermarkImageShadowDepth;
    picture.shadowColor = m.ImageWatermarkImageShadowColor;
    picture.shadowAlpha = m.ImageWatermarkImageShadowAlpha;
    return s;
}

} // namespace qb::engine
