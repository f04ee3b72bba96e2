// Property families of what a job burns into the video: the frame-server script and the filter
// chain's overlays, subtitles and timed watermarks.
#pragma once

#include "engine/properties_defaults.h"

#include <QObject>
#include <QString>

namespace qb::engine {

// The frame-server script: overlays, inserts, replacement audio and the user's own lines.
struct AVSFamily
{
    Q_GADGET
    Q_PROPERTY(bool AVSEnabled MEMBER AVSEnabled)
    Q_PROPERTY(QString AVSOverallSubtitle MEMBER AVSOverallSubtitle)
    Q_PROPERTY(bool AVSSubtitleEnableTitle MEMBER AVSSubtitleEnableTitle)
    Q_PROPERTY(bool AVSSubtitleEnableLogo MEMBER AVSSubtitleEnableLogo)
    Q_PROPERTY(bool AVSSubtitleEnableBanner MEMBER AVSSubtitleEnableBanner)
    Q_PROPERTY(QString AVSSubtitleStringTitle MEMBER AVSSubtitleStringTitle)
    Q_PROPERTY(QString AVSSubtitleStringLogo MEMBER AVSSubtitleStringLogo)
    Q_PROPERTY(QString AVSSubtitleStringBanner MEMBER AVSSubtitleStringBanner)
    Q_PROPERTY(QString AVSSubtitleFont MEMBER AVSSubtitleFont)
    Q_PROPERTY(QString AVSSubtitleFontTitle MEMBER AVSSubtitleFontTitle)
    Q_PROPERTY(QString AVSSubtitleFontLogo MEMBER AVSSubtitleFontLogo)
    Q_PROPERTY(QString AVSSubtitleFontBanner MEMBER AVSSubtitleFontBanner)
    Q_PROPERTY(QString AVSSubtitleColor MEMBER AVSSubtitleColor)
    Q_PROPERTY(QString AVSSubtitleColorTitle MEMBER AVSSubtitleColorTitle)
    Q_PROPERTY(QString AVSSubtitleColorLogo MEMBER AVSSubtitleColorLogo)
    Q_PROPERTY(QString AVSSubtitleColorBanner MEMBER AVSSubtitleColorBanner)
    Q_PROPERTY(QString AVSSubtitleColorBorder MEMBER AVSSubtitleColorBorder)
    Q_PROPERTY(int AVSSubtitleAlign MEMBER AVSSubtitleAlign)
    Q_PROPERTY(int AVSSubtitleAlignTitle MEMBER AVSSubtitleAlignTitle)
    Q_PROPERTY(int AVSSubtitleAlignLogo MEMBER AVSSubtitleAlignLogo)
    Q_PROPERTY(QString AVSSubtitleTimeStartTitle MEMBER AVSSubtitleTimeStartTitle)
    Q_PROPERTY(QString AVSSubtitleTimeEndTitle MEMBER AVSSubtitleTimeEndTitle)
    Q_PROPERTY(QString AVSSubtitleTimeStartLogo MEMBER AVSSubtitleTimeStartLogo)
    Q_PROPERTY(QString AVSSubtitleTimeEndLogo MEMBER AVSSubtitleTimeEndLogo)
    Q_PROPERTY(QString AVSSubtitleTimeStartBanner MEMBER AVSSubtitleTimeStartBanner)
    Q_PROPERTY(QString AVSSubtitleTimeEndBanner MEMBER AVSSubtitleTimeEndBanner)
    Q_PROPERTY(QString AVSVSFilterPath MEMBER AVSVSFilterPath)
    Q_PROPERTY(bool AVSEnableSubtitle MEMBER AVSEnableSubtitle)
    Q_PROPERTY(bool AVSEnableSubtitleFormat MEMBER AVSEnableSubtitleFormat)
    Q_PROPERTY(bool AVSAudioReplace MEMBER AVSAudioReplace)
    Q_PROPERTY(QString AVSAudioReplaceFileName MEMBER AVSAudioReplaceFileName)
    Q_PROPERTY(int AVSAudioReplaceVolume MEMBER AVSAudioReplaceVolume)
    Q_PROPERTY(bool AVSLayOver MEMBER AVSLayOver)
    Q_PROPERTY(QString AVSLayOverRect MEMBER AVSLayOverRect)
    Q_PROPERTY(QString AVSLayOverColor MEMBER AVSLayOverColor)
    Q_PROPERTY(QString AVSScreenCrop MEMBER AVSScreenCrop)
    Q_PROPERTY(bool AVSInsertVideo MEMBER AVSInsertVideo)
    Q_PROPERTY(QString AVSInsertVideoFileName MEMBER AVSInsertVideoFileName)
    Q_PROPERTY(int AVSInsertVideoPosition MEMBER AVSInsertVideoPosition)
    Q_PROPERTY(bool AVSInsertImage MEMBER AVSInsertImage)
    Q_PROPERTY(QString AVSInsertImageFileName MEMBER AVSInsertImageFileName)
    Q_PROPERTY(int AVSInsertImagePosition MEMBER AVSInsertImagePosition)
    Q_PROPERTY(int AVSVideoRotate MEMBER AVSVideoRotate)
    Q_PROPERTY(int AVSFlip MEMBER AVSFlip)
    Q_PROPERTY(double AVSInsertImageTime MEMBER AVSInsertImageTime)
    Q_PROPERTY(bool AVSLogoImage MEMBER AVSLogoImage)
    Q_PROPERTY(QString AVSLogoImageFileName MEMBER AVSLogoImageFileName)
    Q_PROPERTY(QString AVSLogoImagePosition MEMBER AVSLogoImagePosition)
    Q_PROPERTY(QString AVSUserScript MEMBER AVSUserScript)

public:
    bool AVSEnabled = false;
    QString AVSOverallSubtitle;
    bool AVSSubtitleEnableTitle = false;
    bool AVSSubtitleEnableLogo = false;
    bool AVSSubtitleEnableBanner = false;
    QString AVSSubtitleStringTitle;
    QString AVSSubtitleStringLogo;
    QString AVSSubtitleStringBanner;
    QString AVSSubtitleFont = DefaultFontText();
    QString AVSSubtitleFontTitle = DefaultFontText();
    QString AVSSubtitleFontLogo = QStringLiteral("Arial, 18, False, False, 0, False, False, 400");
    QString AVSSubtitleFontBanner = DefaultFontText();
    QString AVSSubtitleColor = DefaultColorText();
    QString AVSSubtitleColorTitle = DefaultColorText();
    QString AVSSubtitleColorLogo = DefaultColorText();
    QString AVSSubtitleColorBanner = DefaultColorText();
    QString AVSSubtitleColorBorder = QStringLiteral("000000");
    int AVSSubtitleAlign = 2;
    int AVSSubtitleAlignTitle = 5;
    int AVSSubtitleAlignLogo = 9;
    QString AVSSubtitleTimeStartTitle = QStringLiteral("00:00:00,000");
    QString AVSSubtitleTimeEndTitle = QStringLiteral("00:00:15,000");
    QString AVSSubtitleTimeStartLogo = QStringLiteral("00:00:05,000");
    QString AVSSubtitleTimeEndLogo = QStringLiteral("00:00:20,000");
    QString AVSSubtitleTimeStartBanner = QStringLiteral("00:00:00,000");
    QString AVSSubtitleTimeEndBanner = QStringLiteral("00:00:30,000");
    QString AVSVSFilterPath;
    bool AVSEnableSubtitle = false;
    bool AVSEnableSubtitleFormat = false;
    bool AVSAudioReplace = false;
    QString AVSAudioReplaceFileName;
    int AVSAudioReplaceVolume = 0;
    bool AVSLayOver = false;
    QString AVSLayOverRect = QStringLiteral("0,0,0,0");
    QString AVSLayOverColor = DefaultColorText();
    QString AVSScreenCrop = QStringLiteral("0,0,-0,-0");
    bool AVSInsertVideo = false;
    QString AVSInsertVideoFileName;
    int AVSInsertVideoPosition = 0;
    bool AVSInsertImage = false;
    QString AVSInsertImageFileName;
    int AVSInsertImagePosition = 0;
    int AVSVideoRotate = 0;
    int AVSFlip = 0;
    double AVSInsertImageTime = 0;
    bool AVSLogoImage = false;
    QString AVSLogoImageFileName;
    QString AVSLogoImagePosition = QStringLiteral("0x0");
    QString AVSUserScript;
};

// The timed title, banner and corner logo burnt in by the filter chain; points are seconds.
struct AVFilterVideoWatermarkFamily
{
    Q_GADGET
    Q_PROPERTY(bool AVFilterVideoWatermarkTitleEnabled MEMBER AVFilterVideoWatermarkTitleEnabled)
    Q_PROPERTY(QString AVFilterVideoWatermarkTitleText1 MEMBER AVFilterVideoWatermarkTitleText1)
    Q_PROPERTY(QString AVFilterVideoWatermarkTitleText2 MEMBER AVFilterVideoWatermarkTitleText2)
    Q_PROPERTY(double AVFilterVideoWatermarkTitleStartPoint MEMBER AVFilterVideoWatermarkTitleStartPoint)
    Q_PROPERTY(double AVFilterVideoWatermarkTitleEndPoint MEMBER AVFilterVideoWatermarkTitleEndPoint)
    Q_PROPERTY(QString AVFilterVideoWatermarkTitleFont MEMBER AVFilterVideoWatermarkTitleFont)
    Q_PROPERTY(QString AVFilterVideoWatermarkTitleColor1 MEMBER AVFilterVideoWatermarkTitleColor1)
    Q_PROPERTY(QString AVFilterVideoWatermarkTitleColor2 MEMBER AVFilterVideoWatermarkTitleColor2)
    Q_PROPERTY(bool AVFilterVideoWatermarkBannerEnabled MEMBER AVFilterVideoWatermarkBannerEnabled)
    Q_PROPERTY(QString AVFilterVideoWatermarkBannerText1 MEMBER AVFilterVideoWatermarkBannerText1)
    Q_PROPERTY(QString AVFilterVideoWatermarkBannerText2 MEMBER AVFilterVideoWatermarkBannerText2)
    Q_PROPERTY(double AVFilterVideoWatermarkBannerStartPoint MEMBER AVFilterVideoWatermarkBannerStartPoint)
    Q_PROPERTY(double AVFilterVideoWatermarkBannerEndPoint MEMBER AVFilterVideoWatermarkBannerEndPoint)
    Q_PROPERTY(QString AVFilterVideoWatermarkBannerFont MEMBER AVFilterVideoWatermarkBannerFont)
    Q_PROPERTY(QString AVFilterVideoWatermarkBannerColor1 MEMBER AVFilterVideoWatermarkBannerColor1)
    Q_PROPERTY(QString AVFilterVideoWatermarkBannerColor2 MEMBER AVFilterVideoWatermarkBannerColor2)
    Q_PROPERTY(bool AVFilterVideoWatermarkMainLogoEnabled MEMBER AVFilterVideoWatermarkMainLogoEnabled)
    Q_PROPERTY(QString AVFilterVideoWatermarkMainLogoText1 MEMBER AVFilterVideoWatermarkMainLogoText1)
    Q_PROPERTY(QString AVFilterVideoWatermarkMainLogoText2 MEMBER AVFilterVideoWatermarkMainLogoText2)
    Q_PROPERTY(
        double AVFilterVideoWatermarkMainLogoStartPoint MEMBER AVFilterVideoWatermarkMainLogoStartPoint)
    Q_PROPERTY(double AVFilterVideoWatermarkMainLogoEndPoint MEMBER AVFilterVideoWatermarkMainLogoEndPoint)
    Q_PROPERTY(QString AVFilterVideoWatermarkMainLogoFont MEMBER AVFilterVideoWatermarkMainLogoFont)
    Q_PROPERTY(QString AVFilterVideoWatermarkMainLogoColor1 MEMBER AVFilterVideoWatermarkMainLogoColor1)
    Q_PROPERTY(QString AVFilterVideoWatermarkMainLogoColor2 MEMBER AVFilterVideoWatermarkMainLogoColor2)
    Q_PROPERTY(int AVFilterVideoWatermarkMainLogoAlignment MEMBER AVFilterVideoWatermarkMainLogoAlignment)
    Q_PROPERTY(int AVFilterVideoWatermarkMainLogoIndentation MEMBER AVFilterVideoWatermarkMainLogoIndentation)

public:
    bool AVFilterVideoWatermarkTitleEnabled = false;
    QString AVFilterVideoWatermarkTitleText1;
    QString AVFilterVideoWatermarkTitleText2;
    double AVFilterVideoWatermarkTitleStartPoint = 0;
    double AVFilterVideoWatermarkTitleEndPoint = 0;
    QString AVFilterVideoWatermarkTitleFont = DefaultFontText();
    QString AVFilterVideoWatermarkTitleColor1 = DefaultColorText();
    QString AVFilterVideoWatermarkTitleColor2 = DefaultColorText();
    bool AVFilterVideoWatermarkBannerEnabled = false;
    QString AVFilterVideoWatermarkBannerText1;
    QString AVFilterVideoWatermarkBannerText2;
    double AVFilterVideoWatermarkBannerStartPoint = 0;
    double AVFilterVideoWatermarkBannerEndPoint = 0;
    QString AVFilterVideoWatermarkBannerFont = DefaultFontText();
    QString AVFilterVideoWatermarkBannerColor1 = DefaultColorText();
    QString AVFilterVideoWatermarkBannerColor2 = DefaultColorText();
    bool AVFilterVideoWatermarkMainLogoEnabled = false;
    QString AVFilterVideoWatermarkMainLogoText1;
    QString AVFilterVideoWatermarkMainLogoText2;
    double AVFilterVideoWatermarkMainLogoStartPoint = 0;
    double AVFilterVideoWatermarkMainLogoEndPoint = 0;
    QString AVFilterVideoWatermarkMainLogoFont = DefaultFontText();
    QString AVFilterVideoWatermarkMainLogoColor1 = DefaultColorText();
    QString AVFilterVideoWatermarkMainLogoColor2 = DefaultColorText();
    int AVFilterVideoWatermarkMainLogoAlignment = 9;
    int AVFilterVideoWatermarkMainLogoIndentation = 10;
};

// Subtitle files burnt in by the filter chain: the source's own and one for every job.
struct AVFilterVideoSubtitleFamily
{
    Q_GADGET
    Q_PROPERTY(bool AVFilterVideoSubtitleEnabled MEMBER AVFilterVideoSubtitleEnabled)
    Q_PROPERTY(QString AVFilterVideoSubtitleFileName MEMBER AVFilterVideoSubtitleFileName)
    Q_PROPERTY(int AVFilterVideoSubtitleAlign MEMBER AVFilterVideoSubtitleAlign)
    Q_PROPERTY(QString AVFilterVideoSubtitleTextFont MEMBER AVFilterVideoSubtitleTextFont)
    Q_PROPERTY(QString AVFilterVideoSubtitleTextForeColor MEMBER AVFilterVideoSubtitleTextForeColor)
    Q_PROPERTY(int AVFilterVideoSubtitleTextOutlineWidth MEMBER AVFilterVideoSubtitleTextOutlineWidth)
    Q_PROPERTY(QString AVFilterVideoSubtitleTextOutlineColor MEMBER AVFilterVideoSubtitleTextOutlineColor)
    Q_PROPERTY(int AVFilterVideoSubtitleTextShadowDepth MEMBER AVFilterVideoSubtitleTextShadowDepth)
    Q_PROPERTY(QString AVFilterVideoSubtitleTextShadowColor MEMBER AVFilterVideoSubtitleTextShadowColor)
    Q_PROPERTY(quint8 AVFilterVideoSubtitleTextAlpha MEMBER AVFilterVideoSubtitleTextAlpha)
    Q_PROPERTY(bool AVFilterVideoOverallSubtitleEnabled MEMBER AVFilterVideoOverallSubtitleEnabled)
    Q_PROPERTY(QString AVFilterVideoOverallSubtitleFileName MEMBER AVFilterVideoOverallSubtitleFileName)
    Q_PROPERTY(int AVFilterVideoOverallSubtitleAlign MEMBER AVFilterVideoOverallSubtitleAlign)
    Q_PROPERTY(QString AVFilterVideoOverallSubtitleTextFont MEMBER AVFilterVideoOverallSubtitleTextFont)
    Q_PROPERTY(
        QString AVFilterVideoOverallSubtitleTextForeColor MEMBER AVFilterVideoOverallSubtitleTextForeColor)
    Q_PROPERTY(
        int AVFilterVideoOverallSubtitleTextOutlineWidth MEMBER AVFilterVideoOverallSubtitleTextOutlineWidth)
    Q_PROPERTY(QString AVFilterVideoOverallSubtitleTextOutlineColor MEMBER
            AVFilterVideoOverallSubtitleTextOutlineColor)
    Q_PROPERTY(
        int AVFilterVideoOverallSubtitleTextShadowDepth MEMBER AVFilterVideoOverallSubtitleTextShadowDepth)
    Q_PROPERTY(QString AVFilterVideoOverallSubtitleTextShadowColor MEMBER
            AVFilterVideoOverallSubtitleTextShadowColor)
    Q_PROPERTY(quint8 AVFilterVideoOverallSubtitleTextAlpha MEMBER AVFilterVideoOverallSubtitleTextAlpha)

public:
    bool AVFilterVideoSubtitleEnabled = false;
    QString AVFilterVideoSubtitleFileName;
    int AVFilterVideoSubtitleAlign = 2;
    QString AVFilterVideoSubtitleTextFont = DefaultFontText();
    QString AVFilterVideoSubtitleTextForeColor = DefaultColorText();
    int AVFilterVideoSubtitleTextOutlineWidth = 0;
    QString AVFilterVideoSubtitleTextOutlineColor = DefaultColorText();
    int AVFilterVideoSubtitleTextShadowDepth = 0;
    QString AVFilterVideoSubtitleTextShadowColor = DefaultColorText();
    quint8 AVFilterVideoSubtitleTextAlpha = 255;
    bool AVFilterVideoOverallSubtitleEnabled = false;
    QString AVFilterVideoOverallSubtitleFileName;
    int AVFilterVideoOverallSubtitleAlign = 2;
    QString AVFilterVideoOverallSubtitleTextFont = DefaultFontText();
    QString AVFilterVideoOverallSubtitleTextForeColor = DefaultColorText();
    int AVFilterVideoOverallSubtitleTextOutlineWidth = 0;
    QString AVFilterVideoOverallSubtitleTextOutlineColor = DefaultColorText();
    int AVFilterVideoOverallSubtitleTextShadowDepth = 0;
    QString AVFilterVideoOverallSubtitleTextShadowColor = DefaultColorText();
    quint8 AVFilterVideoOverallSubtitleTextAlpha = 255;
};

// The filter chain: a text and a picture overlay, a blurred rectangle and the plain video filters.
struct AVFilterFamily
{
    Q_GADGET
    Q_PROPERTY(bool AVFilterTextEnabled MEMBER AVFilterTextEnabled)
    Q_PROPERTY(QString AVFilterTextString MEMBER AVFilterTextString)
    Q_PROPERTY(QString AVFilterTextFont MEMBER AVFilterTextFont)
    Q_PROPERTY(QString AVFilterTextColor MEMBER AVFilterTextColor)
    Q_PROPERTY(QString AVFilterBackColor MEMBER AVFilterBackColor)
    Q_PROPERTY(QString AVFilterTextOutlineColor MEMBER AVFilterTextOutlineColor)
    Q_PROPERTY(int AVFilterTextAlign MEMBER AVFilterTextAlign)
    Q_PROPERTY(int AVFilterTextOutlineWidth MEMBER AVFilterTextOutlineWidth)
    Q_PROPERTY(int AVFilterTextPadding MEMBER AVFilterTextPadding)
    Q_PROPERTY(quint8 AVFilterTextAlpha MEMBER AVFilterTextAlpha)
    Q_PROPERTY(quint8 AVFilterBackAlpha MEMBER AVFilterBackAlpha)
    Q_PROPERTY(int AVFilterVideoSharp MEMBER AVFilterVideoSharp)
    Q_PROPERTY(bool AVFilterVideoHqdn3d MEMBER AVFilterVideoHqdn3d)
    Q_PROPERTY(bool AVFilterVideoHarddup MEMBER AVFilterVideoHarddup)
    Q_PROPERTY(double AVFilterVideoAspect MEMBER AVFilterVideoAspect)
    Q_PROPERTY(int AVFilterVideoCropFrom3D MEMBER AVFilterVideoCropFrom3D)
    Q_PROPERTY(int AVFilterTextShadowDepth MEMBER AVFilterTextShadowDepth)
    Q_PROPERTY(QString AVFilterTextShadowColor MEMBER AVFilterTextShadowColor)
    Q_PROPERTY(quint8 AVFilterTextShadowAlpha MEMBER AVFilterTextShadowAlpha)
    Q_PROPERTY(bool AVFilterImageEnabled MEMBER AVFilterImageEnabled)
    Q_PROPERTY(QString AVFilterImageFile MEMBER AVFilterImageFile)
    Q_PROPERTY(int AVFilterImageAlign MEMBER AVFilterImageAlign)
    Q_PROPERTY(int AVFilterImagePadding MEMBER AVFilterImagePadding)
    Q_PROPERTY(quint8 AVFilterImageAlpha MEMBER AVFilterImageAlpha)
    Q_PROPERTY(int AVFilterImageShadowDepth MEMBER AVFilterImageShadowDepth)
    Q_PROPERTY(QString AVFilterImageShadowColor MEMBER AVFilterImageShadowColor)
    Q_PROPERTY(quint8 AVFilterImageShadowAlpha MEMBER AVFilterImageShadowAlpha)
    Q_PROPERTY(bool AVFilterRectBlurEnabled MEMBER AVFilterRectBlurEnabled)
    Q_PROPERTY(int AVFilterRectBlurX MEMBER AVFilterRectBlurX)
    Q_PROPERTY(int AVFilterRectBlurY MEMBER AVFilterRectBlurY)
    Q_PROPERTY(int AVFilterRectBlurW MEMBER AVFilterRectBlurW)
    Q_PROPERTY(int AVFilterRectBlurH MEMBER AVFilterRectBlurH)
    Q_PROPERTY(int AVFilterVideoRotate MEMBER AVFilterVideoRotate)
    Q_PROPERTY(bool AVFilterVideoHFlip MEMBER AVFilterVideoHFlip)
    Q_PROPERTY(bool AVFilterVideoVFlip MEMBER AVFilterVideoVFlip)

public:
    bool AVFilterTextEnabled = false;
    QString AVFilterTextString;
    QString AVFilterTextFont = DefaultFontText();
    QString AVFilterTextColor = DefaultColorText();
    QString AVFilterBackColor = DefaultColorText();
    QString AVFilterTextOutlineColor = DefaultColorText();
    int AVFilterTextAlign = 9;
    int AVFilterTextOutlineWidth = 0;
    int AVFilterTextPadding = 5;
    quint8 AVFilterTextAlpha = 255;
    quint8 AVFilterBackAlpha = 0;
    int AVFilterVideoSharp = 0;
    bool AVFilterVideoHqdn3d = false;
    bool AVFilterVideoHarddup = false;
    double AVFilterVideoAspect = 0;
    int AVFilterVideoCropFrom3D = 0;
    int AVFilterTextShadowDepth = 0;
    QString AVFilterTextShadowColor = DefaultColorText();
    quint8 AVFilterTextShadowAlpha = 255;
    bool AVFilterImageEnabled = false;
    QString AVFilterImageFile;
    int AVFilterImageAlign = 7;
    int AVFilterImagePadding = 5;
    quint8 AVFilterImageAlpha = 255;
    int AVFilterImageShadowDepth = 0;
    QString AVFilterImageShadowColor = DefaultColorText();
    quint8 AVFilterImageShadowAlpha = 255;
    bool AVFilterRectBlurEnabled = false;
    int AVFilterRectBlurX = 0;
    int AVFilterRectBlurY = 0;
    int AVFilterRectBlurW = 0;
    int AVFilterRectBlurH = 0;
    int AVFilterVideoRotate = 0;
    bool AVFilterVideoHFlip = false;
    bool AVFilterVideoVFlip = false;
};

} // namespace qb::engine
