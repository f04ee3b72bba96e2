// The list view's rules on text that need no window: a row's cells from its "|"-joined text, the
// trimmed cell text, the info tip, the path splitter of the thumbnail label and the size limits.
#pragma once

#include <QString>
#include <QStringView>

#include <vector>

namespace qb::controls {

// The picture box of a thumbnail, in pixels, on each side.
inline constexpr int kThumbnailMinSide = 32;
inline constexpr int kThumbnailMaxSide = 125;
inline constexpr int kThumbnailDefaultSide = 80;

// A side of the picture box brought into 32..125.
int ClampThumbnailSide(int side);

// Text as the list keeps it: a cell holds a C string, so anything from a NUL on is gone.
QString ListCellText(QStringView text);

// The cells of a row from ItemsText. Cell 0 is the text before the first "|" (all of it without
// one); each further piece goes to the next cell, and an empty piece is replaced by typeName, so
// that an empty type column shows the file's type. Every cell is cut at its first NUL.
std::vector<QString> ComposeItemTexts(QStringView ItemsText, const QString &typeName);

// The text with blanks (" " only, as the classic Trim) removed at both ends.
QString TrimSpaces(QStringView text);

// The info tip of a row from its first four cells: name, folder, size in bytes and source, one
// per line, separated by CR LF.
QString ComposeTipText(
    const QString &column0, const QString &column1, const QString &column2, const QString &column3);

// What the list gets of a tip: as many bytes of its code-page form (UTF-8 here) as the tip has
// characters, so a tip with multi-byte characters loses its tail. The cut backs off to a whole
// character rather than leave half of one.
QString TipBufferText(const QString &tip);

// Part of a path around its last delimiter (found case-insensitively); the whole path when there
// is none. Style 0: with "." the name between the last "\" and the dot, otherwise the part before
// the delimiter; style 1: the part after it; style 2: the part before it; any other style: "".
QString PathPart(const QString &path, const QString &delimiter, int style);

} // namespace qb::controls
