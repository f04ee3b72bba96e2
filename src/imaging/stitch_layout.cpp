#include "imaging/stitch_layout.h"

#include "imaging/drawing_colors.h"

#include <QPainter>

#include <cmath>

namespace qb::imaging {

QSize StitchGrid(int fileCount, int stitchingRow)
{
    if (fileCount <= 0)
        return {0, 0};
    int columns = stitchingRow > 0 ? stitchingRow : int(std::lround(std::sqrt(double(fileCount))));
    columns = std::max(columns, 1);
    const int rows = int(std::floor(double(fileCount) / columns + 0.49 + 0.5));
    const int needed = int((qint64(fileCount) + columns - 1) / columns);
    return {columns, std::max(rows, needed)};
}

bool ParseTileSize(const QString &text, QSize &size)
{
    const QStringList parts = text.split(QLatin1Char('x'), Qt::KeepEmptyParts, Qt::CaseInsensitive);
    if (parts.size() != 2)
        return false;
    bool okWidth = false;
    bool okHeight = false;
    const int width = parts[0].trimmed().toInt(&okWidth);
    const int height = parts[1].trimmed().toInt(&okHeight);
    if (!okWidth || !okHeight || width < 1 || height < 1 || width > 32767 || height > 32767)
        return false;
    size = QSize(width, height);
    return true;
}

QImage StitchTiles(const QList<QImage> &pictures, QSize tile, int columns, qint32 backColor, int backAlpha)
{
    if (tile.width() < 1 || tile.height() < 1 || columns < 1)
        return {};
    const qint64 rows = std::max<qint64>(1, (qint64(pictures.size()) + columns - 1) / columns);
    const qint64 width = qint64(columns) * tile.width();
    const qint64 height = rows * tile.height();
    if (width > 32767 || height > 32767 || width * height > (qint64(1) << 28))
        return {};
    QImage canvas(int(width), int(height), QImage::Format_ARGB32_Premultiplied);
    if (canvas.isNull())
        return {};
    canvas.fill(DrawingColor(backColor, backAlpha));

    QPainter painter(&canvas);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (qsizetype i = 0; i < pictures.size(); ++i) {
        const QImage &picture = pictures[i];
        if (picture.isNull())
            continue;
        const QSize fitted = picture.size().scaled(tile, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
        const QPoint corner(int(i % columns) * tile.width(), int(i / columns) * tile.height());
        const QPoint offset((tile.width() - fitted.width()) / 2, (tile.height() - fitted.height()) / 2);
        painter.drawImage(QRect(corner + offset, fitted), picture);
    }
    painter.end();
    return canvas;
}

} // namespace qb::imaging
