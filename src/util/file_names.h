// File and folder name helpers: existence tests, safe new names, folders, temporary files, sizes.
#pragma once

#include <QString>

namespace qb::util {

// True when the path names anything that exists: a file or a folder. False for "".
bool FileExists(const QString &fileName);

// True when the path is a folder that can be listed. A missing "/" is added first.
bool DirExists(const QString &path);

// DirExists through cPath, and only when the listing yields a name.
bool DirectoryExists(const QString &path);

// An empty or blank path stays as it is; otherwise a "/" is added when the last character is none.
QString cPath(const QString &path);

// Creates every missing level of a "/"-separated path; failures on the way are ignored.
// True when the whole path exists afterwards.
bool MakedPath(const QString &path);

// The name itself when nothing is there; otherwise the first free "stem(N).ext" with N from 1
// ("a.txt" → "a(1).txt", "a" → "a(1)"). Only the last part of the path is split at its dot.
QString RenameExists(const QString &fileName);

// Moves a file. Without overwrite the target's first free name (RenameExists) is used; with it,
// an existing target is replaced. Works across file systems. True when the file has moved.
bool MoveFileTo(const QString &source, const QString &target, bool overwrite);

// Creates a new empty file "<prefix><4 hex digits>.tmp" in the folder, readable by its owner only,
// and returns its path; "" when the folder does not exist or no name is free. Uses at most the
// first three characters of the prefix, as given.
QString CreateUniqueTempFile(const QString &folder, const QString &prefix);

// CreateUniqueTempFile with the prefix cut or filled with "TMP" to exactly three characters.
QString CreateTempFile(const QString &folder, const QString &prefix);

// The length of a file in bytes, exact above 4 GiB; 0 for a folder or a file that is not there.
qint64 GetFileLen(const QString &fileName);

// The system's folders, each without a trailing "/": the base of the installed system, the
// folder of its programs, and the temporary folder ($TMPDIR or /tmp).
QString GetWindowsBaseDirectory();
QString GetWindowsSystemDirectory();
QString GetWindowsTempDirectory();

} // namespace qb::util
