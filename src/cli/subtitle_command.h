// quillbox subtitle: converts subtitle and lyric files between the formats the converter knows.
#pragma once

#include <QStringList>
#include <QTextStream>

namespace qb::cli {

// arguments: convert SRC... DST [options] | formats (without "subtitle"). Returns 0 when the
// destination was written, 1 when it was not, 2 on bad usage.
int RunSubtitleCommand(const QStringList &arguments, QTextStream &out, QTextStream &err);

} // namespace qb::cli
