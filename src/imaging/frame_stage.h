// The frame of a picture: its outline with shaped corners, an inner margin, a border line and an
// optional gradient in the corners the outline cuts away.
#pragma once

#include <QImage>
#include <QString>

namespace qb::imaging {

// How a corner is shaped, for a radius r above 0:
//   0  a quarter circle of radius r, bulging outwards (a rounded corner);
//   1  a straight cut from r pixels along one side to r pixels along the other;
//   2  a quarter circle of radius r centred on the corner point, bitten out of the picture.
// Any other value counts as 0.
enum CornerStyle { CornerArc = 0, CornerCut = 1, CornerBite = 2 };

struct FrameSettings
{
    // Corner radii in pixels and their styles; a radius is held to half the shorter side.
    int radiusTL = 0;
    int radiusTR = 0;
    int radiusBL = 0;
    int radiusBR = 0;
    int radiusStyleTL = CornerArc;
    int radiusStyleTR = CornerArc;
    int radiusStyleBL = CornerArc;
    int radiusStyleBR = CornerArc;
    // Inner margin: the outline lies this far inside the picture's edge; the picture stays where it
    // is and what lies outside the outline becomes transparent.
    int edgeIndentation = 0;
    // The border line: none when the width is 0 or less. Its outer edge lies borderIndentation
    // pixels inside the picture's edge and it follows the corners' shapes.
    int borderWidth = 0;
    QString borderColor = QStringLiteral("FFFFFF");
    int borderAlpha = 255;
    // 0 solid, 1 dash, 2 dot, 3 dash-dot, 4 dash-dot-dot; any other value is solid.
    int borderDashStyle = 0;
    int borderIndentation = 0;
    // The corner gradient runs from the picture's top-left (start) to its bottom-right (end) and
    // fills what the corners cut away inside their r by r squares. Both alphas 0: no gradient.
    qint32 radiusStartColor = 0; // 0x00BBGGRR
    qint32 radiusEndColor = 0;
    int radiusStartAlpha = 0;
    int radiusEndAlpha = 0;
};

// Applies the frame; the size stays and the result is premultiplied ARGB unless the settings ask
// for nothing, in which case the picture is left as it is.
void ApplyFrame(QImage &image, const FrameSettings &settings);

} // namespace qb::imaging
