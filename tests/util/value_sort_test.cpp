// Variant swapping and sorting, and the string quicksort against std::sort on hostile inputs.
#include "util/value_sort.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;
using qb::util::QuickSortStrings;
using qb::util::SortVariantArray;
using qb::util::SwapValues;

namespace {

// "typeName:text" for each item, so a failure shows both what moved and what type it kept.
QStringList describe(const QVariantList &list)
{
    QStringList out;
    for (const QVariant &v : list)
        out.append(QString::fromLatin1(v.typeName() ? v.typeName() : "invalid") + u':' + v.toString());
    return out;
}

std::string joined(const QStringList &list)
{
    return list.join(u" | "_s).toStdString();
}

void expectSorted(QVariantList input, const QVariantList &expected)
{
    SortVariantArray(input);
    EXPECT_EQ(describe(input), describe(expected)) << joined(describe(input));
}

TEST(SortSwapValues, ExchangesValueAndType)
{
    QVariant a(1);
    QVariant b(u"text"_s);
    SwapValues(a, b);
    EXPECT_EQ(a.metaType().id(), QMetaType::QString);
    EXPECT_EQ(a.toString(), u"text"_s);
    EXPECT_EQ(b.metaType().id(), QMetaType::Int);
    EXPECT_EQ(b.toInt(), 1);
}

TEST(SortVariantArray, NumbersAsNumbersElseTextsAndStable)
{
    constexpr quint64 kTopU64 = std::numeric_limits<quint64>::max();
    constexpr qint64 kTopI64 = std::numeric_limits<qint64>::max();
    // Each input and the order its items must end up in, as indices into it.
    const std::pair<QVariantList, std::vector<int>> cases[]
        = {{{}, {}}, {{5}, {0}}, {{2, 1}, {1, 0}}, {{3, 1, 2}, {1, 2, 0}}, {{10, 9, 100}, {1, 0, 2}},
            {{2.5, 2, qint64(-1), 3u, true, false}, {2, 5, 4, 1, 0, 3}},
            // 64-bit integers compare exactly, also across signedness.
            {{kTopU64, qint64(-1), kTopI64}, {1, 2, 0}},
            {{qint64(9007199254740993), qint64(9007199254740992)}, {1, 0}},
            // Text by code units; numeric-looking strings stay strings; invalid reads as "".
            {{u"b"_s, u"B"_s, u"a"_s, u"A"_s, u"\u00e9"_s, u"z"_s}, {3, 1, 2, 0, 5, 4}},
            {{u"9"_s, u"10"_s}, {1, 0}}, {{u"b"_s, QVariant(), u"a"_s}, {1, 2, 0}},
            // A number and a text compare as texts.
            {{u"9"_s, 10}, {1, 0}}, {{10, u"9"_s}, {0, 1}}, {{u"apple"_s, 2.5, true}, {1, 0, 2}},
            // Equal items keep their order.
            {{1.0, 1, 1u, qint64(1)}, {0, 1, 2, 3}}, {{u"5"_s, 5, u"4"_s}, {2, 0, 1}},
            {{2, 1.0, 2.0, 1}, {1, 3, 0, 2}}};
    for (const auto &[input, order] : cases) {
        QVariantList expected;
        for (const int i : order)
            expected.append(input[i]);
        expectSorted(input, expected);
    }
}

TEST(SortVariantArray, SortedAndReversedRuns)
{
    QVariantList ascending;
    for (int i = 0; i < 200; ++i)
        ascending.append(QVariant(i - 100));
    QVariantList reversed(ascending.rbegin(), ascending.rend());
    expectSorted(ascending, ascending);
    expectSorted(reversed, ascending);
}

TEST(SortVariantArray, NotANumberNeitherCrashesNorLosesItems)
{
    QVariantList list {QVariant(std::numeric_limits<double>::quiet_NaN()), QVariant(1.0), QVariant(0.0)};
    SortVariantArray(list);
    ASSERT_EQ(list.size(), 3);
    EXPECT_TRUE(std::isnan(list[0].toDouble()));
    EXPECT_EQ(list[1].toDouble(), 0.0);
    EXPECT_EQ(list[2].toDouble(), 1.0);
}

QStringList sortedCopy(QStringList list)
{
    std::sort(list.begin(), list.end());
    return list;
}

void expectQuickSortMatchesStdSort(QStringList list, const char *what)
{
    const QStringList expected = sortedCopy(list);
    QuickSortStrings(list, 0, list.size() - 1);
    EXPECT_TRUE(list == expected) << what;
}

QStringList words(const char *text)
{
    return QString::fromUtf8(text).split(u' ', Qt::SkipEmptyParts);
}

TEST(SortQuickSortStrings, SortsTheClampedRangeByCodeUnits)
{
    constexpr qsizetype kMin = std::numeric_limits<qsizetype>::min();
    constexpr qsizetype kMax = std::numeric_limits<qsizetype>::max();
    const struct
    {
        QStringList input;
        qsizetype first, last;
        QStringList expected;
    } cases[] = {{words("b a c"), 0, 2, words("a b c")},
        {{u"b"_s, u"B"_s, u"a"_s, u"A"_s, u"\u00e9"_s, u"z"_s, u""_s, u"ab"_s}, 0, 7,
            {u""_s, u"A"_s, u"B"_s, u"a"_s, u"ab"_s, u"b"_s, u"z"_s, u"\u00e9"_s}},
        {words("x x x"), 0, 2, words("x x x")}, {words("d c b a"), 1, 2, words("d b c a")},
        // Bounds outside the list are clamped; an empty or inverted range does nothing.
        {words("d c b a"), -5, 100, words("a b c d")}, {words("d c b a"), kMin, kMax, words("a b c d")},
        {words("d c b a"), 3, 1, words("d c b a")}, {words("d c b a"), 2, 2, words("d c b a")},
        {words("d c b a"), 10, 20, words("d c b a")}, {words("d c b a"), -20, -10, words("d c b a")},
        {{}, 0, -1, {}}, {{}, 0, 10, {}}};
    for (const auto &c : cases) {
        QStringList list = c.input;
        QuickSortStrings(list, c.first, c.last);
        EXPECT_EQ(joined(list), joined(c.expected)) << joined(c.input) << " " << c.first << ".." << c.last;
    }
}

QString numbered(int value)
{
    return QString::number(value).rightJustified(7, u'0');
}

// For the middle-pivot partition: each round's pivot is the largest item of its range, so every
// round only peels one item off the end.
QStringList middlePivotKiller(int count)
{
    std::vector<int> at(static_cast<std::size_t>(count));
    std::iota(at.begin(), at.end(), 0);
    std::vector<int> value(static_cast<std::size_t>(count), 0);
    for (int size = count; size >= 2; --size) {
        const int mid = (size - 1) / 2;
        value[std::size_t(at[std::size_t(mid)])] = size - 1;
        std::swap(at[std::size_t(mid)], at[std::size_t(size - 1)]);
    }
    QStringList list;
    list.reserve(count);
    for (int v : value)
        list.append(numbered(v));
    return list;
}

TEST(SortQuickSortStrings, LargeRandomAndHostileInputsMatchStdSort)
{
    constexpr int kCount = 100000;
    std::mt19937 random(20240611);
    const char16_t alphabet[] = u"aAbBzZ09 \u00e9\u4e2d\xd83d\xde00";
    std::uniform_int_distribution<int> length(0, 12);
    std::uniform_int_distribution<int> pick(0, int(std::size(alphabet)) - 2);

    QStringList randomList;
    for (int i = 0; i < kCount; ++i) {
        QString s;
        for (int n = length(random); n > 0; --n)
            s.append(QChar(alphabet[pick(random)]));
        randomList.append(s);
    }
    expectQuickSortMatchesStdSort(randomList, "random");

    const QStringList ascending = sortedCopy(randomList);
    expectQuickSortMatchesStdSort(ascending, "ascending");
    expectQuickSortMatchesStdSort(QStringList(ascending.rbegin(), ascending.rend()), "descending");
    expectQuickSortMatchesStdSort(QStringList(kCount, u"same"_s), "all equal");

    QStringList fewValues;
    QStringList organPipe;
    QStringList sawTooth;
    for (int i = 0; i < kCount; ++i) {
        fewValues.append(numbered(int(random() % 3)));
        organPipe.append(numbered(std::min(i, kCount - i)));
        sawTooth.append(numbered(i % 1000));
    }
    expectQuickSortMatchesStdSort(fewValues, "three values");
    expectQuickSortMatchesStdSort(organPipe, "organ pipe");
    expectQuickSortMatchesStdSort(sawTooth, "saw tooth");
    expectQuickSortMatchesStdSort(middlePivotKiller(kCount), "middle-pivot killer");
}

TEST(SortQuickSortStrings, MillionItemKillerNeitherOverflowsNorCrawls)
{
    QStringList list = middlePivotKiller(1000000);
    QuickSortStrings(list, 0, list.size() - 1);
    ASSERT_EQ(list.size(), 1000000);
    EXPECT_TRUE(std::is_sorted(list.cbegin(), list.cend()));
    EXPECT_EQ(list.first(), numbered(0));
    EXPECT_EQ(list.last(), numbered(999999));
}

} // namespace
