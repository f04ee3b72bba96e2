// Classic Val, the numeric text check, banker's rounding and the Format patterns.
#include "util/number_text.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using namespace Qt::StringLiterals;
using qb::util::FormatNumber;
using qb::util::IsNumericText;
using qb::util::RoundHalfEven;
using qb::util::RoundToLong;
using qb::util::Val;

namespace {

// Compares as UTF-8 so that a failure prints readable text.
std::string utf8(const QString &s)
{
    return s.toStdString();
}

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

std::string show(const char16_t *text)
{
    return utf8(QString::fromUtf16(text));
}

struct ValCase
{
    const char16_t *text;
    double expected;
};

class NumberValTable : public ::testing::TestWithParam<ValCase>
{
};

TEST_P(NumberValTable, ReadsLikeTheClassicVal)
{
    const ValCase &c = GetParam();
    const double got = Val(QStringView(c.text));
    EXPECT_EQ(got, c.expected) << '"' << show(c.text) << '"';
    EXPECT_FALSE(got == 0 && std::signbit(got)) << "negative zero from \"" << show(c.text) << '"';
}

INSTANTIATE_TEST_SUITE_P(NumberVal, NumberValTable,
    ::testing::Values(ValCase {u"03.45", 3.45}, ValCase {u" 1 2", 12}, ValCase {u"12abc", 12},
        ValCase {u"abc", 0}, ValCase {u"-1.5e2", -150}, ValCase {u"", 0},
        // Blanks, tabs and line feeds vanish anywhere, even inside the sign and exponent.
        ValCase {u"\t- \n4 . 5", -4.5}, ValCase {u"1 e 2", 100}, ValCase {u"12\r3", 12},
        ValCase {u"\u00a012", 0},
        // Only one point; the exponent needs digits; "D" works like "E".
        ValCase {u"1.2.3", 1.2}, ValCase {u"1e", 1}, ValCase {u"1e+", 1}, ValCase {u"1.5E-x", 1.5},
        ValCase {u"2D3", 2000}, ValCase {u"2d-1", 0.2}, ValCase {u"1,000", 1},
        // Partial numbers.
        ValCase {u".5", 0.5}, ValCase {u"5.", 5}, ValCase {u"-.5", -0.5}, ValCase {u"+7", 7},
        ValCase {u".", 0}, ValCase {u"-", 0}, ValCase {u"+-1", 0}, ValCase {u"-0", 0}, ValCase {u"-0.0e5", 0},
        ValCase {u"\uff11\uff12", 0},
        // Hexadecimal and octal, with the 16/32-bit sign rule.
        ValCase {u"&H1F", 31}, ValCase {u"&h1f", 31}, ValCase {u"&O17", 15}, ValCase {u"&o777", 511},
        ValCase {u"&HFFFF", -1}, ValCase {u"&H8000", -32768}, ValCase {u"&H7FFF", 32767},
        ValCase {u"&H10000", 65536}, ValCase {u"&H7FFFFFFF", 2147483647},
        ValCase {u"&H80000000", -2147483648.0}, ValCase {u"&HFFFFFFFF", -1}, ValCase {u"&H100000000", 0},
        ValCase {u"&H000000000001", 1}, ValCase {u"&O177777", -1}, ValCase {u"&H", 0}, ValCase {u"&X1", 0},
        ValCase {u"&O8", 0}, ValCase {u"&H1G", 1}, ValCase {u" & H 1 F", 31}, ValCase {u"-&H10", 0},
        // Out of a double's range: 0, never inf.
        ValCase {u"1e400", 0}, ValCase {u"-1e400", 0}, ValCase {u"1e-400", 0}, ValCase {u"1e308", 1e308},
        ValCase {u"9007199254740993", 9007199254740992.0}));

TEST(NumberVal, LongDigitRunsStayExactAndFinite)
{
    EXPECT_EQ(Val(QString(10000, u'0') + u'1'), 1);
    EXPECT_EQ(Val(u"1"_s + QString(300, u'0')), 1e300);
    EXPECT_EQ(Val(u"1"_s + QString(400, u'0')), 0);
    EXPECT_EQ(Val(u"0."_s + QString(500, u'0') + u"1e600"_s), 1e99);
    EXPECT_EQ(Val(u"1e"_s + QString(50, u'9')), 0);
    EXPECT_EQ(Val(u"1e-"_s + QString(50, u'9')), 0);
}

struct NumericCase
{
    const char16_t *text;
    bool expected;
};

class NumberIsNumericTable : public ::testing::TestWithParam<NumericCase>
{
};

TEST_P(NumberIsNumericTable, AcceptsOnlyPlainDecimalNumbers)
{
    const NumericCase &c = GetParam();
    EXPECT_EQ(IsNumericText(QStringView(c.text)), c.expected) << '"' << show(c.text) << '"';
}

INSTANTIATE_TEST_SUITE_P(NumberIsNumeric, NumberIsNumericTable,
    ::testing::Values(NumericCase {u"5", true}, NumericCase {u" 5 ", true}, NumericCase {u"\t-5\t", true},
        NumericCase {u"+5", true}, NumericCase {u".5", true}, NumericCase {u"5.", true},
        NumericCase {u"1e5", true}, NumericCase {u"1E+5", true}, NumericCase {u"1.5e-3", true},
        NumericCase {u"1D2", true}, NumericCase {u"007", true}, NumericCase {u"", false},
        NumericCase {u"   ", false}, NumericCase {u"1:2", false}, NumericCase {u"abc", false},
        NumericCase {u"1e", false}, NumericCase {u"1e+", false}, NumericCase {u".", false},
        NumericCase {u"-", false}, NumericCase {u"+.", false}, NumericCase {u"1 2", false},
        NumericCase {u"- 5", false}, NumericCase {u"5a", false}, NumericCase {u"&H1F", false},
        NumericCase {u"1.2.3", false}, NumericCase {u"1,000", false}, NumericCase {u"e5", false},
        NumericCase {u"5\n", false}, NumericCase {u"\uff15", false}));

TEST(NumberRounding, HalfGoesToTheEvenNeighbour)
{
    const struct
    {
        double value;
        double expected;
    } cases[] = {{2.5, 2}, {3.5, 4}, {-0.5, 0}, {-2.5, -2}, {-3.5, -4}, {1.5, 2}, {0.5, 0},
        {2.4999999999999996, 2}, {2.6, 3}, {-2.6, -3}, {1e300, 1e300}, {0.49999999999999994, 0},
        {4503599627370497.0, 4503599627370497.0}, {4503599627370495.5, 4503599627370496.0}};
    for (const auto &c : cases)
        EXPECT_EQ(RoundHalfEven(c.value), c.expected) << c.value;
    EXPECT_EQ(RoundHalfEven(kInf), kInf);
    EXPECT_EQ(RoundHalfEven(-kInf), -kInf);
    EXPECT_TRUE(std::isnan(RoundHalfEven(kNaN)));
}

TEST(NumberRounding, RoundToLongChecksTheRangeAfterRounding)
{
    qint32 out = 77;
    EXPECT_TRUE(RoundToLong(2.5, out));
    EXPECT_EQ(out, 2);
    EXPECT_TRUE(RoundToLong(-3.5, out));
    EXPECT_EQ(out, -4);
    EXPECT_TRUE(RoundToLong(2147483647.4, out));
    EXPECT_EQ(out, 2147483647);
    EXPECT_TRUE(RoundToLong(-2147483648.5, out));
    EXPECT_EQ(out, std::numeric_limits<qint32>::min());

    out = 77;
    for (double bad : {2147483647.5, 2147483648.0, -2147483649.0, -2147483648.6, 1e300, kInf, -kInf, kNaN}) {
        EXPECT_FALSE(RoundToLong(bad, out)) << bad;
        EXPECT_EQ(out, 77) << bad;
    }
}

struct FormatCase
{
    double value;
    const char16_t *pattern;
    const char16_t *expected;
};

class NumberFormatTable : public ::testing::TestWithParam<FormatCase>
{
};

TEST_P(NumberFormatTable, FormatsLikeTheClassicFormat)
{
    const FormatCase &c = GetParam();
    EXPECT_EQ(utf8(FormatNumber(c.value, QStringView(c.pattern))), utf8(QString::fromUtf16(c.expected)))
        << c.value << " with \"" << show(c.pattern) << '"';
}

INSTANTIATE_TEST_SUITE_P(NumberFormat, NumberFormatTable,
    ::testing::Values(
        // Integers, half away from zero on the shortest digits.
        FormatCase {3, u"0", u"3"}, FormatCase {2.5, u"0", u"3"}, FormatCase {3.5, u"0", u"4"},
        FormatCase {-2.5, u"0", u"-3"}, FormatCase {0.4, u"0", u"0"}, FormatCase {-0.4, u"0", u"0"},
        FormatCase {0.49999999999999994, u"0", u"0"}, FormatCase {3, u"00", u"03"},
        FormatCase {123, u"00", u"123"}, FormatCase {7, u"000", u"007"}, FormatCase {-7, u"000", u"-007"},
        FormatCase {3, u"0#", u"03"}, FormatCase {100, u"0#", u"100"}, FormatCase {3, u"#0", u"3"},
        FormatCase {3, u"0##", u"003"},
        // Two decimals.
        FormatCase {1.005, u"0.00", u"1.01"}, FormatCase {0.125, u"0.00", u"0.13"},
        FormatCase {2.675, u"0.00", u"2.68"}, FormatCase {9.995, u"0.00", u"10.00"},
        FormatCase {-0.001, u"0.00", u"0.00"}, FormatCase {-0.005, u"0.00", u"-0.01"},
        FormatCase {0, u"0.00", u"0.00"}, FormatCase {-0.0, u"0.00", u"0.00"},
        FormatCase {1234.5, u"0.00", u"1234.50"}, FormatCase {0.999, u"0.00", u"1.00"},
        FormatCase {1e-300, u"0.000", u"0.000"},
        // "#" prints no digit it does not need.
        FormatCase {0, u"#", u""}, FormatCase {0.4, u"#", u""}, FormatCase {-0.4, u"#", u""},
        FormatCase {0.5, u"#", u"1"}, FormatCase {42, u"#", u"42"}, FormatCase {-42, u"#", u"-42"},
        FormatCase {3, u"#.##", u"3."}, FormatCase {0.5, u"#.##", u".5"}, FormatCase {1.5, u"0.0#", u"1.5"},
        FormatCase {1.255, u"0.0#", u"1.26"}, FormatCase {1, u"0.0#", u"1.0"},
        // Thousands separators.
        FormatCase {1234567, u"#,0", u"1,234,567"}, FormatCase {0, u"#,0", u"0"},
        FormatCase {999, u"#,0", u"999"}, FormatCase {1000, u"#,0", u"1,000"},
        FormatCase {123456, u"#,0", u"123,456"}, FormatCase {-1234.5, u"#,0", u"-1,235"},
        FormatCase {999999.5, u"#,0", u"1,000,000"}, FormatCase {1234.5, u"#,0.00", u"1,234.50"},
        // Integers beyond 2^53 keep every digit the double holds.
        FormatCase {1152921504606846976.0, u"0", u"1152921504606846976"},
        FormatCase {1152921504606846976.0, u"#,0", u"1,152,921,504,606,846,976"},
        FormatCase {-1152921504606846976.0, u"0.00", u"-1152921504606846976.00"},
        FormatCase {1e23, u"0", u"99999999999999991611392"},
        FormatCase {9007199254740993.0, u"0", u"9007199254740992"},
        // Anything else: the shortest decimal form.
        FormatCase {1.5, u"abc", u"1.5"}, FormatCase {1234567, u"", u"1234567"},
        FormatCase {0.1, u"x", u"0.1"}, FormatCase {-2.5, u"?", u"-2.5"}, FormatCase {1e20, u"0%", u"1E+20"},
        FormatCase {2.5e-7, u"0.0.0", u"2.5E-07"}, FormatCase {0.1, u"0,", u"0.1"},
        FormatCase {0.1, u",0", u"0.1"}, FormatCase {0.1, u"0,,0", u"0.1"}, FormatCase {0.1, u".", u"0.1"},
        FormatCase {-0.0, u"general", u"0"},
        // Not a number at all.
        FormatCase {kNaN, u"0", u""}, FormatCase {kInf, u"0.00", u""}, FormatCase {-kInf, u"#,0", u""},
        FormatCase {kNaN, u"general", u""}));

TEST(NumberFormat, ExtremesPrintInFull)
{
    const QString big = FormatNumber(1e300, u"0");
    EXPECT_EQ(big.size(), 301);
    EXPECT_TRUE(big.startsWith(u"10000000000000000525"_s)) << big.toStdString();
    EXPECT_EQ(FormatNumber(std::numeric_limits<double>::max(), u"0").size(), 309);
    EXPECT_EQ(utf8(FormatNumber(std::numeric_limits<double>::denorm_min(), u"0.00")), utf8(u"0.00"_s));
    EXPECT_EQ(utf8(FormatNumber(std::numeric_limits<double>::denorm_min(), u"general")), utf8(u"5E-324"_s));
    EXPECT_EQ(utf8(FormatNumber(1, u"0."_s + QString(400, u'0'))), utf8(u"1."_s + QString(400, u'0')));
}

} // namespace
