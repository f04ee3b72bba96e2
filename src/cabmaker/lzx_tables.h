// Fixed numbers of the LZX format: symbol counts, block types, position slots and their bases.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qb::cabmaker::lzx {

inline constexpr int kMinMatch = 2;
inline constexpr int kMaxMatch = 257;
inline constexpr int kNumChars = 256;
inline constexpr int kNumPrimaryLengths
    = 7; // length headers 0..6 are the length; 7 means "see the length tree"
inline constexpr int kNumSecondaryLengths = 249;
inline constexpr int kPretreeSymbols = 20;
inline constexpr int kAlignedSymbols = 8;
inline constexpr int kMaxPositionSlots = 50;
inline constexpr int kMaxMainSymbols = kNumChars + kMaxPositionSlots * 8;
inline constexpr int kFrameSize = 32768;
inline constexpr int kMaxCodeLength = 16; // main and length trees
inline constexpr int kMaxPretreeLength = 15; // written in 4 bits
inline constexpr int kMaxAlignedLength = 7; // written in 3 bits

inline constexpr int kBlockVerbatim = 1;
inline constexpr int kBlockAligned = 2;
inline constexpr int kBlockUncompressed = 3;

// Position slots for a window of 2^bits bytes (15..21).
int PositionSlots(int windowBits);

// Extra bits and base of each position slot. Slots 0..2 stand for the three repeated offsets;
// other matches code their distance + 2 ("formatted offset").
uint8_t SlotExtraBits(int slot);
uint32_t SlotBase(int slot);

// The slot of a formatted offset (3 or more).
inline int SlotOf(uint32_t formatted)
{
    if (formatted < 4)
        return int(formatted);
    if (formatted < (1u << 18)) {
        const int n = 31 - __builtin_clz(formatted);
        return 2 * n + int((formatted >> (n - 1)) & 1u);
    }
    return 36 + int((formatted - (1u << 18)) >> 17);
}

// The main tree symbol of a match: 256 + slot * 8 + length header.
inline int MainSymbol(int slot, int length)
{
    const int header = length - kMinMatch < kNumPrimaryLengths ? length - kMinMatch : kNumPrimaryLengths;
    return kNumChars + slot * 8 + header;
}

} // namespace qb::cabmaker::lzx
