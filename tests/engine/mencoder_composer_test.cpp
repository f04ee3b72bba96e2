// The second encoder's command as each generation spells it: the legacy recipes to the character,
// today's where they changed, and real runs of Debian's tool judged by the player tool.
#include "engine/engine_recorder.h"
#include "engine/ffmpegx.h"
#include "engine/mencoder_composer.h"
#include "engine/mencoder_dialect.h"
#include "engine/status_codes.h"
#include "engine/target_size.h"
#include "support/sanitized_build.h"
#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

JobSettings menJob(const QString &format)
{
    JobSettings job;
    job.FileName = u"/m/in.mp4"_s;
    job.FileInfo = job.FileName;
    job.Core = u"/usr/bin/mencoder"_s;
    job.TempBase = u"/tmp/qbx1"_s;
    job.Video.VideoWidth = 640;
    job.Video.VideoHeight = 360;
    job.Job.MaxThreads = 4;
    job.Audio.AudioBitRate = 96;
    job.FileOutput.ForceFormat = format;
    return job;
}

QString compose(const JobSettings &job, int pass = 0, ToolGeneration generation = ToolGeneration::Legacy)
{
    ComposeInput input;
    input.pass = pass;
    input.generation = generation;
    input.inputName = job.FileName;
    input.outputFileName = u"/o/x"_s;
    input.target = TargetSize(job.Video.VideoSize, job.Video.VideoWidth, job.Video.VideoHeight);
    return ComposeMEncoderCommand(job, input).command;
}

