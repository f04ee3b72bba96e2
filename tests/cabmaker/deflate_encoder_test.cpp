// Our deflate streams, read back by zlib: block types, history, the tree's order, random data.
#include "cabmaker/deflate_block_writer.h"
#include "cabmaker/deflate_encoder.h"
#include "cabmaker/match_finder.h"
#include "sample_data.h"

#include <QRandomGenerator>
#include <gtest/gtest.h>

#include <cmath>

using namespace qb::cabmaker;
using qb::test::InflateRaw;
using qb::test::RandomBytes;
using qb::test::WordSoup;

namespace {

// Compresses data block by block through one encoder and checks that every block inflates
// with the block before it as history. Returns the compressed size.
qsizetype roundTrip(
    const QByteArray &data, const DeflateOptions &options = {}, const QByteArray &history = {})
{
    DeflateEncoder encoder(options);
    encoder.restart(reinterpret_cast<const uint8_t *>(history.constData()), size_t(history.size()));
    QByteArray previous = history.right(32768);
    qsizetype total = 0;
    for (qsizetype at = 0; at < data.size() || (at == 0 && data.isEmpty()); at += 32768) {
        const QByteArray block = data.mid(at, 32768);
        QByteArray stream;
        encoder.compress(reinterpret_cast<const uint8_t *>(block.constData()), size_t(block.size()), stream);
        EXPECT_LE(stream.size(), block.size() + 5) << "at " << at;
        EXPECT_EQ(InflateRaw(stream, previous, block.size()), block) << "at " << at;
        total += stream.size();
        previous = block;
        if (data.isEmpty())
            break;
    }
    return total;
}

TEST(Deflate, RoundTripsThroughZlib)
{
    QByteArray runs;
    for (int i = 0; runs.size() < 200000; ++i)
        runs += QByteArray(int(QRandomGenerator(quint32(i)).bounded(3000u)), char('a' + i % 26));
    const struct
    {
        const char *name;
        QByteArray data;
    } cases[] = {
        {"empty", QByteArray()},
        {"one byte", QByteArray("x")},
        {"zeros", QByteArray(100000, '\0')},
        {"random", RandomBytes(100000, 1)},
        {"words", WordSoup(600000, 2)},
        {"runs", runs},
        {"half random half words", RandomBytes(20000, 3) + WordSoup(20000, 4) + RandomBytes(50000, 5)},
        {"odd tail", WordSoup(3 * 32768 + 77, 6)},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        roundTrip(c.data);
    }
}

// Every setting, the extremes included, still writes streams that decode.
TEST(Deflate, EverySettingDecodes)
{
    const QByteArray data = WordSoup(200000, 7) + RandomBytes(40000, 8) + QByteArray(50000, 'z');
    const DeflateOptions settings[] = {
        {1, 4, 3, 1}, {1, 258, 258, 1}, {64, 258, 258, 3}, {12, 128, 48, 2},
        {0, 0, 0, 0}, // clamped into range
    };
    for (const DeflateOptions &options : settings) {
        SCOPED_TRACE(testing::Message()
            << options.depth << "/" << options.nice << "/" << options.hop << "/" << options.passes);
        roundTrip(data, options);
    }
}

// Blocks given one at a time, with nothing after them in the buffer: the positions near each
// block's end must not spoil the tree for the next block (they once produced wrong matches).
TEST(Deflate, BlockEndsKeepTheTreeInOrder)
{
    for (quint32 seed = 10; seed < 14; ++seed)
        roundTrip(WordSoup(40 * 32768, seed));
}

TEST(Deflate, HistoryReachesTheWholeWindow)
{
    // The block is the history again: every match reaches back exactly 32 KiB.
    const QByteArray history = RandomBytes(32768, 20);
    const qsizetype size = roundTrip(history, {}, history);
    EXPECT_LT(size, 400);
    // Without the history the same block stays as it is.
    EXPECT_GT(roundTrip(history), 32768);
}

TEST(Deflate, RandomDataKeepsItsLongRepeats)
{
    // Random data takes the quick path, which still finds a repeat within the window.
    const QByteArray half = RandomBytes(16384, 30);
    EXPECT_LT(roundTrip(half + half), 16384 + 300); // the literals cost a little over 8 bits each
    EXPECT_EQ(roundTrip(RandomBytes(32768, 31)), 32768 + 5); // stored
}

TEST(Deflate, PicksTheShortestBlockType)
{
    DeflateEncoder encoder;
    auto firstByte = [&](const QByteArray &block) {
        encoder.restart(nullptr, 0);
        QByteArray stream;
        encoder.compress(reinterpret_cast<const uint8_t *>(block.constData()), size_t(block.size()), stream);
        EXPECT_EQ(InflateRaw(stream, {}, block.size()), block);
        return uint8_t(stream.at(0)) & 7; // final bit, then the type
    };
    EXPECT_EQ(firstByte("hello"), 1 | 1 << 1); // fixed codes
    EXPECT_EQ(firstByte(WordSoup(32768, 40)), 1 | 2 << 1); // dynamic codes
    EXPECT_EQ(firstByte(RandomBytes(32768, 41)), 1); // stored
}

TEST(Deflate, CodesAreCompleteEvenWithoutMatches)
{
    std::vector<deflate::Step> steps;
    for (int b = 0; b < 10; ++b)
        steps.push_back({0, uint16_t('a' + b % 3)});
    const deflate::SymbolCounts counts(steps);
    const deflate::BlockCode code(counts);
    auto kraft = [](const auto &lengths) {
        double sum = 0;
        for (uint8_t l : lengths)
            sum += l ? std::ldexp(1.0, -l) : 0.0;
        return sum;
    };
    EXPECT_DOUBLE_EQ(kraft(code.literalLength), 1.0);
    EXPECT_DOUBLE_EQ(kraft(code.distance), 1.0);
    EXPECT_EQ(code.distance[0], 1);
    EXPECT_EQ(code.distance[1], 1);
}

TEST(Deflate, SlotTablesMatchTheirBases)
{
    for (uint32_t length = deflate::kMinMatch; length <= deflate::kMaxMatch; ++length) {
        const int slot = deflate::LengthSlot(length);
        ASSERT_GE(length, deflate::kLengthBase[size_t(slot)]);
        ASSERT_LT(length - deflate::kLengthBase[size_t(slot)], 1u << deflate::kLengthExtra[size_t(slot)])
            << length;
    }
    EXPECT_EQ(deflate::LengthSlot(258), 28); // its own symbol, not 227 + 31
    for (uint32_t d = 1; d <= deflate::kMaxDistance; ++d) {
        const int slot = deflate::DistanceSlot(d);
        ASSERT_GE(d, deflate::kDistanceBase[size_t(slot)]);
        ASSERT_LT(d - deflate::kDistanceBase[size_t(slot)], 1u << deflate::kDistanceExtra[size_t(slot)]) << d;
    }
}

// The tree reports only real matches, each longer than the one before, however it is fed.
TEST(TreeMatchFinder, ReportsOnlyRealMatches)
{
    QRandomGenerator random(50);
    std::vector<uint8_t> data(20000);
    for (uint8_t &b : data)
        b = uint8_t('a' + random.bounded(3)); // a small alphabet: long, overlapping matches
    for (int hashBytes : {3, 4}) {
        TreeMatchFinder tree(data.size(), 12, hashBytes);
        Match list[300];
        const uint32_t nice = 40;
        for (uint32_t pos = 0; pos + nice < data.size(); ++pos) {
            const bool insert = pos % 7 != 3; // some positions only searched
            const int count = insert ? tree.findAndInsert(data.data(), pos, 258, nice, 5000, 24, list)
                                     : tree.find(data.data(), pos, 258, nice, 5000, 24, list);
            uint32_t previous = 0;
            for (int k = 0; k < count; ++k) {
                ASSERT_GT(list[k].length, previous);
                ASSERT_LE(list[k].length, nice);
                ASSERT_GE(list[k].distance, 1u);
                ASSERT_LE(list[k].distance, std::min<uint32_t>(pos, 5000));
                ASSERT_EQ(
                    MatchLength(&data[pos], &data[pos - list[k].distance], list[k].length), list[k].length)
                    << "pos " << pos << " hash " << hashBytes;
                previous = list[k].length;
            }
        }
    }
}

} // namespace
