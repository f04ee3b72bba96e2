// Torn paper: the picture's four sides eaten away along a ragged line.
#pragma once

#include <QImage>

namespace qb::imaging {

// The seed the conversion uses, so that the same picture tears the same way every time.
constexpr quint32 kTornEdgeSeed = 0x7e4a11u;

// strength is how deep the tear may reach, in pixels (taken as |strength|, held to a quarter of
// the shorter side, at least 1); 0 gives the picture back as it is, in Format_ARGB32.
// Along each side the depth of the tear is two ragged lines added together, each straight
// between points drawn at random: slow waves between 0.3 and 0.7 of the strength every three
// strengths or so, and small teeth of up to a quarter of the strength either way every third of
// a strength or so, the sum held between 1 and the strength. Pixels shallower than the line turn
// transparent, the pixel it crosses keeps the share of it that lies inward, and the alpha of
// everything else stays, so the outermost ring always goes and nothing deeper than the strength
// changes. The same picture size, strength and seed always give the same tear.
QImage TearEdges(const QImage &image, int strength, quint32 seed = kTornEdgeSeed);

} // namespace qb::imaging