TEST(MEncoderLegacyCommand, RecipesAsDocumented)
{
    EXPECT_EQ(compose(menJob(u"pal-dv"_s)), compose(menJob(u"pal-dvd"_s)));
    EXPECT_EQ(compose(menJob(u"pal-dvd"_s)),
        uR"("/usr/bin/mencoder" "/m/in.mp4" -ovc lavc -lavcopts vcodec=mpeg2video:vbitrate=2000:aspect=16/9:trell:mbd=2:keyint=15:vrc_buf_size=1835:vrc_maxrate=9600:threads=4 -vf scale=720:576,harddup -ofps 25 -oac lavc -lavcopts acodec=ac3:abitrate=128 -af volnorm,lavcresample=48000 -srate 48000 -of mpeg -mpegopts format=dvd -o "/o/x")"_s);
    EXPECT_TRUE(compose(menJob(u"ntsc-dvd"_s)).contains(u":keyint=18:"_s));
    EXPECT_TRUE(
        compose(menJob(u"ntsc-dvd"_s)).contains(u" -vf-add scale=720:480,harddup -ofps 30000/1001"_s));

    struct Case
    {
        const char *name;
        QString format;
        int pass;
        std::function<void(JobSettings &)> set;
        QString part;
    };
    const Case cases[] = {
        {"no pass option on pass 0", u"avi"_s, 0, [](JobSettings &) {},
            u" -ovc lavc -ffourcc DX50 -lavcopts vcodec=mpeg4:threads=4:turbo -oac mp3lame -lameopts cbr:br=96 -o"_s},
        {"lavc pass", u"avi"_s, 1, [](JobSettings &) {}, u":threads=4:turbo:vpass=1 "_s},
        {"x264 pass", u"mkv"_s, 2, [](JobSettings &) {}, u":partitions=all:pass=2 "_s},
        {"quality for avi", u"avi"_s, 0, [](JobSettings &j) { j.Video.VideoVBR = 5; },
            u" -lavcopts vcodec=mpeg4:vqscale=5:threads=4:turbo"_s},
        {"quality for x264", u"h264"_s, 0, [](JobSettings &j) { j.Video.VideoVBR = 22; },
            u" -x264encopts crf=22:threads=4:"_s},
        {"quality for xvid", u"xvid"_s, 0, [](JobSettings &j) { j.Video.VideoVBR = 3; },
            u" -xvidencopts fixed_quant=3:max_bframes=0:threads=4:turbo"_s},
        {"rate for xvid", u"svi"_s, 0, [](JobSettings &j) { j.Video.VideoBitRate = 700; },
            u" -xvidencopts bitrate=700:threads=4"_s},
        {"flv keeps one thread", u"flv"_s, 0, [](JobSettings &) {}, u"vcodec=flv:threads=1:mbd=2"_s},
        {"size limit", u"mp4"_s, 0,
            [](JobSettings &j) {
                j.Job.LimitFileSize = 100;
                j.Job.TimeEndPoint = 600;
            },
            u"vglobal=1:vbitrate=1229 -bt 1133K:threads=4"_s},
        {"size limit, x264", u"mkv"_s, 0,
            [](JobSettings &j) {
                j.Job.LimitFileSize = 100;
                j.Job.TimeEndPoint = 600;
            },
            u" -x264encopts bitrate=1229 -bt 1133K:threads=4"_s},
        {"scale and frame rate", u"avi"_s, 0,
            [](JobSettings &j) {
                j.Video.VideoSize = u"320x180"_s;
                j.Video.FrameRate = 25;
            },
            u":turbo -vf scale=320:180,harddup -ofps 25 -oac"_s},
        {"fit by padding", u"avi"_s, 0,
            [](JobSettings &j) {
                j.Video.VideoSize = u"x"_s;
                j.Video.PadBorder = 1;
            },
            u" -vf scale=640:-3,expand=640:360:::1,harddup"_s},
        {"mpeg frame rate", u"mpeg"_s, 0, [](JobSettings &) {}, u":threads=4 -ofps 25 -oac lavc"_s},
        {"resampling", u"mp3"_s, 0,
            [](JobSettings &j) {
                j.Audio.AudioChannels = 2;
                j.Audio.AudioSampleRate = 44100;
            },
            u" -ovc frameno -oac mp3lame -lameopts cbr:br=96 -channels 2 -srate 44100 -of rawaudio -o"_s},
        {"pcm takes no resampling", u"wav"_s, 0, [](JobSettings &j) { j.Audio.AudioChannels = 2; },
            u" -ovc frameno -oac pcm -o"_s},
        {"the gap rows set nothing", u"flac"_s, 0, [](JobSettings &) {},
            uR"("/usr/bin/mencoder" "/m/in.mp4" -o "/o/x")"_s},
        {"deinterlace, window, more", u"copy"_s, 0,
            [](JobSettings &j) {
                j.Video.Deinterlace = true;
                j.Job.TimeStartPoint = 5;
                j.Job.TimeEndPoint = 15;
                j.Job.AdditionalScripts = u"-noskip"_s;
            },
            u" -ovc copy -oac copy -vf-add yadif -ss 5 -endpos 10 -o \"/o/x\" -noskip"_s},
        {"several sources", u"copy"_s, 0, [](JobSettings &j) { j.FileInfo = u"/m/a b.vob|/m/c.vob"_s; },
            uR"("/usr/bin/mencoder" "/m/a b.vob" "/m/c.vob" -ovc copy)"_s},
        {"a drive", u"video"_s, 0, [](JobSettings &j) { j.FileName = u"D:"_s; },
            uR"( -dvd-device "D:"/ dvd://1 -ovc copy -nosound)"_s},
    };
    for (const Case &c : cases) {
        JobSettings job = menJob(c.format);
        c.set(job);
        const QString command = compose(job, c.pass);
        EXPECT_TRUE(command.contains(c.part)) << c.name << "\n" << command.toStdString();
        if (c.pass == 0) {
            EXPECT_FALSE(command.contains(u"pass="_s)) << c.name;
        }
    }
    EXPECT_EQ(MEncoderOutputExtension(menJob(u"flac"_s), ToolGeneration::Legacy), QString());
    JobSettings drive = menJob(u"audio"_s);
    drive.FileName = u"D:"_s;
    EXPECT_EQ(MEncoderOutputExtension(drive, ToolGeneration::Legacy), u"ac3"_s);
}

