// Small sorting helpers: swapping variants, a stable variant sort and a string quicksort.
#pragma once

#include <QStringList>
#include <QVariant>
#include <QVariantList>

namespace qb::util {

void SwapValues(QVariant &firstValue, QVariant &secondValue);

// Stable ascending bubble sort (quadratic: meant for short lists). Two values that both hold a
// number type or bool compare as numbers (bool as 0 and 1; 64-bit integers exactly); any other
// pair compares the values' toString() texts by UTF-16 code units, case-sensitive. An invalid
// variant reads as "".
void SortVariantArray(QVariantList &array);

// Sorts array[first..last] ascending by UTF-16 code units, case-sensitive, with the classic
// middle-pivot quicksort. The range is clamped to the list; an empty or inverted range does
// nothing. Recursion only follows the smaller half, and a range that keeps splitting badly is
// finished with a heap sort, so neither the stack nor the time can be driven out of bounds.
void QuickSortStrings(QStringList &array, qsizetype first, qsizetype last);

} // namespace qb::util
