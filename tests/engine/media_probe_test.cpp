// The engine's probe and tool detection against today's tools on media generated here: every
// field is compared with what the player tool reports for the same file.
#include "engine/ffmpegx.h"
#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

using test::TempTree;

class MediaProbe : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        ffmpeg = QStandardPaths::findExecutable(u"ffmpeg"_s);
        if (ffmpeg.isEmpty())
            return;
        tree = new TempTree;
        const QString clip = u"testsrc=size=160x120:rate=25:duration=2"_s;
        const QString tone = u"sine=frequency=440:duration=2"_s;
        make(u"av.mp4"_s,
            {u"-f"_s, u"lavfi"_s, u"-i"_s, clip, u"-f"_s, u"lavfi"_s, u"-i"_s, tone, u"-c:v"_s, u"mpeg4"_s,
                u"-c:a"_s, u"aac"_s, u"-ac"_s, u"2"_s});
        const QString subtitle = tree->writeFile(u"s.srt"_s, "1\n00:00:00,500 --> 00:00:01,500\nhello\n\n");
        make(u"two audio.mkv"_s,
            {u"-f"_s, u"lavfi"_s, u"-i"_s, clip, u"-f"_s, u"lavfi"_s, u"-i"_s, tone, u"-f"_s, u"lavfi"_s,
                u"-i"_s, u"sine=frequency=880:duration=2:sample_rate=22050"_s, u"-i"_s, subtitle, u"-map"_s,
                u"0"_s, u"-map"_s, u"1"_s, u"-map"_s, u"2"_s, u"-map"_s, u"3"_s, u"-c:v"_s, u"mpeg4"_s,
                u"-c:a"_s, u"ac3"_s, u"-c:s"_s, u"srt"_s, u"-metadata:s:a:0"_s, u"language=eng"_s});
        make(u"tone.mp3"_s, {u"-f"_s, u"lavfi"_s, u"-i"_s, tone, u"-c:a"_s, u"libmp3lame"_s});
        make(u"tone.wav"_s, {u"-f"_s, u"lavfi"_s, u"-i"_s, tone, u"-ac"_s, u"2"_s});
        make(u"letterbox.mp4"_s,
            {u"-f"_s, u"lavfi"_s, u"-i"_s, u"testsrc=size=160x80:rate=25:duration=4"_s, u"-vf"_s,
                u"pad=160:120:0:20:black"_s, u"-c:v"_s, u"mpeg4"_s, u"-q:v"_s, u"2"_s});
        make(u"anamorphic.avi"_s,
            {u"-f"_s, u"lavfi"_s, u"-i"_s, clip, u"-vf"_s, u"setsar=64/45"_s, u"-c:v"_s, u"mpeg4"_s});
        make(u"red then blue.mp4"_s,
            {u"-f"_s, u"lavfi"_s, u"-i"_s, u"color=c=red:s=160x120:r=10:d=1"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                u"color=c=blue:s=160x120:r=10:d=1"_s, u"-filter_complex"_s, u"concat=n=2:v=1:a=0"_s,
                u"-c:v"_s, u"mpeg4"_s, u"-q:v"_s, u"2"_s});
        make(u"still.png"_s,
            {u"-f"_s, u"lavfi"_s, u"-i"_s, u"testsrc=size=96x64:duration=1"_s, u"-frames:v"_s, u"1"_s});
    }

    static void TearDownTestSuite() { delete std::exchange(tree, nullptr); }

    static void make(const QString &name, QStringList arguments)
    {
        arguments.prepend(u"-nostdin"_s);
        arguments.prepend(u"-y"_s);
        arguments.prepend(u"error"_s);
        arguments.prepend(u"-v"_s);
        arguments << tree->path(name);
        const test::ToolResult made = test::runTool(ffmpeg, arguments);
        EXPECT_EQ(made.exitCode, 0) << name.toStdString() << ": " << made.output.toStdString();
    }

    void SetUp() override
    {
        if (ffmpeg.isEmpty())
            GTEST_SKIP() << "ffmpeg is not installed";
    }

    // The player tool's own view of a file.
    static QJsonObject reference(const QString &file)
    {
        const test::ToolResult run = test::runTool(u"ffprobe"_s,
            {u"-v"_s, u"quiet"_s, u"-print_format"_s, u"json"_s, u"-show_format"_s, u"-show_streams"_s,
                file});
        return QJsonDocument::fromJson(run.output.toUtf8()).object();
    }

    static inline QString ffmpeg;
    static inline TempTree *tree = nullptr;
};