TEST(MEncoderLegacyCommand, SubtitlesTheToolDrawsItself)
{
    JobSettings job = menJob(u"avi"_s);
    job.Menc.MencEnableSubtitle = true;
    job.Menc.MencSubtitleFontFileName = u"/f/sans.ttf"_s;
    job.Menc.MencSubtitleFontSize = 4;
    job.Menc.MencSubtitleAlign = 5;
    ComposeInput input;
    input.inputName = job.FileName;
    input.outputFileName = u"/o/x"_s;
    input.generation = ToolGeneration::Legacy;
    input.subtitleFile = u"/m/in.srt"_s;
    EXPECT_TRUE(
        ComposeMEncoderCommand(job, input)
            .command.contains(
                uR"( -sub "/m/in.srt" -font "/f/sans.ttf" -subfont-text-scale 4 -subfont-outline 1 -subfont-blur 2 -subpos 45 -subdelay 0 -subcp CP936 -o)"_s));
    job.Subtitle.DisableSubtitle = true;
    EXPECT_FALSE(ComposeMEncoderCommand(job, input).command.contains(u" -sub "_s));
}

TEST(MEncoderTodayCommand, ChangedSpellingsAndRefusals)
{
    const struct
    {
        const char16_t *format;
        const char16_t *part;
    } spelled[] = {
        {u"mkv", u" -of lavf -lavfopts format=matroska"},
        {u"mp4", u" -oac mp3lame -lameopts cbr:br=96"},
        {u"pal-dvd", u" -oac twolame -twolameopts br=192 -af volnorm"},
        {u"flv", u" -srate 44100"},
    };
    for (const auto &c : spelled) {
        const QString command = compose(menJob(QString::fromUtf16(c.format)), 0, ToolGeneration::Today);
        EXPECT_TRUE(command.contains(QString::fromUtf16(c.part))) << command.toStdString();
    }
    JobSettings limited = menJob(u"mp4"_s);
    limited.Job.LimitFileSize = 100;
    limited.Job.TimeEndPoint = 600;
    EXPECT_TRUE(compose(limited, 1, ToolGeneration::Today).contains(u":vbitrate=1229:threads=4:vpass=1 "_s));
    EXPECT_TRUE(
        compose(limited, 1, ToolGeneration::Today).contains(u" -passlogfile \"/tmp/qbx1.log\" -o "_s));
    for (const char16_t *refused : {u"aac", u"m4a", u"ac3", u"h263", u"flac", u"ogg", u"gif", u"png"}) {
        ComposeInput input;
        input.generation = ToolGeneration::Today;
        const Composition result = ComposeMEncoderCommand(menJob(QString::fromUtf16(refused)), input);
        EXPECT_TRUE(result.command.isEmpty());
        EXPECT_TRUE(result.refusal.contains(u"choose the FFmpeg tool"_s)) << result.refusal.toStdString();
    }
    EXPECT_EQ(MEncoderGenerationOf(u"UNKNOWN-12"_s), ToolGeneration::Today);
    EXPECT_EQ(MEncoderGenerationOf(u"SVN-r31628-4.5.0"_s), ToolGeneration::Legacy);
    EXPECT_EQ(MEncoderGenerationOf(u"1.0rc2-4.2.1"_s), ToolGeneration::Legacy);
}

