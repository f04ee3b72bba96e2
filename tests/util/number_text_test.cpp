// Classic Val, the numeric text check, banker's rounding and the Format patterns.
#include "util/number_text.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <tuple>
#include <utility>

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

TEST(NumberVal, ReadsLikeTheClassicVal)
{
    const std::pair<const char16_t *, double> cases[] = {{u"03.45", 3.45}, {u" 1 2", 12}, {u"12abc", 12},
        {u"abc", 0}, {u"-1.5e2", -150}, {u"", 0},
        // Blanks, tabs and line feeds vanish anywhere, even inside the sign and exponent.
        {u"\t- \n4 . 5", -4.5}, {u"1 e 2", 100}, {u"12\r3", 12}, {u"\u00a012", 0},
        // Only one point; the exponent needs digits; "D" works like "E".
        {u"1.2.3", 1.2}, {u"1e", 1}, {u"1e+", 1}, {u"1.5E-x", 1.5}, {u"2D3", 2000}, {u"2d-1", 0.2},
        {u"1,000", 1},
        // Partial numbers.
        {u".5", 0.5}, {u"5.", 5}, {u"-.5", -0.5}, {u"+7", 7}, {u".", 0}, {u"-", 0}, {u"+-1", 0}, {u"-0", 0},
        {u"-0.0e5", 0}, {u"\uff11\uff12", 0},
        // Hexadecimal and octal, with the 16/32-bit sign rule.
        {u"&H1F", 31}, {u"&h1f", 31}, {u"&O17", 15}, {u"&o777", 511}, {u"&HFFFF", -1}, {u"&H8000", -32768},
        {u"&H7FFF", 32767}, {u"&H10000", 65536}, {u"&H7FFFFFFF", 2147483647}, {u"&H80000000", -2147483648.0},
        {u"&HFFFFFFFF", -1}, {u"&H100000000", 0}, {u"&H000000000001", 1}, {u"&O177777", -1}, {u"&H", 0},
        {u"&X1", 0}, {u"&O8", 0}, {u"&H1G", 1}, {u" & H 1 F", 31}, {u"-&H10", 0},
        // Out of a double's range: 0, never inf.
        {u"1e400", 0}, {u"-1e400", 0}, {u"1e-400", 0}, {u"1e308", 1e308},
        {u"9007199254740993", 9007199254740992.0}};
    for (const auto &[text, expected] : cases) {
        const double got = Val(QStringView(text));
        EXPECT_EQ(got, expected) << '"' << show(text) << '"';
        EXPECT_FALSE(got == 0 && std::signbit(got)) << "negative zero from \"" << show(text) << '"';
    }
}

TEST(NumberVal, LongDigitRunsStayExactAndFinite)
{
    EXPECT_EQ(Val(QString(10000, u'0') + u'1'), 1);
    EXPECT_EQ(Val(u"1"_s + QString(300, u'0')), 1e300);
    EXPECT_EQ(Val(u"1"_s + QString(400, u'0')), 0);
    EXPECT_EQ(Val(u"0."_s + QString(500, u'0') + u"1e600"_s), 1e99);
    EXPECT_EQ(Val(u"1e"_s + QString(50, u'9')), 0);
    EXPECT_EQ(Val(u"1e-"_s + QString(50, u'9')), 0);
}

TEST(NumberIsNumeric, AcceptsOnlyPlainDecimalNumbers)
{
    const std::pair<const char16_t *, bool> cases[]
        = {{u"5", true}, {u" 5 ", true}, {u"\t-5\t", true}, {u"+5", true}, {u".5", true}, {u"5.", true},
            {u"1e5", true}, {u"1E+5", true}, {u"1.5e-3", true}, {u"1D2", true}, {u"007", true}, {u"", false},
            {u"   ", false}, {u"1:2", false}, {u"abc", false}, {u"1e", false}, {u"1e+", false}, {u".", false},
            {u"-", false}, {u"+.", false}, {u"1 2", false}, {u"- 5", false}, {u"5a", false}, {u"&H1F", false},
            {u"1.2.3", false}, {u"1,000", false}, {u"e5", false}, {u"5\n", false}, {u"\uff15", false}};
    for (const auto &[text, expected] : cases)
        EXPECT_EQ(IsNumericText(QStringView(text)), expected) << '"' << show(text) << '"';
}

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