TEST_F(MediaProbe, EveryFieldAgreesWithThePlayerTool)
{
    FFmpegX ffx;
    ffx.setCore(ffmpeg);
    for (const QString &name : {u"av.mp4"_s, u"two audio.mkv"_s, u"tone.mp3"_s, u"tone.wav"_s,
             u"letterbox.mp4"_s, u"anamorphic.avi"_s, u"still.png"_s}) {
        SCOPED_TRACE(name.toStdString());
        const QString file = tree->path(name);
        const QJsonObject ref = reference(file);
        QSignalSpy changed(&ffx, &FFmpegX::FileInfoChange);
        ffx.setFileName(file);
        EXPECT_EQ(changed.count(), 1);

        int videos = 0, audios = 0, subtitles = 0;
        QJsonObject lastVideo;
        QJsonObject lastAudio;
        QString firstVideo, firstAudio, firstSubtitle;
        for (const QJsonValue &v : ref.value(u"streams"_s).toArray()) {
            const QJsonObject s = v.toObject();
            const QString type = s.value(u"codec_type"_s).toString();
            const QString number = u"0:"_s + QString::number(s.value(u"index"_s).toInt());
            if (type == u"video"_s) {
                ++videos;
                lastVideo = s;
                if (firstVideo.isEmpty())
                    firstVideo = number;
            } else if (type == u"audio"_s) {
                ++audios;
                lastAudio = s;
                if (firstAudio.isEmpty())
                    firstAudio = number;
            } else if (type == u"subtitle"_s) {
                ++subtitles;
                if (firstSubtitle.isEmpty())
                    firstSubtitle = number;
            }
        }
        const bool still = name.endsWith(u".png"_s);
        if (still) {
            // A picture is known by its name: one image stream, no length, no tool run.
            EXPECT_EQ(ffx.Video.VideoStreamCount, 1);
            EXPECT_EQ(ffx.Duration(), 0);
            EXPECT_EQ(ffx.Video.VideoStreamInfo, u"Stream#0.0:Image:png,96x64"_s);
        } else {
            EXPECT_EQ(ffx.Video.VideoStreamCount, videos);
            EXPECT_EQ(ffx.Audio.AudioStreamCount, audios);
            EXPECT_EQ(ffx.Subtitle.SubtitleStreamCount, subtitles);
            EXPECT_EQ(ffx.Video.DefaultVideoStream, firstVideo);
            EXPECT_EQ(ffx.Video.DefaultAudioStream, firstAudio);
            EXPECT_EQ(ffx.Subtitle.DefaultSubtitleStream, firstSubtitle);
            // Whole seconds, as the length field is read.
            EXPECT_EQ(ffx.Duration(),
                std::floor(ref.value(u"format"_s).toObject().value(u"duration"_s).toString().toDouble()));
        }
        EXPECT_EQ(ffx.Video.VideoWidth, lastVideo.value(u"width"_s).toInt());
        EXPECT_EQ(ffx.Video.VideoHeight, lastVideo.value(u"height"_s).toInt());
        const QString summary = ffx.FileInfo();
        if (!lastVideo.isEmpty() && !still) {
            EXPECT_TRUE(summary.contains(lastVideo.value(u"codec_name"_s).toString()))
                << summary.toStdString();
            const QStringList rate = lastVideo.value(u"avg_frame_rate"_s).toString().split(u'/');
            const double fps = rate.value(0).toDouble() / rate.value(1).toDouble();
            EXPECT_TRUE(summary.contains(u", "_s + QString::number(fps) + u"fps"_s)) << summary.toStdString();
        }
        if (!lastAudio.isEmpty()) {
            EXPECT_TRUE(summary.contains(lastAudio.value(u"codec_name"_s).toString() + u", "_s
                + lastAudio.value(u"sample_rate"_s).toString() + u"Hz, "_s
                + QString::number(lastAudio.value(u"channels"_s).toInt()) + u"ch"_s))
                << summary.toStdString();
        }
        EXPECT_TRUE(ffx.StreamInfo().endsWith(u"\r\n\r\n"_s + summary));
    }
}

TEST_F(MediaProbe, ContainerNamesAndTheAnamorphicSize)
{
    const std::pair<QString, QString> formats[] = {{u"av.mp4"_s, u"mp4"_s}, {u"two audio.mkv"_s, u"mkv"_s},
        {u"tone.mp3"_s, u"mp3"_s}, {u"tone.wav"_s, u"wav"_s}, {u"anamorphic.avi"_s, u"avi"_s}};
    FFmpegX ffx;
    ffx.setCore(ffmpeg);
    for (const auto &[name, format] : formats) {
        ffx.setFileName(tree->path(name));
        EXPECT_EQ(ffx.FileOutput.SourceFormat, format) << name.toStdString();
    }
    ffx.setFileName(tree->path(u"anamorphic.avi"_s));
    // The sample-aspect note does not end up in the height.
    EXPECT_EQ(ffx.Video.VideoWidth, 160);
    EXPECT_EQ(ffx.Video.VideoHeight, 120);
    EXPECT_TRUE(ffx.Video.VideoStreamInfo.contains(u"[SAR64:45"_s))
        << ffx.Video.VideoStreamInfo.toStdString();
}

