// Jobs composed by the engine and run by today's ffmpeg on media generated here. The player tool
// judges every output: its streams, codecs, picture size and a length within one frame. A row the
// tool cannot make must end in the error that names what it lacks, and leave no file.
#include "engine/engine_recorder.h"
#include "engine/ffmpeg_dialect.h"
#include "engine/ffmpegx.h"
#include "engine/status_codes.h"
#include "support/sanitized_build.h"
#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

using test::TempTree;

struct StreamInfo
{
    QString video; // codec, "" when there is no picture
    QString audio;
    int audioStreams = 0;
    QSize size;
    int sampleRate = 0;
    int channels = 0;
    double videoSeconds = 0; // frames counted over the frame rate
    double frameTime = 0;
    double audioSeconds = 0;
};

class FFmpegJobs : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        ffmpeg = QStandardPaths::findExecutable(u"ffmpeg"_s);
        if (ffmpeg.isEmpty() || QStandardPaths::findExecutable(u"ffprobe"_s).isEmpty())
            return;
        tree = new TempTree;
        make(u"src.mp4"_s,
            {u"-f"_s, u"lavfi"_s, u"-i"_s, u"testsrc=size=160x120:rate=25:duration=2"_s, u"-f"_s, u"lavfi"_s,
                u"-i"_s, u"sine=frequency=440:duration=2:sample_rate=48000"_s, u"-c:v"_s, u"libx264"_s,
                u"-c:a"_s, u"aac"_s, u"-ac"_s, u"2"_s, u"-shortest"_s});
        make(u"voice.wav"_s,
            {u"-f"_s, u"lavfi"_s, u"-i"_s, u"sine=frequency=880:duration=3:sample_rate=22050"_s});
        make(u"two tracks.mkv"_s,
            {u"-f"_s, u"lavfi"_s, u"-i"_s, u"testsrc=size=160x120:rate=25:duration=2"_s, u"-f"_s, u"lavfi"_s,
                u"-i"_s, u"sine=duration=2"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                u"sine=frequency=880:duration=2"_s, u"-map"_s, u"0"_s, u"-map"_s, u"1"_s, u"-map"_s, u"2"_s,
                u"-c:v"_s, u"mpeg4"_s, u"-c:a"_s, u"ac3"_s});
        make(u"logo.png"_s, {u"-f"_s, u"lavfi"_s, u"-i"_s, u"color=c=red:s=40x30"_s, u"-frames:v"_s, u"1"_s});
        tree->writeFile(u"words.srt"_s, "1\n00:00:00,200 --> 00:00:01,800\nWWWWWWWW\n\n");
    }
    static void TearDownTestSuite() { delete std::exchange(tree, nullptr); }

    static void make(const QString &name, QStringList arguments)
    {
        arguments = QStringList {u"-v"_s, u"error"_s, u"-y"_s, u"-nostdin"_s} + arguments;
        arguments << tree->path(name);
        const test::ToolResult made = test::runTool(ffmpeg, arguments);
        EXPECT_EQ(made.exitCode, 0) << made.output.toStdString();
    }

    void SetUp() override
    {
        if (!tree)
            GTEST_SKIP() << "ffmpeg and ffprobe are not installed";
        out = std::make_unique<TempTree>();
    }

    // A job on source with the output folder set and the changes applied, run to its end.
    void run(const QString &source, const std::function<void(FFmpegX &)> &set)
    {
        engine = std::make_unique<FFmpegX>();
        recorder = std::make_unique<test::EngineRecorder>(*engine);
        engine->setCore(ffmpeg);
        engine->setOutputDir(out->root());
        engine->setFileName(tree->path(source));
        set(*engine);
        engine->StartProcess();
        ASSERT_TRUE(test::waitForJobEnd(*engine, 25000));
    }

    QString completed() const { return recorder->completedOutput(); }

    static StreamInfo probe(const QString &file)
    {
        const test::ToolResult run = test::runTool(u"ffprobe"_s,
            {u"-v"_s, u"quiet"_s, u"-count_frames"_s, u"-print_format"_s, u"json"_s, u"-show_streams"_s,
                file});
        StreamInfo info;
        const auto seconds
            = [](const QJsonObject &s) { return s.value(u"duration"_s).toString().toDouble(); };
        for (const QJsonValue &value : QJsonDocument::fromJson(run.output.toUtf8())[u"streams"_s].toArray()) {
            const QJsonObject s = value.toObject();
            const QString type = s[u"codec_type"_s].toString();
            if (type == u"video"_s && info.video.isEmpty()) {
                info.video = s[u"codec_name"_s].toString();
                info.size = QSize(s[u"width"_s].toInt(), s[u"height"_s].toInt());
                QStringList rate = s[u"avg_frame_rate"_s].toString().split(u'/');
                if (rate.value(0).toDouble() <= 0)
                    rate = s[u"r_frame_rate"_s].toString().split(u'/');
                const double fps = rate.size() == 2 && rate[1].toDouble() > 0
                    ? rate[0].toDouble() / rate[1].toDouble()
                    : 0;
                info.frameTime = fps > 0 ? 1 / fps : 0;
                info.videoSeconds = fps > 0 ? s[u"nb_read_frames"_s].toString().toDouble() / fps : 0;
            } else if (type == u"audio"_s) {
                if (info.audio.isEmpty()) {
                    info.audio = s[u"codec_name"_s].toString();
                    info.sampleRate = s[u"sample_rate"_s].toString().toInt();
                    info.channels = s[u"channels"_s].toInt();
                    info.audioSeconds = seconds(s);
                }
                ++info.audioStreams;
            }
        }
        return info;
    }

    QImage frameOf(const QString &file, double seconds) { return engine->GetVideoFrame(file, seconds); }

    static inline QString ffmpeg;
    static inline TempTree *tree = nullptr;
    std::unique_ptr<TempTree> out;
    std::unique_ptr<FFmpegX> engine;
    std::unique_ptr<test::EngineRecorder> recorder;
};

