// Fuzz target: bytes through the LZX compressor into a one-file cabinet, and back out through libmspack.
#include "cabmaker/lzx_encoder.h"
#include "fuzz_check.h"
#include "support/mspack_memory.h"
#include "util/cab_format.h"

#include <QByteArray>

#include <cstdint>
#include <cstdlib>

using namespace qb::cabmaker;

namespace {

constexpr size_t kMaxInput = 256 * 1024;

} // namespace

// Byte 0 picks the window (15..21) and the level (1..9). Byte 1: bit 0 turns call translation
// off, bits 1..3 repeat the rest 2^n times, so that short inputs still slide the window and
// make long matches. The rest is the data.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2 || size > kMaxInput)
        return 0;
    LzxOptions options;
    options.windowBits = 15 + data[0] % 7;
    options.level = 1 + (data[0] / 7) % 9;
    options.e8Translation = (data[1] & 1) == 0;
    const int repeats = 1 << ((data[1] >> 1) & 7);

    const QByteArray rest(reinterpret_cast<const char *>(data + 2), qsizetype(size - 2));
    QByteArray plain;
    for (int i = 0; i < repeats && plain.size() + rest.size() <= qsizetype(kMaxInput); ++i)
        plain += rest;

    const std::vector<EncodedBlock> blocks = LzxCompressBuffer(
        reinterpret_cast<const unsigned char *>(plain.constData()), size_t(plain.size()), options);

    // Whole frames but the last, each within what a decoder accepts.
    qsizetype covered = 0;
    for (size_t i = 0; i < blocks.size(); ++i) {
        check(blocks[i].uncompressedSize > 0);
        check(i + 1 == blocks.size() || blocks[i].uncompressedSize == qb::cab::kBlockSize);
        check(!blocks[i].payload.isEmpty() && blocks[i].payload.size() <= qb::cab::kBlockSize + 6144);
        check(blocks[i].payload.size() % 2 == 0); // every frame ends on a 16-bit boundary
        covered += blocks[i].uncompressedSize;
    }
    check(covered == plain.size());

    const QByteArray cabinet = qb::test::AssembleCabinet(
        qb::cab::lzxCompressionType(options.windowBits), blocks, {{"fuzz.bin", plain}});
    const qb::test::UnpackResult unpacked = qb::test::UnpackWithMspack(cabinet);
    check(unpacked.error == 0);
    check(unpacked.files.size() == 1);
    check(unpacked.files[0].bytes == plain);
    return 0;
}
