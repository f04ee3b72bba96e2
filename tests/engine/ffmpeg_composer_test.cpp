// The encoder's command as each generation spells it. The legacy cases are the documented
// commands to the character; today's cases check the spellings that changed.
#include "engine/command_template.h"
#include "engine/ffmpeg_composer.h"

#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

JobSettings baseJob()
{
    JobSettings job;
    job.FileName = u"/media/in.avi"_s;
    job.Core = u"/opt/ff/ffmpeg"_s;
    job.OutputDir = u"/out"_s;
    job.TempBase = u"/tmp/qbx1"_s;
    job.Video.VideoWidth = 640;
    job.Video.VideoHeight = 360;
    job.CoreState.CoreFilters = u"CROP|PAD|SCALE|DELOGO|UNSHARP|HQDN3D|ASS|MOVIE|OVERLAY"_s;
    return job;
}

ComposeInput inputFor(const JobSettings &job, ToolGeneration generation, QSize target = {})
{
    ComposeInput input;
    input.generation = generation;
    input.inputName = job.FileName;
    input.outputFileName = u"/out/o.x"_s;
    input.target = target.isEmpty() ? QSize(job.Video.VideoWidth, job.Video.VideoHeight) : target;
    return input;
}

QString legacy(const JobSettings &job, QSize target = {})
{
    return ComposeFFmpegCommand(job, inputFor(job, ToolGeneration::Legacy, target)).command;
}

QString today(const JobSettings &job, QSize target = {})
{
    return ComposeFFmpegCommand(job, inputFor(job, ToolGeneration::Today, target)).command;
}

TEST(FFmpegLegacyCommand, NothingSetKeepsQualityAndTheSourcesExtension)
{
    const JobSettings job = baseJob();
    EXPECT_EQ(legacy(job), uR"("/opt/ff/ffmpeg" -y -i "/media/in.avi" -sameq -re "/out/o.x")"_s);
    EXPECT_EQ(FFmpegOutputExtension(job, ToolGeneration::Legacy), u"avi"_s);
    EXPECT_EQ(PlannedOutputName(job, u"avi"_s), u"/out/in.avi"_s);
}

TEST(FFmpegLegacyCommand, SizeLimitSharesTheBudgetNineToOne)
{
    JobSettings job = baseJob();
    job.Job.LimitFileSize = 100;
    job.Job.TimeEndPoint = 600;
    EXPECT_EQ(legacy(job),
        uR"("/opt/ff/ffmpeg" -y -t 600 -i "/media/in.avi" -b:v 1229K -bt 1229K -re -a :a137K "/out/o.x")"_s);
    EXPECT_TRUE(today(job).contains(u" -b:v 1229K -bt 1229K -b:a 137K "_s));
}

