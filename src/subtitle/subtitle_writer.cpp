// The writers' shared rules, the line formats and the choice of writer.
#include "subtitle/subtitle_writer.h"

#include "subtitle/writer_shared.h"
#include "util/number_text.h"
#include "util/time_format.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace qb::subtitle {

namespace writer {

QString TrimBlanks(const QString &text)
{
    qsizetype from = 0;
    qsizetype to = text.size();
    while (from < to && text.at(from) == u' ')
        ++from;
    while (to > from && text.at(to - 1) == u' ')
        --to;
    return text.mid(from, to - from);
}

bool HasText(const QString &cue)
{
    return !TrimBlanks(CueText(cue)).isEmpty();
}

double CueStart(const QString &cue)
{
    QString start = CueTime(cue).section(QStringLiteral("->"), 0, 0);
    return util::TimeToMSecs(start, QStringLiteral(","));
}

void CueSpan(const CueList &cues, qsizetype i, double &start, double &end, bool lastKeepsEnd)
{
    const QString time = CueTime(cues.at(i));
    start = CueStart(cues.at(i));
    const qsizetype arrow = time.indexOf(QStringLiteral("->"));
    if (arrow >= 0) {
        QString stored = time.mid(arrow + 2);
        end = util::TimeToMSecs(stored, QStringLiteral(","));
    } else if (i + 1 < cues.size()) {
        end = CueStart(cues.at(i + 1));
    } else if (!lastKeepsEnd) {
        end = start + 5000;
    }
}

double PrintedEnd(double start, double end)
{
    return end == 0 ? start + 10000 : end - 10;
}

QString TimeText(double msecs, int style)
{
    return util::FormatMSecs(msecs, style);
}

QString WholeText(double value)
{
    return util::FormatNumber(value, u"0");
}

QString AspectScaleText(int width, int height)
{
    if (width == 0 || height == 0)
        return QStringLiteral("0");
    const double aspect = double(width) / double(height);
    return WholeText(std::trunc((384.0 / 288.0) * 10 / aspect * 10));
}

} // namespace writer

using namespace writer;

