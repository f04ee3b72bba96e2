// Writes parsed LZX items as blocks: trees with their delta-coded lengths, then the symbols,
// cutting the stream into frames on 16-bit boundaries.
#pragma once

#include "cabmaker/lzx_bit_writer.h"
#include "cabmaker/lzx_tables.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace qb::cabmaker::lzx {

// One literal or match. For a match, offsetCode 0..2 names a repeated offset, anything larger
// is the distance + 2.
struct Item
{
    uint32_t length = 0; // 0 for a literal
    uint32_t value = 0; // the literal byte, or the offset code
};

inline Item Literal(uint8_t byte)
{
    return {0, byte};
}

// Symbol counts of a run of items, enough to build trees and price a block.
struct Stats
{
    std::array<uint32_t, kMaxMainSymbols> main {};
    std::array<uint32_t, kNumSecondaryLengths> length {};
    std::array<uint32_t, kAlignedSymbols> aligned {};
    uint64_t extraBits = 0; // footer bits of a verbatim block
    uint64_t extraBitsAboveAligned = 0; // footer bits an aligned block writes outside the aligned tree

    void add(const Item &item);
    void add(const Stats &other);
};

// Code lengths of one block.
struct Trees
{
    std::array<uint8_t, kMaxMainSymbols> main {};
    std::array<uint8_t, kNumSecondaryLengths> length {};
    std::array<uint8_t, kAlignedSymbols> aligned {};
};

class StreamWriter
{
public:
    StreamWriter(int windowBits, bool e8Translation, uint32_t e8Size);

    int mainSymbols() const { return m_mainSymbols; }

    // Trees for the stats and the cheapest compressed block type, with its exact size in bits
    // (header and trees included).
    struct Plan
    {
        Trees trees;
        int type = kBlockVerbatim;
        uint64_t bits = 0;
    };
    Plan plan(const Stats &stats) const;

    // Bits of an uncompressed block of `size` bytes, with the worst-case padding.
    static uint64_t uncompressedBits(uint32_t size) { return 27 + 16 + 96 + uint64_t(size) * 8 + 8; }

    // Writes a compressed block made of whole frames; each frame's bytes are appended to frames.
    void writeBlock(const Plan &plan, const std::vector<const std::vector<Item> *> &frameItems,
        const std::vector<uint32_t> &frameSizes, std::vector<std::vector<uint8_t>> &frames);
    // Writes one frame as an uncompressed block, with the repeated offsets the decoder must keep.
    void writeUncompressed(const uint8_t *data, uint32_t size, const std::array<uint32_t, 3> &repeats,
        std::vector<std::vector<uint8_t>> &frames);

private:
    void writeHeaderOnce();
    void writeTree(
        const uint8_t *previous, const uint8_t *lengths, int count, BitWriter *out, uint64_t *cost) const;
    uint64_t treeBits(const uint8_t *previous, const uint8_t *lengths, int count) const;

    int m_mainSymbols;
    bool m_e8;
    uint32_t m_e8Size;
    bool m_headerWritten = false;
    BitWriter m_bits;
    std::array<uint8_t, kMaxMainSymbols> m_previousMain {};
    std::array<uint8_t, kNumSecondaryLengths> m_previousLength {};
};

} // namespace qb::cabmaker::lzx
