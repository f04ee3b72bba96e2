// What a composer sees of a job: a copy of the engine's settings at the moment a pass starts.
// Composers read it and nothing else, so they can be tested without an engine or a tool.
#pragma once

#include "engine/engine_properties.h"
#include "engine/tool_command.h"

#include <functional>

namespace qb::engine {

struct JobSettings
{
    QString FileName; // the first source
    QString FileInfo; // every source, "|"-joined
    QString OutputDir;
    QString Core; // the tool's path
    QString TempBase; // the job's temporary base name; its siblings carry extensions
    FileOutputFamily FileOutput;
    JobFamily Job;
    CoreFamily CoreState;
    VideoFamily Video;
    AVSFamily AVS;
    ImageFamily Image;
};

// Turns a job into the command for a pass (0 single, 1 and 2 of a two-pass run).
using JobComposer = std::function<ToolCommand(const JobSettings &job, int pass)>;

} // namespace qb::engine
