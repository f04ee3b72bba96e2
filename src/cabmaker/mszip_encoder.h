// MSZIP: each 32 KiB block its own deflate stream that may reach back into the block before it.
#pragma once

#include "cabmaker/deflate_encoder.h"
#include "cabmaker/folder_encoder.h"

namespace qb::cabmaker {

// Compresses one block: "CK" then a complete deflate stream of block, which may refer to the
// bytes of history (the previous block of the folder, empty for the first).
QByteArray CompressMsZipBlock(const unsigned char *block, size_t size, const unsigned char *history,
    size_t historySize, const DeflateOptions &options = {});

class MsZipEncoder : public FolderEncoder
{
public:
    explicit MsZipEncoder(const DeflateOptions &options = {});
    quint16 compressionType() const override;
    void encode(const unsigned char *data, size_t size, bool last, std::vector<EncodedBlock> &out) override;

private:
    DeflateOptions m_options;
    QByteArray m_previous; // the last full block of the previous call
};

} // namespace qb::cabmaker
