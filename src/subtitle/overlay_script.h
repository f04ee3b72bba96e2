// Overlay documents for a video job: the timed title plate, crawling banner and corner logo that
// the filter chain burns in, and the tagged numbered-block file of the frame-server path. Both are
// built as lines here and saved as ANSI text with CR LF ends.
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

namespace qb::subtitle {

// The font text "name, size, bold, italic, character set, strike-out, underline, weight"; the
// character set and the weight are not read.
struct OverlayFont
{
    QString name = QStringLiteral("Arial");
    int size = 20;
    bool bold = false;
    bool italic = false;
    bool strikeOut = false;
    bool underline = false;
};
OverlayFont ParseOverlayFont(const QString &fontText);

// One timed element; points are seconds, colours bare hexadecimal.
struct OverlayElement
{
    bool enabled = false;
    QString text1;
    QString text2;
    double start = 0;
    double end = 0;
    QString font;
    QString color1 = QStringLiteral("FFFFFF");
    QString color2 = QStringLiteral("FFFFFF");
};

struct WatermarkOverlay
{
    OverlayElement title;
    OverlayElement banner;
    OverlayElement logo;
    int logoAlignment = 9; // numpad corner
    int logoIndentation = 10; // pixels from the corner's edges
    QString sourceFile; // for "#FileName#"
    QDateTime now; // for "#Date#" and "#Time#"
};

// An element is drawn when it is enabled, has text on either line and a valid range (end after
// start, or both 0 for the whole video). No element drawn gives no lines.
bool OverlayElementDrawn(const OverlayElement &element);

// The document in the script format; advanced picks the extended form.
QStringList WatermarkScriptLines(const WatermarkOverlay &overlay, int width, int height, bool advanced);

// Writes the document, replacing the file; false when nothing is drawn or the file is not written.
bool SaveWatermarkScript(
    const QString &fileName, const WatermarkOverlay &overlay, int width, int height, bool advanced);

// The frame-server path's overlay: the user's subtitles with tags in front of each text line,
// then a title, a logo and a banner block. Times are clock texts ("00:00:05,000").
struct AvsOverlayItem
{
    bool enabled = false;
    QString text;
    QString font;
    QString color = QStringLiteral("FFFFFF");
    int align = 2;
    QString start;
    QString end;
};

struct AvsSubtitleOverlay
{
    QString userSubtitle; // a numbered-block file, or ""
    QString font;
    QString color = QStringLiteral("FFFFFF");
    QString border = QStringLiteral("000000");
    int align = 2;
    AvsOverlayItem title;
    AvsOverlayItem logo;
    AvsOverlayItem banner;
};

QStringList AvsSubtitleLines(const AvsSubtitleOverlay &overlay);

// Deletes an existing file and writes the overlay; false when it could not be written.
bool SaveAvsSubtitleFile(const QString &fileName, const AvsSubtitleOverlay &overlay);

} // namespace qb::subtitle
