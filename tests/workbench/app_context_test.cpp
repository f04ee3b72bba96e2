// The cabinet maker lookup and the settings store.
#include "workbench/app_context.h"

#include "support/temp_tree.h"
#include "workbench/settings_store.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <gtest/gtest.h>

using namespace qb::workbench;
using qb::test::TempTree;

namespace {

QString makeExecutable(TempTree &tree, const QString &relative)
{
    const QString path = tree.writeFile(relative, "#!/bin/sh\n");
    QFile::setPermissions(path, QFile::permissions(path) | QFile::ExeOwner);
    return path;
}

TEST(AppContext, MakeCabBesideTheProgramWinsOverPath)
{
    TempTree tree;
    const QString beside = makeExecutable(tree, QStringLiteral("prog/makecab"));
    const QString onPath = makeExecutable(tree, QStringLiteral("bin/makecab"));
    EXPECT_EQ(FindMakeCab(tree.path(QStringLiteral("prog")), tree.path(QStringLiteral("bin"))), beside);
    EXPECT_EQ(FindMakeCab(tree.path(QStringLiteral("elsewhere")), tree.path(QStringLiteral("bin"))), onPath);
    EXPECT_EQ(
        FindMakeCab(tree.path(QStringLiteral("elsewhere")), tree.path(QStringLiteral("none"))), QString());
    // A folder or a plain file called makecab is not the tool.
    tree.makeDir(QStringLiteral("p2/makecab"));
    tree.writeFile(QStringLiteral("p3/makecab"), "data");
    EXPECT_EQ(FindMakeCab(tree.path(QStringLiteral("p2")), tree.path(QStringLiteral("bin"))), onPath);
    EXPECT_EQ(FindMakeCab(tree.path(QStringLiteral("p3")), tree.path(QStringLiteral("bin"))), onPath);
}

class SettingsStore : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_tree.root());
        InitializeApplicationContext();
    }
    TempTree m_tree;
};

TEST_F(SettingsStore, DefaultsOfTheFourSettings)
{
    EXPECT_EQ(ReadSetting(u"CompressionType"), QStringLiteral("2"));
    EXPECT_EQ(ReadSetting(u"CompressionMemory"), QStringLiteral("0"));
    EXPECT_EQ(ReadSetting(u"CompleteAction"), QStringLiteral("1"));
    EXPECT_EQ(ReadSetting(u"LastOpenFileFolder"), QDir::homePath() + u'/');
    EXPECT_EQ(DefaultSetting(u"Unknown"), QString());
}

TEST_F(SettingsStore, ValuesRoundTripAsText)
{
    WriteSetting(u"CompressionType", QStringLiteral("0"));
    WriteSetting(u"LastOpenFileFolder", QStringLiteral("/data/中文 folder/"));
    EXPECT_EQ(ReadSetting(u"CompressionType"), QStringLiteral("0"));
    EXPECT_EQ(ReadSetting(u"LastOpenFileFolder"), QStringLiteral("/data/中文 folder/"));
    // The store lives where the key says: organisation Tidewick, application Quillbox_Desk.
    QSettings direct(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Tidewick"),
        QStringLiteral("Quillbox_Desk"));
    EXPECT_EQ(direct.value(QStringLiteral("Settings/CompressionType")).toString(), QStringLiteral("0"));
}

TEST_F(SettingsStore, ValueUpToNullAndNonStringGivesDefault)
{
    SaveRegValue(
        HKEY_CURRENT_USER, gSettingsKey, QStringLiteral("Cut"), QStringLiteral("ab") + QChar(0) + u'c');
    EXPECT_EQ(GetRegValue(HKEY_CURRENT_USER, gSettingsKey, QStringLiteral("Cut"), QStringLiteral("d")),
        QStringLiteral("ab"));
    QSettings direct(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Tidewick"),
        QStringLiteral("Quillbox_Desk"));
    direct.setValue(QStringLiteral("Settings/List"), QStringList {QStringLiteral("a"), QStringLiteral("b")});
    direct.sync();
    EXPECT_EQ(GetRegValue(HKEY_CURRENT_USER, gSettingsKey, QStringLiteral("List"), QStringLiteral("def")),
        QStringLiteral("def"));
    EXPECT_EQ(GetRegValue(HKEY_CURRENT_USER, gSettingsKey, QStringLiteral("Missing"), QStringLiteral("def")),
        QStringLiteral("def"));
}

TEST_F(SettingsStore, DeleteRegKeyRemovesTheGroupOnly)
{
    WriteSetting(u"CompressionType", QStringLiteral("1"));
    SaveRegValue(HKEY_CURRENT_USER, QStringLiteral("Software\\Tidewick\\Quillbox_Desk\\Other"),
        QStringLiteral("K"), QStringLiteral("v"));
    DeleteRegKey(HKEY_CURRENT_USER, gSettingsKey);
    EXPECT_EQ(ReadSetting(u"CompressionType"), QStringLiteral("2"));
    EXPECT_EQ(GetRegValue(HKEY_CURRENT_USER, QStringLiteral("Software\\Tidewick\\Quillbox_Desk\\Other"),
                  QStringLiteral("K"), QString()),
        QStringLiteral("v"));
}

TEST_F(SettingsStore, ProfileFileForm)
{
    const QString ini = m_tree.path(QStringLiteral("app.ini"));
    SaveRegValue(
        HKEY_CURRENT_USER, gSettingsKey, QStringLiteral("CompressionType"), QStringLiteral("1"), ini);
    EXPECT_EQ(GetRegValue(HKEY_CURRENT_USER, gSettingsKey, QStringLiteral("CompressionType"),
                  QStringLiteral("2"), ini),
        QStringLiteral("1"));
    // Nothing went to the user's store.
    EXPECT_EQ(ReadSetting(u"CompressionType"), QStringLiteral("2"));
    EXPECT_EQ(QString::fromUtf8(qb::test::readAll(ini)),
        QStringLiteral("[Software\\Tidewick\\Quillbox_Desk\\Settings]\r\nCompressionType=1\r\n"));

    // At most 254 characters are read, and an empty entry gives the default.
    SaveRegValue(HKEY_CURRENT_USER, gSettingsKey, QStringLiteral("Long"), QString(300, u'x'), ini);
    EXPECT_EQ(
        GetRegValue(HKEY_CURRENT_USER, gSettingsKey, QStringLiteral("Long"), QString(), ini).size(), 254);
    SaveRegValue(HKEY_CURRENT_USER, gSettingsKey, QStringLiteral("Empty"), QString(), ini);
    EXPECT_EQ(GetRegValue(HKEY_CURRENT_USER, gSettingsKey, QStringLiteral("Empty"), QStringLiteral("d"), ini),
        QStringLiteral("d"));

    DeleteRegKey(HKEY_CURRENT_USER, gSettingsKey, ini);
    EXPECT_EQ(GetRegValue(HKEY_CURRENT_USER, gSettingsKey, QStringLiteral("CompressionType"),
                  QStringLiteral("2"), ini),
        QStringLiteral("2"));
    EXPECT_EQ(GetRegValue(HKEY_CURRENT_USER, gSettingsKey, QStringLiteral("X"), QStringLiteral("d"),
                  m_tree.path(QStringLiteral("missing.ini"))),
        QStringLiteral("d"));
}

} // namespace
