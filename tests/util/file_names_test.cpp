// Name helpers: existence, free names, folders, temporary files, sizes, moves.
#include "util/file_names.h"

#include "support/temp_tree.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <gtest/gtest.h>

#include <tuple>

using namespace qb::util;
using qb::test::TempTree;

namespace {

TEST(FileNames, ExistenceTests)
{
    TempTree tree;
    const QString file = tree.writeFile(QStringLiteral("a.txt"), "x");
    const QString folder = tree.makeDir(QStringLiteral("sub"));
    // Path, then FileExists, DirExists and DirectoryExists: a folder counts as existing.
    const std::tuple<QString, bool, bool, bool> cases[]
        = {{file, true, false, false}, {folder, true, true, true}, {folder + u'/', true, true, true},
            {QStringLiteral("/"), true, true, true}, {tree.path(QStringLiteral("none")), false, false, false},
            {QString(), false, false, false}, {QStringLiteral("   "), false, false, false}};
    for (const auto &[path, exists, dir, directory] : cases) {
        EXPECT_EQ(FileExists(path), exists) << path.toStdString();
        EXPECT_EQ(DirExists(path), dir) << path.toStdString();
        EXPECT_EQ(DirectoryExists(path), directory) << path.toStdString();
    }
}

TEST(FileNames, CPathAddsOneSlash)
{
    EXPECT_EQ(cPath(QString()), QString());
    EXPECT_EQ(cPath(QStringLiteral("  ")), QStringLiteral("  "));
    EXPECT_EQ(cPath(QStringLiteral("/tmp")), QStringLiteral("/tmp/"));
    EXPECT_EQ(cPath(QStringLiteral("/tmp/")), QStringLiteral("/tmp/"));
}

TEST(FileNames, MakedPathCreatesEveryLevel)
{
    TempTree tree;
    const QString deep = tree.path(QStringLiteral("a/b/c/d"));
    EXPECT_TRUE(MakedPath(deep));
    EXPECT_TRUE(QFileInfo(deep).isDir());
    EXPECT_TRUE(MakedPath(deep)); // existing: nothing to do, still true
    EXPECT_TRUE(MakedPath(deep + u'/'));
    // A file in the way: the levels below it can't be made.
    const QString file = tree.writeFile(QStringLiteral("f"), "x");
    EXPECT_FALSE(MakedPath(file + QStringLiteral("/x/y")));
    EXPECT_FALSE(MakedPath(QString()));
}

TEST(FileNames, RenameExistsCountsUp)
{
    TempTree tree;
    const QString a = tree.path(QStringLiteral("a.txt"));
    EXPECT_EQ(RenameExists(a), a);
    tree.writeFile(QStringLiteral("a.txt"));
    EXPECT_EQ(RenameExists(a), tree.path(QStringLiteral("a(1).txt")));
    tree.writeFile(QStringLiteral("a(1).txt"));
    EXPECT_EQ(RenameExists(a), tree.path(QStringLiteral("a(2).txt")));

    // No extension, a dot in a folder's name, a hidden name.
    tree.writeFile(QStringLiteral("v.d/plain"));
    EXPECT_EQ(
        RenameExists(tree.path(QStringLiteral("v.d/plain"))), tree.path(QStringLiteral("v.d/plain(1)")));
    tree.writeFile(QStringLiteral(".cfg"));
    EXPECT_EQ(RenameExists(tree.path(QStringLiteral(".cfg"))), tree.path(QStringLiteral(".cfg(1)")));
}

TEST(FileNames, MoveFileToKeepsOrReplacesTarget)
{
    TempTree tree;
    const QString source = tree.writeFile(QStringLiteral("s.bin"), "new");
    const QString target = tree.writeFile(QStringLiteral("t.bin"), "old");
    EXPECT_TRUE(MoveFileTo(source, target, false));
    EXPECT_FALSE(QFileInfo::exists(source));
    EXPECT_EQ(qb::test::readAll(target), QByteArray("old"));
    EXPECT_EQ(qb::test::readAll(tree.path(QStringLiteral("t(1).bin"))), QByteArray("new"));

    const QString again = tree.writeFile(QStringLiteral("s2.bin"), "newer");
    EXPECT_TRUE(MoveFileTo(again, target, true));
    EXPECT_EQ(qb::test::readAll(target), QByteArray("newer"));

    EXPECT_FALSE(MoveFileTo(tree.path(QStringLiteral("missing")), target, true));
    EXPECT_EQ(qb::test::readAll(target), QByteArray("newer"));
    EXPECT_FALSE(MoveFileTo(target, tree.path(QStringLiteral("no/such/folder/x")), true));
    EXPECT_TRUE(QFileInfo::exists(target));
}

TEST(FileNames, CreateTempFilePrefixIsAlwaysThreeCharacters)
{
    TempTree tree;
    struct Case
    {
        QString prefix;
        QString expectedStart;
    };
    const Case cases[] = {{QString(), QStringLiteral("TMP")}, {QStringLiteral("a"), QStringLiteral("aTM")},
        {QStringLiteral("ab"), QStringLiteral("abT")}, {QStringLiteral("abc"), QStringLiteral("abc")},
        {QStringLiteral("abcdef"), QStringLiteral("abc")}};
    for (const Case &c : cases) {
        const QString path = CreateTempFile(tree.root(), c.prefix);
        ASSERT_FALSE(path.isEmpty());
        const QString name = QFileInfo(path).fileName();
        EXPECT_TRUE(name.startsWith(c.expectedStart)) << name.toStdString();
        EXPECT_EQ(name.size(), 11) << name.toStdString(); // prefix, 4 hex digits, ".tmp"
        EXPECT_TRUE(QFileInfo(path).isFile());
        EXPECT_EQ(QFileInfo(path).size(), 0);
        EXPECT_EQ(QFileInfo(path).absolutePath(), tree.root());
    }
    EXPECT_TRUE(CreateTempFile(tree.path(QStringLiteral("missing")), QStringLiteral("x")).isEmpty());
}

TEST(FileNames, TempFilesAreUniqueAndPrivate)
{
    TempTree tree;
    QSet<QString> names;
    for (int i = 0; i < 200; ++i)
        names.insert(CreateUniqueTempFile(tree.root(), QStringLiteral("abc")));
    EXPECT_EQ(names.size(), 200);
    const QFileInfo info(*names.begin());
    EXPECT_EQ(info.permissions() & (QFile::ReadOther | QFile::WriteOther | QFile::ReadGroup), 0);
}

TEST(FileNames, GetFileLenIsExactAbove4GiB)
{
    TempTree tree;
    EXPECT_EQ(GetFileLen(tree.writeFile(QStringLiteral("zero"))), 0);
    EXPECT_EQ(GetFileLen(tree.writeFile(QStringLiteral("three"), "abc")), 3);
    EXPECT_EQ(GetFileLen(tree.path(QStringLiteral("missing"))), 0);
    EXPECT_EQ(GetFileLen(tree.root()), 0);
    const QString big = tree.makeSparseFile(QStringLiteral("big"), 5'000'000'000LL);
    if (big.isEmpty())
        GTEST_SKIP() << "no sparse files here";
    EXPECT_EQ(GetFileLen(big), 5'000'000'000LL);
}

TEST(FileNames, SystemFoldersHaveNoTrailingSlash)
{
    for (const QString &folder :
        {GetWindowsBaseDirectory(), GetWindowsSystemDirectory(), GetWindowsTempDirectory()}) {
        EXPECT_FALSE(folder.isEmpty());
        EXPECT_FALSE(folder.endsWith(u'/')) << folder.toStdString();
        EXPECT_TRUE(QFileInfo(folder).isDir()) << folder.toStdString();
    }
    qputenv("TMPDIR", "/var/tmp/");
    EXPECT_EQ(GetWindowsTempDirectory(), QStringLiteral("/var/tmp"));
    qunsetenv("TMPDIR");
}

} // namespace
