// Several pictures stitched into one: the grid, the tile size and the stitched canvas.
#pragma once

#include <QImage>
#include <QList>
#include <QSize>
#include <QString>

namespace qb::imaging {

// Columns and rows (width and height of the result) for fileCount pictures. The columns are
// stitchingRow, or round(sqrt(fileCount)) when that is 0 or less; the rows are
// round(fileCount / columns + 0.49), raised when that would leave files without a tile (it does
// so when the division leaves less than 0.01, as 201 files in 200 columns). No files give 0 by 0.
QSize StitchGrid(int fileCount, int stitchingRow);

// "300x300" (also "300X300", blanks allowed around the numbers) into width and height, each 1 to
// 32767. Anything else answers false and leaves size alone.
bool ParseTileSize(const QString &text, QSize &size);

// A canvas of columns by as many rows as the pictures need, each tile of the given size, filled
// with backColor (0x00BBGGRR) at backAlpha. Picture i goes into column i % columns and row
// i / columns, scaled (up or down) to fit its tile with its aspect ratio kept and centred in it;
// a null picture leaves its tile as background. The result is null when the tile size or the
// columns are not positive or the canvas would exceed 32767 pixels a side or 2^28 pixels.
QImage StitchTiles(const QList<QImage> &pictures, QSize tile, int columns, qint32 backColor, int backAlpha);

} // namespace qb::imaging
