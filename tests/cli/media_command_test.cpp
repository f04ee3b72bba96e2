// quillbox media: tools named with their versions, sources probed for people and scripts, and a
// clear refusal for what is no media.
#include "cli_run.h"

#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using qb::test::CliRun;

TEST(MediaCommand, ToolsNamesEachToolAndCountsTheEncodersCapabilities)
{
    const CliRun all = qb::test::runQuillbox({u"media"_s, u"tools"_s});
    EXPECT_EQ(all.status, 0) << all.err.toStdString();
    EXPECT_TRUE(all.out.contains(u"CoreName: FFmpeg\n"_s)) << all.out.toStdString();
    EXPECT_TRUE(all.out.contains(u"CoreName: MEncoder\n"_s));
    EXPECT_TRUE(all.out.contains(u"CoreStatus: 5\n"_s));
    EXPECT_TRUE(all.out.contains(u", filters: "_s));

    qb::test::TempTree tree;
    const QString text = tree.writeFile(u"notes.txt"_s, "not a tool");
    const CliRun unknown = qb::test::runQuillbox({u"media"_s, u"tools"_s, text, tree.path(u"absent"_s)});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_TRUE(unknown.err.contains(u"none of the tools"_s)) << unknown.err.toStdString();
    EXPECT_TRUE(unknown.err.contains(u"no such tool: "_s + tree.path(u"absent"_s)));
}

TEST(MediaCommand, ProbePrintsStreamsAndJsonAndRefusesWhatIsNoMedia)
{
    qb::test::TempTree tree;
    const QString clip = tree.path(u"clip one.mkv"_s);
    const qb::test::ToolResult made = qb::test::runTool(u"ffmpeg"_s,
        {u"-v"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s, u"testsrc=size=160x120:duration=2"_s, u"-c:v"_s,
            u"mpeg4"_s, clip});
    ASSERT_EQ(made.exitCode, 0) << made.output.toStdString();

    const CliRun text = qb::test::runQuillbox({u"media"_s, u"probe"_s, clip});
    EXPECT_EQ(text.status, 0) << text.err.toStdString();
    EXPECT_TRUE(text.out.contains(u"Stream#0:0:Video:mpeg4"_s)) << text.out.toStdString();
    EXPECT_TRUE(text.out.contains(u"MKV"_s));

    const CliRun json = qb::test::runQuillbox({u"media"_s, u"probe"_s, u"--json"_s, clip});
    EXPECT_EQ(json.status, 0);
    const QJsonObject first = QJsonDocument::fromJson(json.out.toUtf8()).array().at(0).toObject();
    EXPECT_EQ(first.value(u"VideoWidth"_s).toInt(), 160);
    EXPECT_EQ(first.value(u"Duration"_s).toDouble(), 2);
    EXPECT_EQ(first.value(u"SourceFormat"_s).toString(), u"mkv"_s);

    const QString notMedia = tree.writeFile(u"notes.avi"_s, "plain words, no streams");
    const CliRun refused
        = qb::test::runQuillbox({u"media"_s, u"probe"_s, notMedia, tree.path(u"gone.mp4"_s)});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.err.contains(notMedia + u": not a media file"_s)) << refused.err.toStdString();
    EXPECT_TRUE(refused.err.contains(tree.path(u"gone.mp4"_s) + u": no such file"_s));
    EXPECT_EQ(qb::test::runQuillbox({u"media"_s, u"probe"_s}).status, 2);
    EXPECT_EQ(qb::test::runQuillbox({u"media"_s, u"convert"_s}).status, 2);
}

} // namespace
