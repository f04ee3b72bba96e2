// The table of known tools.
#include "engine/tool_catalogue.h"

#include "engine/console_scan.h"

namespace qb::engine {

namespace {

constexpr ToolKind kTools[] = {
    {1, u"FFmpeg", BannerMatch::Contains, u"FFmpeg version ", nullptr,
        {{nullptr, u"FFmpeg version ", u" "}, {}}, true, u"", u"COPY", u"COPY"},
    {2, u"MEncoder", BannerMatch::BeginsWith, u"MEncoder", nullptr, {{nullptr, u"MEncoder", u"("}, {}}, false,
        u"XVID|H264|MP4|3GP|WMV|FLV|PAL-VCD|NTSC-VCD|PAL-SVCD|NTSC-SVCD|PAL-DVD|NTSC-DVD",
        u"COPY|FRAMENO|XVID|X264|RAW|NUV|LAVC|VFW|QTVIDEO", u"COPY|PCM|MP3LAME|LAVC|TWOLAME|FAAC"},
    {3, u"x264", BannerMatch::BeginsWith, u"x264", u"--help", {{nullptr, u"x264", u"\n"}, {}}, false, u"",
        u"", u""},
    {4, u"ASFBIN", BannerMatch::BeginsWith, u"ASFBIN", nullptr,
        {{nullptr, u"version asfbin", u". Copyright"}, {}}, false, u"", u"", u""},
    {5, u"mkvmerge", BannerMatch::BeginsWith, u"mkvmerge", nullptr, {{nullptr, u"mkvmerge v", u"("}, {}},
        false, u"", u"", u""},
    {6, u"MP4Box", BannerMatch::BeginsWith, u"MP4Box", u"-version",
        {{u"- compiled", u"-", u"- compiled"}, {nullptr, u"-", u"\r"}}, false, u"", u"", u""},
    {7, u"Helix DNA(TM) Producer", BannerMatch::BeginsWith, u"Helix DNA(TM) Producer", nullptr,
        {{nullptr, u"Helix DNA(TM) Producer", u"\r"}, {}}, false, u"RMVB", u"RV8|RV9|RV10",
        u"COOK|RAAC|SIPR"},
};

QString text(const char16_t *s)
{
    return s ? QString::fromUtf16(s) : QString();
}

} // namespace

std::span<const ToolKind> ToolCatalogue()
{
    return kTools;
}

const ToolKind *IdentifyTool(const QString &banner)
{
    for (const ToolKind &kind : kTools) {
        const QString phrase = text(kind.phrase);
        const bool found = kind.match == BannerMatch::Contains ? banner.contains(phrase, Qt::CaseInsensitive)
                                                               : banner.startsWith(phrase);
        if (found)
            return &kind;
    }
    return nullptr;
}

QString CutToolVersion(const ToolKind &kind, const QString &source)
{
    for (const VersionCut &cut : kind.cuts) {
        if (!cut.after)
            break;
        if (cut.when && !source.contains(text(cut.when)))
            continue;
        QString version = GetString(source, text(cut.after), text(cut.before));
        if (kind.dropTrailingComma && version.endsWith(u','))
            version.chop(1);
        return version;
    }
    return {};
}

} // namespace qb::engine
