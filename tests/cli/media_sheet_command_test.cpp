// quillbox media sheet: a contact sheet of a generated clip by the layout rule, and its refusals.
#include "cli_run.h"

#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <QFileInfo>
#include <QImage>
#include <QStandardPaths>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using qb::test::runQuillbox;

TEST(SheetCommand, AGridOfFramesUnderTheirHeader)
{
    const QString ffmpeg = QStandardPaths::findExecutable(u"ffmpeg"_s);
    if (ffmpeg.isEmpty())
        GTEST_SKIP() << "ffmpeg is not installed";
    qb::test::TempTree tree;
    const QString clip = tree.path(u"clip.mp4"_s);
    ASSERT_EQ(qb::test::runTool(ffmpeg,
                  {u"-v"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                      u"testsrc=size=160x120:rate=10:duration=2"_s, u"-c:v"_s, u"mpeg4"_s, clip})
                  .exitCode,
        0);
    const QString sheet = tree.path(u"sheet.png"_s);
    const qb::test::CliRun run
        = runQuillbox({u"media"_s, u"sheet"_s, clip, sheet, u"--grid"_s, u"2x3"_s, u"--size"_s, u"80max"_s});
    ASSERT_EQ(run.status, 0) << run.err.toStdString();
    const QImage picture(sheet);
    // Frames of 80x60 in two columns and three rows, under a two-line header of the default font.
    EXPECT_EQ(picture.width(), 160);
    EXPECT_GT(picture.height(), 180);

    struct Case
    {
        QStringList args;
        int status;
        const char *says;
    };
    const Case cases[] = {
        {{clip, sheet, u"--grid"_s, u"3"_s}, 2, "--grid takes columns x rows"},
        {{clip}, 2, "needs a video and an output picture"},
        {{tree.path(u"gone.mp4"_s), sheet}, 1, "gone.mp4: no such file"},
        {{tree.writeFile(u"words.mp4"_s, "not a video"), tree.path(u"bad.jpg"_s)}, 1,
            "no frame could be taken"},
    };
    for (const Case &c : cases) {
        const qb::test::CliRun refused = runQuillbox(QStringList {u"media"_s, u"sheet"_s} + c.args);
        EXPECT_EQ(refused.status, c.status) << c.says;
        EXPECT_TRUE(refused.err.contains(QString::fromUtf8(c.says))) << refused.err.toStdString();
    }
    EXPECT_FALSE(QFileInfo::exists(tree.path(u"bad.jpg"_s)));
}

} // namespace