TEST(FFmpegLegacyCommand, SingleSwitchesByTheirProperties)
{
    struct Case
    {
        const char *name;
        std::function<void(JobSettings &)> set;
        QString legacyPart; // expected in the legacy command ("" : see absent)
        QString todayPart;
        QString absent; // must be in neither
    };
    const Case cases[] = {
        {"strict 0", [](JobSettings &j) { j.Job.Strict = 0; }, {}, {}, u"-strict"_s},
        {"strict 4", [](JobSettings &j) { j.Job.Strict = 4; }, u" -strict inofficial"_s,
            u" -strict unofficial"_s, {}},
        {"strict 5", [](JobSettings &j) { j.Job.Strict = 5; }, u" -strict experimental"_s,
            u" -strict experimental"_s, {}},
        {"rotate 180", [](JobSettings &j) { j.AVFilter.AVFilterVideoRotate = 180; },
            uR"( -vf "[in]hflip, vflip[out]")"_s, uR"( -vf "[in]hflip, vflip[out]")"_s, {}},
        {"sharpen without the filter",
            [](JobSettings &j) {
                j.AVFilter.AVFilterVideoSharp = 1;
                j.CoreState.CoreFilters = u"CROP|SCALE"_s;
            },
            {}, {}, u"unsharp"_s},
        {"sharpen", [](JobSettings &j) { j.AVFilter.AVFilterVideoSharp = 2; },
            u"[in]unsharp=5:5:-1:5:5:0[out]"_s, u"[in]unsharp=5:5:-1:5:5:0[out]"_s, {}},
        {"constant quantiser",
            [](JobSettings &j) {
                j.FileOutput.ForceFormat = u"h264"_s;
                j.Video.VideoVBR = 20;
                j.x264.x264QualityMode = 1;
            },
            u" -cqp 20"_s, u" -qp 20"_s, {}},
        {"vp8 quality",
            [](JobSettings &j) {
                j.Video.VideoCodec = u"libvpx"_s;
                j.Video.VideoVBR = 30;
            },
            u" -c:v libvpx -crf 30"_s, u" -c:v libvpx -crf 30"_s, {}},
        {"other quality", [](JobSettings &j) { j.Video.VideoVBR = 4; }, u" -q:v 4 -re"_s, u" -q:v 4 \""_s,
            {}},
        {"bit rates",
            [](JobSettings &j) {
                j.Video.VideoBitRate = 800;
                j.Audio.AudioBitRate = 96;
                j.Audio.AudioSampleRate = 44100;
                j.Audio.AudioChannels = 2;
                j.Video.FrameRate = 29.97;
            },
            u" -b:v 800K -bt 800K -r 29.97 -ab 96K -ar 44100 -ac 2"_s,
            u" -b:v 800K -bt 800K -r 29.97 -ab 96K -ar 44100 -ac 2"_s, {}},
        {"deinterlace", [](JobSettings &j) { j.Video.Deinterlace = true; }, u" -deinterlace"_s,
            u"[in]yadif[out]"_s, {}},
        {"volume", [](JobSettings &j) { j.Audio.AudioVolume = 150; }, u" -vol 384"_s,
            uR"( -af "volume=1.5")"_s, {}},
        {"profile high", [](JobSettings &j) { j.x264.x264Profile = 3; }, u" -vprofile high -8x8dct 1"_s,
            u" -profile:v high -8x8dct 1"_s, {}},
        {"profile main",
            [](JobSettings &j) {
                j.x264.x264Profile = 2;
                j.x264.x264Preset = 7;
                j.x264.x264Tune = 8;
                j.x264.x264Level = 4.1;
                j.x264.x264Refs = 3;
            },
            u" -vprofile main -preset slow -tune zerolatency -level 4.1 -refs 3"_s,
            u" -profile:v main -preset slow"_s, u"8x8dct"_s},
        {"threads for h264",
            [](JobSettings &j) {
                j.FileOutput.ForceFormat = u"h264"_s;
                j.Job.MaxThreads = 4;
            },
            u" -threads 4"_s, u" -threads 4"_s, {}},
        {"no threads for wmv",
            [](JobSettings &j) {
                j.FileOutput.ForceFormat = u"wmv"_s;
                j.Video.VideoCodec = u"libx264"_s;
                j.Job.MaxThreads = 4;
            },
            {}, {}, u"-threads"_s},
        {"subtitle switches",
            [](JobSettings &j) {
                j.Subtitle.SubtitleCodec = u"mov_text"_s;
                j.Subtitle.SubtitleLanguage = u"eng"_s;
            },
            u" -scodec mov_text -slang eng"_s, u" -c:s mov_text -metadata:s:s:0 language=eng"_s, {}},
        {"codec overrides",
            [](JobSettings &j) {
                j.Video.VideoCodec = u"MPEG4"_s;
                j.Audio.AudioCodec = u"libfaac"_s;
                j.Video.VideoPixelformats = u"YUV420P"_s;
            },
            u" -c:v mpeg4 -pix_fmt yuv420p -sameq -re -c:a libfaac"_s, u" -c:a aac"_s, {}},
        {"metadata",
            [](JobSettings &j) {
                j.MetaData.MetaData_Title = u"On %FileName%"_s;
                j.MetaData.MetaData_Author = u"Me \"too\""_s;
            },
            uR"( -metadata title="On in" -metadata author="Me \"too\"")"_s,
            uR"( -metadata artist="Me \"too\"")"_s, {}},
        {"copy row", [](JobSettings &j) { j.FileOutput.ForceFormat = u"copy"_s; },
            u" -y -i \"/media/in.avi\" -c:v copy -c:a copy \""_s, u" -c:v copy -c:a copy \""_s, {}},
        {"target row", [](JobSettings &j) { j.FileOutput.ForceFormat = u"pal-dvd"_s; },
            u" -target pal-dvd \"/out/o.x\""_s, u" -target pal-dvd \"/out/o.x\""_s, {}},
        {"gif row", [](JobSettings &j) { j.FileOutput.ForceFormat = u"gif"_s; },
            u" -an -pix_fmt rgb24 -loop 0 -f gif"_s, u" -an -loop 0 -f gif"_s, {}},
        {"audio only row",
            [](JobSettings &j) {
                j.FileOutput.ForceFormat = u"ac3"_s;
                j.Audio.AudioBitRate = 192;
                j.Audio.AudioChannels = 6;
            },
            u" -vn -ab 192K -ar 48000 -ac 6 -f ac3"_s, u" -vn -ab 192K -ar 48000 -ac 6 -f ac3"_s, {}},
        {"xvid aspect", [](JobSettings &j) { j.FileOutput.ForceFormat = u"xvid"_s; },
            u" -aspect 1.7778 -sameq -re"_s, u" -aspect 1.7778 -q:v 2"_s, {}},
        {"delogo",
            [](JobSettings &j) {
                j.AVFilter.AVFilterRectBlurEnabled = true;
                j.AVFilter.AVFilterRectBlurX = -10;
                j.AVFilter.AVFilterRectBlurY = 300;
                j.AVFilter.AVFilterRectBlurW = 50;
                j.AVFilter.AVFilterRectBlurH = 100;
            },
            u"[in]delogo=0:300:40:60:10[out]"_s, u"[in]delogo=x=1:y=300:w=39:h=59[out]"_s, {}},
        {"3D left half", [](JobSettings &j) { j.AVFilter.AVFilterVideoCropFrom3D = 2; },
            u"crop=320:360:320:0,scale=640:360,setdar=640:360"_s,
            u"crop=320:360:320:0,scale=640:360,setdar=640/360"_s, {}},
        {"pad colour",
            [](JobSettings &j) {
                j.Video.VideoPadTop = 10;
                j.Video.VideoPadBottom = 10;
                j.Video.VideoPadColor = u"0000FF"_s;
            },
            u"[in]pad=640:380:0:10:0xFF0000[out]"_s, u"pad=640:380:0:10:0xFF0000"_s, {}},
        {"timed subtitles", [](JobSettings &) {}, {}, {}, u"ass="_s},
    };
    for (const Case &c : cases) {
        JobSettings job = baseJob();
        c.set(job);
        const QString old = legacy(job);
        const QString now = today(job);
        if (!c.legacyPart.isEmpty()) {
            EXPECT_TRUE(old.contains(c.legacyPart)) << c.name << "\n" << old.toStdString();
        }
        if (!c.todayPart.isEmpty()) {
            EXPECT_TRUE(now.contains(c.todayPart)) << c.name << "\n" << now.toStdString();
        }
        if (!c.absent.isEmpty()) {
            EXPECT_FALSE(old.contains(c.absent) || now.contains(c.absent)) << c.name << "\n"
                                                                           << old.toStdString();
        }
    }
}

