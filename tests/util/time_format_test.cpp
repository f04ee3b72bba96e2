// Millisecond clock texts in every style, and reading clock texts back as milliseconds and seconds.
#include "util/time_format.h"

#include <QStringList>

#include <gtest/gtest.h>
#include <limits>
#include <tuple>

using namespace Qt::StringLiterals;
using qb::util::FormatMSecs;
using qb::util::FormatTime;
using qb::util::MSecsToTime;
using qb::util::TimeToMSecs;
using qb::util::TimeToSec;

namespace {

// Compares as UTF-8 so that a failure prints readable text.
std::string utf8(const QString &s)
{
    return s.toStdString();
}

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(TimeMSecsToTime, PrintsEveryStyleAndLeavesTheRest)
{
    const int styles[] = {1, 2, 3, 4, 5, 98, 99, 0};
    // 3723004 is 1 h 2 min 3 s 4 ms.
    const struct
    {
        double msecs;
        const char *texts; // for each of the styles above, blank-separated
        double rest; // what MSecsToTime leaves in its argument
    } cases[] = {
        {3723004, "1:02:03.00 62:03.00 62:03.004 62:03 01:02:03:00 01:02:03.004 01:02:03 01:02:03,004", 4},
        {0, "0:00:00.00 00:00.00 00:00.000 00:00 00:00:00:00 00:00:00.000 00:00:00 00:00:00,000", 0},
        // Negative counts as zero.
        {-5, "0:00:00.00 00:00.00 00:00.000 00:00 00:00:00:00 00:00:00.000 00:00:00 00:00:00,000", 0},
        // Hundredths are cut from 999 ms, not rounded up.
        {999, "0:00:00.99 00:00.99 00:00.999 00:00 00:00:00:99 00:00:00.999 00:00:00 00:00:00,999", 999},
        // 100 hours: fields grow, never cut.
        {360000000,
            "100:00:00.00 6000:00.00 6000:00.000 6000:00 100:00:00:00 100:00:00.000 100:00:00 100:00:00,000",
            0}};
    for (const auto &c : cases) {
        const QStringList texts = QString::fromLatin1(c.texts).split(u' ');
        ASSERT_EQ(texts.size(), qsizetype(std::size(styles)));
        for (size_t i = 0; i < std::size(styles); ++i) {
            double work = c.msecs;
            EXPECT_EQ(utf8(MSecsToTime(work, styles[i])), utf8(texts[qsizetype(i)]))
                << c.msecs << " style " << styles[i];
            EXPECT_EQ(work, c.rest) << c.msecs << " style " << styles[i];
            EXPECT_EQ(utf8(FormatMSecs(c.msecs, styles[i])), utf8(texts[qsizetype(i)]));
        }
    }
}

TEST(TimeMSecsToTime, RoundsHalfEvenAndClampsOneStyle)
{
    const struct
    {
        double msecs;
        int style;
        const char16_t *expected;
        double rest;
    } cases[] = {{3723004, 6, u"01:02:03,004", 4}, {3723004, -1, u"01:02:03,004", 4}, // unknown: the default
        {3723004, 100, u"01:02:03,004", 4}, {-1e300, 0, u"00:00:00,000", 0}, {1995, 1, u"0:00:01.99", 995},
        {6000000, 4, u"100:00", 0}, {5999999, 4, u"99:59", 999},
        // Half-even rounding before each division and of the rest.
        {1500.5, 0, u"00:00:01,500", 500.5}, {1501.5, 0, u"00:00:01,502", 501.5},
        {998.5, 0, u"00:00:00,998", 998.5}, {999.5, 0, u"00:00:01,000", -0.5},
        {1999.5, 1, u"0:00:02.00", -0.5}, {59999.5, 0, u"00:01:00,000", -0.5},
        {3599999.5, 0, u"01:00:00,000", -0.5}, {3599998.5, 0, u"00:59:59,998", 998.5},
        // Not a number, and beyond 2^53 ms: clamped to 2^53.
        {kNaN, 0, u"00:00:00,000", 0}, {kInf, 0, u"2501999792:59:00,992", 992},
        {1e300, 99, u"2501999792:59:00", 992}, {9007199254740992.0, 4, u"150119987579:00", 992}};
    for (const auto &c : cases) {
        double work = c.msecs;
        EXPECT_EQ(utf8(MSecsToTime(work, c.style)), utf8(QString::fromUtf16(c.expected)))
            << c.msecs << " style " << c.style;
        EXPECT_EQ(work, c.rest) << c.msecs;
        EXPECT_EQ(utf8(FormatMSecs(c.msecs, c.style)), utf8(QString::fromUtf16(c.expected)));
    }
}

TEST(TimeToMSecs, ReadsTheFirstShapeThatFits)
{
    const std::tuple<const char16_t *, const char16_t *, double> cases[] = {
        // 1: milliseconds after a comma, one- or two-digit hours.
        {u"01:02:03,004", u",", 3723004}, {u"1:02:03,004", u".", 3723004},
        // 2: hundredths after a point, even where a split at "." would read 45 ms.
        {u"1:02:03.45", u",", 3723450}, {u"1:02:03.45", u".", 3723450},
        // 3 and 4: minutes and seconds with hundredths or milliseconds.
        {u"12:34.56", u",", 754560}, {u"12:34.567", u",", 754567},
        // 5: minutes and seconds, not hours and minutes split at ":".
        {u"12:34", u",", 754000}, {u"12:34", u":", 754000}, {u"99:99", u",", 6039000},
        // 6: a fourth field of hundredths.
        {u"00:01:05:50", u",", 65500},
        // 7: hours, minutes, seconds.
        {u"01:02:03", u",", 3723000}, {u"00:01:05", u":", 65000},
        // 8: a plain number of seconds, rounded half to even to milliseconds in a 32-bit field.
        {u"90", u",", 90000}, {u"1.5", u",", 1500}, {u"1.5", u".", 1500}, {u"-1.5", u",", -1500},
        {u"0.0625", u",", 62}, {u"0.1875", u",", 188}, {u"1e3", u",", 1000000}, {u"\t90", u",", 90000},
        {u"1e400", u",", 0}, {u"1e300", u",", 0}, {u"2147483", u",", 2147483000}, {u"2147484", u",", 0},
        {u"5000000", u",", 0}, {u"1e306", u",", 0},
        // 9: split at the separator; missing clock fields are 0; only two pieces count.
        {u"1:30", u",", 5400000}, {u"1:2:3,4", u",", 3723004}, {u"1:2:3.45", u".", 3723045},
        {u"1:2:3,4,5", u",", 3723004}, {u"1:2:3;4", u";", 3723004}, {u"1:2:3<>4", u"<>", 3723004},
        {u"1:2:3", u"", 3723000}, {u"1:2:3:4", u",", 3723000}, {u"1:2:3,4", u"", 3723000}, {u"7", u"x", 7000},
        {u"12:34.5", u",", 45240000}, {u"12:34.5", u".", 45240005}, {u"-1:00", u",", -3600000},
        {u"x:2", u",", 120000}, {u"abc", u",", 0}, {u"", u",", 0}, {u",500", u",", 500},
        // A field out of 32 bits is 0 on its own; the others still count.
        {u"1:99999999999", u",", 3600000}, {u"1:2:3,99999999999", u",", 3723000},
        // The total is checked 32-bit arithmetic: one past the top gives 0.
        {u"596:31:23,647", u",", 2147483647}, {u"596:31:23,648", u",", 0}, {u"999999:00:00", u",", 0},
        {u"0:0:2147484", u",", 0}, {u"-596:-31:-23,-648", u",", -2147483648.0},
        {u"-596:-31:-23,-649", u",", 0}};
    for (const auto &[text, separator, msecs] : cases) {
        QString work = QString::fromUtf16(text);
        EXPECT_EQ(TimeToMSecs(work, QString::fromUtf16(separator)), msecs)
            << '"' << QString::fromUtf16(text).toStdString() << "\" split at \""
            << QString::fromUtf16(separator).toStdString() << '"';
    }
}

TEST(TimeToMSecsBlanks, BecomeZerosInTheCallersString)
{
    QString text = u" 1:02:03,004"_s;
    EXPECT_EQ(TimeToMSecs(text, u","_s), 3723004);
    EXPECT_EQ(utf8(text), utf8(u"01:02:03,004"_s));

    QString split = u"1 :2"_s; // "10:2" fits no shape
    EXPECT_EQ(TimeToMSecs(split, u","_s), 36120000);
    EXPECT_EQ(utf8(split), utf8(u"10:2"_s));

    QString seconds = u" 9 "_s;
    EXPECT_EQ(TimeToSec(seconds, false, u","_s), 90);
    EXPECT_EQ(utf8(seconds), utf8(u"090"_s));

    QString tab = u"\t1"_s; // only blanks are replaced
    TimeToMSecs(tab, u","_s);
    EXPECT_EQ(utf8(tab), utf8(u"\t1"_s));
}

TEST(TimeToSec, AddsTheFractionOnlyWhenAsked)
{
    const std::tuple<const char16_t *, const char16_t *, double, double> cases[] = {
        {u"01:02:03,004", u",", 3723.004, 3723}, {u"1:02:03.45", u",", 3723.45, 3723},
        {u"12:34.56", u",", 754.56, 754}, {u"12:34.567", u",", 754.567, 754}, {u"12:34", u",", 754, 754},
        {u"00:01:05:50", u",", 65.5, 65}, {u"01:02:03", u",", 3723, 3723},
        // A plain number is Val as it stands, fraction or not.
        {u"90.75", u",", 90.75, 90.75}, {u"1e300", u",", 1e300, 1e300}, {u"-0.0005", u",", -0.0005, -0.0005},
        // A split: hundredths after ".", milliseconds after anything else.
        {u"1:2:3,45", u",", 3723.045, 3723}, {u"1:2:3.45", u".", 3723.45, 3723},
        {u"1:2:3.4", u".", 3723.04, 3723}, {u"1:2:3;450", u";", 3723.45, 3723}, {u"1:2:3", u"", 3723, 3723},
        // Overflow of the whole seconds gives 0, fraction and all.
        {u"999999:00:00,500", u",", 0, 0}, {u"596:31:23,999", u",", 2147483.999, 2147483},
        {u"0:0:2147483647,5", u",", 2147483647.005, 2147483647}};
    for (const auto &[text, separator, withDecimal, withoutDecimal] : cases) {
        QString work = QString::fromUtf16(text);
        EXPECT_DOUBLE_EQ(TimeToSec(work, true, QString::fromUtf16(separator)), withDecimal)
            << work.toStdString();
        work = QString::fromUtf16(text);
        EXPECT_EQ(TimeToSec(work, false, QString::fromUtf16(separator)), withoutDecimal)
            << work.toStdString();
    }
}

TEST(TimeFormatTime, PrintsClockAndOptionalMilliseconds)
{
    EXPECT_EQ(utf8(FormatTime(3723004, true, u"."_s)), utf8(u"01:02:03.004"_s));
    EXPECT_EQ(utf8(FormatTime(3723004, false, u"."_s)), utf8(u"01:02:03"_s));
    EXPECT_EQ(utf8(FormatTime(360000000, true, u","_s)), utf8(u"100:00:00,000"_s));
    EXPECT_EQ(utf8(FormatTime(0, true, QString())), utf8(u"00:00:00000"_s));
    EXPECT_EQ(utf8(FormatTime(1500, true, u" ms "_s)), utf8(u"00:00:01 ms 500"_s));
    EXPECT_EQ(utf8(FormatTime(999.5, true, u"."_s)), utf8(u"00:00:01.000"_s));
    EXPECT_EQ(utf8(FormatTime(1501.5, true, u"."_s)), utf8(u"00:00:01.502"_s));
    EXPECT_EQ(utf8(FormatTime(-5, true, u"."_s)), utf8(u"00:00:00.000"_s));
    EXPECT_EQ(utf8(FormatTime(kNaN, false, u"."_s)), utf8(u"00:00:00"_s));
    EXPECT_EQ(utf8(FormatTime(kInf, true, u"."_s)), utf8(u"2501999792:59:00.992"_s));
}

TEST(TimeRoundTrip, FormattedTextsReadBack)
{
    for (double msecs : {0.0, 4.0, 999.0, 59999.0, 3723004.0, 35999999.0}) {
        QString text = FormatMSecs(msecs, 0);
        EXPECT_EQ(TimeToMSecs(text, u","_s), msecs) << text.toStdString();
        text = FormatMSecs(msecs, 98);
        EXPECT_EQ(TimeToMSecs(text, u"."_s), msecs) << text.toStdString();
    }
}

} // namespace