// What the player tool must find in each row's output of the 160x120, two-second source.
struct RowExpectation
{
    const char16_t *format;
    const char16_t *video;
    const char16_t *audio;
    int width;
    int height;
};

const RowExpectation kRows[] = {
    {u"pal-dvd", u"mpeg2video", u"ac3", 720, 576},
    {u"ntsc-dvd", u"mpeg2video", u"ac3", 720, 480},
    {u"film-dvd", u"mpeg2video", u"ac3", 720, 480},
    {u"pal-vcd", u"mpeg1video", u"mp2", 352, 288},
    {u"ntsc-vcd", u"mpeg1video", u"mp2", 352, 240},
    {u"film-vcd", u"mpeg1video", u"mp2", 352, 240},
    {u"pal-svcd", u"mpeg2video", u"mp2", 480, 576},
    {u"ntsc-svcd", u"mpeg2video", u"mp2", 480, 480},
    {u"film-svcd", u"mpeg2video", u"mp2", 480, 480},
    {u"pal-dv", u"dvvideo", u"pcm_s16le", 720, 576},
    {u"ntsc-dv", u"dvvideo", u"pcm_s16le", 720, 480},
    {u"film-dv", u"dvvideo", u"pcm_s16le", 720, 480},
    {u"mkv", u"h264", u"vorbis", 160, 120},
    {u"divx", u"mpeg4", u"mp3", 160, 120},
    {u"xvid", u"mpeg4", u"mp3", 160, 120},
    {u"rawavi", u"mpeg4", u"mp3", 160, 120},
    {u"h263", u"h263", u"aac", 128, 96},
    {u"h264", u"h264", u"aac", 160, 120},
    {u"wmv", u"msmpeg4v3", u"wmav2", 160, 120},
    {u"asf", u"msmpeg4v3", u"wmav2", 160, 120},
    {u"wma", u"", u"wmav2", 0, 0},
    {u"mp4s", u"mpeg4", u"wmav2", 160, 120},
    {u"rm", u"rv10", u"ac3", 160, 112},
    {u"psp", u"h264", u"aac", 160, 120},
    {u"ipod", u"h264", u"aac", 160, 120},
    {u"iphone", u"h264", u"aac", 160, 120},
    {u"svi", u"mpeg4", u"mp3", 160, 120},
    {u"mp3", u"", u"mp3", 0, 0},
    {u"mp2", u"", u"mp2", 0, 0},
    {u"flac", u"", u"flac", 0, 0},
    {u"amr", nullptr, nullptr, 0, 0}, // Debian's ffmpeg has no AMR encoder
    {u"ac3", u"", u"ac3", 0, 0},
    {u"aac", u"", u"aac", 0, 0},
    {u"m4a", u"", u"aac", 0, 0},
    {u"wav", u"", u"pcm_s16le", 0, 0},
    {u"ogg", u"", u"vorbis", 0, 0},
    {u"gif", u"gif", u"", 160, 120},
    {u"mpeg-ts", u"mpeg2video", u"mp2", 160, 120},
    {u"mjpeg", u"mjpeg", u"mp3", 160, 120},
    {u"png", u"png", u"", 160, 120},
    {u"video", u"h264", u"", 160, 120},
    {u"audio", u"", u"aac", 0, 0},
    {u"palm(428x320)", u"mpeg4", u"aac", 428, 320},
    {u"palm(480x320)", u"mpeg4", u"aac", 480, 320},
    {u"copy", u"h264", u"aac", 160, 120},
};

