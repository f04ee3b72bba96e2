// quillbox cab: listing, XML, extraction and testing of a gcab cabinet, and the exit statuses.
#include "cli_run.h"

#include "support/temp_tree.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <gtest/gtest.h>

namespace {

using CabCliRun = qb::test::CliRun;

CabCliRun cab(QStringList arguments)
{
    arguments.prepend(QStringLiteral("cab"));
    return qb::test::runQuillbox(arguments);
}

// a.txt and sub/b.txt, stored with gcab's MSZIP.
QString makeCabinet(qb::test::TempTree &tree)
{
    tree.writeFile(QStringLiteral("src/a.txt"), "alpha");
    tree.writeFile(QStringLiteral("src/sub/b.txt"), "bravo!");
    QProcess gcab;
    gcab.setWorkingDirectory(tree.path(QStringLiteral("src")));
    gcab.start(QStringLiteral("gcab"),
        {QStringLiteral("-c"), QStringLiteral("-z"), tree.path(QStringLiteral("t.cab")),
            QStringLiteral("a.txt"), QStringLiteral("sub/b.txt")});
    EXPECT_TRUE(gcab.waitForFinished(60000));
    EXPECT_EQ(gcab.exitCode(), 0);
    return tree.path(QStringLiteral("t.cab"));
}

TEST(CabCli, ListAndXml)
{
    qb::test::TempTree tree;
    const QString path = makeCabinet(tree);
    const CabCliRun listed = cab({QStringLiteral("list"), path});
    EXPECT_EQ(listed.status, 0) << listed.err.toStdString();
    const QStringList lines = listed.out.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].startsWith(QStringLiteral("5  "))) << lines[0].toStdString();
    EXPECT_TRUE(lines[0].endsWith(QStringLiteral("  a.txt")));
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral("6  ")));
    EXPECT_TRUE(lines[1].endsWith(QStringLiteral("  sub\\b.txt")));

    const CabCliRun one = cab({QStringLiteral("list"), path, QStringLiteral("SUB\\B.TXT")});
    EXPECT_EQ(one.status, 0);
    EXPECT_EQ(one.out.count(u'\n'), 1);
    EXPECT_EQ(cab({QStringLiteral("list"), path, QStringLiteral("none.txt")}).status, 1);

    const CabCliRun xml = cab({QStringLiteral("xml"), path});
    EXPECT_EQ(xml.status, 0);
    EXPECT_TRUE(xml.out.startsWith(QStringLiteral("<?xml version=\"1.0\"?><CABFILE CABFILENAME = '") + path));
    EXPECT_TRUE(xml.out.contains(QStringLiteral("<FULLNAME>sub\\b.txt</FULLNAME><NAME>b.txt</NAME>")));
    EXPECT_EQ(xml.out.count(QStringLiteral("<FILE>")), 2);
}

TEST(CabCli, ExtractAllOrNamedAndTest)
{
    qb::test::TempTree tree;
    const QString path = makeCabinet(tree);
    const QString all = tree.path(QStringLiteral("all"));
    const CabCliRun extracted = cab({QStringLiteral("extract"), path, QStringLiteral("-d"), all});
    EXPECT_EQ(extracted.status, 0) << extracted.err.toStdString();
    EXPECT_EQ(qb::test::readAll(all + QStringLiteral("/a.txt")), QByteArray("alpha"));
    EXPECT_EQ(qb::test::readAll(all + QStringLiteral("/sub/b.txt")), QByteArray("bravo!"));

    const QString named = tree.path(QStringLiteral("named"));
    EXPECT_EQ(
        cab({QStringLiteral("extract"), path, QStringLiteral("-d"), named, QStringLiteral("sub\\b.txt")})
            .status,
        0);
    EXPECT_EQ(QDir(named).entryList(QDir::Files).size(), 0);
    EXPECT_EQ(qb::test::readAll(named + QStringLiteral("/sub/b.txt")), QByteArray("bravo!"));
    EXPECT_FALSE(QFileInfo::exists(named + QStringLiteral("/a.txt")));

    const CabCliRun tested = cab({QStringLiteral("test"), path});
    EXPECT_EQ(tested.status, 0) << tested.err.toStdString();
    EXPECT_TRUE(tested.out.contains(QStringLiteral("2 files tested")));

    // A damaged data block fails the test.
    QByteArray bytes = qb::test::readAll(path);
    bytes[bytes.size() - 3] = char(bytes[bytes.size() - 3] ^ 0x41);
    const QString bad = tree.writeFile(QStringLiteral("bad.cab"), bytes);
    const CabCliRun failed = cab({QStringLiteral("test"), bad});
    EXPECT_EQ(failed.status, 1);
    EXPECT_FALSE(failed.err.isEmpty());
}

