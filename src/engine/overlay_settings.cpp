#include "engine/overlay_settings.h"

namespace qb::engine {

subtitle::WatermarkOverlay WatermarkOverlayOf(
    const AVFilterVideoWatermarkFamily &f, const QString &source, const QDateTime &now)
{
    subtitle::WatermarkOverlay o;
    o.title = {f.AVFilterVideoWatermarkTitleEnabled, f.AVFilterVideoWatermarkTitleText1,
        f.AVFilterVideoWatermarkTitleText2, f.AVFilterVideoWatermarkTitleStartPoint,
        f.AVFilterVideoWatermarkTitleEndPoint, f.AVFilterVideoWatermarkTitleFont,
        f.AVFilterVideoWatermarkTitleColor1, f.AVFilterVideoWatermarkTitleColor2};
    o.banner = {f.AVFilterVideoWatermarkBannerEnabled, f.AVFilterVideoWatermarkBannerText1,
        f.AVFilterVideoWatermarkBannerText2, f.AVFilterVideoWatermarkBannerStartPoint,
        f.AVFilterVideoWatermarkBannerEndPoint, f.AVFilterVideoWatermarkBannerFont,
        f.AVFilterVideoWatermarkBannerColor1, f.AVFilterVideoWatermarkBannerColor2};
    o.logo = {f.AVFilterVideoWatermarkMainLogoEnabled, f.AVFilterVideoWatermarkMainLogoText1,
        f.AVFilterVideoWatermarkMainLogoText2, f.AVFilterVideoWatermarkMainLogoStartPoint,
        f.AVFilterVideoWatermarkMainLogoEndPoint, f.AVFilterVideoWatermarkMainLogoFont,
        f.AVFilterVideoWatermarkMainLogoColor1, f.AVFilterVideoWatermarkMainLogoColor2};
    o.logoAlignment = f.AVFilterVideoWatermarkMainLogoAlignment;
    o.logoIndentation = f.AVFilterVideoWatermarkMainLogoIndentation;
    o.sourceFile = source;
    o.now = now;
    return o;
}

subtitle::AvsSubtitleOverlay AvsOverlayOf(const AVSFamily &f, const QString &userSubtitle)
{
    subtitle::AvsSubtitleOverlay o;
    o.userSubtitle = userSubtitle;
    o.font = f.AVSSubtitleFont;
    o.color = f.AVSSubtitleColor;
    o.border = f.AVSSubtitleColorBorder;
    o.align = f.AVSSubtitleAlign;
    o.title = {f.AVSSubtitleEnableTitle, f.AVSSubtitleStringTitle, f.AVSSubtitleFontTitle,
        f.AVSSubtitleColorTitle, f.AVSSubtitleAlignTitle, f.AVSSubtitleTimeStartTitle,
        f.AVSSubtitleTimeEndTitle};
    o.logo = {f.AVSSubtitleEnableLogo, f.AVSSubtitleStringLogo, f.AVSSubtitleFontLogo, f.AVSSubtitleColorLogo,
        f.AVSSubtitleAlignLogo, f.AVSSubtitleTimeStartLogo, f.AVSSubtitleTimeEndLogo};
    // The banner runs across the screen: it has no alignment of its own.
    o.banner = {f.AVSSubtitleEnableBanner, f.AVSSubtitleStringBanner, f.AVSSubtitleFontBanner,
        f.AVSSubtitleColorBanner, 2, f.AVSSubtitleTimeStartBanner, f.AVSSubtitleTimeEndBanner};
    return o;
}

} // namespace qb::engine
