// Line splitting, comments, %variables%, tokens and the value checks of directive files.
#include "cabmaker/directive_lexer.h"
#include "cabmaker/directive_values.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Qt::StringLiterals;
using namespace qb::cabmaker;

namespace {

std::string utf8(const QString &text)
{
    return text.toStdString();
}

std::string show(std::optional<QString> value)
{
    return value ? "=" + utf8(*value) : "(none)";
}

struct TextCase
{
    const char16_t *input;
    const char16_t *expected;
};

class DirectiveLexerComment : public ::testing::TestWithParam<TextCase>
{
};

TEST_P(DirectiveLexerComment, CutsOnlyABlankSemicolonOutsideQuotes)
{
    EXPECT_EQ(utf8(StripComment(QStringView(GetParam().input)).toString()),
        utf8(QString::fromUtf16(GetParam().expected)));
}

INSTANTIATE_TEST_SUITE_P(Directive, DirectiveLexerComment,
    ::testing::Values(TextCase {u"a.txt ;note", u"a.txt "}, TextCase {u"a.txt\t;note", u"a.txt\t"},
        TextCase {u"a;b.txt", u"a;b.txt"}, TextCase {u"\"x ;y\" ;z", u"\"x ;y\" "},
        TextCase {u"\"a\"\" ;b\" c", u"\"a\"\" ;b\" c"}, TextCase {u"\"open ;x", u"\"open ;x"},
        TextCase {u";all", u""}));

struct TokenCase
{
    const char16_t *line;
    std::vector<std::string> tokens; // a leading "q:" marks a quoted token
    const char *error;
};

class DirectiveLexerTokens : public ::testing::TestWithParam<TokenCase>
{
};

TEST_P(DirectiveLexerTokens, SplitsAtBlanksOutsideQuotes)
{
    const TokenList list = SplitTokens(QStringView(GetParam().line));
    std::vector<std::string> got;
    for (const LineToken &token : list.tokens)
        got.push_back((token.quoted ? "q:" : "") + utf8(token.text));
    EXPECT_EQ(utf8(list.error), GetParam().error);
    if (list.error.isEmpty()) {
        EXPECT_EQ(got, GetParam().tokens);
    }
}

INSTANTIATE_TEST_SUITE_P(Directive, DirectiveLexerTokens,
    ::testing::Values(TokenCase {u"  a.txt\t b  ", {"a.txt", "b"}, ""},
        TokenCase {u"\"a b\" \"c\"\"d\"", {"q:a b", "q:c\"d"}, ""}, TokenCase {u"\"\"", {"q:"}, ""},
        TokenCase {u"x\"y z\"w /a=\"1 2\"", {"xy zw", "/a=1 2"}, ""}, TokenCase {u"\"\"\"\"", {"q:\""}, ""},
        TokenCase {u"a \"b", {}, "a quote is left open"},
        TokenCase {u"a\"\"\"", {}, "a quote is left open"}));

TEST(DirectiveLexer, ExpandsKnownNamesInAnyCaseAndOnlyOnce)
{
    const VariableLookup lookup = [](const QString &name) -> std::optional<QString> {
        if (name.compare(u"dir", Qt::CaseInsensitive) == 0)
            return u"%dir%"_s;
        if (name == u"empty")
            return QString();
        return std::nullopt;
    };
    EXPECT_EQ(utf8(ExpandVariables(u"<%DIR%|%%|%empty%>", lookup).text), "<%dir%|%|>");
    EXPECT_EQ(utf8(ExpandVariables(u"%a b%", lookup).error), "unknown variable 'a b'");
    EXPECT_EQ(
        utf8(ExpandVariables(u"100% ok", lookup).error), "a '%' is not closed (write %% for a single '%')");
    EXPECT_EQ(utf8(ExpandVariables(u"%%%", lookup).error), "a '%' is not closed (write %% for a single '%')");
}

TEST(DirectiveLexer, CharacterReferences)
{
    const VariableLookup none = [](const QString &) { return std::nullopt; };
    const Expansion lineEnds = ExpandVariables(u"\"a%#13%%#10%b\t%#9%\"", none);
    EXPECT_EQ(utf8(lineEnds.text), "\"a\r\nb\t\t\"");
    EXPECT_TRUE(lineEnds.error.isEmpty());
    // What a reference yields is never read again: "%#37%" and "#10%" stay as they are.
    EXPECT_EQ(utf8(ExpandVariables(u"%#37%#10%#37%", none).text), "%#10%");
    EXPECT_EQ(utf8(ExpandVariables(u"%#1%%#20013%%#128512%%#1114111%", none).text),
        "\x01\u4e2d\U0001F600\U0010FFFF");
    EXPECT_EQ(utf8(ExpandVariables(u"%#0010%", none).text), "\n");
    const std::string bad = "is not a character: write %#N% with N from 1 to 1114111, not a surrogate";
    for (const char16_t *text : {u"%#0%", u"%#%", u"%#55296%", u"%#57343%", u"%#1114112%", u"%#1a%", u"%#-5%",
             u"%# 5%", u"%#99999999999999999999999%"}) {
        const Expansion e = ExpandVariables(text, none);
        EXPECT_NE(utf8(e.error).find(bad), std::string::npos) << utf8(QString::fromUtf16(text));
    }
}

TEST(DirectiveLexer, RecognisesDirectivesAndAssignments)
{
    EXPECT_TRUE(IsDirectiveLine(u"  .Set x=1"));
    EXPECT_FALSE(IsDirectiveLine(u"..\\a.txt"));
    EXPECT_FALSE(IsDirectiveLine(u"./a.txt"));
    const DirectiveWords words = SplitDirective(u" .Set \t Name = \"v\" ");
    EXPECT_EQ(utf8(words.keyword), "Set");
    EXPECT_EQ(utf8(words.rest), "Name = \"v\"");

    const Assignment quoted = ReadAssignment(u"Name = \" a \"\"b\"\" \"", u".Set");
    EXPECT_EQ(utf8(quoted.name) + "|" + utf8(quoted.value) + "|" + utf8(quoted.error), "Name| a \"b\" |");
    const Assignment plain = ReadAssignment(u"X=  C:\\Program Files\\  ", u".Set");
    EXPECT_EQ(utf8(plain.value), "C:\\Program Files\\");
    EXPECT_EQ(utf8(ReadAssignment(u"X=a=b", u".Set").value), "a=b");
    EXPECT_EQ(utf8(ReadAssignment(u"X=", u".Set").value), "");
}

TEST(DirectiveValues, ReadsFlagsNumbersAndSizes)
{
    for (const char16_t *on : {u"ON", u"yes", u"True", u"1", u" on "})
        EXPECT_EQ(ParseFlag(QStringView(on)), std::optional<bool>(true)) << utf8(QString::fromUtf16(on));
    for (const char16_t *off : {u"off", u"NO", u"false", u"0"})
        EXPECT_EQ(ParseFlag(QStringView(off)), std::optional<bool>(false));
    for (const char16_t *bad : {u"", u"2", u"onn", u"y"})
        EXPECT_FALSE(ParseFlag(QStringView(bad)).has_value());

    EXPECT_EQ(ParseWholeNumber(u"9223372036854775807", std::numeric_limits<qint64>::max()),
        std::numeric_limits<qint64>::max());
    EXPECT_FALSE(ParseWholeNumber(u"9223372036854775808", std::numeric_limits<qint64>::max()));
    EXPECT_FALSE(ParseWholeNumber(u"22", 21));
    EXPECT_FALSE(ParseWholeNumber(u"1 2", 99));
    EXPECT_EQ(ParseSize(u"cdrom"), 681574400);
    EXPECT_EQ(ParseSize(u"720k"), 730112);
    EXPECT_EQ(ParseSize(u"360K"), 362496);
    EXPECT_EQ(ParseSize(u"1.2M"), 1213952);
}

class DirectiveValuesDate : public ::testing::TestWithParam<TextCase>
{
};

TEST_P(DirectiveValuesDate, WritesEveryAcceptedDateTheSameWay)
{
    const char16_t *expected = GetParam().expected;
    EXPECT_EQ(show(NormalizeDate(QStringView(GetParam().input))),
        expected ? "=" + utf8(QString::fromUtf16(expected)) : "(none)");
}

INSTANTIATE_TEST_SUITE_P(Directive, DirectiveValuesDate,
    ::testing::Values(TextCase {u"2/9/2007", u"02/09/2007"}, TextCase {u"12/31/79", u"12/31/2079"},
        TextCase {u"1/1/80", u"01/01/1980"}, TextCase {u"2/29/2000", u"02/29/2000"},
        TextCase {u"2/29/1900", nullptr}, TextCase {u"12/31/2107", u"12/31/2107"},
        TextCase {u"1/1/2108", nullptr}, TextCase {u"31/12/2000", nullptr}, TextCase {u"1/1/200", nullptr},
        TextCase {u"1-1-2000", nullptr}, TextCase {u"1/ 1/2000", nullptr}, TextCase {u"", nullptr}));

class DirectiveValuesTime : public ::testing::TestWithParam<TextCase>
{
};

TEST_P(DirectiveValuesTime, WritesEveryAcceptedTimeOnA24HourClock)
{
    const char16_t *expected = GetParam().expected;
    EXPECT_EQ(show(NormalizeTime(QStringView(GetParam().input))),
        expected ? "=" + utf8(QString::fromUtf16(expected)) : "(none)");
}

INSTANTIATE_TEST_SUITE_P(Directive, DirectiveValuesTime,
    ::testing::Values(TextCase {u"9:5", u"09:05:00"}, TextCase {u"23:59:59", u"23:59:59"},
        TextCase {u"12:00a", u"00:00:00"}, TextCase {u"12:30 PM", u"12:30:00"},
        TextCase {u"1:02:03p", u"13:02:03"}, TextCase {u"13:00p", nullptr}, TextCase {u"0:00a", nullptr},
        TextCase {u"24:00", nullptr}, TextCase {u"10:60", nullptr}, TextCase {u"10", nullptr},
        TextCase {u"1:2:3:4", nullptr}, TextCase {u"10:00m", nullptr}, TextCase {u"pm", nullptr}));

TEST(DirectiveValues, AttributesComeBackInOneOrder)
{
    EXPECT_EQ(show(NormalizeAttributes(u"ASHR")), "=rhsa");
    EXPECT_EQ(show(NormalizeAttributes(u"hh")), "=h");
    EXPECT_EQ(show(NormalizeAttributes(u"")), "(none)");
    EXPECT_EQ(show(NormalizeAttributes(u"rx")), "(none)");
}

} // namespace
