// Cabinets made by makecab, checked by outside tools: cabextract, 7-Zip and gcab must list,
// test and extract them, byte for byte.
#include "cabmaker/makecab_command.h"

#include "sample_data.h"
#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QRandomGenerator>
#include <gtest/gtest.h>

using qb::test::TempTree;

namespace {

using qb::test::RandomBytes;
using qb::test::runTool;
using qb::test::ToolRun;
using qb::test::WordSoup;

struct MakeCabRun
{
    int status = -1;
    QString out;
    QString err;
};

MakeCabRun makecab(const QStringList &args, const QString &folder)
{
    QString out;
    QString err;
    QTextStream outStream(&out);
    QTextStream errStream(&err);
    MakeCabRun run;
    run.status = qb::cabmaker::RunMakeCab(args, outStream, errStream, folder);
    outStream.flush();
    errStream.flush();
    run.out = out;
    run.err = err;
    return run;
}

// A directive line for one file: source and name quoted, quotes inside doubled.
QString fileLine(const QString &source, const QString &name)
{
    auto quoted = [](QString text) { return u'"' + text.replace(u'"', QStringLiteral("\"\"")) + u'"'; };
    return quoted(source) + u' ' + quoted(name) + QStringLiteral("\r\n");
}

struct Entry
{
    QString name; // in the cabinet, with "\"
    QByteArray bytes;
};

// Writes the entries' sources under src/, a directive file, runs makecab, and returns the cabinet path.
QString buildCabinet(
    TempTree &tree, const QList<Entry> &entries, const QString &compression, MakeCabRun *runOut = nullptr)
{
    QString directive = QStringLiteral(".Option EXPLICIT\r\n.Set CabinetNameTemplate=\"%1\"\r\n")
                            .arg(tree.path(QStringLiteral("out/test.cab")));
    directive += QStringLiteral(".Set DiskDirectory1=\r\n.Set UniqueFiles=OFF\r\n");
    directive += QStringLiteral(".Set InfFileName=NUL\r\n.Set RptFileName=NUL\r\n");
    directive += compression + QStringLiteral("\r\n");
    int i = 0;
    for (const Entry &entry : entries) {
        const QString source = tree.writeFile(QStringLiteral("src/%1.bin").arg(i++), entry.bytes);
        directive += fileLine(source, entry.name);
    }
    tree.makeDir(QStringLiteral("out"));
    tree.writeFile(QStringLiteral("test.ddf"), directive.toUtf8());
    const MakeCabRun run
        = makecab({QStringLiteral("/F"), tree.path(QStringLiteral("test.ddf"))}, tree.root());
    if (runOut)
        *runOut = run;
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    return tree.path(QStringLiteral("out/test.cab"));
}

// Checks a cabinet with all three outside tools and compares what cabextract and 7-Zip extract.
// gcab refuses a cabinet that holds a name twice, so it is left out there.
void verifyWithOracles(
    TempTree &tree, const QString &cabinet, const QList<Entry> &entries, bool askGcab = true)
{
    const ToolRun test = runTool(QStringLiteral("cabextract"), {QStringLiteral("-t"), cabinet});
    EXPECT_EQ(test.exitCode, 0) << test.output.toStdString();
    const ToolRun sevenTest = runTool(QStringLiteral("7zz"), {QStringLiteral("t"), cabinet});
    EXPECT_EQ(sevenTest.exitCode, 0) << sevenTest.output.toStdString();
    EXPECT_TRUE(sevenTest.output.contains(QStringLiteral("Everything is Ok")))
        << sevenTest.output.toStdString();
    if (askGcab) {
        const ToolRun list = runTool(QStringLiteral("gcab"), {QStringLiteral("-l"), cabinet});
        EXPECT_EQ(list.exitCode, 0) << list.output.toStdString();
        const QStringList listed = list.output.split(u'\n', Qt::SkipEmptyParts);
        EXPECT_EQ(listed.size(), entries.size()) << list.output.toStdString();
    }

    // The last entry of a name wins on extraction, as in any archive tool.
    QMap<QString, QByteArray> expected;
    for (const Entry &entry : entries)
        expected[QString(entry.name).replace(u'\\', u'/')] = entry.bytes;

    for (const QString &tool : {QStringLiteral("cabextract"), QStringLiteral("7zz")}) {
        const QString into = tree.makeDir(QStringLiteral("x-") + tool);
        const ToolRun extract = tool == u"7zz"
            ? runTool(tool, {QStringLiteral("x"), QStringLiteral("-y"), QStringLiteral("-o") + into, cabinet})
            : runTool(tool, {QStringLiteral("-q"), QStringLiteral("-d"), into, cabinet});
        EXPECT_EQ(extract.exitCode, 0) << tool.toStdString() << ": " << extract.output.toStdString();
        for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
            const QByteArray got = qb::test::readAll(into + u'/' + it.key());
            EXPECT_EQ(got.size(), it.value().size()) << tool.toStdString() << ": " << it.key().toStdString();
            EXPECT_TRUE(got == it.value()) << tool.toStdString() << ": " << it.key().toStdString();
        }
    }
}

