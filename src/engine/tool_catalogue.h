// The tools the engine knows, as data: how each is recognised by its banner, where its version is
// cut from, and the capability lists that are fixed for it. Detection reads this table and
// nothing else; a new tool is a new row.
#pragma once

#include <QString>

#include <span>

namespace qb::engine {

enum class BannerMatch { Contains, BeginsWith };

// One way to cut the version: the text between After and Before, when the text holds When.
struct VersionCut
{
    const char16_t *when; // nullptr: always
    const char16_t *after;
    const char16_t *before;
};

struct ToolKind
{
    int status; // CoreStatus
    const char16_t *name; // CoreName
    BannerMatch match;
    const char16_t *phrase; // found ignoring case with Contains, exactly with BeginsWith
    const char16_t *versionArguments; // a second run prints the version; nullptr: the banner does
    VersionCut cuts[2]; // the first that applies decides
    bool dropTrailingComma;
    // Fixed capability lists, "|"-joined; empty where the tool is asked instead or has none.
    const char16_t *formats;
    const char16_t *videoCodecs;
    const char16_t *audioCodecs;
};

std::span<const ToolKind> ToolCatalogue();

// The kind a banner names; nullptr when it names none of them.
const ToolKind *IdentifyTool(const QString &banner);

// The version cut from the text the kind's version comes from (its banner or its second run).
QString CutToolVersion(const ToolKind &kind, const QString &text);

} // namespace qb::engine
