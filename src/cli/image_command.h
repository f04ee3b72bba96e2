// quillbox image: pictures converted, resized, marked and stitched as the engine's image branch
// does, and what a picture file holds.
#pragma once

#include <QStringList>
#include <QTextStream>

namespace qb::cli {

// convert SRC... DST [options] | info FILE...; 0 done, 1 failed, 2 bad usage.
int RunImageCommand(const QStringList &arguments, QTextStream &out, QTextStream &err);

} // namespace qb::cli
