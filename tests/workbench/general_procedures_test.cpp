// The workbench's path, size and existence procedures.
#include "workbench/general_procedures.h"

#include "support/temp_tree.h"
#include "workbench/app_context.h"

#include <QDir>
#include <QFileInfo>
#include <gtest/gtest.h>

using namespace qb::workbench;
using qb::test::TempTree;

namespace {

struct PathPartCase
{
    const char16_t *path;
    const char16_t *delimiter;
    int mode;
    const char16_t *expected;
};

class GetPathPartTable : public ::testing::TestWithParam<PathPartCase>
{
};

TEST_P(GetPathPartTable, Splits)
{
    const PathPartCase &c = GetParam();
    EXPECT_EQ(GetPathPart(QString::fromUtf16(c.path), QString::fromUtf16(c.delimiter), c.mode),
        QString::fromUtf16(c.expected));
}

INSTANTIATE_TEST_SUITE_P(Modes, GetPathPartTable,
    ::testing::Values(PathPartCase {u"C:\\dir\\file.txt", u"\\", 0, u"C:\\dir"},
        PathPartCase {u"C:\\dir\\file.txt", u"\\", 1, u"file.txt"},
        PathPartCase {u"C:\\dir\\file.txt", u"\\", 2, u"C:\\dir"},
        PathPartCase {u"C:\\dir\\file.txt", u".", 0, u"file"},
        PathPartCase {u"C:\\dir\\file.txt", u".", 1, u"txt"},
        PathPartCase {u"C:\\dir\\file.txt", u".", 2, u"C:\\dir\\file"},
        PathPartCase {u"/home/u/a.tar.gz", u".", 0, u"a.tar"},
        PathPartCase {u"/home/u/a.tar.gz", u"/", 1, u"a.tar.gz"},
        PathPartCase {u"file.txt", u".", 0, u"file"},
        // Without the delimiter the path comes back whole in every mode.
        PathPartCase {u"nodelimiter", u"\\", 0, u"nodelimiter"},
        PathPartCase {u"nodelimiter", u"\\", 1, u"nodelimiter"},
        PathPartCase {u"nodelimiter", u"\\", 2, u"nodelimiter"},
        PathPartCase {u"C:\\dir\\name", u".", 0, u"C:\\dir\\name"},
        PathPartCase {u"C:\\dir\\file.txt", u"\\", 3, u""},
        PathPartCase {u"C:\\dir\\file.txt", u"\\", -1, u""}, PathPartCase {u"C:\\d.x\\name", u".", 0, u""}));

TEST(GeneralProcedures, AddBackslashVariants)
{
    EXPECT_EQ(AddBackslash(QStringLiteral("/tmp")), QStringLiteral("/tmp/"));
    EXPECT_EQ(AddBackslash(QStringLiteral("/tmp/")), QStringLiteral("/tmp/"));
    EXPECT_EQ(AddBackslash(QString()), QStringLiteral("/"));
    EXPECT_EQ(AddBackslash(QStringLiteral("C:\\a"), u'\\'), QStringLiteral("C:\\a\\"));
    EXPECT_EQ(AddBackslash(QString(), u'\\'), QStringLiteral("\\"));
    EXPECT_EQ(frm::AddBackslash(QString()), QString());
    EXPECT_EQ(frm::AddBackslash(QStringLiteral("/tmp")), QStringLiteral("/tmp/"));
    EXPECT_EQ(frm::AddBackslash(QStringLiteral("C:"), u'\\'), QStringLiteral("C:\\"));
}

TEST(GeneralProcedures, ExistenceAndTheDirectoryQuirk)
{
    TempTree tree;
    const QString file = tree.writeFile(QStringLiteral("f"), "x");
    const QString missing = tree.path(QStringLiteral("missing"));
    EXPECT_TRUE(FileExists(file));
    EXPECT_TRUE(FileExists(tree.root(), true));
    EXPECT_FALSE(FileExists(missing));
    EXPECT_FALSE(FileExists(QString()));

    EXPECT_TRUE(IsDirectory(tree.root()));
    EXPECT_FALSE(IsDirectory(file));
    EXPECT_TRUE(IsDirectory(missing)); // a failed lookup reads as a folder

    EXPECT_TRUE(FolderHasEntries(tree.root()));
    EXPECT_TRUE(FolderHasEntries(tree.makeDir(QStringLiteral("empty"))));
    EXPECT_FALSE(FolderHasEntries(missing));
    EXPECT_FALSE(FolderHasEntries(file));
    EXPECT_FALSE(FolderHasEntries(QString()));
}

TEST(GeneralProcedures, SizesAndTheirText)
{
    TempTree tree;
    EXPECT_EQ(FormatSize(1023), QStringLiteral("1023B"));
    EXPECT_EQ(FormatSize(1024), QStringLiteral("1.00KB"));
    EXPECT_EQ(FormatSize(1048576), QStringLiteral("1.00MB"));
    EXPECT_EQ(FormatSize(1073741823), QStringLiteral("1024.00MB"));
    EXPECT_EQ(FormatSize(1073741824), QStringLiteral("1.00GB"));
    EXPECT_EQ(FormatSize(5'000'000'000.0), QStringLiteral("4.66GB"));

    EXPECT_EQ(GetFileSizeBytes(tree.path(QStringLiteral("missing"))), 0);
    EXPECT_EQ(FormatFileSize(tree.path(QStringLiteral("missing"))), QStringLiteral("0B"));
    EXPECT_EQ(FormatFileSize(tree.writeFile(QStringLiteral("zero"))), QStringLiteral("0B"));
    const QString big = tree.makeSparseFile(QStringLiteral("big"), 5'000'000'000LL);
    if (big.isEmpty())
        GTEST_SKIP() << "no sparse files here";
    EXPECT_EQ(GetFileSizeBytes(big), 5'000'000'000LL);
    EXPECT_EQ(FormatFileSize(big), QStringLiteral("4.66GB"));
}

TEST(GeneralProcedures, CreateTempNameFallsBackToTheTempFolder)
{
    TempTree tree;
    QString folder = tree.root();
    const QString inFolder = CreateTempName(QString(), folder);
    EXPECT_EQ(folder, tree.root());
    EXPECT_EQ(QFileInfo(inFolder).absolutePath(), tree.root());
    EXPECT_TRUE(QFileInfo(inFolder).fileName().startsWith(QStringLiteral("Qui")));
    EXPECT_TRUE(QFileInfo(inFolder).isFile());

    QString missing = tree.path(QStringLiteral("missing"));
    const QString inTemp = CreateTempName(QStringLiteral("ab"), missing);
    EXPECT_EQ(missing, GetTempDir());
    EXPECT_TRUE(QFileInfo(inTemp).fileName().startsWith(QStringLiteral("ab")));
    QFile::remove(inTemp);
}

TEST(GeneralProcedures, MissingTempFolderIsAFailedLookupNotTheRoot)
{
    TempTree tree;
    const bool wasSet = qEnvironmentVariableIsSet("TMPDIR");
    const QByteArray saved = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(tree.path(QStringLiteral("gone"))));
    const QStringList rootBefore = QDir(QStringLiteral("/")).entryList(QDir::Files | QDir::Hidden);
    QString folder;
    const QString name = CreateTempName(QString(), folder);
    const QString temp = GetTempDir();
    if (wasSet)
        qputenv("TMPDIR", saved);
    else
        qunsetenv("TMPDIR");
    EXPECT_EQ(temp, QString());
    EXPECT_EQ(name, QString());
    EXPECT_EQ(QDir(QStringLiteral("/")).entryList(QDir::Files | QDir::Hidden), rootBefore);
}

// The desktop and applications folders are checked through the shortcut paths of the settings dialog.
TEST(GeneralProcedures, SystemFolders)
{
    EXPECT_TRUE(GetSystemDir().endsWith(u'/'));
    EXPECT_TRUE(GetTempDir().endsWith(u'/'));
    EXPECT_TRUE(QFileInfo(GetTempDir()).isDir());
    EXPECT_EQ(GetSpecialFolder(0, 5), QString());
}

TEST(GeneralProcedures, ModulePathAndNullCut)
{
    EXPECT_TRUE(QFileInfo(GetModulePath()).isExecutable());
    EXPECT_TRUE(GetModulePath().endsWith(QStringLiteral("qb_workbench_tests")));
    EXPECT_EQ(TrimAtNull(QStringLiteral("abc") + QChar(0) + QStringLiteral("def")), QStringLiteral("abc"));
    EXPECT_EQ(TrimAtNull(QString(QChar(0)) + QStringLiteral("x")), QString());
    EXPECT_EQ(TrimAtNull(QStringLiteral("plain")), QStringLiteral("plain"));
}

TEST(GeneralProcedures, ShortcutIsADesktopEntry)
{
    TempTree tree;
    const QString link = tree.path(QStringLiteral("Quillbox Desk.desktop"));
    ASSERT_TRUE(CreateShortcutFile(link, QStringLiteral("/opt/my $app/bin\\x\"q"), QStringLiteral("/opt"),
        QString(), QStringLiteral("Builds cabinets\nfast"), 1, QString(), 0));
    const QString text = QString::fromUtf8(qb::test::readAll(link));
    EXPECT_TRUE(text.startsWith(QStringLiteral("[Desktop Entry]\n")));
    EXPECT_TRUE(text.contains(QStringLiteral("\nName=Quillbox Desk\n")));
    EXPECT_TRUE(text.contains(QStringLiteral("\nComment=Builds cabinets\\nfast\n")));
    // Inside quotes "$", "\" and '"' are escaped, and every backslash is doubled once more.
    EXPECT_TRUE(text.contains(QStringLiteral("\nExec=\"/opt/my \\\\$app/bin\\\\\\\\x\\\\\"q\" %F\n")))
        << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("\nPath=/opt\n")));
    EXPECT_TRUE(text.contains(QStringLiteral("\nIcon=/opt/my $app/bin\\\\x\"q\n")));
    EXPECT_TRUE(QFileInfo(link).isExecutable());

    EXPECT_FALSE(CreateShortcutFile(tree.path(QStringLiteral("no/folder/x.desktop")),
        QStringLiteral("/bin/true"), QString(), QString(), QString(), 1, QString(), 0));
    EXPECT_FALSE(CreateShortcutFile(
        QString(), QStringLiteral("/bin/true"), QString(), QString(), QString(), 1, QString(), 0));
}

} // namespace
