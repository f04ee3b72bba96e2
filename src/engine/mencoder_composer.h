// The second encoder's command for one pass of a job: six texts filled from the format's row,
// joined around the input. Pure: the engine finds the subtitle and names the output beforehand.
#pragma once

#include "engine/compose_input.h"
#include "engine/job_settings.h"

#include <QString>

namespace qb::engine {

// The output's extension: the row's, the source's (a drive's named one), or FileNameSuffix, in
// capitals when asked. Empty for the rows that set nothing.
QString MEncoderOutputExtension(const JobSettings &job, ToolGeneration generation);

Composition ComposeMEncoderCommand(const JobSettings &job, const ComposeInput &input);

} // namespace qb::engine
