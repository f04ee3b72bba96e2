// LZX for cabinet folders: one stream per folder, a window of 2^15 to 2^21 bytes sliding across
// all its files, cut into 32 KiB frames that map onto the folder's data blocks.
#pragma once

#include "cabmaker/folder_encoder.h"

#include <memory>

namespace qb::cabmaker {

// Effort: 1 to 4 lazy matching on hash chains, searching deeper as the level rises (1 is the
// fast level); 5 to 9 near-optimal parsing over the real code lengths with binary-tree match
// finding on a second thread, 8 and 9 iterating the parse 2 and 3 times (7 is the default,
// 9 the best).
inline constexpr int kLzxFastestLevel = 1;
inline constexpr int kLzxDefaultLevel = 7;
inline constexpr int kLzxBestLevel = 9;

// The file size that call translation assumes. The largest the decoders take keeps every call
// target absolute across a whole folder; the customary 12,000,000 loses the gain after 12 MB.
inline constexpr quint32 kLzxE8TranslationSize = 0x7FFFFFFF;

struct LzxOptions
{
    int windowBits = 21; // 15..21
    int level = kLzxDefaultLevel; // 1..9; anything else means the default
    bool e8Translation = true; // rewrite x86 call targets (0xE8 operands) so that they repeat
};

class LzxEncoder : public FolderEncoder
{
public:
    explicit LzxEncoder(const LzxOptions &options = {});
    ~LzxEncoder() override;

    quint16 compressionType() const override;
    // Each block is one 32 KiB frame (the folder's last may be shorter), ending on a 16-bit
    // boundary of the stream, as decoders expect at every frame.
    void encode(const unsigned char *data, size_t size, bool last, std::vector<EncodedBlock> &out) override;

    // The most memory the encoder holds at once, for the benchmark.
    size_t peakMemory() const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
    int m_windowBits;
};

// Compresses a whole buffer as one folder would be, for tests, benchmarks and fuzzing.
std::vector<EncodedBlock> LzxCompressBuffer(
    const unsigned char *data, size_t size, const LzxOptions &options);

} // namespace qb::cabmaker
