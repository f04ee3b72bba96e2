// Clock texts: milliseconds to "h:mm:ss"-style texts in the classic styles, and such texts back to time.
#include "util/time_format.h"

#include "util/number_text.h"

#include <QStringView>
#include <QtNumeric>
#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace qb::util {

namespace {

// Above 2^53 a double no longer holds every whole millisecond; clamping here keeps the
// hour/minute/second arithmetic exact and inside qint64.
constexpr double kMaxMSecs = 9007199254740992.0;

struct ClockParts
{
    qint64 hours = 0;
    qint64 minutes = 0;
    qint64 seconds = 0;
    qint64 millis = 0; // the rest, rounded
    double rest = 0; // the rest before rounding
};

ClockParts splitMSecs(double value)
{
    if (!(value >= 0))
        value = 0;
    value = std::min(value, kMaxMSecs);
    const auto take = [&value](qint64 unit) {
        const qint64 count = qint64(RoundHalfEven(value)) / unit;
        value -= double(count) * double(unit);
        return count;
    };
    ClockParts parts;
    parts.hours = take(3600000);
    parts.minutes = take(60000);
    parts.seconds = take(1000);
    parts.rest = value;
    // The rest lies in [-0.5, 999.5) and rounds into 0..999.
    parts.millis = qint64(RoundHalfEven(value));
    return parts;
}

// Appends number with at least width digits, zeros in front.
void appendPadded(QString &out, qint64 number, int width)
{
    char16_t digits[20];
    int count = 0;
    quint64 rest = quint64(number);
    do {
        digits[count++] = char16_t(u'0' + rest % 10);
        rest /= 10;
    } while (rest != 0 && count < 20);
    for (int i = count; i < width; ++i)
        out += u'0';
    while (count > 0)
        out += QChar(digits[--count]);
}

// The clock text of fields, each with its width, joined by the marks between them.
QString clockText(std::initializer_list<std::pair<qint64, int>> fields, QStringView marks)
{
    QString out;
    out.reserve(24);
    qsizetype mark = 0;
    for (const auto &[number, width] : fields) {
        if (!out.isEmpty() && mark < marks.size())
            out += marks.at(mark++);
        appendPadded(out, number, width);
    }
    return out;
}

// What a clock text was read as: clock fields plus a fraction in some unit, or a plain number.
struct TimeFields
{
    bool plainSeconds = false;
    double plainValue = 0;
    qint32 hours = 0;
    qint32 minutes = 0;
    qint32 seconds = 0;
    qint32 fraction = 0;
    qint32 msPerUnit = 0; // 1 for milliseconds, 10 for hundredths, 0 when there is no fraction
    qint32 unitsPerSecond = 0;
};

bool matchesShape(QStringView text, QStringView shape)
{
    if (text.size() != shape.size())
        return false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (shape[i] == u'#' ? (c < u'0' || c > u'9') : c != shape[i].unicode())
            return false;
    }
    return true;
}

qint32 fieldValue(QStringView text)
{
    qint32 value = 0;
    RoundToLong(Val(text), value); // a field that does not fit stays 0
    return value;
}

// Fills the targets from the ":"-separated fields of text; missing fields stay 0, extra ones are
// ignored.
void readClockFields(QStringView text, std::initializer_list<qint32 *> targets)
{
    qsizetype start = 0;
    for (qint32 *target : targets) {
        if (start > text.size())
            return;
        const qsizetype colon = text.indexOf(u':', start);
        const qsizetype end = colon < 0 ? text.size() : colon;
        *target = fieldValue(text.mid(start, end - start));
        start = end + 1;
    }
}

void readClockAndFraction(QStringView text, QChar mark, qint32 msPerUnit, TimeFields &fields,
    std::initializer_list<qint32 *> clockTargets)
{
    const qsizetype at = text.indexOf(mark);
    readClockFields(text.left(at), clockTargets);
    fields.fraction = fieldValue(text.mid(at + 1));
    fields.msPerUnit = msPerUnit;
    fields.unitsPerSecond = msPerUnit == 1 ? 1000 : 100;
}

