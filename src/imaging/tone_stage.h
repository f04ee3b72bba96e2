// Tone stages of the conversion: brightness and contrast, a fixed sharpening and the negative.
// Each works on straight (not premultiplied) colour, leaves alpha as it is and answers a
// Format_ARGB32 picture; a null picture comes back null.
#pragma once

#include <QImage>

namespace qb::imaging {

// Brightness -255..255 and contrast -100..100; values beyond are held at the ends. Per channel,
// brightness first and then contrast around the mid grey 127.5:
//   v' = v + brightness
//   v'' = 127.5 + (v' - 127.5) * f, f = (100 + contrast) / 100 below 0 (-100 gives flat grey)
//                                    f = 100 / (100 - contrast) above 0 (100 gives a threshold)
// rounded and held to 0..255. 0 and 0 give the picture back unchanged.
QImage AdjustBrightnessContrast(const QImage &image, int brightness, int contrast);

// The one strength there is: an unsharp mask that adds kSharpenAmount of the difference from a
// Gaussian blur of sigma kSharpenSigma. The blur weighs neighbours by their alpha, so fully
// transparent pixels lend no colour to the edge of what shows.
constexpr double kSharpenSigma = 1.0;
constexpr double kSharpenAmount = 0.35;
QImage SharpenImage(const QImage &image);

// The negative: each of red, green and blue becomes 255 minus itself.
QImage InvertImage(const QImage &image);

} // namespace qb::imaging
