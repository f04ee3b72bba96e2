// Putting the picture on the canvas of the target size: the part of it that is cut out, the
// canvas itself, and where and how large the picture lands by the resize method.
#pragma once

#include <QImage>
#include <QRect>
#include <QSize>

#include <optional>

namespace qb::imaging {

// The part of a picture of the given size to use, or an empty rectangle for the whole of it. A
// cut applies only with all four values other than -1 and style 1 or 3; X and Y of 0 or less
// count as 0, and the rectangle is clipped to the picture. A cut that is then empty (W or H of 0
// or less, or lying beside the picture) leaves the whole picture.
QRect CutRectangle(int cutX, int cutY, int cutW, int cutH, int style, const QSize &picture);

// A w by h Format_ARGB32 picture filled with backColor (0x00BBGGRR; the high byte is ignored) at
// backAlpha, held to 0..255. Null when a side is 0 or less or the memory is not there.
QImage CreateCanvas(int w, int h, qint32 backColor, int backAlpha);

// Where a picture lands: source is the part of the picture taken (in its pixels), target where
// it goes on the canvas, scaled to fill it exactly. Empty rectangles mean nothing is drawn.
struct Placement
{
    QRect source;
    QRect target;
};

// The resize methods. Sides worked out below are rounded to the nearest pixel, at least 1.
//  0  the whole picture stretched over the canvas (also any value not listed)
//  1  the cut part (the whole picture without a cut) stretched over the canvas
//  6  the whole picture fitted inside the canvas keeping its shape, centred; the rest of the
//     canvas keeps its colour
//  7  the canvas filled keeping the picture's shape, centred; what overflows is cropped
//  2..5  filled as 7, but the crop lies at a random place on the sides the method treats and
//     centred on the others: 2 across, 4 down, 5 both, 3 both within the cut part. Only one side
//     overflows when the canvas is filled, so the other has nowhere to move.
// The draws come from a Mersenne twister (std::mt19937) seeded with seed: one for across, then
// one for down, for every method of the family.
Placement PlanPlacement(const QSize &picture, const QSize &canvas, int style, const QRect &cut, quint32 seed);

// The seed of the random methods when none is given: the clock, so that runs differ.
quint32 ClockSeed();

// The picture drawn on a new canvas of w by h (CreateCanvas) where PlanPlacement puts it, scaled
// smoothly from the part taken so that nothing beside it bleeds in, over the canvas colour. The
// picture comes back as it is when it is null or w or h is 0 or less.
QImage PlacePicture(const QImage &picture, int w, int h, int style, const QRect &cut, qint32 backColor,
    int backAlpha, std::optional<quint32> seed = std::nullopt);

} // namespace qb::imaging
