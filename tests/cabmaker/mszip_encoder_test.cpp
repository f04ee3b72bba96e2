// MSZIP blocks: each inflates back to its bytes, with the previous block as history.
#include "cabmaker/mszip_encoder.h"

#include "sample_data.h"
#include "util/cab_format.h"

#include <gtest/gtest.h>

using namespace qb::cabmaker;

namespace {

// Inflates one block's deflate stream (after "CK") with the given history.
QByteArray inflateBlock(const QByteArray &block, const QByteArray &history, size_t expected)
{
    return qb::test::InflateRaw(block.mid(2), history, qsizetype(expected));
}

TEST(MsZip, BlocksInflateWithTheirHistory)
{
    QByteArray data;
    for (int i = 0; data.size() < 5 * 32768 + 1000; ++i)
        data += QByteArray("line ") + QByteArray::number(i % 977) + " of some repeating text\n";
    data.truncate(5 * 32768 + 1000);
    MsZipEncoder encoder;
    std::vector<EncodedBlock> blocks;
    // Two calls, so that the history carries across them too.
    encoder.encode(reinterpret_cast<const unsigned char *>(data.constData()), 2 * 32768, false, blocks);
    encoder.encode(reinterpret_cast<const unsigned char *>(data.constData()) + 2 * 32768,
        size_t(data.size() - 2 * 32768), true, blocks);
    ASSERT_EQ(blocks.size(), 6u);
    QByteArray history;
    QByteArray joined;
    for (const EncodedBlock &block : blocks) {
        ASSERT_TRUE(block.payload.startsWith("CK"));
        EXPECT_LE(size_t(block.payload.size()), qb::cab::kMaxMsZipBlock);
        const QByteArray plain = inflateBlock(block.payload, history, block.uncompressedSize);
        EXPECT_EQ(plain.size(), block.uncompressedSize);
        joined += plain;
        history = plain;
    }
    EXPECT_EQ(joined, data);
    EXPECT_EQ(blocks.back().uncompressedSize, 1000);
}

TEST(MsZip, HistoryMakesRepeatsCheaper)
{
    // The block repeats the history's second half twice: within deflate's reach only with history.
    const QByteArray history = qb::test::RandomBytes(32768, 7);
    const QByteArray block = history.mid(16384) + history.mid(16384);
    const auto *p = reinterpret_cast<const unsigned char *>(block.constData());
    const auto *h = reinterpret_cast<const unsigned char *>(history.constData());
    const QByteArray alone = CompressMsZipBlock(p, 32768, nullptr, 0);
    const QByteArray withHistory = CompressMsZipBlock(p, 32768, h, 32768);
    EXPECT_GT(alone.size(), 16384);
    EXPECT_LT(withHistory.size(), alone.size() / 10);
    EXPECT_EQ(inflateBlock(withHistory, history, 32768), block);
}

// Nothing makes no block; one byte and incompressible data make one block each, within the limit.
TEST(MsZip, EmptyTinyAndIncompressibleBlocks)
{
    std::vector<EncodedBlock> blocks;
    MsZipEncoder().encode(nullptr, 0, true, blocks);
    EXPECT_TRUE(blocks.empty());
    for (const QByteArray &data : {QByteArray("x"), qb::test::RandomBytes(32768, 1)}) {
        blocks.clear();
        MsZipEncoder().encode(
            reinterpret_cast<const unsigned char *>(data.constData()), size_t(data.size()), true, blocks);
        ASSERT_EQ(blocks.size(), 1u);
        EXPECT_LE(size_t(blocks[0].payload.size()), qb::cab::kMaxMsZipBlock);
        EXPECT_EQ(inflateBlock(blocks[0].payload, {}, size_t(data.size())), data);
    }
}

} // namespace
