// The window's state table, row by row: which menu entries are on, whether cancel is, and whether
// the list takes input, seen from inside each state. Also the start-up check for the maker.
#include "support/temp_tree.h"
#include "workbench/app_context.h"
#include "workbench/entry_procedure.h"
#include "workbench/list_surface.h"
#include "workbench/workbench.h"
#include "workbench/workbench_doubles.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::workbench {
namespace {

// What the menus and the list looked like at one moment.
struct Snapshot
{
    QString menus; // O E S A B D C: open, extract, save, save as, add, delete, clear; "-" when off
    bool cancel = false;
    bool listEnabled = false;
    bool operator==(const Snapshot &) const = default;
};

Snapshot take(const MenuSurface &menus, const ListSurface &list)
{
    const std::pair<Menu, QChar> entries[] = {{Menu::Open, u'O'}, {Menu::Extract, u'E'}, {Menu::Save, u'S'},
        {Menu::SaveAs, u'A'}, {Menu::AddBase, u'B'}, {Menu::Delete, u'D'}, {Menu::Clear, u'C'}};
    Snapshot s;
    for (const auto &[menu, letter] : entries)
        s.menus += menus.menuEnabled(menu) ? letter : u'-';
    s.cancel = menus.menuEnabled(Menu::Cancel);
    s.listEnabled = list.Enabled();
    return s;
}

// A row store that takes a snapshot whenever a row comes in.
class SpyingRows : public RowStore
{
public:
    std::function<void()> onAdd;
    void AddItem(const QString &text, const QString &file, const QString &tag) override
    {
        RowStore::AddItem(text, file, tag);
        if (onAdd)
            onAdd();
    }
};

class StateTable : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, tree.path(u"settings"_s));
        InitializeApplicationContext();
        gMakeCabPath = QStringLiteral(QB_MAKECAB_PATH);
        bench.setClock([] { return QTime(12, 34, 56); });
        bench.FFmpegX1().setpriority(32);
        menus.setMenuEnabled(Menu::Cancel, false);
    }
    Snapshot now() const { return take(menus, list); }

    test::TempTree tree;
    SpyingRows list;
    test::RecordingStrip strip;
    test::MenuFlags menus;
    test::ScriptedDialogs dialogs;
    Workbench bench {list, strip, menus, dialogs};
};

const Snapshot kIdle {u"OESABDC"_s, false, true};

TEST_F(StateTable, EveryRowOfTheTable)
{
    EXPECT_EQ(now(), kIdle);

    // Adding: the package entries are off, open and extract stay; the list takes nothing.
    tree.writeFile(u"p/a.txt"_s, QByteArray(300000, 'a'));
    std::vector<Snapshot> seen;
    list.onAdd = [&] { seen.push_back(now()); };
    bench.DropFile({tree.path(u"p"_s)}, QString());
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0], (Snapshot {u"OE-----"_s, false, false}));
    EXPECT_EQ(now(), kIdle);

    // Building: all seven off, cancel on, the list still takes input.
    std::map<int, Snapshot> atStatus;
    QObject::connect(&bench.FFmpegX1(), &engine::FFmpegX::StatusChange, &bench,
        [&](int code, const QString &) { atStatus.try_emplace(code, now()); });
    bench.mnuSave(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !bench.FFmpegX1().IsBusy(); }, 60000));
    ASSERT_TRUE(atStatus.count(1));
    EXPECT_EQ(atStatus[1], (Snapshot {u"-------"_s, true, true}));
    // Cleanup pending after Complete: all on again, cancel off.
    EXPECT_EQ(now(), kIdle);

    // Opening: every entry off while the rows come in.
    seen.clear();
    dialogs.files.push_back(
        {QFileInfo(bench.mCabinetPath).path(), {QFileInfo(bench.mCabinetPath).fileName()}});
    bench.mnuOpen();
    ASSERT_FALSE(seen.empty());
    EXPECT_EQ(seen[0], (Snapshot {u"-------"_s, false, false}));
    EXPECT_EQ(now(), kIdle);

    // Extracting: every entry off, cancel off, the list on.
    std::vector<Snapshot> extracting;
    QObject::connect(&bench.cCab(), &cabinet::clsCAB::AfterExtract, &bench,
        [&](const QString &) { extracting.push_back(now()); });
    dialogs.folders.push_back(tree.makeDir(u"out"_s));
    bench.mnuExtract();
    ASSERT_FALSE(extracting.empty());
    EXPECT_EQ(extracting[0], (Snapshot {u"-------"_s, false, true}));
    EXPECT_EQ(now(), kIdle);
}

