// Writes one cabinet from a build plan: layout, data blocks, checksums, and an atomic finish.
#pragma once

#include "cabmaker/directive_plan.h"

#include <QList>
#include <QString>

#include <functional>

namespace qb::cabmaker {

struct WrittenFile
{
    QString nameInCabinet;
    QString sourcePath;
    qint64 size = 0;
    int folder = 0; // 0-based
    quint16 date = 0;
    quint16 time = 0;
    quint16 attributes = 0;
};

struct CabinetStats
{
    qint64 bytesIn = 0; // the files' bytes
    qint64 bytesOut = 0; // the cabinet's size
    int folders = 0;
    qint64 dataBlocks = 0;
    QList<WrittenFile> files;
};

struct WriteProgress
{
    int fileIndex = 0; // 1-based
    int fileCount = 0;
    QString name; // in the cabinet
    qint64 bytesDone = 0; // of all files
    qint64 bytesTotal = 0;
    bool fileFinished = false;
};

class CabinetWriter
{
public:
    using ProgressFn = std::function<void(const WriteProgress &)>;

    explicit CabinetWriter(BuildPlan plan);

    // Called as data is read: at least once per file, at its end, and about every MiB within it.
    void setProgress(ProgressFn progress) { m_progress = std::move(progress); }
    // The set id written into the header; by default one drawn at random.
    void setSetId(quint16 id) { m_setId = id; }

    // Writes the cabinet through a temporary file in the target folder that is renamed into
    // place at the end, so a failed run leaves no cabinet, whole or half, under the target name.
    bool write();

    const QString &errorString() const { return m_error; }
    const CabinetStats &stats() const { return m_stats; }

private:
    struct LaidFile;
    struct LaidFolder;
    bool layOut(std::vector<LaidFile> &files, std::vector<LaidFolder> &folders);
    static void joinEmptyFolders(std::vector<LaidFile> &files, std::vector<LaidFolder> &folders);
    bool fail(const QString &message);

    BuildPlan m_plan;
    ProgressFn m_progress;
    quint16 m_setId;
    QString m_error;
    CabinetStats m_stats;
};

} // namespace qb::cabmaker
