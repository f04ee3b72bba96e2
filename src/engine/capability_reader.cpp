// The listing reader and the two generations' tables.
#include "engine/capability_reader.h"

namespace qb::engine {

namespace {

using L = CapabilityList;

constexpr ListingSection kLegacySections[] = {
    {u"Pixel formats:", 6, {2, u"o"}, 0, L::PixelFormats, {u"=", nullptr}},
    {u"File formats:", 4, {3, u"e"}, 0, L::Formats, {u"=", u"pipe"}},
    {u"Codecs:", 8, {3, u"e"}, 4, L::VideoCodecs, {u"=", nullptr}},
    {u"Filters:", 0, {0, nullptr}, 0, L::Filters, {u"ffmpeg", nullptr}},
};
constexpr const char16_t *kLegacyArguments[] = {u"-formats", u"-codecs", u"-filters", u"-pix_fmts"};

// Today's listings keep the columns of formats and pixel formats; encoders carry their kind in
// column 2 and filters three flag columns before the name.
constexpr ListingSection kTodaysSections[] = {
    {u"Pixel formats:", 6, {2, u"o"}, 0, L::PixelFormats, {u"=", nullptr}},
    {u"File formats:", 4, {3, u"e"}, 0, L::Formats, {u"=", u"pipe"}},
    {u"Encoders:", 8, {2, u"vas"}, 2, L::VideoCodecs, {u"=", nullptr}},
    {u"Filters:", 5, {2, u"t."}, 0, L::Filters, {u"=", nullptr}},
};
constexpr const char16_t *kTodaysArguments[] = {
    u"-hide_banner -formats", u"-hide_banner -encoders", u"-hide_banner -filters", u"-hide_banner -pix_fmts"};

const ListingGeneration kLegacy {u"Bitstream filters:", kLegacySections, true, kLegacyArguments};
const ListingGeneration kTodays {u"Bitstream filters:", kTodaysSections, false, kTodaysArguments};

QChar column(const QString &line, int oneBased)
{
    return oneBased >= 1 && oneBased <= line.size() ? line.at(oneBased - 1).toLower() : QChar(u' ');
}

void append(QString &list, const QString &name, const QString &separator)
{
    if (!list.isEmpty())
        list += separator;
    list += name;
}

QString *listFor(Capabilities &caps, L list)
{
    switch (list) {
    case L::Formats:
        return &caps.CoreFormats;
    case L::VideoCodecs:
        return &caps.CoreVideoCodec;
    case L::AudioCodecs:
        return &caps.CoreAudioCodec;
    case L::SubtitleCodecs:
        return &caps.CoreSubtitleCodec;
    case L::Filters:
        return &caps.CoreFilters;
    case L::PixelFormats:
        return &caps.CorePixelformats;
    }
    return nullptr;
}

} // namespace

const ListingGeneration &LegacyListings()
{
    return kLegacy;
}

const ListingGeneration &TodaysListings()
{
    return kTodays;
}

Capabilities ReadCapabilities(
    const QString &listings, const ListingGeneration &generation, const QString &separator)
{
    Capabilities caps;
    if (generation.needsCrLf && !listings.contains(QStringLiteral("\r\n")))
        return caps;
    QString text = listings;
    text.remove(u'\r');
    const ListingSection *section = nullptr;
    for (const QString &line : text.split(u'\n')) {
        if (line.contains(QString::fromUtf16(generation.stop)))
            break;
        const ListingSection *opened = nullptr;
        for (const ListingSection &candidate : generation.sections) {
            if (line.contains(QString::fromUtf16(candidate.header))) {
                opened = &candidate;
                break;
            }
        }
        if (opened) {
            section = opened;
            continue;
        }
        if (!section || line.trimmed().isEmpty())
            continue;
        bool refused = false;
        for (const char16_t *phrase : section->refuse)
            refused = refused || (phrase && line.contains(QString::fromUtf16(phrase), Qt::CaseInsensitive));
        if (refused)
            continue;
        if (section->must.column > 0
            && !QString::fromUtf16(section->must.accepted).contains(column(line, section->must.column)))
            continue;
        L list = section->list;
        if (section->kindColumn > 0) {
            const QChar kind = column(line, section->kindColumn);
            if (kind == u'v')
                list = L::VideoCodecs;
            else if (kind == u'a')
                list = L::AudioCodecs;
            else if (kind == u's')
                list = L::SubtitleCodecs;
            else
                continue;
        }
        // The name runs from the column after P to the first blank behind it.
        const qsizetype start = section->nameColumn;
        const qsizetype blank = line.indexOf(u' ', start + 1);
        const QString name = line.mid(start, blank < 0 ? -1 : blank - start).trimmed().toUpper();
        if (!name.isEmpty())
            append(*listFor(caps, list), name, separator);
    }
    return caps;
}

QString ConfigureSwitches(const QString &banner, const QString &word)
{
    QStringList switches;
    if (!banner.contains(word) || !banner.contains(u' '))
        return {};
    for (qsizetype at = banner.indexOf(word); at >= 0; at = banner.indexOf(word, at + 1)) {
        const qsizetype from = at + word.size();
        const qsizetype blank = banner.indexOf(u' ', from);
        const QString value = banner.mid(from, blank < 0 ? -1 : blank - from).trimmed();
        if (!value.isEmpty())
            switches.append(value);
    }
    return switches.join(u' ');
}

} // namespace qb::engine
