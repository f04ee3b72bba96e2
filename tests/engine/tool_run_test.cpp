// The run object on real processes: many short runs leave nothing behind and never hold up the
// event loop; the bounded waits end what outlives them; cut characters come out whole.
#include "engine/chunk_decoder.h"
#include "engine/engine_recorder.h"
#include "engine/tool_run.h"
#include "engine/wait_for_tool.h"
#include "support/temp_tree.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QPointer>
#include <QTest>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

using test::TempTree;

qsizetype openDescriptors()
{
    return QDir(u"/proc/self/fd"_s).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System).size();
}

// Processes whose parent is this one, zombies included.
int childProcesses()
{
    int children = 0;
    const QString self = QString::number(::getpid());
    for (const QString &pid : QDir(u"/proc"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile stat(u"/proc/"_s + pid + u"/stat"_s);
        if (!pid.at(0).isDigit() || !stat.open(QIODevice::ReadOnly))
            continue;
        const QByteArray text = stat.readAll();
        const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
        if (fields.size() > 1 && fields[1] == self.toLatin1())
            ++children;
    }
    return children;
}

bool groupGone(qint64 group)
{
    return ::kill(pid_t(-group), 0) != 0 && errno == ESRCH;
}

TEST(ToolRun, ThousandShortRunsLeakNothingAndNeverStallTheLoop)
{
    TempTree tree;
    const QString banner
        = test::writeToolScript(tree.path(u"banner.sh"_s), u"printf 'Tool version 1.0\\n'"_s);
    QObject owner;
    // Settle descriptors Qt opens lazily on a first run before counting.
    {
        ToolRun warmUp;
        ASSERT_TRUE(warmUp.start({banner, {}, false}, util::kPriorityNormal));
        ASSERT_TRUE(QTest::qWaitFor([&] { return warmUp.ended(); }, 5000));
    }
    const qsizetype descriptorsBefore = openDescriptors();
    const int childrenBefore = childProcesses();

    constexpr int kRuns = 1000;
    int done = 0;
    // A plain event loop: a test wait would sleep between its turns.
    QEventLoop loop;
    int wrongOutput = 0;
    std::function<void()> startNext = [&] {
        auto *run = new ToolRun(ToolRun::Output::Read, &owner);
        auto output = std::make_shared<QString>();
        QObject::connect(run, &ToolRun::outputReady, run, [run, output] {
            while (run->hasOutput())
                *output += run->read();
        });
        QObject::connect(run, &ToolRun::finished, run, [&, run, output] {
            while (run->hasOutput())
                *output += run->read();
            *output += run->readRest();
            if (*output != u"Tool version 1.0\n"_s)
                ++wrongOutput;
            run->deleteLater();
            if (++done < kRuns)
                QTimer::singleShot(0, &owner, startNext);
            else
                loop.quit();
        });
        if (!run->start({banner, {}, false}, util::kPriorityNormal)) {
            ADD_FAILURE() << "run " << done << " did not start";
            done = kRuns;
            loop.quit();
        }
    };

    QElapsedTimer gap;
    qint64 longestGap = 0;
    QTimer pulse;
    QObject::connect(&pulse, &QTimer::timeout, [&] { longestGap = std::max(longestGap, gap.restart()); });
    gap.start();
    pulse.start(5);
    startNext();
    QTimer::singleShot(25000, &loop, &QEventLoop::quit);
    loop.exec();
    ASSERT_EQ(done, kRuns);
    pulse.stop();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    EXPECT_EQ(wrongOutput, 0);
    EXPECT_TRUE(owner.findChildren<ToolRun *>().isEmpty());
    EXPECT_EQ(openDescriptors(), descriptorsBefore);
    EXPECT_EQ(childProcesses(), childrenBefore);
    EXPECT_LE(longestGap, 50) << "the event loop stalled";
}

TEST(ToolRun, DestroyingARunKillsItsWholeGroup)
{
    auto run = std::make_unique<ToolRun>();
    ASSERT_TRUE(run->start({u"/bin/sh"_s, {u"-c"_s, u"sleep 30 & sleep 30"_s}, true}, util::kPriorityNormal));
    const qint64 group = run->pid();
    run.reset();
    EXPECT_TRUE(QTest::qWaitFor([&] { return groupGone(group); }, 3000));
}

TEST(ToolRun, TerminateReportsOnceTheToolIsGone)
{
    ToolRun run;
    int terminated = 0;
    int finished = 0;
    QObject::connect(&run, &ToolRun::terminated, [&] { ++terminated; });
    QObject::connect(&run, &ToolRun::finished, [&] { ++finished; });
    // A stopped tool must still hear the request.
    ASSERT_TRUE(run.start({u"/bin/sleep"_s, {u"30"_s}, false}, util::kPriorityNormal));
    ASSERT_TRUE(run.suspend());
    run.terminate();
    ASSERT_TRUE(QTest::qWaitFor([&] { return terminated == 1; }, 4000));
    EXPECT_EQ(finished, 0);
    EXPECT_FALSE(run.exitCode().has_value());
    // Terminating an ended run reports at once.
    ToolRun ended;
    QObject::connect(&ended, &ToolRun::terminated, [&] { ++terminated; });
    ASSERT_TRUE(ended.start({u"/bin/true"_s, {}, false}, util::kPriorityNormal));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ended.ended(); }, 3000));
    ended.terminate();
    EXPECT_EQ(terminated, 2);
}

