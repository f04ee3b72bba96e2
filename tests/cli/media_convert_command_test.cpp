// quillbox media convert and media formats as a user runs them: the composed command of a dry run,
// a real conversion the player tool confirms, refusals that name the problem, and Ctrl+C leaving
// nothing under the output's name.
#include "cli/cli_run.h"
#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

#include <gtest/gtest.h>

#include <csignal>

using namespace Qt::StringLiterals;

namespace qb::cli {
namespace {

using test::runQuillbox;
using test::TempTree;

class MediaConvert : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (QStandardPaths::findExecutable(u"ffmpeg"_s).isEmpty())
            GTEST_SKIP() << "ffmpeg is not installed";
    }

    QString clip(const QString &name, const QString &source)
    {
        const QString path = tree.path(name);
        const test::ToolResult made = test::runTool(u"ffmpeg"_s,
            {u"-v"_s, u"error"_s, u"-y"_s, u"-f"_s, u"lavfi"_s, u"-i"_s, source, u"-f"_s, u"lavfi"_s, u"-i"_s,
                u"sine=duration=2"_s, u"-shortest"_s, u"-c:v"_s, u"mpeg4"_s, path});
        EXPECT_EQ(made.exitCode, 0) << made.output.toStdString();
        return path;
    }

    TempTree tree;
};

TEST_F(MediaConvert, DryRunPrintsTheCommandOfEachPass)
{
    const QString source = clip(u"in clip.avi"_s, u"testsrc=size=160x120:rate=25:duration=2"_s);
    const test::CliRun run = runQuillbox(
        {u"media"_s, u"convert"_s, source, u"--format"_s, u"h264"_s, u"--twopass"_s, u"--bitrate"_s, u"300"_s,
            u"--size"_s, u"50%"_s, u"-o"_s, tree.path(u"out.mp4"_s), u"--dry-run"_s});
    ASSERT_EQ(run.status, 0) << run.err.toStdString();
    const QStringList lines = run.out.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].contains(
        u" -i \""_s + source + u"\" -b:v 300K -bt 300K -an -sn -vf \"[in]scale=80:60[out]\""_s))
        << lines[0].toStdString();
    EXPECT_TRUE(lines[0].contains(u" -pass 1 "_s));
    EXPECT_TRUE(lines[1].contains(u" -pass 2 "_s));
    EXPECT_TRUE(lines[1].endsWith(u'"' + tree.path(u"out.mp4"_s) + u'"'));
    EXPECT_FALSE(QFileInfo::exists(tree.path(u"out.mp4"_s)));
}

TEST_F(MediaConvert, ConvertsAndRefusesWithReasons)
{
    const QString source = clip(u"in.avi"_s, u"testsrc=size=160x120:rate=25:duration=2"_s);
    const QString folder = tree.makeDir(u"out"_s);
    const test::CliRun made = runQuillbox({u"media"_s, u"convert"_s, source, u"--format"_s, u"mkv"_s,
        u"--output-dir"_s, folder, u"--set"_s, u"AudioChannels=1"_s});
    ASSERT_EQ(made.status, 0) << made.err.toStdString();
    EXPECT_EQ(made.out.trimmed(), folder + u"/in.mkv"_s);
    const test::ToolResult probe = test::runTool(u"ffprobe"_s,
        {u"-v"_s, u"error"_s, u"-show_entries"_s, u"stream=codec_name,channels"_s, u"-of"_s, u"csv=p=0"_s,
            folder + u"/in.mkv"_s});
    EXPECT_EQ(probe.output.trimmed().split(u'\n'), (QStringList {u"h264"_s, u"vorbis,1"_s}));

    const struct
    {
        QStringList arguments;
        int status;
        QString says;
    } refused[] = {
        {{source, u"--format"_s, u"amr"_s, u"--output-dir"_s, folder}, 1,
            u"no \"libopencore_amrnb\" audio encoder"_s},
        {{source, u"--output-dir"_s, folder}, 2, u"convert needs --format NAME"_s},
        {{source, u"--format"_s, u"mkv"_s, u"--set"_s, u"NoSuchThing=1"_s}, 2,
            u"NoSuchThing is no property"_s},
        {{source, source, u"--format"_s, u"mkv"_s, u"-o"_s, u"x.mkv"_s}, 2, u"-o names one output"_s},
        {{tree.path(u"missing.avi"_s), u"--format"_s, u"mkv"_s}, 1, u"missing.avi: no such file"_s},
        {{source, u"--format"_s, u"mkv"_s, u"--core"_s, tree.path(u"none"_s)}, 1,
            u"install it or name one"_s},
    };
    for (const auto &c : refused) {
        const test::CliRun run = runQuillbox(QStringList {u"media"_s, u"convert"_s} + c.arguments);
        EXPECT_EQ(run.status, c.status) << c.says.toStdString();
        EXPECT_TRUE(run.err.contains(c.says)) << run.err.toStdString();
    }
    EXPECT_EQ(QDir(folder).entryList(QDir::Files), QStringList {u"in.mkv"_s});
}

