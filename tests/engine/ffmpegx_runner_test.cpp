// The runner on real processes: generated scripts print fixture lines, sleep, ignore keys and
// signals, and the events the engine raises are checked in their exact order.
#include "engine/command_line.h"
#include "engine/engine_recorder.h"
#include "engine/ffmpegx.h"
#include "support/temp_tree.h"
#include "util/process_priority.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTest>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

using namespace util; // the priority classes

using test::EngineRecorder;
using test::TempTree;
using test::waitForJobEnd;
using test::writeToolScript;

const QString kBusy = u"正在执行任务"_s;
const QString kNoProcess = u"无法创建进程"_s;

// The state of a process as /proc shows it ('S', 'R', 'T'...), and its nice value.
struct ProcState
{
    char state = '?';
    int nice = 0;
};

ProcState procState(qint64 pid)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return {};
    const QByteArray text = stat.readAll();
    // The fields after the command name, which is in parentheses and may hold blanks.
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    if (fields.size() < 17)
        return {};
    return {fields[0].at(0), fields[16].toInt()};
}

class Runner : public ::testing::Test
{
protected:
    // Runs a script as the literal external command; the command starts it directly.
    void startScript(const QString &body, const QString &arguments = {})
    {
        const QString script = writeToolScript(tree.path(u"tool.sh"_s), body);
        ffx.setOnlyUseExtCommandLine(true);
        ffx.setCommandLine(u'"' + script + u'"' + (arguments.isEmpty() ? QString() : u' ' + arguments));
        ffx.StartProcess();
    }

    TempTree tree;
    FFmpegX ffx;
    EngineRecorder rec {ffx};
};

TEST_F(Runner, NormalRunRaisesEveryStepInOrder)
{
    startScript(uR"(printf 'Input #0, lavfi\n  Duration: 00:00:10.00, start: 0.000000, bitrate: N/A\n'
sleep 0.2
printf 'frame=   50 fps= 25 q=28.0 size=     100kB time=00:00:02.50 bitrate= 327.7kbits/s speed=1.0x    \r'
sleep 0.2
printf 'frame=  100 fps= 25 q=28.0 size=     200kB time=00:00:05.00 bitrate= 327.7kbits/s speed=1.0x    \r'
sleep 0.2
printf 'frame=  250 fps= 25 q=-1.0 Lsize=     500kB time=00:00:10.00 bitrate= 409.6kbits/s speed=1.0x    \n'
sleep 0.2
printf 'video:500kB audio:0kB muxing overhead: 0.1%%\n')"_s);
    EXPECT_TRUE(ffx.Processing());
    ASSERT_TRUE(waitForJobEnd(ffx));

    EXPECT_EQ(rec.statusLines(),
        (QStringList {u"0:"_s, u"1:"_s,
            u"6:Input #0, lavfi  Duration: 00:00:10.00, start: 0.000000, bitrate: N/A"_s,
            u"6:video:500kB audio:0kB muxing overhead: 0.1%"_s, u"2:"_s}));
    // Each chunk's progress is reported when the next chunk arrives; the last event closes the run.
    ASSERT_EQ(rec.progress.size(), 4);
    const int values[] = {2, 5, 10, 0};
    const int ends[] = {10, 10, 10, 0};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(rec.progress[i].value, values[i]) << i;
        EXPECT_EQ(rec.progress[i].max, ends[i]) << i;
        EXPECT_EQ(rec.progress[i].fps, i < 3 ? 25 : 0) << i;
        EXPECT_EQ(rec.progress[i].last, i == 3) << i;
    }
    EXPECT_EQ(rec.all.last(), u"S2:"_s);
    EXPECT_EQ(rec.all.at(rec.all.size() - 2), u"P0/0"_s);
    EXPECT_TRUE(rec.pipeText().startsWith(u"Input #0, lavfi\n"_s));
    EXPECT_TRUE(rec.pipeText().endsWith(u"muxing overhead: 0.1%\n"_s));

    // The run's fields are reset; what the host set stays, except the command.
    EXPECT_FALSE(ffx.Processing());
    EXPECT_EQ(ffx.Status(), 1);
    EXPECT_TRUE(ffx.CommandLine().isEmpty());
    EXPECT_TRUE(ffx.OnlyUseExtCommandLine());
    EXPECT_EQ(ffx.value(), 0);
    EXPECT_EQ(ffx.Max(), 1);
    EXPECT_TRUE(ffx.RemainderInfo().isEmpty());
    EXPECT_EQ(ffx.TwoPassStatus(), u"0"_s);
    EXPECT_EQ(ffx.EndTime().size(), 8);
    EXPECT_EQ(ffx.StartTime().size(), 8);
}

