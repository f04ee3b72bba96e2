// What the list view keeps ready for sorting: the armed context and the value rules of its four
// comparators. Rows keep their insertion order today; nothing sorts with these yet.
#pragma once

#include <QString>
#include <QStringView>

namespace qb::controls {

// The text request of a sort and the answers for "greater" and "less". All zero until armed, so
// an unarmed comparator calls every pair equal.
struct SortContext
{
    int Mask = 0; // text is asked for once armed
    int Column = 0;
    int TextMax = 0; // the request's buffer, kept as the list's interface has it
    int TextLength = 0;
    int OrderWhenGreater = 0;
    int OrderWhenLess = 0;
};

inline constexpr int kSortTextMask = 1; // the list's "text" item field
inline constexpr int kSortTextMax = 260;

// Arms the context for a column. SortOrder 0 asks ascending (1 and -1); -1 or 1 gives "greater"
// that value and "less" its negative; any other order leaves both as they were.
void ArmSortContext(SortContext &context, int Column, int SortOrder);

// The armed answer for a comparison result (negative, zero, positive).
int OrderedAnswer(const SortContext &context, int comparison);

// Value rules of the comparators, each giving -1, 0 or 1.
int CompareValues(qint32 first, qint32 second);
int CompareTexts(QStringView first, QStringView second); // case-insensitive
int CompareNumbers(QStringView first, QStringView second); // by the classic Val
// By the date each text stands for (ISO, "yyyy/M/d" with or without a time, the locale's own
// formats). A text that is no date sorts before every date; two such texts are equal.
int CompareDates(QStringView first, QStringView second);

} // namespace qb::controls