TEST(FFmpegLegacyCommand, FittingTheShapeByPadBorder)
{
    // 640x360 into 640x480 (B below A) and into 640x240 (B above A).
    const struct
    {
        int padBorder;
        QSize target;
        QString chain;
    } cases[] = {
        {1, {640, 480}, u"pad=640:480:0:60,scale=640:480"_s},
        {2, {640, 480}, u"crop=480:360:80:0,scale=640:480"_s},
        {3, {640, 480}, u"pad=640:480:0:60,scale=640:480"_s},
        {4, {640, 480}, u"crop=480:360:80:0,scale=640:480"_s},
        {1, {640, 240}, u"crop=640:240:0:60,scale=640:240"_s},
        {2, {640, 240}, u"pad=960:360:160:0,scale=640:240"_s},
        {3, {640, 240}, u"pad=960:360:160:0,scale=640:240"_s},
        {4, {640, 240}, u"crop=640:240:0:60,scale=640:240"_s},
        {1, {320, 180}, u"scale=320:180"_s},
    };
    for (const auto &c : cases) {
        JobSettings job = baseJob();
        job.Video.PadBorder = c.padBorder;
        EXPECT_TRUE(legacy(job, c.target).contains(u"\"[in]"_s + c.chain + u"[out]\""_s))
            << c.padBorder << " " << legacy(job, c.target).toStdString();
    }
}

