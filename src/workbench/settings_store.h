// The settings store: string values under a key, in the user's settings or in a profile file.
#pragma once

#include <QString>

namespace qb::workbench {

// Root keys of the store. The current user's settings are the only ones written by the program.
inline constexpr quint32 HKEY_CLASSES_ROOT = 0x80000000u;
inline constexpr quint32 HKEY_CURRENT_USER = 0x80000001u;
inline constexpr quint32 HKEY_LOCAL_MACHINE = 0x80000002u;

// A key "Software\Maker\Program\Group…" names the settings of organisation "Maker", application
// "Program" and the group "Group/…" within them. With a non-empty IniFile the value lives in that
// profile file instead, with the key as the section and the value name as the entry.

// Writes a string value. Errors are not reported.
void SaveRegValue(quint32 RootKey, const QString &SubKey, const QString &ValueName, const QString &Value,
    const QString &IniFile = {});

// Reads a string value: the text up to its first character of value 0. A missing value, or one
// stored as anything but a string, gives Default. In a profile file at most 254 characters are
// read, and an empty entry also gives Default.
QString GetRegValue(quint32 RootKey, const QString &SubKey, const QString &ValueName, const QString &Default,
    const QString &IniFile = {});

// Removes a key with its values (in a profile file: the section).
void DeleteRegKey(quint32 RootKey, const QString &SubKey, const QString &IniFile = {});

} // namespace qb::workbench
