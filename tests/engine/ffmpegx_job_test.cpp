// Jobs on the composed path: the start checks, how the end of a job is judged from its output,
// two passes, cancel with and without removal, the event gate, and the state fields' rules.
#include "engine/command_line.h"
#include "engine/engine_recorder.h"
#include "engine/ffmpegx.h"
#include "support/temp_tree.h"

#include <QFileInfo>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

using test::EngineRecorder;
using test::TempTree;
using test::waitForJobEnd;

// A shell command that writes size bytes to a file (nothing for a negative size).
QString writeBytes(const QString &file, int size)
{
    if (size < 0)
        return u"true"_s;
    return u"head -c %1 /dev/zero > "_s.arg(size) + QuoteForShell(file);
}

class Job : public ::testing::Test
{
protected:
    void SetUp() override
    {
        source = tree.writeFile(u"in/source clip.avi"_s, "not really a video");
        core = tree.writeFile(u"tools/core"_s, "#!/bin/sh\n");
        output = tree.path(u"out/result.mp4"_s);
        tree.makeDir(u"out"_s);
    }

    // A job with source, tool and output folder set, composed by the given function.
    void prepare(FFmpegX::CommandComposer composer)
    {
        ffx.setFileName(source);
        ffx.setCore(core);
        ffx.setOutputDir(tree.path(u"out"_s));
        ffx.FileOutput.OutputFileName = output;
        ffx.setCommandComposer(std::move(composer));
        rec.all.clear();
        rec.statuses.clear();
    }

    TempTree tree;
    QString source;
    QString core;
    QString output;
    FFmpegX ffx;
    EngineRecorder rec {ffx};
};

TEST_F(Job, StartChecksRefuseAnIncompleteJob)
{
    ffx.StartProcess();
    EXPECT_EQ(rec.statusLines(), (QStringList {u"3:未设置原始来源文件!"_s}));
    EXPECT_FALSE(ffx.Processing());

    ffx.setFileName(tree.path(u"missing.avi"_s));
    ffx.StartProcess();
    EXPECT_EQ(rec.statusLines().last(), u"3:不能找到原始来源文件!"_s);

    ffx.setFileName(source);
    ffx.setOutputDir(tree.path(u"no such folder"_s));
    ffx.StartProcess();
    EXPECT_EQ(rec.statusLines().last(), u"3:不存在的输出路径!"_s);
    EXPECT_FALSE(ffx.Processing());

    // Without an output folder the job goes on; without a tool it stops and stays marked busy.
    ffx.setOutputDir(QString());
    ffx.StartProcess();
    EXPECT_EQ(rec.statusLines().mid(rec.statuses.size() - 2),
        (QStringList {u"6:未设置输出路径, 文件将保存到来源路径!"_s, u"3:无法设置转换核心程序!"_s}));
    EXPECT_TRUE(ffx.Processing());
    ffx.StartProcess();
    EXPECT_EQ(rec.statusLines().last(), u"3:正在执行任务"_s);
}

TEST_F(Job, DriveSourcePassesTheExistenceCheck)
{
    ffx.setFileName(u"E:"_s);
    EXPECT_EQ(ffx.FileName(), u"E:"_s);
    ffx.setOutputDir(tree.path(u"out"_s));
    ffx.StartProcess();
    // It gets as far as the tool check.
    EXPECT_EQ(rec.statusLines().last(), u"3:无法设置转换核心程序!"_s);
}

TEST_F(Job, ScriptEngineMustBeInstalled)
{
    prepare([](int) { return u"true"_s; });
    ffx.AVS.AVSEnabled = true;
    ffx.StartProcess();
    EXPECT_EQ(rec.statusLines().last(), u"3:启用但没有安装 AviSynth!"_s);
}

TEST_F(Job, OutputSizeDecidesTheEnd)
{
    struct Case
    {
        int size;
        QString expected;
    };
    const Case cases[] = {
        {1023, u"3:已创建文件存在问题"_s},
        {1024, u"2:"_s + tree.path(u"out/result.mp4"_s)},
        {-1, u"3:无法正确创建文件"_s},
    };
    for (const Case &c : cases) {
        QFile::remove(output);
        prepare([&](int pass) {
            EXPECT_EQ(pass, 0);
            return writeBytes(output, c.size);
        });
        ffx.StartProcess();
        ASSERT_TRUE(waitForJobEnd(ffx));
        EXPECT_EQ(rec.statusLines().last(), c.expected) << c.size;
        EXPECT_EQ(rec.statusLines().first(), u"0:"_s + source);
        EXPECT_EQ(rec.scripts.last(), writeBytes(output, c.size));
        EXPECT_TRUE(ffx.CommandLine().isEmpty());
    }
}

