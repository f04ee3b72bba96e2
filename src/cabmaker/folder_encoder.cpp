// Choosing the encoder of a folder, and the encoder that stores blocks as they are.
#include "cabmaker/folder_encoder.h"

#include "cabmaker/lzx_encoder.h"
#include "cabmaker/mszip_encoder.h"
#include "util/cab_format.h"

#include <algorithm>

namespace qb::cabmaker {

namespace {

class StoreEncoder : public FolderEncoder
{
public:
    quint16 compressionType() const override { return cab::kCompressNone; }
    void encode(const unsigned char *data, size_t size, bool, std::vector<EncodedBlock> &out) override
    {
        for (size_t at = 0; at < size; at += size_t(cab::kBlockSize)) {
            const size_t length = std::min(size_t(cab::kBlockSize), size - at);
            out.push_back(
                {QByteArray(reinterpret_cast<const char *>(data + at), qsizetype(length)), quint16(length)});
        }
    }
};

} // namespace

std::unique_ptr<FolderEncoder> MakeFolderEncoder(const FolderSettings &settings, QString &error)
{
    switch (settings.kind) {
    case CompressionKind::None:
        return std::make_unique<StoreEncoder>();
    case CompressionKind::MsZip:
        return std::make_unique<MsZipEncoder>();
    case CompressionKind::Lzx: {
        LzxOptions options;
        options.windowBits = settings.lzxWindowBits;
        options.level = settings.lzxLevel < 0 ? kLzxDefaultLevel : settings.lzxLevel;
        return std::make_unique<LzxEncoder>(options);
    }
    }
    error = QStringLiteral("unknown compression type");
    return nullptr;
}

} // namespace qb::cabmaker