TEST_F(Runner, ChunksHoldAtMost256BytesAndKeepCharactersWhole)
{
    QString expected;
    for (int i = 0; i < 40; ++i)
        expected += u"line %1 of the tool's long output\n"_s.arg(i, 2, 10, QChar(u'0'));
    const QString chinese = QString(u"压缩包创建失败"_s).repeated(60) + u'\n';
    expected += chinese;
    startScript(u"cat <<'EOF'\n"_s + expected + u"EOF"_s);
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_EQ(rec.pipeText(), expected);
    for (const QString &chunk : rec.pipe) {
        EXPECT_TRUE(chunk.endsWith(u"\r\n"_s));
        // A character cut by a read travels with the next chunk: up to three bytes more.
        EXPECT_LE(chunk.chopped(2).toUtf8().size(), 256 + 3);
    }
    EXPECT_GE(rec.pipe.size(), (expected.toUtf8().size() + 255) / 256);
}

TEST_F(Runner, ToolRunsInTheApplicationFolder)
{
    startScript(u"pwd"_s);
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_EQ(
        rec.pipeText().trimmed(), QFileInfo(QCoreApplication::applicationDirPath()).canonicalFilePath());
}

TEST_F(Runner, CancelOnTheExternalPathEndsCanceledThenComplete)
{
    ffx.setFileName(tree.path(u"clip one.avi"_s));
    // The tool stops on its own when it reads the key.
    QObject::connect(&ffx, &FFmpegX::PipeChange, &ffx, [this](const QString &text) {
        if (text.contains(u"tick"_s) && !ffx.IsBusy())
            ADD_FAILURE() << "output after the job ended";
        if (text.contains(u"tick 3"_s))
            ffx.CancelProcess();
    });
    QElapsedTimer clock;
    clock.start();
    startScript(uR"(( i=0; while [ $i -lt 400 ]; do printf 'tick %d\n' $i; i=$((i+1)); sleep 0.05; done ) &
head -c 1 > /dev/null
kill $!
printf 'key received\n')"_s);
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_LT(clock.elapsed(), 5000);
    const QList<int> codes = rec.statusCodes();
    ASSERT_GE(codes.size(), 5);
    EXPECT_EQ(codes.mid(0, 3), (QList<int> {5, 0, 1})); // the file name's setting, then the run
    EXPECT_EQ(rec.statusLines().mid(codes.size() - 2),
        (QStringList {u"4:"_s + tree.path(u"clip one.avi"_s), u"2:"_s}));
    EXPECT_TRUE(rec.progress.last().last);
    EXPECT_FALSE(ffx.Processing());
}

TEST_F(Runner, ToolThatIgnoresTheKeyAndTheRequestIsKilled)
{
    QObject::connect(&ffx, &FFmpegX::PipeChange, &ffx, [this](const QString &text) {
        if (text.contains(u"busy"_s))
            ffx.CancelProcess();
    });
    QElapsedTimer clock;
    clock.start();
    startScript(uR"(trap '' TERM
while :; do printf 'busy\n'; sleep 0.05; done)"_s);
    const qint64 group = ffx.ProcessId();
    ASSERT_GT(group, 0);
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_LT(clock.elapsed(), 6000);
    EXPECT_EQ(rec.statusCodes().mid(rec.statuses.size() - 2), (QList<int> {4, 2}));
    // Nothing of the tool's group is left.
    EXPECT_TRUE(QTest::qWaitFor([&] { return ::kill(pid_t(-group), 0) != 0 && errno == ESRCH; }, 3000));
}

