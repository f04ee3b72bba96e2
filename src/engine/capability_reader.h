// What an encoder tool says it can do, read from its listings. Pure: the caller runs the tool.
// Each tool generation is a table of listing sections (the header that opens it, the column its
// names start at, the flag columns that decide whether and where a name counts); one reader walks
// any of them.
#pragma once

#include <QString>
#include <QStringList>

#include <span>

namespace qb::engine {

enum class CapabilityList { Formats, VideoCodecs, AudioCodecs, SubtitleCodecs, Filters, PixelFormats };

// One flag column that must hold one of the given characters (compared lower-cased).
struct FlagTest
{
    int column; // 1-based; 0: no test
    const char16_t *accepted;
};

struct ListingSection
{
    const char16_t *header; // a line holding it opens the section and is no data
    int nameColumn; // the name starts right after this many columns
    FlagTest must; // a line counts only when this holds
    int kindColumn; // 0: every name goes to list; else v, a or s here picks the codec list
    CapabilityList list;
    const char16_t *refuse[2]; // a data line holding one of these (in any case) does not count
};

struct ListingGeneration
{
    const char16_t *stop; // a line holding it ends the reading
    std::span<const ListingSection> sections;
    bool needsCrLf; // the generation printed CR LF; a text without one holds no listing
    // The listings to ask for, each an argument of its own run.
    std::span<const char16_t *const> arguments;
};

// The listings as the older generation printed them (codec flags from "-codecs"), and as today's
// tool prints them (encoders from "-encoders", filter flags before the name).
const ListingGeneration &LegacyListings();
const ListingGeneration &TodaysListings();

struct Capabilities
{
    QString CoreFormats;
    QString CoreVideoCodec = QStringLiteral("COPY");
    QString CoreAudioCodec = QStringLiteral("COPY");
    QString CoreSubtitleCodec = QStringLiteral("COPY");
    QString CoreFilters;
    QString CorePixelformats;
};

// Reads the joined output of a generation's listing runs; names upper-cased and joined by
// separator.
// Before the first section header nothing counts (the banner a run prints first).
Capabilities ReadCapabilities(
    const QString &listings, const ListingGeneration &generation, const QString &separator);

// The configure switches of a banner that follow word ("enable" or "disable"), each up to the
// next blank, joined by one blank.
QString ConfigureSwitches(const QString &banner, const QString &word);

} // namespace qb::engine
