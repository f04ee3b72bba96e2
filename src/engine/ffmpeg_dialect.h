// How each generation of the encoder spells what a job asks for, as data: the switches that
// changed, and the format table with what each row needs of the tool. The composer consults these
// tables and holds no generation's spelling of its own.
#pragma once

#include "engine/compose_input.h"
#include "engine/engine_properties.h"

#include <QString>
#include <QStringList>

#include <array>
#include <span>

namespace qb::engine {

// Legacy: the tool whose banner reads "FFmpeg version " with a pre-1.0 or SVN version. Today: every
// numbered release from 1.0 on and the git snapshots, whose switches are today's.
ToolGeneration FFmpegGenerationOf(const QString &coreVersion);

struct FFmpegSpellings
{
    const char16_t *sameQuality; // neither size, rate nor quality given
    const char16_t *x264ConstantQp; // x264QualityMode 1, before the value
    const char16_t *sizeLimitedAudio; // the audio share of LimitFileSize, before the rate
    const char16_t *noFrameRate; // FrameRate not above 0
    const char16_t *deinterlaceSwitch; // a switch among the misc switches, or ""
    const char16_t *deinterlaceFilter; // a video filter, or ""
    const char16_t *volume; // %1: the level in volumeScale units per 100
    int volumeScale; // what 100 per cent is in the tool's unit
    bool volumeIsFilter; // the volume is an audio filter, not a switch
    const char16_t *timestamp; // %1: the moment in timestampFormat
    const char16_t *timestampFormat; // a QDateTime format
    std::array<const char16_t *, 5> strict; // Strict 1..5
    const char16_t *x264Profile; // before the profile's name
    std::array<const char16_t *, 6> metadataKeys; // comment, title, author, copyright, composer, description
    const char16_t *delogo; // %1..%4: x, y, w, h
    int delogoMargin; // pixels the blurred rectangle keeps from the picture's edges
    const char16_t *mpDelogo; // the wrapped filter of the older tool; "" when there is none
    const char16_t *ass; // %1: the script's bare name
    const char16_t *ratio; // %1, %2: a display ratio's two sides
    bool labelledOverlays; // overlays joined as labelled chains, not inline
    std::array<const char16_t *, 4> subtitleSwitches; // codec, language, tag, bitstream filter
    const char16_t *passLogFile; // %1: the job's temporary base name; "" to leave it to the tool
    const char16_t *audioReplaceMaps;
    const char16_t *delayedAudio; // after the second input of the delay form
    const char16_t *delayedAudioFilter; // the same intent as an audio filter, or ""
    // Extra tracks: the old switches after the output name, or today's maps before it.
    std::array<const char16_t *, 3> extraTrackSwitches; // video, audio, subtitle
    bool extraTracksAsMaps;
    // Encoder names the tool no longer knows, each with the one that took its place.
    std::span<const std::pair<const char16_t *, const char16_t *>> codecRenames;
};

const FFmpegSpellings &SpellingsOf(ToolGeneration generation);

// One row of the format table. Texts may hold "{Vq}" (rate and frame rate), "{Aq}" (audio rate,
// sample rate and channels), "{AR}", "{SR}", "{CH}" (each of those alone) and "{name}".
struct FormatRow
{
    const char16_t *names; // "|"-joined format names; "*" any other name, "" the empty name
    const char16_t *videoExtra;
    const char16_t *audioExtra;
    const char16_t *formatSwitch;
    const char16_t *extension; // "{src}": the source's; "{name}": the format's name
    const char16_t *driveExtension; // for a drive source when the extension is the source's
    const char16_t *videoCodec; // replaces the video codec switch when set
    const char16_t *audioCodec;
    bool dropSize; // the row sets its own size, or copies
    // What today's tool must have for the row; empty when nothing is checked.
    const char16_t *muxer;
    const char16_t *videoEncoder;
    const char16_t *audioEncoder;
    SizeRule sizeRule;
    const char16_t *videoFilter; // a filter the row's picture needs first, or nullptr
};

// The row a format name picks in a generation's table.
const FormatRow &FormatRowOf(const QString &format, ToolGeneration generation);

// Every format name the table knows by name, in the table's order.
QStringList FormatNames();

// What the tool lacks for a row under name, from its capability lists ("" when it can do it or
// when the lists are unknown).
QString MissingCapability(const FormatRow &row, const QString &name, const CoreFamily &core);

} // namespace qb::engine
