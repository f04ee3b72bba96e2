// Text on pictures: the font string, the title and bottom lines, the text and image watermarks,
// and a text rendered to a picture of its own.
#pragma once

#include <QFont>
#include <QImage>
#include <QPoint>
#include <QSize>
#include <QString>

namespace qb::imaging {

// The font every text uses unless told otherwise.
QString DefaultFontString();

// "Arial, 20, False, False, 0, False, False, 400": name, size in points, bold, italic, character
// set, strike-out, underline, weight. Fields are split at commas and trimmed; missing or unreadable
// fields keep the default's value. A size is held to 1..1000 points. "True", "1" and "-1" are true,
// in any case. A weight of 1..1000 is used as it stands and bold raises it to at least 700. The
// character set is read past: the font machinery picks glyphs by script itself. A family that is
// not installed falls back to a sans-serif one.
QFont FontFromString(const QString &fontString);

// Top-left corner for a mark of size mark on canvas, by the numeric keypad: 7 8 9 along the top,
// 4 5 6 across the middle, 1 2 3 along the bottom; 0 and any other value mean the centre. padding
// keeps it off the edges it is aligned to. The result is held inside the canvas as far as the mark
// fits.
QPoint KeypadPosition(QSize canvas, QSize mark, int align, int padding);

// The title centred along the top and the bottom string centred along the bottom, each on one line
// (line breaks become blanks), set in by a quarter of the font's pixel size (at least 2 pixels)
// and cut with an ellipsis where wider than the picture. White letters with a black outline of a
// twelfth of the pixel size (at least 1) stay readable on any picture. Empty strings are skipped.
void DrawTextLines(QImage &image, const QString &title, const QString &bottom,
    const QString &fontString = DefaultFontString());

struct TextMark
{
    bool enabled = false;
    QString text; // line breaks start new lines, each centred
    QString font = DefaultFontString();
    QString foreColor = QStringLiteral("FFFFFF");
    QString outlineColor = QStringLiteral("FFFFFF");
    int outlineWidth = 0; // pixels around the letters, at most 256
    int align = 0;
    int padding = 0;
    int alpha = 255; // of the whole mark
    QString backColor = QStringLiteral("FFFFFF"); // fills the mark's tight box
    int backAlpha = 0;
    int shadowDepth = 0;
    QString shadowColor = QStringLiteral("FFFFFF");
    int shadowAlpha = 255;
};

struct ImageMark
{
    bool enabled = false;
    QString file; // any picture format we read, layered-image files included; drawn at its own size
    int align = 0;
    int padding = 0;
    int alpha = 255;
    QString backColor = QStringLiteral("FFFFFF"); // fills the picture's box under it
    int backAlpha = 0;
    int shadowDepth = 0;
    QString shadowColor = QStringLiteral("FFFFFF");
    int shadowAlpha = 255;
};

// The text mark as a picture of its own: tight box, back colour, outline, the soft drop shadow of
// the shadow stage (which grows it by the depth) and the mark's alpha. Null when nothing is inked.
QImage RenderTextMark(const TextMark &mark);

// Draws the text mark and then the image mark, each when enabled and not empty, placed by
// KeypadPosition. An image mark that cannot be read is skipped.
void ApplyWatermarks(QImage &image, const TextMark &text, const ImageMark &picture);

// A text rendered to a picture just large enough for its ink and outline (at most 256 pixels),
// transparent where the back alpha is 0. Colours are colour texts. Null for a text without ink or
// one whose picture would exceed 32767 pixels a side or 2^28 pixels.
QImage CreateStringImage(const QString &text, const QString &fontString, const QString &foreColor,
    const QString &outlineColor, int outlineWidth, const QString &backColor, int backAlpha);

} // namespace qb::imaging