TEST(CabCli, ErrorsAndUsage)
{
    qb::test::TempTree tree;
    const CabCliRun missing = cab({QStringLiteral("list"), tree.path(QStringLiteral("no.cab"))});
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(missing.err.contains(QStringLiteral("The system cannot find the file specified. (2)")));
    const QString text = tree.writeFile(QStringLiteral("text.cab"), QByteArray(200, 'z'));
    EXPECT_EQ(cab({QStringLiteral("xml"), text}).status, 1);
    EXPECT_EQ(cab({}).status, 2);
    EXPECT_EQ(cab({QStringLiteral("list")}).status, 2);
    EXPECT_EQ(cab({QStringLiteral("frob"), text}).status, 2);
    EXPECT_EQ(cab({QStringLiteral("list"), text, QStringLiteral("-d"), tree.root()}).status, 2);
    EXPECT_EQ(cab({QStringLiteral("extract"), text, QStringLiteral("-d")}).status, 2);
}

// A gcab MSZIP cabinet of the given files ("/" between folders), each of distinct text.
QString makeCabinetOf(qb::test::TempTree &tree, const QStringList &names, const QString &cabName)
{
    QStringList args {QStringLiteral("-c"), QStringLiteral("-z"), tree.path(cabName)};
    for (const QString &name : names) {
        QByteArray text;
        for (int i = 0; text.size() < 3000; ++i)
            text += name.toUtf8() + ' ' + QByteArray::number(i * 7919 % 1000) + '\n';
        tree.writeFile(QStringLiteral("src-") + cabName + u'/' + name, text);
        args << name;
    }
    QProcess gcab;
    gcab.setWorkingDirectory(tree.path(QStringLiteral("src-") + cabName));
    gcab.start(QStringLiteral("gcab"), args);
    EXPECT_TRUE(gcab.waitForFinished(60000));
    EXPECT_EQ(gcab.exitCode(), 0);
    return tree.path(cabName);
}

quint32 get32(const QByteArray &bytes, qsizetype at)
{
    return quint32(uchar(bytes[at])) | quint32(uchar(bytes[at + 1])) << 8
        | quint32(uchar(bytes[at + 2])) << 16 | quint32(uchar(bytes[at + 3])) << 24;
}

TEST(CabCli, ADamagedBlockNamesEveryMemberOnceAndCountsThem)
{
    qb::test::TempTree tree;
    const QStringList names {
        QStringLiteral("a.txt"), QStringLiteral("docs/x.txt"), QStringLiteral("docs/y.txt")};
    const QString good = makeCabinetOf(tree, names, QStringLiteral("a.cab"));
    QByteArray bytes = qb::test::readAll(good);
    // The first folder's first data block: its 8-byte header, then the deflated bytes.
    const qsizetype block = qsizetype(get32(bytes, 36));
    ASSERT_LT(block + 40, bytes.size());
    bytes[block + 8 + 20] = char(bytes[block + 8 + 20] ^ 0x5A);
    const QString bad = tree.writeFile(QStringLiteral("bad.cab"), bytes);
    const QString lines
        = QStringLiteral("quillbox: %1: a.txt: Data error (cyclic redundancy check). (23)\n"
                         "quillbox: %1: docs/x.txt: Data error (cyclic redundancy check). (23)\n"
                         "quillbox: %1: docs/y.txt: Data error (cyclic redundancy check). (23)\n")
              .arg(bad);

    const QString out = tree.path(QStringLiteral("out"));
    const CabCliRun extracted = cab({QStringLiteral("extract"), bad, QStringLiteral("-d"), out});
    EXPECT_EQ(extracted.status, 1);
    EXPECT_EQ(extracted.err, lines);
    EXPECT_EQ(extracted.out, QStringLiteral("0 files extracted, 3 failed\n"));

    const CabCliRun tested = cab({QStringLiteral("test"), bad});
    EXPECT_EQ(tested.status, 1);
    EXPECT_EQ(tested.err, lines);
    EXPECT_EQ(tested.out, QStringLiteral("3 files tested, 3 failed\n"));

    // The same member asked for twice fails twice, and is said and counted once.
    const CabCliRun twice = cab({QStringLiteral("extract"), bad, QStringLiteral("-d"), out,
        QStringLiteral("docs\\x.txt"), QStringLiteral("DOCS\\X.TXT")});
    EXPECT_EQ(twice.status, 1);
    EXPECT_EQ(twice.err,
        QStringLiteral("quillbox: %1: docs/x.txt: Data error (cyclic redundancy check). (23)\n").arg(bad));
    EXPECT_EQ(twice.out, QStringLiteral("0 files extracted, 1 failed\n"));
}