TEST_F(Job, SmallFirstPassIsAnErrorAndTheSecondPassStillRuns)
{
    QStringList passStates;
    prepare([&](int pass) {
        passStates.append(ffx.TwoPassStatus());
        return writeBytes(output, pass == 1 ? 10 : 4096);
    });
    ffx.Job.Twopass = true;
    ffx.StartProcess();
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_EQ(passStates, (QStringList {u"1"_s, u"2"_s}));
    EXPECT_EQ(rec.statusCodes(), (QList<int> {0, 1, 3, 0, 1, 2}));
    EXPECT_EQ(QFileInfo(output).size(), 4096);
    EXPECT_EQ(ffx.TwoPassStatus(), u"0"_s);
}

TEST_F(Job, GoodFirstPassReportsPassOneAndIsThrownAway)
{
    bool firstPassOutputGone = false;
    prepare([&](int pass) {
        if (pass == 2)
            firstPassOutputGone = !QFileInfo::exists(output);
        return writeBytes(output, 2048 * pass);
    });
    ffx.Job.Twopass = true;
    ffx.StartProcess();
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_TRUE(firstPassOutputGone);
    EXPECT_EQ(rec.statusLines(),
        (QStringList {u"0:"_s + source, u"1:"_s + source, u"6:Pass 1 OK"_s, u"0:"_s + source,
            u"1:"_s + source, u"2:"_s + output}));
    EXPECT_EQ(rec.scripts.size(), 2);
}

TEST_F(Job, CancelInTheFirstPassSkipsTheSecond)
{
    prepare([&](int pass) { return pass == 1 ? writeBytes(output, 4096) + u"; sleep 30"_s : u"true"_s; });
    ffx.Job.Twopass = true;
    ffx.StartProcess();
    QTimer::singleShot(300, &ffx, [this] { ffx.CancelProcess(); });
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_EQ(rec.statusCodes(), (QList<int> {0, 1, 4}));
    EXPECT_EQ(rec.scripts.size(), 1);
}

TEST_F(Job, CanceledJobRemovesItsOutputUnlessTold)
{
    for (const bool remove : {true, false}) {
        QFile::remove(output);
        prepare([&](int) { return writeBytes(output, 4096) + u"; echo written; sleep 30"_s; });
        ffx.FileOutput.RemoveFileAfterCanceled = remove;
        QObject::connect(&ffx, &FFmpegX::PipeChange, &ffx, [this](const QString &text) {
            if (text.contains(u"written"_s))
                ffx.CancelProcess();
        });
        ffx.StartProcess();
        ASSERT_TRUE(waitForJobEnd(ffx));
        QObject::disconnect(&ffx, &FFmpegX::PipeChange, &ffx, nullptr);
        EXPECT_EQ(rec.statusLines().last(), u"4:"_s + source);
        EXPECT_EQ(QFileInfo::exists(output), !remove);
    }
}

TEST_F(Job, ClosedGateLeavesOnlyTheComposedCommand)
{
    ffx.setAllowRaiseEvent(false);
    prepare([&](int) { return writeBytes(output, 2048); });
    rec.scripts.clear();
    ffx.StartProcess();
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_EQ(rec.all, (QStringList {u"Script:"_s + writeBytes(output, 2048)}));
    EXPECT_EQ(QFileInfo(output).size(), 2048);
    EXPECT_FALSE(ffx.Processing());
}

TEST_F(Job, SplitOutputKeepsTheMiddlePiece)
{
    const QString base = tree.path(u"out/result"_s);
    prepare([&](int) {
        return writeBytes(base + u"-001.mp4"_s, 2000) + u"; "_s + writeBytes(base + u"-002.mp4"_s, 3000)
            + u"; "_s + writeBytes(base + u"-003.mp4"_s, 4000);
    });
    ffx.FileOutput.SourceSuffix = u"MKV"_s;
    ffx.StartProcess();
    ASSERT_TRUE(waitForJobEnd(ffx));
    EXPECT_EQ(rec.statusLines().last(), u"2:"_s + output);
    EXPECT_EQ(QFileInfo(output).size(), 3000);
    EXPECT_FALSE(QFileInfo::exists(base + u"-001.mp4"_s));
    EXPECT_FALSE(QFileInfo::exists(base + u"-003.mp4"_s));
}

TEST_F(Job, PositionAndEndReadThroughTheirRules)
{
    EXPECT_EQ(ffx.Max(), 1); // nothing known yet
    ffx.setMax(100);
    ffx.setvalue(50);
    EXPECT_EQ(ffx.value(), 50);
    ffx.setvalue(150);
    EXPECT_EQ(ffx.value(), 0); // beyond the end reads 0
    ffx.setMax(0.5);
    EXPECT_EQ(ffx.Max(), 1);
    EXPECT_EQ(FFmpegX::GetStatusString(11), QString());
    EXPECT_EQ(FFmpegX::GetStatusString(2), u"Complete"_s);
}

