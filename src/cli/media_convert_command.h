// quillbox media convert and media formats: the encoder's jobs from the command line.
#pragma once

#include <QStringList>
#include <QTextStream>

namespace qb::cli {

// convert SRC... --format NAME [-o OUT | --output-dir DIR] [job options] [--core PATH] [--dry-run];
// 0 done, 1 failed, 2 usage, 128 + the signal when interrupted.
int RunConvertCommand(const QStringList &arguments, QTextStream &out, QTextStream &err);

// formats [--core PATH]: every row of the format table with what the tool can do for it.
int RunFormatsCommand(const QStringList &arguments, QTextStream &out, QTextStream &err);

} // namespace qb::cli