TEST(NumberFormat, FormatsLikeTheClassicFormat)
{
    // Integers, half away from zero on the shortest digits.
    const std::tuple<double, const char16_t *, const char16_t *> cases[] = {{3, u"0", u"3"},
        {2.5, u"0", u"3"}, {3.5, u"0", u"4"}, {-2.5, u"0", u"-3"}, {0.4, u"0", u"0"}, {-0.4, u"0", u"0"},
        {0.49999999999999994, u"0", u"0"}, {3, u"00", u"03"}, {123, u"00", u"123"}, {7, u"000", u"007"},
        {-7, u"000", u"-007"}, {3, u"0#", u"03"}, {100, u"0#", u"100"}, {3, u"#0", u"3"}, {3, u"0##", u"003"},
        // Two decimals.
        {1.005, u"0.00", u"1.01"}, {0.125, u"0.00", u"0.13"}, {2.675, u"0.00", u"2.68"},
        {9.995, u"0.00", u"10.00"}, {-0.001, u"0.00", u"0.00"}, {-0.005, u"0.00", u"-0.01"},
        {0, u"0.00", u"0.00"}, {-0.0, u"0.00", u"0.00"}, {1234.5, u"0.00", u"1234.50"},
        {0.999, u"0.00", u"1.00"}, {1e-300, u"0.000", u"0.000"},
        // "#" prints no digit it does not need.
        {0, u"#", u""}, {0.4, u"#", u""}, {-0.4, u"#", u""}, {0.5, u"#", u"1"}, {42, u"#", u"42"},
        {-42, u"#", u"-42"}, {3, u"#.##", u"3."}, {0.5, u"#.##", u".5"}, {1.5, u"0.0#", u"1.5"},
        {1.255, u"0.0#", u"1.26"}, {1, u"0.0#", u"1.0"},
        // Thousands separators.
        {1234567, u"#,0", u"1,234,567"}, {0, u"#,0", u"0"}, {999, u"#,0", u"999"}, {1000, u"#,0", u"1,000"},
        {123456, u"#,0", u"123,456"}, {-1234.5, u"#,0", u"-1,235"}, {999999.5, u"#,0", u"1,000,000"},
        {1234.5, u"#,0.00", u"1,234.50"},
        // Integers beyond 2^53 keep every digit the double holds.
        {1152921504606846976.0, u"0", u"1152921504606846976"},
        {1152921504606846976.0, u"#,0", u"1,152,921,504,606,846,976"},
        {-1152921504606846976.0, u"0.00", u"-1152921504606846976.00"},
        {1e23, u"0", u"99999999999999991611392"}, {9007199254740993.0, u"0", u"9007199254740992"},
        // Anything else: the shortest decimal form.
        {1.5, u"abc", u"1.5"}, {1234567, u"", u"1234567"}, {0.1, u"x", u"0.1"}, {-2.5, u"?", u"-2.5"},
        {1e20, u"0%", u"1E+20"}, {2.5e-7, u"0.0.0", u"2.5E-07"}, {0.1, u"0,", u"0.1"}, {0.1, u",0", u"0.1"},
        {0.1, u"0,,0", u"0.1"}, {0.1, u".", u"0.1"}, {-0.0, u"general", u"0"},
        // Not a number at all.
        {kNaN, u"0", u""}, {kInf, u"0.00", u""}, {-kInf, u"#,0", u""}, {kNaN, u"general", u""}};
    for (const auto &[value, pattern, expected] : cases) {
        EXPECT_EQ(utf8(FormatNumber(value, QStringView(pattern))), utf8(QString::fromUtf16(expected)))
            << value << " with \"" << show(pattern) << '"';
    }
}

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
