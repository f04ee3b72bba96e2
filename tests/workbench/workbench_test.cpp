// The workbench end to end without a window: adding a tree, building through the real job engine
// and our cabinet maker, checking the cabinet with cabextract, opening it and extracting.
#include "support/hostile_names.h"
#include "support/temp_tree.h"
#include "support/tool_run.h"
#include "util/process_priority.h"
#include "workbench/app_context.h"
#include "workbench/general_procedures.h"
#include "workbench/list_surface.h"
#include "workbench/workbench.h"
#include "workbench/workbench_doubles.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSettings>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::workbench {
namespace {

using test::TempTree;

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

class WorkbenchTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settingsTree.root());
        InitializeApplicationContext();
        gMakeCabPath = QStringLiteral(QB_MAKECAB_PATH);
        bench.setClock([] { return QTime(12, 34, 56); });
        // Idle priority, the engine's default, could leave the maker starved for minutes while
        // other tests keep both cores busy.
        bench.FFmpegX1().setpriority(util::kPriorityNormal);
    }

    // A tree with nested folders, Chinese names, blanks and an empty file; returns its root.
    QString makeTree()
    {
        tree.writeFile(u"pkg/readme.txt"_s, "read me\n");
        tree.writeFile(u"pkg/空 文件.dat"_s, QByteArray());
        tree.writeFile(u"pkg/文档/说明 一.txt"_s, QByteArray("中文内容").repeated(100));
        tree.writeFile(u"pkg/deep/er/still/x.bin"_s, QByteArray(3000, '\x7f'));
        QByteArray big;
        QRandomGenerator random(5);
        while (big.size() < 2 * 1024 * 1024)
            big += QByteArray::number(random.bounded(1000)) + (random.bounded(7) ? " " : "\n");
        tree.writeFile(u"pkg/big text.log"_s, big);
        return tree.path(u"pkg"_s);
    }

    // Rows whose source is a file, as "folder|name" with the folder in the cabinet.
    QStringList rowNames() const
    {
        QStringList names;
        for (int i = 0; i < list.Count(); ++i)
            names.append(list.ItemText(i, kColumnFolder) + u'|' + list.ItemText(i, kColumnName));
        names.sort();
        return names;
    }

    bool waitForBuild(int timeoutMs = 180000)
    {
        return QTest::qWaitFor([&] { return !bench.FFmpegX1().IsBusy(); }, timeoutMs);
    }

    // Every file below folder, relative path → bytes.
    static QMap<QString, QByteArray> filesBelow(const QString &folder)
    {
        QMap<QString, QByteArray> files;
        QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            files.insert(QDir(folder).relativeFilePath(path), test::readAll(path));
        }
        return files;
    }

    TempTree settingsTree;
    TempTree tree;
    RowStore list;
    test::RecordingStrip strip;
    test::MenuFlags menus;
    test::ScriptedDialogs dialogs;
    Workbench bench {list, strip, menus, dialogs};
};

TEST_F(WorkbenchTest, DroppedFolderKeepsItsNameInTheFolderColumn)
{
    const QString root = makeTree();
    bench.DropFile({root}, QString());
    EXPECT_EQ(bench.mBasePath, tree.root() + u'/');
    EXPECT_EQ(rowNames(),
        sorted({u"pkg\\deep\\er\\still\\|x.bin"_s, u"pkg\\|big text.log"_s, u"pkg\\|readme.txt"_s,
            u"pkg\\|空 文件.dat"_s, u"pkg\\文档\\|说明 一.txt"_s}));
    EXPECT_EQ(strip.Caption(), u" 5 文件被添加"_s);
    EXPECT_TRUE(list.Enabled());
    EXPECT_TRUE(list.redrawing());
    EXPECT_TRUE(menus.menuEnabled(Menu::Save));
    // The row of the Chinese file: type, grouped size, date, source.
    for (int i = 0; i < list.Count(); ++i) {
        if (list.ItemText(i, kColumnName) != u"说明 一.txt"_s)
            continue;
        EXPECT_FALSE(list.ItemText(i, kColumnType).isEmpty());
        EXPECT_EQ(list.ItemText(i, kColumnSize), u"1,200"_s);
        EXPECT_EQ(list.ItemText(i, kColumnSource), root + u"/文档/说明 一.txt"_s);
        EXPECT_EQ(list.ItemFile(i), root + u"/文档/说明 一.txt"_s);
        EXPECT_EQ(list.ItemText(i, kColumnDate),
            DefaultDateText(QFileInfo(root + u"/文档/说明 一.txt"_s).lastModified()));
    }
}

