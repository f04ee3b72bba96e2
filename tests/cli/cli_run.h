// Runs the quillbox command in-process and keeps its exit status and both streams.
#pragma once

#include "cli/cli.h"

#include <QString>
#include <QStringList>
#include <QTextStream>

namespace qb::test {

struct CliRun
{
    int status = -1;
    QString out;
    QString err;
};

inline CliRun runQuillbox(const QStringList &arguments)
{
    QString out;
    QString err;
    QTextStream outStream(&out);
    QTextStream errStream(&err);
    const int status = qb::cli::RunQuillbox(arguments, outStream, errStream);
    outStream.flush();
    errStream.flush();
    return {status, out, err};
}

} // namespace qb::test