TimeFields readTime(QString &timeString, const QString &separator)
{
    timeString.replace(u' ', u'0');
    const QStringView text(timeString);
    TimeFields f;

    if (matchesShape(text, u"##:##:##,###") || matchesShape(text, u"#:##:##,###")) {
        readClockAndFraction(text, u',', 1, f, {&f.hours, &f.minutes, &f.seconds});
    } else if (matchesShape(text, u"#:##:##.##")) {
        readClockAndFraction(text, u'.', 10, f, {&f.hours, &f.minutes, &f.seconds});
    } else if (matchesShape(text, u"##:##.##")) {
        readClockAndFraction(text, u'.', 10, f, {&f.minutes, &f.seconds});
    } else if (matchesShape(text, u"##:##.###")) {
        readClockAndFraction(text, u'.', 1, f, {&f.minutes, &f.seconds});
    } else if (matchesShape(text, u"##:##")) {
        readClockFields(text, {&f.minutes, &f.seconds});
    } else if (matchesShape(text, u"##:##:##:##")) {
        readClockFields(text, {&f.hours, &f.minutes, &f.seconds, &f.fraction});
        f.msPerUnit = 10;
        f.unitsPerSecond = 100;
    } else if (matchesShape(text, u"##:##:##")) {
        readClockFields(text, {&f.hours, &f.minutes, &f.seconds});
    } else if (IsNumericText(text)) {
        f.plainSeconds = true;
        f.plainValue = Val(text);
    } else {
        // Only the first two pieces of the split count; any further pieces are ignored.
        const qsizetype at = separator.isEmpty() ? -1 : text.indexOf(separator);
        readClockFields(at < 0 ? text : text.left(at), {&f.hours, &f.minutes, &f.seconds});
        if (at >= 0) {
            const QStringView right = text.mid(at + separator.size());
            const qsizetype next = right.indexOf(separator);
            f.fraction = fieldValue(next < 0 ? right : right.left(next));
        }
        f.msPerUnit = 1;
        f.unitsPerSecond = separator == u"." ? 100 : 1000;
    }
    return f;
}

bool clockSeconds(const TimeFields &f, qint32 &out)
{
    qint32 hours = 0;
    qint32 minutes = 0;
    qint32 sum = 0;
    if (qMulOverflow(f.hours, qint32(3600), &hours) || qMulOverflow(f.minutes, qint32(60), &minutes)
        || qAddOverflow(hours, minutes, &sum) || qAddOverflow(sum, f.seconds, &sum))
        return false;
    out = sum;
    return true;
}

} // namespace

QString MSecsToTime(double &MSecs, int TimeStyle)
{
    const ClockParts p = splitMSecs(MSecs);
    MSecs = p.rest;
    const qint64 centis = p.millis / 10;
    const qint64 totalMinutes = p.hours * 60 + p.minutes;
    switch (TimeStyle) {
    case 1:
        return clockText({{p.hours, 1}, {p.minutes, 2}, {p.seconds, 2}, {centis, 2}}, u"::.");
    case 2:
        return clockText({{totalMinutes, 2}, {p.seconds, 2}, {centis, 2}}, u":.");
    case 3:
        return clockText({{totalMinutes, 2}, {p.seconds, 2}, {p.millis, 3}}, u":.");
    case 4:
        return clockText({{totalMinutes, 2}, {p.seconds, 2}}, u":");
    case 5:
        return clockText({{p.hours, 2}, {p.minutes, 2}, {p.seconds, 2}, {centis, 2}}, u":::");
    case 98:
        return clockText({{p.hours, 2}, {p.minutes, 2}, {p.seconds, 2}, {p.millis, 3}}, u"::.");
    case 99:
        return clockText({{p.hours, 2}, {p.minutes, 2}, {p.seconds, 2}}, u"::");
    default:
        return clockText({{p.hours, 2}, {p.minutes, 2}, {p.seconds, 2}, {p.millis, 3}}, u"::,");
    }
}

QString FormatMSecs(double msecs, int timeStyle)
{
    return MSecsToTime(msecs, timeStyle);
}

double TimeToMSecs(QString &TimeString, const QString &separator)
{
    const TimeFields f = readTime(TimeString, separator);
    if (f.plainSeconds) {
        // The milliseconds land in a 32-bit field like every other part: too many give 0.
        qint32 millis = 0;
        return RoundToLong(f.plainValue * 1000, millis) ? double(millis) : 0.0;
    }
    qint32 seconds = 0;
    qint32 millis = 0;
    qint32 fraction = 0;
    if (!clockSeconds(f, seconds) || qMulOverflow(seconds, qint32(1000), &millis)
        || qMulOverflow(f.fraction, f.msPerUnit, &fraction) || qAddOverflow(millis, fraction, &millis))
        return 0;
    return millis;
}

double TimeToSec(QString &TimeString, bool IncludeDecimal, const QString &separator)
{
    const TimeFields f = readTime(TimeString, separator);
    if (f.plainSeconds)
        return f.plainValue;
    qint32 seconds = 0;
    if (!clockSeconds(f, seconds))
        return 0;
    double result = seconds;
    if (IncludeDecimal && f.unitsPerSecond > 0)
        result += double(f.fraction) / f.unitsPerSecond;
    return result;
}

QString FormatTime(double milliseconds, bool MSecUse, const QString &MSecString)
{
    const ClockParts p = splitMSecs(milliseconds);
    QString text = clockText({{p.hours, 2}, {p.minutes, 2}, {p.seconds, 2}}, u"::");
    if (MSecUse) {
        text += MSecString;
        appendPadded(text, p.millis, 3);
    }
    return text;
}

} // namespace qb::util
