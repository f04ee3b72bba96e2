// What the writers share: the cue's times as every writer reads them and the number texts.
#pragma once

#include "subtitle/subtitle_writer.h"

namespace qb::subtitle::writer {

// Blanks only, as the classic Trim: tabs and other spaces stay.
QString TrimBlanks(const QString &text);

// A cue is printed only when its text has more than blanks.
bool HasText(const QString &cue);

// The start (left of "->") of a cue's time field, in milliseconds.
double CueStart(const QString &cue);

// Start and end of cue i. A cue without an end lasts to the next cue's start; the last one to
// start + 5000, or, with lastKeepsEnd, to whatever end holds from the cue before.
void CueSpan(const CueList &cues, qsizetype i, double &start, double &end, bool lastKeepsEnd = false);

// The end as printed: 10 ms short of the stored one, or start + 10 s for an end of zero.
double PrintedEnd(double start, double end);

QString TimeText(double msecs, int style);

// A whole number (already rounded) without fraction or exponent.
QString WholeText(double value);

// The horizontal scale that squeezes the 4:3 design to the play size, as "\\fscx" takes it. A zero
// side gives "0", as the failed division did.
QString AspectScaleText(int width, int height);

QStringList WriteScript(const CueList &cues, const WriterOptions &options);
QStringList WriteKaraokeScript(const CueList &cues);
QStringList WriteTable(const CueList &cues);

} // namespace qb::subtitle::writer
