// The find-pattern rules of directory search, and the "Like" operator.
#include "util/wildcard.h"

#include <gtest/gtest.h>

#include <tuple>

using qb::util::Like;
using qb::util::MatchesFindPattern;

namespace {

TEST(FindPattern, MatchesAsDirectorySearchDoes)
{
    // "*.*" and "*" take every name, with or without a dot.
    const std::tuple<const char16_t *, const char16_t *, bool> cases[] = {{u"README", u"*.*", true},
        {u"a.txt", u"*.*", true}, {u".hidden", u"*.*", true}, {u"README", u"*", true},
        // Case does not matter, in the name or the pattern.
        {u"Setup.INF", u"*.inf", true}, {u"setup.inf", u"*.INF", true}, {u"ÄBC.txt", u"äbc.TXT", true},
        // "*." selects names without an extension.
        {u"README", u"*.", true}, {u"a.txt", u"*.", false},
        // "*" before a dot stops at the last dot.
        {u"a.b.txt", u"*.txt", true}, {u"a.txt.bak", u"*.txt", false}, {u"a.txt", u"*.tx", false},
        // "name.*" also matches the bare name.
        {u"abc", u"abc.*", true}, {u"abc.def", u"abc.*", true}, {u"abcd", u"abc.*", false},
        // "?" is one character, or none before a dot or at the end.
        {u"abc", u"a?c", true}, {u"ac", u"a?c", false}, {u"a.c", u"a?c", false}, {u"ab", u"ab??", true},
        {u"a.txt", u"a??.txt", true}, {u"abcd.txt", u"a??.txt", false},
        // A trailing dot matches the end of a name.
        {u"abc", u"abc.", true},
        // Plain names.
        {u"file.txt", u"file.txt", true}, {u"file.txt", u"file.tx", false}, {u"x", u"", false},
        {u"", u"*", false}};
    for (const auto &[name, pattern, expected] : cases)
        EXPECT_EQ(MatchesFindPattern(QStringView(name), QStringView(pattern)), expected)
            << QString::fromUtf16(name).toStdString() << " ~ " << QString::fromUtf16(pattern).toStdString();
}

TEST(FindPattern, OnlyStarDotStarAndStarMatchEverything)
{
    EXPECT_TRUE(qb::util::FindPattern(u"*.*").matchesEverything());
    EXPECT_FALSE(qb::util::FindPattern(u"*.log").matchesEverything());
}

TEST(Like, Matches)
{
    const std::tuple<const char16_t *, const char16_t *, bool> cases[]
        = {{u"abc", u"a*", true}, {u"abc", u"*.*", false}, {u"a.c", u"*.*", true}, {u"abc", u"a?c", true},
            {u"ac", u"a?c", false}, {u"a1c", u"a#c", true}, {u"abc", u"a#c", false}, {u"b", u"[a-c]", true},
            {u"d", u"[a-c]", false}, {u"d", u"[!a-c]", true}, {u"ABC", u"abc", false}, {u"", u"*", true},
            {u"", u"", true}, {u"a", u"[a", false}, {u"-", u"[a-]", true}, {u"x", u"[]", false}};
    for (const auto &[text, pattern, expected] : cases)
        EXPECT_EQ(Like(QStringView(text), QStringView(pattern)), expected)
            << QString::fromUtf16(text).toStdString() << " Like "
            << QString::fromUtf16(pattern).toStdString();
}

// Backtracking on these would take years.
TEST(Like, ManyStarsAgainstLongNamesStayFast)
{
    const QString name = QString(5000, u'a') + u'b';
    EXPECT_FALSE(MatchesFindPattern(name, u"*a*a*a*a*a*a*a*a*c"));
    EXPECT_TRUE(MatchesFindPattern(name, u"*a*a*a*a*a*a*a*a*b"));
    EXPECT_FALSE(Like(QString(20000, u'a'), u"*a*a*a*a*a*a*a*a*a*a*b"));
}

} // namespace
