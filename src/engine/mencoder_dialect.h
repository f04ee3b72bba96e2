// The second encoder's recipes as data: the fixed disc presets, the rows that follow the job's
// properties, audio-only and stream-copy rows, for the legacy tool and for today's, with what
// today's cannot do named instead of a recipe that fails.
#pragma once

#include "engine/compose_input.h"

#include <QString>
#include <QStringList>

namespace qb::engine {

// Legacy: the SVN builds and the releases up to 1.3, on the libraries of their day. Today: 1.4 on
// and the distribution builds ("UNKNOWN-12"), linked against today's codec libraries.
ToolGeneration MEncoderGenerationOf(const QString &coreVersion);

// How a row writes the rate: the x264 family, the xvid family, or the lavc options.
enum class RateFamily { H, X, Lavc };

// One row. Texts may hold "{Rate}" (RateOpts), "{N}" (MaxThreads), "{pass}" (the pass option),
// "{R}" (AudioBitRate), "{S}" (the common scale text), "{C}" (the common resampling text),
// "{CH}" (its channel part alone) and "{name}".
struct MEncoderRow
{
    const char16_t *names; // "|"-joined; "*" any other name
    const char16_t *videoOpts;
    const char16_t *audioOpts;
    const char16_t *scaleOpts;
    const char16_t *resampleOpts;
    const char16_t *containerOpts;
    const char16_t *extension; // "{src}": the source's; "{name}": the format's name
    const char16_t *driveExtension; // for a drive when the extension is the source's
    RateFamily family;
    const char16_t *passKey; // ":vpass=" or ":pass="
    SizeRule sizeRule;
    const char16_t *lacking; // why today's tool cannot make the row, or nullptr
};

const MEncoderRow &MEncoderRowOf(const QString &format, ToolGeneration generation);

// Every format name the table knows by name, in the table's order.
QStringList MEncoderFormatNames();

} // namespace qb::engine
