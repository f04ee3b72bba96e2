// The seam between pure parts and the runner: a composed argument list reaches the tool exactly
// and is shown as one text that splits back into it; recorded tool output replayed in 256-byte
// reads drives the interpreter as a live run would.
#include "engine/console_scan.h"
#include "engine/engine_recorder.h"
#include "engine/ffmpegx.h"
#include "engine/status_codes.h"
#include "engine/tool_command.h"
#include "support/temp_tree.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

using test::TempTree;

TEST(ComposedCommand, TextSplitsBackIntoTheArguments)
{
    const QStringList hostile {u"plain"_s, u""_s, u"two words"_s, u"say \"hi\""_s, u"back\\slash\\"_s,
        u"a|b"_s, u"$(touch x); `id`"_s, u"tab\there"_s, u"\\\"\\"_s, u"中文 名字.mkv"_s};
    const ComposedCommand command(ToolCommand {u"/opt/tools/enc oder"_s, hostile});
    EXPECT_EQ(command.launch.program, u"/opt/tools/enc oder"_s);
    EXPECT_EQ(command.launch.arguments, hostile);
    EXPECT_FALSE(command.launch.throughShell);
    const ToolLaunch fromText = PlanToolLaunch(command.text);
    EXPECT_EQ(fromText.program, command.launch.program);
    EXPECT_EQ(fromText.arguments, hostile);
}

TEST(ComposedCommand, JobComposerSeesTheSettingsAndTheToolGetsItsArguments)
{
    TempTree tree;
    const QString source = tree.writeFile(u"in/it's a \"clip\" $(x).avi"_s, "data");
    const QString args = test::writeToolScript(tree.path(u"args.sh"_s), u"printf '[%s]\\n' \"$@\""_s);
    FFmpegX ffx;
    test::EngineRecorder rec(ffx);
    ffx.setFileName(source);
    ffx.setCore(args);
    ffx.FileOutput.ForceFormat = u"mp4"_s;
    int passSeen = -1;
    ffx.setJobComposer([&](const JobSettings &job, int pass) {
        passSeen = pass;
        return ToolCommand {job.Core, {u"-i"_s, job.FileName, u"-f"_s, job.FileOutput.ForceFormat}};
    });
    ffx.StartProcess();
    ASSERT_TRUE(test::waitForJobEnd(ffx));
    EXPECT_EQ(passSeen, 0);
    EXPECT_EQ(rec.pipeText(), u"[-i]\n["_s + source + u"]\n[-f]\n[mp4]\n"_s);
    ASSERT_EQ(rec.scripts.size(), 1);
    EXPECT_EQ(PlanToolLaunch(rec.scripts.first()).arguments.at(1), source);
}

TEST(ConsoleReplay, RecordedEncodeInReadsGivesLengthPositionAndSpeed)
{
    ScanState state;
    QStringList statuses;
    const auto raise
        = [&](int code, const QString &text) { statuses.append(u"%1:%2"_s.arg(code).arg(text)); };
    for (const QString &chunk : test::replayInReads(test::recorded(u"ffmpeg-5.1-encode.txt"_s)))
        ScanToolOutput(chunk, state, {}, raise);
    // The first read ends inside the length ("Duration: 00:00:02."), which still gives two
    // seconds. The last chunk with progress is cut in mid-line too: its first time is
    // 00:00:01.55, read with "," as the fraction mark (so 2), and it does not begin with
    // "frame=", so it carries no speed.
    EXPECT_EQ(state.Max, 2.0);
    EXPECT_EQ(state.value, 2.0);
    EXPECT_EQ(state.FPSSpeed, 0);
    ASSERT_FALSE(statuses.isEmpty());
    EXPECT_TRUE(statuses.first().startsWith(u"6:ffmpeg stats"_s));
    EXPECT_TRUE(statuses.first().endsWith(u"Duration: 00:00:02."_s)) << statuses.first().toStdString();
    for (const QString &status : statuses)
        EXPECT_FALSE(status.startsWith(u"3:"_s)) << status.toStdString();
}

TEST(ConsoleReplay, RecordedUnknownEncoderIsAnError)
{
    ScanState state;
    QStringList errors;
    const auto raise = [&](int code, const QString &text) {
        if (code == kFatalToolText)
            errors.append(text);
    };
    for (const QString &chunk : test::replayInReads(test::recorded(u"ffmpeg-5.1-unknown-encoder.txt"_s)))
        ScanToolOutput(chunk, state, {}, raise);
    ASSERT_EQ(errors.size(), 1);
    EXPECT_TRUE(errors.first().contains(u"Unknown encoder 'nosuchenc'"_s)) << errors.first().toStdString();
}

} // namespace
} // namespace qb::engine
