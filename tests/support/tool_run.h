// Running an outside program (an oracle such as cabextract or 7-Zip) from a test.
#pragma once

#include <QString>
#include <QStringList>

namespace qb::test {

struct ToolResult
{
    int exitCode = -1; // -1 when it could not start or crashed
    QString output; // standard output and standard error together
};

// Runs a program to its end (at most ten minutes), in folder when one is given.
ToolResult runTool(const QString &program, const QStringList &args, const QString &folder = {});

} // namespace qb::test
