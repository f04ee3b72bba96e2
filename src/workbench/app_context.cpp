// Start-up lookup of the cabinet maker and the application-wide strings and settings.
#include "workbench/app_context.h"

#include "workbench/general_procedures.h"
#include "workbench/settings_store.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <array>

namespace qb::workbench {

QString gAppTitle;
QString gSettingsKey;
QString gMakeCabPath;
QString gContextCaption;

namespace {

const QString kTitle = QStringLiteral("Quillbox Desk");

const std::array<SettingDefault, 4> kSettings {{
    {"CompressionType", [] { return QStringLiteral("2"); }},
    {"CompressionMemory", [] { return QStringLiteral("0"); }},
    {"CompleteAction", [] { return QStringLiteral("1"); }},
    // The home folder stands in for the system drive's root.
    {"LastOpenFileFolder", [] { return AddBackslash(QDir::homePath()); }},
}};

} // namespace

QString MakeCabFileName()
{
    return QStringLiteral("makecab");
}

QString FindMakeCab(const QString &programFolder, const QString &searchPath)
{
    if (!programFolder.isEmpty()) {
        const QString beside = AddBackslash(programFolder) + MakeCabFileName();
        const QFileInfo info(beside);
        if (info.isFile() && info.isExecutable())
            return beside;
    }
    const QStringList paths
        = searchPath.isEmpty() ? QStringList() : searchPath.split(u':', Qt::SkipEmptyParts);
    return QStandardPaths::findExecutable(MakeCabFileName(), paths);
}

bool InitializeApplicationContext()
{
    gMakeCabPath = FindMakeCab(GetPathPart(GetModulePath(), QStringLiteral("/"), 0));
    gAppTitle = kTitle;
    gContextCaption = QStringLiteral("添加到 ") + gAppTitle;
    gSettingsKey = QStringLiteral("Software\\Tidewick\\") + QString(gAppTitle).replace(u' ', u'_')
        + QStringLiteral("\\Settings");
    return FileExists(gMakeCabPath);
}

QString MakeCabMissingMessage()
{
    return QStringLiteral("无法找到 ") + gMakeCabPath;
}

const SettingDefault *FindSettingDefault(QStringView name)
{
    for (const SettingDefault &setting : kSettings)
        if (name == QLatin1String(setting.name))
            return &setting;
    return nullptr;
}

QString DefaultSetting(QStringView name)
{
    const SettingDefault *setting = FindSettingDefault(name);
    return setting ? setting->defaultValue() : QString();
}

QString ReadSetting(QStringView name)
{
    return GetRegValue(HKEY_CURRENT_USER, gSettingsKey, name.toString(), DefaultSetting(name));
}

void WriteSetting(QStringView name, const QString &value)
{
    SaveRegValue(HKEY_CURRENT_USER, gSettingsKey, name.toString(), value);
}

} // namespace qb::workbench
