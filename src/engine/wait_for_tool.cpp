// The bounded wait for a short run.
#include "engine/wait_for_tool.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <limits>
#include <memory>

namespace qb::engine {

namespace {

constexpr int kKillWaitMs = 2000;

} // namespace

WaitedRun WaitForTool(const ToolLaunch &launch, const WaitBounds &bounds, ToolRun::Output output,
    int priorityClass, const QString &workingDir)
{
    return WaitForTools({launch}, bounds, output, priorityClass, workingDir).front();
}

std::vector<WaitedRun> WaitForTools(const std::vector<ToolLaunch> &launches, const WaitBounds &bounds,
    ToolRun::Output output, int priorityClass, const QString &workingDir)
{
    const QDeadlineTimer deadline(bounds.milliseconds);
    std::vector<WaitedRun> results(launches.size());
    std::vector<std::unique_ptr<ToolRun>> runs;
    std::vector<qint64> bytes(launches.size(), 0);
    for (size_t i = 0; i < launches.size(); ++i) {
        runs.push_back(std::make_unique<ToolRun>(output));
        results[i].started = runs[i]->start(launches[i], priorityClass, workingDir);
        if (results[i].started)
            runs[i]->closeInput();
    }
    // Finished runs leave the loop; a run over its output bound counts as finished, unended.
    std::vector<bool> done(launches.size());
    for (size_t i = 0; i < launches.size(); ++i)
        done[i] = !results[i].started;
    for (;;) {
        ToolRun *waitOn = nullptr;
        int waiting = 0;
        for (size_t i = 0; i < runs.size(); ++i) {
            if (done[i])
                continue;
            ToolRun &run = *runs[i];
            while (run.hasOutput() && bytes[i] <= bounds.outputBytes) {
                const QString piece = run.read();
                bytes[i] += piece.toUtf8().size();
                results[i].output += piece;
            }
            if (bytes[i] > bounds.outputBytes) {
                done[i] = true;
            } else if (run.ended() && !run.hasOutput()) {
                results[i].endedInTime = true;
                results[i].output += run.readRest();
                results[i].exitCode = run.exitCode();
                done[i] = true;
            } else {
                ++waiting;
                if (!waitOn)
                    waitOn = &run;
            }
        }
        if (!waitOn || deadline.hasExpired())
            break;
        // With several runs the waits are short, so that no run's pipe fills while another is
        // waited on; a single run is waited on until it says something.
        const qint64 slice = waiting > 1 ? 10 : std::numeric_limits<int>::max();
        waitOn->waitForActivity(int(std::clamp<qint64>(deadline.remainingTime(), 1, slice)));
    }
    for (size_t i = 0; i < runs.size(); ++i) {
        if (results[i].started && !results[i].endedInTime)
            runs[i]->kill(kKillWaitMs);
    }
    return results;
}

} // namespace qb::engine
