// The size a converted picture is given, from the size text and the source's size.
#pragma once

#include <QString>

namespace qb::imaging {

// The largest side the rule ever answers; a text asking for more is not a size.
constexpr int kMaxTargetSide = 32767;

// The forms, tried in this order (spaces around the numbers are allowed, letters in any case):
//  "Nmax"  N a whole number above 0: a source that fits in N on both sides stays as it is with
//          scale 1; otherwise its longer side becomes N and the other keeps the shape.
//  "P%"    P a number above 0, decimals allowed: scale is P / 100 and both sides follow it.
//  "WxH"   whole numbers of 0 or more, either side may be left out: two sides stand as written
//          (scale is then the width's factor); a missing or 0 side follows the other one and the
//          source's shape (scale is then the factor of the given side); "0x0" and "x" ask nothing.
//  else    the source's size.
// Computed sides are rounded to the nearest pixel, halves away from zero, and never below 1, so
// "10%" of a 3x2 picture is 1x1. Answers true when the text asked for a size, with w, h and scale
// set; false with the source's size and scale 1 when it did not, when it named a side beyond
// kMaxTargetSide, or when the source has no size to work from.
bool ParseTargetSize(const QString &targetSize, int sourceW, int sourceH, int &w, int &h, double &scale);

} // namespace qb::imaging
