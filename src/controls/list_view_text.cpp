// Text rules of the list view that need no window.
#include "controls/list_view_text.h"

#include <QByteArray>

#include <algorithm>

namespace qb::controls {

int ClampThumbnailSide(int side)
{
    return std::clamp(side, kThumbnailMinSide, kThumbnailMaxSide);
}

QString ListCellText(QStringView text)
{
    const qsizetype nul = text.indexOf(QChar(u'\0'));
    return (nul < 0 ? text : text.left(nul)).toString();
}

std::vector<QString> ComposeItemTexts(QStringView ItemsText, const QString &typeName)
{
    std::vector<QString> cells;
    qsizetype start = 0;
    for (;;) {
        const qsizetype bar = ItemsText.indexOf(u'|', start);
        const QStringView piece = ItemsText.mid(start, bar < 0 ? -1 : bar - start);
        if (!cells.empty() && piece.isEmpty())
            cells.push_back(ListCellText(typeName));
        else
            cells.push_back(ListCellText(piece));
        if (bar < 0)
            break;
        start = bar + 1;
    }
    return cells;
}

QString TrimSpaces(QStringView text)
{
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && text[first] == u' ')
        ++first;
    while (last > first && text[last - 1] == u' ')
        --last;
    return text.mid(first, last - first).toString();
}

QString ComposeTipText(
    const QString &column0, const QString &column1, const QString &column2, const QString &column3)
{
    const QString crlf = QStringLiteral("\r\n");
    return column0 + crlf + column1 + crlf + column2 + QStringLiteral(" bytes") + crlf + column3;
}

QString TipBufferText(const QString &tip)
{
    const QByteArray bytes = tip.toUtf8();
    qsizetype cut = std::min<qsizetype>(tip.size(), bytes.size());
    // Back off over continuation bytes, then drop the lead byte whose sequence was cut.
    if (cut < bytes.size()) {
        while (cut > 0 && (uchar(bytes[cut]) & 0xC0) == 0x80)
            --cut;
    }
    return QString::fromUtf8(bytes.constData(), cut);
}

QString PathPart(const QString &path, const QString &delimiter, int style)
{
    const qsizetype r = delimiter.isEmpty() ? -1 : path.lastIndexOf(delimiter, -1, Qt::CaseInsensitive);
    if (r < 0)
        return path;
    switch (style) {
    case 0:
        if (delimiter == u".") {
            const qsizetype start = path.lastIndexOf(u'\\', r) + 1;
            return path.mid(start, r - start);
        }
        return path.left(r);
    case 1:
        return path.mid(r + delimiter.size());
    case 2:
        return path.left(r);
    default:
        return {};
    }
}

} // namespace qb::controls
