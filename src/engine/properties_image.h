// Property families of pictures: conversion, stamps and grabbed frames.
#pragma once

#include "engine/properties_defaults.h"

#include <QObject>
#include <QString>

namespace qb::engine {

// Pictures as sources and outputs: size, tone, blur, frame, stitching and the texts around them.
struct ImageFamily
{
    Q_GADGET
    Q_PROPERTY(int ImageResizeMethod MEMBER ImageResizeMethod)
    Q_PROPERTY(int ImageQuality MEMBER ImageQuality)
    Q_PROPERTY(QString ImageBackColor MEMBER ImageBackColor)
    Q_PROPERTY(quint8 ImageAlpha MEMBER ImageAlpha)
    Q_PROPERTY(int ImageDpiX MEMBER ImageDpiX)
    Q_PROPERTY(int ImageDpiY MEMBER ImageDpiY)
    Q_PROPERTY(int ImageEdgeWidth MEMBER ImageEdgeWidth)
    Q_PROPERTY(int ImageBorderIndentation MEMBER ImageBorderIndentation)
    Q_PROPERTY(int ImageRotateFlip MEMBER ImageRotateFlip)
    Q_PROPERTY(int ImageTornEdge MEMBER ImageTornEdge)
    Q_PROPERTY(bool ImageInvert MEMBER ImageInvert)
    Q_PROPERTY(int ImageBrightness MEMBER ImageBrightness)
    Q_PROPERTY(int ImageContrast MEMBER ImageContrast)
    Q_PROPERTY(bool ImageSharpen MEMBER ImageSharpen)
    Q_PROPERTY(bool ImageShowHistogram MEMBER ImageShowHistogram)
    Q_PROPERTY(bool ImageShowFileName MEMBER ImageShowFileName)
    Q_PROPERTY(int ImageShadowDepth MEMBER ImageShadowDepth)
    Q_PROPERTY(QString ImageShadowColor MEMBER ImageShadowColor)
    Q_PROPERTY(quint8 ImageShadowAlpha MEMBER ImageShadowAlpha)
    Q_PROPERTY(int TIFF_ColorDepth MEMBER TIFF_ColorDepth)
    Q_PROPERTY(int TIFF_Compression MEMBER TIFF_Compression)
    Q_PROPERTY(int ImageBorderWidth MEMBER ImageBorderWidth)
    Q_PROPERTY(QString ImageBorderColor MEMBER ImageBorderColor)
    Q_PROPERTY(quint8 ImageBorderAlpha MEMBER ImageBorderAlpha)
    Q_PROPERTY(quint8 ImageBorderDashStyle MEMBER ImageBorderDashStyle)
    Q_PROPERTY(int ImageBlurRectX MEMBER ImageBlurRectX)
    Q_PROPERTY(int ImageBlurRectY MEMBER ImageBlurRectY)
    Q_PROPERTY(int ImageBlurRectW MEMBER ImageBlurRectW)
    Q_PROPERTY(int ImageBlurRectH MEMBER ImageBlurRectH)
    Q_PROPERTY(bool ImageBlurExpandEdge MEMBER ImageBlurExpandEdge)
    Q_PROPERTY(int ImageBlurRadius MEMBER ImageBlurRadius)
    Q_PROPERTY(int ImageRadiusTL MEMBER ImageRadiusTL)
    Q_PROPERTY(int ImageRadiusTR MEMBER ImageRadiusTR)
    Q_PROPERTY(int ImageRadiusBL MEMBER ImageRadiusBL)
    Q_PROPERTY(int ImageRadiusBR MEMBER ImageRadiusBR)
    Q_PROPERTY(int ImageRadiusStyleTL MEMBER ImageRadiusStyleTL)
    Q_PROPERTY(int ImageRadiusStyleTR MEMBER ImageRadiusStyleTR)
    Q_PROPERTY(int ImageRadiusStyleBL MEMBER ImageRadiusStyleBL)
    Q_PROPERTY(int ImageRadiusStyleBR MEMBER ImageRadiusStyleBR)
    Q_PROPERTY(QString ImageSize MEMBER ImageSize)
    Q_PROPERTY(QString ImageStitchingSize MEMBER ImageStitchingSize)
    Q_PROPERTY(int ImageStitchingRow MEMBER ImageStitchingRow)
    Q_PROPERTY(QString ImageTitleString MEMBER ImageTitleString)
    Q_PROPERTY(QString ImageBottomString MEMBER ImageBottomString)
    Q_PROPERTY(QString ImageSuffixSupported MEMBER ImageSuffixSupported)

public:
    int ImageResizeMethod = 0;
    int ImageQuality = 85;
    QString ImageBackColor = DefaultColorText();
    quint8 ImageAlpha = 255;
    int ImageDpiX = 0;
    int ImageDpiY = 0;
    int ImageEdgeWidth = 0;
    int ImageBorderIndentation = 0;
    int ImageRotateFlip = 0;
    int ImageTornEdge = 0;
    bool ImageInvert = false;
    int ImageBrightness = 0;
    int ImageContrast = 0;
    bool ImageSharpen = false;
    bool ImageShowHistogram = false;
    bool ImageShowFileName = false;
    int ImageShadowDepth = 0;
    QString ImageShadowColor = DefaultColorText();
    quint8 ImageShadowAlpha = 255;
    int TIFF_ColorDepth = 24;
    int TIFF_Compression = 6;
    int ImageBorderWidth = 0;
    QString ImageBorderColor = DefaultColorText();
    quint8 ImageBorderAlpha = 255;
    quint8 ImageBorderDashStyle = 0;
    int ImageBlurRectX = 0;
    int ImageBlurRectY = 0;
    int ImageBlurRectW = 0;
    int ImageBlurRectH = 0;
    bool ImageBlurExpandEdge = false;
    int ImageBlurRadius = 5;
    int ImageRadiusTL = 0;
    int ImageRadiusTR = 0;
    int ImageRadiusBL = 0;
    int ImageRadiusBR = 0;
    int ImageRadiusStyleTL = 0;
    int ImageRadiusStyleTR = 0;
    int ImageRadiusStyleBL = 0;
    int ImageRadiusStyleBR = 0;
    QString ImageSize;
    QString ImageStitchingSize = QStringLiteral("300x300");
    int ImageStitchingRow = 0;
    QString ImageTitleString;
    QString ImageBottomString;
    QString ImageSuffixSupported = QStringLiteral("*.jpg; *.jpeg; *.gif; *.bmp; *.png; *.dib; *.tif; *.tiff");
};

// A text and a picture stamped on converted pictures.
struct ImageWatermarkFamily
{
    Q_GADGET
    Q_PROPERTY(bool ImageWatermarkTextEnabled MEMBER ImageWatermarkTextEnabled)
    Q_PROPERTY(QString ImageWatermarkTextString MEMBER ImageWatermarkTextString)
    Q_PROPERTY(QString ImageWatermarkTextFont MEMBER ImageWatermarkTextFont)
    Q_PROPERTY(QString ImageWatermarkTextForeColor MEMBER ImageWatermarkTextForeColor)
    Q_PROPERTY(QString ImageWatermarkTextOutlineColor MEMBER ImageWatermarkTextOutlineColor)
    Q_PROPERTY(int ImageWatermarkTextOutlineWidth MEMBER ImageWatermarkTextOutlineWidth)
    Q_PROPERTY(int ImageWatermarkTextAlign MEMBER ImageWatermarkTextAlign)
    Q_PROPERTY(int ImageWatermarkTextPadding MEMBER ImageWatermarkTextPadding)
    Q_PROPERTY(quint8 ImageWatermarkTextAlpha MEMBER ImageWatermarkTextAlpha)
    Q_PROPERTY(QString ImageWatermarkTextBackColor MEMBER ImageWatermarkTextBackColor)
    Q_PROPERTY(quint8 ImageWatermarkTextBackAlpha MEMBER ImageWatermarkTextBackAlpha)
    Q_PROPERTY(int ImageWatermarkTextShadowDepth MEMBER ImageWatermarkTextShadowDepth)
    Q_PROPERTY(QString ImageWatermarkTextShadowColor MEMBER ImageWatermarkTextShadowColor)
    Q_PROPERTY(quint8 ImageWatermarkTextShadowAlpha MEMBER ImageWatermarkTextShadowAlpha)
    Q_PROPERTY(bool ImageWatermarkImageEnabled MEMBER ImageWatermarkImageEnabled)
    Q_PROPERTY(QString ImageWatermarkImageFile MEMBER ImageWatermarkImageFile)
    Q_PROPERTY(int ImageWatermarkImageAlign MEMBER ImageWatermarkImageAlign)
    Q_PROPERTY(int ImageWatermarkImagePadding MEMBER ImageWatermarkImagePadding)
    Q_PROPERTY(quint8 ImageWatermarkImageAlpha MEMBER ImageWatermarkImageAlpha)
    Q_PROPERTY(QString ImageWatermarkImageBackColor MEMBER ImageWatermarkImageBackColor)
    Q_PROPERTY(quint8 ImageWatermarkImageBackAlpha MEMBER ImageWatermarkImageBackAlpha)
    Q_PROPERTY(int ImageWatermarkImageShadowDepth MEMBER ImageWatermarkImageShadowDepth)
    Q_PROPERTY(QString ImageWatermarkImageShadowColor MEMBER ImageWatermarkImageShadowColor)
    Q_PROPERTY(quint8 ImageWatermarkImageShadowAlpha MEMBER ImageWatermarkImageShadowAlpha)

public:
    bool ImageWatermarkTextEnabled = false;
    QString ImageWatermarkTextString;
    QString ImageWatermarkTextFont = DefaultFontText();
    QString ImageWatermarkTextForeColor = DefaultColorText();
    QString ImageWatermarkTextOutlineColor = DefaultColorText();
    int ImageWatermarkTextOutlineWidth = 0;
    int ImageWatermarkTextAlign = 0;
    int ImageWatermarkTextPadding = 0;
    quint8 ImageWatermarkTextAlpha = 255;
    QString ImageWatermarkTextBackColor = DefaultColorText();
    quint8 ImageWatermarkTextBackAlpha = 0;
    int ImageWatermarkTextShadowDepth = 0;
    QString ImageWatermarkTextShadowColor = DefaultColorText();
    quint8 ImageWatermarkTextShadowAlpha = 255;
    bool ImageWatermarkImageEnabled = false;
    QString ImageWatermarkImageFile;
    int ImageWatermarkImageAlign = 0;
    int ImageWatermarkImagePadding = 0;
    quint8 ImageWatermarkImageAlpha = 255;
    QString ImageWatermarkImageBackColor = DefaultColorText();
    quint8 ImageWatermarkImageBackAlpha = 0;
    int ImageWatermarkImageShadowDepth = 0;
    QString ImageWatermarkImageShadowColor = DefaultColorText();
    quint8 ImageWatermarkImageShadowAlpha = 255;
};

// Frames grabbed from a video, one picture or a contact sheet of them.
struct ImageGrabberFamily
{
    Q_GADGET
    Q_PROPERTY(bool ImageGrabberEnabled MEMBER ImageGrabberEnabled)
    Q_PROPERTY(QString ImageGrabberCommentString MEMBER ImageGrabberCommentString)
    Q_PROPERTY(QString ImageGrabberThumbMatrix MEMBER ImageGrabberThumbMatrix)
    Q_PROPERTY(QString ImageGrabberFormat MEMBER ImageGrabberFormat)
    Q_PROPERTY(QString ImageGrabberForeColor MEMBER ImageGrabberForeColor)
    Q_PROPERTY(QString ImageGrabberBackColor MEMBER ImageGrabberBackColor)
    Q_PROPERTY(int ImageGrabberBackStyle MEMBER ImageGrabberBackStyle)
    Q_PROPERTY(bool ImageGrabberShowTimeString MEMBER ImageGrabberShowTimeString)
    Q_PROPERTY(bool ImageGrabberShowFileInfo MEMBER ImageGrabberShowFileInfo)
    Q_PROPERTY(bool ImageGrabberEnhancedFileInfo MEMBER ImageGrabberEnhancedFileInfo)
    Q_PROPERTY(QString ImageGrabberSize MEMBER ImageGrabberSize)
    Q_PROPERTY(QString ImageGrabberTextFont MEMBER ImageGrabberTextFont)

public:
    bool ImageGrabberEnabled = false;
    QString ImageGrabberCommentString;
    QString ImageGrabberThumbMatrix = QStringLiteral("3x5");
    QString ImageGrabberFormat = QStringLiteral("JPG");
    QString ImageGrabberForeColor = QStringLiteral("202020");
    QString ImageGrabberBackColor = DefaultColorText();
    int ImageGrabberBackStyle = 0;
    bool ImageGrabberShowTimeString = false;
    bool ImageGrabberShowFileInfo = false;
    bool ImageGrabberEnhancedFileInfo = false;
    QString ImageGrabberSize = QStringLiteral("300max");
    QString ImageGrabberTextFont = DefaultFontText();
};

} // namespace qb::engine
