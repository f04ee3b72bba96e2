// The encoder's command for one pass of a job. Pure: the engine finds the crop, renders the
// overlays, converts the subtitles and names the output beforehand and hands them in; the
// generation's tables decide every spelling.
#pragma once

#include "engine/ffmpeg_dialect.h"
#include "engine/job_settings.h"

#include <QDateTime>
#include <QPoint>
#include <QSize>
#include <QString>

namespace qb::engine {

// The output's extension: the row's, the source's, or FileNameSuffix, in capitals when asked.
QString FFmpegOutputExtension(const JobSettings &job, ToolGeneration generation);

// The output's name before it is numbered past an existing file: OutputDir (else the source's
// folder), the name's additions, the custom or the source's base name, and extension.
QString PlannedOutputName(const JobSettings &job, const QString &extension);

// ClampRange: low below low, else the smaller of value and high.
int ClampRange(int value, int low, int high);

// Where a picture of size item sits on a frame of size frame: keypad alignment 1..9 with the
// padding from the edges, kept inside the frame.
QPoint KeypadPosition(int align, int padding, QSize frame, QSize item);

Composition ComposeFFmpegCommand(const JobSettings &job, const ComposeInput &input);

} // namespace qb::engine
