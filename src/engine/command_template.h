// Command templates a host passes for tools the engine has no composer of its own for: the macros
// they may hold, and the language table for the MP4 muxer's templates.
#pragma once

#include <QString>

namespace qb::engine {

struct MacroValues
{
    int outW = 0;
    int outH = 0;
    bool padBorder = false; // the height is left to the tool ("-3") when a border is fitted
    int videoBitRate = 0;
    int videoVBR = 0;
    double frameRate = 0;
    int audioBitRate = 0;
    int audioQuality = 0;
    int audioSampleRate = 0;
    int audioChannels = 0;
    QString inputName;
    QString outputFileName;
};

// Every "#Name#" macro of the table replaced everywhere; anything else stays as written.
QString ExpandCommandMacros(const QString &commandTemplate, const MacroValues &values);

// A language for the MP4 muxer, given by its index in the table or by its word in any case: the
// word and the code; anything outside the table gives no word and "und".
struct Mp4BoxLanguage
{
    QString word;
    QString code;
};
Mp4BoxLanguage ChooseMp4BoxLanguage(const QString &value);

} // namespace qb::engine
