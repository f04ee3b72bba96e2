// MSZIP: each 32 KiB block its own deflate stream that may reach back into the block before it.
#pragma once

#include "cabmaker/folder_encoder.h"

namespace qb::cabmaker {

// Compresses one block: "CK" then a complete deflate stream of block, which may refer to the
// bytes of history (the previous block of the folder, empty for the first). Falls back to a
// stored block when deflate would not fit the format's limit. level is zlib's (1..9).
QByteArray CompressMsZipBlock(
    const unsigned char *block, size_t size, const unsigned char *history, size_t historySize, int level);

class MsZipEncoder : public FolderEncoder
{
public:
    explicit MsZipEncoder(int level = 6);
    quint16 compressionType() const override;
    void encode(const unsigned char *data, size_t size, bool last, std::vector<EncodedBlock> &out) override;

private:
    int m_level;
    QByteArray m_previous; // the last full block of the previous call
};

} // namespace qb::cabmaker
