// Small sorting helpers: swapping variants, a stable variant sort and a string quicksort.
#include "util/value_sort.h"

#include <QMetaType>
#include <algorithm>
#include <bit>
#include <vector>

namespace qb::util {

namespace {

// A variant as the sort sees it, worked out once so that the quadratic loop stays cheap.
struct SortKey
{
    enum class Kind { Text, Signed, Unsigned, Floating };
    Kind kind = Kind::Text;
    qint64 signedValue = 0;
    quint64 unsignedValue = 0;
    double floatValue = 0;
    QString text;

    bool isInteger() const { return kind == Kind::Signed || kind == Kind::Unsigned; }
    double asDouble() const
    {
        switch (kind) {
        case Kind::Signed:
            return double(signedValue);
        case Kind::Unsigned:
            return double(unsignedValue);
        default:
            return floatValue;
        }
    }
};

SortKey makeKey(const QVariant &value)
{
    SortKey key;
    switch (value.metaType().id()) {
    case QMetaType::Bool:
        key.kind = SortKey::Kind::Signed;
        key.signedValue = value.toBool() ? 1 : 0;
        break;
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::Short:
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
        key.kind = SortKey::Kind::Signed;
        key.signedValue = value.toLongLong();
        break;
    case QMetaType::UChar:
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        key.kind = SortKey::Kind::Unsigned;
        key.unsignedValue = value.toULongLong();
        break;
    case QMetaType::Float:
    case QMetaType::Double:
        key.kind = SortKey::Kind::Floating;
        key.floatValue = value.toDouble();
        break;
    default:
        break;
    }
    key.text = value.toString();
    return key;
}

bool integerGreater(const SortKey &a, const SortKey &b)
{
    using Kind = SortKey::Kind;
    if (a.kind == Kind::Signed && b.kind == Kind::Signed)
        return a.signedValue > b.signedValue;
    if (a.kind == Kind::Unsigned && b.kind == Kind::Unsigned)
        return a.unsignedValue > b.unsignedValue;
    if (a.kind == Kind::Signed)
        return a.signedValue >= 0 && quint64(a.signedValue) > b.unsignedValue;
    return b.signedValue < 0 || a.unsignedValue > quint64(b.signedValue);
}

bool isGreater(const SortKey &a, const SortKey &b)
{
    if (a.kind == SortKey::Kind::Text || b.kind == SortKey::Kind::Text)
        return QString::compare(a.text, b.text, Qt::CaseSensitive) > 0;
    if (a.isInteger() && b.isInteger())
        return integerGreater(a, b);
    return a.asDouble() > b.asDouble();
}

void heapSortRange(QString *begin, QString *end)
{
    std::make_heap(begin, end);
    std::sort_heap(begin, end);
}

// The classic partition loop. The smaller side is sorted by recursion and the larger one by the
// next round of the loop, so the depth stays logarithmic; once the partitions have gone wrong
// more often than a fair split allows, the rest of the range goes to a heap sort instead.
void quickSortRange(QString *a, qsizetype first, qsizetype last, int budget)
{
    while (first < last) {
        if (budget-- <= 0) {
            heapSortRange(a + first, a + last + 1);
            return;
        }
        const QString pivot = a[first + (last - first) / 2];
        qsizetype low = first;
        qsizetype high = last;
        while (low <= high) {
            while (a[low] < pivot)
                ++low;
            while (pivot < a[high])
                --high;
            if (low <= high) {
                a[low].swap(a[high]);
                ++low;
                --high;
            }
        }
        if (high - first < last - low) {
            if (first < high)
                quickSortRange(a, first, high, budget);
            first = low;
        } else {
            if (low < last)
                quickSortRange(a, low, last, budget);
            last = high;
        }
    }
}

} // namespace

void SwapValues(QVariant &firstValue, QVariant &secondValue)
{
    firstValue.swap(secondValue);
}

void SortVariantArray(QVariantList &array)
{
    const qsizetype count = array.size();
    if (count < 2)
        return;
    std::vector<SortKey> keys;
    keys.reserve(std::size_t(count));
    for (const QVariant &value : std::as_const(array))
        keys.push_back(makeKey(value));

    for (qsizetype end = count - 1; end > 0; --end) {
        bool swapped = false;
        for (qsizetype j = 0; j < end; ++j) {
            if (isGreater(keys[std::size_t(j)], keys[std::size_t(j + 1)])) {
                std::swap(keys[std::size_t(j)], keys[std::size_t(j + 1)]);
                array.swapItemsAt(j, j + 1);
                swapped = true;
            }
        }
        if (!swapped)
            break;
    }
}

void QuickSortStrings(QStringList &array, qsizetype first, qsizetype last)
{
    first = std::max<qsizetype>(first, 0);
    last = std::min<qsizetype>(last, array.size() - 1);
    if (first >= last)
        return;
    const int budget = 2 * int(std::bit_width(quint64(last - first + 1)));
    quickSortRange(array.data(), first, last, budget);
}

} // namespace qb::util
