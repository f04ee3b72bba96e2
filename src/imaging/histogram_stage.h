// A histogram of the picture's channels drawn into its bottom-right corner.
#pragma once

#include <QImage>

namespace qb::imaging {

// The box is min(264, width / 2) pixels wide and min(box width / 2, height / 2) high, set in from
// the bottom-right corner by box width / 33 (8 at full size), filled black at alpha 160 and
// outlined by a white pen. Inside, a plot area set in by box width / 66 (4 at full size) shows
// 256 bins from left (0) to right (255) as lines in four pens, drawn in this order: red, green,
// blue, and grey for luminance (0.299 R + 0.587 G + 0.114 B). Each curve is scaled to its own
// highest bin, which touches the top of the plot area. Fully transparent pixels are not counted.
// A picture too small for a box of 16 by 8 pixels is left as it is.
void DrawHistogram(QImage &image);

} // namespace qb::imaging
