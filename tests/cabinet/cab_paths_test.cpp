// The path helpers: joining, splitting, folder creation and the guard on stored names.
#include "cabinet/cab_paths.h"
#include "cabinet/cab_reader.h"

#include "support/temp_tree.h"

#include <QFileInfo>
#include <gtest/gtest.h>

#include <tuple>

using namespace qb::cabinet;

namespace {

TEST(CabPaths, FixPathAddsOneSlash)
{
    EXPECT_EQ(FixPath(QStringLiteral("/tmp/a")), QStringLiteral("/tmp/a/"));
    EXPECT_EQ(FixPath(QStringLiteral("/tmp/a/")), QStringLiteral("/tmp/a/"));
    EXPECT_EQ(FixPath(QString()), QStringLiteral("/"));
    clsCAB reader;
    EXPECT_EQ(reader.FixPath(QStringLiteral("x")), QStringLiteral("x/"));
}

TEST(CabPaths, SplitFileCutsAtTheLastSeparator)
{
    const std::tuple<const char *, const char *, const char *> cases[]
        = {{"a\\b/c\\d.txt", "a\\b/c\\", "d.txt"}, {"a/b\\c/d", "a/b\\c/", "d"},
            {"plain.txt", "", "plain.txt"}, {"dir\\", "dir\\", ""}};
    for (const auto &[full, folder, name] : cases) {
        QString path = QStringLiteral("old");
        QString file = QStringLiteral("old");
        SplitFile(QString::fromLatin1(full), path, file);
        EXPECT_EQ(path, QString::fromLatin1(folder)) << full;
        EXPECT_EQ(file, QString::fromLatin1(name)) << full;
    }
}

TEST(CabPaths, MakePathCreatesEveryLevel)
{
    qb::test::TempTree tree;
    const QString deep = tree.path(QStringLiteral("one/two/three/four"));
    clsCAB reader;
    EXPECT_TRUE(reader.MakePath(deep));
    EXPECT_TRUE(QFileInfo(deep).isDir());
    EXPECT_TRUE(reader.MakePath(deep + u'/'));
    EXPECT_TRUE(MakePath(tree.root()));
    EXPECT_FALSE(MakePath(QString()));
    // A file in the way cannot become a folder.
    const QString file = tree.writeFile(QStringLiteral("plain"), "x");
    EXPECT_FALSE(MakePath(file + QStringLiteral("/below")));
    EXPECT_FALSE(MakePath(file));
}

TEST(CabPaths, SafeMemberNames)
{
    for (const char *name : {"a.txt", "dir\\sub\\a.txt", "a..b.txt", "..a", "dir/a.txt", "名字.txt", "a\x01",
             "a\x7F", "tab\there", "new\nline", "dir\\a:b.txt", "ab:c"})
        EXPECT_TRUE(IsSafeMemberName(QString::fromUtf8(name))) << name;
    for (const char *name : {"", "..", "..\\a", "a\\..\\..\\b", "a/../b", "\\abs", "/abs", "C:x.txt", "c:\\x",
             "a\\", ".\\a", "Z:", "a:b.txt"})
        EXPECT_FALSE(IsSafeMemberName(QString::fromUtf8(name))) << name;
    EXPECT_FALSE(IsSafeMemberName(QStringLiteral("nul") + QChar(0) + QStringLiteral("x")));
    EXPECT_EQ(MemberNameToRelativePath(QStringLiteral("a\\b\\c")), QStringLiteral("a/b/c"));
}

} // namespace