TEST_F(Job, SettersRaiseTheirSettingChange)
{
    ffx.setFileName(source + u"|"_s + tree.path(u"second.avi"_s));
    EXPECT_EQ(ffx.FileName(), source);
    // The first source exists, so its probe's summary (its size alone: no tool is set) is the
    // FileInfo; a source that cannot be probed keeps the value as given.
    EXPECT_EQ(ffx.FileInfo(), u"18B"_s);
    EXPECT_TRUE(ffx.TwoPassStatus().isEmpty());

    ffx.setOutputDir(tree.path(u"out"_s));
    ffx.setOutputDir(tree.path(u"out/"_s)); // the same as stored: nothing
    ffx.setOutputDir(u"\\"_s);
    EXPECT_TRUE(ffx.OutputDir().isEmpty());
    ffx.setOutputDir(QString()); // already empty
    EXPECT_EQ(rec.statusLines(),
        (QStringList {u"5:"_s + source + u"|"_s + tree.path(u"second.avi"_s), u"5:"_s + tree.path(u"out/"_s),
            u"5:"_s}));

    // A tool that is no file leaves the old one.
    ffx.setCore(core);
    ffx.setCore(tree.path(u"tools/missing"_s));
    EXPECT_EQ(ffx.Core(), core);

    QSignalSpy marked(&ffx, &FFmpegX::PropertyMarkedChanged);
    ffx.setpriority(64); // unchanged
    ffx.setpriority(32);
    ffx.setStatusRefreshInterval(250);
    ASSERT_EQ(marked.size(), 2);
    EXPECT_EQ(marked[0][0].toString(), u"priority"_s);
    EXPECT_EQ(marked[1][0].toString(), u"StatusRefreshInterval"_s);

    ffx.setFileName(tree.path(u"gone.avi"_s) + u"|"_s + source);
    EXPECT_EQ(ffx.FileInfo(), tree.path(u"gone.avi"_s) + u"|"_s + source);
}

TEST_F(Job, NameHelpersForwardToTheFileLayer)
{
    tree.writeFile(u"a.txt"_s, "x");
    tree.writeFile(u"a(1).txt"_s, "x");
    EXPECT_EQ(ffx.RenameExists(tree.path(u"a.txt"_s)), tree.path(u"a(2).txt"_s));
    EXPECT_TRUE(ffx.MakedPath(tree.path(u"deep/er/still"_s)));
    EXPECT_TRUE(ffx.DirExists(tree.path(u"deep/er"_s)));
    EXPECT_EQ(ffx.cPath(u"x"_s), u"x/"_s);
    EXPECT_EQ(ffx.GetFileLen(source), 18);
    const QString temp = ffx.CreateTempFile(tree.root(), u"a"_s);
    EXPECT_TRUE(QFileInfo(temp).fileName().startsWith(u"aTM"_s));

    ffx.FileOutput.Overwrite = false;
    const QString moved = tree.writeFile(u"m.txt"_s, "m");
    EXPECT_TRUE(ffx.MoveFileTo(moved, tree.path(u"a.txt"_s)));
    EXPECT_TRUE(QFileInfo::exists(tree.path(u"a(2).txt"_s)));

    QSignalSpy start(&ffx, &FFmpegX::SearchStart);
    QSignalSpy found(&ffx, &FFmpegX::SearchFile);
    QSignalSpy end(&ffx, &FFmpegX::SearchEnd);
    ffx.SearchFileStart(tree.path(u"in"_s), u"*.avi"_s, QString());
    EXPECT_EQ(start.size(), 1);
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found[0][2].toString(), source);
    EXPECT_EQ(end.size(), 1);
}

} // namespace
} // namespace qb::engine

namespace qb::engine {
namespace {

TEST(EngineEvents, DeclaredInTheControlsNumberingOrder)
{
    const QStringList expected {u"DownloadsProgress"_s, u"DownloadsStatus"_s, u"DownloadsFinished"_s,
        u"DownloadBegin"_s, u"DownloadAllComplete"_s, u"DownloadsFileStarted"_s, u"DownloadsFileReadySave"_s,
        u"DownloadsFileSaved"_s, u"DownloadsMIMEType"_s, u"DownloadsCacheFile"_s, u"ImageProgress"_s,
        u"FileInfoChange"_s, u"StatusChange"_s, u"ProgressChange"_s, u"PriorityChanged"_s, u"PipeChange"_s,
        u"ScriptChange"_s, u"SearchStart"_s, u"SearchEnd"_s, u"SearchFile"_s};
    const QMetaObject &meta = FFmpegX::staticMetaObject;
    QStringList signalNames;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        if (method.methodType() == QMetaMethod::Signal)
            signalNames.append(QString::fromLatin1(method.name()));
    }
    ASSERT_GE(signalNames.size(), expected.size());
    EXPECT_EQ(signalNames.mid(0, expected.size()), expected);
    const QMetaMethod progress
        = meta.method(meta.indexOfSignal("ProgressChange(int,int,int,QString,QString,bool)"));
    EXPECT_EQ(progress.parameterNames(),
        (QList<QByteArray> {
            "ProgressValue", "ProgressMax", "FPSSpeed", "RemainderInfo", "OutputInfo", "LastStatusText"}));
}

} // namespace
} // namespace qb::engine