// Real runs of Debian's MEncoder on a generated clip.
class MEncoderJobs : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        mencoder = QStandardPaths::findExecutable(u"mencoder"_s);
        const QString ffmpeg = QStandardPaths::findExecutable(u"ffmpeg"_s);
        if (mencoder.isEmpty() || ffmpeg.isEmpty())
            return;
        tree = new test::TempTree;
        const test::ToolResult made = test::runTool(ffmpeg,
            {u"-v"_s, u"error"_s, u"-y"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                u"testsrc=size=160x120:rate=25:duration=2"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                u"sine=duration=2:sample_rate=48000"_s, u"-ac"_s, u"2"_s, u"-c:v"_s, u"mpeg4"_s, u"-c:a"_s,
                u"libmp3lame"_s, u"-shortest"_s, tree->path(u"src.avi"_s)});
        EXPECT_EQ(made.exitCode, 0) << made.output.toStdString();
    }
    static void TearDownTestSuite() { delete std::exchange(tree, nullptr); }
    void SetUp() override
    {
        if (!tree)
            GTEST_SKIP() << "mencoder and ffmpeg are not installed";
        out = std::make_unique<test::TempTree>();
    }

    void run(const std::function<void(FFmpegX &)> &set)
    {
        engine = std::make_unique<FFmpegX>();
        recorder = std::make_unique<test::EngineRecorder>(*engine);
        engine->setCore(mencoder);
        engine->setOutputDir(out->root());
        engine->setFileName(tree->path(u"src.avi"_s));
        set(*engine);
        engine->StartProcess();
        ASSERT_TRUE(test::waitForJobEnd(*engine, 25000));
    }
    QString completed() const { return recorder->completedOutput(); }
    // Codec names of the streams, and the video's length in seconds.
    static std::pair<QStringList, double> probe(const QString &file)
    {
        const test::ToolResult run = test::runTool(u"ffprobe"_s,
            {u"-v"_s, u"quiet"_s, u"-print_format"_s, u"json"_s, u"-show_streams"_s, u"-show_format"_s,
                file});
        const QJsonDocument doc = QJsonDocument::fromJson(run.output.toUtf8());
        QStringList codecs;
        for (const QJsonValue &s : doc[u"streams"_s].toArray()) {
            if (s[u"codec_type"_s].toString() != u"data"_s)
                codecs << s[u"codec_name"_s].toString();
        }
        return {codecs, doc[u"format"_s][u"duration"_s].toString().toDouble()};
    }

    static inline QString mencoder;
    static inline test::TempTree *tree = nullptr;
    std::unique_ptr<test::TempTree> out;
    std::unique_ptr<FFmpegX> engine;
    std::unique_ptr<test::EngineRecorder> recorder;
};

struct MencRow
{
    const char16_t *format;
    const char16_t *codecs; // "|"-joined; nullptr: the row is refused
};

const MencRow kMencRows[] = {
    {u"pal-dvd", u"mpeg2video|mp2"},
    {u"ntsc-dvd", u"mpeg2video|mp2"},
    {u"pal-vcd", u"mpeg1video|mp2"},
    {u"ntsc-svcd", u"mpeg2video|mp2"},
    {u"mpeg-ts", u"mpeg2video|mp2"},
    {u"mp4", u"mpeg4|mp3"},
    {u"h263", nullptr},
    {u"3gp", u"mpeg4|mp3"},
    {u"mkv", u"h264|mp3"},
    {u"avi", u"mpeg4|mp3"},
    {u"xvid", u"mpeg4|mp3"},
    {u"flv", u"flv1|mp3"},
    {u"mov", u"mpeg4|mp3"},
    {u"h264", u"h264|mp3"},
    {u"wmv", u"wmv2|wmav2"},
    {u"psp", u"h264|mp3"},
    {u"ipod", u"h264|mp3"},
    {u"mjpeg", u"mjpeg|pcm_s16le"},
    {u"mpeg", u"mpeg1video|mp2"},
    {u"wma", nullptr},
    {u"mp3", u"mp3"},
    {u"mp2", u"mp2"},
    {u"wav", nullptr},
    {u"video", u"mpeg4"},
    {u"copy", u"mpeg4|mp3"},
    {u"aac", nullptr},
    {u"ac3", nullptr},
    {u"ogg", nullptr},
};

// The rows run in a few groups, each in one process, so that the tool is asked once per group.
class MEncoderRows : public MEncoderJobs, public ::testing::WithParamInterface<int>
{
};