TEST(CabCli, AFolderThatCannotBeMadeFailsItsMembers)
{
    qb::test::TempTree tree;
    const QString path = makeCabinetOf(tree,
        {QStringLiteral("a.txt"), QStringLiteral("docs/x.txt"), QStringLiteral("docs/y.txt"),
            QStringLiteral("z.txt")},
        QStringLiteral("a.cab"));
    const QString out = tree.makeDir(QStringLiteral("out"));
    tree.writeFile(QStringLiteral("out/docs"), "in the way");
    const CabCliRun run = cab({QStringLiteral("extract"), path, QStringLiteral("-d"), out});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err,
        QStringLiteral("quillbox: %1: docs/x.txt: cannot make the folder %2/docs: a file is in the way\n"
                       "quillbox: %1: docs/y.txt: cannot make the folder %2/docs: a file is in the way\n")
            .arg(path, out));
    EXPECT_EQ(run.out, QStringLiteral("2 files extracted, 2 failed\n"));
    EXPECT_TRUE(QFileInfo(out + QStringLiteral("/z.txt")).isFile());
    EXPECT_EQ(qb::test::readAll(out + QStringLiteral("/docs")), QByteArray("in the way"));

    // Nothing in the way: every file, no failure, status 0.
    const QString clean = tree.path(QStringLiteral("clean"));
    const CabCliRun ok = cab({QStringLiteral("extract"), path, QStringLiteral("-d"), clean});
    EXPECT_EQ(ok.status, 0) << ok.err.toStdString();
    EXPECT_EQ(ok.err, QString());
    EXPECT_EQ(ok.out, QStringLiteral("4 files extracted\n"));
}

TEST(CabCli, ListIsInColumns)
{
    qb::test::TempTree tree;
    tree.writeFile(QStringLiteral("src/a.txt"), "alpha");
    tree.writeFile(QStringLiteral("src/中文/长.txt"), QByteArray(12345, 'x'));
    tree.writeFile(QStringLiteral("src/z.txt"), QByteArray(678, 'z'));
    QProcess gcab;
    gcab.setWorkingDirectory(tree.path(QStringLiteral("src")));
    gcab.start(QStringLiteral("gcab"),
        {QStringLiteral("-c"), tree.path(QStringLiteral("t.cab")), QStringLiteral("a.txt"),
            QStringLiteral("中文/长.txt"), QStringLiteral("z.txt")});
    ASSERT_TRUE(gcab.waitForFinished(60000));
    ASSERT_EQ(gcab.exitCode(), 0);
    const CabCliRun listed = cab({QStringLiteral("list"), tree.path(QStringLiteral("t.cab"))});
    EXPECT_EQ(listed.status, 0) << listed.err.toStdString();
    const QStringList lines = listed.out.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 3) << listed.out.toStdString();
    const QString date = QStringLiteral("\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d");
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^    5  ") + date + QStringLiteral("  a\\.txt$"))
                    .match(lines[0])
                    .hasMatch())
        << lines[0].toStdString();
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^12345  ") + date + QStringLiteral("  中文\\\\长\\.txt$"))
                    .match(lines[1])
                    .hasMatch())
        << lines[1].toStdString();
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^  678  ") + date + QStringLiteral("  z\\.txt$"))
                    .match(lines[2])
                    .hasMatch())
        << lines[2].toStdString();
}

TEST(CabCli, ALibraryNoteIsShownButFailsNothing)
{
    qb::test::TempTree tree;
    QByteArray bytes = qb::test::readAll(makeCabinet(tree));
    bytes[24] = 0; // version 2.0
    bytes[25] = 2;
    const QString odd = tree.writeFile(QStringLiteral("odd.cab"), bytes);
    const CabCliRun run
        = cab({QStringLiteral("extract"), odd, QStringLiteral("-d"), tree.path(QStringLiteral("x"))});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, QStringLiteral("quillbox: %1: libmspack: cabinet version is not 1.3\n").arg(odd));
    EXPECT_EQ(run.out, QStringLiteral("2 files extracted\n"));
}

} // namespace
