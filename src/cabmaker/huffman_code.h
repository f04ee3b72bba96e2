// Length-limited Huffman codes in canonical form, as LZX and deflate trees use them.
#pragma once

#include <cstdint>

namespace qb::cabmaker {

// Optimal code lengths of at most maxLength bits for the frequencies (package-merge). Unused
// symbols get 0. The code is always complete: with a single used symbol, one more symbol gets a
// length too, since decoders reject incomplete codes; with none, every length is 0.
void BuildCodeLengths(const uint32_t *frequencies, int count, int maxLength, uint8_t *lengths);

// Canonical codes for the lengths: shorter codes first, by symbol within one length.
void BuildCanonicalCodes(const uint8_t *lengths, int count, uint32_t *codes);

} // namespace qb::cabmaker