TEST_F(WorkbenchTest, AddGuardAndTheSameFileTwice)
{
    const QString file = tree.writeFile(u"one.txt"_s, "1");
    list.setEnabled(false);
    bench.DropFile({}, file);
    EXPECT_EQ(list.Count(), 0);
    list.setEnabled(true);
    bench.DropFile({}, file);
    bench.DropFile({}, file);
    EXPECT_EQ(list.Count(), 2);
    EXPECT_EQ(strip.Caption(), u" 2 文件被添加"_s);
}

TEST_F(WorkbenchTest, FileDialogAddsOneOrSeveralFiles)
{
    tree.writeFile(u"a/one.txt"_s, "1");
    tree.writeFile(u"a/two.txt"_s, "22");
    dialogs.files.push_back({tree.path(u"a"_s), {u"one.txt"_s}});
    bench.mnuAdd(0);
    EXPECT_EQ(bench.mBasePath, tree.path(u"a/"_s));
    EXPECT_EQ(rowNames(), (QStringList {u"|one.txt"_s}));
    EXPECT_EQ(ReadSetting(u"LastOpenFileFolder"), tree.path(u"a"_s));

    dialogs.files.push_back({tree.path(u"a"_s), {u"one.txt"_s, u"two.txt"_s}});
    bench.mnuAdd(0);
    EXPECT_EQ(rowNames(), (QStringList {u"|one.txt"_s, u"|one.txt"_s, u"|two.txt"_s}));
    // With several files the stored folder is the one above theirs.
    EXPECT_EQ(ReadSetting(u"LastOpenFileFolder"), tree.root());
    EXPECT_EQ(strip.Caption(), u" 3 文件被添加"_s);

    // Several files in the root folder: no doubled separator in the base.
    dialogs.files.push_back({u"/"_s, {u"qb-no-such-1"_s, u"qb-no-such-2"_s}});
    bench.mnuAdd(0);
    EXPECT_EQ(bench.mBasePath, u"/"_s);

    // A cancelled dialog changes nothing.
    bench.mnuAdd(0);
    EXPECT_EQ(list.Count(), 3);
    EXPECT_EQ(dialogs.openFilters.last(), u"*.* several"_s);
}

TEST_F(WorkbenchTest, ChosenFolderGivesFolderColumnsFromItsRoot)
{
    const QString root = makeTree();
    dialogs.folders.push_back(root);
    bench.mnuAdd(1);
    EXPECT_EQ(dialogs.folderTitles, (QStringList {u"添加一个目录"_s}));
    EXPECT_EQ(bench.mBasePath, root);
    EXPECT_EQ(rowNames(),
        sorted({u"\\deep\\er\\still\\|x.bin"_s, u"\\文档\\|说明 一.txt"_s, u"\\|big text.log"_s,
            u"\\|readme.txt"_s, u"\\|空 文件.dat"_s}));
}

TEST_F(WorkbenchTest, DeleteTakesTheFocusedRowAndClearKeepsTheCaption)
{
    tree.writeFile(u"a.txt"_s, "a");
    tree.writeFile(u"b.txt"_s, "b");
    bench.DropFile({tree.path(u"a.txt"_s), tree.path(u"b.txt"_s)}, QString());
    bench.mnuDelete(); // nothing focused
    EXPECT_EQ(list.Count(), 2);
    list.setItemIndex(0);
    bench.mnuDelete();
    EXPECT_EQ(rowNames(), (QStringList {u"|b.txt"_s}));
    bench.mnuClear();
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(strip.Caption(), u" 2 文件被添加"_s);
}

// Builds the tree with each compression and checks everything a user sees and gets.
class BuildTest : public WorkbenchTest,
                  public ::testing::WithParamInterface<std::pair<const char *, const char *>>
{
};

