// The settings dialog: its defaults on a fresh account, the level list that only LZX uses, what
// OK and Esc keep, and the shortcut toggles.
#include "support/temp_tree.h"
#include "workbench/app_context.h"
#include "workbench/general_procedures.h"
#include "workbench/option_dialog.h"
#include "workbench/shell_integration.h"

#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QSettings>
#include <QStandardPaths>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::workbench {
namespace {

class OptionDialogTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, tree.path(u"settings"_s));
        // Desktop and applications folders of a scratch home.
        tree.writeFile(
            u"config/user-dirs.dirs"_s, "XDG_DESKTOP_DIR=\"" + tree.path(u"Desktop"_s).toUtf8() + "\"\n");
        qputenv("XDG_CONFIG_HOME", tree.path(u"config"_s).toUtf8());
        qputenv("XDG_DATA_HOME", tree.path(u"data"_s).toUtf8());
        InitializeApplicationContext();
    }
    void TearDown() override
    {
        qunsetenv("XDG_CONFIG_HOME");
        qunsetenv("XDG_DATA_HOME");
    }
    test::TempTree tree;
};

TEST_F(OptionDialogTest, FreshAccountShowsTheDefaults)
{
    frmOption dialog;
    EXPECT_EQ(dialog.windowTitle(), u"设置"_s);
    EXPECT_EQ(dialog.Combo1[0]->currentText(), u"LZX"_s);
    EXPECT_EQ(dialog.Combo1[1]->currentText(), u"15"_s);
    EXPECT_EQ(dialog.Combo1[2]->currentText(), u"提示打开"_s);
    EXPECT_TRUE(dialog.Combo1[1]->isEnabled());
    EXPECT_EQ(dialog.Label1[0]->text(), u"设置压缩类型:"_s);
    EXPECT_EQ(dialog.Label1[4]->text(), u"压缩完成动作:"_s);
    EXPECT_EQ(dialog.Command1[0]->text(), u"确定"_s);
    EXPECT_EQ(dialog.Command1[1]->text(), u"在桌面创建快捷方式"_s);
    EXPECT_EQ(dialog.Command1[2]->text(), u"增加快捷方式到发送到菜单"_s);
    EXPECT_FALSE(dialog.Command1[3]->isEnabled());
    EXPECT_FALSE(dialog.Command1[4]->isEnabled());
    EXPECT_EQ(dialog.Command1[3]->text(), u"建立关联菜单"_s);
}

TEST_F(OptionDialogTest, LevelOnlyForLzxAndOkWritesAllThree)
{
    WriteSetting(u"CompressionMemory", u"4"_s);
    frmOption dialog;
    dialog.Combo1[0]->setCurrentIndex(1);
    EXPECT_FALSE(dialog.Combo1[1]->isEnabled());
    EXPECT_FALSE(dialog.Label1[1]->isEnabled());
    dialog.Combo1[2]->setCurrentIndex(0);
    dialog.Command1_Click(0);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(ReadSetting(u"CompressionType"), u"1"_s);
    EXPECT_EQ(ReadSetting(u"CompressionMemory"), u"4"_s); // the level stays as stored
    EXPECT_EQ(ReadSetting(u"CompleteAction"), u"0"_s);
}

TEST_F(OptionDialogTest, TypingInTheListsDoesNothingAndEscSavesNothing)
{
    frmOption dialog;
    dialog.show();
    dialog.Combo1[0]->setFocus();
    QTest::keyClick(dialog.Combo1[0], Qt::Key_N);
    QTest::keyClick(dialog.Combo1[0], Qt::Key_Down);
    EXPECT_EQ(dialog.Combo1[0]->currentText(), u"LZX"_s);
    dialog.Combo1[0]->setCurrentIndex(0);
    QTest::keyClick(dialog.Combo1[0], Qt::Key_Escape);
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(ReadSetting(u"CompressionType"), u"2"_s);
}

TEST_F(OptionDialogTest, ShortcutTogglesCreateAndRemove)
{
    frmOption dialog;
    QStringList told;
    dialog.inform = [&](const QString &text) { told.append(text); };
    const QString desktop = ShortcutPath(CSIDL_DESKTOPDIRECTORY);
    EXPECT_EQ(desktop, tree.path(u"Desktop/Quillbox Desk.desktop"_s));
    dialog.Command1_Click(1);
    EXPECT_TRUE(QFile::exists(desktop));
    EXPECT_EQ(dialog.Command1[1]->text(), u"移除桌面快捷方式"_s);
    dialog.Command1_Click(1);
    EXPECT_FALSE(QFile::exists(desktop));
    EXPECT_EQ(dialog.Command1[1]->text(), u"在桌面创建快捷方式"_s);

    dialog.Command1_Click(2);
    const QString openWith = ShortcutPath(CSIDL_SENDTO);
    EXPECT_EQ(openWith, tree.path(u"data/applications/Quillbox Desk.desktop"_s));
    const QByteArray entry = test::readAll(openWith);
    // Every file may be sent; claiming folders could make the program the folder handler.
    EXPECT_TRUE(entry.contains("\nMimeType=application/octet-stream;\n")) << entry.toStdString();
    EXPECT_FALSE(entry.contains("inode/directory")) << entry.toStdString();
    EXPECT_TRUE(entry.contains("Exec=")) << entry.toStdString();
    EXPECT_EQ(dialog.Command1[2]->text(), u"移除发送到菜单快捷方式"_s);
    EXPECT_EQ(
        told, (QStringList {u"快捷方式已经创建。"_s, u"快捷方式已经移除。"_s, u"快捷方式已经创建。"_s}));

    // The context-menu handlers are complete even though their buttons stay disabled.
    dialog.Command1_Click(3);
    EXPECT_TRUE(test::readAll(ContextEntryPath()).contains(u"Name=添加到 Quillbox Desk"_s.toUtf8()));
    dialog.Command1_Click(4);
    EXPECT_FALSE(QFile::exists(ContextEntryPath()));
    EXPECT_EQ(told.mid(3),
        (QStringList {
            u"已整合到 Windows 资源管理器关联菜单。"_s, u"已从 Windows 资源管理器关联菜单移除。"_s}));
}

} // namespace
} // namespace qb::workbench
