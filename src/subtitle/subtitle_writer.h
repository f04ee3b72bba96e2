// The writers: one per destination format, printing the cue list (elements 1 to the last) as
// text lines; the caller ends every line with CR LF.
#pragma once

#include "subtitle/cue_list.h"

#include <QtGlobal>

namespace qb::subtitle {

// What the writers print besides the cues: the script format's play size, styles and effects,
// the title and banner cues, and the lyric header's author.
struct WriterOptions
{
    int screenWidth = 0;
    int screenHeight = 0;
    QString title;
    QString banner;
    QString fontName = QStringLiteral("Arial");
    int fontSize = 18;
    int fontBold = 0;
    int fontItalic = 0;
    int fontOutline = 0;
    int fontShadow = 0;
    quint8 fontAlphaLevel = 0;
    int fontEncoding = 134;
    int effectStyle = 0; // 0 none, 1 sweep "kf", 2 outline "ko"
    double effectSpeed = 1;
    qint32 foreColor = 0;
    qint32 effectColor = 0;
    qint32 shadowColor = 0;
    int align = 2; // numpad
    QString composer; // the lyric header's "[by:" value
    int sourceFormatId = -1; // the last source's format: karaoke scripts carry their own timings
};

// A cue's text for printing: trimmed of blanks, its "\N" and "\n" breaks turned into separator.
QString NormalizeCueText(const QString &text, const QString &separator);

// The lines the writer of formatId prints.
QStringList WriteSubtitle(int formatId, const CueList &cues, const WriterOptions &options);

} // namespace qb::subtitle
