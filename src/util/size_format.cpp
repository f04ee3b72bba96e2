// Byte counts as short texts with a unit: "1023B", "1.50KB", "4.66GB".
#include "util/size_format.h"

#include "util/file_names.h"

#include "util/number_text.h"

#include <QFileInfo>
#include <QLocale>
#include <QStringView>
#include <array>
#include <cmath>
#include <limits>

namespace qb::util {

namespace {

struct SizeUnit
{
    double below; // this unit is used for values below this limit
    double divisor;
    QStringView suffix;
};

// The KB, MB and GB rows; bytes come before them and GB takes everything above.
using SizeTable = std::array<SizeUnit, 3>;

constexpr double kKiB = 1024.0;
constexpr double kMiB = kKiB * 1024.0;
constexpr double kGiB = kMiB * 1024.0;

constexpr double kAbove = std::numeric_limits<double>::infinity();

// File sizes move on to GB at 1000 MB rather than 1024 MB; that is deliberate.
constexpr SizeTable kFileSizeUnits {
    {{kMiB, kKiB, u"KB"}, {1000.0 * kMiB, kMiB, u"MB"}, {kAbove, kGiB, u"GB"}}};
constexpr SizeTable kByteSizeUnits {{{kMiB, kKiB, u"KB"}, {kGiB, kMiB, u"MB"}, {kAbove, kGiB, u"GB"}}};

QString sizeText(double value, const SizeTable &units, QStringView pattern)
{
    if (!std::isfinite(value))
        return {};
    if (value < kKiB) {
        // Plain text of the number itself: no rounding and no grouping.
        return QString::number(value + 0.0, 'f', QLocale::FloatingPointShortest) + u'B';
    }
    for (const SizeUnit &unit : units) {
        if (value < unit.below)
            return FormatNumber(value / unit.divisor, pattern).append(unit.suffix);
    }
    return {};
}

} // namespace

QString ConvertFileSize(double size, bool IncludeDecimal)
{
    return sizeText(size, kFileSizeUnits, IncludeDecimal ? u"0.00" : u"#");
}

QString CheckFileSize(const QString &fileName, bool IncludeDecimal)
{
    return ConvertFileSize(double(GetFileLen(fileName)), IncludeDecimal);
}

QString FormatByteSize(double value)
{
    return sizeText(value, kByteSizeUnits, u"0.00");
}

} // namespace qb::util
