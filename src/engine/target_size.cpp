#include "engine/target_size.h"

#include "util/number_text.h"

namespace qb::engine {

namespace {

int even(double value)
{
    const int whole = int(util::RoundHalfEven(value));
    return whole % 2 != 0 ? whole - 1 : whole;
}

} // namespace

QSize TargetSize(const QString &videoSize, int sourceWidth, int sourceHeight)
{
    const QSize source(sourceWidth, sourceHeight);
    const bool known = sourceWidth > 0 && sourceHeight > 0;
    if (videoSize.trimmed().isEmpty())
        return source;
    if (videoSize.contains(u'%')) {
        if (!known)
            return source;
        const double percent = util::Val(videoSize.trimmed());
        return {even(sourceWidth * percent / 100), even(sourceHeight * percent / 100)};
    }
    const qsizetype x = videoSize.indexOf(u'x', 0, Qt::CaseInsensitive);
    const QString left = x < 0 ? videoSize : videoSize.left(x);
    const QString right = x < 0 ? QString() : videoSize.mid(x + 1);
    int w = int(util::Val(left.trimmed()));
    int h = int(util::Val(right.trimmed()));
    if (known) {
        const double ratio = double(sourceWidth) / double(sourceHeight);
        if (w > 0 && h <= 0)
            h = even(w / ratio);
        else if (h > 0 && w <= 0)
            w = even(h * ratio);
        else if (w <= 0 && h <= 0)
            return source;
    }
    return {w, h};
}

} // namespace qb::engine
