// The converter's list of cues and the stages that work on it. A cue is one string: start, "->",
// end, "|", text, or start, "|", text; times are "00:00:00,000". The list is one-based: element 0
// exists and is no cue.
#pragma once

#include <QString>
#include <QStringList>

namespace qb::subtitle {

using CueList = QStringList;

// A list with only its element 0.
CueList EmptyCueList();

// How cues are kept while they are read: the window (seconds; off when end is not after start),
// the offset added to every time and whether cut times stay on the source's time line.
struct CueWindow
{
    double start = 0;
    double end = 0;
    double offset = 0;
    bool splitMode = false;
};

// Stores a cue read at time ("a" or "a->b"); a cue without an end lasts five seconds for the
// window's rules but is stored without one. Cues wholly outside the window are dropped, cues
// across its edges are cut to it. An empty time stores nothing.
void AddCue(CueList &cues, const QString &time, const QString &text, const CueWindow &window);

// The time field (before the first "|") and the text (after it) of a cue.
QString CueTime(const QString &cue);
QString CueText(const QString &cue);

// Joins the texts of cues whose time fields are equal into the first of them ("\N" between),
// removing the later ones. Equal cues are not merged.
void MergeSamePosition(CueList &cues);

// Appends the watermark cue from start to end seconds (swapped when reversed); extraEnd
// milliseconds are added to its end.
void AddWatermark(CueList &cues, const QString &text, double start, double end, double extraEnd);

// Sorts the whole list by its strings (element 0 becomes "0" and takes part).
void SortCues(CueList &cues);

} // namespace qb::subtitle
