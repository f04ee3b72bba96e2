// Millisecond clock texts in every style, and reading clock texts back as milliseconds and seconds.
#include "util/time_format.h"

#include <gtest/gtest.h>
#include <limits>

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

struct StyleCase
{
    double msecs;
    int style;
    const char16_t *expected;
};

class TimeStyleTable : public ::testing::TestWithParam<StyleCase>
{
};

TEST_P(TimeStyleTable, PrintsEachStyle)
{
    const StyleCase &c = GetParam();
    double work = c.msecs;
    EXPECT_EQ(utf8(MSecsToTime(work, c.style)), utf8(QString::fromUtf16(c.expected)))
        << c.msecs << " style " << c.style;
    EXPECT_EQ(utf8(FormatMSecs(c.msecs, c.style)), utf8(QString::fromUtf16(c.expected)))
        << c.msecs << " style " << c.style;
}

INSTANTIATE_TEST_SUITE_P(TimeStyles, TimeStyleTable,
    ::testing::Values(
        // 1 h 2 min 3 s 4 ms.
        StyleCase {3723004, 1, u"1:02:03.00"}, StyleCase {3723004, 2, u"62:03.00"},
        StyleCase {3723004, 3, u"62:03.004"}, StyleCase {3723004, 4, u"62:03"},
        StyleCase {3723004, 5, u"01:02:03:00"}, StyleCase {3723004, 98, u"01:02:03.004"},
        StyleCase {3723004, 99, u"01:02:03"}, StyleCase {3723004, 0, u"01:02:03,004"},
        StyleCase {3723004, 6, u"01:02:03,004"}, StyleCase {3723004, -1, u"01:02:03,004"},
        StyleCase {3723004, 100, u"01:02:03,004"},
        // Zero.
        StyleCase {0, 1, u"0:00:00.00"}, StyleCase {0, 2, u"00:00.00"}, StyleCase {0, 3, u"00:00.000"},
        StyleCase {0, 4, u"00:00"}, StyleCase {0, 5, u"00:00:00:00"}, StyleCase {0, 98, u"00:00:00.000"},
        StyleCase {0, 99, u"00:00:00"}, StyleCase {0, 0, u"00:00:00,000"},
        // Negative counts as zero.
        StyleCase {-5, 1, u"0:00:00.00"}, StyleCase {-5, 2, u"00:00.00"}, StyleCase {-5, 3, u"00:00.000"},
        StyleCase {-5, 4, u"00:00"}, StyleCase {-5, 5, u"00:00:00:00"}, StyleCase {-5, 98, u"00:00:00.000"},
        StyleCase {-5, 99, u"00:00:00"}, StyleCase {-5, 0, u"00:00:00,000"},
        StyleCase {-1e300, 0, u"00:00:00,000"},
        // Hundredths are cut from 999 ms, not rounded up.
        StyleCase {999, 1, u"0:00:00.99"}, StyleCase {999, 2, u"00:00.99"}, StyleCase {999, 3, u"00:00.999"},
        StyleCase {999, 4, u"00:00"}, StyleCase {999, 5, u"00:00:00:99"},
        StyleCase {999, 98, u"00:00:00.999"}, StyleCase {999, 99, u"00:00:00"},
        StyleCase {999, 0, u"00:00:00,999"}, StyleCase {1995, 1, u"0:00:01.99"},
        // 100 hours: fields grow, never cut.
        StyleCase {360000000, 1, u"100:00:00.00"}, StyleCase {360000000, 2, u"6000:00.00"},
        StyleCase {360000000, 3, u"6000:00.000"}, StyleCase {360000000, 4, u"6000:00"},
        StyleCase {360000000, 5, u"100:00:00:00"}, StyleCase {360000000, 98, u"100:00:00.000"},
        StyleCase {360000000, 99, u"100:00:00"}, StyleCase {360000000, 0, u"100:00:00,000"},
        StyleCase {6000000, 4, u"100:00"}, StyleCase {5999999, 4, u"99:59"},
        // Half-even rounding before each division and of the rest.
        StyleCase {1500.5, 0, u"00:00:01,500"}, StyleCase {1501.5, 0, u"00:00:01,502"},
        StyleCase {998.5, 0, u"00:00:00,998"}, StyleCase {999.5, 0, u"00:00:01,000"},
        StyleCase {1999.5, 1, u"0:00:02.00"}, StyleCase {59999.5, 0, u"00:01:00,000"},
        StyleCase {3599999.5, 0, u"01:00:00,000"}, StyleCase {3599998.5, 0, u"00:59:59,998"},
        // Not a number, and beyond 2^53 ms: clamped to 2^53.
        StyleCase {kNaN, 0, u"00:00:00,000"}, StyleCase {kInf, 0, u"2501999792:59:00,992"},
        StyleCase {1e300, 99, u"2501999792:59:00"}, StyleCase {9007199254740992.0, 4, u"150119987579:00"}));

