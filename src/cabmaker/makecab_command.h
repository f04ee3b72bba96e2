// The makecab program's logic: its command line, progress lines, summary, report and information files.
#pragma once

#include <QStringList>
#include <QTextStream>

namespace qb::cabmaker {

// Runs makecab with its arguments (without the program name), relative paths starting at
// currentFolder. Progress and the summary go to out, flushed line by line; errors and warnings
// to err, one line each. Returns 0 on success and 1 on any error (2 for a bad command line).
int RunMakeCab(
    const QStringList &arguments, QTextStream &out, QTextStream &err, const QString &currentFolder);

// The default destination of a one-file cabinet: the source's name with the last character of
// its extension replaced by "_" ("setup.inf" → "setup.in_"); "._" is appended to a name
// without an extension.
QString CompressedFileName(const QString &sourceName);

} // namespace qb::cabmaker
