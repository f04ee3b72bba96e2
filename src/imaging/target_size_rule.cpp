#include "imaging/target_size_rule.h"

#include <QStringView>

#include <algorithm>
#include <cmath>
#include <optional>

using namespace Qt::StringLiterals;

namespace qb::imaging {

namespace {

// A whole number of digits only, within the largest side; an empty text is 0 when allowed.
std::optional<int> side(QStringView text, bool emptyIsZero)
{
    text = text.trimmed();
    if (text.isEmpty())
        return emptyIsZero ? std::optional<int>(0) : std::nullopt;
    qint64 value = 0;
    for (const QChar c : text) {
        if (c < u'0' || c > u'9')
            return std::nullopt;
        value = value * 10 + (c.unicode() - u'0');
        if (value > kMaxTargetSide)
            return std::nullopt;
    }
    return int(value);
}

// A side worked out from the source: to the nearest pixel and at least 1, or nothing past the limit.
std::optional<int> computed(double value)
{
    if (!std::isfinite(value) || value > kMaxTargetSide + 0.5)
        return std::nullopt;
    return std::max(1, int(std::lround(value)));
}

bool answer(std::optional<int> width, std::optional<int> height, double factor, int &w, int &h, double &scale)
{
    if (!width || !height || *width > kMaxTargetSide || *height > kMaxTargetSide)
        return false;
    w = *width;
    h = *height;
    scale = factor;
    return true;
}

} // namespace

bool ParseTargetSize(const QString &targetSize, int sourceW, int sourceH, int &w, int &h, double &scale)
{
    w = sourceW;
    h = sourceH;
    scale = 1.0;
    const bool known = sourceW > 0 && sourceH > 0;
    const QString text = targetSize.trimmed();

    if (text.endsWith(u"max"_s, Qt::CaseInsensitive)) {
        const std::optional<int> limit = side(QStringView(text).chopped(3), false);
        if (!known || !limit || *limit < 1)
            return false;
        if (sourceW <= *limit && sourceH <= *limit)
            return true;
        const double factor = double(*limit) / std::max(sourceW, sourceH);
        if (sourceW >= sourceH)
            return answer(*limit, computed(sourceH * factor), factor, w, h, scale);
        return answer(computed(sourceW * factor), *limit, factor, w, h, scale);
    }

    if (text.endsWith(u'%')) {
        bool ok = false;
        const double percent = QStringView(text).chopped(1).trimmed().toDouble(&ok);
        if (!known || !ok || !std::isfinite(percent) || percent <= 0)
            return false;
        const double factor = percent / 100.0;
        return answer(computed(sourceW * factor), computed(sourceH * factor), factor, w, h, scale);
    }

    const qsizetype x = text.indexOf(u'x', 0, Qt::CaseInsensitive);
    if (x < 0)
        return false;
    const std::optional<int> width = side(QStringView(text).left(x), true);
    const std::optional<int> height = side(QStringView(text).mid(x + 1), true);
    if (!width || !height || (*width == 0 && *height == 0))
        return false;
    if (*width > 0 && *height > 0)
        return answer(width, height, known ? double(*width) / sourceW : 1.0, w, h, scale);
    if (!known)
        return false;
    if (*width == 0) {
        const double factor = double(*height) / sourceH;
        return answer(computed(sourceW * factor), height, factor, w, h, scale);
    }
    const double factor = double(*width) / sourceW;
    return answer(width, computed(sourceH * factor), factor, w, h, scale);
}

} // namespace qb::imaging