TEST(TimeMSecsToTime, LeavesTheRestOfTheLastSecondInTheCallersValue)
{
    const struct
    {
        double in;
        double rest;
    } cases[] = {{3723004, 4}, {0, 0}, {-5, 0}, {999, 999}, {360000000, 0}, {1500.5, 500.5}, {1501.5, 501.5},
        {999.5, -0.5}, {kNaN, 0}, {kInf, 992}};
    for (const auto &c : cases) {
        double work = c.in;
        MSecsToTime(work, 0);
        EXPECT_EQ(work, c.rest) << c.in;
    }
}

TEST(TimeMSecsToTime, FormatMSecsKeepsTheCallersValue)
{
    const double value = 3723004;
    EXPECT_EQ(utf8(FormatMSecs(value, 0)), utf8(u"01:02:03,004"_s));
    EXPECT_EQ(value, 3723004);
}

struct ParseCase
{
    const char16_t *text;
    const char16_t *separator;
    double msecs;
};

class TimeToMSecsTable : public ::testing::TestWithParam<ParseCase>
{
};

TEST_P(TimeToMSecsTable, ReadsTheFirstShapeThatFits)
{
    const ParseCase &c = GetParam();
    QString text = QString::fromUtf16(c.text);
    EXPECT_EQ(TimeToMSecs(text, QString::fromUtf16(c.separator)), c.msecs)
        << '"' << QString::fromUtf16(c.text).toStdString() << "\" split at \""
        << QString::fromUtf16(c.separator).toStdString() << '"';
}

INSTANTIATE_TEST_SUITE_P(TimeToMSecsRules, TimeToMSecsTable,
    ::testing::Values(
        // 1: milliseconds after a comma, one- or two-digit hours.
        ParseCase {u"01:02:03,004", u",", 3723004}, ParseCase {u"1:02:03,004", u".", 3723004},
        // 2: hundredths after a point.
        ParseCase {u"1:02:03.45", u",", 3723450},
        // 3 and 4: minutes and seconds with hundredths or milliseconds.
        ParseCase {u"12:34.56", u",", 754560}, ParseCase {u"12:34.567", u",", 754567},
        // 5: minutes and seconds.
        ParseCase {u"12:34", u",", 754000}, ParseCase {u"99:99", u",", 6039000},
        // 6: a fourth field of hundredths.
        ParseCase {u"00:01:05:50", u",", 65500},
        // 7: hours, minutes, seconds.
        ParseCase {u"01:02:03", u",", 3723000},
        // 8: a plain number of seconds, rounded half to even to milliseconds in a 32-bit field.
        ParseCase {u"90", u",", 90000}, ParseCase {u"1.5", u",", 1500}, ParseCase {u"-1.5", u",", -1500},
        ParseCase {u"0.0625", u",", 62}, ParseCase {u"0.1875", u",", 188}, ParseCase {u"1e3", u",", 1000000},
        ParseCase {u"\t90", u",", 90000}, ParseCase {u"1e400", u",", 0}, ParseCase {u"1e300", u",", 0},
        ParseCase {u"2147483", u",", 2147483000}, ParseCase {u"2147484", u",", 0},
        ParseCase {u"5000000", u",", 0}, ParseCase {u"1e306", u",", 0},
        // 9: split at the separator; missing clock fields are 0; only two pieces count.
        ParseCase {u"1:30", u",", 5400000}, ParseCase {u"1:2:3,4", u",", 3723004},
        ParseCase {u"1:2:3.45", u".", 3723045}, ParseCase {u"1:2:3,4,5", u",", 3723004},
        ParseCase {u"1:2:3;4", u";", 3723004}, ParseCase {u"1:2:3<>4", u"<>", 3723004},
        ParseCase {u"1:2:3", u"", 3723000}, ParseCase {u"1:2:3:4", u",", 3723000},
        ParseCase {u"1:2:3,4", u"", 3723000}, ParseCase {u"7", u"x", 7000},
        ParseCase {u"12:34.5", u",", 45240000}, ParseCase {u"12:34.5", u".", 45240005},
        ParseCase {u"-1:00", u",", -3600000}, ParseCase {u"x:2", u",", 120000}, ParseCase {u"abc", u",", 0},
        ParseCase {u"", u",", 0}, ParseCase {u",500", u",", 500},
        // A field out of 32 bits is 0 on its own; the others still count.
        ParseCase {u"1:99999999999", u",", 3600000}, ParseCase {u"1:2:3,99999999999", u",", 3723000},
        // The total is checked 32-bit arithmetic: one past the top gives 0.
        ParseCase {u"596:31:23,647", u",", 2147483647}, ParseCase {u"596:31:23,648", u",", 0},
        ParseCase {u"999999:00:00", u",", 0}, ParseCase {u"0:0:2147484", u",", 0},
        ParseCase {u"-596:-31:-23,-648", u",", -2147483648.0}, ParseCase {u"-596:-31:-23,-649", u",", 0}));

