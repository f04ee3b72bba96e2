// How a row of the list is made: the type text, the size with group separators, the date text,
// and the folder a file gets inside the cabinet.
#pragma once

#include <QDateTime>
#include <QHash>
#include <QString>

namespace qb::workbench {

// Column indices of the list.
enum Column : int {
    kColumnName = 0,
    kColumnFolder = 1,
    kColumnType = 2,
    kColumnSize = 3,
    kColumnDate = 4,
    kColumnSource = 5,
};

// The desktop's display name for files with this extension (given with or without its dot,
// any case); "" when the extension is unknown. Looked up once per extension.
class TypeNames
{
public:
    QString forExtension(const QString &extension);

private:
    QHash<QString, QString> m_cache;
};

// "#,0": the whole number with "," between groups of three digits.
QString FormatGrouped(qint64 value);

// The number in a "#,0" text: group separators are skipped, reading stops at the first other
// character that is not a digit.
qint64 ReadGrouped(const QString &text);

// The default text of a date: "yyyy-M-d H:mm:ss", the date alone at midnight, the time alone on
// the day that counts as no date (1899-12-30).
QString DefaultDateText(const QDateTime &when);

// Column 1 for a file: its folder with basePath taken out wherever it occurs (case-sensitive),
// ending in "\" or empty. Folders are written with "\", as the cabinet names them.
QString CabinetFolderOf(const QString &path, const QString &basePath);

// The whole row for a file on disk: name|folder|type|size|date|path.
QString PackageRowText(const QString &path, const QString &basePath, TypeNames &types);

} // namespace qb::workbench