TEST_P(BuildTest, BuildsOpensAndExtracts)
{
    const auto [type, memory] = GetParam();
    WriteSetting(u"CompressionType", QString::fromLatin1(type));
    WriteSetting(u"CompressionMemory", QString::fromLatin1(memory));
    const QString root = makeTree();
    bench.DropFile({root}, QString());
    // The same file twice goes in twice.
    bench.DropFile({}, root + u"/readme.txt"_s);
    ASSERT_EQ(list.Count(), 6);

    dialogs.answers.push_back(kAnswerNo); // do not open the cabinet
    bench.mnuSave(0);
    EXPECT_EQ(bench.mCabinetPath, tree.root() + u'/' + QFileInfo(tree.root()).fileName() + u".cab"_s);
    const QString directive = bench.mDirectivePath;
    const QString notice = bench.mNoticePath;
    EXPECT_TRUE(QFileInfo::exists(directive));
    ASSERT_TRUE(waitForBuild());

    // What the strip showed, in order.
    ASSERT_GE(strip.captions.size(), 3);
    const qsizetype indexing = strip.captions.indexOf(u"  [12:34:56] 正在索引文件..."_s);
    const qsizetype starting = strip.captions.indexOf(u"  [12:34:56] 开始压缩..."_s);
    ASSERT_GE(indexing, 0);
    EXPECT_GT(starting, indexing);
    const QString cabName = QFileInfo(bench.mCabinetPath).fileName();
    bool sawProgress = false;
    for (const QString &caption : std::as_const(strip.captions))
        sawProgress |= caption.startsWith(u"  "_s) && caption.endsWith(u"% - 生成压缩包 "_s + cabName);
    // Stored data goes through the maker too fast for its lines to arrive apart; compressed data
    // shows its progress.
    if (QByteArray(type) != "0") {
        EXPECT_TRUE(sawProgress) << strip.captions.join(u'\n').toStdString();
    }
    const QString done = strip.captions.last();
    EXPECT_TRUE(done.startsWith(u"  [12:34:56] 已经完成! "_s + bench.mCabinetPath + u" ["_s))
        << done.toStdString();
    EXPECT_TRUE(done.endsWith(u"/"_s + FormatSize(bench.mSourceBytes) + u"]"_s)) << done.toStdString();
    EXPECT_EQ(bench.mSourceBytes, double(QFileInfo(root + u"/big text.log"_s).size() + 8 + 8 + 1200 + 3000));
    ASSERT_EQ(dialogs.messages.size(), 1);
    EXPECT_EQ(
        dialogs.messages[0].first, bench.mCabinetPath + u"\r\n是否使用系统默认方式打开已创建的压缩包？"_s);
    EXPECT_EQ(dialogs.messages[0].second, kYesNo);
    EXPECT_TRUE(menus.menuEnabled(Menu::Save));
    EXPECT_FALSE(menus.menuEnabled(Menu::Cancel));

    // The temporary files go one second after the end, not before.
    EXPECT_TRUE(QFileInfo::exists(directive));
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return !QFileInfo::exists(directive) && !QFileInfo::exists(notice); }, 3000));
    // The program's own folder is left out: other tests build there side by side.
    for (const QString &folder : {tree.root(), root}) {
        EXPECT_FALSE(QFileInfo::exists(folder + u"/setup.inf"_s));
        EXPECT_FALSE(QFileInfo::exists(folder + u"/setup.rpt"_s));
    }

    // An outside tool agrees with the cabinet, byte for byte.
    const QString unpacked = tree.makeDir(u"cabextract"_s);
    const test::ToolResult run
        = test::runTool(u"cabextract"_s, {u"-q"_s, u"-d"_s, unpacked, bench.mCabinetPath});
    ASSERT_EQ(run.exitCode, 0) << run.output.toStdString();
    QMap<QString, QByteArray> expected = filesBelow(root);
    QMap<QString, QByteArray> withFolder;
    for (auto it = expected.cbegin(); it != expected.cend(); ++it)
        withFolder.insert(u"pkg/"_s + it.key(), it.value());
    const QMap<QString, QByteArray> got = filesBelow(unpacked);
    EXPECT_TRUE(got.contains(u"Quillbox Desk.txt"_s));
    EXPECT_TRUE(QString::fromUtf8(got.value(u"Quillbox Desk.txt"_s))
                    .startsWith(u"\r\n本压缩包使用 Quillbox Desk 制作"_s));
    QMap<QString, QByteArray> gotFiles = got;
    gotFiles.remove(u"Quillbox Desk.txt"_s);
    EXPECT_EQ(gotFiles, withFolder);

    // Opened: one row per file, the notice included, the source column empty.
    dialogs.files.push_back(
        {QFileInfo(bench.mCabinetPath).path(), {QFileInfo(bench.mCabinetPath).fileName()}});
    bench.mnuOpen();
    EXPECT_EQ(bench.cCab().CabName(), bench.mCabinetPath);
    ASSERT_EQ(list.Count(), 7);
    EXPECT_EQ(list.ItemText(0, kColumnName), u"Quillbox Desk.txt"_s);
    for (int i = 0; i < list.Count(); ++i)
        EXPECT_TRUE(list.ItemText(i, kColumnSource).isEmpty());
    EXPECT_EQ(rowNames().count(u"pkg\\|readme.txt"_s), 2);
    EXPECT_TRUE(rowNames().contains(u"pkg\\文档\\|说明 一.txt"_s));

    // Extract all, then one, then several selected.
    const QString all = tree.makeDir(u"all"_s);
    dialogs.folders.push_back(all);
    dialogs.answers.push_back(kAnswerYes);
    bench.mnuExtract();
    EXPECT_EQ(dialogs.opened.last(), all);
    EXPECT_EQ(dialogs.messages.last().first, all + u"\r\n是否立即查看文件释放目标路径？"_s);
    QMap<QString, QByteArray> extracted = filesBelow(all);
    extracted.remove(u"Quillbox Desk.txt"_s);
    EXPECT_EQ(extracted, withFolder);
    EXPECT_EQ(bench.mExtractCount, 0);
    EXPECT_EQ(strip.value(), 0);
    EXPECT_EQ(strip.Max(), 100);

    int chinese = -1;
    int deep = -1;
    for (int i = 0; i < list.Count(); ++i) {
        if (list.ItemText(i, kColumnName) == u"说明 一.txt"_s)
            chinese = i;
        if (list.ItemText(i, kColumnName) == u"x.bin"_s)
            deep = i;
    }
    ASSERT_GE(chinese, 0);
    ASSERT_GE(deep, 0);
    list.setItemSelected(chinese, true);
    const QString one = tree.makeDir(u"one"_s);
    dialogs.folders.push_back(one);
    bench.mnuExtract();
    EXPECT_EQ(filesBelow(one).keys(), (QStringList {u"pkg/文档/说明 一.txt"_s}));

    list.setItemSelected(deep, true);
    const QString several = tree.makeDir(u"several"_s);
    dialogs.folders.push_back(several);
    bench.mnuExtract();
    EXPECT_EQ(
        filesBelow(several).keys(), (QStringList {u"pkg/deep/er/still/x.bin"_s, u"pkg/文档/说明 一.txt"_s}));
    EXPECT_EQ(filesBelow(several).value(u"pkg/deep/er/still/x.bin"_s), QByteArray(3000, '\x7f'));
}