TEST_F(Runner, SilentToolIsStoppedWithoutWaitingForItsOutput)
{
    QElapsedTimer clock;
    clock.start();
    ffx.setOnlyUseExtCommandLine(true);
    ffx.setCommandLine(u"\"/bin/sleep\" 30"_s);
    ffx.StartProcess();
    QTimer::singleShot(200, &ffx, [this] { ffx.CancelProcess(); });
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_LT(clock.elapsed(), 5000);
    EXPECT_EQ(rec.statusLines(), (QStringList {u"0:"_s, u"1:"_s, u"4:"_s, u"2:"_s}));
}

TEST_F(Runner, SuspendedToolIsNotReadUntilResumed)
{
    int chunksAtSuspend = -1;
    QObject::connect(&ffx, &FFmpegX::PipeChange, &ffx, [&](const QString &text) {
        if (chunksAtSuspend < 0 && text.contains(u"n 3\n"_s)) {
            ffx.SuspendApp();
            chunksAtSuspend = int(rec.pipe.size());
        }
    });
    QString expected;
    for (int i = 0; i < 30; ++i)
        expected += u"n %1\n"_s.arg(i);
    startScript(u"i=0; while [ $i -lt 30 ]; do printf 'n %d\\n' $i; i=$((i+1)); sleep 0.02; done"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return chunksAtSuspend >= 0; }, 5000));
    const qint64 pid = ffx.ProcessId();
    QTest::qWait(400);
    EXPECT_EQ(ffx.Status(), 10);
    // Stopped; or, when the stop caught the shell's child between vfork and exec, the shell waits
    // uninterruptibly on its stopped child.
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            const char state = procState(pid).state;
            return state == 'T' || state == 'D';
        },
        3000))
        << procState(pid).state;
    const qsizetype eventsWhileSuspended = rec.all.size();
    QTest::qWait(200);
    EXPECT_EQ(rec.all.size(), eventsWhileSuspended);
    // The round that suspended finishes; nothing is read after it.
    EXPECT_LE(rec.pipe.size(), chunksAtSuspend + 1);

    EXPECT_EQ(ffx.ResumeApp(), 1);
    EXPECT_EQ(ffx.ResumeApp(), 0);
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_EQ(rec.pipeText(), expected);
    EXPECT_EQ(rec.statusCodes().last(), 2);
}

TEST_F(Runner, MissingToolCannotStart)
{
    ffx.setOnlyUseExtCommandLine(true);
    ffx.setCommandLine(u"\"/nonexistent/tool\" -i x"_s);
    ffx.StartProcess();
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_EQ(rec.all, (QStringList {u"S0:"_s, u"S1:"_s, u"S3:"_s + kNoProcess, u"P0/0"_s, u"S2:"_s}));
    EXPECT_FALSE(ffx.Processing());

    // Without the quote the shell starts and says so itself.
    EngineRecorder shellRec(ffx);
    ffx.setCommandLine(u"/nonexistent/tool -i x"_s);
    ffx.StartProcess();
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_TRUE(shellRec.pipeText().contains(u"not found"_s));
    EXPECT_EQ(shellRec.statusCodes().last(), 2);
    EXPECT_FALSE(shellRec.statusCodes().contains(3));
}

TEST_F(Runner, LeadingQuoteDecidesWhetherAShellReadsTheCommand)
{
    const QString script = writeToolScript(tree.path(u"args.sh"_s), u"printf '[%s]\\n' \"$@\""_s);
    ffx.setOnlyUseExtCommandLine(true);
    ffx.setCommandLine(u'"' + script + u"\" $HOME \"a;b\" \"|\" \"x y\" $((6*7))"_s);
    ffx.StartProcess();
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_EQ(rec.pipeText(), u"[$HOME]\n[a;b]\n[|]\n[x y]\n[$((6*7))]\n"_s);

    EngineRecorder shellRec(ffx);
    ffx.setCommandLine(script + u" \"a;b\" $((6*7))"_s);
    ffx.StartProcess();
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_EQ(shellRec.pipeText(), u"[a;b]\n[42]\n"_s);
}

