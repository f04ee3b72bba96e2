// The readers' shared pieces, split by format family over a few files.
#pragma once

#include "subtitle/subtitle_reader.h"

namespace qb::subtitle::reader {

// What the lines of one source feed: the list, its window and the state kept across lines.
struct Feed
{
    ReaderState &state;
    CueList &cues;
    const CueWindow &window;

    void add(const QString &time, const QString &text) const { AddCue(cues, time, text, window); }
    // Text lines of some formats continue the last cue; before the first cue they are lost.
    void appendToLast(const QString &text) const;
};

// What stands behind the first separator; empty when there is none.
QString AfterFirst(const QString &line, const QString &separator);
// True when text starts with a shape in which "#" is one digit and anything else itself.
bool StartsWithShape(const QString &text, QStringView shape);
// A number as a plain decimal string, as a bare time reads it.
QString PlainNumber(double value);

void ReadNumberedBlocks(const QString &line, bool last, const Feed &feed);
void ReadStrictNumbered(const QString &line, const Feed &feed);
void ReadScript(const QString &line, const Feed &feed);
void ReadTabular(const QString &line, const Feed &feed);
void ReadOneLineForm(const QString &line, const Feed &feed);
void ReadBracketPairs(const QString &line, const Feed &feed);

void ReadTimeTagged(const QString &line, const Feed &feed);
void ReadKaraoke(const QString &line, const Feed &feed);
void ReadXmlLyric(const QString &line, const Feed &feed);
void ReadSami(const QString &line, const Feed &feed);
void ReadCircledNumbers(const QString &line, const Feed &feed);
void ReadMinuteSecond(const QString &line, const Feed &feed);

} // namespace qb::subtitle::reader
