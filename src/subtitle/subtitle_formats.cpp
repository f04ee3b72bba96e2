// The format table.
#include "subtitle/subtitle_formats.h"

#include <QFileInfo>

namespace qb::subtitle {

namespace {

constexpr SubtitleFormat kFormats[] = {
    {0, u"plain text", {u"txt", nullptr}},
    {1, u"numbered blocks", {u"srt", u"utf"}},
    {2, u"script", {u"ssa", u"ass"}},
    {3, u"time-tagged lyrics", {u"lrc", nullptr}},
    {4, u"karaoke script", {u"ksc", nullptr}},
    {5, u"XML lyric", {u"krc", nullptr}},
    {6, u"SAMI", {u"smi", u"sami"}},
    {7, u"circled-number text", {u"snc", nullptr}},
    {8, u"minute-second blocks", {u"qly", nullptr}},
    {9, u"tabular script", {u"stl", nullptr}},
    {10, u"one-line form", {u"vsf", nullptr}},
    {11, u"bracket pairs", {u"dks", nullptr}},
    {99, u"cue list", {u"stxt", nullptr}},
};

} // namespace

std::span<const SubtitleFormat> SubtitleFormats()
{
    return kFormats;
}

int SubtitleFormatId(const QString &extension)
{
    const QString wanted = extension.toLower();
    for (const SubtitleFormat &format : kFormats) {
        for (const char16_t *ext : format.extensions) {
            if (ext && wanted == QString::fromUtf16(ext))
                return format.id;
        }
    }
    return -1;
}

QString CheckSubtitle(const QString &mediaFile, const QString &suffixPatterns)
{
    QString patterns = suffixPatterns;
    patterns.replace(u';', u'|').remove(u' ').remove(u'*');
    const qsizetype dot = mediaFile.lastIndexOf(u'.');
    const qsizetype slash = mediaFile.lastIndexOf(u'/');
    const QString base = dot > slash ? mediaFile.left(dot) : mediaFile;
    for (const QString &suffix : patterns.split(u'|')) {
        if (suffix.isEmpty())
            continue;
        const QString candidate = base + suffix;
        if (QFileInfo(candidate).isFile())
            return candidate;
    }
    return {};
}

} // namespace qb::subtitle
