// Index-based helpers on string lists.
#include "util/string_array.h"

#include <algorithm>

namespace qb::util {

void ArrayRemoveItem(QStringList &strArray, qsizetype lngIndex)
{
    if (lngIndex < 0 || lngIndex >= strArray.size())
        return;
    strArray.removeAt(lngIndex);
}

void ArrayAddItem(QStringList &strArray, const QString &strItem, qsizetype lngIndex)
{
    if (lngIndex == -1) {
        strArray.append(strItem);
        return;
    }
    if (lngIndex < 0 || lngIndex > strArray.size())
        return;
    strArray.insert(lngIndex, strItem);
}

QString ArrayToString(
    const QStringList &strArray, const QString &strSeparator, qsizetype lngStart, qsizetype lngEnd)
{
    const qsizetype last = strArray.size() - 1;
    if (lngEnd == -1)
        lngEnd = last;
    if (strArray.isEmpty() || lngStart < 0 || lngEnd > last || lngStart > lngEnd)
        return {};
    QString joined = strArray[lngStart];
    for (qsizetype i = lngStart + 1; i <= lngEnd; ++i) {
        joined += strSeparator;
        joined += strArray[i];
    }
    return joined;
}

QStringList StringToArray(
    const QString &strString, const QString &strSeparator, qsizetype lngStart, qsizetype lngEnd)
{
    QStringList items = strSeparator.isEmpty() ? QStringList {strString} : strString.split(strSeparator);
    // Removing the items above lngEnd one by one, then those below lngStart, comes down to these
    // two cuts; clamped so that huge or negative bounds cost nothing.
    if (lngEnd != -1) {
        const qsizetype keep = lngEnd < 0 ? 0 : std::min(lngEnd + 1, items.size());
        items.resize(keep);
    }
    if (lngStart > 0)
        items.remove(0, std::min(lngStart, items.size()));
    return items;
}

QString CleanString(const QString &strSource)
{
    const qsizetype nul = strSource.indexOf(QChar(0));
    return nul < 0 ? strSource : strSource.left(nul);
}

QString TrimNull(const QString &strSource)
{
    return CleanString(strSource);
}

} // namespace qb::util
