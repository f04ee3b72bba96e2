// The readers: one line filter per format, fed one line at a time (already free of CR and LF),
// storing cues through AddCue. What a reader does not recognise it skips.
#pragma once

#include "subtitle/cue_list.h"

namespace qb::subtitle {

// What a reader keeps across the lines of a conversion (reset at its start, not between sources).
struct ReaderState
{
    QString pendingTime; // start "->" end of the block being read
    QString pendingText; // the block's lines joined with "\N"
    bool inBlock = false;
    int lineCounter = 0; // the strict numbered reader
    QString blockStart; // the strict numbered reader
    bool blankSeen = false; // the strict numbered reader
    int startColumn = -1; // the script reader's "Format:" line
    int endColumn = -1;
    int fieldCount = 0;
    int destinationId = 2; // the script reader keeps its tags only for a script destination
};

// Reads one line of a source in the format numbered formatId; last is true for the last line
// visited of that source.
void ReadSubtitleLine(
    int formatId, const QString &line, bool last, ReaderState &state, CueList &cues, const CueWindow &window);

} // namespace qb::subtitle