TEST(FFmpegLegacyCommand, CommandForms)
{
    JobSettings job = baseJob();
    job.Job.TimeStartPoint = 5;
    job.Job.TimeEndPoint = 15;
    job.Audio.AudioStreamDelay = 0.5;
    EXPECT_EQ(legacy(job),
        uR"("/opt/ff/ffmpeg" -y -ss 5 -t 10 -i "/media/in.avi" -itsoffset 0.5 -ss 5 -t 10 -i "/media/in.avi" -async 1 -map 0:0 -map 1:1 -sameq -re "/out/o.x")"_s);
    EXPECT_EQ(today(job),
        uR"("/opt/ff/ffmpeg" -y -ss 5 -t 10 -i "/media/in.avi" -itsoffset 0.5 -ss 5 -t 10 -i "/media/in.avi" -map 0:v:0 -map 1:a:0 -q:v 2 -af "aresample=async=1" "/out/o.x")"_s);

    job.Audio.AudioStreamDelay = 0;
    job.AVS.AVSEnabled = true;
    ComposeInput input = inputFor(job, ToolGeneration::Legacy);
    input.inputName = u"/tmp/qbx1.avs"_s;
    EXPECT_EQ(ComposeFFmpegCommand(job, input).command,
        uR"("/opt/ff/ffmpeg" -y -i "/tmp/qbx1.avs" -sameq -re "/out/o.x")"_s);

    job = baseJob();
    job.FileName = u"E:"_s;
    EXPECT_EQ(legacy(job),
        uR"("/opt/ff/mencoder" -dvd-device "e:"/ dvd://1 -really-quiet -oac copy -ovc copy -o -|"/opt/ff/ffmpeg" -y -i - -sameq -re "/out/o.x")"_s);
    EXPECT_EQ(FFmpegOutputExtension(job, ToolGeneration::Legacy), u"mpg"_s);
}

TEST(FFmpegLegacyCommand, ReplacedAudioExtraTracksAndPasses)
{
    JobSettings job = baseJob();
    job.Audio.MultiAudioTrackSupport = true;
    job.Audio.AudioStreamCount = 3;
    job.Job.Twopass = true;
    ComposeInput input = inputFor(job, ToolGeneration::Legacy);
    input.pass = 1;
    EXPECT_EQ(ComposeFFmpegCommand(job, input).command,
        uR"("/opt/ff/ffmpeg" -y -i "/media/in.avi" -sameq -re -an -sn -pass 1 "/out/o.x" -newaudio -newaudio)"_s);
    input.generation = ToolGeneration::Today;
    input.pass = 2;
    EXPECT_EQ(ComposeFFmpegCommand(job, input).command,
        uR"("/opt/ff/ffmpeg" -y -i "/media/in.avi" -q:v 2 -pass 2 -passlogfile "/tmp/qbx1" -map 0:v:0? -map 0:a? "/out/o.x")"_s);

    input.audioReplaceFound = true;
    job.Audio.AudioReplaceFileName = u"/m/voice.wav"_s;
    job.Job.TimeEndPoint = 8;
    input.generation = ToolGeneration::Legacy;
    input.pass = 0;
    EXPECT_EQ(ComposeFFmpegCommand(job, input).command,
        uR"("/opt/ff/ffmpeg" -y -t 8 -i "/media/in.avi" -t 8 -i "/m/voice.wav" -map 0:0 -map 1:0 -sameq -re "/out/o.x" -newaudio -newaudio)"_s);
}

