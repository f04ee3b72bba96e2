// Tests for the string list helpers.
#include "util/string_array.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace Qt::StringLiterals;
using namespace qb::util;

namespace {

const QStringList abc {u"a"_s, u"b"_s, u"c"_s};

} // namespace

TEST(StringArrayTest, RemoveAndAddAtEdgeIndices)
{
    const std::pair<qsizetype, QStringList> removals[] = {
        {-1, abc},
        {3, abc},
        {0, {u"b"_s, u"c"_s}},
        {2, {u"a"_s, u"b"_s}},
        {1, {u"a"_s, u"c"_s}},
    };
    for (const auto &[index, expected] : removals) {
        QStringList list = abc;
        ArrayRemoveItem(list, index);
        EXPECT_EQ(list, expected) << index;
    }
    const std::pair<qsizetype, QStringList> additions[] = {
        {-1, {u"a"_s, u"b"_s, u"c"_s, u"x"_s}},
        {3, {u"a"_s, u"b"_s, u"c"_s, u"x"_s}},
        {0, {u"x"_s, u"a"_s, u"b"_s, u"c"_s}},
        {2, {u"a"_s, u"b"_s, u"x"_s, u"c"_s}},
        {4, abc},
        {-2, abc},
    };
    for (const auto &[index, expected] : additions) {
        QStringList list = abc;
        ArrayAddItem(list, u"x"_s, index);
        EXPECT_EQ(list, expected) << index;
    }
    QStringList empty;
    ArrayRemoveItem(empty, 0);
    ArrayAddItem(empty, u"x"_s, 0);
    EXPECT_EQ(empty, QStringList {u"x"_s});
}

TEST(StringArrayTest, ArrayToStringRanges)
{
    const std::tuple<qsizetype, qsizetype, QString> cases[] = {
        {0, -1, u"a, b, c"_s},
        {1, -1, u"b, c"_s},
        {2, 2, u"c"_s},
        {0, 1, u"a, b"_s},
        {-1, 1, u""_s},
        {0, 3, u""_s},
        {2, 1, u""_s},
        {0, -2, u""_s},
    };
    for (const auto &[start, end, expected] : cases)
        EXPECT_EQ(ArrayToString(abc, u", "_s, start, end), expected) << start << ".." << end;
    EXPECT_EQ(ArrayToString({}, u","_s, 0, -1), u""_s);
    EXPECT_EQ(ArrayToString({u""_s, u""_s}, u"|"_s, 0, -1), u"|"_s);
}

TEST(StringArrayTest, StringToArrayRanges)
{
    const std::tuple<QString, QString, qsizetype, qsizetype, QStringList> cases[] = {
        {u"a,b,c"_s, u","_s, 0, -1, abc},
        {u"a,,c,"_s, u","_s, 0, -1, {u"a"_s, u""_s, u"c"_s, u""_s}},
        {u"a,b"_s, u""_s, 0, -1, {u"a,b"_s}},
        {u""_s, u","_s, 0, -1, {u""_s}},
        {u"a::b::c"_s, u"::"_s, 1, -1, {u"b"_s, u"c"_s}},
        {u"a,b,c"_s, u","_s, 1, 1, {u"b"_s}},
        {u"a,b,c"_s, u","_s, 0, 10, abc},
        {u"a,b,c"_s, u","_s, 5, -1, {}},
        {u"a,b,c"_s, u","_s, 2, 1, {}},
        {u"a,b,c"_s, u","_s, 0, -5, {}},
        {u"a,b,c"_s, u","_s, -3, 1, {u"a"_s, u"b"_s}},
    };
    for (const auto &[text, separator, start, end, expected] : cases)
        EXPECT_EQ(StringToArray(text, separator, start, end), expected)
            << text.toStdString() << " " << start << ".." << end;
    for (const QString &s : {u""_s, u","_s, u",a,,b,"_s})
        EXPECT_EQ(ArrayToString(StringToArray(s, u","_s, 0, -1), u","_s, 0, -1), s) << s.toStdString();
}

TEST(StringArrayTest, NullCuts)
{
    const QString withNull = u"ab"_s + QChar(0) + u"cd"_s + QChar(0);
    EXPECT_EQ(CleanString(withNull), u"ab"_s);
    EXPECT_EQ(TrimNull(withNull), u"ab"_s);
    EXPECT_EQ(CleanString(QString(QChar(0))), u""_s);
    EXPECT_EQ(TrimNull(u"abc"_s), u"abc"_s);
}
