// The job engine's read loop for one tool run, private to the engine's sources.
#pragma once

#include "engine/ffmpegx.h"
#include "engine/tool_run.h"

namespace qb::engine {

// The read loop of one tool run. Steps posted for a run never reach the next one: each checks
// that its run is still the one under way (the run object lives until its steps are dropped).
struct FFmpegX::Round
{
    enum class Wait { None, Data, Suspended };

    explicit Round(ToolRun *tool)
        : run(tool)
    { }
    ~Round()
    {
        if (run) {
            run->disconnect();
            run->deleteLater(); // never inside its own signals
        }
    }
    Round(const Round &) = delete;
    Round &operator=(const Round &) = delete;

    ToolRun *run;
    std::function<void()> done;
    bool inLoop = false;
    Wait wait = Wait::None;
    qint64 pipeOk = 0; // the last read's result; a failed key clears it and so ends the loop
    bool chunkSinceTick = false;
    QString pipeText; // the chunk between its read and its scan
};

} // namespace qb::engine
