// Variant swapping and sorting, and the string quicksort against std::sort on hostile inputs.
#include "util/value_sort.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>
#include <random>
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

TEST(SortVariantArray, ShortAndTrivialLists)
{
    expectSorted({}, {});
    expectSorted({QVariant(5)}, {QVariant(5)});
    expectSorted({QVariant(2), QVariant(1)}, {QVariant(1), QVariant(2)});
    expectSorted({QVariant(3), QVariant(1), QVariant(2)}, {QVariant(1), QVariant(2), QVariant(3)});
}

TEST(SortVariantArray, NumbersCompareAsNumbers)
{
    expectSorted({QVariant(10), QVariant(9), QVariant(100)}, {QVariant(9), QVariant(10), QVariant(100)});
    expectSorted(
        {QVariant(2.5), QVariant(2), QVariant(qint64(-1)), QVariant(3u), QVariant(true), QVariant(false)},
        {QVariant(qint64(-1)), QVariant(false), QVariant(true), QVariant(2), QVariant(2.5), QVariant(3u)});
    // 64-bit integers compare exactly, including across signedness.
    expectSorted({QVariant(std::numeric_limits<quint64>::max()), QVariant(qint64(-1)),
                     QVariant(std::numeric_limits<qint64>::max())},
        {QVariant(qint64(-1)), QVariant(std::numeric_limits<qint64>::max()),
            QVariant(std::numeric_limits<quint64>::max())});
    expectSorted({QVariant(qint64(9007199254740993)), QVariant(qint64(9007199254740992))},
        {QVariant(qint64(9007199254740992)), QVariant(qint64(9007199254740993))});
}

TEST(SortVariantArray, TextComparesByCodeUnits)
{
    expectSorted({QVariant(u"b"_s), QVariant(u"B"_s), QVariant(u"a"_s), QVariant(u"A"_s),
                     QVariant(u"\u00e9"_s), QVariant(u"z"_s)},
        {QVariant(u"A"_s), QVariant(u"B"_s), QVariant(u"a"_s), QVariant(u"b"_s), QVariant(u"z"_s),
            QVariant(u"\u00e9"_s)});
    // Numeric-looking strings stay strings.
    expectSorted({QVariant(u"9"_s), QVariant(u"10"_s)}, {QVariant(u"10"_s), QVariant(u"9"_s)});
    expectSorted(
        {QVariant(u"b"_s), QVariant(), QVariant(u"a"_s)}, {QVariant(), QVariant(u"a"_s), QVariant(u"b"_s)});
}

TEST(SortVariantArray, MixedPairsCompareTheirTexts)
{
    expectSorted({QVariant(u"9"_s), QVariant(10)}, {QVariant(10), QVariant(u"9"_s)});
    expectSorted({QVariant(10), QVariant(u"9"_s)}, {QVariant(10), QVariant(u"9"_s)});
    expectSorted({QVariant(u"apple"_s), QVariant(2.5), QVariant(true)},
        {QVariant(2.5), QVariant(u"apple"_s), QVariant(true)});
}

TEST(SortVariantArray, EqualItemsKeepTheirOrder)
{
    expectSorted({QVariant(1.0), QVariant(1), QVariant(1u), QVariant(qint64(1))},
        {QVariant(1.0), QVariant(1), QVariant(1u), QVariant(qint64(1))});
    expectSorted(
        {QVariant(u"5"_s), QVariant(5), QVariant(u"4"_s)}, {QVariant(u"4"_s), QVariant(u"5"_s), QVariant(5)});
    expectSorted({QVariant(2), QVariant(1.0), QVariant(2.0), QVariant(1)},
        {QVariant(1.0), QVariant(1), QVariant(2), QVariant(2.0)});
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

TEST(SortQuickSortStrings, SmallTables)
{
    QStringList list {u"b"_s, u"a"_s, u"c"_s};
    QuickSortStrings(list, 0, 2);
    EXPECT_EQ(joined(list), joined(QStringList({u"a"_s, u"b"_s, u"c"_s})));

    list = {u"b"_s, u"B"_s, u"a"_s, u"A"_s, u"\u00e9"_s, u"z"_s, u""_s, u"ab"_s};
    QuickSortStrings(list, 0, list.size() - 1);
    EXPECT_EQ(joined(list),
        joined(QStringList({u""_s, u"A"_s, u"B"_s, u"a"_s, u"ab"_s, u"b"_s, u"z"_s, u"\u00e9"_s})));

    list = {u"x"_s, u"x"_s, u"x"_s};
    QuickSortStrings(list, 0, 2);
    EXPECT_EQ(joined(list), joined(QStringList({u"x"_s, u"x"_s, u"x"_s})));
}

TEST(SortQuickSortStrings, SortsOnlyTheGivenRange)
{
    QStringList list {u"d"_s, u"c"_s, u"b"_s, u"a"_s};
    QuickSortStrings(list, 1, 2);
    EXPECT_EQ(joined(list), joined(QStringList({u"d"_s, u"b"_s, u"c"_s, u"a"_s})));
}

TEST(SortQuickSortStrings, OutOfRangeBoundsAreClampedOrIgnored)
{
    const QStringList reversed {u"d"_s, u"c"_s, u"b"_s, u"a"_s};
    QStringList list = reversed;
    QuickSortStrings(list, -5, 100);
    EXPECT_EQ(joined(list), joined(QStringList({u"a"_s, u"b"_s, u"c"_s, u"d"_s})));

    list = reversed;
    QuickSortStrings(list, 3, 1);
    EXPECT_EQ(joined(list), joined(reversed));
    QuickSortStrings(list, 2, 2);
    EXPECT_EQ(joined(list), joined(reversed));
    QuickSortStrings(list, 10, 20);
    EXPECT_EQ(joined(list), joined(reversed));
    QuickSortStrings(list, -20, -10);
    EXPECT_EQ(joined(list), joined(reversed));
    QuickSortStrings(list, std::numeric_limits<qsizetype>::min(), std::numeric_limits<qsizetype>::max());
    EXPECT_EQ(joined(list), joined(QStringList({u"a"_s, u"b"_s, u"c"_s, u"d"_s})));

    QStringList empty;
    QuickSortStrings(empty, 0, -1);
    QuickSortStrings(empty, 0, 10);
    EXPECT_TRUE(empty.isEmpty());
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
