// A folder of the names a Linux user may really have, and what three outside extractors must
// give back from a cabinet of it.
#pragma once

#include "support/temp_tree.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

namespace qb::test {

struct HostileFolder
{
    QString folder; // absolute, about 3,700 characters long: its longest path is about 4,000
    QMap<QByteArray, QByteArray> storable; // name relative to folder (raw bytes, "/") → contents
    QStringList refused; // absolute paths of names a cabinet cannot carry as themselves
};

// Writes the folder below tree: blanks at either end, "|", a tab, a line feed, a carriage return,
// a quote, "%", Chinese, a 255-byte name, an empty file, a subfolder; and a name with "\" and
// one that is not UTF-8.
HostileFolder MakeHostileFolder(TempTree &tree);

// Every file below folder: raw relative name → contents.
QMap<QByteArray, QByteArray> RawFilesBelow(const QString &folder);

// Extracts cabinet with cabextract, 7-Zip and bsdtar, each into its own folder below scratch;
// returns, per tool, "" when the tool gave back exactly expected (the cabinet's notice file
// aside), else what differed.
QMap<QString, QString> CompareExtractors(const QString &cabinet, const QString &scratch,
    const QMap<QByteArray, QByteArray> &expected, const QByteArray &ignoredName);

} // namespace qb::test
