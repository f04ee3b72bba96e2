// The formats the converter knows, by the number that names them on both sides, and the
// subtitle that accompanies a media file.
#pragma once

#include <QString>
#include <QStringList>

#include <span>

namespace qb::subtitle {

struct SubtitleFormat
{
    int id;
    const char16_t *name;
    const char16_t *extensions[2]; // lower case; the first is the format's own
};

// Every format with an extension, in the order of their numbers. (The strict numbered reader, 91,
// is selected by no extension.)
std::span<const SubtitleFormat> SubtitleFormats();

// The number of a lower- or upper-case extension; -1 for one the converter does not know.
int SubtitleFormatId(const QString &extension);

// The first file beside the media file, named like it with one of the patterns' extensions
// ("*.srt; *.ass", tried in order); "" when there is none.
QString CheckSubtitle(const QString &mediaFile, const QString &suffixPatterns);

} // namespace qb::subtitle
