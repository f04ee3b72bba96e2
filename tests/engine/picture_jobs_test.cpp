// Jobs that make pictures: the image branch of a job, one frame of a video as a picture, contact
// sheets taken one frame per event-loop turn, and the in-memory resize and flip entries.
#include "engine/command_line.h"
#include "engine/engine_recorder.h"
#include "engine/ffmpegx.h"
#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <QBuffer>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

class PictureJobs : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QImage picture(80, 60, QImage::Format_RGB32);
        picture.fill(Qt::red);
        still = tree.path(u"in/still.png"_s);
        tree.makeDir(u"in"_s);
        tree.makeDir(u"out"_s);
        picture.save(still);
    }

    // Makes a two-second clip with the media tool; "" without it.
    QString clip()
    {
        const QString ffmpeg = QStandardPaths::findExecutable(u"ffmpeg"_s);
        if (ffmpeg.isEmpty())
            return {};
        const QString path = tree.path(u"in/clip.mp4"_s);
        const test::ToolResult made = test::runTool(ffmpeg,
            {u"-v"_s, u"error"_s, u"-y"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                u"testsrc=size=160x120:rate=10:duration=2"_s, u"-c:v"_s, u"mpeg4"_s, path});
        return made.exitCode == 0 ? path : QString();
    }

    bool waitForStatus(int code, int timeoutMs = 30000)
    {
        return QTest::qWaitFor(
            [&] {
                return std::any_of(rec.statuses.cbegin(), rec.statuses.cend(),
                    [code](const auto &s) { return s.first == code; });
            },
            timeoutMs);
    }

    test::TempTree tree;
    QString still;
    FFmpegX ffx;
    test::EngineRecorder rec {ffx};
};

TEST_F(PictureJobs, TheImageBranchConvertsThePicture)
{
    ffx.setFileName(still);
    ffx.setOutputDir(tree.path(u"out"_s));
    ffx.FileOutput.ForceFormat = u"jpg"_s;
    ffx.Image.ImageSize = u"50%"_s;
    ffx.StartProcess();
    ASSERT_FALSE(rec.statuses.isEmpty());
    EXPECT_EQ(rec.statuses.last().first, 2) << rec.statusLines().join(u" | "_s).toStdString();
    const QString output = rec.statuses.last().second;
    EXPECT_EQ(QImage(output).size(), QSize(40, 30));
    EXPECT_FALSE(ffx.Processing());
}

