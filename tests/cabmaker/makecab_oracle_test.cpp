// Cabinets made by makecab, checked by outside tools: cabextract, 7-Zip and bsdtar must extract
// them byte for byte, and gcab must list them.
#include "sample_data.h"
#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <gtest/gtest.h>

using qb::test::CabFile;
using qb::test::Extracted;
using qb::test::RandomBytes;
using qb::test::TempTree;
using qb::test::WordSoup;

namespace {

// The three extractors must agree with what went in; gcab must list every entry, except where a
// name is held twice, which it refuses.
void verifyWithOracles(
    TempTree &tree, const QString &cabinet, const QList<CabFile> &files, bool askGcab = true)
{
    if (askGcab) {
        const qb::test::ToolResult list
            = qb::test::runTool(QStringLiteral("gcab"), {QStringLiteral("-l"), cabinet});
        EXPECT_EQ(list.exitCode, 0) << list.output.toStdString();
        EXPECT_EQ(list.output.split(u'\n', Qt::SkipEmptyParts).size(), files.size())
            << list.output.toStdString();
    }
    qb::test::ExpectExtractorsAgree(cabinet, tree.root(), Extracted(files));
}

class MakeCabOracle : public ::testing::TestWithParam<const char *>
{
};

TEST_P(MakeCabOracle, MixedTreeExtractsByteForByte)
{
    TempTree tree;
    QList<CabFile> entries {
        {QStringLiteral("empty.txt"), {}},
        {QStringLiteral("docs\\read me.txt"), WordSoup(70000, 1)},
        {QStringLiteral("docs\\深层\\中文 名字.txt"), WordSoup(5000, 2)},
        {QStringLiteral("quote \"marks\".txt"), WordSoup(100, 3)},
        {QStringLiteral("random.bin"), RandomBytes(100000, 4)},
        {QStringLiteral("a\\b\\c\\d\\nested.dat"), WordSoup(32768, 5)},
        {QStringLiteral("exact-two-blocks.dat"), WordSoup(65536, 6)},
        {QStringLiteral("another-empty"), {}},
    };
    const QString cabinet = qb::test::BuildCabinet(tree, entries, QString::fromLatin1(GetParam()));
    verifyWithOracles(tree, cabinet, entries);
}

// Repeats that reach back exactly one block (32 KiB, the most a decoder keeps), in random data
// and in text, and a block that copies the one before it from its very first byte.
TEST_P(MakeCabOracle, RepeatsReachBackOneWholeBlock)
{
    TempTree tree;
    const QByteArray noise = RandomBytes(32768, 11);
    const QByteArray text = WordSoup(32768, 12);
    const QList<CabFile> entries {
        {QStringLiteral("noise-three-times.bin"), noise + noise + noise},
        {QStringLiteral("text-twice.txt"), text + text},
        {QStringLiteral("shifted.bin"), noise.left(1000) + noise + text.left(5000) + noise},
    };
    const QString cabinet = qb::test::BuildCabinet(tree, entries, QString::fromLatin1(GetParam()));
    verifyWithOracles(tree, cabinet, entries);
}

TEST_P(MakeCabOracle, DuplicateNamesGoInTwice)
{
    TempTree tree;
    const QList<CabFile> entries {
        {QStringLiteral("same.txt"), "first"}, {QStringLiteral("same.txt"), "second"}};
    const QString cabinet = qb::test::BuildCabinet(tree, entries, QString::fromLatin1(GetParam()));
    const qb::test::ToolResult list
        = qb::test::runTool(QStringLiteral("cabextract"), {QStringLiteral("-l"), cabinet});
    EXPECT_EQ(list.output.count(QStringLiteral("same.txt")), 2) << list.output.toStdString();
    verifyWithOracles(tree, cabinet, entries, false);
}

TEST_P(MakeCabOracle, TenThousandSmallFiles)
{
    TempTree tree;
    QList<CabFile> entries;
    for (int i = 0; i < 10000; ++i)
        entries.append({QStringLiteral("d%1\\f%2.txt").arg(i / 100).arg(i), WordSoup(i % 700, quint32(i))});
    const QString cabinet = qb::test::BuildCabinet(tree, entries, QString::fromLatin1(GetParam()));
    verifyWithOracles(tree, cabinet, entries);
}

TEST_P(MakeCabOracle, OneHundredMegabyteFile)
{
    TempTree tree;
    QByteArray big = WordSoup(60 * 1024 * 1024, 9);
    big += RandomBytes(40 * 1024 * 1024, 10);
    const QList<CabFile> entries {{QStringLiteral("big.bin"), big}, {QStringLiteral("after.txt"), "tail"}};
    const QString cabinet = qb::test::BuildCabinet(tree, entries, QString::fromLatin1(GetParam()));
    verifyWithOracles(tree, cabinet, entries);
}

INSTANTIATE_TEST_SUITE_P(Compression, MakeCabOracle,
    ::testing::Values(".Set Compress=OFF", ".Set CompressionType=MSZIP"),
    [](const auto &info) { return std::string(info.index == 0 ? "None" : "MsZip"); });

// A folder of empty files only has no data blocks, and libarchive refuses a cabinet in which such
// a folder starts where the next one does; where it stands must not matter.
struct EmptyFolderCase
{
    const char *name;
    QList<CabFile> entries;
};

class MakeCabEmptyFolder : public ::testing::TestWithParam<EmptyFolderCase>
{
};

TEST_P(MakeCabEmptyFolder, EveryReaderTakesTheCabinet)
{
    TempTree tree;
    const QString cabinet
        = qb::test::BuildCabinet(tree, GetParam().entries, QStringLiteral(".Set CompressionType=NONE"));
    verifyWithOracles(tree, cabinet, GetParam().entries);
}

const QString kLzx = QStringLiteral(".Set CompressionType=LZX");
const QString kMsZip = QStringLiteral(".Set CompressionType=MSZIP");
const QString kNone = QStringLiteral(".Set CompressionType=NONE");

INSTANTIATE_TEST_SUITE_P(Layouts, MakeCabEmptyFolder,
    ::testing::Values(
        EmptyFolderCase {"EmptyThenData", {{u"empty.txt"_qs, {}}, {u"one.txt"_qs, "one", kLzx}}},
        EmptyFolderCase {"DataThenEmpty", {{u"one.txt"_qs, "one"}, {u"empty.txt"_qs, {}, kLzx}}},
        EmptyFolderCase {"EmptyBetween",
            {{u"a.txt"_qs, WordSoup(40000, 1), kMsZip}, {u"e1"_qs, {}, kLzx}, {u"e2"_qs, {}},
                {u"b.txt"_qs, WordSoup(50000, 2), kNone}}},
        EmptyFolderCase {"OnlyEmptyInTwoFolders", {{u"e1"_qs, {}}, {u"e2"_qs, {}, kLzx}}},
        EmptyFolderCase {"OnlyEmpty", {{u"e1"_qs, {}}, {u"e2"_qs, {}}}}),
    [](const auto &info) { return std::string(info.param.name); });

// Names a Linux user may give files, written into the directive file the way the desktop program
// does it: in quotes, with "" for a quote, %% for "%" and %#13% and %#10% for the line ends.
QString desktopQuoted(QString text)
{
    text.replace(u'%', QStringLiteral("%%")).replace(u'"', QStringLiteral("\"\""));
    text.replace(u'\r', QStringLiteral("%#13%")).replace(u'\n', QStringLiteral("%#10%"));
    return u'"' + text + u'"';
}

TEST(MakeCabNames, HostileNamesPassThroughExactly)
{
    TempTree tree;
    QStringList names {u"pipe|name.txt"_qs, u"  blanks around  "_qs, u"tab\there.txt"_qs, u"new\nline.txt"_qs,
        u"carriage\rreturn.txt"_qs, u"50% of %PATH% %%.txt"_qs, u"say \"hi\" \"\".txt"_qs, u"中文名字.txt"_qs,
        u"semi ;colon.txt"_qs};
    names << QString(85, QChar(0x6587)); // 255 bytes of UTF-8
    ASSERT_EQ(names.last().toUtf8().size(), 255);

    // A source path of 4,000 characters, folders of 200.
    QString deep;
    while (deep.size() < 3900)
        deep += QString(199, QChar(char16_t(u'd' + deep.size() / 200 % 20))) + u'/';
    const QString deepSource = tree.writeFile(deep + u"deep.txt"_qs, "deep down");
    ASSERT_GE(deepSource.size(), 4000);

    QString directive = u".Set CabinetNameTemplate=%1\n.Set DiskDirectory1=\n.Set InfFileName=NUL\n"
                        ".Set RptFileName=NUL\n.Set CompressionType=MSZIP\n"_qs.arg(
                            desktopQuoted(tree.path(u"out/names.cab"_qs)));
    QMap<QString, QByteArray> expected;
    for (qsizetype i = 0; i < names.size(); ++i) {
        const QByteArray bytes = WordSoup(1000 + i * 77, quint32(i));
        // The source has the hostile name too.
        const QString source = tree.writeFile(u"src/"_qs + names[i], bytes);
        directive += desktopQuoted(source) + u' ' + desktopQuoted(names[i]) + u'\n';
        expected[names[i]] = bytes;
        // In a folder as well, where the 255 bytes of the whole name leave room.
        if (names[i].toUtf8().size() < 250) {
            directive += desktopQuoted(source) + u' ' + desktopQuoted(u"dir\\"_qs + names[i]) + u'\n';
            expected[u"dir/"_qs + names[i]] = bytes;
        }
    }
    directive += desktopQuoted(deepSource) + u'\n';
    expected[u"deep.txt"_qs] = "deep down";
    tree.makeDir(u"out"_qs);
    tree.writeFile(u"names.ddf"_qs, directive.toUtf8());
    const qb::test::MakeCabRun run
        = qb::test::RunMakeCabIn({u"/F"_qs, tree.path(u"names.ddf"_qs)}, tree.root());
    ASSERT_EQ(run.status, 0) << run.err.toStdString();
    qb::test::ExpectExtractorsAgree(tree.path(u"out/names.cab"_qs), tree.root(), expected);
}

} // namespace
