// The application-wide strings and settings of the workbench, set once at start-up.
#pragma once

#include <QString>

namespace qb::workbench {

// "Quillbox Desk": the title of every message box and the stem of the program's file names.
extern QString gAppTitle;
// "Software\Tidewick\" + the title with blanks as "_" + "\Settings".
extern QString gSettingsKey;
// Full path of the cabinet maker that was found; "" when none was.
extern QString gMakeCabPath;
// "添加到 " + the title: the caption of the file manager entry.
extern QString gContextCaption;

// The cabinet maker's file name.
QString MakeCabFileName();

// Where the cabinet maker is: beside the program first, then on the search path ("" for the
// process's own PATH). "" when neither has it.
QString FindMakeCab(const QString &programFolder, const QString &searchPath = {});

// Finds the cabinet maker beside this program or on PATH and sets the four strings.
// True when the maker was found, so the main window may load.
bool InitializeApplicationContext();

// The text of the message shown when no cabinet maker exists: "无法找到 " + gMakeCabPath,
// which at that point is "无法找到 " with its blank and nothing after it.
QString MakeCabMissingMessage();

// The four settings of the program and their defaults.
struct SettingDefault
{
    const char *name;
    QString (*defaultValue)();
};
// CompressionType "2" (LZX), CompressionMemory "0" (window 15), CompleteAction "1" (offer to
// open), LastOpenFileFolder: the user's home folder with a trailing "/".
const SettingDefault *FindSettingDefault(QStringView name);
QString DefaultSetting(QStringView name);

// Reads one of the four settings from gSettingsKey, with its default.
QString ReadSetting(QStringView name);
// Writes one of the four settings to gSettingsKey.
void WriteSetting(QStringView name, const QString &value);

} // namespace qb::workbench
