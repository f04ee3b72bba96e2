// Running outside programs from tests.
#include "support/tool_run.h"

#include <QProcess>

namespace qb::test {

ToolResult runTool(const QString &program, const QStringList &args, const QString &folder)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    if (!folder.isEmpty())
        process.setWorkingDirectory(folder);
    process.start(program, args);
    if (!process.waitForStarted(10000))
        return {-1, QStringLiteral("cannot start ") + program};
    process.waitForFinished(600000);
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
        QString::fromUtf8(process.readAll())};
}

} // namespace qb::test