TEST_F(MediaConvert, TheSecondEncoderByItsName)
{
    if (QStandardPaths::findExecutable(u"mencoder"_s).isEmpty())
        GTEST_SKIP() << "mencoder is not installed";
    const QString source = clip(u"in.avi"_s, u"testsrc=size=160x120:rate=25:duration=2"_s);
    const test::CliRun dry = runQuillbox({u"media"_s, u"convert"_s, source, u"--format"_s, u"xvid"_s,
        u"--core"_s, u"mencoder"_s, u"--bitrate"_s, u"400"_s, u"--dry-run"_s});
    ASSERT_EQ(dry.status, 0) << dry.err.toStdString();
    EXPECT_TRUE(dry.out.startsWith(u'"' + QStandardPaths::findExecutable(u"mencoder"_s) + u"\" \""_s + source
        + u"\" -ovc xvid -xvidencopts bitrate=400:threads=1:turbo -oac mp3lame"_s))
        << dry.out.toStdString();
    const test::CliRun formats = runQuillbox({u"media"_s, u"formats"_s, u"--core"_s, u"mencoder"_s});
    EXPECT_TRUE(formats.out.contains(QRegularExpression(u"\\n  aac +\\.aac +no: it was built without"_s)))
        << formats.out.toStdString();
    EXPECT_TRUE(formats.out.contains(QRegularExpression(u"\\n  flac +\\.flac +no: it has no recipe"_s)));
}

TEST_F(MediaConvert, FormatsTellWhatThisToolCanMake)
{
    const test::CliRun run = runQuillbox({u"media"_s, u"formats"_s});
    ASSERT_EQ(run.status, 0);
    EXPECT_TRUE(run.out.contains(QRegularExpression(u"\\n  mkv +\\.mkv +yes\\n"_s))) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains(QRegularExpression(u"\\n  copy +\\(source's\\) +yes"_s)));
    EXPECT_TRUE(run.out.contains(u"no: the tool has no \"libopencore_amrnb\" audio encoder"_s));
}

TEST_F(MediaConvert, InterruptCancelsAndLeavesNoOutput)
{
    const QString source = clip(u"long.avi"_s, u"testsrc2=size=320x240:rate=25:duration=20"_s);
    const QString output = tree.path(u"out.mp4"_s);
    QProcess process;
    process.start(QStringLiteral(QB_QUILLBOX_PATH),
        {u"media"_s, u"convert"_s, source, u"--format"_s, u"h264"_s, u"--set"_s, u"x264Preset=10"_s, u"-o"_s,
            output});
    ASSERT_TRUE(process.waitForStarted());
    QByteArray seen;
    // At work once the first progress line is out.
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            seen += process.readAllStandardError();
            return seen.contains(" fps ");
        },
        20000))
        << seen.toStdString();
    ::kill(pid_t(process.processId()), SIGINT);
    ASSERT_TRUE(process.waitForFinished(20000));
    EXPECT_EQ(process.exitCode(), 128 + SIGINT) << (seen + process.readAllStandardError()).toStdString();
    EXPECT_FALSE(QFileInfo::exists(output));
}

} // namespace
} // namespace qb::cli