TEST_F(PictureJobs, AContactSheetIsTakenFrameByFrame)
{
    const QString video = clip();
    if (video.isEmpty())
        GTEST_SKIP() << "ffmpeg is not installed";
    ffx.setCore(QStandardPaths::findExecutable(u"ffmpeg"_s));
    ffx.ImageGrabber.ImageGrabberSize = u"40x30"_s;
    ffx.ImageGrabber.ImageGrabberShowTimeString = true;
    ffx.Image.ImageEdgeWidth = 4;
    const QString sheet = tree.path(u"out/sheet.jpg"_s);
    ffx.Screenshot(sheet, video, {}, -1, u"jpg"_s, 3, 2);
    // The call returns at once: the frames come on later turns.
    EXPECT_TRUE(ffx.Processing());
    ASSERT_TRUE(waitForStatus(2)) << rec.statusLines().join(u" | "_s).toStdString();
    EXPECT_EQ(rec.statusLines().first(), u"0:"_s + video);
    EXPECT_EQ(rec.statusLines().last(), u"2:"_s + sheet);
    ASSERT_EQ(rec.progress.size(), 6);
    EXPECT_EQ(rec.progress.last().value, 6);
    EXPECT_EQ(QImage(sheet).size(), QSize(3 * 40 + 4, 2 * 30 + 4));
    EXPECT_FALSE(ffx.Processing());

    // The file's lines take a header band of a line and a half each at the font's size (20 here):
    // name and sizes, then with the enhanced form the codec and rate line.
    ffx.ImageGrabber.ImageGrabberShowFileInfo = true;
    const QString headed = tree.path(u"out/headed.png"_s);
    ffx.Screenshot(headed, video, {}, -1, u"png"_s, 2, 1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !ffx.Processing(); }, 30000));
    EXPECT_EQ(QImage(headed).size(), QSize(2 * 40 + 4, 30 + 4 + 2 * 30 + 8));
    ffx.ImageGrabber.ImageGrabberEnhancedFileInfo = true;
    ffx.Screenshot(headed, video, {}, -1, u"png"_s, 2, 1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !ffx.Processing(); }, 30000));
    EXPECT_EQ(QImage(headed).size(), QSize(2 * 40 + 4, 30 + 4 + 3 * 30 + 8));
    ffx.ImageGrabber.ImageGrabberShowFileInfo = false;

    // A missing source ends at once with the failure text, and a cancel between frames too.
    rec.statuses.clear();
    ffx.Screenshot(tree.path(u"out/none.jpg"_s), tree.path(u"in/gone.mp4"_s));
    EXPECT_EQ(rec.statusLines(), QStringList {u"3:图像获取失败"_s});
    rec.statuses.clear();
    ffx.Screenshot(tree.path(u"out/cut.jpg"_s), video, {}, -1, u"jpg"_s, 4, 4);
    ffx.CancelProcess();
    ASSERT_TRUE(waitForStatus(3));
    EXPECT_FALSE(QFileInfo::exists(tree.path(u"out/cut.jpg"_s)));
}

TEST_F(PictureJobs, ResizeAndFlipInMemory)
{
    QImage picture(8, 4, QImage::Format_ARGB32);
    picture.fill(Qt::blue);
    picture.setPixel(0, 0, qRgb(255, 0, 0));
    QByteArray png;
    {
        QImage copy = picture;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        copy.save(&buffer, "PNG");
    }
    QByteArray out;
    ASSERT_TRUE(ffx.ResizeImagefromByte(png, out, u"200%"_s, 0, 0, u"FFFFFF"_s, 255, 0, u"0"_s, 0, 0, 0,
        false, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, false, false, 0, false, -1, -1, -1, -1, u"FFFFFF"_s,
        255, u"0"_s, 255, 0, u"0"_s, 0, 0, 0, 0));
    EXPECT_EQ(QImage::fromData(out).size(), QSize(16, 8));
    EXPECT_FALSE(ffx.ResizeImagefromByte({}, out, u"50%"_s, 0, 0, u""_s, 0, 0, u""_s, 0, 0, 0, false, 0, 0, 0,
        0, 0, 0, 0, 0, 0, 0, 0, 0, 0, false, false, 0, false, -1, -1, -1, -1, u""_s, 0, u""_s, 0, 0, u""_s, 0,
        0, 0, 0));
    QImage flipped;
    ASSERT_TRUE(ffx.FlipImagefromStdPicture(picture, flipped, 4));
    EXPECT_EQ(flipped.pixel(7, 0), qRgb(255, 0, 0));
    EXPECT_FALSE(ffx.FlipImagefromStdPicture(QImage(), flipped, 1));
}

