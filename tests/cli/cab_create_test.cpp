// quillbox cab create as a user runs it: hostile names, the options, progress, and interruptions
// that leave nothing behind.
#include "cli_run.h"
#include "support/hostile_names.h"
#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QTest>

#include <gtest/gtest.h>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

struct Created
{
    int status = -1;
    QString out;
    QString err;
};

Created create(const QStringList &arguments, const QString &folder = {})
{
    QProcess process;
    if (!folder.isEmpty())
        process.setWorkingDirectory(folder);
    process.start(QStringLiteral(QB_QUILLBOX_PATH), QStringList {u"cab"_s, u"create"_s} + arguments);
    process.waitForFinished(60000);
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
        QString::fromUtf8(process.readAllStandardOutput()),
        QString::fromUtf8(process.readAllStandardError())};
}

QStringList entriesOf(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

TEST(CabCreate, HostileNamesGoInExactlyAndTheRestAreRefusedByName)
{
    qb::test::TempTree tree;
    const qb::test::HostileFolder hostile = qb::test::MakeHostileFolder(tree);
    const QMap<QByteArray, QByteArray> before = qb::test::RawFilesBelow(hostile.folder);
    const QString cabinet = tree.makeDir(u"out"_s) + u"/hostile.cab"_s;
    const Created run = create({cabinet, hostile.folder});
    // Refused names make the run fail although the rest was packed.
    EXPECT_EQ(run.status, 1) << run.err.toStdString();
    for (const QString &refused : hostile.refused)
        EXPECT_TRUE(run.err.contains(refused)) << run.err.toStdString();
    ASSERT_TRUE(QFileInfo::exists(cabinet)) << run.err.toStdString();
    EXPECT_EQ(qb::test::RawFilesBelow(hostile.folder), before);
    EXPECT_EQ(entriesOf(tree.path(u"out"_s)), (QStringList {u"hostile.cab"_s}));
    const QMap<QString, QString> verdicts = qb::test::CompareExtractors(
        cabinet, tree.makeDir(u"unpacked"_s), hostile.storable, "Quillbox Desk.txt");
    for (auto it = verdicts.cbegin(); it != verdicts.cend(); ++it)
        EXPECT_EQ(it.value(), QString()) << it.key().toStdString();
    // And our own reader gives the same back.
    const QString ours = tree.makeDir(u"ours"_s);
    const qb::test::CliRun extracted
        = qb::test::runQuillbox({u"cab"_s, u"extract"_s, cabinet, u"-d"_s, ours});
    EXPECT_EQ(extracted.status, 0) << extracted.err.toStdString();
    QMap<QByteArray, QByteArray> got = qb::test::RawFilesBelow(ours);
    got.remove("Quillbox Desk.txt");
    EXPECT_EQ(got, hostile.storable);
}

TEST(CabCreate, RelativePathsCompressionsAndProgress)
{
    qb::test::TempTree tree;
    tree.writeFile(u"work/pkg/a.txt"_s, QByteArray("alpha ").repeated(20000));
    tree.writeFile(u"work/pkg/sub/b.txt"_s, "bravo");
    tree.writeFile(u"work/--odd"_s, "a file whose name looks like an option");
    const QString work = tree.path(u"work"_s);
    struct Case
    {
        QStringList options;
        QString method; // as 7-Zip names the folder's method
    };
    const Case cases[] = {
        {{u"--compression"_s, u"none"_s}, u"None"_s},
        {{u"--compression"_s, u"MSZIP"_s}, u"MSZip"_s},
        {{u"--compression"_s, u"lzx"_s, u"--memory"_s, u"16"_s, u"--level"_s, u"1"_s}, u"LZX:16"_s},
        {{}, u"LZX:21"_s},
    };
    for (const Case &c : cases) {
        QFile::remove(work + u"/x.cab"_s);
        const Created run = create(
            QStringList {u"x.cab"_s, u"pkg"_s} + c.options + QStringList {u"--"_s, u"--odd"_s}, work);
        ASSERT_EQ(run.status, 0) << c.method.toStdString() << run.err.toStdString();
        // Not a terminal: plain lines, the last one the workbench's own summary.
        EXPECT_TRUE(run.out.contains(u"开始压缩..."_s)) << run.out.toStdString();
        EXPECT_TRUE(run.out.trimmed().section(u'\n', -1).contains(u"已经完成! "_s + work + u"/x.cab"_s))
            << run.out.toStdString();
        EXPECT_FALSE(run.out.contains(u'\r'));
        const qb::test::ToolResult listing
            = qb::test::runTool(u"7zz"_s, {u"l"_s, u"-slt"_s, work + u"/x.cab"_s});
        EXPECT_TRUE(listing.output.contains(u"Method = "_s + c.method)) << listing.output.toStdString();
        for (const QString &name : {u"a.txt"_s, u"sub/b.txt"_s, u"--odd"_s})
            EXPECT_TRUE(listing.output.contains(u"Path = "_s + name)) << name.toStdString();
    }
    EXPECT_EQ(entriesOf(tree.path(u"work/pkg"_s)), (QStringList {u"a.txt"_s, u"sub"_s}));
}

TEST(CabCreate, UsageAndMissingPaths)
{
    qb::test::TempTree tree;
    const QString file = tree.writeFile(u"a.txt"_s, "a");
    const QString cab = tree.path(u"a.cab"_s);
    const struct
    {
        QStringList arguments;
        int status;
        QString says;
    } cases[] = {
        {{}, 2, u"needs a cabinet"_s},
        {{cab}, 2, u"needs a cabinet"_s},
        {{cab, file, u"--compression"_s, u"zip"_s}, 2, u"none, mszip or lzx"_s},
        {{cab, file, u"--memory"_s, u"22"_s}, 2, u"15 to 21"_s},
        {{cab, file, u"--level"_s, u"0"_s}, 2, u"1 (fast) to 9"_s},
        {{cab, file, u"--compression"_s, u"mszip"_s, u"--level"_s, u"3"_s}, 2,
            u"go with --compression lzx"_s},
        {{cab, file, u"--fast"_s}, 2, u"unknown option: --fast"_s},
        {{cab, file, u"--level"_s}, 2, u"--level needs a value"_s},
        {{cab, tree.path(u"missing.txt"_s)}, 1, u"no such file or folder"_s},
        {{tree.root(), file}, 1, u"is a folder"_s},
        {{tree.path(u"no/such/a.cab"_s), file}, 1, u"does not exist"_s},
    };
    for (const auto &c : cases) {
        const Created run = create(c.arguments);
        EXPECT_EQ(run.status, c.status) << c.arguments.join(u' ').toStdString();
        EXPECT_TRUE(run.err.contains(c.says)) << run.err.toStdString();
        EXPECT_FALSE(QFileInfo::exists(cab));
    }
}

// Interrupted at work, by each signal a terminal or a session sends: the maker is stopped, and
// neither the cabinet nor a half of it is left.
TEST(CabCreate, InterruptionsLeaveNothingBehind)
{
    qb::test::TempTree tree;
    QByteArray data;
    QRandomGenerator random(3);
    while (data.size() < 32 * 1024 * 1024)
        data += QByteArray::number(random.generate()) + ' ';
    tree.writeFile(u"src/data.txt"_s, data);
    const QString out = tree.makeDir(u"out"_s);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        QProcess process;
        process.start(QStringLiteral(QB_QUILLBOX_PATH),
            {u"cab"_s, u"create"_s, out + u"/x.cab"_s, tree.path(u"src"_s), u"--level"_s, u"1"_s});
        ASSERT_TRUE(process.waitForStarted());
        QByteArray seen;
        // At work once the maker reports its first figures.
        ASSERT_TRUE(QTest::qWaitFor(
            [&] {
                seen += process.readAllStandardOutput();
                return seen.contains("% - ");
            },
            60000))
            << seen.toStdString();
        ::kill(pid_t(process.processId()), signal);
        ASSERT_TRUE(process.waitForFinished(20000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit) << signal;
        EXPECT_EQ(process.exitCode(), 128 + signal);
        EXPECT_EQ(entriesOf(out), QStringList()) << signal;
    }
}

} // namespace
