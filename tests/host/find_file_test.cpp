// clsFindFile: both passes, breadth-first order, attribute masks, sizes.
#include "host/find_file.h"

#include "support/temp_tree.h"

#include <QFile>
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

using qb::host::clsFindFile;
using qb::test::TempTree;

namespace {

QStringList relative(const clsFindFile &finder, const TempTree &tree)
{
    QStringList out;
    for (qsizetype i = 1; i <= qsizetype(finder.Count()); ++i)
        out << finder.Files(i).mid(tree.root().size() + 1);
    return out;
}

TEST(FindFile, ResultsReplaceTheOldOnesAndCountFromOne)
{
    TempTree tree;
    clsFindFile finder;
    EXPECT_TRUE(finder.FindFiles(tree.root(), QStringLiteral("*.*"), 8, true));
    EXPECT_EQ(finder.Count(), 0);
    EXPECT_EQ(finder.Size(), 0);

    tree.writeFile(QStringLiteral("README"), "abc");
    tree.writeFile(QStringLiteral("a.txt"), "12345");
    tree.writeFile(QStringLiteral("b.two"), "22");
    // "*.*" takes names without a dot too; a trailing "/" is not doubled.
    EXPECT_TRUE(finder.FindFiles(tree.root() + u'/', QStringLiteral("*.*"), 8, false));
    QStringList found = relative(finder, tree);
    found.sort();
    EXPECT_EQ(
        found, (QStringList {QStringLiteral("README"), QStringLiteral("a.txt"), QStringLiteral("b.two")}));
    EXPECT_EQ(finder.Size(), 10);
    for (const qsizetype outside : {0, 4, -1})
        EXPECT_EQ(finder.Files(outside), QString()) << outside;

    finder.FindFiles(tree.root(), QStringLiteral("*.two"), 8, false);
    EXPECT_EQ(relative(finder, tree), QStringList {QStringLiteral("b.two")});
    EXPECT_EQ(finder.Size(), 2);
    // A folder that can't be read leaves no results behind.
    EXPECT_FALSE(finder.FindFiles(tree.path(QStringLiteral("missing")), QStringLiteral("*"), 8, true));
    EXPECT_EQ(finder.Count(), 0);
    EXPECT_FALSE(finder.FindFiles(QString(), QStringLiteral("*"), 8, true));
    EXPECT_EQ(finder.Size(), 0);
}

TEST(FindFile, AttributeMasks)
{
    TempTree tree;
    tree.writeFile(QStringLiteral("file.txt"), "1");
    tree.writeFile(QStringLiteral(".hidden"), "22");
    tree.makeDir(QStringLiteral("folder"));
    tree.makeDir(QStringLiteral(".hiddendir"));
    const QString readOnly = tree.writeFile(QStringLiteral("ro.txt"), "333");
    QFile::setPermissions(readOnly, QFile::ReadOwner | QFile::ReadUser);

    struct Case
    {
        int mask;
        QStringList expected;
    };
    const Case cases[] = {
        {8, {QStringLiteral(".hidden"), QStringLiteral("file.txt"), QStringLiteral("ro.txt")}},
        {16, {QStringLiteral(".hiddendir"), QStringLiteral("folder")}},
        {24,
            {QStringLiteral(".hidden"), QStringLiteral(".hiddendir"), QStringLiteral("file.txt"),
                QStringLiteral("folder"), QStringLiteral("ro.txt")}},
        {8 | 2, {QStringLiteral(".hidden")}},
        {16 | 2, {QStringLiteral(".hiddendir")}},
        {8 | 1, {QStringLiteral("ro.txt")}},
        {0, {}},
    };
    for (const Case &c : cases) {
        clsFindFile finder;
        finder.FindFiles(tree.root(), QStringLiteral("*"), c.mask, false);
        QStringList found = relative(finder, tree);
        found.sort();
        EXPECT_EQ(found, c.expected) << "mask " << c.mask;
    }
}

TEST(FindFile, FoldersComeBreadthFirst)
{
    TempTree tree;
    tree.writeFile(QStringLiteral("a/deep/x/1.f"), "1");
    tree.writeFile(QStringLiteral("b/2.f"), "1");
    tree.writeFile(QStringLiteral("3.f"), "1");
    tree.writeFile(QStringLiteral("a/4.f"), "1");
    clsFindFile finder;
    finder.FindFiles(tree.root(), QStringLiteral("*.f"), 8, true);
    const QStringList found = relative(finder, tree);
    ASSERT_EQ(found.size(), 4);
    // Depth never decreases along the results: the root's files, then one level down, and so on.
    qsizetype depth = 0;
    for (const QString &path : found) {
        const qsizetype d = path.count(u'/');
        EXPECT_GE(d, depth) << path.toStdString();
        depth = d;
    }
    EXPECT_EQ(found.first(), QStringLiteral("3.f"));
    EXPECT_EQ(found.last(), QStringLiteral("a/deep/x/1.f"));
    // Without SubFolder only the folder itself.
    finder.FindFiles(tree.root(), QStringLiteral("*.f"), 8, false);
    EXPECT_EQ(relative(finder, tree), QStringList {QStringLiteral("3.f")});
}

TEST(FindFile, SizeTakesOnlyTheLowWordAbove4GiB)
{
    TempTree tree;
    const QString big = tree.makeSparseFile(QStringLiteral("big.bin"), 0x100000000LL + 1234);
    if (big.isEmpty())
        GTEST_SKIP() << "no sparse files here";
    tree.writeFile(QStringLiteral("small.bin"), "12");
    clsFindFile finder;
    finder.FindFiles(tree.root(), QStringLiteral("*.bin"), 8, false);
    EXPECT_EQ(finder.Count(), 2);
    EXPECT_EQ(finder.Size(), 1236);
}

TEST(FindFile, SymlinkLoopDoesNotTrapTheWalk)
{
    TempTree tree;
    tree.writeFile(QStringLiteral("d/f.txt"), "1");
    ASSERT_TRUE(QFile::link(tree.path(QStringLiteral("d")), tree.path(QStringLiteral("d/loop"))));
    clsFindFile finder;
    finder.FindFiles(tree.root(), QStringLiteral("*.txt"), 8, true);
    EXPECT_EQ(relative(finder, tree), QStringList {QStringLiteral("d/f.txt")});
}

// Runs the finder where the folder's permissions count: as root, in a child that has dropped to
// an unprivileged user. Returns the number of results, or -1 when that can't be arranged.
int countAsUnprivileged(const QString &root, const QString &wildcard)
{
    if (::geteuid() != 0) {
        clsFindFile finder;
        finder.FindFiles(root, wildcard, 8, true);
        return int(finder.Count());
    }
    const pid_t child = ::fork();
    if (child < 0)
        return -1;
    if (child == 0) {
        if (::setgid(65534) != 0 || ::setuid(65534) != 0)
            ::_exit(255);
        clsFindFile finder;
        finder.FindFiles(root, wildcard, 8, true);
        ::_exit(int(finder.Count()));
    }
    int status = 0;
    if (::waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) == 255)
        return -1;
    return WEXITSTATUS(status);
}

TEST(FindFile, UnreadableFolderIsSkippedSilently)
{
    TempTree tree;
    tree.writeFile(QStringLiteral("open/a.txt"), "1");
    tree.writeFile(QStringLiteral("closed/b.txt"), "1");
    tree.writeFile(QStringLiteral("c.txt"), "1");
    const auto everyone = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadOther
        | QFile::ExeOther | QFile::ReadGroup | QFile::ExeGroup;
    QFile::setPermissions(tree.root(), everyone);
    QFile::setPermissions(tree.path(QStringLiteral("open")), everyone);
    QFile::setPermissions(tree.path(QStringLiteral("closed")), QFile::Permissions());
    const int count = countAsUnprivileged(tree.root(), QStringLiteral("*.txt"));
    QFile::setPermissions(tree.path(QStringLiteral("closed")), everyone | QFile::WriteOwner);
    if (count < 0)
        GTEST_SKIP() << "cannot drop privileges here";
    EXPECT_EQ(count, 2);
}

} // namespace
