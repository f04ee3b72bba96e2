// Readers of the lyric and karaoke formats: time tags, karaoke scripts, the XML lyric, SAMI,
// circled-number text and minute-second blocks.
#include "subtitle/reader_families.h"

#include "util/number_text.h"
#include "util/text_search.h"

namespace qb::subtitle::reader {

namespace {

// Every time tag of a line stores its own copy of the text; a line that would multiply its size
// by more than this is hostile, not lyrics.
constexpr qsizetype kTagCopyFactor = 64;

} // namespace

void ReadTimeTagged(const QString &line, const Feed &feed)
{
    if (!line.contains(u'[') || !line.contains(u']'))
        return;
    const QStringList pieces = line.split(u']');
    const QString text = util::KillTag(pieces.last(), false);
    const qsizetype tags = pieces.size() - 1;
    if ((tags - 1) * text.size() > kTagCopyFactor * line.size())
        return;
    // Header tags such as "[ti:" take the same path: their time reads as zero, their text is empty.
    for (qsizetype i = 0; i < tags; ++i)
        feed.add(QString(pieces.at(i)).remove(u'['), text);
}

void ReadKaraoke(const QString &line, const Feed &feed)
{
    if (!line.contains(QStringLiteral("karaoke.add("), Qt::CaseInsensitive))
        return;
    const QString arguments = AfterFirst(line, QStringLiteral("("));
    if (arguments.isEmpty())
        return;
    QStringList parts = arguments.split(QStringLiteral("', '"));
    if (parts.size() < 4)
        return;
    for (QString &part : parts)
        part = part.trimmed().remove(u'\'');
    const QString timing = util::KillTag(parts.at(3), false).remove(QStringLiteral(");"));
    // The line text rides behind the end on purpose: the end is then read from "end|text", where
    // only the leading clock fields count, and the stored cue holds the timing list as its text.
    feed.add(parts.at(0) + QStringLiteral("->") + parts.at(1) + u'|' + parts.at(2), timing);
}

void ReadXmlLyric(const QString &line, const Feed &feed)
{
    if (!line.contains(QStringLiteral("line begin=")))
        return;
    const QString quote = QStringLiteral("\"");
    feed.add(util::FindTextBetween(line, quote, quote, 1, 2),
        util::KillTag(util::FindTextBetween(line, QStringLiteral(">"), QStringLiteral("<"), 1, 2), false));
}

void ReadSami(const QString &line, const Feed &feed)
{
    if (line.contains(QStringLiteral("<sync"), Qt::CaseInsensitive)) {
        // The bare number reads as seconds, whatever unit the file meant.
        const double value = util::Val(util::FindText(line, QStringLiteral("="), 1));
        feed.add(PlainNumber(value), util::KillTag(util::FindText(line, QStringLiteral(">"), 1), false));
    } else if (!line.trimmed().isEmpty()) {
        feed.appendToLast(util::KillTag(line, false));
    }
}

void ReadCircledNumbers(const QString &line, const Feed &feed)
{
    const QString open = QStringLiteral("\u2469");
    const QString close = QStringLiteral("\u247F");
    if (line.contains(open) && line.contains(close)) {
        const double value = util::Val(util::FindTextBetween(line, open, close, 1, 1)) * 10.0;
        feed.add(PlainNumber(value), QString());
    } else if (!line.isEmpty()) {
        feed.appendToLast(util::KillTag(line, false));
    }
}

void ReadMinuteSecond(const QString &line, const Feed &feed)
{
    if (line.size() == 5 && StartsWithShape(line, u"##:##"))
        feed.add(line, QString());
    else if (!line.isEmpty())
        feed.appendToLast(line);
}

} // namespace qb::subtitle::reader
