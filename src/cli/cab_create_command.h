// quillbox cab create: the workbench's own build, without a window.
#pragma once

#include <QStringList>
#include <QTextStream>

namespace qb::cli {

// arguments: CABINET PATH... [--compression none|mszip|lzx] [--memory 15..21] [--level 1..9]
// (without "cab create"). Each PATH is added as the workbench adds a dropped item: a file alone,
// a folder with its files named relative to it. Progress goes to out, a line rewritten in place
// when terminal is true, plain lines otherwise; messages go to err. Returns 0 when the cabinet
// was written, 1 when it was not or a name was refused, 2 on bad usage; 128 + the signal when
// the build was interrupted (the half-made cabinet is gone by then).
int RunCabCreate(const QStringList &arguments, QTextStream &out, QTextStream &err, bool terminal);

} // namespace qb::cli
