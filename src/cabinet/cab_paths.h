// Path helpers of the cabinet reader: joining, splitting, creating folders, and the guard that
// keeps a member's name inside the folder it is extracted to.
#pragma once

#include <QString>

namespace qb::cabinet {

// strPath with a trailing "/" (strPath itself when it has one); "" gives "/".
QString FixPath(const QString &strPath);

// Splits at the last "\" or "/": strPath gets everything up to and including it, strFile the
// rest. Without a separator strPath is "" and strFile the whole text.
void SplitFile(const QString &strFull, QString &strPath, QString &strFile);

// Creates every missing level of a folder. True when the folder exists afterwards; false for "".
bool MakePath(const QString &strPath);

// True when a name from a cabinet ("\" between folders) can be written below a target folder:
// no "." or ".." component, not absolute, no drive prefix, no NUL, and not ending in a separator.
// Anything else a Linux name may hold (tabs, line ends, ":") stays as stored.
bool IsSafeMemberName(const QString &name);

// A member's name as a relative path on disk: "\" turned into "/".
QString MemberNameToRelativePath(const QString &name);

} // namespace qb::cabinet
