// The find-pattern rules of directory search, and the "Like" operator.
#include "util/wildcard.h"

#include <gtest/gtest.h>

using qb::util::Like;
using qb::util::MatchesFindPattern;

namespace {

struct MatchCase
{
    const char16_t *name;
    const char16_t *pattern;
    bool expected;
};

class FindPatternTable : public ::testing::TestWithParam<MatchCase>
{
};

TEST_P(FindPatternTable, MatchesAsDirectorySearchDoes)
{
    const MatchCase &c = GetParam();
    EXPECT_EQ(MatchesFindPattern(QStringView(c.name), QStringView(c.pattern)), c.expected)
        << QString::fromUtf16(c.name).toStdString() << " ~ " << QString::fromUtf16(c.pattern).toStdString();
}

INSTANTIATE_TEST_SUITE_P(Rules, FindPatternTable,
    ::testing::Values(
        // "*.*" and "*" take every name, with or without a dot.
        MatchCase {u"README", u"*.*", true}, MatchCase {u"a.txt", u"*.*", true},
        MatchCase {u".hidden", u"*.*", true}, MatchCase {u"README", u"*", true},
        // Case does not matter, in the name or the pattern.
        MatchCase {u"Setup.INF", u"*.inf", true}, MatchCase {u"setup.inf", u"*.INF", true},
        MatchCase {u"ÄBC.txt", u"äbc.TXT", true},
        // "*." selects names without an extension.
        MatchCase {u"README", u"*.", true}, MatchCase {u"a.txt", u"*.", false},
        // "*" before a dot stops at the last dot.
        MatchCase {u"a.b.txt", u"*.txt", true}, MatchCase {u"a.txt.bak", u"*.txt", false},
        MatchCase {u"a.txt", u"*.tx", false},
        // "name.*" also matches the bare name.
        MatchCase {u"abc", u"abc.*", true}, MatchCase {u"abc.def", u"abc.*", true},
        MatchCase {u"abcd", u"abc.*", false},
        // "?" is one character, or none before a dot or at the end.
        MatchCase {u"abc", u"a?c", true}, MatchCase {u"ac", u"a?c", false}, MatchCase {u"a.c", u"a?c", false},
        MatchCase {u"ab", u"ab??", true}, MatchCase {u"a.txt", u"a??.txt", true},
        MatchCase {u"abcd.txt", u"a??.txt", false},
        // A trailing dot matches the end of a name.
        MatchCase {u"abc", u"abc.", true},
        // Plain names.
        MatchCase {u"file.txt", u"file.txt", true}, MatchCase {u"file.txt", u"file.tx", false},
        MatchCase {u"x", u"", false}, MatchCase {u"", u"*", false}));

TEST(FindPattern, CompiledPatternAgreesWithFreeFunction)
{
    const qb::util::FindPattern pattern(u"*.log");
    EXPECT_TRUE(pattern.matches(u"x.log"));
    EXPECT_FALSE(pattern.matches(u"x.log1"));
    EXPECT_FALSE(pattern.matchesEverything());
    EXPECT_TRUE(qb::util::FindPattern(u"*.*").matchesEverything());
}

TEST(FindPattern, LongNamesAgainstManyStarsStayFast)
{
    const QString name = QString(5000, u'a') + u'b';
    EXPECT_FALSE(MatchesFindPattern(name, u"*a*a*a*a*a*a*a*a*c"));
    EXPECT_TRUE(MatchesFindPattern(name, u"*a*a*a*a*a*a*a*a*b"));
}

struct LikeCase
{
    const char16_t *text;
    const char16_t *pattern;
    bool expected;
};

class LikeTable : public ::testing::TestWithParam<LikeCase>
{
};

TEST_P(LikeTable, Matches)
{
    const LikeCase &c = GetParam();
    EXPECT_EQ(Like(QStringView(c.text), QStringView(c.pattern)), c.expected)
        << QString::fromUtf16(c.text).toStdString() << " Like "
        << QString::fromUtf16(c.pattern).toStdString();
}

INSTANTIATE_TEST_SUITE_P(Operator, LikeTable,
    ::testing::Values(LikeCase {u"abc", u"a*", true}, LikeCase {u"abc", u"*.*", false},
        LikeCase {u"a.c", u"*.*", true}, LikeCase {u"abc", u"a?c", true}, LikeCase {u"ac", u"a?c", false},
        LikeCase {u"a1c", u"a#c", true}, LikeCase {u"abc", u"a#c", false}, LikeCase {u"b", u"[a-c]", true},
        LikeCase {u"d", u"[a-c]", false}, LikeCase {u"d", u"[!a-c]", true}, LikeCase {u"ABC", u"abc", false},
        LikeCase {u"", u"*", true}, LikeCase {u"", u"", true}, LikeCase {u"a", u"[a", false},
        LikeCase {u"-", u"[a-]", true}, LikeCase {u"x", u"[]", false}));

TEST(Like, AdversarialStarsStayFast)
{
    const QString text(20000, u'a');
    EXPECT_FALSE(Like(text, u"*a*a*a*a*a*a*a*a*a*a*b"));
}

} // namespace
