// The deflate format's fixed numbers: symbols for lengths and distances, their extra bits, the
// order of the code length code and the fixed Huffman code.
#pragma once

#include <array>
#include <cstdint>

namespace qb::cabmaker::deflate {

inline constexpr uint32_t kMinMatch = 3;
inline constexpr uint32_t kMaxMatch = 258;
inline constexpr uint32_t kMaxDistance = 32768;
inline constexpr int kLiteralLengthSymbols = 286; // 0..255 literals, 256 end of block, 257..285 lengths
inline constexpr int kDistanceSymbols = 30;
inline constexpr int kCodeLengthSymbols = 19;
inline constexpr int kEndOfBlock = 256;
inline constexpr int kMaxCodeLength = 15;
inline constexpr int kMaxCodeLengthCodeLength = 7;

inline constexpr std::array<uint16_t, 29> kLengthBase = {3, 4, 5, 6, 7, 8, 9, 10, 11, 13, 15, 17, 19, 23, 27,
    31, 35, 43, 51, 59, 67, 83, 99, 115, 131, 163, 195, 227, 258};
inline constexpr std::array<uint8_t, 29> kLengthExtra
    = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};
inline constexpr std::array<uint16_t, 30> kDistanceBase = {1, 2, 3, 4, 5, 7, 9, 13, 17, 25, 33, 49, 65, 97,
    129, 193, 257, 385, 513, 769, 1025, 1537, 2049, 3073, 4097, 6145, 8193, 12289, 16385, 24577};
inline constexpr std::array<uint8_t, 30> kDistanceExtra
    = {0, 0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13};
inline constexpr std::array<uint8_t, 19> kCodeLengthOrder
    = {16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15};

inline constexpr std::array<uint8_t, kMaxMatch + 1> kLengthSlots = [] {
    std::array<uint8_t, kMaxMatch + 1> table {};
    for (uint8_t slot = 0; slot < 29; ++slot) {
        const uint32_t end = slot + 1 < 29 ? kLengthBase[slot + 1] : kMaxMatch + 1;
        for (uint32_t l = kLengthBase[slot]; l < end; ++l)
            table[l] = slot;
    }
    return table;
}();

// Distances up to 256 one by one, beyond that by 128s (every slot there starts at 128n + 1).
inline constexpr std::array<uint8_t, 512> kDistanceSlots = [] {
    std::array<uint8_t, 512> table {};
    for (uint8_t slot = 0; slot < 30; ++slot) {
        const uint32_t end = slot + 1 < 30 ? kDistanceBase[slot + 1] : kMaxDistance + 1;
        for (uint32_t d = kDistanceBase[slot]; d < end; ++d)
            table[d <= 256 ? d - 1 : 256 + ((d - 1) >> 7)] = slot;
    }
    return table;
}();

static_assert(kLengthSlots[3] == 0 && kLengthSlots[257] == 27 && kLengthSlots[258] == 28);
static_assert(kDistanceSlots[0] == 0 && kDistanceSlots[256 + (32767 >> 7)] == 29);

// The length slot (0..28) of a match length 3..258.
inline uint8_t LengthSlot(uint32_t length)
{
    return kLengthSlots[length];
}

// The distance slot (0..29) of a distance 1..32768.
inline uint8_t DistanceSlot(uint32_t distance)
{
    return kDistanceSlots[distance <= 256 ? distance - 1 : 256 + ((distance - 1) >> 7)];
}

// The fixed code's length for a literal/length symbol (distances are all 5 bits).
inline int FixedLiteralLengthBits(int symbol)
{
    return symbol < 144 ? 8 : symbol < 256 ? 9 : symbol < 280 ? 7 : 8;
}

} // namespace qb::cabmaker::deflate