// Each string here fits an earlier rule and a later one; the earlier must win.
TEST(TimeToMSecsPrecedence, EarlierShapeWins)
{
    QString hundredths = u"1:02:03.45"_s; // rule 2, not a split at "." (3723045)
    EXPECT_EQ(TimeToMSecs(hundredths, u"."_s), 3723450);
    QString minutes = u"12:34"_s; // rule 5 (minutes), not a split at ":" reading hours
    EXPECT_EQ(TimeToMSecs(minutes, u":"_s), 754000);
    QString seconds = u"1.5"_s; // rule 8, not a split at "." (hours 1, 5 ms)
    EXPECT_EQ(TimeToMSecs(seconds, u"."_s), 1500);
    QString clock = u"00:01:05"_s; // rule 7, not a split at ":"
    EXPECT_EQ(TimeToMSecs(clock, u":"_s), 65000);
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

struct SecCase
{
    const char16_t *text;
    const char16_t *separator;
    double withDecimal;
    double withoutDecimal;
};

class TimeToSecTable : public ::testing::TestWithParam<SecCase>
{
};

TEST_P(TimeToSecTable, AddsTheFractionOnlyWhenAsked)
{
    const SecCase &c = GetParam();
    const QString separator = QString::fromUtf16(c.separator);
    QString text = QString::fromUtf16(c.text);
    EXPECT_DOUBLE_EQ(TimeToSec(text, true, separator), c.withDecimal) << text.toStdString();
    text = QString::fromUtf16(c.text);
    EXPECT_EQ(TimeToSec(text, false, separator), c.withoutDecimal) << text.toStdString();
}

INSTANTIATE_TEST_SUITE_P(TimeToSecRules, TimeToSecTable,
    ::testing::Values(SecCase {u"01:02:03,004", u",", 3723.004, 3723},
        SecCase {u"1:02:03.45", u",", 3723.45, 3723}, SecCase {u"12:34.56", u",", 754.56, 754},
        SecCase {u"12:34.567", u",", 754.567, 754}, SecCase {u"12:34", u",", 754, 754},
        SecCase {u"00:01:05:50", u",", 65.5, 65}, SecCase {u"01:02:03", u",", 3723, 3723},
        // A plain number is Val as it stands, fraction or not.
        SecCase {u"90.75", u",", 90.75, 90.75}, SecCase {u"1e300", u",", 1e300, 1e300},
        SecCase {u"-0.0005", u",", -0.0005, -0.0005},
        // A split: hundredths after ".", milliseconds after anything else.
        SecCase {u"1:2:3,45", u",", 3723.045, 3723}, SecCase {u"1:2:3.45", u".", 3723.45, 3723},
        SecCase {u"1:2:3.4", u".", 3723.04, 3723}, SecCase {u"1:2:3;450", u";", 3723.45, 3723},
        SecCase {u"1:2:3", u"", 3723, 3723},
        // Overflow of the whole seconds gives 0, fraction and all.
        SecCase {u"999999:00:00,500", u",", 0, 0}, SecCase {u"596:31:23,999", u",", 2147483.999, 2147483},
        SecCase {u"0:0:2147483647,5", u",", 2147483647.005, 2147483647}));

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