TEST(FFmpegFormatTable, EveryRowHasAnExpectation)
{
    QStringList expected;
    for (const RowExpectation &row : kRows)
        expected << QString::fromUtf16(row.format);
    EXPECT_EQ(expected, FormatNames());
}

// The rows run in a few groups, each in one process, so that the tool is asked once per group.
class FFmpegFormatRows : public FFmpegJobs, public ::testing::WithParamInterface<int>
{
};

TEST_P(FFmpegFormatRows, MakeWhatThePlayerToolConfirmsOrSayWhatIsMissing)
{
    if (test::kSanitizedBuild)
        GTEST_SKIP()
            << "every row runs in the plain build; the sanitizer build checks our side with the other jobs";
    constexpr int kGroups = 6;
    const int count = int(std::size(kRows));
    for (int i = GetParam() * count / kGroups; i < (GetParam() + 1) * count / kGroups; ++i) {
        const RowExpectation &row = kRows[i];
        SCOPED_TRACE(QString::fromUtf16(row.format).toStdString());
        out = std::make_unique<TempTree>();
        run(u"src.mp4"_s, [&](FFmpegX &e) { e.FileOutput.ForceFormat = QString::fromUtf16(row.format); });
        if (!row.video) {
            ASSERT_FALSE(recorder->statuses.isEmpty());
            EXPECT_EQ(recorder->statuses.last().first, kError);
            EXPECT_TRUE(recorder->statuses.last().second.contains(u"libopencore_amrnb"_s));
            EXPECT_TRUE(QDir(out->root()).isEmpty());
            continue;
        }
        const QString output = completed();
        ASSERT_FALSE(output.isEmpty()) << recorder->statusLines().join(u'\n').toStdString();
        const StreamInfo info = probe(output);
        EXPECT_EQ(info.video, QString::fromUtf16(row.video));
        EXPECT_EQ(info.audio, QString::fromUtf16(row.audio));
        if (row.width > 0) {
            EXPECT_EQ(info.size, QSize(row.width, row.height));
        }
        if (!info.video.isEmpty() && info.video != u"png"_s) {
            EXPECT_NEAR(info.videoSeconds, 2.0, info.frameTime + 0.001);
        } else if (info.video.isEmpty()) {
            EXPECT_NEAR(info.audioSeconds, 2.0, 0.1);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Today, FFmpegFormatRows, ::testing::Range(0, 6));

TEST_F(FFmpegJobs, EventsOfARunArriveInTheirOrderAndEndWithTheOutput)
{
    run(u"src.mp4"_s, [](FFmpegX &e) { e.FileOutput.ForceFormat = u"mkv"_s; });
    const QStringList &all = recorder->all;
    ASSERT_GE(all.size(), 4);
    // The command, starting, processing, progress, the last progress, then the end.
    const qsizetype script = all.indexOf(QRegularExpression(u"Script:\"/.*"_s));
    const qsizetype starting = all.indexOf(u"S0:"_s + tree->path(u"src.mp4"_s));
    const qsizetype processing = all.indexOf(u"S1:"_s + tree->path(u"src.mp4"_s));
    ASSERT_GE(script, 0);
    EXPECT_EQ(starting, script + 1);
    EXPECT_EQ(processing, starting + 1);
    ASSERT_FALSE(recorder->progress.isEmpty());
    EXPECT_TRUE(recorder->progress.last().last);
    EXPECT_EQ(recorder->progress.first().max, 2);
    EXPECT_EQ(recorder->progress.first().outputInfo.toStdString(),
        u"mp4 -> mkv, 160x120 -> 160x120, 25fps -> 25fps, h264 -> h264, 48000Hz -> 48000Hz, 2ch -> 2ch"_s
            .toStdString());
    const QString output = QDir(out->root()).filePath(u"src.mkv"_s);
    EXPECT_EQ(all.last(), u"S2:"_s + output);
    EXPECT_EQ(recorder->statusCodes().count(kError), 0);
}

TEST_F(FFmpegJobs, JobFeaturesRunAndThePlayerToolSeesTheirEffect)
{
    // Two passes, a time window, a size limit and a replaced sound, each judged by the player tool.
    run(u"src.mp4"_s, [](FFmpegX &e) {
        e.FileOutput.ForceFormat = u"h264"_s;
        e.Job.Twopass = true;
        e.Video.VideoBitRate = 200;
    });
    ASSERT_EQ(recorder->scripts.size(), 2);
    EXPECT_TRUE(recorder->scripts[0].contains(u" -an -sn -pass 1 "_s));
    EXPECT_TRUE(recorder->scripts[1].contains(u" -pass 2 "_s));
    EXPECT_NEAR(probe(completed()).videoSeconds, 2.0, 0.041);

    run(u"src.mp4"_s, [](FFmpegX &e) {
        e.FileOutput.ForceFormat = u"mkv"_s;
        e.Job.TimeStartPoint = 0.5;
        e.Job.TimeEndPoint = 1.5;
    });
    EXPECT_NEAR(probe(completed()).videoSeconds, 1.0, 0.041);

    run(u"src.mp4"_s, [](FFmpegX &e) {
        e.FileOutput.ForceFormat = u"mkv"_s;
        e.Job.LimitFileSize = 1;
    });
    ASSERT_FALSE(completed().isEmpty());
    EXPECT_LE(QFileInfo(completed()).size(), 1024 * 1024);

    run(u"src.mp4"_s, [](FFmpegX &e) {
        e.FileOutput.ForceFormat = u"mkv"_s;
        e.Audio.AudioReplaceFileName = tree->path(u"voice.wav"_s);
    });
    const StreamInfo replaced = probe(completed());
    EXPECT_EQ(replaced.sampleRate, 22050);
    EXPECT_EQ(replaced.channels, 1);
    EXPECT_EQ(replaced.audioStreams, 1);

    run(u"two tracks.mkv"_s, [](FFmpegX &e) {
        e.FileOutput.ForceFormat = u"mkv"_s;
        e.Audio.MultiAudioTrackSupport = true;
    });
    EXPECT_EQ(probe(completed()).audioStreams, 2);
}

TEST_F(FFmpegJobs, OverlaysAndSubtitlesAreBurnedIn)
{
    run(u"src.mp4"_s, [](FFmpegX &e) { e.FileOutput.ForceFormat = u"mkv"_s; });
    const QImage plain = frameOf(completed(), 1);
    ASSERT_FALSE(plain.isNull());

    // A red picture in the top-left corner.
    run(u"src.mp4"_s, [](FFmpegX &e) {
        e.FileOutput.ForceFormat = u"mkv"_s;
        e.AVFilter.AVFilterImageEnabled = true;
        e.AVFilter.AVFilterImageFile = tree->path(u"logo.png"_s);
        e.AVFilter.AVFilterImageAlign = 7;
        e.AVFilter.AVFilterImagePadding = 0;
    });
    const QColor logo = frameOf(completed(), 1).pixelColor(15, 12);
    EXPECT_GT(logo.red(), 200);
    EXPECT_LT(logo.green(), 60);

    // Text on an opaque black plate at the bottom right, and a subtitle at the bottom: both change
    // the frame where they are and not far from it.
    // The mean difference from the plain frame over an area, per pixel and channel.
    const auto differs = [&](const QImage &frame, QRect area) {
        double sum = 0;
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x) {
                const QColor a = frame.pixelColor(x, y), b = plain.pixelColor(x, y);
                sum += std::abs(a.red() - b.red()) + std::abs(a.green() - b.green())
                    + std::abs(a.blue() - b.blue());
            }
        }
        return sum / (3.0 * area.width() * area.height());
    };
    run(u"src.mp4"_s, [](FFmpegX &e) {
        e.FileOutput.ForceFormat = u"mkv"_s;
        e.AVFilter.AVFilterTextEnabled = true;
        e.AVFilter.AVFilterTextString = u"Quillbox"_s;
        e.AVFilter.AVFilterTextAlign = 3;
        e.AVFilter.AVFilterBackColor = u"000000"_s;
        e.AVFilter.AVFilterBackAlpha = 255;
    });
    const QImage text = frameOf(completed(), 1);
    EXPECT_GT(differs(text, {110, 100, 40, 15}), 40);
    EXPECT_LT(differs(text, {0, 0, 40, 20}), 8);

    run(u"src.mp4"_s, [](FFmpegX &e) {
        e.FileOutput.ForceFormat = u"mkv"_s;
        e.AVFilterVideoSubtitle.AVFilterVideoSubtitleEnabled = true;
        e.AVFilterVideoSubtitle.AVFilterVideoSubtitleFileName = tree->path(u"words.srt"_s);
    });
    EXPECT_EQ(recorder->statusCodes().count(kError), 0);
    const QImage subtitled = frameOf(completed(), 1);
    EXPECT_GT(differs(subtitled, {0, 90, 160, 30}), 8);
    EXPECT_LT(differs(subtitled, {0, 0, 160, 20}), 4);
}

