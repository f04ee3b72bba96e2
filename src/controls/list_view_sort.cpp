// The sort context of the list view and the value rules of its comparators.
#include "controls/list_view_sort.h"

#include "util/number_text.h"

#include <QDateTime>
#include <QLocale>

#include <array>
#include <optional>

namespace qb::controls {

void ArmSortContext(SortContext &context, int Column, int SortOrder)
{
    context.Mask = kSortTextMask;
    context.Column = Column;
    context.TextMax = kSortTextMax;
    context.TextLength = kSortTextMax;
    if (SortOrder == 0) {
        context.OrderWhenGreater = 1;
        context.OrderWhenLess = -1;
    } else if (SortOrder == -1 || SortOrder == 1) {
        context.OrderWhenGreater = SortOrder;
        context.OrderWhenLess = -SortOrder;
    }
}

int OrderedAnswer(const SortContext &context, int comparison)
{
    if (comparison > 0)
        return context.OrderWhenGreater;
    if (comparison < 0)
        return context.OrderWhenLess;
    return 0;
}

namespace {

template<typename T>
int threeWay(const T &first, const T &second)
{
    return first < second ? -1 : (second < first ? 1 : 0);
}

// Dates as this system writes them, then as the user's locale does.
std::optional<qint64> dateValue(QStringView text)
{
    const QString trimmed = text.trimmed().toString();
    if (trimmed.isEmpty())
        return std::nullopt;
    static const std::array<QString, 8> formats = {
        QStringLiteral("yyyy-MM-dd HH:mm:ss"),
        QStringLiteral("yyyy-MM-ddTHH:mm:ss"),
        QStringLiteral("yyyy-MM-dd HH:mm"),
        QStringLiteral("yyyy-MM-dd"),
        QStringLiteral("yyyy/M/d H:mm:ss"),
        QStringLiteral("yyyy/M/d H:mm"),
        QStringLiteral("yyyy/M/d"),
        QStringLiteral("H:mm:ss"),
    };
    for (const QString &format : formats) {
        const QDateTime when = QDateTime::fromString(trimmed, format);
        if (when.isValid())
            return when.toMSecsSinceEpoch();
    }
    const QLocale locale = QLocale::system();
    for (const QLocale::FormatType type : {QLocale::ShortFormat, QLocale::LongFormat}) {
        const QDateTime when = locale.toDateTime(trimmed, type);
        if (when.isValid())
            return when.toMSecsSinceEpoch();
        const QDate day = locale.toDate(trimmed, type);
        if (day.isValid())
            return day.startOfDay().toMSecsSinceEpoch();
    }
    return std::nullopt;
}

} // namespace

int CompareValues(qint32 first, qint32 second)
{
    return threeWay(first, second);
}

int CompareTexts(QStringView first, QStringView second)
{
    const int c = first.compare(second, Qt::CaseInsensitive);
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

int CompareNumbers(QStringView first, QStringView second)
{
    return threeWay(util::Val(first), util::Val(second));
}

int CompareDates(QStringView first, QStringView second)
{
    return threeWay(dateValue(first), dateValue(second)); // no date sorts first
}

} // namespace qb::controls
