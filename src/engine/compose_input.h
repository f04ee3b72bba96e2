// What every encoder's composer is given besides the job, and what it hands back. The engine finds
// the crop, renders the overlays, converts the subtitles and names the output beforehand; the
// composers start nothing.
#pragma once

#include <QDateTime>
#include <QSize>
#include <QString>

namespace qb::engine {

// The generation of a tool: the spelling its old releases took, or today's.
enum class ToolGeneration { Legacy, Today };

// What the size of a format's picture must satisfy.
enum class SizeRule { Free, Multiple16, H263Sizes };

// The rule applied to a picture size.
void ApplySizeRule(SizeRule rule, int &width, int &height);

struct JobSettings;

// An output's extension from a format row's: "{name}" the format's name, "{src}" the source's (for
// a drive, driveExtension), else as written; FileNameSuffix replaces it, in capitals when asked.
QString OutputExtension(const JobSettings &job, const char16_t *rowExtension, const char16_t *driveExtension);

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

struct ComposeInput
{
    int pass = 0; // 0 single, 1 and 2 of two passes
    bool useFilterScale = true;
    ToolGeneration generation = ToolGeneration::Today;
    QString inputName; // the source, or the script that stands for it
    QString outputFileName;
    QSize target; // the picture size the job aims at
    QDateTime now;
    bool sourceInTempFolder = false;
    bool audioReplaceFound = false; // AudioReplaceFileName names an existing file
    QString subtitleFile; // the subtitle the second encoder draws itself, "" for none
    FilterFiles files;
};

struct Composition
{
    QString command; // the text; it starts by the command-line rules
    QString outputInfo;
    QSize target; // after the format's size rule
    QString refusal; // why this tool cannot do the job; nothing is to run when set
};

} // namespace qb::engine