TEST(WaitForTool, BoundsEndWhatOutlivesThem)
{
    struct Case
    {
        const char *name;
        QString script;
        WaitBounds bounds;
        bool endedInTime;
    };
    const Case cases[] = {
        {"quick", u"printf 'v2.3\\n'; exit 3"_s, {5000, 1 << 20}, true},
        {"silent and slow", u"sleep 30"_s, {300, 1 << 20}, false},
        {"endless output", u"yes 'a line of output'"_s, {10000, 64 << 10}, false},
    };
    for (const Case &c : cases) {
        QElapsedTimer clock;
        clock.start();
        const WaitedRun run = WaitForTool({u"/bin/sh"_s, {u"-c"_s, c.script}, true}, c.bounds);
        EXPECT_TRUE(run.started) << c.name;
        EXPECT_EQ(run.endedInTime, c.endedInTime) << c.name;
        EXPECT_LT(clock.elapsed(), c.bounds.milliseconds + 2500) << c.name;
        EXPECT_LE(run.output.toUtf8().size(), c.bounds.outputBytes + ToolRun::kChunkBytes + 3) << c.name;
    }
    const WaitedRun quick = WaitForTool({u"/bin/sh"_s, {u"-c"_s, u"printf 'v2.3\\n'; exit 3"_s}, true}, {});
    EXPECT_EQ(quick.output, u"v2.3\n"_s);
    EXPECT_EQ(quick.exitCode, 3);
    EXPECT_FALSE(WaitForTool({u"/nonexistent/tool"_s, {}, false}, {}).started);

    // What the tool left running in its group goes with the run.
    TempTree tree;
    const QString pidFile = tree.path(u"child.pid"_s);
    const WaitedRun leaver
        = WaitForTool({u"/bin/sh"_s, {u"-c"_s, u"sleep 30 > /dev/null 2>&1 & echo $! > "_s + pidFile}, true},
            {2000, 1 << 20});
    EXPECT_TRUE(leaver.endedInTime);
    const pid_t child = pid_t(test::readAll(pidFile).trimmed().toLong());
    ASSERT_GT(child, 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return ::kill(child, 0) != 0 && errno == ESRCH; }, 3000));
}

TEST(WaitForTool, ToolsSideBySideTakeTheTimeOfTheSlowest)
{
    const auto shell = [](const QString &script) {
        return ToolLaunch {u"/bin/sh"_s, {u"-c"_s, script}, true};
    };
    QElapsedTimer clock;
    clock.start();
    const std::vector<WaitedRun> runs
        = WaitForTools({shell(u"sleep 0.6; echo one"_s), shell(u"sleep 0.6; echo two"_s),
                           shell(u"yes chatter"_s), {u"/nonexistent/tool"_s, {}, false}},
            {5000, 64 << 10});
    EXPECT_LT(clock.elapsed(), 1100); // not 1.2 s, the sum of the sleeps
    ASSERT_EQ(runs.size(), 4u);
    EXPECT_EQ(runs[0].output, u"one\n"_s);
    EXPECT_EQ(runs[1].output, u"two\n"_s);
    EXPECT_TRUE(runs[0].endedInTime && runs[1].endedInTime);
    EXPECT_FALSE(runs[2].endedInTime); // ended by its output bound
    EXPECT_FALSE(runs[3].started);
}

TEST(ChunkDecoder, CharactersCutByAnyReadSizeComeOutWhole)
{
    const QByteArray text = QString(u"进度 50% – ok ✓ 𝄞 done\n"_s).repeated(20).toUtf8();
    for (const qsizetype size : {1, 2, 3, 5, 256}) {
        ChunkDecoder decoder;
        QString out;
        for (qsizetype at = 0; at < text.size(); at += size)
            out += decoder.decode(text.mid(at, size), false);
        out += decoder.decode({}, true);
        EXPECT_EQ(out.toUtf8(), text) << size;
    }
    // A cut character at the very end is not lost, and bytes that aren't UTF-8 are not held.
    ChunkDecoder decoder;
    EXPECT_EQ(decoder.decode("ab\xE8\xBF", false), u"ab"_s);
    EXPECT_FALSE(decoder.decode({}, true).isEmpty());
    EXPECT_FALSE(decoder.decode("\xFF\xFE\xE8", false).isEmpty());
}

} // namespace
} // namespace qb::engine
