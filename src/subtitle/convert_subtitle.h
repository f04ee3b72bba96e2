// One conversion: every source read line by line into one cue list, merged, marked, sorted and
// written in the destination's format, then re-encoded. The result says whether the destination
// was written; bad input gives false and no output.
#pragma once

#include "subtitle/subtitle_writer.h"

#include <QStringList>

#include <functional>

namespace qb::subtitle {

struct ConvertArguments
{
    QStringList sources; // read one after the other
    QString destination; // its extension picks the format; an unknown one writes the script format
    WriterOptions style; // play size, title and banner, font, effects, colours, alignment
    double timeOffset = 0; // seconds added to every cue
    bool sort = false;
    bool raiseFinished = true; // the final "written" status event
    bool overwrite = false; // without it an existing destination's name is numbered
    double windowStart = 0; // seconds; the window is off unless its end is after its start
    double windowEnd = 0;
    QString watermark; // one more cue, from watermarkStart to watermarkEnd seconds
    double watermarkStart = 0;
    double watermarkEnd = 0;
    int internalCodeConversion = 0; // 0 none, 1 Big5 to simplified GBK, 2 simplified GBK to Big5
    int raiseEventInterval = 100; // lines between progress events
    bool splitMode = false;
    bool mergeSamePosition = false;
    int encodeFormat = 0; // the destination's text format (0 the system's, 1 UTF-8 with a mark...)
    bool raiseAllEvents = true;
    QString fileNameSuffix; // replaces the destination's extension when set
};

// The events a conversion raises, as the job engine's StatusChange and ProgressChange.
struct ConvertEvents
{
    std::function<void(int code, const QString &text)> status;
    std::function<void(
        int value, int max, int fps, const QString &started, const QString &finished, bool last)>
        progress;
};

// The converter's outcome and the two times it reports ("HH:MM:SS").
struct ConvertResult
{
    bool written = false;
    QString destination; // the path written, after renaming and the suffix rule
    QString started;
    QString finished;
};

ConvertResult ConvertSubtitleFiles(const ConvertArguments &arguments, const ConvertEvents &events = {});

} // namespace qb::subtitle