TEST_F(Runner, HostileFileNameReachesTheToolAsOneArgument)
{
    const QString name = u"it's a \"clip\" $(touch PWNED); rm x | cat `id` & %PATH%.mp4"_s;
    const QString file = tree.writeFile(name, "hello");
    ASSERT_FALSE(file.isEmpty());
    ffx.setOnlyUseExtCommandLine(true);
    ffx.setCommandLine(u"\"/bin/cat\" "_s + QuoteArgument(file));
    ffx.StartProcess();
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_EQ(rec.pipeText(), u"hello"_s);

    // Through a pipeline as well.
    EngineRecorder pipeRec(ffx);
    ffx.setCommandLine(u"\"/bin/cat\" "_s + QuoteArgument(file) + u" | \"/usr/bin/tr\" a-z A-Z"_s);
    ffx.StartProcess();
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_EQ(pipeRec.pipeText(), u"HELLO"_s);
    for (const QString &folder : {tree.root(), QCoreApplication::applicationDirPath(), QDir::currentPath()})
        EXPECT_FALSE(QFileInfo::exists(folder + u"/PWNED"_s)) << folder.toStdString();
}

TEST_F(Runner, RemainderIsRightAcrossMidnight)
{
    QTime clock(23, 59, 58);
    ffx.setClock([&] { return clock; });
    bool moved = false;
    QObject::connect(&ffx, &FFmpegX::PipeChange, &ffx, [&](const QString &text) {
        if (!moved && text.contains(u"time=00:00:50"_s)) {
            clock = QTime(0, 0, 8);
            moved = true;
        }
    });
    startScript(uR"(printf '  Duration: 00:01:40.00, start: 0.000000, bitrate: N/A\n'
sleep 0.2
printf 'frame= 1250 fps= 25 q=28.0 size=  100kB time=00:00:50.00 bitrate= 1.0kbits/s speed=1x    \r'
sleep 0.2
printf 'frame= 1300 fps= 25 q=28.0 size=  100kB time=00:00:52.00 bitrate= 1.0kbits/s speed=1x    \r')"_s);
    EXPECT_EQ(ffx.StartTime(), u"23:59:58"_s);
    ASSERT_TRUE(waitForJobEnd(ffx));
    ASSERT_GE(rec.progress.size(), 2);
    // Ten seconds for half of the work: ten more to go, twenty in all.
    EXPECT_EQ(rec.progress[0].value, 50);
    EXPECT_EQ(rec.progress[0].max, 100);
    EXPECT_EQ(rec.progress[0].remainder, u"00:00:10/00:00:20"_s);
    EXPECT_EQ(ffx.EndTime(), u"00:00:08"_s);
}

TEST_F(Runner, RefreshModeRunsTheSameJob)
{
    ffx.setRefresh(true);
    startScript(u"printf 'one\\n'; sleep 0.1; printf 'two\\n'"_s);
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_EQ(rec.pipeText(), u"one\ntwo\n"_s);
    EXPECT_EQ(rec.statusLines(), (QStringList {u"0:"_s, u"1:"_s, u"6:one"_s, u"6:two"_s, u"2:"_s}));
}

TEST_F(Runner, TimerPacesProgressWhenSubclassed)
{
    ffx.setSubclassEnabled(true);
    ffx.setStatusRefreshInterval(150);
    startScript(uR"(printf '  Duration: 00:01:40.00, start: 0.000000, bitrate: N/A\n'
sleep 0.2
i=1; while [ $i -le 60 ]; do
  printf 'frame= %d fps= 25 q=28.0 size=  100kB time=00:00:%02d.00 bitrate= 1.0kbits/s speed=1x    \r' $i $i
  i=$((i+1)); sleep 0.02
done)"_s);
    QElapsedTimer clock;
    clock.start();
    ASSERT_TRUE(waitForJobEnd(ffx));
    ASSERT_GE(rec.pipe.size(), 30);
    const qsizetype ticks = rec.progress.size() - 1;
    EXPECT_GE(ticks, 1);
    // At most one event per 150 ms, whatever the number of chunks.
    EXPECT_LE(ticks, clock.elapsed() / 150 + 2);
    EXPECT_LT(ticks, rec.pipe.size() / 2);
    // A tick may come after the tool's last read; it then says so in LastStatusText.
    for (qsizetype i = 0; i < ticks; ++i)
        EXPECT_EQ(rec.progress[i].max, 100);
    EXPECT_TRUE(rec.progress.last().last);
}

