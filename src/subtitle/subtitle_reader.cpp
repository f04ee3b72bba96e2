// The readers' dispatch, the shared pieces and the one-line formats.
#include "subtitle/reader_families.h"

#include "util/number_text.h"

namespace qb::subtitle {

namespace reader {

void Feed::appendToLast(const QString &text) const
{
    if (cues.size() > 1)
        cues.last() += text;
}

QString AfterFirst(const QString &line, const QString &separator)
{
    const qsizetype at = line.indexOf(separator);
    return at < 0 ? QString() : line.mid(at + separator.size());
}

bool StartsWithShape(const QString &text, QStringView shape)
{
    if (text.size() < shape.size())
        return false;
    for (qsizetype i = 0; i < shape.size(); ++i) {
        const QChar c = text.at(i);
        if (shape.at(i) == u'#' ? (c < u'0' || c > u'9') : c != shape.at(i))
            return false;
    }
    return true;
}

QString PlainNumber(double value)
{
    return util::FormatNumber(value, u"");
}

namespace {

// The internal form on disk: time, "|", text.
void readCueForm(const QString &line, const Feed &feed)
{
    const qsizetype bar = line.indexOf(u'|');
    if (bar >= 0)
        feed.add(line.left(bar), line.mid(bar + 1));
}

} // namespace

} // namespace reader

void ReadSubtitleLine(
    int formatId, const QString &line, bool last, ReaderState &state, CueList &cues, const CueWindow &window)
{
    using namespace reader;
    const Feed feed {state, cues, window};
    switch (formatId) {
    case 0:
        feed.add(QStringLiteral("0->0"), line);
        break;
    case 1:
        ReadNumberedBlocks(line, last, feed);
        break;
    case 2:
        ReadScript(line, feed);
        break;
    case 3:
        ReadTimeTagged(line, feed);
        break;
    case 4:
        ReadKaraoke(line, feed);
        break;
    case 5:
        ReadXmlLyric(line, feed);
        break;
    case 6:
        ReadSami(line, feed);
        break;
    case 7:
        ReadCircledNumbers(line, feed);
        break;
    case 8:
        ReadMinuteSecond(line, feed);
        break;
    case 9:
        ReadTabular(line, feed);
        break;
    case 10:
        ReadOneLineForm(line, feed);
        break;
    case 11:
        ReadBracketPairs(line, feed);
        break;
    case 91:
        ReadStrictNumbered(line, feed);
        break;
    case 99:
        readCueForm(line, feed);
        break;
    default:
        break;
    }
}

} // namespace qb::subtitle
