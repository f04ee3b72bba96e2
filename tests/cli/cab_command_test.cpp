// quillbox cab: listing, XML, extraction and testing of a gcab cabinet, and the exit statuses.
#include "cli_run.h"

#include "support/temp_tree.h"

#include <QDir>
#include <QProcess>
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

} // namespace
