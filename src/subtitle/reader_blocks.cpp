// Readers of the block and table formats: numbered blocks (loose and strict), the script format,
// the tabular and one-line forms and bracket pairs.
#include "subtitle/reader_families.h"

#include "util/number_text.h"
#include "util/text_search.h"

namespace qb::subtitle::reader {

namespace {

const QString kEndPlaceholder = QStringLiteral("#EndTime#");

void flushBlock(const Feed &feed)
{
    ReaderState &state = feed.state;
    state.inBlock = false;
    feed.add(state.pendingTime, state.pendingText);
    state.pendingTime.clear();
    state.pendingText.clear();
}

} // namespace

void ReadNumberedBlocks(const QString &line, bool last, const Feed &feed)
{
    ReaderState &state = feed.state;
    const qsizetype arrow = line.indexOf(QStringLiteral("-->"), 0, Qt::CaseInsensitive);
    if (arrow >= 0) {
        state.inBlock = true;
        state.pendingTime = line.left(arrow).trimmed() + QStringLiteral("->") + line.mid(arrow + 3).trimmed();
        return;
    }
    if (line.trimmed().isEmpty()) {
        flushBlock(feed);
        return;
    }
    // Outside a block the line is a block number or stray text.
    if (!state.inBlock)
        return;
    if (!state.pendingText.isEmpty())
        state.pendingText += QStringLiteral("\\N");
    state.pendingText += util::KillTag(line, false);
    // A last block without a blank line behind it would otherwise be lost.
    if (last)
        flushBlock(feed);
}

void ReadStrictNumbered(const QString &line, const Feed &feed)
{
    ReaderState &state = feed.state;
    // From the third line of a block on every line is read alike; stopping there keeps it from overflowing.
    if (state.lineCounter < 3)
        ++state.lineCounter;
    const bool blank = line.trimmed().isEmpty();
    const bool numeric = util::IsNumericText(line);
    if (state.lineCounter == 1)
        return;
    if (state.lineCounter == 2) {
        if (numeric) {
            state.lineCounter = 1;
        } else if (!blank) {
            const QString separator = QStringLiteral(" --> ");
            const qsizetype at = line.indexOf(separator);
            if (at >= 0)
                state.blockStart = line.left(at) + QStringLiteral("->") + line.mid(at + separator.size());
        }
        return;
    }
    if (numeric && state.blankSeen) {
        state.lineCounter = 1;
        state.blankSeen = false;
    } else if (!blank) {
        // Each text line is a cue of its own.
        feed.add(QString(state.blockStart).replace(u' ', u'0'), util::KillTag(line, false));
    } else {
        state.blankSeen = true;
    }
}

void ReadScript(const QString &line, const Feed &feed)
{
    ReaderState &state = feed.state;
    if (line.contains(QStringLiteral("Format:"), Qt::CaseInsensitive)) {
        const QStringList fields = line.split(u',');
        // The text is the last field and may hold commas of its own.
        state.fieldCount = int(fields.size() - 1);
        for (qsizetype i = 0; i < fields.size(); ++i) {
            const QString name = fields.at(i).trimmed().toLower();
            if (name == u"start")
                state.startColumn = int(i);
            else if (name == u"end")
                state.endColumn = int(i);
        }
        return;
    }
    if (!line.contains(QStringLiteral("Dialogue:"), Qt::CaseInsensitive))
        return;
    const QStringList fields = line.split(u',');
    if (state.startColumn < 0 || state.endColumn < 0 || state.startColumn >= fields.size()
        || state.endColumn >= fields.size())
        return;
    const QString time = fields.at(state.startColumn).trimmed() + QStringLiteral("->")
        + fields.at(state.endColumn).trimmed();
    const QString text = util::FindText(line, QStringLiteral(","), state.fieldCount);
    // A script destination keeps the override tags; every other format gets plain text.
    feed.add(time, state.destinationId == 2 ? text : util::KillTag(text, false));
}

void ReadTabular(const QString &line, const Feed &feed)
{
    if (!StartsWithShape(line, u"##:##:##:##"))
        return;
    const QStringList fields = line.split(u',');
    if (fields.size() < 3)
        return;
    feed.add(fields.at(0).trimmed() + QStringLiteral("->") + fields.at(1).trimmed(),
        util::KillTag(fields.at(2), false).trimmed());
}

void ReadOneLineForm(const QString &line, const Feed &feed)
{
    if (!StartsWithShape(line, u"##:##:##,###"))
        return;
    const qsizetype equals = line.indexOf(u'=');
    if (equals < 0)
        return;
    QStringList times = line.left(equals).split(u'-');
    for (QString &time : times)
        time = time.trimmed();
    feed.add(times.join(QStringLiteral("->")), util::KillTag(line.mid(equals + 1), false).trimmed());
}

void ReadBracketPairs(const QString &line, const Feed &feed)
{
    if (!line.startsWith(u'['))
        return;
    const qsizetype close = line.indexOf(u']');
    if (close < 0)
        return;
    ReaderState &state = feed.state;
    const QString tag = line.mid(1, close - 1);
    const QString rest = line.mid(close + 1);
    if (!rest.trimmed().isEmpty()) {
        // The end comes with the next bare tag.
        state.pendingTime = tag + QStringLiteral("->") + kEndPlaceholder;
        state.pendingText = util::KillTag(rest, false).trimmed();
        return;
    }
    // Only an open start is closed: repeated end tags would store the same text again and again.
    if (!state.pendingTime.contains(kEndPlaceholder))
        return;
    state.pendingTime.replace(kEndPlaceholder, tag);
    feed.add(state.pendingTime, state.pendingText);
}

} // namespace qb::subtitle::reader
