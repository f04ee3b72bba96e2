// Fuzz target: clock texts, Val, number patterns and millisecond formatting on arbitrary bytes.
#include "fuzz_check.h"
#include "util/number_text.h"
#include "util/size_format.h"
#include "util/time_format.h"

#include <QByteArray>
#include <QString>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

using namespace qb::util;

namespace {

bool hasNonZeroDigit(const QString &text)
{
    for (QChar c : text)
        if (c >= u'1' && c <= u'9')
            return true;
    return false;
}

void formatEverywhere(double value, const QString &userPattern)
{
    static const char16_t *const patterns[]
        = {u"0", u"00", u"000", u"0#", u"0.00", u"#", u"#,0", u"0.0#", u"#.##", u"#,0.00", u""};
    for (const char16_t *pattern : patterns) {
        const QString text = FormatNumber(value, QStringView(pattern));
        check(std::isfinite(value) || text.isEmpty());
        // A minus sign only ever goes with a digit that is not zero.
        check(!text.startsWith(u'-') || hasNonZeroDigit(text));
    }
    FormatNumber(value, userPattern);

    qint32 rounded = 0;
    const double even = RoundHalfEven(value);
    if (RoundToLong(value, rounded))
        check(double(rounded) == even);

    for (int style : {0, 1, 2, 3, 4, 5, 98, 99, 7, -1}) {
        double work = value;
        check(!MSecsToTime(work, style).isEmpty());
        check(work >= -0.5 && work <= 999.5);
    }
    FormatTime(value, true, userPattern);
    ConvertFileSize(value, true);
    ConvertFileSize(value, false);
    FormatByteSize(value);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    // "text\nseparator": the first line is the clock text, the rest the separator.
    const qsizetype newline = bytes.indexOf('\n');
    const QString whole = QString::fromUtf8(bytes);
    const QString text = newline < 0 ? whole : QString::fromUtf8(bytes.left(newline));
    const QString separator = newline < 0 ? QStringLiteral(",") : QString::fromUtf8(bytes.mid(newline + 1));

    for (const QString &sep : {separator, QStringLiteral(","), QStringLiteral("."), QString()}) {
        QString work = text;
        check(std::isfinite(TimeToMSecs(work, sep)));
        check(!work.contains(u' '));
        work = text;
        check(std::isfinite(TimeToSec(work, true, sep)));
        work = text;
        check(std::isfinite(TimeToSec(work, false, sep)));
    }

    const double parsed = Val(whole);
    check(std::isfinite(parsed));
    IsNumericText(whole);

    // Patterns from the input stay short so one run stays quick.
    const QString userPattern = text.left(64);
    formatEverywhere(parsed, userPattern);
    if (size >= sizeof(double)) {
        double raw = 0;
        std::memcpy(&raw, data, sizeof raw);
        formatEverywhere(raw, userPattern);
    }
    for (double edge : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
             -std::numeric_limits<double>::infinity(), 1e300, -0.0, std::numeric_limits<double>::denorm_min(),
             9007199254740993.0})
        formatEverywhere(edge, userPattern);
    return 0;
}