TEST_F(PictureJobs, ThePictureFormsKeepTheirContract)
{
    qint64 token = 0;
    EXPECT_TRUE(ffx.StartUpGDIP(token));
    EXPECT_NE(token, 0);
    ffx.ShutdownGDIP(token);
    EXPECT_EQ(token, 0);

    QImage picture = ffx.LoadStdPictureFromFile(still);
    ASSERT_EQ(picture.size(), QSize(80, 60));
    QByteArray png;
    ASSERT_TRUE(ffx.ConvertStdPictureToByte(picture, png));
    int w = 0;
    int h = 0;
    EXPECT_TRUE(ffx.GetImageSizeFromByte(png, w, h));
    EXPECT_EQ(QSize(w, h), QSize(80, 60));
    EXPECT_TRUE(ffx.GetImageSize(still, w, h));
    EXPECT_FALSE(ffx.GetImageSize(tree.path(u"in/gone.png"_s), w, h));

    // An unknown format writes a BMP under the name given; capitals name JPEG.
    const QString bmp = tree.path(u"out/p.xyz"_s);
    ASSERT_TRUE(ffx.SaveStdPictureToFile(picture, bmp, u"xyz"_s, 85, 24, 2, -1));
    EXPECT_TRUE(ffx.LoadImageFileToByte(bmp).startsWith("BM"));
    const QString jpeg = tree.path(u"out/p.j"_s);
    ASSERT_TRUE(ffx.SaveImageByteToFile(png, jpeg, u"JPG"_s, 85, 24, 2, -1));
    EXPECT_TRUE(ffx.LoadImageFileToByte(jpeg).startsWith("\xFF\xD8"));

    // An empty array converts to nothing and leaves the target; disposing nothing is false.
    QImage target = picture;
    EXPECT_FALSE(ffx.ConvertByteToStdPicture({}, target, 0));
    EXPECT_EQ(target.size(), QSize(80, 60));
    EXPECT_TRUE(ffx.DisposeImage(target));
    EXPECT_TRUE(target.isNull());
    EXPECT_FALSE(ffx.DisposeImage(target));

    // A video is read as one of its frames.
    const QString video = clip();
    if (!video.isEmpty()) {
        ffx.setCore(QStandardPaths::findExecutable(u"ffmpeg"_s));
        EXPECT_TRUE(ffx.GetImageSize2(video, w, h));
        EXPECT_EQ(QSize(w, h), QSize(160, 120));
    }
}

TEST_F(PictureJobs, AFinishedJobLeavesItsContactSheetBesideTheOutput)
{
    const QString video = clip();
    if (video.isEmpty())
        GTEST_SKIP() << "ffmpeg is not installed";
    const QString output = tree.path(u"out/result.mp4"_s);
    ffx.setFileName(video);
    ffx.setCore(tree.writeFile(u"tools/core"_s, "#!/bin/sh\n"));
    ffx.setOutputDir(tree.path(u"out"_s));
    ffx.FileOutput.OutputFileName = output;
    ffx.setCommandComposer(
        [&](int) { return u"cp "_s + QuoteForShell(video) + u' ' + QuoteForShell(output); });
    ffx.ImageGrabber.ImageGrabberEnabled = true;
    ffx.ImageGrabber.ImageGrabberThumbMatrix = u"2x2"_s;
    ffx.ImageGrabber.ImageGrabberSize = u"40x30"_s;
    ffx.StartProcess();
    ASSERT_TRUE(test::waitForJobEnd(ffx));
    EXPECT_EQ(QImage(tree.path(u"out/result.Thumb.jpg"_s)).size(), QSize(80, 60));
    EXPECT_EQ(rec.statuses.last().first, 2) << rec.statusLines().join(u" | "_s).toStdString();

    // A player's format leaves its thumbnail: one frame, 160 by 120, when the core is the media tool.
    ffx.ImageGrabber.ImageGrabberEnabled = false;
    ffx.setCore(QStandardPaths::findExecutable(u"ffmpeg"_s));
    ffx.FileOutput.ForceFormat = u"psp"_s;
    ffx.setCommandComposer(
        [&](int) { return u"cp "_s + QuoteForShell(video) + u' ' + QuoteForShell(output); });
    ffx.StartProcess();
    ASSERT_TRUE(test::waitForJobEnd(ffx));
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFileInfo::exists(tree.path(u"out/result.thm"_s)); }, 20000));
    EXPECT_EQ(QImage(tree.path(u"out/result.thm"_s), "JPG").size(), QSize(160, 120));
}

} // namespace
} // namespace qb::engine
