// The picture size a job aims at, from the size property and the source's size.
#pragma once

#include <QSize>
#include <QString>

namespace qb::engine {

// "N%" scales the source; "WxH" with either side 0 or missing keeps the source's shape; sides
// worked out from the source are lowered to even. Without a known source a percentage does
// nothing and two numbers stand as written; an empty size is the source's.
QSize TargetSize(const QString &videoSize, int sourceWidth, int sourceHeight);

} // namespace qb::engine