class MakeCabOracle : public ::testing::TestWithParam<const char *>
{
};

TEST_P(MakeCabOracle, MixedTreeExtractsByteForByte)
{
    TempTree tree;
    QList<Entry> entries {
        {QStringLiteral("empty.txt"), {}},
        {QStringLiteral("docs\\read me.txt"), WordSoup(70000, 1)},
        {QStringLiteral("docs\\深层\\中文 名字.txt"), WordSoup(5000, 2)},
        {QStringLiteral("quote \"marks\".txt"), WordSoup(100, 3)},
        {QStringLiteral("random.bin"), RandomBytes(100000, 4)},
        {QStringLiteral("a\\b\\c\\d\\nested.dat"), WordSoup(32768, 5)},
        {QStringLiteral("exact-two-blocks.dat"), WordSoup(65536, 6)},
        {QStringLiteral("another-empty"), {}},
    };
    const QString cabinet = buildCabinet(tree, entries, QString::fromLatin1(GetParam()));
    verifyWithOracles(tree, cabinet, entries);
}

// Repeats that reach back exactly one block (32 KiB, the most a decoder keeps), in random data
// and in text, and a block that copies the one before it from its very first byte.
TEST_P(MakeCabOracle, RepeatsReachBackOneWholeBlock)
{
    TempTree tree;
    const QByteArray noise = RandomBytes(32768, 11);
    const QByteArray text = WordSoup(32768, 12);
    const QList<Entry> entries {
        {QStringLiteral("noise-three-times.bin"), noise + noise + noise},
        {QStringLiteral("text-twice.txt"), text + text},
        {QStringLiteral("shifted.bin"), noise.left(1000) + noise + text.left(5000) + noise},
    };
    const QString cabinet = buildCabinet(tree, entries, QString::fromLatin1(GetParam()));
    verifyWithOracles(tree, cabinet, entries);
}

TEST_P(MakeCabOracle, DuplicateNamesGoInTwice)
{
    TempTree tree;
    const QList<Entry> entries {
        {QStringLiteral("same.txt"), "first"}, {QStringLiteral("same.txt"), "second"}};
    const QString cabinet = buildCabinet(tree, entries, QString::fromLatin1(GetParam()));
    const ToolRun list = runTool(QStringLiteral("cabextract"), {QStringLiteral("-l"), cabinet});
    EXPECT_EQ(list.output.count(QStringLiteral("same.txt")), 2) << list.output.toStdString();
    verifyWithOracles(tree, cabinet, entries, false);
}

TEST_P(MakeCabOracle, TenThousandSmallFiles)
{
    TempTree tree;
    QList<Entry> entries;
    for (int i = 0; i < 10000; ++i)
        entries.append({QStringLiteral("d%1\\f%2.txt").arg(i / 100).arg(i), WordSoup(i % 700, quint32(i))});
    const QString cabinet = buildCabinet(tree, entries, QString::fromLatin1(GetParam()));
    verifyWithOracles(tree, cabinet, entries);
}

TEST_P(MakeCabOracle, OneHundredMegabyteFile)
{
    TempTree tree;
    QByteArray big = WordSoup(60 * 1024 * 1024, 9);
    big += RandomBytes(40 * 1024 * 1024, 10);
    const QList<Entry> entries {{QStringLiteral("big.bin"), big}, {QStringLiteral("after.txt"), "tail"}};
    const QString cabinet = buildCabinet(tree, entries, QString::fromLatin1(GetParam()));
    verifyWithOracles(tree, cabinet, entries);
}

INSTANTIATE_TEST_SUITE_P(Compression, MakeCabOracle,
    ::testing::Values(".Set Compress=OFF", ".Set CompressionType=MSZIP"),
    [](const auto &info) { return std::string(info.index == 0 ? "None" : "MsZip"); });

} // namespace
