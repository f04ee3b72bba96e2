// Short runs that are synchronous by contract (a banner, a listing, a helper program): the call
// waits for the tool, but never without limit. Past the time or output bound the tool's group is
// killed and the call returns what it has.
#pragma once

#include "engine/tool_run.h"
#include "util/process_priority.h"

#include <vector>

namespace qb::engine {

struct WaitBounds
{
    int milliseconds = 10000;
    qint64 outputBytes = qint64(1) << 20; // of text read; more ends the run
};

struct WaitedRun
{
    bool started = false;
    bool endedInTime = false; // false when a bound ended it
    std::optional<int> exitCode; // when it ended normally
    QString output; // empty unless the output was read
};

// Runs the tool with its standard input closed and waits within the bounds.
WaitedRun WaitForTool(const ToolLaunch &launch, const WaitBounds &bounds,
    ToolRun::Output output = ToolRun::Output::Read, int priorityClass = util::kPriorityNormal,
    const QString &workingDir = {});

// Runs several tools side by side (a probe asks two at once) and waits for all within the same
// bounds, each output bounded on its own. The results are in the order of the launches.
std::vector<WaitedRun> WaitForTools(const std::vector<ToolLaunch> &launches, const WaitBounds &bounds,
    ToolRun::Output output = ToolRun::Output::Read, int priorityClass = util::kPriorityNormal,
    const QString &workingDir = {});

} // namespace qb::engine