namespace {

const QString kCrLf = QStringLiteral("\r\n");

QStringList writePlain(const CueList &cues)
{
    QStringList out;
    for (qsizetype i = 1; i < cues.size(); ++i)
        out << NormalizeCueText(CueText(cues.at(i)), kCrLf);
    return out;
}

QStringList writeNumbered(const CueList &cues)
{
    QStringList out;
    int counter = 0;
    double start = 0;
    double end = 0;
    for (qsizetype i = 1; i < cues.size(); ++i) {
        if (!HasText(cues.at(i)))
            continue;
        CueSpan(cues, i, start, end);
        out << QString::number(++counter);
        out << TimeText(start, 0) + QStringLiteral(" --> ") + TimeText(PrintedEnd(start, end), 0);
        out << NormalizeCueText(CueText(cues.at(i)), kCrLf) + kCrLf;
    }
    return out;
}

QStringList writeLyrics(const CueList &cues, const WriterOptions &options)
{
    QStringList out {QStringLiteral("[ti:") + options.title + u']', QStringLiteral("[ar:]"),
        QStringLiteral("[al:]"), QStringLiteral("[by:") + options.composer + u']'};
    for (qsizetype i = 1; i < cues.size(); ++i) {
        if (HasText(cues.at(i)))
            out << u'[' + TimeText(CueStart(cues.at(i)), 2) + u']'
                    + NormalizeCueText(CueText(cues.at(i)), u" "_s);
    }
    return out;
}

QStringList writeXmlLyrics(const CueList &cues)
{
    QStringList out {
        QStringLiteral("<?xml version=\"1.0\" encoding=\"gb2312\"?>\r\n"
                       "<!-- QDK SubtitleConverter -->\r\n<Lyric>\r\n  <song>\r\n  </song>\r\n  <lines>")};
    for (qsizetype i = 1; i < cues.size(); ++i) {
        if (!HasText(cues.at(i)))
            continue;
        out << QStringLiteral("    <line begin=\"") + TimeText(CueStart(cues.at(i)), 2)
                + QStringLiteral("\">") + NormalizeCueText(CueText(cues.at(i)), u" "_s)
                + QStringLiteral("</line>");
    }
    out << QStringLiteral("  </lines>\r\n</Lyric>");
    return out;
}

QStringList writeSami(const CueList &cues)
{
    QStringList out {QStringLiteral("<SAMI>"), QStringLiteral("<BODY>")};
    for (qsizetype i = 1; i < cues.size(); ++i) {
        if (!HasText(cues.at(i)))
            continue;
        out << QStringLiteral("<sync start=") + WholeText(util::RoundHalfEven(CueStart(cues.at(i)))) + u'>'
                + NormalizeCueText(CueText(cues.at(i)), u" "_s);
    }
    out << QStringLiteral("</BODY>") << QStringLiteral("</SAMI>");
    return out;
}

QStringList writeCircled(const CueList &cues)
{
    QStringList out;
    for (qsizetype i = 1; i < cues.size(); ++i) {
        if (!HasText(cues.at(i)))
            continue;
        // Hundredths: the division is exact and the pattern rounds what is left.
        const double hundredths = util::RoundHalfEven(CueStart(cues.at(i))) / 10;
        out << u"⑩"_s + util::FormatNumber(hundredths, u"00000000") + u"⑿"_s + kCrLf
                + NormalizeCueText(CueText(cues.at(i)), u" "_s);
    }
    return out;
}

QStringList writeMinuteBlocks(const CueList &cues)
{
    QStringList out;
    for (qsizetype i = 1; i < cues.size(); ++i) {
        if (HasText(cues.at(i)))
            out << TimeText(CueStart(cues.at(i)), 4) + kCrLf + NormalizeCueText(CueText(cues.at(i)), u" "_s)
                    + kCrLf;
    }
    return out;
}

// The one-line, bracket-pair and cue-list forms: both times and the text on a fixed frame.
enum class TimedForm { OneLine, Brackets, CueList };

QStringList writeTimed(const CueList &cues, TimedForm form)
{
    QStringList out;
    if (form == TimedForm::OneLine)
        out << QStringLiteral("{* VIPLAY SUBTITLE FILE *}");
    double start = 0;
    double end = 0;
    for (qsizetype i = 1; i < cues.size(); ++i) {
        if (!HasText(cues.at(i)))
            continue;
        CueSpan(cues, i, start, end);
        const QString text = CueText(cues.at(i));
        const double printed = PrintedEnd(start, end);
        switch (form) {
        case TimedForm::OneLine:
            out << TimeText(start, 0) + u'-' + TimeText(printed, 0) + u'=' + NormalizeCueText(text, u" "_s);
            break;
        case TimedForm::Brackets:
            out << u'[' + TimeText(start, 99) + u']' + NormalizeCueText(text, u" "_s) + kCrLf + u'['
                    + TimeText(printed, 99) + u']';
            break;
        case TimedForm::CueList:
            out << TimeText(start, 0) + QStringLiteral("->") + TimeText(printed, 0) + u'|'
                    + NormalizeCueText(text, QStringLiteral("\\N"));
            break;
        }
    }
    return out;
}

} // namespace

QString NormalizeCueText(const QString &text, const QString &separator)
{
    QString out = TrimBlanks(text);
    out.replace(QStringLiteral("\\N"), separator);
    out.replace(QStringLiteral("\\n"), separator);
    return out;
}

QStringList WriteSubtitle(int formatId, const CueList &cues, const WriterOptions &options)
{
    switch (formatId) {
    case 0:
        return writePlain(cues);
    case 1:
        return writeNumbered(cues);
    case 3:
        return writeLyrics(cues, options);
    case 4:
        return WriteKaraokeScript(cues);
    case 5:
        return writeXmlLyrics(cues);
    case 6:
        return writeSami(cues);
    case 7:
        return writeCircled(cues);
    case 8:
        return writeMinuteBlocks(cues);
    case 9:
        return WriteTable(cues);
    case 10:
        return writeTimed(cues, TimedForm::OneLine);
    case 11:
        return writeTimed(cues, TimedForm::Brackets);
    case 99:
        return writeTimed(cues, TimedForm::CueList);
    default:
        // An unknown destination is written as a script.
        return WriteScript(cues, options);
    }
}

} // namespace qb::subtitle
