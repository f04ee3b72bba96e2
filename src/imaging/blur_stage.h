// Blurring a picture, whole or inside a rectangle. The answer is a Format_ARGB32 picture of the
// same size; a null picture comes back null.
#pragma once

#include <QImage>

namespace qb::imaging {

// The radius is taken as |radius| and held to kMaxBlurRadius. The kernel is three box passes of
// half-width ceil(radius / 3) across and three down: close to a Gaussian of sigma about radius / 3,
// reaching radius to radius + 2 pixels either side. Colours are averaged premultiplied, so a
// transparent neighbour thins a pixel out without darkening it.
constexpr int kMaxBlurRadius = 255;

// Blurs the pixels inside the rectangle at x, y of w by h, clipped to the picture; the pixels
// outside it stay exactly as they were, though those within reach are read. w or h of 0 or less,
// a rectangle beside the picture or a radius of 0 do nothing. With expandEdge the picture is taken
// to go on beyond its sides with copies of its edge pixels, so a plain picture stays plain;
// without it everything beyond the sides is transparent and a blurred edge fades out.
QImage BlurRectangle(const QImage &image, int x, int y, int w, int h, int radius, bool expandEdge);

// The whole picture blurred, its edges expanded.
QImage ImageBlur(const QImage &image, int radius);

} // namespace qb::imaging
