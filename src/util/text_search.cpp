// Picking pieces out of strings with binary, case-sensitive compares.
#include "util/text_search.h"

#include <algorithm>

namespace qb::util {

namespace {

constexpr int kKillTagRounds = 100;

// The count-th occurrence of tag, each search starting one character behind the previous hit
// (the first one at from + 1); -1 when there are not that many.
qsizetype nthForward(const QString &text, const QString &tag, qsizetype from, int count)
{
    qsizetype pos = from;
    for (int k = 0; k < count; ++k) {
        pos = text.indexOf(tag, pos + 1);
        if (pos < 0)
            return -1;
    }
    return pos;
}

void stripPairs(QString &text, QChar open, QChar close)
{
    for (int round = 0; round < kKillTagRounds; ++round) {
        const qsizetype start = text.indexOf(open);
        if (start < 0)
            return;
        const qsizetype end = text.indexOf(close, start + 1);
        if (end < 0)
            return;
        // The copy is needed: removing from text would pull the pattern out from under itself.
        const QString tag = text.mid(start, end - start + 1);
        text.remove(tag);
    }
}

} // namespace

QString GetFileString(const QString &sText, const QString &delimiter, int mode)
{
    if (sText.endsWith(u':'))
        return sText.chopped(1);
    if (delimiter.isEmpty())
        return sText;
    const qsizetype p = sText.lastIndexOf(delimiter);
    if (p < 0)
        return sText;
    switch (mode) {
    case 0:
        if (delimiter == u".") {
            const qsizetype sep = std::max(sText.lastIndexOf(u'\\'), sText.lastIndexOf(u'/'));
            if (sep > p)
                return {};
            return sText.mid(sep + 1, p - sep - 1);
        }
        return sText.left(p);
    case 1:
        return sText.mid(p + delimiter.size());
    case 2:
        return sText.left(p);
    default:
        return {};
    }
}

QString KillTag(const QString &sText, bool alsoRoundBrackets)
{
    QString text = sText;
    stripPairs(text, u'<', u'>');
    stripPairs(text, u'&', u';');
    stripPairs(text, u'{', u'}');
    if (alsoRoundBrackets)
        stripPairs(text, u'(', u')');
    return text;
}

QString FindTextBetween(
    const QString &sText, const QString &findTag1, const QString &findTag2, int findCount1, int findCount2)
{
    if (findTag1.isEmpty() || findTag2.isEmpty() || findCount1 < 1 || findCount2 < 1)
        return {};
    const qsizetype a = nthForward(sText, findTag1, -1, findCount1);
    if (a < 0)
        return {};
    const qsizetype b = nthForward(sText, findTag2, a, findCount2);
    if (b < 0)
        return {};
    const qsizetype start = a + findTag1.size();
    if (b < start)
        return {};
    return sText.mid(start, b - start);
}

QString FindText(const QString &sText, const QString &findTag, int findCount)
{
    if (findTag.isEmpty() || findCount < 1)
        return {};
    const qsizetype pos = nthForward(sText, findTag, -1, findCount);
    if (pos < 0)
        return {};
    return sText.mid(pos + findTag.size());
}

QString FindTextRev(const QString &sText, const QString &findTag, int findCount)
{
    if (findTag.isEmpty() || findCount < 1 || findTag.size() > sText.size())
        return {};
    // The first search may start at the last place the tag fits; each next one a character
    // before the previous hit. A negative start would mean "from the end" to Qt, so stop at 0.
    qsizetype from = sText.size() - findTag.size();
    qsizetype pos = -1;
    for (int k = 0; k < findCount; ++k) {
        if (from < 0)
            return {};
        pos = sText.lastIndexOf(findTag, from);
        if (pos < 0)
            return {};
        from = pos - 1;
    }
    return sText.mid(pos + findTag.size());
}

} // namespace qb::util
