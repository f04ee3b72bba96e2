// Reading a source's streams from what the encoder prints for an input alone, from the player
// tool's facts where that text lacks them, and the black borders from a crop-detection run.
// Pure: the callers run the tools.
#pragma once

#include <QString>

#include <optional>

namespace qb::engine {

// What a probe finds out about a source.
struct StreamFacts
{
    double Duration = 0; // seconds
    int VideoWidth = 0; // of the last video stream read
    int VideoHeight = 0;
    QString SourceFormat; // container, lower case
    QString SourceSuffix; // extension, lower case
    QString VideoStreamInfo; // stream lines without blanks, joined by CR LF
    QString AudioStreamInfo;
    QString SubtitleStreamInfo;
    int VideoStreamCount = 0;
    int AudioStreamCount = 0;
    int SubtitleStreamCount = 0;
    QString DefaultVideoStream; // the first stream of each kind; set only when empty
    QString DefaultAudioStream;
    QString DefaultSubtitleStream;
    QString SourceVideoCodec;
    double SourceFrameRate = 0;
    QString SourceAudioCodec;
    long SourceSampleRate = 0;
    double SourceChannels = 0;
    QString streamText; // the stream and title lines, one per line
};

// True when the file's extension is one of a ";"-separated list of "*.ext" patterns (any case).
bool HasListedSuffix(const QString &fileName, const QString &patterns);

// The number of a stream from its line ("Stream#0:1(eng):Audio:..." gives "0:1"); the container's
// stream id in square brackets goes with the language tag.
QString GetStreamNumber(const QString &Text);

// Starts the facts of a source: every field reset, format and suffix from the extension.
StreamFacts FreshFacts(const QString &fileName);

// Reads the encoder's text for an input alone (either generation's stream lines), then names
// the container from its "Input #" line.
void ReadProbeText(const QString &toolText, StreamFacts &facts);

// What the player tool knows of the file, for what the text left unknown.
struct MediaGraphFacts
{
    double duration = 0; // seconds
    int width = 0;
    int height = 0;
    double frameTime = 0; // seconds per frame, on average
};

// Reads the player tool's JSON answer (format duration; the first video stream's size and
// average rate). None when the text is no such answer.
std::optional<MediaGraphFacts> ReadMediaGraphAnswer(const QString &json);

// Takes the graph's length, size and rate where the text left them unknown or the rate differs.
void ApplyMediaGraph(const MediaGraphFacts &graph, StreamFacts &facts);

// The one-line summary: length, container, size text, codecs, picture size, rates, channels;
// unknown parts left out. sizeText is the file's size as the size helpers print it.
QString SummaryFileInfo(const StreamFacts &facts, const QString &sizeText);

// The seek point of a crop detection for a source of this length in seconds.
int CropSeekPoint(double lengthSeconds);

// The first crop the detection printed ("crop=W:H:X:Y"); "" without one. Lines may be cut by
// carriage returns or glued to progress lines.
QString ReadCropDetection(const QString &toolText);

} // namespace qb::engine