// A cancel mid-build: cancel stays on until the maker answers, then Canceled and Complete, and
// the failed cabinet is reported with nothing half-made left behind.
TEST_F(StateTable, CancellingInTheMiddleOfABuild)
{
    QByteArray data;
    for (qint64 i = 0; data.size() < 16 * 1024 * 1024; ++i)
        data += QByteArray::number(i * 7919) + ' ';
    tree.writeFile(u"big/data.txt"_s, data);
    WriteSetting(u"CompressionType", u"2"_s);
    bench.DropFile({tree.path(u"big"_s)}, QString());
    std::map<int, Snapshot> atStatus;
    QObject::connect(
        &bench.FFmpegX1(), &engine::FFmpegX::StatusChange, &bench, [&](int code, const QString &) {
            if (code == 1 && !atStatus.count(1))
                QTimer::singleShot(200, &bench, [&] {
                    bench.mnuCancel();
                    atStatus.try_emplace(100, now()); // cancelling: cancel still on until the answer
                });
            atStatus.try_emplace(code, now());
        });
    bench.mnuSave(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !bench.FFmpegX1().IsBusy(); }, 60000));
    ASSERT_TRUE(atStatus.count(100));
    EXPECT_EQ(atStatus[100], (Snapshot {u"-------"_s, true, true}));
    ASSERT_TRUE(atStatus.count(4));
    EXPECT_EQ(now(), kIdle);

    EXPECT_TRUE(strip.captions.contains(u"  [12:34:56] 取消任务..."_s));
    EXPECT_GE(strip.captions.indexOf(u"  [12:34:56] 任务已经取消!"_s), 0);
    EXPECT_TRUE(strip.captions.last().startsWith(u"  [12:34:56] 已经完成! "_s));
    EXPECT_EQ(dialogs.messages, (QList<std::pair<QString, int>> {{u"压缩包创建失败"_s, kCritical}}));
    EXPECT_FALSE(QFileInfo::exists(bench.mCabinetPath));
    // The next add would take in whatever was left in the folder.
    EXPECT_EQ(QDir(tree.path(u"big"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        (QStringList {u"data.txt"_s}));
    bench.mnuCancel();
    EXPECT_EQ(strip.Caption(), u"  [12:34:56] 没有需要取消的任务!"_s);
}

TEST_F(StateTable, ErrorTurnsCancelOffAndLeavesTheRest)
{
    bench.SetMenusEnabled(false);
    menus.setMenuEnabled(Menu::Cancel, true);
    // A job the engine refuses raises Error: here a second start while one is marked running.
    bench.FFmpegX1().setProcessing(true);
    bench.FFmpegX1().StartProcess();
    EXPECT_EQ(now(), (Snapshot {u"-------"_s, false, true}));
    EXPECT_EQ(strip.Caption().mid(13), u"发生错误!"_s);
}

TEST(StartUp, MissingMakerIsACriticalMessageWithItsBlank)
{
    test::TempTree tree;
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", tree.root().toUtf8());
    test::ScriptedDialogs dialogs;
    EXPECT_FALSE(PrepareApplication(dialogs));
    qputenv("PATH", path);
    ASSERT_EQ(dialogs.messages.size(), 1);
    EXPECT_EQ(dialogs.messages[0], (std::pair {u"无法找到 "_s, kCritical}));
    EXPECT_EQ(gAppTitle, u"Quillbox Desk"_s);
}

} // namespace
} // namespace qb::workbench
