// Fuzz target: bytes through the MSZIP compressor into a one-file cabinet, and back out through
// libmspack; every block also inflates on its own with zlib, given the block before it.
#include "cabmaker/mszip_encoder.h"
#include "fuzz_check.h"
#include "support/mspack_memory.h"
#include "util/cab_format.h"

#include <QByteArray>

#include <zlib.h>

#include <cstdint>
#include <cstdlib>

using namespace qb::cabmaker;

namespace {

// Three blocks and a little more: enough for history across blocks and for two runs on two
// threads, small enough for many runs a second under the sanitizers.
constexpr size_t kMaxInput = 100 * 1024;

QByteArray inflateWithHistory(const QByteArray &payload, const QByteArray &history, int expected)
{
    z_stream z {};
    check(inflateInit2(&z, -15) == Z_OK);
    if (!history.isEmpty())
        check(inflateSetDictionary(
                  &z, reinterpret_cast<const Bytef *>(history.constData()), uInt(history.size()))
            == Z_OK);
    QByteArray out(expected + 16, '\0');
    z.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(payload.constData() + 2));
    z.avail_in = uInt(payload.size() - 2);
    z.next_out = reinterpret_cast<Bytef *>(out.data());
    z.avail_out = uInt(out.size());
    check(inflate(&z, Z_FINISH) == Z_STREAM_END);
    check(z.avail_in == 0);
    out.resize(out.size() - qsizetype(z.avail_out));
    inflateEnd(&z);
    return out;
}

} // namespace

// Byte 0 picks the search depth (1..16) and the passes (1..3); byte 1: bits 0..2 repeat the rest
// 2^n times, bits 3..7 pick `nice` and `hop`. The rest is the data, fed in pieces of 64 KiB.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2 || size > kMaxInput)
        return 0;
    DeflateOptions options;
    options.depth = 1 + data[0] % 16;
    options.passes = 1 + (data[0] / 16) % 3;
    options.nice = 4 + uint32_t(data[1] >> 3) * 8;
    options.hop = 3 + uint32_t(data[1] >> 3) * 5;
    const int repeats = 1 << (data[1] & 7);

    const QByteArray rest(reinterpret_cast<const char *>(data + 2), qsizetype(size - 2));
    QByteArray plain;
    for (int i = 0; i < repeats && plain.size() + rest.size() <= qsizetype(kMaxInput); ++i)
        plain += rest;

    MsZipEncoder encoder(options);
    std::vector<EncodedBlock> blocks;
    constexpr qsizetype kPiece = 65536;
    for (qsizetype at = 0; at < plain.size() || at == 0; at += kPiece) {
        const qsizetype length = std::min(kPiece, plain.size() - at);
        encoder.encode(reinterpret_cast<const unsigned char *>(plain.constData()) + at, size_t(length),
            at + length >= plain.size(), blocks);
        if (plain.isEmpty())
            break;
    }

    QByteArray history;
    qsizetype covered = 0;
    for (const EncodedBlock &block : blocks) {
        check(block.payload.startsWith("CK"));
        check(size_t(block.payload.size()) <= qb::cab::kMaxMsZipBlock);
        const QByteArray piece = inflateWithHistory(block.payload, history, block.uncompressedSize);
        check(piece == plain.mid(covered, block.uncompressedSize));
        covered += block.uncompressedSize;
        history = piece;
    }
    check(covered == plain.size());

    const QByteArray cabinet
        = qb::test::AssembleCabinet(qb::cab::kCompressMsZip, blocks, {{"fuzz.bin", plain}});
    const qb::test::UnpackResult unpacked = qb::test::UnpackWithMspack(cabinet);
    check(unpacked.error == 0);
    check(unpacked.files.size() == 1);
    check(unpacked.files[0].bytes == plain);
    return 0;
}
