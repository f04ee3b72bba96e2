// The second encoder's rows. The legacy table is the recipes as the older tool took them; today's
// lists only the rows that changed, measured against MEncoder 1.5 on Debian's codec libraries.
#include "engine/mencoder_dialect.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace qb::engine {

namespace {

using enum RateFamily;

constexpr const char16_t *kDvdVideo
    = u" -ovc lavc -lavcopts "
      u"vcodec=mpeg2video:vbitrate=2000:aspect=16/9:trell:mbd=2:keyint=15:vrc_buf_size=1835:"
      u"vrc_maxrate=9600:threads={N}{pass}";
constexpr const char16_t *kDvdVideo18
    = u" -ovc lavc -lavcopts "
      u"vcodec=mpeg2video:vbitrate=2000:aspect=16/9:trell:mbd=2:keyint=18:vrc_buf_size=1835:"
      u"vrc_maxrate=9600:threads={N}{pass}";
constexpr const char16_t *kVcdVideo
    = u" -ovc lavc -lavcopts vcodec=mpeg1video:vbitrate=1152:trell:mbd=2:keyint=15:"
      u"vrc_buf_size=327:vrc_minrate=1152:threads={N}{pass}";
constexpr const char16_t *kVcdVideo18
    = u" -ovc lavc -lavcopts vcodec=mpeg1video:vbitrate=1152:trell:mbd=2:keyint=18:"
      u"vrc_buf_size=327:vrc_minrate=1152:threads={N}{pass}";
constexpr const char16_t *kSvcdVideo
    = u" -ovc lavc -lavcopts vcodec=mpeg2video:vbitrate=2000:trell:mbd=2:keyint=15:"
      u"vrc_buf_size=917:vrc_minrate=600:vrc_maxrate=2500:threads={N}{pass}";
constexpr const char16_t *kSvcdVideo18
    = u" -ovc lavc -lavcopts vcodec=mpeg2video:vbitrate=2000:trell:mbd=2:keyint=18:"
      u"vrc_buf_size=917:vrc_minrate=600:vrc_maxrate=2500:threads={N}{pass}";
constexpr const char16_t *kMp4Video
    = u" -ovc lavc -lavcopts vcodec=mpeg4:aglobal=1:vglobal=1{Rate}:threads={N}{pass}";
constexpr const char16_t *kMkvVideo
    = u" -ovc x264 -ffourcc H264 -x264encopts {Rate}threads={N}:level_idc=13:bframes=0:"
      u"frameref=2:nocabac:global_header:partitions=all{pass}";
constexpr const char16_t *kAviVideo
    = u" -ovc lavc -ffourcc DX50 -lavcopts vcodec=mpeg4{Rate}:threads={N}:turbo{pass}";
constexpr const char16_t *kXvidVideo = u" -ovc xvid -xvidencopts {Rate}threads={N}:turbo{pass}";
constexpr const char16_t *kL1 = u" -oac mp3lame -lameopts cbr:br={R}";
constexpr const char16_t *kF = u" -oac faac -faacopts br={R}:mpeg=4:object=2:raw";
constexpr const char16_t *kAc3 = u" -oac lavc -lavcopts acodec=ac3:abitrate=128";
constexpr const char16_t *kResample48 = u" -af volnorm,lavcresample=48000 -srate 48000";
constexpr const char16_t *kResample44 = u" -af volnorm,lavcresample=44100 -srate 44100";
constexpr const char16_t *kV = u":vpass=";
constexpr const char16_t *kP = u":pass=";

// clang-format off
const MEncoderRow kLegacyRows[] = {
    {u"pal-dvd|pal-dv", kDvdVideo, kAc3, u" -vf scale=720:576,harddup -ofps 25", kResample48, u" -of mpeg -mpegopts format=dvd", u"mpg", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"ntsc-dvd|ntsc-dv|film-dvd|film-dv", kDvdVideo18, kAc3, u" -vf-add scale=720:480,harddup -ofps 30000/1001", kResample48, u" -of mpeg -mpegopts format=dvd", u"mpg", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"pal-vcd", kVcdVideo, u" -oac lavc -lavcopts acodec=mp2:abitrate=224", u" -vf scale=352:288,harddup -ofps 25", kResample44, u" -of mpeg -mpegopts format=xvcd", u"mpg", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"ntsc-vcd|film-vcd", kVcdVideo18, u" -oac lavc -lavcopts acodec=mp2:abitrate=224", u" -vf scale=352:240,harddup -ofps 30000/1001", kResample44, u" -of mpeg -mpegopts format=xvcd", u"mpg", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"pal-svcd", kSvcdVideo, u" -oac lavc -lavcopts acodec=mp2:abitrate=128", u" -vf scale=480:576,harddup -ofps 25", kResample44, u" -of mpeg -mpegopts format=xsvcd", u"mpg", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"ntsc-svcd|film-svcd", kSvcdVideo18, u" -oac lavc -lavcopts acodec=mp2:abitrate=128", u" -vf scale=480:480,harddup -ofps 30000/1001", kResample44, u" -of mpeg -mpegopts format=xsvcd", u"mpg", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"mpeg-ts", kDvdVideo, kAc3, u" -vf scale=720:576,harddup -ofps 25", kResample48, u" -of lavf -lavfopts format=mpegts", u"ts", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"mp4", kMp4Video, kF, u"{S}", u"{C}", u" -of lavf -lavfopts format=mp4", u"mp4", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"h263", u" -ovc lavc -lavcopts vcodec=h263:aglobal=1:vglobal=1{Rate}:threads=1{pass}", kF, u"{S}", u"{C}", u" -of lavf -lavfopts format=3gp", u"3gp", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"3gp", kMp4Video, kF, u"{S}", u"{C}", u" -of lavf -lavfopts format=mp4", u"3gp", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"mkv", kMkvVideo, kF, u"{S}", u"{C}", u" -of lavf -lavfopts format=mkv", u"mkv", nullptr, H, kP, SizeRule::Free, nullptr},
    {u"avi|divx", kAviVideo, kL1, u"{S}", u"{C}", u"", u"avi", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"xvid", kXvidVideo, kL1, u"{S}", u"{C}", u"", u"avi", nullptr, X, kP, SizeRule::Free, nullptr},
    {u"svi", kXvidVideo, kL1, u"{S}", u"{C}", u"", u"svi", nullptr, X, kP, SizeRule::Free, nullptr},
    {u"flv", u" -ovc lavc -lavcopts vcodec=flv{Rate}:threads=1:mbd=2:mv0:trell:v4mv:cbp:last_pred=3{pass}", u" -oac mp3lame -lameopts abr:br={R}", u"{S}", u"{C}", u" -of lavf -lavfopts format=flv", u"flv", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"mov", kMp4Video, kF, u"{S}", u"{C}", u" -of lavf -lavfopts format=mov", u"mov", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"h264", kMkvVideo, kF, u"{S}", u"{C}", u" -of lavf -lavfopts format=mp4", u"mp4", nullptr, H, kP, SizeRule::Free, nullptr},
    {u"wmv|asf", u" -ovc lavc -lavcopts vcodec=wmv2:aglobal=1:vglobal=1{Rate}:threads=1{pass}", u" -oac lavc -lavcopts acodec=wmav2:abitrate={R}", u"{S}", u"{C}", u" -of lavf -lavfopts format={name}", u"{name}", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"psp", u" -ovc x264 -ffourcc H264 -x264encopts {Rate}threads={N}:level_idc=3:bframes=3:frameref=2:nopsnr:nossim{pass}", kF, u"{S}", u"{C}", u" -of lavf -lavfopts format=psp", u"mp4", nullptr, H, kP, SizeRule::Free, nullptr},
    {u"ipod|iphone", kMkvVideo, kF, u"{S}", u"{C}", u" -of lavf -lavfopts format=mp4", u"m4v", nullptr, H, kP, SizeRule::Free, nullptr},
    {u"mjpeg", u" -ovc lavc -lavcopts vcodec=mjpeg{Rate}:threads=1{pass}", u" -oac lavc -lavcopts acodec=pcm_s16le:abitrate={R}", u"{S}", u"{C}", u"", u"avi", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"mpeg", u" -ovc lavc -lavcopts vcodec=mpeg1video{Rate}:threads={N}{pass}", u" -oac lavc -lavcopts acodec=mp2:abitrate={R}", u"{S25}", u"{C}", u" -of mpeg -mpegopts format=xvcd", u"{name}", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"wma", u" -ovc frameno", u" -oac lavc -lavcopts acodec=wmav2:abitrate={R}", u"", u"{C}", u" -of lavf", u"{name}", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"mp3", u" -ovc frameno", kL1, u"", u"{C}", u" -of rawaudio", u"{name}", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"mp2", u" -ovc frameno", u" -oac lavc -lavcopts acodec=mp2:abitrate={R}", u"", u"{C}", u" -of rawaudio", u"{name}", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"aac|m4a", u" -ovc frameno", u" -oac faac -faacopts br={R}:mpeg=2:object=1", u"", u"{C}", u" -of rawaudio", u"{name}", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"ac3", u" -ovc frameno", u" -oac lavc -lavcopts acodec=ac3:abitrate={R}", u"", u"{C}", u" -of rawaudio", u"{name}", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"wav", u" -ovc frameno", u" -oac pcm", u"", u"", u"", u"{name}", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"video", u" -ovc copy", u" -nosound", u"", u"", u"", u"{src}", u"mpg", Lavc, kV, SizeRule::Free, nullptr},
    {u"audio", u" -ovc copy", u" -oac copy", u"", u"", u" -of rawaudio", u"{src}", u"ac3", Lavc, kV, SizeRule::Free, nullptr},
    {u"copy", u" -ovc copy", u" -oac copy", u"", u"", u"", u"{src}", u"ac3", Lavc, kV, SizeRule::Free, nullptr},
    // These set nothing at all, not even an extension: the older tool's gap, kept.
    {u"flac|ogg|gif|png", u"", u"", u"", u"", u"", u"", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"*", kAviVideo, kL1, u"{S}", u"{C}", u"", u"avi", nullptr, Lavc, kV, SizeRule::Free, nullptr},
};

// Measured against MEncoder 1.5: its libavcodec audio refuses every channel layout for AC-3 and
// MP2 (twolame makes MP2 instead), it was built without faac (MP3 takes AAC's place where the
// container carries it, though 3GP does not), "format=mkv" is silently ignored (the muxer is
// "matroska"), FLV takes only 44.1 kHz and its fractions, the VCD-style MPEG muxer writes no
// packets of 48 kHz MP2 below 192 kbit/s, the lavc PCM audio fails like the other lavc audio, and
// no thread count of 0 is taken.
constexpr const char16_t *kTwolame128 = u" -oac twolame -twolameopts br=128";
// The DVD muxer writes an empty file when MP2 runs below 192 kbit/s.
constexpr const char16_t *kTwolame192 = u" -oac twolame -twolameopts br=192";
constexpr const char16_t *kNoAc3 = u"its AC-3 encoder refuses every channel layout with today's codec library";
constexpr const char16_t *kNoAac = u"it was built without the AAC encoder (faac)";
constexpr const char16_t *kNoRecipe = u"it has no recipe for this format";
constexpr const char16_t *kNoSoundOnly = u"its muxer adds a placeholder picture stream to a sound-only file";
constexpr const char16_t *kNoWav = u"it writes PCM sound only inside an AVI file, not as a WAV file";
constexpr const char16_t *kNo3gpAudio = u"it has no audio encoder the 3GP container takes (AAC or AMR)";

// VCD rate control takes its buffer only with a ceiling; an "H264" tag clashes with MP4's own (the
// tool then crashes); FLV's "mv0", "v4mv", "cbp" and "last_pred" options are gone.
constexpr const char16_t *kVcdVideoToday = u" -ovc lavc -lavcopts vcodec=mpeg1video:vbitrate=1152:trell:mbd=2:keyint=15:"
                                           u"vrc_buf_size=327:vrc_minrate=1152:vrc_maxrate=1152:threads={N}{pass}";
constexpr const char16_t *kVcdVideo18Today = u" -ovc lavc -lavcopts vcodec=mpeg1video:vbitrate=1152:trell:mbd=2:keyint=18:"
                                             u"vrc_buf_size=327:vrc_minrate=1152:vrc_maxrate=1152:threads={N}{pass}";
constexpr const char16_t *kMp4X264Video = u" -ovc x264 -x264encopts {Rate}threads={N}:level_idc=13:bframes=0:frameref=2:"
                                          u"nocabac:global_header:partitions=all{pass}";

const MEncoderRow kTodayRows[] = {
    {u"pal-dvd|pal-dv", kDvdVideo, kTwolame192, u" -vf scale=720:576,harddup -ofps 25", kResample48, u" -of mpeg -mpegopts format=dvd", u"mpg", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"ntsc-dvd|ntsc-dv|film-dvd|film-dv", kDvdVideo18, kTwolame192, u" -vf-add scale=720:480,harddup -ofps 30000/1001", kResample48, u" -of mpeg -mpegopts format=dvd", u"mpg", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"pal-vcd", kVcdVideoToday, u" -oac twolame -twolameopts br=224", u" -vf scale=352:288,harddup -ofps 25", kResample44, u" -of mpeg -mpegopts format=xvcd", u"mpg", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"ntsc-vcd|film-vcd", kVcdVideo18Today, u" -oac twolame -twolameopts br=224", u" -vf scale=352:240,harddup -ofps 30000/1001", kResample44, u" -of mpeg -mpegopts format=xvcd", u"mpg", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"pal-svcd", kSvcdVideo, kTwolame128, u" -vf scale=480:576,harddup -ofps 25", kResample44, u" -of mpeg -mpegopts format=xsvcd", u"mpg", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"ntsc-svcd|film-svcd", kSvcdVideo18, kTwolame128, u" -vf scale=480:480,harddup -ofps 30000/1001", kResample44, u" -of mpeg -mpegopts format=xsvcd", u"mpg", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"mpeg-ts", kDvdVideo, kTwolame128, u" -vf scale=720:576,harddup -ofps 25", kResample48, u" -of lavf -lavfopts format=mpegts", u"ts", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"mp4", kMp4Video, kL1, u"{S}", u"{C}", u" -of lavf -lavfopts format=mp4", u"mp4", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"h263", u"", u"", u"", u"", u"", u"3gp", nullptr, Lavc, kV, SizeRule::H263Sizes, kNo3gpAudio},
    {u"3gp", kMp4Video, kL1, u"{S}", u"{C}", u" -of lavf -lavfopts format=mp4", u"3gp", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"mkv", kMkvVideo, kL1, u"{S}", u"{C}", u" -of lavf -lavfopts format=matroska", u"mkv", nullptr, H, kP, SizeRule::Free, nullptr},
    {u"flv", u" -ovc lavc -lavcopts vcodec=flv{Rate}:threads=1:mbd=2:trell{pass}", u" -oac mp3lame -lameopts abr:br={R}", u"{S}", u"{CH} -srate 44100", u" -of lavf -lavfopts format=flv", u"flv", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"mov", kMp4Video, kL1, u"{S}", u"{C}", u" -of lavf -lavfopts format=mov", u"mov", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"h264", kMp4X264Video, kL1, u"{S}", u"{C}", u" -of lavf -lavfopts format=mp4", u"mp4", nullptr, H, kP, SizeRule::Free, nullptr},
    {u"psp", u" -ovc x264 -x264encopts {Rate}threads={N}:level_idc=3:bframes=3:frameref=2:nopsnr:nossim:global_header{pass}", kL1, u"{S}", u"{C}", u" -of lavf -lavfopts format=psp", u"mp4", nullptr, H, kP, SizeRule::Free, nullptr},
    {u"ipod|iphone", kMp4X264Video, kL1, u"{S}", u"{C}", u" -of lavf -lavfopts format=mp4", u"m4v", nullptr, H, kP, SizeRule::Free, nullptr},
    {u"mjpeg", u" -ovc lavc -lavcopts vcodec=mjpeg{Rate}:threads=1{pass}", u" -oac pcm", u"{S}", u"{C}", u"", u"avi", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"mpeg", u" -ovc lavc -lavcopts vcodec=mpeg1video{Rate}:threads={N}{pass}", u" -oac twolame -twolameopts br={R}", u"{S25}", u"{CH} -af lavcresample=44100 -srate 44100", u" -of mpeg -mpegopts format=xvcd", u"{name}", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"mp2", u" -ovc frameno", u" -oac twolame -twolameopts br={R}", u"", u"{C}", u" -of rawaudio", u"{name}", nullptr, Lavc, kV, SizeRule::Free, nullptr},
    {u"aac|m4a", u"", u"", u"", u"", u"", u"{name}", nullptr, Lavc, kV, SizeRule::Free, kNoAac},
    {u"wma", u"", u"", u"", u"", u"", u"{name}", nullptr, Lavc, kV, SizeRule::Free, kNoSoundOnly},
    {u"wav", u"", u"", u"", u"", u"", u"{name}", nullptr, Lavc, kV, SizeRule::Free, kNoWav},
    {u"ac3", u"", u"", u"", u"", u"", u"{name}", nullptr, Lavc, kV, SizeRule::Free, kNoAc3},
    {u"flac|ogg|gif|png", u"", u"", u"", u"", u"", u"{name}", nullptr, Lavc, kV, SizeRule::Free, kNoRecipe},
};
// clang-format on

bool rowNames(const MEncoderRow &row, const QString &format)
{
    const QString names = QString::fromUtf16(row.names);
    return names != u"*"_s && names.split(u'|').contains(format, Qt::CaseInsensitive);
}

} // namespace

ToolGeneration MEncoderGenerationOf(const QString &coreVersion)
{
    static const QRegularExpression legacy(
        u"^(SVN|dev-SVN|1\\.[0-3]|Sherpya)"_s, QRegularExpression::CaseInsensitiveOption);
    return legacy.match(coreVersion.trimmed()).hasMatch() ? ToolGeneration::Legacy : ToolGeneration::Today;
}

const MEncoderRow &MEncoderRowOf(const QString &format, ToolGeneration generation)
{
    if (generation == ToolGeneration::Today) {
        for (const MEncoderRow &row : kTodayRows) {
            if (rowNames(row, format))
                return row;
        }
    }
    for (const MEncoderRow &row : kLegacyRows) {
        if (rowNames(row, format))
            return row;
    }
    return kLegacyRows[std::size(kLegacyRows) - 1];
}

QStringList MEncoderFormatNames()
{
    QStringList names;
    for (const MEncoderRow &row : kLegacyRows) {
        const QString joined = QString::fromUtf16(row.names);
        if (joined != u"*"_s)
            names += joined.split(u'|');
    }
    return names;
}

} // namespace qb::engine
