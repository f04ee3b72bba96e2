// Cabinets from gcab and makecab, read by clsCAB: the listing must match cabextract's and every
// file must come out byte for byte, as cabextract, 7-Zip and bsdtar unpack it.
#include "cab_fixtures.h"

#include <QDir>
#include <QDirIterator>
#include <gtest/gtest.h>

using namespace qb::test;
using qb::cabinet::clsCAB;

namespace {

struct Maker
{
    const char *label;
    bool gcab;
    const char *compression; // gcab: "MSZIP" or "NONE"
};

QList<CabEntry> sampleEntries()
{
    return {
        {QStringLiteral("readme.txt"), sampleBytes(1000, 1)},
        {QStringLiteral("empty.dat"), QByteArray()},
        {QStringLiteral("sub\\big.bin"), sampleBytes(200000, 2)},
        {QStringLiteral("sub\\deeper\\Mixed Case.TXT"), sampleBytes(40000, 3)},
        {QStringLiteral("b&<c.txt"), QByteArray("amp and less")},
        {QStringLiteral("zz\\tail.bin"), sampleBytes(70000, 4)},
    };
}

const QStringList kExtractors {QStringLiteral("cabextract"), QStringLiteral("7zz"), QStringLiteral("bsdtar")};

// One outside extractor unpacks the whole cabinet into folder; names in UTF-8 whatever the locale.
ToolResult extractWith(const QString &tool, const QString &cab, const QString &folder)
{
    const ScopedEnv utf8("LC_ALL", "C.UTF-8");
    if (tool == QLatin1String("7zz"))
        return runTool(tool, {QStringLiteral("x"), QStringLiteral("-y"), QStringLiteral("-o") + folder, cab});
    if (tool == QLatin1String("bsdtar"))
        return runTool(tool, {QStringLiteral("-x"), QStringLiteral("-f"), cab, QStringLiteral("-C"), folder});
    return runTool(tool, {QStringLiteral("-q"), QStringLiteral("-d"), folder, cab});
}

// Every regular file below a folder, relative, "/" between folders.
QStringList filesBelow(const QString &folder)
{
    QStringList files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << QDir(folder).relativeFilePath(it.next());
    files.sort();
    return files;
}

// Our reader and each outside extractor unpack the whole cabinet into the same files, and only
// those (no scratch file left behind); returns our folder. AfterExtract's targets go to after.
QString expectEveryReaderAgrees(
    TempTree &tree, const QString &cab, const QStringList &expected, QStringList *after = nullptr)
{
    clsCAB reader;
    reader.setCabName(cab);
    ErrorLog log(reader);
    if (after)
        QObject::connect(
            &reader, &clsCAB::AfterExtract, [after](const QString &target) { *after << target; });
    const QString out = tree.makeDir(QStringLiteral("ours"));
    EXPECT_TRUE(reader.Extract(QString(), out, QString()));
    EXPECT_TRUE(log.errors.isEmpty()) << (log.errors.isEmpty() ? 0 : log.errors[0].number);
    EXPECT_EQ(filesBelow(out), expected);
    for (const QString &tool : kExtractors) {
        SCOPED_TRACE(tool.toStdString());
        const QString theirs = tree.makeDir(QStringLiteral("theirs-") + tool);
        const ToolResult run = extractWith(tool, cab, theirs);
        EXPECT_EQ(run.exitCode, 0) << run.output.toStdString();
        EXPECT_EQ(filesBelow(theirs), expected);
        for (const QString &relative : expected)
            EXPECT_EQ(readAll(theirs + u'/' + relative), readAll(out + u'/' + relative));
    }
    return out;
}

class ReaderOracle : public ::testing::TestWithParam<Maker>
{
protected:
    QString build(TempTree &tree, const QList<CabEntry> &entries)
    {
        const Maker &maker = GetParam();
        if (maker.gcab)
            return makeCabWithGcab(tree, entries, QLatin1String(maker.compression) == QLatin1String("MSZIP"));
        return makeCabWithMakeCab(tree, entries, QString::fromLatin1(maker.compression));
    }
};

TEST_P(ReaderOracle, ListsLikeCabextract)
{
    TempTree tree;
    const QString cab = build(tree, sampleEntries());
    const QList<ListedFile> expected = cabextractList(cab);
    const QList<ListedFile> actual = readerList(cab);
    ASSERT_EQ(expected.size(), sampleEntries().size());
    ASSERT_EQ(actual.size(), expected.size());
    for (qsizetype i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(actual[i].name, expected[i].name);
        EXPECT_EQ(actual[i].size, expected[i].size) << expected[i].name.toStdString();
        // cabextract shows local time; both read the same DOS fields, compare to the minute.
        ASSERT_TRUE(actual[i].dateTime.isValid());
        EXPECT_EQ(actual[i].dateTime.toString(QStringLiteral("yyyy-MM-dd HH:mm")),
            expected[i].dateTime.toString(QStringLiteral("yyyy-MM-dd HH:mm")));
    }
    clsCAB reader;
    reader.setCabName(cab);
    EXPECT_EQ(reader.FileCount(), long(expected.size()));
}

TEST_P(ReaderOracle, ExtractsEveryFileByteExact)
{
    TempTree tree;
    const QList<CabEntry> entries = sampleEntries();
    QStringList relative;
    for (const CabEntry &entry : entries)
        relative << QString(entry.name).replace(u'\\', u'/');
    QStringList expected = relative;
    expected.sort();
    QStringList after;
    const QString out = expectEveryReaderAgrees(tree, build(tree, entries), expected, &after);
    ASSERT_EQ(after.size(), entries.size());
    for (qsizetype i = 0; i < entries.size(); ++i) {
        EXPECT_EQ(after[i], out + u'/' + relative[i]);
        EXPECT_EQ(readAll(out + u'/' + relative[i]), entries[i].bytes) << relative[i].toStdString();
    }
}

TEST_P(ReaderOracle, ExtractsSelectedNames)
{
    TempTree tree;
    const QList<CabEntry> entries = sampleEntries();
    const QString cab = build(tree, entries);
    clsCAB reader;
    reader.setCabName(cab);
    ErrorLog log(reader);

    // One name, given in another case, to a name of our choosing.
    const QString one = tree.makeDir(QStringLiteral("one"));
    ASSERT_TRUE(
        reader.Extract(QStringLiteral("SUB\\DEEPER\\mixed case.txt"), one, QStringLiteral("renamed.bin")));
    EXPECT_EQ(filesBelow(one), QStringList {QStringLiteral("renamed.bin")});
    EXPECT_EQ(readAll(one + QStringLiteral("/renamed.bin")), entries[3].bytes);

    // Several names, one call each, keeping their folders.
    const QString several = tree.makeDir(QStringLiteral("several"));
    ASSERT_TRUE(reader.Extract(QStringLiteral("zz\\tail.bin"), several, QString()));
    ASSERT_TRUE(reader.Extract(QStringLiteral("README.TXT"), several, QString()));
    EXPECT_EQ(
        filesBelow(several), (QStringList {QStringLiteral("readme.txt"), QStringLiteral("zz/tail.bin")}));
    EXPECT_EQ(readAll(several + QStringLiteral("/zz/tail.bin")), entries[5].bytes);
    EXPECT_EQ(readAll(several + QStringLiteral("/readme.txt")), entries[0].bytes);

    // A name not in the cabinet writes nothing and is no error.
    const QString none = tree.makeDir(QStringLiteral("none"));
    EXPECT_TRUE(reader.Extract(QStringLiteral("missing.txt"), none, QString()));
    EXPECT_TRUE(filesBelow(none).isEmpty());
    EXPECT_TRUE(log.errors.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Makers, ReaderOracle,
    ::testing::Values(Maker {"GcabNone", true, "NONE"}, Maker {"GcabMszip", true, "MSZIP"},
        Maker {"MakecabNone", false, "NONE"}, Maker {"MakecabMszip", false, "MSZIP"},
        Maker {"MakecabLzx", false, "LZX"}),
    [](const ::testing::TestParamInfo<Maker> &info) { return std::string(info.param.label); });

// 85 CJK characters are 255 bytes in UTF-8: the longest name a cabinet stores and Linux allows.
TEST(Reader, ExtractsTheLongestNameAsTheOtherExtractorsDo)
{
    TempTree tree;
    QString name;
    for (int i = 0; i < 85; ++i)
        name += QChar(0x4E00 + i * 7);
    ASSERT_EQ(name.toUtf8().size(), 255);
    const QByteArray bytes = sampleBytes(5000, 21);
    const QString cab = makeCabWithMakeCab(
        tree, {{name, bytes}, {QStringLiteral("d\\") + name.left(80), "deeper"}}, QStringLiteral("MSZIP"));
    const QString out = expectEveryReaderAgrees(tree, cab, {QStringLiteral("d/") + name.left(80), name});
    EXPECT_EQ(readAll(out + u'/' + name), bytes);
}

// Empty files alone in the first folder, then a change of compression: every reader takes it.
TEST(Reader, FirstFolderOfEmptyFilesOnly)
{
    TempTree tree;
    const QList<CabEntry> entries {{QStringLiteral("empty.txt"), {}}, {QStringLiteral("also empty"), {}},
        {QStringLiteral("one.txt"), sampleBytes(3000, 5), {}, QStringLiteral(".Set CompressionType=LZX")}};
    const QString cab = makeCabWithMakeCab(tree, entries, QStringLiteral("MSZIP"));
    const QString out = expectEveryReaderAgrees(
        tree, cab, {QStringLiteral("also empty"), QStringLiteral("empty.txt"), QStringLiteral("one.txt")});
    EXPECT_EQ(readAll(out + QStringLiteral("/one.txt")), entries[2].bytes);
}

TEST(Reader, ExtractsBesideTheCabinetWhenNoFolderIsGiven)
{
    TempTree tree;
    const QString cab = makeCabWithMakeCab(tree, {{QStringLiteral("in\\a.txt"), "alpha"}},
        QStringLiteral("MSZIP"), QStringLiteral("place/t.cab"));
    clsCAB reader;
    reader.setCabName(cab);
    ASSERT_TRUE(reader.Extract(QString(), QString(), QString()));
    EXPECT_EQ(readAll(tree.path(QStringLiteral("place/in/a.txt"))), QByteArray("alpha"));
}

} // namespace
