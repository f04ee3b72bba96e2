// Reading what a tool can do from its listings, for both generations, from recorded output
// replayed in 256-byte reads.
#include "engine/capability_reader.h"
#include "engine/engine_recorder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

QString listings(std::initializer_list<QString> names)
{
    QString joined;
    for (const QString &name : names)
        joined += test::replayJoined(test::recorded(name));
    return joined;
}

TEST(CapabilityReader, LegacyListingsByTheirColumns)
{
    const QString text = listings({u"legacy-listings.txt"_s});
    const Capabilities caps = ReadCapabilities(text, LegacyListings(), u"|"_s);
    // A piped format, a demuxer only and the banner count nowhere; the pixel formats behind the
    // bitstream filters are never read.
    EXPECT_EQ(caps.CoreFormats, u"3GP|AVI|FLV|MP4"_s);
    EXPECT_EQ(caps.CoreVideoCodec, u"COPY|H263|LIBX264|MPEG4"_s);
    EXPECT_EQ(caps.CoreAudioCodec, u"COPY|AC3|LIBMP3LAME"_s);
    EXPECT_EQ(caps.CoreSubtitleCodec, u"COPY|DVDSUB"_s);
    EXPECT_EQ(caps.CoreFilters, u"CROP|SCALE"_s);
    EXPECT_EQ(caps.CorePixelformats, u"YUV420P"_s);
    EXPECT_EQ(ConfigureSwitches(text, u"enable"_s), u"-gpl -libx264 -libmp3lame"_s);
    EXPECT_EQ(ConfigureSwitches(text, u"disable"_s), u"-ffserver -vhook"_s);

    // Without CR LF the legacy reader finds no listing at all.
    QString plain = text;
    plain.remove(u'\r');
    EXPECT_EQ(ReadCapabilities(plain, LegacyListings(), u"|"_s).CoreFormats, QString());
}

TEST(CapabilityReader, SectionRulesOfTheLegacyReader)
{
    struct Case
    {
        const char *name;
        QString text;
        QString formats;
        QString filters;
    };
    const Case cases[] = {
        {"filters follow codecs without data", u"Codecs:\r\nFilters:\r\nnull   Do nothing.\r\n"_s, {},
            u"NULL"_s},
        {"a name with no blank behind it", u"File formats:\r\n  E mpegts\r\n"_s, u"MPEGTS"_s, {}},
        {"legend lines hold '='", u"File formats:\r\n .E = Muxing supported\r\n  E ogg  Ogg\r\n"_s, u"OGG"_s,
            {}},
        {"nothing before a header", u"  E avi  AVI\r\nsharp  x\r\n"_s, {}, {}},
    };
    for (const Case &c : cases) {
        const Capabilities caps = ReadCapabilities(c.text, LegacyListings(), u"|"_s);
        EXPECT_EQ(caps.CoreFormats, c.formats) << c.name;
        EXPECT_EQ(caps.CoreFilters, c.filters) << c.name;
    }
    EXPECT_EQ(ReadCapabilities(u"File formats:\r\n  E a  A\r\n  E b  B\r\n"_s, LegacyListings(), u", "_s)
                  .CoreFormats,
        u"A, B"_s);
}

TEST(CapabilityReader, TodaysListingsGiveEncodersAndFilterNames)
{
    const QString text = listings({u"ffmpeg-5.1-formats.txt"_s, u"ffmpeg-5.1-encoders.txt"_s,
        u"ffmpeg-5.1-filters.txt"_s, u"ffmpeg-5.1-pix_fmts.txt"_s});
    const Capabilities caps = ReadCapabilities(text, TodaysListings(), u"|"_s);
    const auto names = [](const QString &list) { return list.split(u'|'); };
    // Counts made from the same recordings with awk, by flag column and first word.
    EXPECT_EQ(names(caps.CoreFormats).size(), 181);
    EXPECT_EQ(names(caps.CoreVideoCodec).size(), 1 + 122);
    EXPECT_EQ(names(caps.CoreAudioCodec).size(), 1 + 84);
    EXPECT_EQ(names(caps.CoreSubtitleCodec).size(), 1 + 11);
    EXPECT_EQ(names(caps.CoreFilters).size(), 527);
    EXPECT_EQ(names(caps.CorePixelformats).size(), 170);
    for (const QString &encoder : {u"LIBX264"_s, u"MPEG4"_s, u"LIBXVID"_s, u"FLV"_s})
        EXPECT_TRUE(names(caps.CoreVideoCodec).contains(encoder)) << encoder.toStdString();
    for (const QString &encoder : {u"AAC"_s, u"LIBMP3LAME"_s, u"AC3"_s})
        EXPECT_TRUE(names(caps.CoreAudioCodec).contains(encoder)) << encoder.toStdString();
    EXPECT_FALSE(names(caps.CoreAudioCodec).contains(u"LIBFAAC"_s));
    EXPECT_TRUE(names(caps.CoreSubtitleCodec).contains(u"SRT"_s));
    for (const QString &filter : {u"HQDN3D"_s, u"CROPDETECT"_s, u"SCALE"_s, u"MOVIE"_s, u"SETDAR"_s})
        EXPECT_TRUE(names(caps.CoreFilters).contains(filter)) << filter.toStdString();
    EXPECT_TRUE(names(caps.CoreFormats).contains(u"MATROSKA"_s));
    EXPECT_FALSE(caps.CoreFormats.contains(u"MOV,MP4"_s));
    EXPECT_TRUE(names(caps.CorePixelformats).contains(u"YUV420P"_s));
    EXPECT_FALSE(names(caps.CorePixelformats).contains(u"VAAPI"_s));

    const QString banner = test::replayJoined(test::recorded(u"ffmpeg-5.1-banner.txt"_s));
    EXPECT_TRUE(ConfigureSwitches(banner, u"enable"_s).startsWith(u"-gpl -gnutls -ladspa -libaom"_s));
    EXPECT_EQ(ConfigureSwitches(banner, u"disable"_s), u"-stripping -sndio"_s);
}

} // namespace
} // namespace qb::engine
