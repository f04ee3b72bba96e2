// Tests for path splitting, tag stripping and marker searches.
#include "util/text_search.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace Qt::StringLiterals;
using namespace qb::util;

TEST(TextSearchTest, GetFileStringTable)
{
    const std::tuple<QString, QString, int, QString> cases[] = {
        {u"C:\\a\\b.txt"_s, u"."_s, 1, u"txt"_s},
        {u"C:\\a\\b.txt"_s, u"."_s, 0, u"b"_s},
        {u"C:\\a\\b.txt"_s, u"."_s, 2, u"C:\\a\\b"_s},
        {u"C:\\a\\b.txt"_s, u"\\"_s, 0, u"C:\\a"_s},
        {u"C:\\a\\b.txt"_s, u"\\"_s, 1, u"b.txt"_s},
        {u"C:\\a\\b.txt"_s, u"."_s, 3, u""_s},
        {u"C:"_s, u"\\"_s, 1, u"C"_s},
        {u"a.b:"_s, u"."_s, 7, u"a.b"_s},
        {u"abc"_s, u"."_s, 1, u"abc"_s},
        {u"abc"_s, u"."_s, 9, u"abc"_s},
        {u"a.b"_s, u""_s, 1, u"a.b"_s},
        {u"http://x.org/dir/file.mp4"_s, u"."_s, 0, u"file"_s},
        {u"/home/u/a.b.c"_s, u"."_s, 0, u"a.b"_s},
        {u"/ho.me/u/file"_s, u"."_s, 0, u""_s}, // the only dot is in a folder
        {u"/ho.me/u/file"_s, u"."_s, 2, u"/ho"_s},
        {u"c:/x\\y/z.q"_s, u"."_s, 0, u"z"_s},
        {u"a--b--c"_s, u"--"_s, 1, u"c"_s},
        {u"a--b--c"_s, u"--"_s, 0, u"a--b"_s},
        {u"A.TXT"_s, u"t"_s, 1, u"A.TXT"_s}, // binary compare
        {u".hidden"_s, u"."_s, 0, u""_s},
    };
    for (const auto &[text, delimiter, mode, expected] : cases)
        EXPECT_EQ(GetFileString(text, delimiter, mode), expected)
            << text.toStdString() << " | " << delimiter.toStdString() << " | " << mode;
}

TEST(TextSearchTest, KillTagTable)
{
    const std::tuple<QString, bool, QString> cases[] = {
        {u"<b>x</b>"_s, false, u"x"_s},
        {u"a&amp;b"_s, false, u"ab"_s},
        {u"{\\i1}x"_s, false, u"x"_s},
        {u"(a)b"_s, false, u"(a)b"_s},
        {u"(a)b"_s, true, u"b"_s},
        {u"a<b"_s, false, u"a<b"_s},
        {u"a>b<c"_s, false, u"a>b<c"_s},
        {u"<i>1</i><i>2</i>"_s, false, u"12"_s},
        {u"&lt;p&gt;"_s, false, u"p"_s},
        {u"<<b>>"_s, false, u">"_s},
        {u"x<a>y<b"_s, false, u"xy<b"_s},
        {u"{a}(b)<c>&d;e"_s, true, u"e"_s},
    };
    for (const auto &[in, round, expected] : cases)
        EXPECT_EQ(KillTag(in, round), expected) << in.toStdString();

    // Each kind gets at most 100 rounds.
    QString many;
    for (int i = 0; i < 150; ++i)
        many += u"<t"_s + QString::number(i) + u">"_s;
    const QString out = KillTag(many, false);
    EXPECT_EQ(out.count(u'<'), 50);
    EXPECT_TRUE(out.startsWith(u"<t100>"_s));
}

TEST(TextSearchTest, FindTextBetween)
{
    const std::tuple<QString, QString, QString, int, int, QString> cases[] = {
        {u"(1)(2)"_s, u"("_s, u")"_s, 2, 1, u"2"_s},
        {u"(1)(2)"_s, u"("_s, u")"_s, 1, 1, u"1"_s},
        {u"(1)(2)"_s, u"("_s, u")"_s, 1, 2, u"1)(2"_s}, // tag2 counted on from tag1
        {u"[[x]]"_s, u"[["_s, u"]]"_s, 1, 1, u"x"_s},
        {u"x=ab;"_s, u"x="_s, u"=a"_s, 1, 1, u""_s}, // end before start
        {u"(1)(2)"_s, u"("_s, u")"_s, 3, 1, u""_s},
        {u"(1)(2)"_s, u"("_s, u")"_s, 2, 2, u""_s},
        {u"(1)(2)"_s, u"("_s, u"]"_s, 1, 1, u""_s},
        {u"(1)(2)"_s, u"("_s, u")"_s, 0, 1, u""_s},
        {u"(1)(2)"_s, u"("_s, u")"_s, 1, -1, u""_s},
        {u"(1)"_s, u""_s, u")"_s, 1, 1, u""_s},
    };
    for (const auto &[text, tag1, tag2, count1, count2, expected] : cases)
        EXPECT_EQ(FindTextBetween(text, tag1, tag2, count1, count2), expected)
            << text.toStdString() << " " << count1 << "/" << count2;
}

TEST(TextSearchTest, FindTextForwardAndBackward)
{
    const std::tuple<QString, QString, int, QString, QString> cases[] = {
        {u"a=1;b=2;c=3"_s, u"="_s, 1, u"1;b=2;c=3"_s, u"3"_s},
        {u"a=1;b=2;c=3"_s, u"="_s, 2, u"2;c=3"_s, u"2;c=3"_s},
        {u"a=1;b=2;c=3"_s, u"="_s, 3, u"3"_s, u"1;b=2;c=3"_s},
        {u"a=1;b=2;c=3"_s, u"="_s, 4, u""_s, u""_s},
        {u"a=1"_s, u"="_s, 0, u""_s, u""_s},
        {u"a=1"_s, u"#"_s, 1, u""_s, u""_s},
        {u"a=1"_s, u""_s, 1, u""_s, u""_s},
        {u"=x"_s, u"="_s, 1, u"x"_s, u"x"_s},
        {u"=x"_s, u"="_s, 2, u""_s, u""_s},
        {u"aaa"_s, u"aa"_s, 1, u"a"_s, u""_s},
        {u"aaa"_s, u"aa"_s, 2, u""_s, u"a"_s},
        {u"ab"_s, u"abc"_s, 1, u""_s, u""_s},
        {u"x::y::"_s, u"::"_s, 1, u"y::"_s, u""_s},
    };
    for (const auto &[text, tag, count, forward, backward] : cases) {
        EXPECT_EQ(FindText(text, tag, count), forward) << text.toStdString() << " " << count;
        EXPECT_EQ(FindTextRev(text, tag, count), backward) << text.toStdString() << " " << count;
    }
}
