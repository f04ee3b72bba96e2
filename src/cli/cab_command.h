// quillbox cab: lists, unpacks, tests and describes a cabinet through clsCAB.
#pragma once

#include <QStringList>
#include <QTextStream>

namespace qb::cli {

// arguments: list|extract|test|xml CABINET [-d DIR] [NAME...] (without "cab"). Returns 0 on
// success, 1 when the reader raised any error or a NAME was not found, 2 on bad usage.
int RunCabCommand(const QStringList &arguments, QTextStream &out, QTextStream &err);

} // namespace qb::cli
