// A drop shadow behind a picture's opaque shape.
#pragma once

#include <QColor>
#include <QImage>
#include <QString>

namespace qb::imaging {

// The canvas grows by depth pixels to the right and at the bottom; the picture keeps its place at
// the top-left and the shadow lies behind it, moved down and right by depth. The shadow is soft:
// it is the picture's alpha, spread by a box blur of depth / 2 pixels each way, so its rim fades
// over about depth pixels centred on the moved outline (a depth of 1 gives a hard shadow).
// The colour is a colour text; alpha 0..255 scales the shadow's own opacity. Depth 0 or less, or a
// canvas too large to allocate, leaves the picture as it is. The result is premultiplied ARGB.
void DropShadow(QImage &image, int depth, const QString &color, int alpha);
void DropShadow(QImage &image, int depth, const QColor &color);

} // namespace qb::imaging