TEST_P(MEncoderRows, MakeWhatThePlayerToolConfirmsOrRefuse)
{
    if (test::kSanitizedBuild)
        GTEST_SKIP()
            << "every row runs in the plain build; the sanitizer build checks our side with the other jobs";
    constexpr int kGroups = 4;
    const int count = int(std::size(kMencRows));
    for (int i = GetParam() * count / kGroups; i < (GetParam() + 1) * count / kGroups; ++i) {
        const MencRow &row = kMencRows[i];
        SCOPED_TRACE(QString::fromUtf16(row.format).toStdString());
        out = std::make_unique<test::TempTree>();
        run([&](FFmpegX &e) { e.FileOutput.ForceFormat = QString::fromUtf16(row.format); });
        if (!row.codecs) {
            EXPECT_EQ(recorder->statusCodes().last(), kError);
            EXPECT_TRUE(recorder->statuses.last().second.contains(u"choose the FFmpeg tool"_s));
            EXPECT_TRUE(QDir(out->root()).isEmpty());
            continue;
        }
        const QString output = completed();
        ASSERT_FALSE(output.isEmpty()) << recorder->statusLines().join(u'\n').toStdString();
        auto [codecs, seconds] = probe(output);
        QStringList expected = QString::fromUtf16(row.codecs).split(u'|');
        // A program stream may list the sound first.
        codecs.sort();
        expected.sort();
        EXPECT_EQ(codecs, expected);
        EXPECT_NEAR(seconds, 2.0, 0.25);
    }
}

INSTANTIATE_TEST_SUITE_P(Today, MEncoderRows, ::testing::Range(0, 4));

TEST_F(MEncoderJobs, ProgressComesFromThePositionLines)
{
    // Long enough that the tool prints its position lines one by one.
    const QString clip = out->path(u"six.avi"_s);
    const test::ToolResult made = test::runTool(QStandardPaths::findExecutable(u"ffmpeg"_s),
        {u"-v"_s, u"error"_s, u"-y"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
            u"testsrc2=size=320x240:rate=25:duration=6"_s, u"-c:v"_s, u"mpeg4"_s, clip});
    ASSERT_EQ(made.exitCode, 0) << made.output.toStdString();
    engine = std::make_unique<FFmpegX>();
    recorder = std::make_unique<test::EngineRecorder>(*engine);
    engine->setCore(mencoder);
    engine->setOutputDir(out->root());
    engine->setFileName(clip);
    engine->FileOutput.ForceFormat = u"mkv"_s;
    engine->StartProcess();
    ASSERT_TRUE(test::waitForJobEnd(*engine, 25000));
    ASSERT_FALSE(completed().isEmpty()) << recorder->statusLines().join(u'\n').toStdString();
    QList<int> positions;
    for (const test::ProgressEvent &p : recorder->progress) {
        if (!p.last && p.value > 0) {
            positions << p.value;
            EXPECT_EQ(p.max, 6);
        }
    }
    EXPECT_FALSE(positions.isEmpty());
    EXPECT_TRUE(std::is_sorted(positions.cbegin(), positions.cend()));
}

TEST_F(MEncoderJobs, TwoPassesAndAClaimedButMissingOutput)
{
    run([](FFmpegX &e) {
        e.FileOutput.ForceFormat = u"avi"_s;
        e.Job.Twopass = true;
        e.Video.VideoBitRate = 300;
    });
    ASSERT_EQ(recorder->scripts.size(), 2);
    EXPECT_TRUE(recorder->scripts[0].contains(u":vpass=1"_s));
    EXPECT_TRUE(recorder->scripts[1].contains(u":vpass=2"_s));
    EXPECT_EQ(probe(completed()).first, (QStringList {u"mpeg4"_s, u"mp3"_s}));

    // The older recipe for AAC: today's tool ends well and writes nothing, which is no success.
    run([](FFmpegX &e) {
        e.CoreState.CoreVersion = u"1.0rc2-4.2.1"_s;
        e.FileOutput.ForceFormat = u"aac"_s;
    });
    EXPECT_FALSE(recorder->statusCodes().contains(kComplete));
    EXPECT_TRUE(recorder->statusLines().contains(u"3:"_s + engine->StringContent.StringContent17))
        << recorder->statusLines().join(u'\n').toStdString();
}

} // namespace
} // namespace qb::engine
