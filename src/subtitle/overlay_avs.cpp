// The frame-server path's overlay: numbered blocks whose text lines carry their own style tags.
#include "subtitle/overlay_script.h"

#include "util/number_text.h"
#include "util/text_file.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace qb::subtitle {

namespace {

// A file without a head is laid out on the renderers' default play size.
constexpr int kPlayWidth = 384;

QString flag(const char16_t *tag, bool on)
{
    return QString::fromUtf16(tag) + (on ? u'1' : u'0');
}

QString fontTags(const OverlayFont &font)
{
    return u"\\fn"_s + font.name + u"\\fs"_s + QString::number(font.size);
}

bool isIndexLine(const QStringList &lines, qsizetype i)
{
    const QString line = lines.at(i).trimmed();
    return !line.isEmpty() && util::IsNumericText(line) && i + 1 < lines.size()
        && lines.at(i + 1).contains(u"-->"_s);
}

void addBlock(QStringList &out, int &index, const AvsOverlayItem &item, const QString &text)
{
    out << QString::number(++index) << item.start + u" --> "_s + item.end << text << QString();
}

QString itemTags(const AvsOverlayItem &item, const QString &border, const char16_t *fade)
{
    const OverlayFont font = ParseOverlayFont(item.font);
    return u"{"_s + QString::fromUtf16(fade) + u"\\1c&H"_s + item.color + u"&\\3c&H"_s + border
        + fontTags(font) + u"\\an"_s + QString::number(item.align) + u'}';
}

bool itemOn(const AvsOverlayItem &item)
{
    return item.enabled && !item.text.isEmpty();
}

} // namespace

QStringList AvsSubtitleLines(const AvsSubtitleOverlay &overlay)
{
    QStringList out;
    int index = 0;
    if (!overlay.userSubtitle.isEmpty()) {
        int format = -1;
        const QStringList lines = util::UEFLoadTextFile(overlay.userSubtitle, format).split(u"\r\n"_s);
        const OverlayFont font = ParseOverlayFont(overlay.font);
        const QString tags = u"{"_s + flag(u"\\b", font.bold) + flag(u"\\i", font.italic)
            + u"\\fad(100,100)\\1c&H"_s + overlay.color + u"\\3c&H"_s + overlay.border + fontTags(font)
            + u"\\an"_s + QString::number(overlay.align) + u'}';
        for (qsizetype i = 0; i < lines.size(); ++i) {
            const QString &line = lines.at(i);
            if (line.contains(u"-->"_s))
                ++index;
            if (line.contains(u"-->"_s) || line.trimmed().isEmpty() || isIndexLine(lines, i))
                out << line;
            else
                out << tags + line;
        }
        if (!out.isEmpty() && !out.last().isEmpty())
            out << QString();
    }
    if (itemOn(overlay.title))
        addBlock(out, index, overlay.title,
            itemTags(overlay.title, overlay.border, u"\\fad(1000,300)") + overlay.title.text);
    if (itemOn(overlay.logo))
        addBlock(out, index, overlay.logo,
            itemTags(overlay.logo, overlay.border, u"\\fad(300,300)") + overlay.logo.text);
    if (itemOn(overlay.banner)) {
        // A run from just off the right edge to just off the left at the top, on the default
        // bottom-centre anchor: the text is taken as at most one font size wide per character,
        // so x runs from 384 + w/2 to -w/2, and its baseline sits a font size and 8 pixels down.
        const OverlayFont font = ParseOverlayFont(overlay.banner.font);
        const int half = int((overlay.banner.text.size() * font.size + 1) / 2);
        const QString y = QString::number(font.size + 8);
        const QString move = u"{\\move("_s + QString::number(kPlayWidth + half) + u", "_s + y + u", "_s
            + QString::number(-half) + u", "_s + y + u")\\1c&H"_s + overlay.banner.color + u"&\\3c&H"_s
            + overlay.border + fontTags(font) + u'}';
        addBlock(out, index, overlay.banner, move + overlay.banner.text);
    }
    return out;
}

bool SaveAvsSubtitleFile(const QString &fileName, const AvsSubtitleOverlay &overlay)
{
    if (QFile::exists(fileName))
        QFile::remove(fileName);
    return util::WriteText(AvsSubtitleLines(overlay).join(u"\r\n"_s), fileName, false);
}

} // namespace qb::subtitle
