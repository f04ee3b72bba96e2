// The timed overlay document: a head with ", " between items, then the title plate and text, the
// crawling banner and the corner logo, each with the aspect tag in front.
#include "subtitle/overlay_script.h"

#include "subtitle/writer_shared.h"
#include "util/number_text.h"
#include "util/text_file.h"
#include "util/time_format.h"

#include <QFileInfo>

#include <cmath>

using namespace Qt::StringLiterals;

namespace qb::subtitle {

namespace {

// A range of 0 to 0 means the whole video; the renderer shows nothing for an empty event, so the
// end is written as the latest time the clock text holds.
constexpr double kWholeVideoEnd = 35999990;

bool readFlag(const QStringList &items, qsizetype index)
{
    if (index >= items.size())
        return false;
    const QString item = items.at(index).trimmed();
    return item.compare(u"true"_s, Qt::CaseInsensitive) == 0 || util::Val(item) != 0;
}

QString expandMacros(const QString &line, const WatermarkOverlay &overlay)
{
    if (!line.contains(u'#'))
        return line;
    QString out = line;
    out.replace(u"#FileName#"_s, QFileInfo(overlay.sourceFile).completeBaseName());
    out.replace(u"#Date#"_s, overlay.now.toString(u"yyyy-MM-dd"_s));
    out.replace(u"#Time#"_s, overlay.now.toString(u"HH:mm:ss"_s));
    return out;
}

QString styleBlock(const OverlayFont &font)
{
    QString block = u"{"_s;
    if (font.bold)
        block += u"\\b1"_s;
    if (font.italic)
        block += u"\\i1"_s;
    if (font.strikeOut)
        block += u"\\s1"_s;
    if (font.underline)
        block += u"\\u1"_s;
    return block + u'}';
}

QString fontTags(const OverlayFont &font)
{
    return u"\\fn"_s + font.name + u"\\fs"_s + QString::number(font.size);
}

QStringList head(int width, int height, bool advanced)
{
    const QString plus = advanced ? u"+"_s : QString();
    return {u"[Script Info]"_s, u"Title: QDK"_s, u"ScriptType: V4.00"_s + plus,
        u"Original Script: Quillbox Desk"_s, u"Collisions: Reverse"_s,
        u"PlayResX: "_s + QString::number(width), u"PlayResY: "_s + QString::number(height),
        u"Timer: 100.0000"_s, QString(), u"WrapStyle: 2"_s, QString(), u"[v4"_s + plus + u" Styles]"_s,
        u"Format: Name, Fontname, Fontsize, PrimaryColour, SecondaryColour, TertiaryColour, BackColour, "
        u"Bold, "
        u"Italic, "_s
            + (advanced ? u"Underline, StrikeOut, ScaleX, ScaleY, Spacing, Angle, "_s : QString())
            + u"BorderStyle, Outline, Shadow, Alignment, MarginL, MarginR, MarginV, AlphaLevel, Encoding"_s,
        u"Style: Default, Arial, 14, &HFFFFFF, &HFFFFFF, &H0, &H0, 0, 0, "_s
            + (advanced ? u"0, 0, 100, 100, 0, 0, "_s : QString()) + u"1, 0, 0, 2, 0, 0, 0, 0, 134"_s,
        QString(), u"[Events]"_s,
        u"Format: Marked, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text"_s};
}

// "Dialogue: " up to and with the style.
QString eventStart(const OverlayElement &element, bool advanced)
{
    const bool whole = element.start == 0 && element.end == 0;
    return u"Dialogue: "_s + (advanced ? u"0"_s : u"Marked=0"_s) + u", "_s
        + util::FormatMSecs(element.start * 1000, 1) + u", "_s
        + util::FormatMSecs(whole ? kWholeVideoEnd : element.end * 1000, 1) + u", Default"_s;
}

// A rectangle drawn with straight curves: from the top left along the four sides back to it.
QString plateDrawing(int w, int h)
{
    const QString W = QString::number(w);
    const QString H = QString::number(h);
    return u"{\\p1}m 0 0 b 0 0 0 0 "_s + W + u" 0 b "_s + W + u" 0 "_s + W + u' ' + H + u' ' + W + u' ' + H
        + u" b "_s + W + u' ' + H + u" 0 "_s + H + u" 0 "_s + H + u" b 0 "_s + H + u" 0 0 0 0 c{\\p0}"_s;
}

// The title sits on a dark plate across the whole picture, its bottom a sixth of the height above
// the lower edge: plate height round(1.75 * font size) + 6, the text's lower left corner half a
// font size in from the left and 3 pixels above the plate's bottom. The plate is drawn wider by
// the inverse of the aspect squeeze, so that once squeezed it still spans the picture.
void addTitle(QStringList &out, const OverlayElement &title, const QString &aspect, int width, int height,
    bool advanced, const WatermarkOverlay &overlay)
{
    const OverlayFont font = ParseOverlayFont(title.font);
    const double squeeze = util::Val(writer::AspectScaleText(width, height));
    const int plateWidth = squeeze > 0 ? int(util::RoundHalfEven(width * 100.0 / squeeze)) : width;
    const int plateHeight = int(util::RoundHalfEven(font.size * 1.75)) + 6;
    const int bottom = height - int(util::RoundHalfEven(height / 6.0));
    const QString fields = u", , 0000, 0000, 0000, , "_s;
    const QString fade = u"{\\fad(1000, 1000)}"_s;
    out << eventStart(title, advanced) + fields + aspect + fade + u"{\\pos("_s + QString::number(width / 2)
            + u", "_s + QString::number(bottom) + u")}{\\alpha&H9F&\\c&H000000&\\3c&H000000&}"_s
            + plateDrawing(plateWidth, plateHeight);
    QString text = aspect + fade + u"{\\pos("_s + QString::number(int(util::RoundHalfEven(font.size / 2.0)))
        + u", "_s + QString::number(bottom - 3) + u")}{\\an1}{"_s + fontTags(font) + u"\\b1\\c&H"_s
        + title.color1 + u"&}"_s + styleBlock(font) + expandMacros(title.text1, overlay);
    if (!title.text2.isEmpty())
        text += u"\\N{\\c&H"_s + title.color2 + u"&}"_s + expandMacros(title.text2, overlay);
    out << eventStart(title, advanced) + fields + text;
}

// The element's lines as one text: the second in its own colour on a line of its own.
QString twoLines(const OverlayElement &element, const WatermarkOverlay &overlay, const QString &between)
{
    QString text = expandMacros(element.text1, overlay);
    if (!element.text2.isEmpty())
        text += between + u"{\\c&H"_s + element.color2 + u"&}"_s + expandMacros(element.text2, overlay);
    return text;
}

} // namespace

OverlayFont ParseOverlayFont(const QString &fontText)
{
    OverlayFont font;
    const QStringList items = fontText.split(u',');
    if (!items.isEmpty() && !items.at(0).trimmed().isEmpty())
        font.name = items.at(0).trimmed();
    if (items.size() > 1 && util::Val(items.at(1).trimmed()) > 0)
        font.size = int(util::Val(items.at(1).trimmed()));
    font.bold = readFlag(items, 2);
    font.italic = readFlag(items, 3);
    font.strikeOut = readFlag(items, 5);
    font.underline = readFlag(items, 6);
    return font;
}

bool OverlayElementDrawn(const OverlayElement &element)
{
    const bool hasText = !element.text1.isEmpty() || !element.text2.isEmpty();
    const bool validRange = element.end > element.start || (element.start == 0 && element.end == 0);
    return element.enabled && hasText && validRange;
}

QStringList WatermarkScriptLines(const WatermarkOverlay &overlay, int width, int height, bool advanced)
{
    const bool title = OverlayElementDrawn(overlay.title);
    const bool banner = OverlayElementDrawn(overlay.banner);
    const bool logo = OverlayElementDrawn(overlay.logo);
    if (!title && !banner && !logo)
        return {};
    QStringList out = head(width, height, advanced);
    const QString aspect = u"{\\fscx"_s + writer::AspectScaleText(width, height) + u'}';
    const QString fade = u"{\\fad(1000, 1000)}"_s;
    if (title)
        addTitle(out, overlay.title, aspect, width, height, advanced, overlay);
    if (banner) {
        const OverlayFont font = ParseOverlayFont(overlay.banner.font);
        out << eventStart(overlay.banner, advanced) + u", , 0000, 0000, 0010, Banner;15;0;70, "_s + aspect
                + fade + u"{\\an7}{\\c&H"_s + overlay.banner.color1 + u'&' + fontTags(font) + u'}'
                + styleBlock(font) + twoLines(overlay.banner, overlay, u"  "_s);
    }
    if (logo) {
        const OverlayFont font = ParseOverlayFont(overlay.logo.font);
        // The indentation keeps the logo off both edges of its corner.
        const QString margin = util::FormatNumber(overlay.logoIndentation, u"0000");
        out << eventStart(overlay.logo, advanced) + u", , "_s + margin + u", "_s + margin + u", "_s + margin
                + u", , "_s + aspect + fade + u"{\\an"_s + QString::number(overlay.logoAlignment)
                + u"}{\\c&H"_s + overlay.logo.color1 + u'&' + fontTags(font) + u'}' + styleBlock(font)
                + twoLines(overlay.logo, overlay, u"\\N"_s);
    }
    return out;
}

bool SaveWatermarkScript(
    const QString &fileName, const WatermarkOverlay &overlay, int width, int height, bool advanced)
{
    const QStringList lines = WatermarkScriptLines(overlay, width, height, advanced);
    return !lines.isEmpty() && util::WriteText(lines.join(u"\r\n"_s), fileName, false);
}

} // namespace qb::subtitle
