// The small path, size, existence and shortcut procedures every part of the workbench uses.
#pragma once

#include <QString>

namespace qb::workbench {

// Splits at the last Delimiter. Mode 0: before it (with "." the file name without extension: the
// text between the last "\" or "/" and the last "."); mode 1: after it; mode 2: before it. Without
// the delimiter every mode gives Path itself; another mode gives "".
QString GetPathPart(const QString &Path, const QString &Delimiter, int Mode);

// Appends the separator unless Path already ends in it; "" gives the separator alone.
QString AddBackslash(const QString &Path, QChar Separator = u'/');

namespace frm {
// The windows' own variant: "" stays "".
QString AddBackslash(const QString &Path, QChar Separator = u'/');
} // namespace frm

// True when anything exists at Path, a folder included. False for "". UseWide changes nothing
// here: names are always passed whole.
bool FileExists(const QString &Path, bool UseWide = false);

// True for a folder, and also for a path that does not exist: callers rely on that.
bool IsDirectory(const QString &Path);

// True when Path is a folder that lists at least one name. False for "".
bool FolderHasEntries(const QString &Path);

// Folder ids: 16 the desktop, 9 the folder of "send to" entries (here: the applications folder
// whose entries file managers offer under "Open With"). Owner is unused. "" for other ids.
inline constexpr int CSIDL_SENDTO = 9;
inline constexpr int CSIDL_DESKTOPDIRECTORY = 16;
QString GetSpecialFolder(quintptr Owner, int FolderId);

// The folder of the system's programs and the temporary folder, each with a trailing "/".
QString GetSystemDir();
QString GetTempDir();

// Creates an empty temporary file and returns its path, "" on failure. An empty Prefix becomes
// the first three characters of the title + "TMP" (of which three are used); a Folder that is not
// a folder with entries becomes GetTempDir(), and the caller sees that.
QString CreateTempName(const QString &Prefix, QString &Folder);

// The exact size of a file, also above 4 GiB; 0 when it can't be found.
qint64 GetFileSizeBytes(const QString &Path);

// "1023B", "1.00KB", "4.66GB": the size with two decimals and no blank before the unit.
QString FormatSize(double Value);
QString FormatFileSize(const QString &Path);

// This program's full path.
QString GetModulePath();

// Cuts at the first character of value 0.
QString TrimAtNull(const QString &Text);

// Writes a desktop entry at LinkPath (a launcher that starts TargetPath with any files dropped on
// it). HotKey and WindowStyle have no place in such an entry and are not written; IconPath
// defaults to TargetPath. True when the file was written.
bool CreateShortcutFile(const QString &LinkPath, const QString &TargetPath, const QString &WorkingDirectory,
    const QString &HotKey, const QString &Description, int WindowStyle, const QString &IconPath,
    int IconIndex);

} // namespace qb::workbench
