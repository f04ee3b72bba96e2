// The encoder's two generations as tables. The legacy rows are the format table as the tool of the
// "FFmpeg version " banner took it; today's table lists only the rows that changed, each with the
// same intent in today's spelling and what it needs of the tool.
#include "engine/ffmpeg_dialect.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace qb::engine {

namespace {

QString fixed(const char16_t *text)
{
    return text ? QString::fromUtf16(text) : QString();
}

constexpr std::pair<const char16_t *, const char16_t *> kNoRenames[1] = {{u"", u""}};
constexpr std::pair<const char16_t *, const char16_t *> kTodayRenames[] = {
    {u"libfaac", u"aac"},
    {u"libvo_aacenc", u"aac"},
    {u"libaacplus", u"aac"},
    {u"libvo_amrwbenc", u"libopencore_amrnb"},
};

const FFmpegSpellings kLegacy {
    .sameQuality = u" -sameq",
    .x264ConstantQp = u" -cqp ",
    .sizeLimitedAudio = u" -a :a",
    .noFrameRate = u" -re",
    .deinterlaceSwitch = u" -deinterlace",
    .deinterlaceFilter = u"",
    .volume = u" -vol %1",
    .volumeScale = 256,
    .volumeIsFilter = false,
    .timestamp = u" -timestamp %1",
    .timestampFormat = u"HH:mm:ss",
    .strict = {u" -strict very", u" -strict strict", u" -strict normal", u" -strict inofficial",
        u" -strict experimental"},
    .x264Profile = u" -vprofile ",
    .metadataKeys = {u"comment", u"title", u"author", u"copyright", u"composer", u"description"},
    .delogo = u"delogo=%1:%2:%3:%4:10",
    .delogoMargin = 0,
    .mpDelogo = u"mp=delogo=%1:%2:%3:%4:10",
    .ass = u"ass=%1::utf-8",
    .ratio = u"%1:%2",
    .labelledOverlays = false,
    .subtitleSwitches = {u" -scodec ", u" -slang ", u" -stag ", u" -sbsf "},
    .passLogFile = u"",
    .audioReplaceMaps = u" -map 0:0 -map 1:0",
    .delayedAudio = u" -async 1 -map 0:0 -map 1:1",
    .delayedAudioFilter = u"",
    .extraTrackSwitches = {u" -newvideo", u" -newaudio", u" -newsubtitle"},
    .extraTracksAsMaps = false,
    .codecRenames = std::span(kNoRenames, 0),
};

// Measured against ffmpeg 5.1: "-sameq", "-cqp", "-deinterlace", "-newvideo" and the like are
// refused; "-re" is an input option; "-vol" and "-timestamp" are deprecated; "inofficial" is
// misspelt; "mp=" filters are gone; "ass=file::utf-8" and delogo's fifth value fail; "setdar=W:H"
// reads as a ratio of expressions; "author" vanishes from MP4; "-async" is a resampler option;
// "-slang" is gone; delogo interpolates from a one-pixel rim, so the rectangle must leave one.
const FFmpegSpellings kToday {
    .sameQuality = u" -q:v 2",
    .x264ConstantQp = u" -qp ",
    .sizeLimitedAudio = u" -b:a ",
    .noFrameRate = u"",
    .deinterlaceSwitch = u"",
    .deinterlaceFilter = u"yadif",
    .volume = u"volume=%1",
    .volumeScale = 1,
    .volumeIsFilter = true,
    .timestamp = u" -metadata creation_time=%1",
    .timestampFormat = u"yyyy-MM-ddTHH:mm:ss",
    .strict = {u" -strict very", u" -strict strict", u" -strict normal", u" -strict unofficial",
        u" -strict experimental"},
    .x264Profile = u" -profile:v ",
    .metadataKeys = {u"comment", u"title", u"artist", u"copyright", u"composer", u"description"},
    .delogo = u"delogo=x=%1:y=%2:w=%3:h=%4",
    .delogoMargin = 1,
    .mpDelogo = u"",
    .ass = u"ass=%1",
    .ratio = u"%1/%2",
    .labelledOverlays = true,
    .subtitleSwitches = {u" -c:s ", u" -metadata:s:s:0 language=", u" -tag:s ", u" -bsf:s "},
    .passLogFile = u" -passlogfile %1",
    .audioReplaceMaps = u" -map 0:v:0 -map 1:a:0",
    .delayedAudio = u" -map 0:v:0 -map 1:a:0",
    .delayedAudioFilter = u"aresample=async=1",
    .extraTrackSwitches = {u"0:v", u"0:a", u"0:s"},
    .extraTracksAsMaps = true,
    .codecRenames = kTodayRenames,
};

constexpr const char16_t *kTargets
    = u"pal-dvd|ntsc-dvd|film-dvd|pal-vcd|ntsc-vcd|film-vcd|pal-svcd|ntsc-svcd|"
      u"film-svcd|pal-dv|ntsc-dv|film-dv";

// clang-format off
const FormatRow kLegacyRows[] = {
    {kTargets, u"", u"", u" -target {name}", u"mpg", nullptr, nullptr, nullptr, false, u"", u"", u"", SizeRule::Free, nullptr},
    {u"mkv", u"{Vq}", u"{Aq}", u" -f matroska", u"mkv", nullptr, nullptr, nullptr, false, u"matroska", u"", u"", SizeRule::Free, nullptr},
    {u"divx", u"{Vq}", u"{Aq}", u" -vtag divx -f avi", u"avi", nullptr, nullptr, nullptr, false, u"avi", u"", u"", SizeRule::Free, nullptr},
    {u"xvid", u"{Vq}", u"{Aq}", u" -vtag xvid -f avi", u"avi", nullptr, nullptr, nullptr, false, u"avi", u"", u"", SizeRule::Free, nullptr},
    {u"rawavi", u"{Vq}", u"{Aq}", u" -f avi", u"avi", nullptr, nullptr, nullptr, false, u"avi", u"", u"", SizeRule::Free, nullptr},
    {u"h263", u"{Vq}", u"{Aq}", u" -f 3gp", u"3gp", nullptr, nullptr, nullptr, false, u"3gp", u"", u"", SizeRule::Free, nullptr},
    {u"h264", u"{Vq}", u"{Aq}", u"", u"mp4", nullptr, nullptr, nullptr, false, u"mp4", u"", u"", SizeRule::Free, nullptr},
    {u"wmv|asf", u"{Vq}", u"{Aq}", u" -f asf", u"{name}", nullptr, nullptr, nullptr, false, u"asf", u"", u"", SizeRule::Free, nullptr},
    {u"wma", u" -vn", u"{Aq}", u"", u"{name}", nullptr, nullptr, nullptr, false, u"asf", u"", u"", SizeRule::Free, nullptr},
    {u"mp4s", u"{Vq}", u"{Aq}", u" -vtag MP4S -f asf", u"asf", nullptr, nullptr, nullptr, false, u"asf", u"", u"", SizeRule::Free, nullptr},
    {u"rm", u"{Vq}", u"{Aq}", u" -f rm", u"rm", nullptr, nullptr, nullptr, false, u"rm", u"", u"", SizeRule::Free, nullptr},
    {u"psp", u"{Vq}", u"{Aq}", u" -f psp", u"mp4", nullptr, nullptr, nullptr, false, u"psp", u"", u"", SizeRule::Free, nullptr},
    {u"ipod|iphone", u"{Vq}", u"{Aq}", u" -f ipod", u"m4v", nullptr, nullptr, nullptr, false, u"ipod", u"", u"", SizeRule::Free, nullptr},
    {u"svi", u"{Vq}", u"{Aq}", u" -f avi", u"svi", nullptr, nullptr, nullptr, false, u"avi", u"", u"", SizeRule::Free, nullptr},
    {u"mp3|mp2|flac|amr", u" -vn", u"{Aq}", u" -f {name}", u"{name}", nullptr, nullptr, nullptr, false, u"{name}", u"", u"", SizeRule::Free, nullptr},
    {u"ac3", u" -vn", u"{AR} -ar 48000{CH}", u" -f {name}", u"{name}", nullptr, nullptr, nullptr, false, u"ac3", u"", u"", SizeRule::Free, nullptr},
    {u"aac|m4a", u" -vn", u"{Aq}", u" -f mp4", u"{name}", nullptr, nullptr, u" -c:a aac", false, u"mp4", u"", u"aac", SizeRule::Free, nullptr},
    {u"wav", u" -vn", u"{SR}{CH}", u" -f {name}", u"{name}", nullptr, nullptr, nullptr, false, u"wav", u"", u"", SizeRule::Free, nullptr},
    {u"ogg", u" -vn", u"{AR}{SR} -ac 2 ", u" -f {name}", u"{name}", nullptr, nullptr, nullptr, false, u"ogg", u"", u"", SizeRule::Free, nullptr},
    {u"gif", u"{Vq}", u" -an", u" -pix_fmt rgb24 -loop 0 -f gif", u"gif", nullptr, nullptr, nullptr, false, u"gif", u"", u"", SizeRule::Free, nullptr},
    {u"mpeg-ts", u"{Vq}", u"{Aq}", u" -f mpegts", u"ts", nullptr, nullptr, nullptr, false, u"mpegts", u"", u"", SizeRule::Free, nullptr},
    {u"mjpeg", u"{Vq}", u"{Aq}", u" -strict -1 -f avi", u"avi", nullptr, nullptr, nullptr, false, u"avi", u"", u"", SizeRule::Free, nullptr},
    {u"png", u"", u" -an", u" -vframes 1", u"png", nullptr, nullptr, nullptr, false, u"", u"", u"", SizeRule::Free, nullptr},
    {u"video", u" -c:v copy", u" -an", u"", u"{src}", u"mpg", nullptr, nullptr, true, u"", u"", u"", SizeRule::Free, nullptr},
    {u"audio", u" -vn", u" -c:a copy", u"", u"{src}", u"ac3", nullptr, nullptr, true, u"", u"", u"", SizeRule::Free, nullptr},
    {u"palm(428x320)", u" -r 29.97 -s 428x320 -aspect 4:3", u" -ar 44100 -ab 80k -ac 2",
        u" -maxrate 550k -b:v 500k -qmin 3 -qmax 5 -bufsize 4096 -mbd 2 -flags +4mv -trellis -aic -cmp 2 -subcmp 2 -g 300",
        u"mp4", nullptr, u" -c:v libxvid", u" -c:a aac", true, u"mp4", u"libxvid", u"aac", SizeRule::Free, nullptr},
    {u"palm(480x320)", u" -r 29.97 -s 480x320 -aspect 3:2", u" -ar 44100 -ab 80k -ac 2",
        u" -maxrate 450k -b:v 430k -qmin 3 -qmax 5 -bufsize 4096 -mbd 2 -flags +4mv -trellis -aic -cmp 2 -subcmp 2 -g 300",
        u"mp4", nullptr, u" -c:v libxvid", u" -c:a aac", true, u"mp4", u"libxvid", u"aac", SizeRule::Free, nullptr},
    {u"copy", u"", u"", u"", u"{src}", u"mpg", u" -c:v copy", u" -c:a copy", true, u"", u"", u"", SizeRule::Free, nullptr},
    {u"*", u"{Vq}", u"{Aq}", u" -f {name}", u"{name}", nullptr, nullptr, nullptr, false, u"{name}", u"", u"", SizeRule::Free, nullptr},
    {u"", u"{Vq}", u"{Aq}", u"", u"{src}", u"mpg", nullptr, nullptr, false, u"", u"", u"", SizeRule::Free, nullptr},
};

// Today's rows where the legacy spelling fails or misreads (measured on ffmpeg 5.1): 3gp defaults
// to an AMR audio encoder Debian lacks and H.263 takes only its standard sizes; RealVideo needs
// sides in multiples of 16; the avi muxer's default codec is no Motion JPEG; the GIF encoder has
// no rgb24; the palm rows' "-trellis -aic" read "-aic" as the trellis value and the buffer size
// was bits, and "-flags +4mv" reached the audio encoder too; "MP4S" is the MPEG-4 encoder's tag
// in ASF; the film targets label the source's frames with the film rate instead of dropping
// them, so their picture is slowed down unless the rate is converted; DV has no film rate at all
// and carries film in its NTSC form.
const FormatRow kTodayRows[] = {
    {u"film-dvd|film-vcd|film-svcd", u"", u"", u" -target {name}", u"mpg", nullptr, nullptr, nullptr, false, u"", u"", u"", SizeRule::Free, u"fps=24000/1001"},
    {u"film-dv", u"", u"", u" -target ntsc-dv", u"mpg", nullptr, nullptr, nullptr, false, u"", u"", u"", SizeRule::Free, nullptr},
    {u"h263", u"{Vq}", u"{Aq}", u" -f 3gp", u"3gp", nullptr, u" -c:v h263", u" -c:a aac", false, u"3gp", u"h263", u"aac", SizeRule::H263Sizes, nullptr},
    {u"mp4s", u"{Vq}", u"{Aq}", u" -vtag MP4S -f asf", u"asf", nullptr, u" -c:v mpeg4", nullptr, false, u"asf", u"mpeg4", u"", SizeRule::Free, nullptr},
    {u"rm", u"{Vq}", u"{Aq}", u" -f rm", u"rm", nullptr, nullptr, nullptr, false, u"rm", u"rv10", u"ac3", SizeRule::Multiple16, nullptr},
    {u"gif", u"{Vq}", u" -an", u" -loop 0 -f gif", u"gif", nullptr, nullptr, nullptr, false, u"gif", u"gif", u"", SizeRule::Free, nullptr},
    {u"mjpeg", u"{Vq}", u"{Aq}", u" -strict -1 -f avi", u"avi", nullptr, u" -c:v mjpeg", nullptr, false, u"avi", u"mjpeg", u"", SizeRule::Free, nullptr},
    {u"amr", u" -vn", u"{Aq}", u" -f amr", u"amr", nullptr, nullptr, u" -c:a libopencore_amrnb", false, u"amr", u"", u"libopencore_amrnb", SizeRule::Free, nullptr},
    {u"ogg", u" -vn", u"{AR}{SR} -ac 2 ", u" -f {name}", u"{name}", nullptr, nullptr, u" -c:a libvorbis", false, u"ogg", u"", u"libvorbis", SizeRule::Free, nullptr},
    {u"palm(428x320)", u" -r 29.97 -s 428x320 -aspect 4:3", u" -ar 44100 -b:a 80k -ac 2",
        u" -maxrate 550k -b:v 500k -qmin 3 -qmax 5 -bufsize 4096k -mbd 2 -flags:v +mv4 -trellis 1 -cmp 2 -subcmp 2 -g 300",
        u"mp4", nullptr, u" -c:v libxvid", u" -c:a aac", true, u"mp4", u"libxvid", u"aac", SizeRule::Free, nullptr},
    {u"palm(480x320)", u" -r 29.97 -s 480x320 -aspect 3:2", u" -ar 44100 -b:a 80k -ac 2",
        u" -maxrate 450k -b:v 430k -qmin 3 -qmax 5 -bufsize 4096k -mbd 2 -flags:v +mv4 -trellis 1 -cmp 2 -subcmp 2 -g 300",
        u"mp4", nullptr, u" -c:v libxvid", u" -c:a aac", true, u"mp4", u"libxvid", u"aac", SizeRule::Free, nullptr},
};
// clang-format on

bool rowNames(const FormatRow &row, const QString &format)
{
    const QString names = fixed(row.names);
    if (names == u"*"_s)
        return false;
    if (names.isEmpty())
        return format.isEmpty();
    return names.split(u'|').contains(format, Qt::CaseInsensitive);
}

// True when a "|"-joined capability list holds name in any case.
bool listHolds(const QString &list, const QString &name)
{
    return (u'|' + list + u'|').contains(u'|' + name + u'|', Qt::CaseInsensitive);
}

} // namespace

