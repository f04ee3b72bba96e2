// Index-based helpers on string lists: insert, remove, join and split a range, cut at a null.
#pragma once

#include <QString>
#include <QStringList>

namespace qb::util {

// Removes the item at lngIndex; an index outside the list does nothing.
void ArrayRemoveItem(QStringList &strArray, qsizetype lngIndex);

// Inserts strItem at lngIndex (0..size); -1 appends. Any other index does nothing.
void ArrayAddItem(QStringList &strArray, const QString &strItem, qsizetype lngIndex);

// Joins the items lngStart..lngEnd (-1: the last one) with the separator. An invalid range gives "".
QString ArrayToString(
    const QStringList &strArray, const QString &strSeparator, qsizetype lngStart, qsizetype lngEnd);

// Splits at the separator, keeping empty parts (an empty separator gives the whole string as one
// item), then keeps only the items lngStart..lngEnd (-1: up to the last one). Items that do not
// exist are not removed twice: the list just ends up shorter or empty.
QStringList StringToArray(
    const QString &strString, const QString &strSeparator, qsizetype lngStart, qsizetype lngEnd);

// The string up to its first null character; unchanged without one.
QString CleanString(const QString &strSource);

// The same as CleanString.
QString TrimNull(const QString &strSource);

} // namespace qb::util
