#include "imaging/drawing_colors.h"

#include <algorithm>

namespace qb::imaging {

qint32 ColorTextToNumber(const QString &text)
{
    QStringView rest = QStringView(text).trimmed();
    if (rest.startsWith(u"&H", Qt::CaseInsensitive))
        rest = rest.mid(2);
    quint32 value = 0;
    int digits = 0;
    // Eight digits fill the number; more would only push the colour out of it.
    for (QChar c : rest) {
        const int digit = c.unicode() < 128
            ? QByteArrayView("0123456789abcdef").indexOf(char(c.toLower().unicode()))
            : -1;
        if (digit < 0 || digits == 8)
            break;
        value = (value << 4) | quint32(digit);
        ++digits;
    }
    return qint32(value & 0xFFFFFF);
}

QColor DrawingColor(qint32 bgr, int alpha)
{
    return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF, std::clamp(alpha, 0, 255));
}

QColor DrawingColor(const QString &text, int alpha)
{
    return DrawingColor(ColorTextToNumber(text), alpha);
}

} // namespace qb::imaging
