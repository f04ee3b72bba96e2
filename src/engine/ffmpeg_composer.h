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

// Files the filter chain refers to, by bare name (the tool runs in their folder); empty when
// there is none.
struct FilterFiles
{
    QString autoCrop; // "crop=W:H:X:Y" as the crop detection found it
    QString textPicture;
    QSize textSize;
    QString imagePicture;
    QSize imageSize;
    QString subtitle;
    QString overallSubtitle;
    QString watermark;
};

struct FFmpegComposeInput
{
    int pass = 0; // 0 single, 1 and 2 of two passes
    bool useFilterScale = true;
    FFmpegGeneration generation = FFmpegGeneration::Today;
    QString inputName; // the source, or the script that stands for it
    QString outputFileName;
    QSize target; // the picture size the job aims at
    QDateTime now;
    bool sourceInTempFolder = false;
    bool audioReplaceFound = false; // AudioReplaceFileName names an existing file
    FilterFiles files;
};

struct FFmpegComposition
{
    QString command; // the text; it starts by the command-line rules
    QString outputInfo;
    QSize target; // after the row's size rule
    QString refusal; // why this tool cannot do the job; nothing is to run when set
};

// The output's extension: the row's, the source's, or FileNameSuffix, in capitals when asked.
QString FFmpegOutputExtension(const JobSettings &job, FFmpegGeneration generation);

// The output's name before it is numbered past an existing file: OutputDir (else the source's
// folder), the name's additions, the custom or the source's base name, and extension.
QString PlannedOutputName(const JobSettings &job, const QString &extension);

// ClampRange: low below low, else the smaller of value and high.
int ClampRange(int value, int low, int high);

// Where a picture of size item sits on a frame of size frame: keypad alignment 1..9 with the
// padding from the edges, kept inside the frame.
QPoint KeypadPosition(int align, int padding, QSize frame, QSize item);

FFmpegComposition ComposeFFmpegCommand(const JobSettings &job, const FFmpegComposeInput &input);

} // namespace qb::engine