TEST_F(FFmpegJobs, TestModeWritesTheCommandForBothShellsAndStillRuns)
{
    run(u"src.mp4"_s, [](FFmpegX &e) {
        e.FileOutput.ForceFormat = u"wav"_s;
        e.Job.TestMode = true;
    });
    const QString output = completed();
    ASSERT_FALSE(output.isEmpty());
    EXPECT_EQ(test::readAll(out->path(u"Test.bat"_s)), (recorder->scripts.first() + u"\r\n"_s).toUtf8());
    // The shell's copy runs as it is and makes the same file again.
    QFile::remove(output);
    const test::ToolResult again = test::runTool(out->path(u"Test.sh"_s), {});
    EXPECT_EQ(again.exitCode, 0) << again.output.toStdString();
    EXPECT_EQ(probe(output).audio, u"pcm_s16le"_s);

    // A host's template gets the macros; the input is the source, or the script standing for it.
    engine->setCommandLine(
        u"x264 --fps #VideoFrameRate# -o \"#OutputFileName#\" \"#InputFileName#\" #Other#"_s);
    engine->Video.FrameRate = 25;
    engine->Job.TestMode = false;
    const QString composed = engine->ComposeCommand(0, true);
    EXPECT_EQ(composed,
        u"x264 --fps 25 -o \""_s + engine->FileOutput.OutputFileName + u"\" \""_s + tree->path(u"src.mp4"_s)
            + u"\" #Other#"_s);
    engine->AVS.AVSEnabled = true;
    EXPECT_TRUE(engine->ComposeCommand(0, true).contains(u".avs\" #Other#"_s));
}

