// Writes a parsed block as one final deflate block: dynamic Huffman, fixed Huffman or stored,
// whichever comes out shortest.
#pragma once

#include "cabmaker/deflate_format.h"

#include <QByteArray>

#include <cstddef>
#include <vector>

namespace qb::cabmaker::deflate {

// One step of a parse: a literal (length 0, value the byte) or a match (length 3..258, value the
// distance 1..32768).
struct Step
{
    uint16_t length = 0;
    uint16_t value = 0;
};

struct SymbolCounts
{
    std::array<uint32_t, kLiteralLengthSymbols> literalLength {};
    std::array<uint32_t, kDistanceSymbols> distance {};

    explicit SymbolCounts(const std::vector<Step> &steps);
};

// Code lengths of a dynamic block; both codes complete, as every decoder accepts them.
struct BlockCode
{
    std::array<uint8_t, kLiteralLengthSymbols> literalLength {};
    std::array<uint8_t, kDistanceSymbols> distance {};

    explicit BlockCode(const SymbolCounts &counts);
};

// Appends steps (which must spell out data[0, size)) to out as a final deflate block, so that
// out ends in a complete stream. code must be the one BlockCode builds from the steps' counts.
void WriteFinalBlock(const std::vector<Step> &steps, const SymbolCounts &counts, const BlockCode &code,
    const uint8_t *data, size_t size, QByteArray &out);

// Appends data[0, size) (at most 65,535 bytes) as a final stored block.
void WriteFinalStoredBlock(const uint8_t *data, size_t size, QByteArray &out);

} // namespace qb::cabmaker::deflate
