// Requests from the command line or another instance, and where the window docks.
#include "support/temp_tree.h"
#include "workbench/app_context.h"
#include "workbench/list_surface.h"
#include "workbench/window_docking.h"
#include "workbench/workbench.h"
#include "workbench/workbench_doubles.h"

#include <QFileInfo>
#include <QSettings>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::workbench {
namespace {

class RequestTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, tree.path(u"settings"_s));
        InitializeApplicationContext();
        bench.restoreWindow = [this] { ++restored; };
    }
    QStringList rows() const
    {
        QStringList out;
        for (int i = 0; i < list.Count(); ++i)
            out.append(list.ItemText(i, kColumnFolder) + list.ItemText(i, kColumnName));
        return out;
    }
    test::TempTree tree;
    RowStore list;
    test::RecordingStrip strip;
    test::MenuFlags menus;
    test::ScriptedDialogs dialogs;
    Workbench bench {list, strip, menus, dialogs};
    int restored = 0;
};

// Before the window is ready a request is dropped; once it is, even an empty one restores it.
TEST_F(RequestTest, NotReadyDoesNothingAndAnEmptyRequestStillRestores)
{
    const QString file = tree.writeFile(u"a.txt"_s, "a");
    bench.cPrevInstance_PrevInstance(file, false, {file}, {}, {});
    EXPECT_EQ(restored, 0);
    bench.cPrevInstance_PrevInstance(QString(), true, {}, {}, {});
    EXPECT_EQ(restored, 1);
    EXPECT_EQ(list.Count(), 0);
}

TEST_F(RequestTest, FilesThenFoldersAndWordsIgnored)
{
    const QString a = tree.writeFile(u"one/a.txt"_s, "a");
    const QString b = tree.writeFile(u"two/b.txt"_s, "b");
    tree.writeFile(u"dir/sub/c.txt"_s, "c");
    tree.writeFile(u"dir/d.txt"_s, "d");
    bench.cPrevInstance_PrevInstance(u"..."_s, true, {a, b}, {tree.path(u"dir/"_s)}, {u"-x"_s});
    EXPECT_EQ(restored, 1);
    QStringList got = rows();
    EXPECT_EQ(got.mid(0, 2), (QStringList {u"a.txt"_s, u"b.txt"_s}));
    // A folder from a request names its files relative to itself.
    QStringList fromFolder = got.mid(2);
    fromFolder.sort();
    EXPECT_EQ(fromFolder, (QStringList {u"d.txt"_s, u"sub\\c.txt"_s}));
    EXPECT_EQ(bench.mBasePath, tree.path(u"dir/"_s));
    EXPECT_TRUE(dialogs.messages.isEmpty());
}

TEST_F(RequestTest, OpenCabinetAsksAndNoEndsTheWholeRequest)
{
    const QString file = tree.writeFile(u"a.txt"_s, "a");
    bench.cCab().setCabName(tree.writeFile(u"x.cab"_s, "MSCF"));
    list.AddItem(u"row|||||"_s, QString(), QString());
    bench.cPrevInstance_PrevInstance(QString(), true, {file}, {tree.root() + u'/'}, {});
    ASSERT_EQ(dialogs.messages.size(), 1);
    EXPECT_EQ(dialogs.messages[0], (std::pair {u"是否关闭已经打开的 CAB 文件包？"_s, kYesNo}));
    EXPECT_EQ(rows(), (QStringList {u"row"_s}));
    // Yes clears the list and adds.
    dialogs.answers = {kAnswerYes};
    bench.cPrevInstance_PrevInstance(QString(), true, {file}, {}, {});
    EXPECT_EQ(rows(), (QStringList {u"a.txt"_s}));
}

TEST_F(RequestTest, OpenWordWithOneCabinetOpensItAndNothingElseDoes)
{
    const QString a = tree.writeFile(u"src/a|b.txt"_s, "alpha");
    bench.mBasePath = tree.path(u"src/"_s);
    bench.DropFile({}, a);
    bench.mCabinetPath = tree.path(u"x.cab"_s);
    gMakeCabPath = QStringLiteral(QB_MAKECAB_PATH);
    bench.BuildCabinet();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !bench.FFmpegX1().IsBusy(); }, 60000));
    ASSERT_TRUE(QFileInfo::exists(bench.mCabinetPath));
    const QString cab = bench.mCabinetPath;
    list.Clear();

    // Other forms are plain requests: the cabinet is added as a file, the words ignored.
    bench.cPrevInstance_PrevInstance(u"\"--opened\" \""_s + cab + u'"', true, {cab}, {}, {u"--opened"_s});
    bench.cPrevInstance_PrevInstance(u'"' + cab + u"\" \"--open\""_s, true, {cab}, {}, {u"--open"_s});
    EXPECT_EQ(rows(), (QStringList {u"x.cab"_s, u"x.cab"_s}));
    EXPECT_TRUE(bench.cCab().CabName().isEmpty());

    bench.cPrevInstance_PrevInstance(u"\"--open\" \""_s + cab + u'"', true, {cab}, {}, {u"--open"_s});
    EXPECT_EQ(bench.cCab().CabName(), cab);
    ASSERT_EQ(list.Count(), 2);
    EXPECT_EQ(list.ItemTag(0), u"Quillbox Desk.txt"_s);
    EXPECT_EQ(list.ItemTag(1), u"a|b.txt"_s);
    EXPECT_EQ(restored, 3);
}

TEST(WindowDocking, SnapsWithinThirtyPixelsAndDrawsBackFromBeyond)
{
    const QSize screen(1920, 1080);
    const QRect work(0, 0, 1920, 1040); // a panel of 40 pixels at the bottom
    struct Case
    {
        QRect window;
        QRect workArea;
        QPoint expected;
    };
    const Case cases[] = {
        {{29, 100, 900, 500}, work, {0, 100}},
        {{30, 100, 900, 500}, work, {30, 100}},
        {{-50, 100, 900, 500}, work, {0, 100}},
        {{1000, 100, 900, 500}, work, {1020, 100}},
        {{990, 100, 900, 500}, work, {990, 100}},
        {{500, 10, 900, 500}, work, {500, 0}},
        {{500, 520, 900, 500}, work, {500, 540}},
        {{500, 505, 900, 500}, work, {500, 505}},
        // A panel of 60 pixels on the left: the left edge snaps to it, the right to the screen's edge.
        {{70, 100, 900, 500}, QRect(60, 0, 1860, 1080), {60, 100}},
        {{1000, 100, 900, 500}, QRect(60, 0, 1860, 1080), {1020, 100}},
        // A panel at the top.
        {{500, 40, 900, 500}, QRect(0, 30, 1920, 1050), {500, 30}},
    };
    for (const Case &c : cases)
        EXPECT_EQ(DockedPosition(c.window, screen, c.workArea), c.expected)
            << c.window.x() << "," << c.window.y();
}

} // namespace
} // namespace qb::workbench
