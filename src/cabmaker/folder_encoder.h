// Turns a folder's uncompressed bytes into cabinet data blocks, one compression method each.
#pragma once

#include "cabmaker/directive_plan.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

namespace qb::cabmaker {

struct EncodedBlock
{
    QByteArray payload; // what the data block carries
    quint16 uncompressedSize = 0;
};

class FolderEncoder
{
public:
    virtual ~FolderEncoder() = default;

    // The folder entry's compression type field.
    virtual quint16 compressionType() const = 0;

    // Encodes the next bytes of the folder. size is a whole number of 32 KiB blocks, except on
    // the folder's last call (last == true), which may end with a shorter block. Blocks are
    // appended to out in order.
    virtual void encode(const unsigned char *data, size_t size, bool last, std::vector<EncodedBlock> &out)
        = 0;
};

// The encoder for one folder's settings; nullptr with a message when the method can't be done.
std::unique_ptr<FolderEncoder> MakeFolderEncoder(const FolderSettings &settings, QString &error);

} // namespace qb::cabmaker
