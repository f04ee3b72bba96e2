// The script format: header and styles from the options, one dialogue line per cue (plain or as
// karaoke), then the countdown, the banner and the title.
#include "subtitle/writer_shared.h"

#include "util/number_text.h"

#include <algorithm>
#include <cmath>
#include <vector>

using namespace Qt::StringLiterals;

namespace qb::subtitle::writer {

namespace {

constexpr int kKaraokeSourceId = 4;
constexpr double kMaxLeadIn = 3000;
constexpr double kLastTail = 5000;

// Colours go out as they stand: bare hexadecimal, never padded.
QString hexText(qint32 colour)
{
    return QString::number(quint32(colour), 16).toUpper();
}

// A product as the classic runtime prints a double: at most 15 significant digits.
QString decimalText(double value)
{
    return util::FormatNumber(QString::number(value, 'g', 15).toDouble(), u"");
}

QString header(const WriterOptions &o)
{
    return u"[Script Info]\r\nTitle: QDK\r\nScriptType: V4.00\r\nOriginal Script: Quillbox Desk\r\n"
           u"Collisions: Normal\r\nPlayResX: "_s
        + QString::number(o.screenWidth) + u"\r\nPlayResY: "_s + QString::number(o.screenHeight)
        + u"\r\nTimer: 100.0000\r\n\r\n[v4 Styles]\r\n"
          u"Format: Name,Fontname,Fontsize,PrimaryColour,SecondaryColour,TertiaryColour,BackColour,Bold,"
          u"Italic,BorderStyle,Outline,Shadow,Alignment,MarginL,MarginR,MarginV,AlphaLevel,Encoding"_s;
}

QStringList styles(const WriterOptions &o)
{
    const QString size = QString::number(o.fontSize);
    const QString fore = hexText(o.foreColor);
    const QString effect = hexText(o.effectColor);
    const QString shadow = hexText(o.shadowColor);
    const QString tail = u","_s + QString::number(o.fontAlphaLevel) + u',' + QString::number(o.fontEncoding);
    QStringList out;
    if (o.effectStyle == 0) {
        out << u"Style: Default0,Arial,"_s + size + u",&H"_s + fore + u",&HFFFFFF,&H"_s + effect + u",&H"_s
                + shadow + u",0,0,1,0,0,2,15,15,20"_s + tail;
    } else {
        // Two karaoke rows: the upper one sits a line and a half above the lower.
        const QString upper = WholeText(util::RoundHalfEven(o.fontSize * 1.5) + 20);
        const QString colours = u",&H"_s + fore + u",&H"_s + effect + u",&H0,&H"_s + shadow;
        out << u"Style: Default0,Arial,"_s + size + colours + u",0,0,1,0,0,1,15,15,"_s + upper + tail;
        out << u"Style: Default1,Arial,"_s + size + colours + u",0,0,1,0,0,3,15,15,20"_s + tail;
    }
    const double height = o.screenHeight;
    const QString encoding = QString::number(o.fontEncoding);
    if (!o.banner.isEmpty()) {
        out << u"Style: Default2,Arial,"_s + decimalText(height * 0.05)
                + u",&HFFFFFF,&H0,&H0,&H0,1,0,1,2,1,1,15,15,"_s + decimalText(height * 0.9) + u",0,"_s
                + encoding;
    }
    if (!o.title.isEmpty()) {
        out << u"Style: Default3,Arial,"_s + decimalText(height * 0.08)
                + u",&HFFFFFF,&HFFFFFF,&H0,&H0,1,0,1,2,1,10,35,35,0,0,"_s + encoding + u"\r\n"_s;
    }
    return out;
}

QString overrideBlock(const WriterOptions &o)
{
    QString block = u"{\\b"_s + QString::number(o.fontBold) + u"\\i"_s + QString::number(o.fontItalic);
    if (o.fontOutline > 0)
        block += u"\\bord"_s + QString::number(o.fontOutline) + u"\\3c&H"_s + hexText(o.effectColor);
    if (o.fontShadow > 0)
        block += u"\\shad"_s + QString::number(o.fontShadow) + u"\\4c&H"_s + hexText(o.shadowColor);
    return block + u'}';
}

QString withoutBrackets(QString text)
{
    return text.remove(u'[').remove(u']');
}

// The ksc reader leaves the syllable timings in the cue's third field; a missing position keeps
// the duration of the one before.
void durationAt(const QStringList &timings, qsizetype position, double &duration)
{
    if (position < timings.size())
        duration = util::Val(timings.at(position));
}

QString tag(const QString &word, double value)
{
    return u"{\\"_s + word + WholeText(util::RoundHalfEven(value)) + u'}';
}

struct Karaoke
{
    QString word; // "kf" or "ko"
    int sourceId = -1;
    double speed = 1;
    double duration = 0; // kept from cue to cue, as the timings may run short
};

QString karaokeText(Karaoke &karaoke, const QString &cue, double prev, double next, double leadIn)
{
    const QString field = CueText(cue);
    QString out;
    if (karaoke.sourceId == kKaraokeSourceId) {
        const QStringList fields = cue.split(u'|');
        QStringList timings;
        if (fields.size() > 2)
            timings = TrimBlanks(QString(fields.at(2)).remove(u'\'')).split(u',');
        if (field.contains(u"]["_s)) {
            const QStringList groups = NormalizeCueText(field, u"\\N"_s).split(u"]["_s);
            for (qsizetype g = 0; g < groups.size(); ++g) {
                durationAt(timings, g, karaoke.duration);
                out += tag(karaoke.word, karaoke.duration / 10) + withoutBrackets(groups.at(g));
            }
        } else {
            const QString text = NormalizeCueText(withoutBrackets(field), u"\\N"_s);
            for (qsizetype c = 0; c < text.size(); ++c) {
                durationAt(timings, c, karaoke.duration);
                out += tag(karaoke.word, karaoke.duration / 10) + text.at(c);
            }
        }
        return out;
    }
    // Other sources share the time up to the next cue evenly among the characters.
    const QString text = NormalizeCueText(withoutBrackets(field), u"\\N"_s);
    qint32 share = 0;
    if (!util::RoundToLong((next - prev - leadIn) / double(text.size()) / 10 / karaoke.speed, share))
        return {};
    for (const QChar c : text)
        out += u"{\\"_s + karaoke.word + QString::number(share) + u'}' + c;
    return out;
}

QString dialogue(double from, double to, const QString &style)
{
    return u"Dialogue: Marked=0,"_s + TimeText(from, 1) + u',' + TimeText(to, 1) + u",Default"_s + style
        + u",,0000,0000,0000,"_s;
}

} // namespace

QStringList WriteScript(const CueList &cues, const WriterOptions &o)
{
    QStringList out {header(o)};
    out << styles(o);
    out << u"[Events]"_s << u"Format: Marked,Start,End,Style,Name,MarginL,MarginR,MarginV,Effect,Text\r\n"_s;

    const bool effect = o.effectStyle > 0;
    Karaoke karaoke;
    karaoke.word = o.effectStyle == 1 ? u"kf"_s : o.effectStyle == 2 ? u"ko"_s : QString();
    karaoke.sourceId = o.sourceFormatId;
    karaoke.speed = o.effectSpeed;
    const QString block = overrideBlock(o);
    const QString placing = u"{\\fscx"_s + AspectScaleText(o.screenWidth, o.screenHeight) + u"}{\\an"_s
        + QString::number(o.align) + u"}{\\fn"_s + o.fontName + u'}';

    const qsizetype last = cues.size() - 1;
    // Each start is read once: neighbours ask for it again.
    std::vector<double> starts(size_t(cues.size()), 0.0);
    for (qsizetype i = 1; i <= last; ++i)
        starts[size_t(i)] = CueStart(cues.at(i));
    double start = 0;
    double end = 0;
    double prev = 0;
    double next = 0;
    for (qsizetype i = 1; i <= last; ++i) {
        const QString &cue = cues.at(i);
        CueSpan(cues, i, start, end, true);
        double leadIn = 0;
        double tail = 0;
        if (i == 1) {
            prev = start;
            if (last >= 2)
                next = starts[2];
            leadIn = kMaxLeadIn;
        } else if (i == last) {
            prev = starts[size_t(i - 1)];
            next = start;
            leadIn = start - prev;
            tail = kLastTail;
        } else {
            prev = starts[size_t(i - 1)];
            next = starts[size_t(i + 1)];
            leadIn = start - prev;
        }
        leadIn = std::min(leadIn, kMaxLeadIn);

        if (effect) {
            const QString text = karaokeText(karaoke, cue, prev, next, leadIn);
            if (text.isEmpty())
                continue;
            const double leadTicks = util::RoundHalfEven(leadIn / 10);
            const QString k = leadTicks > 0 ? u"{\\k"_s + WholeText(leadTicks) + u'}' : QString();
            out << dialogue(start - leadIn, end - 10 + tail, QString::number(i % 2)) + u',' + block + k
                    + placing + u"{\\t(0,1,\\fsp20)}{\\t(1,200,\\fsp1)}{\\fad(500,200)}"_s + text;
        } else if (HasText(cue)) {
            out << dialogue(start, PrintedEnd(start, end), u"0"_s) + u',' + block + placing
                    + NormalizeCueText(withoutBrackets(CueText(cue)), u"\\N"_s);
        }
    }

    if (effect && last >= 1) {
        // A countdown runs into the first line when there is room before it.
        const double first = starts[1];
        const QString countdown = u"{\\k100}{\\ko50}..{\\ko50}..{\\ko50}.. "
                                  u"{\\ko50}>{\\ko50}>{\\ko50}>{\\ko50}>{\\ko50}>"_s;
        const QString style = QString::number((last + 1) % 2);
        const QString line = u",{\\fad(80,150)}{\\fn"_s + o.fontName + u'}' + countdown;
        if (first > 5000)
            out << dialogue(first - 8000, first - 3000, style) + line;
        else if (first > 3000)
            out << dialogue(0, first - 3000, style) + line;
    }
    if (!o.banner.isEmpty()) {
        out << u"Dialogue: Marked=0,0:00:03.00,0:02:00.00,Default2,,0000,0000,0000,Banner;30;0,"
               u"{\\fad(5000,80)}{\\fn黑体}"_s
                + o.banner;
    }
    if (!o.title.isEmpty()) {
        QString title = o.title;
        title.replace(u"\r\n"_s, u"\\N\\N{\\fs"_s + decimalText(o.screenHeight * 0.07) + u'}');
        out << u"Dialogue: Marked=0,0:00:03.00,0:00:15.00,Default3,,0000,0000,0000,,{\\fad(500,80)}{\\fn"_s
                + o.fontName + u'}' + title;
    }
    return out;
}

} // namespace qb::subtitle::writer