TEST(FFmpegLegacyCommand, AdditionalTextByPass)
{
    // Pass 1 of a two-pass x264 job takes the first-pass text; every other command the general one,
    // or the first-pass text when the general one is empty.
    const struct
    {
        bool x264;
        int pass;
        const char16_t *all;
        const char16_t *first;
        const char16_t *chosen;
    } cases[] = {
        {true, 1, u"-g 1", u"-g 2", u" -g 2"},
        {true, 2, u"-g 1", u"-g 2", u" -g 1"},
        {false, 1, u"-g 1", u"-g 2", u" -g 1"},
        {true, 2, u"", u"-g 2", u" -g 2"},
        {true, 1, u"-g 1", u"", u" -g 1"},
    };
    for (const auto &c : cases) {
        JobSettings job = baseJob();
        job.Job.Twopass = true;
        job.Video.VideoCodec = c.x264 ? u"libx264"_s : u"mpeg4"_s;
        job.Job.AdditionalScripts = QString::fromUtf16(c.all);
        job.Job.AdditionalPass1Scripts = QString::fromUtf16(c.first);
        ComposeInput input = inputFor(job, ToolGeneration::Legacy);
        input.pass = c.pass;
        const QString command = ComposeFFmpegCommand(job, input).command;
        EXPECT_TRUE(command.contains(QString::fromUtf16(c.chosen) + u" -pass"_s)) << command.toStdString();
    }
}

TEST(FFmpegLegacyCommand, OverlaysSitOnTheKeypadAndBurnInAfterThem)
{
    JobSettings job = baseJob();
    job.AVFilter.AVFilterTextAlign = 3;
    job.AVFilter.AVFilterTextPadding = 5;
    job.AVFilter.AVFilterImageAlign = 5;
    ComposeInput input = inputFor(job, ToolGeneration::Legacy);
    input.files.textPicture = u"qbx11.png"_s;
    input.files.textSize = {100, 20};
    input.files.imagePicture = u"qbx12.png"_s;
    input.files.imageSize = {64, 64};
    input.files.subtitle = u"qbx13.ass"_s;
    EXPECT_TRUE(
        ComposeFFmpegCommand(job, input)
            .command.contains(
                uR"( -vf "movie=qbx11.png [wm1],movie=qbx12.png [wm2],[in][wm2] overlay=288:148,[wm1] overlay=535:335,ass=qbx13.ass::utf-8[out]")"_s));
    input.generation = ToolGeneration::Today;
    EXPECT_TRUE(
        ComposeFFmpegCommand(job, input)
            .command.contains(
                uR"( -vf "movie=qbx12.png[wm2];movie=qbx11.png[wm1];[in]null[v0];[v0][wm2]overlay=288:148[v1];[v1][wm1]overlay=535:335,ass=qbx13.ass[out]")"_s));

    // Keypad corners and centre, clamped inside the frame.
    EXPECT_EQ(KeypadPosition(7, 5, {640, 360}, {100, 20}), QPoint(5, 5));
    EXPECT_EQ(KeypadPosition(1, 5, {640, 360}, {100, 20}), QPoint(5, 335));
    EXPECT_EQ(KeypadPosition(9, 500, {640, 360}, {100, 20}), QPoint(40, 340));
    EXPECT_EQ(KeypadPosition(5, 0, {64, 64}, {100, 20}), QPoint(0, 22));
    EXPECT_EQ(ClampRange(-3, 0, 10), 0);
    EXPECT_EQ(ClampRange(12, 0, 10), 10);
}

