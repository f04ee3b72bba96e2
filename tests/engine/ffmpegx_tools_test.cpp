// The runner on the real tools: FFmpeg encoding a generated picture source, and our cabinet maker
// on a directive file.
#include "engine/command_line.h"
#include "engine/engine_recorder.h"
#include "engine/ffmpegx.h"
#include "support/temp_tree.h"
#include "support/tool_run.h"
#include "util/process_priority.h"

#include <QFileInfo>
#include <QRandomGenerator>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

using namespace util; // the priority classes

using test::EngineRecorder;
using test::TempTree;
using test::waitForJobEnd;

TEST(RealTools, FFmpegReportsProgressAndCompletes)
{
    const QString ffmpeg = QStandardPaths::findExecutable(u"ffmpeg"_s);
    ASSERT_FALSE(ffmpeg.isEmpty()) << "ffmpeg is one of the test dependencies";
    TempTree tree;
    const QString output = tree.path(u"test pattern.avi"_s);
    FFmpegX ffx;
    EngineRecorder rec(ffx);
    ffx.setpriority(kPriorityNormal);
    ffx.setOnlyUseExtCommandLine(true);
    // Read at the source's own pace, so that the job lasts two seconds and prints as it goes.
    ffx.setCommandLine(u'"' + ffmpeg
        + u"\" -hide_banner -nostdin -y -re -f lavfi -i testsrc=duration=2:size=320x240:rate=25 -c:v mpeg4 "_s
          u"-stats_period 0.2 "_s
        + QuoteArgument(output));
    ffx.StartProcess();
    ASSERT_TRUE(waitForJobEnd(ffx, 60000));

    EXPECT_EQ(rec.statusLines().first(), u"0:"_s);
    EXPECT_EQ(rec.statusLines().last(), u"2:"_s);
    const auto moving = std::count_if(rec.progress.cbegin(), rec.progress.cend(),
        [](const test::ProgressEvent &p) { return !p.last && (p.value > 0 || p.fps > 0); });
    EXPECT_GE(moving, 2) << rec.pipeText().toStdString();
    EXPECT_TRUE(rec.progress.last().last);
    EXPECT_TRUE(rec.pipeText().contains(u"frame="_s));
    EXPECT_GT(QFileInfo(output).size(), 1024);
}

TEST(RealTools, CabinetMakerRunsToAHundredPercent)
{
    TempTree tree;
    // Several megabytes of word-like text per file, so that the maker reports as it goes, a line
    // about every tenth of a second: the runner reads each line as a chunk of its own.
    QRandomGenerator random(11);
    const QStringList words {u"cabinet"_s, u"folder"_s, u"stream"_s, u"block"_s, u"window"_s, u"match"_s};
    QStringList directive {u".Option EXPLICIT"_s,
        u".Set CabinetNameTemplate=\"%1\""_s.arg(tree.path(u"out.cab"_s)), u".Set DiskDirectory1=\"\""_s,
        u".Set CompressionType=LZX"_s, u".Set CompressionMemory=21"_s, u".Set RptFileName=NUL"_s,
        u".Set InfFileName=NUL"_s};
    for (int f = 0; f < 4; ++f) {
        QByteArray text;
        while (text.size() < 3 * 1024 * 1024)
            text += words[random.bounded(words.size())].toUtf8() + (random.bounded(9) == 0 ? "\n" : " ");
        const QString file = tree.writeFile(u"src/part %1.txt"_s.arg(f), text);
        directive.append(u"\"%1\" \"part %2.txt\""_s.arg(file).arg(f));
    }
    const QString ddf = tree.writeFile(u"build.ddf"_s, directive.join(u"\r\n"_s).toUtf8() + "\r\n");

    FFmpegX ffx;
    EngineRecorder rec(ffx);
    // At the default idle priority a busy machine could starve the maker for minutes.
    ffx.setpriority(kPriorityNormal);
    ffx.setOnlyUseExtCommandLine(true);
    ffx.setCommandLine(u"\"%1\" /f \"%2\""_s.arg(QStringLiteral(QB_MAKECAB_PATH), ddf));
    ffx.StartProcess();
    ASSERT_TRUE(waitForJobEnd(ffx, 120000));

    int highest = 0;
    for (const test::ProgressEvent &p : rec.progress) {
        if (!p.last) {
            EXPECT_EQ(p.max, 100);
            highest = std::max(highest, p.value);
        }
    }
    EXPECT_EQ(highest, 100) << rec.pipe.join(u"|"_s).toStdString();
    EXPECT_TRUE(rec.statusCodes().contains(1));
    EXPECT_EQ(rec.statusLines().last(), u"2:"_s);
    const test::ToolResult check = test::runTool(u"cabextract"_s, {u"-t"_s, tree.path(u"out.cab"_s)});
    EXPECT_EQ(check.exitCode, 0) << check.output.toStdString();
}

} // namespace
} // namespace qb::engine