TEST_F(Runner, LogStepWritesBesideTheTool)
{
    const QString core = writeToolScript(tree.path(u"core.bin"_s), u"true"_s);
    ffx.setCore(core);
    EXPECT_EQ(ffx.Core(), core);
    ffx.setLog(true);
    ffx.setFileName(tree.path(u"clip.mkv"_s));
    startScript(u"printf 'reading input.avs\\n'"_s);
    ASSERT_TRUE(waitForJobEnd(ffx));
    const QByteArray log = test::readAll(tree.path(u"core.log"_s));
    EXPECT_TRUE(log.startsWith("reading input.mkv\n\r\n")) << log.toStdString();
}

TEST_F(Runner, SecondStartWhileRunningIsRefused)
{
    ffx.setOnlyUseExtCommandLine(true);
    ffx.setCommandLine(u"\"/bin/sleep\" 30"_s);
    ffx.StartProcess();
    ffx.setCommandLine(u"\"/bin/echo\" second"_s);
    ffx.StartProcess();
    EXPECT_EQ(rec.statusLines().last(), u"3:"_s + kBusy);
    ffx.CancelProcess();
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_FALSE(rec.pipeText().contains(u"second"_s));
}

TEST_F(Runner, CancelWithNothingRunning)
{
    ffx.CancelProcess();
    EXPECT_EQ(rec.statusLines(), (QStringList {u"3:尚未执行任务"_s}));
}

TEST_F(Runner, KeyReachesTheToolAndOnlyDigitKeysTravel)
{
    EXPECT_EQ(ffx.SendKeyToDos(u"q"_s), 0);
    qint64 handle = -1;
    qint64 refused = -1;
    QObject::connect(&ffx, &FFmpegX::PipeChange, &ffx, [&](const QString &text) {
        if (text.contains(u"ready"_s)) {
            refused = ffx.SendKeyToDos(u"j"_s);
            handle = ffx.SendKeyToDos(u"quit"_s);
        }
    });
    startScript(u"printf 'ready\\n'; k=$(head -c 1); printf 'got %s\\n' \"$k\""_s);
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_EQ(refused, 0);
    EXPECT_GT(handle, 0);
    EXPECT_TRUE(rec.pipeText().contains(u"got q\n"_s));
}

TEST_F(Runner, FailedKeyEndsTheReadLoop)
{
    // The key's result shares the read result: a failed key ends the loop at its next test.
    QObject::connect(&ffx, &FFmpegX::PipeChange, &ffx, [&](const QString &text) {
        if (text.contains(u"first"_s))
            ffx.SendKeyToDos(u"j"_s);
    });
    startScript(u"printf 'first\\n'; sleep 0.3; printf 'second\\n'; sleep 5"_s);
    QElapsedTimer clock;
    clock.start();
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_LT(clock.elapsed(), 4000);
    EXPECT_FALSE(rec.pipeText().contains(u"second"_s));
    EXPECT_EQ(rec.statusCodes().last(), 2);
}

TEST_F(Runner, ToolStartsAtThePriorityOfItsClass)
{
    qint64 pid = 0;
    int nice = -100;
    QObject::connect(&ffx, &FFmpegX::PipeChange, &ffx, [&](const QString &text) {
        if (text.contains(u"up"_s)) {
            pid = ffx.ProcessId();
            nice = procState(pid).nice;
        }
    });
    EXPECT_EQ(ffx.priority(), 64);
    startScript(u"printf 'up\\n'; sleep 0.2; printf 'down\\n'"_s);
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_EQ(nice, 19);
    EXPECT_TRUE(rec.priorities.isEmpty());
}

