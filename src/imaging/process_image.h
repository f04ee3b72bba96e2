// The core stage of picture conversion: tone, sharpening, blur, the cut, the size and placement on
// a canvas, the frame, torn edges, the negative and the shadow, in that order. A stage that has
// nothing to do leaves the picture as it is.
#pragma once

#include "imaging/frame_stage.h"

#include <QImage>
#include <QRect>
#include <QString>

#include <optional>

namespace qb::imaging {

struct ProcessSettings
{
    QString targetSize; // "800max", "50%", "WxH"; anything else keeps the size
    int style = 0; // the placement on the canvas (the resize method)
    FrameSettings frame;
    int brightness = 0;
    int contrast = 0;
    bool sharpen = false;
    QRect blur; // none unless both sides are above 0
    int blurRadius = 0;
    bool blurExpandEdge = false;
    int tornEdge = 0;
    bool invert = false;
    int cutX = -1;
    int cutY = -1;
    int cutW = -1;
    int cutH = -1;
    qint32 backColor = 0xFFFFFF; // the canvas, 0x00BBGGRR
    int backAlpha = 255;
    int shadowDepth = 0;
    int shadowAlpha = 255;
    QString shadowColor = QStringLiteral("000000");
    std::optional<quint32> seed; // the random placements' seed; the clock's when unset
};

QImage ProcessImage(const QImage &source, const ProcessSettings &settings);

} // namespace qb::imaging