INSTANTIATE_TEST_SUITE_P(Compressions, BuildTest,
    ::testing::Values(std::pair {"0", "0"}, std::pair {"1", "0"}, std::pair {"2", "0"}, std::pair {"2", "6"}),
    [](const auto &info) {
        return std::string(info.param.first[0] == '0' ? "None"
                : info.param.first[0] == '1'          ? "MSZIP"
                : info.param.second[0] == '0'         ? "LZX15"
                                                      : "LZX21");
    });

TEST_F(WorkbenchTest, BuildWithoutTheCabinetMaker)
{
    tree.writeFile(u"a.txt"_s, "a");
    bench.DropFile({}, tree.path(u"a.txt"_s));
    gMakeCabPath = tree.path(u"no/makecab"_s);
    bench.mnuSave(0);
    ASSERT_EQ(dialogs.messages.size(), 1);
    EXPECT_EQ(dialogs.messages[0], (std::pair {u"无法找到 "_s + tree.path(u"no/makecab"_s), kCritical}));
    EXPECT_FALSE(bench.FFmpegX1().IsBusy());
}

TEST_F(WorkbenchTest, BuildWhileTheEngineIsBusy)
{
    tree.writeFile(u"a.txt"_s, "a");
    bench.DropFile({}, tree.path(u"a.txt"_s));
    bench.FFmpegX1().setProcessing(true);
    bench.mnuSave(0);
    EXPECT_EQ(strip.Caption(), u"  [12:34:56] 无法进行，正在处理上一请求!"_s);
    EXPECT_TRUE(bench.mDirectivePath.isEmpty());
}

