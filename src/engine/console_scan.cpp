// The rules that turn tool output into status events, position, total and speed.
#include "engine/console_scan.h"

#include "engine/status_codes.h"

#include "util/number_text.h"
#include "util/time_format.h"
#include "util/wildcard.h"

#include <array>
#include <limits>

namespace qb::engine {

namespace {

// A phrase that means the tool has failed, and the text to raise for it.
struct FatalPhrase
{
    const char16_t *phrase;
    const char16_t *alsoNeeded; // a second phrase the text must hold too, or nullptr
    QString (*text)(const QString &line, const QString &phrase, const ScanContext &context);
};

QString fromWord(const QString &line, const QString &word)
{
    const qsizetype at = line.indexOf(word);
    return at < 0 ? line : line.mid(at);
}

const std::array<FatalPhrase, 10> kFatalPhrases {{
    {u"not found for output stream", nullptr,
        [](const QString &l, const QString &, const ScanContext &) {
            return fromWord(l, QStringLiteral("Encoder"));
        }},
    {u"Unknown encoder", nullptr, [](const QString &l, const QString &, const ScanContext &) { return l; }},
    {u"Can not resample", nullptr,
        [](const QString &l, const QString &p, const ScanContext &c) {
            return fromWord(l, p).replace(p, c.StringContent16);
        }},
    {u"Resampling with input channels greater than 2 unsupported", nullptr,
        [](const QString &, const QString &, const ScanContext &c) { return c.StringContent20; }},
    {u"Error while opening encoder for output stream", nullptr,
        [](const QString &, const QString &, const ScanContext &) {
            return QStringLiteral("maybe incorrect parameters such as bit_rate, rate, width or height");
        }},
    {u"Unknown input or output format", nullptr,
        [](const QString &l, const QString &p, const ScanContext &c) {
            return QString(l).replace(p, c.StringContent19);
        }},
    {u"Output file", u"does not contain any stream",
        [](const QString &, const QString &, const ScanContext &c) { return c.StringContent14; }},
    {u"Adjusting chunk start time to previous random access at", nullptr,
        [](const QString &l, const QString &, const ScanContext &) {
            const qsizetype at = l.indexOf(QStringLiteral("sec"));
            return at < 0 ? l : l.left(at + 3);
        }},
    {u"Cannot split file (Not enough sync samples, duration too large or size too big)", nullptr,
        [](const QString &, const QString &p, const ScanContext &) { return p; }},
    {u"Invalid pixel aspect ratio 0/1", nullptr,
        [](const QString &, const QString &p, const ScanContext &) { return p; }},
}};

// How the position is read from a percentage tool's line, by how the lowered line begins.
struct PercentLine
{
    const char16_t *start;
    bool contains; // the line need only contain it
    const char16_t *after; // nullptr: the position stays as it was
    const char16_t *before;
};

const std::array<PercentLine, 10> kPercentLines {{
    {u"encoded", false, u"(", u"%"},
    {u"splitting", false, u"(", u"/"},
    {u"saving", false, u"(", u"/"},
    {u"iso", false, u"(", u"/"},
    {u"appending", false, u"(", u"/"},
    {u"processing file (", true, u"(", u"%"},
    {u"encoding", false, u"(", u"%"},
    {u"progress:", false, u":", u"%"},
    {u"reading packet no", false, nullptr, nullptr},
    {u"writing packet no", false, nullptr, nullptr},
}};

// A speed as a whole number; tool text can hold any number, so it is clamped to the field.
long wholeNumber(double value)
{
    if (!(value > 0))
        return 0;
    return value >= double(std::numeric_limits<long>::max()) ? std::numeric_limits<long>::max() : long(value);
}

double timeToSeconds(const QString &text, const QString &separator)
{
    QString copy = text;
    return util::TimeToSec(copy, false, separator);
}

int inputCount(const ScanContext &context)
{
    return int(context.FileInfo.count(u'|')) + 1;
}

bool severalInputs(const ScanContext &context)
{
    return context.FileInfo.contains(u'|');
}

// The range or, without one, the given length; times the inputs when several are joined.
double jobLength(const ScanContext &context, double range, double length, bool useRange)
{
    const double base = useRange ? range : length;
    return severalInputs(context) ? base * inputCount(context) : base;
}

QString firstLineLowered(const QString &chunk)
{
    const qsizetype cr = chunk.indexOf(u'\r');
    return (cr < 0 ? chunk : chunk.left(cr)).trimmed().toLower();
}

void scanMEncoder(const QString &line, ScanState &state, const ScanContext &context)
{
    const double range = context.TimeEndPoint - context.TimeStartPoint;
    const bool byPercent = context.Duration <= 0;
    if (range > 0)
        state.Max = range;
    else
        state.Max = byPercent ? 100 : context.Duration;
    state.value = byPercent ? util::Val(GetString(line, QStringLiteral("("), QStringLiteral("%")))
                            : util::Val(GetString(line, QStringLiteral("Pos:"), QStringLiteral("s")));
    state.FPSSpeed = wholeNumber(util::Val(GetString(line, QStringLiteral(")"), QStringLiteral("fps"))));
}

} // namespace

QString GetString(const QString &Text, const QString &After, const QString &Before)
{
    qsizetype start = 0;
    if (!After.isEmpty()) {
        const qsizetype at = Text.indexOf(After, 0, Qt::CaseInsensitive);
        if (at < 0)
            return {};
        start = at + After.size();
    }
    qsizetype end = Text.size();
    if (!Before.isEmpty()) {
        const qsizetype at = Text.indexOf(Before, start);
        // A field at the very end of the text has nothing behind it.
        if (at >= 0)
            end = at;
    }
    return Text.mid(start, end - start).trimmed();
}

void ScanToolOutput(
    const QString &chunk, ScanState &state, const ScanContext &context, const StatusSink &raise)
{
    if (chunk.isEmpty())
        return;
    QString line = chunk;
    line.remove(u'\r').remove(u'\n');
    line = line.trimmed();

    for (const FatalPhrase &fatal : kFatalPhrases) {
        const QString phrase = QString::fromUtf16(fatal.phrase);
        if (line.contains(phrase)
            && (!fatal.alsoNeeded || line.contains(QString::fromUtf16(fatal.alsoNeeded)))) {
            raise(kFatalToolText, fatal.text(line, phrase, context));
            return;
        }
    }

    QString packed = line;
    packed.remove(u' ');
    if (packed.contains(QStringLiteral("frame=0")) && packed.contains(QStringLiteral("fps=0"))
        && packed.contains(QStringLiteral("size=0")) && packed.contains(QStringLiteral("time=00:00:00"))) {
        raise(kSearching, line);
        return;
    }

    const double range = context.TimeEndPoint - context.TimeStartPoint;
    if (line.contains(QStringLiteral("size=")) && line.contains(QStringLiteral("time="))) {
        if (!line.contains(QStringLiteral("time=10000000000"))) {
            state.value = timeToSeconds(
                GetString(line, QStringLiteral("time="), QStringLiteral(" ")), QStringLiteral(","));
            state.FPSSpeed = line.startsWith(QStringLiteral("frame="), Qt::CaseInsensitive)
                ? wholeNumber(util::Val(GetString(line, QStringLiteral("fps="), QStringLiteral("q="))))
                : 0;
        } else {
            raise(kSearching, line);
        }
        if (state.Max == 0)
            state.Max = range > 0 ? jobLength(context, range, 0, true) : context.Duration;
        return;
    }

    if (line.contains(QStringLiteral("Duration:"))) {
        if (state.Max == 0) {
            const double length = timeToSeconds(
                GetString(line, QStringLiteral("Duration:"), QStringLiteral(",")), QStringLiteral("."));
            if (!context.CommandLine.isEmpty())
                state.Max = length;
            else
                state.Max = jobLength(context, range, length, range > 0);
        }
        raise(kInfoString, line);
        return;
    }
    if (line.contains(QStringLiteral(", start:")) && state.Max == 0) {
        // Only reached without "Duration:" in the line: that case ended above.
        if (range > 0) {
            state.Max = jobLength(context, range, 0, true);
        } else {
            // One second more than the start time the line gives, on purpose.
            const double start = timeToSeconds(
                GetString(line, QStringLiteral(": "), QStringLiteral(", start:")), QStringLiteral("."));
            state.Max = jobLength(context, 0, start + 1, false);
        }
        raise(kInfoString, line);
        return;
    }
    if (line.startsWith(QStringLiteral("Pos:"))) {
        scanMEncoder(line, state, context);
        return;
    }
    const QString lowered = line.toLower();
    for (const PercentLine &percent : kPercentLines) {
        if (context.timePositionsOnly)
            break;
        const QString start = QString::fromUtf16(percent.start);
        if (percent.contains ? !lowered.contains(start) : !lowered.startsWith(start))
            continue;
        state.Max = 100;
        state.FPSSpeed = 0;
        if (percent.after)
            state.value = util::Val(
                GetString(line, QString::fromUtf16(percent.after), QString::fromUtf16(percent.before)));
        return;
    }
    const QString first = firstLineLowered(chunk);
    if (util::Like(first, u"*%*flushing*"))
        return;
    if (chunk.toLower().contains(QStringLiteral("error:")))
        return; // a tool's error line counts only when it matched a fatal phrase
    if (util::Like(first, u"*% - *(* of *)")) {
        if (chunk.contains(QStringLiteral("% - "))) {
            state.Max = 100;
            const double position = util::Val(chunk);
            // The position never falls back.
            if (position >= state.value)
                state.value = position;
            state.FPSSpeed = 0;
            raise(kProcessing, chunk);
        }
        return;
    }
    if (!line.isEmpty())
        raise(kInfoString, line);
}

} // namespace qb::engine
