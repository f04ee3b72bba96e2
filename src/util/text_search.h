// Picking pieces out of strings: path parts, tag stripping, text between markers. Compares are binary.
#pragma once

#include <QString>

namespace qb::util {

// Splits text at the last delimiter. A text ending in ":" gives the text without it ("C:" -> "C").
// Without the delimiter (or with an empty one) the whole text. mode 0: the part left of it, but
// for "." the base name behind the last "\" or "/" (empty when the dot sits in a folder name);
// mode 1: the part right of it; mode 2: the part left of it. Other modes: empty.
QString GetFileString(const QString &sText, const QString &delimiter, int mode);

// Removes "<...>" tags, "&...;" entities and "{...}" blocks, and "(...)" when asked. Each kind is
// stripped in up to 100 rounds; a round removes every copy of the first complete one it finds.
QString KillTag(const QString &sText, bool alsoRoundBrackets);

// The text between the findCount1-th findTag1 and the findCount2-th findTag2 counted on from
// there. Empty when a tag is empty or missing, a count is below 1, or the occurrence is missing.
QString FindTextBetween(
    const QString &sText, const QString &findTag1, const QString &findTag2, int findCount1, int findCount2);

// What follows the findCount-th findTag. Empty when the tag is empty or missing, or count < 1.
QString FindText(const QString &sText, const QString &findTag, int findCount);

// What follows the findCount-th findTag counted from the end. Empty as FindText.
QString FindTextRev(const QString &sText, const QString &findTag, int findCount);

} // namespace qb::util