TEST_F(WorkbenchTest, SaveAsRenamesAnExistingCabinet)
{
    tree.writeFile(u"a.txt"_s, "a");
    bench.DropFile({}, tree.path(u"a.txt"_s));
    const QString taken = tree.writeFile(u"taken.cab"_s, "old");
    dialogs.saves.push_back(taken);
    bench.mnuSave(1);
    // The base was never set by a drop of a single file: the root rule names the cabinet.
    EXPECT_EQ(dialogs.proposedSaves, (QStringList {u"/新建压缩包.cab"_s}));
    EXPECT_EQ(bench.mCabinetPath, tree.path(u"taken(1).cab"_s));
    ASSERT_TRUE(waitForBuild());
    EXPECT_EQ(test::readAll(taken), "old");
    EXPECT_TRUE(QFileInfo::exists(tree.path(u"taken(1).cab"_s)));
    // A cancelled save dialog builds nothing.
    const int before = int(strip.captions.size());
    bench.mnuSave(1);
    EXPECT_EQ(strip.captions.size(), before);
}

TEST_F(WorkbenchTest, HostileNamesGoInExactlyOrAreRefusedByName)
{
    const test::HostileFolder hostile = test::MakeHostileFolder(tree);
    // As a request from the desktop adds a folder: its files named relative to it.
    bench.mBasePath = hostile.folder + u'/';
    bench.DropFile({}, hostile.folder + u'/');
    ASSERT_EQ(dialogs.messages.size(), 1);
    EXPECT_EQ(dialogs.messages[0].second, kExclamation);
    for (const QString &refused : hostile.refused)
        EXPECT_TRUE(dialogs.messages[0].first.contains(refused)) << refused.toStdString();
    ASSERT_EQ(list.Count(), hostile.storable.size());

    const QMap<QByteArray, QByteArray> before = test::RawFilesBelow(hostile.folder);
    bench.mCabinetPath = tree.makeDir(u"out"_s) + u"/hostile.cab"_s;
    bench.BuildCabinet();
    ASSERT_TRUE(waitForBuild());
    ASSERT_TRUE(QFileInfo::exists(bench.mCabinetPath)) << strip.captions.join(u'\n').toStdString();
    EXPECT_EQ(test::RawFilesBelow(hostile.folder), before);
    const QMap<QString, QString> verdicts = test::CompareExtractors(
        bench.mCabinetPath, tree.makeDir(u"unpacked"_s), hostile.storable, "Quillbox Desk.txt");
    for (auto it = verdicts.cbegin(); it != verdicts.cend(); ++it)
        EXPECT_EQ(it.value(), QString()) << it.key().toStdString();

    // Opened again, a selected row is extracted by its exact stored name.
    dialogs.files.push_back({tree.path(u"out"_s), {u"hostile.cab"_s}});
    bench.mnuOpen();
    int bar = -1;
    for (int i = 0; i < list.Count(); ++i) {
        if (list.ItemTag(i) == u"b|c.txt"_s)
            bar = i;
    }
    ASSERT_GE(bar, 0);
    list.setItemSelected(bar, true);
    const QString one = tree.makeDir(u"one"_s);
    dialogs.folders.push_back(one);
    bench.mnuExtract();
    EXPECT_EQ(test::RawFilesBelow(one).keys(), (QList<QByteArray> {"b|c.txt"}));
}

TEST_F(WorkbenchTest, AStarInTheCabinetPathIsRefusedNotRenumbered)
{
    tree.writeFile(u"pkg/a.txt"_s, "a");
    bench.DropFile({tree.path(u"pkg"_s)}, QString());
    bench.mCabinetPath = tree.path(u"pkg/a*b.cab"_s);
    bench.BuildCabinet();
    EXPECT_FALSE(bench.FFmpegX1().Processing());
    ASSERT_EQ(dialogs.messages.size(), 1);
    EXPECT_EQ(dialogs.messages[0].second, kCritical);
    EXPECT_TRUE(dialogs.messages[0].first.endsWith(bench.mCabinetPath));
    EXPECT_EQ(QDir(tree.path(u"pkg"_s)).entryList(QDir::Files), (QStringList {u"a.txt"_s}));
}

