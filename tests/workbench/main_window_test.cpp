// The main window on the offscreen platform: its set-up, the menus through the states of a build,
// drops, the close guard, docking and the about box.
#include "support/temp_tree.h"
#include "workbench/app_context.h"
#include "workbench/main_window.h"
#include "workbench/qt_translation.h"
#include "workbench/window_docking.h"
#include "workbench/workbench_doubles.h"

#include <QAction>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QTest>
#include <QTranslator>
#include <QUrl>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::workbench {
namespace {

// Answers for the window, kept by the test after the window takes the dialogs over.
class SharedDialogs : public UserDialogs
{
public:
    explicit SharedDialogs(test::ScriptedDialogs &inner)
        : m_inner(inner)
    { }
    int MsgBox(const QString &p, int b) override { return m_inner.MsgBox(p, b); }
    ChosenFiles GetOpenFiles(const QString &f, const QString &i, bool s) override
    {
        return m_inner.GetOpenFiles(f, i, s);
    }
    QString GetSaveFile(const QString &f, const QString &p) override { return m_inner.GetSaveFile(f, p); }
    QString SelectFolder(const QString &t) override { return m_inner.SelectFolder(t); }
    void OpenWithSystem(const QString &p) override { m_inner.OpenWithSystem(p); }

private:
    test::ScriptedDialogs &m_inner;
};

class MainWindowTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, tree.path(u"settings"_s));
        InitializeApplicationContext();
        gMakeCabPath = QStringLiteral(QB_MAKECAB_PATH);
        // The single-instance rendezvous ignores the patch number and lives in the temporary
        // folder, so each test gets a folder of its own: tests run side by side in processes of
        // their own must not find each other as the first instance.
        savedTemp = qgetenv("TMPDIR");
        qputenv("TMPDIR", tree.makeDir(u"tmp"_s).toUtf8());
        const auto *info = ::testing::UnitTest::GetInstance()->current_test_info();
        QCoreApplication::setApplicationVersion(
            u"3.4.%1"_s.arg(qHash(QString::fromUtf8(info->name())) % 1000 + 1));
        window = std::make_unique<frmMain>(std::make_unique<SharedDialogs>(dialogs));
        ASSERT_TRUE(window->Load({}));
        window->bench().FFmpegX1().setpriority(32);
    }
    QByteArray savedTemp;

    void TearDown() override
    {
        window.reset();
        if (savedTemp.isEmpty())
            qunsetenv("TMPDIR");
        else
            qputenv("TMPDIR", savedTemp);
        QCoreApplication::setApplicationVersion(QString());
    }
    test::TempTree tree;
    test::ScriptedDialogs dialogs;
    std::unique_ptr<frmMain> window;
};

TEST_F(MainWindowTest, LoadSetsCaptionMenusColumnsAndSizeLimits)
{
    EXPECT_TRUE(window->windowTitle().startsWith(u"Quillbox Desk 3.4 Build "_s))
        << window->windowTitle().toStdString();
    EXPECT_EQ(window->mnuFileBase->title(), u"文件 (&F)"_s);
    EXPECT_EQ(window->mnuOpen->text(), u"打开 (&O)"_s);
    EXPECT_EQ(window->mnuExtract->text(), u"释放 (&E)"_s);
    EXPECT_EQ(window->mnuSave[0]->text(), u"保存 (&S)"_s);
    EXPECT_EQ(window->mnuSave[1]->text(), u"另存为 (&A)"_s);
    EXPECT_EQ(window->mnuCancel->text(), u"取消压缩 (&C)"_s);
    EXPECT_FALSE(window->mnuCancel->isEnabled());
    EXPECT_EQ(window->mnuAddBase->title(), u"添加 (&A)"_s);
    EXPECT_EQ(window->mnuAdd[0]->text(), u"文件 (&F)"_s);
    EXPECT_EQ(window->mnuAdd[1]->text(), u"目录 (&D)"_s);
    EXPECT_EQ(window->mnuDelete->text(), u"删除"_s);
    EXPECT_EQ(window->mnuClear->text(), u"清除"_s);
    EXPECT_EQ(window->mnuOption->text(), u"设置 (&O)"_s);
    EXPECT_EQ(window->mnuExit->text(), u"退出 (&X)"_s);
    EXPECT_EQ(window->mnuHelpBase->title(), u"帮助 (&H)"_s);
    EXPECT_EQ(window->mnuAbout->text(), u"关于 (&A)"_s);
    EXPECT_GE(window->minimumWidth(), 885);
    EXPECT_GE(window->minimumHeight(), 494);
    window->resize(300, 200);
    EXPECT_GE(window->width(), 885);
    EXPECT_GE(window->height(), 494);
    EXPECT_EQ(window->ctlButton1->Mode(), 5);
    EXPECT_EQ(window->ctlButton1->Style(), 27);
    EXPECT_EQ(window->ctlListView1->ColumnWidth(5), 0);
    EXPECT_GT(window->ctlListView1->ColumnWidth(0), window->ctlListView1->ColumnWidth(3));
}

