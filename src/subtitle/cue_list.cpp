// The cue list's stages.
#include "subtitle/cue_list.h"

#include "util/string_array.h"
#include "util/time_format.h"
#include "util/value_sort.h"

namespace qb::subtitle {

namespace {

QString timeText(double milliseconds)
{
    return util::MSecsToTime(milliseconds, 0);
}

double seconds(const QString &time)
{
    QString copy = time;
    return util::TimeToSec(copy, true, QStringLiteral(","));
}

} // namespace

CueList EmptyCueList()
{
    return {QString()};
}

void AddCue(CueList &cues, const QString &time, const QString &text, const CueWindow &window)
{
    if (time.isEmpty())
        return;
    const qsizetype arrow = time.indexOf(QStringLiteral("->"));
    const bool hasEnd = arrow >= 0;
    double s = seconds(hasEnd ? time.left(arrow) : time);
    double e = hasEnd ? seconds(time.mid(arrow + 2)) : s + 5.0;
    const double width = window.end - window.start;
    if (width > 0) {
        if ((s < window.start && e < window.start) || (s > window.end && e > window.end))
            return;
        if (s < window.start)
            s = window.start;
        if (e > window.end)
            e = window.end;
    }
    // Cut subtitles start at zero unless they keep the source's time line.
    const double shift = window.splitMode ? window.offset : window.offset - window.start;
    QString cue = timeText((s + shift) * 1000);
    if (hasEnd)
        cue += QStringLiteral("->") + timeText((e + shift) * 1000);
    cues.append(cue + u'|' + text);
}

QString CueTime(const QString &cue)
{
    return cue.section(u'|', 0, 0);
}

QString CueText(const QString &cue)
{
    const qsizetype bar = cue.indexOf(u'|');
    return bar < 0 ? QString() : cue.mid(bar + 1);
}

void MergeSamePosition(CueList &cues)
{
    for (qsizetype i = 1; i < cues.size(); ++i) {
        if (CueText(cues.at(i)).isEmpty())
            continue;
        // The bound is taken once: after removals the loop reaches past the end and skips.
        const qsizetype last = cues.size() - 1;
        for (qsizetype j = i + 1; j <= last; ++j) {
            if (j >= cues.size() || i >= cues.size())
                continue;
            const QString &first = cues.at(i);
            const QString &other = cues.at(j);
            if (first == other || CueTime(first).trimmed() != CueTime(other).trimmed())
                continue;
            const QString joined = first.endsWith(u'|') ? CueText(other).trimmed()
                                                        : QStringLiteral("\\N") + CueText(other).trimmed();
            cues[i] = first + joined;
            util::ArrayRemoveItem(cues, j);
        }
    }
}

void AddWatermark(CueList &cues, const QString &text, double start, double end, double extraEnd)
{
    if (start > end)
        std::swap(start, end);
    cues.append(
        timeText(start * 1000) + QStringLiteral("->") + timeText(end * 1000 + extraEnd) + u'|' + text);
}

void SortCues(CueList &cues)
{
    if (cues.size() < 2)
        return;
    cues[0] = QStringLiteral("0");
    util::QuickSortStrings(cues, 0, cues.size() - 1);
}

} // namespace qb::subtitle
