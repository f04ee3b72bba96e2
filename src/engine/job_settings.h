// What a composer sees of a job: a copy of the engine's settings at the moment a pass starts.
// Composers read it and nothing else, so they can be tested without an engine or a tool.
#pragma once

#include "engine/engine_properties.h"
#include "engine/stream_probe.h"
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
    double Duration = 0; // seconds, from the last probe
    StreamFacts Source; // what the last probe found of the source
    FileOutputFamily FileOutput;
    JobFamily Job;
    CoreFamily CoreState;
    VideoFamily Video;
    AudioFamily Audio;
    SubtitleFamily Subtitle;
    AVSFamily AVS;
    AVFilterFamily AVFilter;
    AVFilterVideoWatermarkFamily AVFilterVideoWatermark;
    AVFilterVideoSubtitleFamily AVFilterVideoSubtitle;
    MencFamily Menc;
    MetaDataFamily MetaData;
    x264Family x264;
    ImageFamily Image;
    ImageWatermarkFamily ImageWatermark;
};

// Turns a job into the command for a pass (0 single, 1 and 2 of a two-pass run).
using JobComposer = std::function<ToolCommand(const JobSettings &job, int pass)>;

} // namespace qb::engine
