// Cabinets held in memory: assembled from encoded blocks, and unpacked by libmspack without files.
#pragma once

#include "cabmaker/folder_encoder.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <vector>

namespace qb::test {

struct CabEntry
{
    QByteArray name; // as stored, "\"-separated
    QByteArray bytes;
};

// A cabinet of one folder holding the entries in order, their bytes already encoded as blocks.
// Set id 0, dates fixed, no reserve areas, checksums filled in.
QByteArray AssembleCabinet(quint16 compressionType, const std::vector<cabmaker::EncodedBlock> &blocks,
    const QList<CabEntry> &entries);

struct UnpackedFile
{
    QByteArray name;
    QByteArray bytes;
    int error = 0; // MSPACK_ERR_* of its extraction
};

struct UnpackResult
{
    int error = 0; // the first MSPACK_ERR_* met, 0 when everything went well
    QString stage; // "open" or the name of the file whose extraction failed
    int folderType = -1; // the first folder's compression type as libmspack read it
    QList<UnpackedFile> files;
    QStringList messages; // what libmspack said on the way

    // One line for a failing assertion.
    QString describe() const;
};

// Opens the cabinet and extracts each of its files in order, all in memory.
UnpackResult UnpackWithMspack(const QByteArray &cabinet);

// Where two byte strings first differ, or -1 when they are equal.
qsizetype FirstDifference(const QByteArray &a, const QByteArray &b);

} // namespace qb::test