TEST_F(WorkbenchTest, UnwritableTemporaryFilesStopTheBuildAndSaySo)
{
    tree.writeFile(u"pkg/a.txt"_s, "a");
    bench.DropFile({tree.path(u"pkg"_s)}, QString());
    const bool wasSet = qEnvironmentVariableIsSet("TMPDIR");
    const QByteArray saved = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(tree.path(u"no such folder"_s)));
    bench.mnuSave(0);
    if (wasSet)
        qputenv("TMPDIR", saved);
    else
        qunsetenv("TMPDIR");
    EXPECT_FALSE(bench.FFmpegX1().Processing());
    ASSERT_EQ(dialogs.messages.size(), 1);
    EXPECT_EQ(dialogs.messages[0].second, kCritical);
    EXPECT_TRUE(dialogs.messages[0].first.startsWith(u"无法写入临时文件"_s))
        << dialogs.messages[0].first.toStdString();
    EXPECT_FALSE(QFileInfo::exists(bench.mCabinetPath));
}

TEST_F(WorkbenchTest, OpenAskingBeforeAnAddAndErrors)
{
    tree.writeFile(u"a.txt"_s, "a");
    bench.DropFile({}, tree.path(u"a.txt"_s));
    bench.mnuSave(0);
    ASSERT_TRUE(waitForBuild());
    const QString cabinet = bench.mCabinetPath;

    dialogs.files.push_back({QFileInfo(cabinet).path(), {QFileInfo(cabinet).fileName()}});
    bench.mnuOpen();
    EXPECT_EQ(list.Count(), 2);
    // An add while a cabinet is open asks first; No leaves the view.
    const int asked = int(dialogs.messages.size());
    dialogs.answers.push_back(kAnswerNo);
    bench.mnuAdd(0);
    EXPECT_EQ(dialogs.messages[asked].first, u"是否关闭已经打开的 CAB 文件包？"_s);
    EXPECT_EQ(list.Count(), 2);
    // Yes clears the list; the cabinet stays named, so the question comes again next time.
    dialogs.answers.push_back(kAnswerYes);
    bench.mnuAdd(0);
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(bench.cCab().CabName(), cabinet);
    dialogs.answers.push_back(kAnswerNo);
    bench.mnuAdd(1);
    EXPECT_EQ(dialogs.messages.last().first, u"是否关闭已经打开的 CAB 文件包？"_s);

    // A cancelled open changes nothing; a damaged cabinet reports in the status line.
    bench.mnuOpen();
    EXPECT_EQ(bench.cCab().CabName(), cabinet);
    const QString broken = tree.writeFile(u"broken.cab"_s, "MSCF not really");
    dialogs.files.push_back({tree.root(), {u"broken.cab"_s}});
    bench.mnuOpen();
    EXPECT_EQ(list.Count(), 0);
    EXPECT_TRUE(strip.Caption().startsWith(u"  [12:34:56] 发生错误："_s)) << strip.Caption().toStdString();
    EXPECT_TRUE(strip.Caption().endsWith(u">"_s));
    Q_UNUSED(broken);

    // Extract with no cabinet at all.
    bench.cCab().setCabName(QString());
    bench.mnuExtract();
    EXPECT_EQ(dialogs.messages.last(), (std::pair {u"还未打开任何 CAB 文件包！"_s, kInformation}));
}

TEST_F(WorkbenchTest, ExtractionMovesTheBarEveryHundredFiles)
{
    WriteSetting(u"CompressionType", u"0"_s);
    for (int i = 0; i < 250; ++i)
        tree.writeFile(u"many/f%1.txt"_s.arg(i, 3, 10, QChar(u'0')), QByteArray::number(i));
    bench.DropFile({tree.path(u"many"_s)}, QString());
    bench.mnuSave(0);
    ASSERT_TRUE(waitForBuild());
    dialogs.files.push_back(
        {QFileInfo(bench.mCabinetPath).path(), {QFileInfo(bench.mCabinetPath).fileName()}});
    bench.mnuOpen();
    ASSERT_EQ(list.Count(), 251);

    double maxDuringExtraction = 0;
    QObject::connect(&bench.cCab(), &cabinet::clsCAB::AfterExtract, &bench,
        [&](const QString &) { maxDuringExtraction = strip.Max(); });
    strip.values.clear();
    dialogs.folders.push_back(tree.makeDir(u"out"_s));
    bench.mnuExtract();
    EXPECT_EQ(maxDuringExtraction, 251); // every file, the notice included
    EXPECT_EQ(strip.values, (QList<double> {100, 200, 0}));
    EXPECT_EQ(QDir(tree.path(u"out/many"_s)).entryList(QDir::Files).size(), 250);
}

} // namespace
} // namespace qb::workbench