TEST_F(Runner, PriorityTheToolDoesNotHaveIsReportedEveryRound)
{
    QList<int> nices;
    QObject::connect(&ffx, &FFmpegX::PipeChange, &ffx, [&](const QString &) {
        if (ffx.ProcessId())
            nices.append(procState(ffx.ProcessId()).nice);
    });
    // 16 is no priority class: the tool runs at normal and the watch sees the difference.
    ffx.setpriority(16);
    startScript(u"for i in 1 2 3 4; do printf 'chunk %d\\n' $i; sleep 0.1; done"_s);
    ASSERT_TRUE(waitForJobEnd(ffx));
    ASSERT_FALSE(nices.isEmpty());
    ASSERT_GE(rec.priorities.size(), 3);
    for (int cls : rec.priorities)
        EXPECT_EQ(cls, PriorityClassForNice(nices.first()));
    // The position (0 here) replaces the priority, so the event repeats.
    EXPECT_EQ(ffx.priority(), 0);
}

TEST_F(Runner, PriorityChangedDuringTheRunAppliesToTheTool)
{
    int niceAfter = -100;
    QObject::connect(&ffx, &FFmpegX::PipeChange, &ffx, [&](const QString &text) {
        if (text.contains(u"a\n"_s))
            ffx.setpriority(kPriorityBelowNormal);
        if (text.contains(u"b\n"_s))
            niceAfter = procState(ffx.ProcessId()).nice;
    });
    startScript(u"printf 'a\\n'; sleep 0.2; printf 'b\\n'; sleep 0.2"_s);
    ASSERT_TRUE(waitForJobEnd(ffx));
    if (::geteuid() == 0) {
        EXPECT_EQ(niceAfter, 10);
        EXPECT_TRUE(rec.priorities.isEmpty());
    } else {
        // A user may not raise a priority: the tool keeps nice 19 and the watch reports it.
        EXPECT_EQ(niceAfter, 19);
        ASSERT_FALSE(rec.priorities.isEmpty());
        EXPECT_EQ(rec.priorities.first(), kPriorityIdle);
    }
}

TEST_F(Runner, WaitingHelpersAndClosingAProcess)
{
    const QString marker = tree.path(u"made by execute"_s);
    EXPECT_TRUE(ffx.ExecuteAndWait(u"\"/usr/bin/touch\" "_s + QuoteArgument(marker), false));
    EXPECT_TRUE(QFileInfo::exists(marker));
    // No shell: "$HOME" is a file name here.
    EXPECT_TRUE(ffx.ExecuteAndWait(u"/usr/bin/touch "_s + tree.path(u"$HOME"_s), true));
    EXPECT_TRUE(QFileInfo::exists(tree.path(u"$HOME"_s)));
    EXPECT_FALSE(ffx.ExecuteAndWait(u"\"/nonexistent/program\""_s, false));

    EXPECT_TRUE(ffx.ShellAndWait(u"echo $((1+1)) > '"_s + tree.path(u"shell.txt"_s) + u"'"_s, false));
    EXPECT_EQ(test::readAll(tree.path(u"shell.txt"_s)), "2\n");
    // One argument above the kernel's 128 KiB limit: the shell cannot start, and says so.
    EXPECT_FALSE(ffx.ShellAndWait(u"true "_s + QString(200000, u'x'), false));

    QProcess sleeper;
    sleeper.start(u"/bin/sleep"_s, {u"30"_s});
    ASSERT_TRUE(sleeper.waitForStarted());
    EXPECT_TRUE(ffx.CloseProcess(sleeper.processId(), 0));
    EXPECT_TRUE(sleeper.waitForFinished(3000));
    EXPECT_FALSE(ffx.CloseProcess(0, 0));
    EXPECT_FALSE(ffx.CloseProcess(-1, 0));
}

} // namespace
} // namespace qb::engine