TEST(FFmpegTodayCommand, RowsTheToolCannotMakeAreRefusedByName)
{
    JobSettings job = baseJob();
    job.CoreState.CoreName = u"FFmpeg"_s;
    job.CoreState.CoreVersion = u"5.1.9"_s;
    job.CoreState.CoreFormats = u"AVI|MP4|AMR|MATROSKA"_s;
    job.CoreState.CoreAudioCodec = u"COPY|AAC|AC3"_s;
    job.CoreState.CoreVideoCodec = u"COPY|MPEG4|LIBX264"_s;
    const struct
    {
        const char16_t *format;
        const char16_t *codec;
        const char16_t *refusal;
    } cases[] = {
        {u"amr", u"",
            u"FFmpeg 5.1.9 cannot make the format \"amr\": the tool has no \"libopencore_amrnb\" audio "
            u"encoder."},
        {u"flv", u"", u"FFmpeg 5.1.9 cannot make the format \"flv\": the tool has no \"flv\" muxer."},
        {u"mkv", u"libtheora",
            u"FFmpeg 5.1.9 cannot make the format \"mkv\": the tool has no \"libtheora\" video encoder."},
        {u"mkv", u"", u""},
    };
    for (const auto &c : cases) {
        job.FileOutput.ForceFormat = QString::fromUtf16(c.format);
        job.Video.VideoCodec = QString::fromUtf16(c.codec);
        const Composition result = ComposeFFmpegCommand(job, inputFor(job, ToolGeneration::Today));
        EXPECT_EQ(result.refusal, QString::fromUtf16(c.refusal));
        EXPECT_EQ(result.command.isEmpty(), !result.refusal.isEmpty());
    }
    // The legacy generation composes as documented and checks nothing.
    job.FileOutput.ForceFormat = u"amr"_s;
    EXPECT_TRUE(ComposeFFmpegCommand(job, inputFor(job, ToolGeneration::Legacy)).refusal.isEmpty());
}

TEST(FFmpegTodayCommand, SizeRulesOfRowsWithFixedSizes)
{
    JobSettings job = baseJob();
    job.Video.VideoWidth = 160;
    job.Video.VideoHeight = 120;
    job.FileOutput.ForceFormat = u"rm"_s;
    EXPECT_TRUE(today(job).contains(u"[in]scale=160:112[out]"_s));
    job.FileOutput.ForceFormat = u"h263"_s;
    EXPECT_TRUE(today(job).contains(u"[in]scale=128:96[out]"_s));
    EXPECT_TRUE(today(job, {400, 300}).contains(u"[in]scale=352:288[out]"_s));
}

TEST(ToolGeneration, ChosenByTheToolsVersion)
{
    for (const char16_t *old : {u"SVN-r26400", u"0.6.1", u"0.11.2", u"r19876"})
        EXPECT_EQ(FFmpegGenerationOf(QString::fromUtf16(old)), ToolGeneration::Legacy);
    for (const char16_t *now : {u"5.1.9-0+deb12u1", u"1.0", u"N-112233-gabc", u"6.1.1", u""})
        EXPECT_EQ(FFmpegGenerationOf(QString::fromUtf16(now)), ToolGeneration::Today);
}

TEST(CommandTemplate, MacrosAreReplacedAndOthersKept)
{
    MacroValues values;
    values.outW = 320;
    values.outH = 240;
    values.videoBitRate = 900;
    values.frameRate = 23.976;
    values.inputName = u"/tmp/qbx1.avs"_s;
    values.outputFileName = u"/o/#VideoWidth#.mp4"_s;
    EXPECT_EQ(
        ExpandCommandMacros(
            u"x264 --bitrate #VideoBitRate# --fps #VideoFrameRate# --vf resize:#VideoWidth#,#VideoHeight# -o \"#OutputFileName#\" \"#InputFileName#\" #Unknown# #"_s,
            values),
        u"x264 --bitrate 900 --fps 23.976 --vf resize:320,240 -o \"/o/#VideoWidth#.mp4\" \"/tmp/qbx1.avs\" #Unknown# #"_s);
    values.padBorder = true;
    EXPECT_EQ(ExpandCommandMacros(u"scale=#VideoWidth#:#VideoHeight#"_s, values), u"scale=320:-3"_s);
}

TEST(CommandTemplate, Mp4BoxLanguages)
{
    EXPECT_EQ(ChooseMp4BoxLanguage(u"2"_s).code, u"end"_s);
    EXPECT_EQ(ChooseMp4BoxLanguage(u"2"_s).word, u"english"_s);
    EXPECT_EQ(ChooseMp4BoxLanguage(u"Chinese"_s).code, u"zho"_s);
    EXPECT_EQ(ChooseMp4BoxLanguage(u"15"_s).code, u"zho"_s);
    EXPECT_EQ(ChooseMp4BoxLanguage(u"16"_s).code, u"und"_s);
    EXPECT_EQ(ChooseMp4BoxLanguage(u"klingon"_s).code, u"und"_s);
}

} // namespace
} // namespace qb::engine