ToolGeneration FFmpegGenerationOf(const QString &coreVersion)
{
    // Release numbers before 1.0 and the old SVN builds spoke the legacy switches; a numbered
    // release from 1.0 on, a git snapshot ("N-...") and an unknown version speak today's.
    static const QRegularExpression legacy(
        u"^(SVN|r\\d|0\\.|Sherpya|UNKNOWN)"_s, QRegularExpression::CaseInsensitiveOption);
    return legacy.match(coreVersion.trimmed()).hasMatch() ? ToolGeneration::Legacy : ToolGeneration::Today;
}

const FFmpegSpellings &SpellingsOf(ToolGeneration generation)
{
    return generation == ToolGeneration::Legacy ? kLegacy : kToday;
}

const FormatRow &FormatRowOf(const QString &format, ToolGeneration generation)
{
    if (generation == ToolGeneration::Today) {
        for (const FormatRow &row : kTodayRows) {
            if (rowNames(row, format))
                return row;
        }
    }
    for (const FormatRow &row : kLegacyRows) {
        if (rowNames(row, format))
            return row;
    }
    return format.isEmpty() ? kLegacyRows[std::size(kLegacyRows) - 1]
                            : kLegacyRows[std::size(kLegacyRows) - 2];
}

QStringList FormatNames()
{
    QStringList names;
    for (const FormatRow &row : kLegacyRows) {
        const QString joined = fixed(row.names);
        if (!joined.isEmpty() && joined != u"*"_s)
            names += joined.split(u'|');
    }
    return names;
}

QString MissingCapability(const FormatRow &row, const QString &name, const CoreFamily &core)
{
    const QString muxer = fixed(row.muxer).replace(u"{name}"_s, name);
    if (!muxer.isEmpty() && !core.CoreFormats.isEmpty() && !listHolds(core.CoreFormats, muxer))
        return u"the tool has no \"%1\" muxer"_s.arg(muxer);
    if (row.videoEncoder && *row.videoEncoder && !core.CoreVideoCodec.isEmpty()
        && !listHolds(core.CoreVideoCodec, fixed(row.videoEncoder)))
        return u"the tool has no \"%1\" video encoder"_s.arg(fixed(row.videoEncoder));
    if (row.audioEncoder && *row.audioEncoder && !core.CoreAudioCodec.isEmpty()
        && !listHolds(core.CoreAudioCodec, fixed(row.audioEncoder)))
        return u"the tool has no \"%1\" audio encoder"_s.arg(fixed(row.audioEncoder));
    return {};
}

} // namespace qb::engine