TEST_F(FFmpegJobs, CancelEndsInCanceledAndRemovesThePartialOutput)
{
    // A long enough job: an x264 encode at its slowest settings.
    make(u"long.mp4"_s,
        {u"-f"_s, u"lavfi"_s, u"-i"_s, u"testsrc2=size=320x240:rate=25:duration=20"_s, u"-c:v"_s, u"mpeg4"_s,
            u"-q:v"_s, u"5"_s});
    for (const bool remove : {true, false}) {
        engine = std::make_unique<FFmpegX>();
        recorder = std::make_unique<test::EngineRecorder>(*engine);
        engine->setCore(ffmpeg);
        engine->setOutputDir(out->root());
        engine->setFileName(tree->path(u"long.mp4"_s));
        engine->FileOutput.ForceFormat = u"h264"_s;
        engine->FileOutput.RemoveFileAfterCanceled = remove;
        engine->x264.x264Preset = 10;
        QObject::connect(engine.get(), &FFmpegX::ProgressChange, engine.get(),
            [this](int value, int, int, const QString &, const QString &, bool) {
                if (value >= 1 && engine->Processing())
                    engine->CancelProcess();
            });
        engine->StartProcess();
        ASSERT_TRUE(test::waitForJobEnd(*engine, 25000));
        const QList<int> codes = recorder->statusCodes();
        EXPECT_TRUE(codes.contains(kCanceled)) << recorder->statusLines().join(u'\n').toStdString();
        EXPECT_FALSE(codes.contains(kComplete));
        EXPECT_EQ(QFileInfo::exists(engine->FileOutput.OutputFileName), !remove);
    }
}

} // namespace
} // namespace qb::engine
