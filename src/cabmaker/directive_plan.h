// The build plan a directive file turns into: folders of files, cabinet limits and output paths.
#pragma once

#include <QList>
#include <QString>
#include <QtGlobal>

namespace qb::cabmaker {

enum class CompressionKind { None, MsZip, Lzx };

// How one folder is compressed. Only LZX uses the window and level; other kinds keep the defaults
// so that changing CompressionMemory under MSZIP does not split folders.
struct FolderSettings
{
    CompressionKind kind = CompressionKind::MsZip;
    int lzxWindowBits = 21; // CompressionMemory, 15..21
    int lzxLevel = -1; // LZXLevel; -1 = the compressor's default
    bool operator==(const FolderSettings &) const = default;
};

struct PlannedFile
{
    QString sourcePath; // absolute path on disk
    QString nameInCabinet; // "\"-separated
    QString directiveFile; // for messages
    int line = 0; // 1-based line in directiveFile
    // From "/date=", "/time=", "/attr=", checked and written the same way every time:
    // date "MM/DD/YYYY", time "HH:MM:SS" on a 24-hour clock, attributes some of "rhsa" in that
    // order. Empty when not given.
    QString date, time, attributes;
};

struct PlannedFolder
{
    FolderSettings settings;
    QList<PlannedFile> files;
};

struct BuildPlan
{
    QString cabinetPath; // absolute path of the cabinet to write
    QString diskFolder; // the disk folder the cabinet name starts from; made when missing
    QList<PlannedFolder> folders; // folders in order; a folder is never empty
    qint64 folderSizeThreshold = 0; // 0: no limit (uncompressed bytes)
    int folderFileCountThreshold = 0; // 0: no limit
    qint64 maxCabinetSize = 0; // 0: no limit
    QString infPath; // absolute path of the information file, "" = none
    QString rptPath; // absolute path of the report file, "" = none

    qsizetype fileCount() const
    {
        qsizetype count = 0;
        for (const PlannedFolder &folder : folders)
            count += folder.files.size();
        return count;
    }
};

struct DirectiveError
{
    QString file;
    int line = 0;
    QString message;

    // "FILE(LINE): MESSAGE", "FILE: MESSAGE" without a line, "MESSAGE" without a file.
    QString toString() const
    {
        if (file.isEmpty())
            return message;
        if (line > 0)
            return file + QLatin1Char('(') + QString::number(line) + QLatin1String("): ") + message;
        return file + QLatin1String(": ") + message;
    }
};

} // namespace qb::cabmaker