TEST_F(MainWindowTest, DropsAddRowsAndAskWhenACabinetIsOpen)
{
    const QString a = tree.writeFile(u"in/a.txt"_s, "a");
    tree.writeFile(u"in/sub/b.txt"_s, "b");
    window->DropPaths({tree.path(u"in"_s)});
    EXPECT_EQ(window->ctlListView1->Count(), 2);
    EXPECT_EQ(window->ctlButton1->Caption(), u" 2 文件被添加"_s);

    window->bench().cCab().setCabName(tree.writeFile(u"x.cab"_s, "MSCF"));
    window->DropPaths({a});
    EXPECT_EQ(dialogs.messages.last(), (std::pair {u"是否关闭已经打开的 CAB 文件包？"_s, kYesNo}));
    EXPECT_EQ(window->ctlListView1->Count(), 2);
    dialogs.answers.push_back(kAnswerYes);
    window->DropPaths({a});
    EXPECT_EQ(window->ctlListView1->Count(), 1);
}

TEST_F(MainWindowTest, DropEventsFromAFileManager)
{
    const QString a = tree.writeFile(u"drop/a.txt"_s, "a");
    const QString b = tree.writeFile(u"drop/sub/b.txt"_s, "b");
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(a), QUrl::fromLocalFile(tree.path(u"drop/sub"_s)),
        QUrl(u"https://example.org/x"_s)});
    QDragEnterEvent enter(QPoint(20, 20), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(20, 20), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.get(), &drop);
    // The first item's folder is the base: the file has no folder, the dropped folder keeps its name.
    ASSERT_EQ(window->ctlListView1->Count(), 2);
    EXPECT_EQ(window->ctlListView1->ItemText(0, 1) + window->ctlListView1->ItemText(0, 0), u"a.txt"_s);
    EXPECT_EQ(window->ctlListView1->ItemText(1, 1) + window->ctlListView1->ItemText(1, 0), u"sub\\b.txt"_s);
    EXPECT_EQ(window->ctlListView1->ItemText(1, 5), b);
}

TEST_F(MainWindowTest, MenusFollowTheBuildAndTheCloseGuardHolds)
{
    tree.writeFile(u"p/a.txt"_s, QByteArray(200000, 'a'));
    window->DropPaths({tree.path(u"p"_s)});
    bool sawBuilding = false;
    bool tried = false;
    QObject::connect(&window->bench().FFmpegX1(), &engine::FFmpegX::StatusChange, window.get(),
        [&](int code, const QString &) {
            if (code == 1 && !std::exchange(tried, true)) {
                sawBuilding = !window->mnuOpen->isEnabled() && !window->mnuSave[0]->isEnabled()
                    && window->mnuCancel->isEnabled() && !window->mnuAddBase->menuAction()->isEnabled();
                // Closing during the build is refused.
                EXPECT_FALSE(window->close());
                QTest::keyClick(window.get(), Qt::Key_Escape);
            }
        });
    dialogs.answers.push_back(kAnswerNo);
    window->mnuSave[0]->trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window->bench().FFmpegX1().IsBusy(); }, 60000));
    EXPECT_TRUE(sawBuilding);
    int guards = 0;
    for (const auto &message : dialogs.messages)
        guards += message == std::pair {u"请等待任务完成，或手工取消任务。"_s, kCritical};
    EXPECT_EQ(guards, 2);
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(window->mnuOpen->isEnabled());
    EXPECT_FALSE(window->mnuCancel->isEnabled());
    EXPECT_TRUE(window->ctlButton1->Caption().contains(u"已经完成!"_s));
    // Idle again: Esc closes.
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(MainWindowTest, AboutBoxAndDocking)
{
    EXPECT_EQ(frmMain::AboutTitle(), u"关于 Quillbox Desk"_s);
    window->AboutMe();
    ASSERT_FALSE(dialogs.messages.isEmpty());
    EXPECT_TRUE(dialogs.messages.last().first.startsWith(u"Quillbox Desk 3.4"_s));
    EXPECT_EQ(dialogs.messages.last().second, kYesNo);

    QScreen *screen = window->screen();
    ASSERT_NE(screen, nullptr);
    const QRect work = screen->availableGeometry();
    const QRect whole = screen->geometry();
    window->move(work.left() + 12, work.top() + 20);
    const QRect before = window->frameGeometry();
    window->Dock();
    // The offscreen screen may be smaller than the window; the rule decides either way.
    const QPoint expected
        = DockedPosition(before.translated(-whole.topLeft()), whole.size(), work.translated(-whole.topLeft()))
        + whole.topLeft();
    EXPECT_EQ(window->frameGeometry().topLeft(), expected);
    EXPECT_NE(expected, before.topLeft());
}

TEST(ToolkitTranslation, StandardButtonsSpeakChinese)
{
    QTranslator *translator = InstallToolkitTranslation(*QCoreApplication::instance());
    ASSERT_NE(translator, nullptr) << "the toolkit's Chinese translation is one of the dependencies";
    QMessageBox box(QMessageBox::Question, u"t"_s, u"p"_s, QMessageBox::Yes | QMessageBox::No);
    const QString yes = box.button(QMessageBox::Yes)->text();
    const QString no = box.button(QMessageBox::No)->text();
    QCoreApplication::removeTranslator(translator);
    delete translator;
    EXPECT_TRUE(yes.contains(u"是"_s)) << yes.toStdString();
    EXPECT_TRUE(no.contains(u"否"_s)) << no.toStdString();
}

} // namespace
} // namespace qb::workbench
