// Shared helpers of the cabinet reader tests: cabinets from gcab and makecab, cabextract's listing.
#pragma once

#include "cabinet/cab_reader.h"

#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

namespace qb::test {

struct CabEntry
{
    QString name; // in the cabinet, "\" between folders
    QByteArray bytes;
    QString extra = {}; // more parameters on makecab's file line, e.g. "/date=01/02/2009"
    QString before = {}; // a directive line before the file line, e.g. a change of compression
};

// compression: "NONE", "MSZIP" or "LZX". Returns the cabinet's path; fails the test on an error.
QString makeCabWithMakeCab(TempTree &tree, const QList<CabEntry> &entries, const QString &compression,
    const QString &cabRelative = QStringLiteral("out/test.cab"));

// gcab -c [-z], run in the folder of the files. Returns the cabinet's path.
QString makeCabWithGcab(TempTree &tree, const QList<CabEntry> &entries, bool mszip);

struct ListedFile
{
    QString name; // "/" between folders, as cabextract prints it
    qint64 size = 0;
    QDateTime dateTime;
};

// cabextract -l, parsed.
QList<ListedFile> cabextractList(const QString &cabPath);

// The reader's GetInfo("") as the same rows.
QList<ListedFile> readerList(const QString &cabPath);

// Every RaiseError of a reader.
struct RaisedError
{
    long number;
    QString source;
    QString description;
};

class ErrorLog
{
public:
    explicit ErrorLog(cabinet::clsCAB &reader);
    QList<RaisedError> errors;
};

// Mixed, repeatable content: words, random bytes or both.
QByteArray sampleBytes(qsizetype size, quint32 seed);

// The offset of a file's name in a cabinet's file table (its bytes followed by NUL); -1 if absent.
qsizetype nameOffset(const QByteArray &cabinet, const QByteArray &name);

// What the process wrote to file descriptor 2 while work ran.
QByteArray captureStderr(const std::function<void()> &work);

// Sets an environment variable (and re-reads TZ) for one scope; the old value comes back after.
class ScopedEnv
{
public:
    ScopedEnv(const char *name, const char *value);
    ~ScopedEnv();
    ScopedEnv(const ScopedEnv &) = delete;
    ScopedEnv &operator=(const ScopedEnv &) = delete;

private:
    QByteArray m_name;
    QByteArray m_old;
    bool m_had = false;
};

// The modification time of a file in whole seconds since the epoch; -1 if it has none.
qint64 mtimeOf(const QString &path);

} // namespace qb::test
