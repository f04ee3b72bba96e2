// The bounded wait for a short run.
#include "engine/wait_for_tool.h"

#include <QDeadlineTimer>

namespace qb::engine {

namespace {

constexpr int kKillWaitMs = 2000;

} // namespace

WaitedRun WaitForTool(const ToolLaunch &launch, const WaitBounds &bounds, ToolRun::Output output,
    int priorityClass, const QString &workingDir)
{
    WaitedRun result;
    const QDeadlineTimer deadline(bounds.milliseconds);
    ToolRun run(output);
    if (!run.start(launch, priorityClass, workingDir))
        return result;
    result.started = true;
    run.closeInput();
    qint64 bytes = 0;
    for (;;) {
        while (run.hasOutput() && bytes <= bounds.outputBytes) {
            const QString piece = run.read();
            bytes += piece.toUtf8().size();
            result.output += piece;
        }
        if (bytes > bounds.outputBytes || deadline.hasExpired())
            break;
        if (run.ended() && !run.hasOutput()) {
            result.endedInTime = true;
            break;
        }
        run.waitForActivity(int(std::max<qint64>(1, deadline.remainingTime())));
    }
    if (result.endedInTime) {
        result.output += run.readRest();
        result.exitCode = run.exitCode();
    } else {
        run.kill(kKillWaitMs);
    }
    return result;
}

} // namespace qb::engine