TEST_F(MediaProbe, CropDetectionFindsTheBars)
{
    FFmpegX ffx;
    ffx.setCore(ffmpeg);
    EXPECT_EQ(ffx.GetVideoScreenCropInfo(tree->path(u"letterbox.mp4"_s)), u"crop=160:80:0:20"_s);
    EXPECT_EQ(ffx.GetVideoScreenCropInfo(tree->path(u"missing.mp4"_s)), QString());
}

TEST_F(MediaProbe, FramesComeFromTheirTime)
{
    FFmpegX ffx;
    ffx.setCore(ffmpeg);
    const QString video = tree->path(u"red then blue.mp4"_s);
    const auto centre = [](const QImage &frame) { return QColor(frame.pixel(80, 60)); };
    const QImage early = ffx.GetVideoFrame(video, 0.5);
    ASSERT_EQ(early.size(), QSize(160, 120));
    EXPECT_GT(centre(early).red(), 200);
    EXPECT_GT(centre(ffx.GetVideoFrame(video, 1.5)).blue(), 200);
    // Without a time, a tenth into the two seconds: still red.
    EXPECT_GT(centre(ffx.GetVideoFrame(video)).red(), 200);
    EXPECT_TRUE(ffx.GetVideoFrame(tree->path(u"missing.mp4"_s), 1).isNull());
    EXPECT_TRUE(ffx.GetVideoFrame(tree->path(u"s.srt"_s), 0).isNull());
}

TEST_F(MediaProbe, TheEncoderIsRecognisedWithItsCapabilities)
{
    FFmpegX ffx;
    ffx.setCore(ffmpeg);
    EXPECT_EQ(ffx.CoreState.CoreStatus, 1);
    EXPECT_EQ(ffx.CoreState.CoreName, u"FFmpeg"_s);
    const test::ToolResult version = test::runTool(ffmpeg, {u"-version"_s});
    EXPECT_TRUE(version.output.startsWith(u"ffmpeg version "_s + ffx.CoreState.CoreVersion + u' '))
        << ffx.CoreState.CoreVersion.toStdString();
    EXPECT_TRUE(ffx.CoreState.CoreVideoCodec.split(u'|').contains(u"MPEG4"_s));
    EXPECT_TRUE(ffx.CoreState.CoreAudioCodec.split(u'|').contains(u"AAC"_s));
    EXPECT_TRUE(ffx.CoreState.CoreFilters.split(u'|').contains(u"CROPDETECT"_s));
    EXPECT_TRUE(ffx.CoreState.CoreEnabled.contains(u"-gpl"_s));
    // A file that is no tool leaves the path and clears the kind.
    ffx.setCore(tree->path(u"tone.wav"_s));
    EXPECT_EQ(ffx.CoreState.CoreStatus, 0);
    EXPECT_EQ(ffx.Core(), tree->path(u"tone.wav"_s));
    ffx.setCore(tree->path(u"nothing here"_s));
    EXPECT_EQ(ffx.Core(), tree->path(u"tone.wav"_s));
}

TEST_F(MediaProbe, TodaysOtherToolsByTheirBanners)
{
    struct Tool
    {
        QString program;
        int status;
        QString name;
        QStringList versionRun; // where the version can be seen
    };
    const Tool tools[] = {{u"mencoder"_s, 2, u"MEncoder"_s, {}}, {u"x264"_s, 3, u"x264"_s, {u"--help"_s}},
        {u"mkvmerge"_s, 5, u"mkvmerge"_s, {u"--version"_s}}};
    for (const Tool &tool : tools) {
        const QString path = QStandardPaths::findExecutable(tool.program);
        if (path.isEmpty()) {
            ADD_FAILURE() << tool.program.toStdString() << " is not installed";
            continue;
        }
        FFmpegX ffx;
        ffx.setCore(path);
        EXPECT_EQ(ffx.CoreState.CoreStatus, tool.status) << tool.program.toStdString();
        EXPECT_EQ(ffx.CoreState.CoreName, tool.name);
        EXPECT_FALSE(ffx.CoreState.CoreVersion.isEmpty());
        EXPECT_TRUE(test::runTool(path, tool.versionRun).output.contains(ffx.CoreState.CoreVersion))
            << ffx.CoreState.CoreVersion.toStdString();
        EXPECT_TRUE(ffx.CoreState.CoreFilters.isEmpty());
    }
}

} // namespace
} // namespace qb::engine
