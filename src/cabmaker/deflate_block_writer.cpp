// Deflate block headers, the size of each block type and the bit stream itself.
#include "cabmaker/deflate_block_writer.h"

#include "cabmaker/huffman_code.h"

#include <algorithm>
#include <cstring>

namespace qb::cabmaker::deflate {

SymbolCounts::SymbolCounts(const std::vector<Step> &steps)
{
    for (const Step &step : steps) {
        if (step.length == 0) {
            ++literalLength[step.value];
        } else {
            ++literalLength[257 + LengthSlot(step.length)];
            ++distance[DistanceSlot(step.value)];
        }
    }
    ++literalLength[kEndOfBlock];
}

BlockCode::BlockCode(const SymbolCounts &counts)
{
    BuildCodeLengths(
        counts.literalLength.data(), kLiteralLengthSymbols, kMaxCodeLength, literalLength.data());
    BuildCodeLengths(counts.distance.data(), kDistanceSymbols, kMaxCodeLength, distance.data());
    // Without matches, two one-bit distance codes: a complete code that no decoder can refuse.
    if (std::all_of(distance.begin(), distance.end(), [](uint8_t l) { return l == 0; }))
        distance[0] = distance[1] = 1;
}

namespace {

// Bits go in from the least significant end, into a buffer sized in advance.
class BitSink
{
public:
    explicit BitSink(uint8_t *out)
        : m_out(out)
    { }
    void put(uint32_t value, int bits)
    {
        m_acc |= uint64_t(value) << m_count;
        m_count += bits;
        if (m_count >= 32) {
            const uint32_t word = uint32_t(m_acc);
            std::memcpy(m_out, &word, 4); // the byte order of a little-endian machine
            m_out += 4;
            m_acc >>= 32;
            m_count -= 32;
        }
    }
    // Writes out the rest, padded with zero bits to a whole byte; returns the end.
    uint8_t *finish()
    {
        while (m_count > 0) {
            *m_out++ = uint8_t(m_acc);
            m_acc >>= 8;
            m_count = std::max(0, m_count - 8);
        }
        return m_out;
    }

private:
    uint8_t *m_out;
    uint64_t m_acc = 0;
    int m_count = 0;
};

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "BitSink stores words little-endian");

// Canonical codes, bit-reversed as deflate sends them.
template<size_t N>
std::array<uint32_t, N> ReversedCodes(const std::array<uint8_t, N> &lengths)
{
    std::array<uint32_t, N> codes {};
    BuildCanonicalCodes(lengths.data(), int(N), codes.data());
    for (size_t i = 0; i < N; ++i) {
        uint32_t reversed = 0;
        for (int b = 0; b < lengths[i]; ++b)
            reversed |= ((codes[i] >> b) & 1u) << (lengths[i] - 1 - b);
        codes[i] = reversed;
    }
    return codes;
}

// The run-length coded sequence of code lengths in a dynamic header.
struct LengthsHeader
{
    int literalCount = 257; // HLIT + 257
    int distanceCount = 1; // HDIST + 1
    int codeLengthCount = 4; // HCLEN + 4
    std::vector<uint8_t> symbols; // 0..18
    std::vector<uint8_t> extras; // the repeat count's extra bits, one per symbol
    std::array<uint32_t, kCodeLengthSymbols> counts {};
    std::array<uint8_t, kCodeLengthSymbols> lengths {};

    explicit LengthsHeader(const BlockCode &code)
    {
        literalCount = kLiteralLengthSymbols;
        while (literalCount > 257 && code.literalLength[size_t(literalCount - 1)] == 0)
            --literalCount;
        distanceCount = kDistanceSymbols;
        while (distanceCount > 1 && code.distance[size_t(distanceCount - 1)] == 0)
            --distanceCount;
        std::vector<uint8_t> all(code.literalLength.begin(), code.literalLength.begin() + literalCount);
        all.insert(all.end(), code.distance.begin(), code.distance.begin() + distanceCount);

        auto emit = [this](uint8_t symbol, uint8_t extra) {
            symbols.push_back(symbol);
            extras.push_back(extra);
            ++counts[symbol];
        };
        for (size_t i = 0; i < all.size();) {
            const uint8_t value = all[i];
            size_t run = 1;
            while (i + run < all.size() && all[i + run] == value)
                ++run;
            i += run;
            if (value == 0) {
                while (run >= 11) {
                    const size_t n = std::min<size_t>(run, 138);
                    emit(18, uint8_t(n - 11));
                    run -= n;
                }
                if (run >= 3) {
                    emit(17, uint8_t(run - 3));
                    run = 0;
                }
            } else {
                emit(value, 0);
                --run;
                while (run >= 3) {
                    const size_t n = std::min<size_t>(run, 6);
                    emit(16, uint8_t(n - 3));
                    run -= n;
                }
            }
            for (; run > 0; --run)
                emit(value, 0);
        }
        BuildCodeLengths(counts.data(), kCodeLengthSymbols, kMaxCodeLengthCodeLength, lengths.data());
        codeLengthCount = kCodeLengthSymbols;
        while (codeLengthCount > 4 && lengths[kCodeLengthOrder[size_t(codeLengthCount - 1)]] == 0)
            --codeLengthCount;
    }

    uint64_t bits() const
    {
        uint64_t total = 5 + 5 + 4 + 3 * uint64_t(codeLengthCount);
        static constexpr uint8_t kRepeatBits[3] = {2, 3, 7};
        for (int s = 0; s < kCodeLengthSymbols; ++s)
            total += uint64_t(counts[size_t(s)]) * (lengths[size_t(s)] + (s >= 16 ? kRepeatBits[s - 16] : 0));
        return total;
    }
};

uint64_t ExtraBits(const SymbolCounts &counts)
{
    uint64_t total = 0;
    for (int slot = 0; slot < 29; ++slot)
        total += uint64_t(counts.literalLength[size_t(257 + slot)]) * kLengthExtra[size_t(slot)];
    for (int slot = 0; slot < kDistanceSymbols; ++slot)
        total += uint64_t(counts.distance[size_t(slot)]) * kDistanceExtra[size_t(slot)];
    return total;
}

void PutSteps(BitSink &sink, const std::vector<Step> &steps, const uint8_t *literalBits,
    const uint32_t *literalCodes, const uint8_t *distanceBits, const uint32_t *distanceCodes)
{
    for (const Step &step : steps) {
        if (step.length == 0) {
            sink.put(literalCodes[step.value], literalBits[step.value]);
            continue;
        }
        const int slot = LengthSlot(step.length);
        sink.put(literalCodes[257 + slot], literalBits[257 + slot]);
        sink.put(step.length - kLengthBase[size_t(slot)], kLengthExtra[size_t(slot)]);
        const int dslot = DistanceSlot(step.value);
        sink.put(distanceCodes[dslot], distanceBits[dslot]);
        sink.put(step.value - kDistanceBase[size_t(dslot)], kDistanceExtra[size_t(dslot)]);
    }
    sink.put(literalCodes[kEndOfBlock], literalBits[kEndOfBlock]);
}

} // namespace

void WriteFinalStoredBlock(const uint8_t *data, size_t size, QByteArray &out)
{
    Q_ASSERT(size <= 0xFFFF);
    const auto len = uint16_t(size);
    const uint8_t head[5] = {0x01, uint8_t(len), uint8_t(len >> 8), uint8_t(~len), uint8_t(~len >> 8)};
    out.append(reinterpret_cast<const char *>(head), 5);
    out.append(reinterpret_cast<const char *>(data), qsizetype(size));
}

void WriteFinalBlock(const std::vector<Step> &steps, const SymbolCounts &counts, const BlockCode &code,
    const uint8_t *data, size_t size, QByteArray &out)
{
    const LengthsHeader header(code);
    const uint64_t extra = ExtraBits(counts);
    uint64_t dynamicBits = 3 + header.bits() + extra;
    uint64_t fixedBits = 3 + extra;
    for (int s = 0; s < kLiteralLengthSymbols; ++s) {
        dynamicBits += uint64_t(counts.literalLength[size_t(s)]) * code.literalLength[size_t(s)];
        fixedBits += uint64_t(counts.literalLength[size_t(s)]) * uint64_t(FixedLiteralLengthBits(s));
    }
    for (int s = 0; s < kDistanceSymbols; ++s) {
        dynamicBits += uint64_t(counts.distance[size_t(s)]) * code.distance[size_t(s)];
        fixedBits += uint64_t(counts.distance[size_t(s)]) * 5;
    }
    const uint64_t storedBytes = size <= 0xFFFF ? size + 5 : UINT64_MAX;
    const uint64_t dynamicBytes = (dynamicBits + 7) / 8;
    const uint64_t fixedBytes = (fixedBits + 7) / 8;

    const qsizetype start = out.size();
    if (storedBytes <= dynamicBytes && storedBytes <= fixedBytes) {
        WriteFinalStoredBlock(data, size, out);
        return;
    }
    // Four spare bytes: the sink stores whole words.
    const uint64_t bytes = std::min(dynamicBytes, fixedBytes);
    out.resize(start + qsizetype(bytes) + 4);
    BitSink sink(reinterpret_cast<uint8_t *>(out.data() + start));
    if (fixedBytes < dynamicBytes) {
        std::array<uint8_t, 288> literalBits {};
        for (int s = 0; s < 288; ++s)
            literalBits[size_t(s)] = uint8_t(FixedLiteralLengthBits(s));
        std::array<uint8_t, 30> distanceBits {};
        distanceBits.fill(5);
        const auto literalCodes = ReversedCodes(literalBits);
        const auto distanceCodes = ReversedCodes(distanceBits);
        sink.put(1 | 1u << 1, 3); // final, fixed codes
        PutSteps(
            sink, steps, literalBits.data(), literalCodes.data(), distanceBits.data(), distanceCodes.data());
    } else {
        sink.put(1 | 2u << 1, 3); // final, dynamic codes
        sink.put(uint32_t(header.literalCount - 257), 5);
        sink.put(uint32_t(header.distanceCount - 1), 5);
        sink.put(uint32_t(header.codeLengthCount - 4), 4);
        for (int i = 0; i < header.codeLengthCount; ++i)
            sink.put(header.lengths[kCodeLengthOrder[size_t(i)]], 3);
        const auto lengthCodes = ReversedCodes(header.lengths);
        static constexpr uint8_t kRepeatBits[3] = {2, 3, 7};
        for (size_t i = 0; i < header.symbols.size(); ++i) {
            const uint8_t s = header.symbols[i];
            sink.put(lengthCodes[s], header.lengths[s]);
            if (s >= 16)
                sink.put(header.extras[i], kRepeatBits[s - 16]);
        }
        const auto literalCodes = ReversedCodes(code.literalLength);
        const auto distanceCodes = ReversedCodes(code.distance);
        PutSteps(sink, steps, code.literalLength.data(), literalCodes.data(), code.distance.data(),
            distanceCodes.data());
    }
    const uint8_t *end = sink.finish();
    out.resize(qsizetype(end - reinterpret_cast<const uint8_t *>(out.constData())));
    Q_ASSERT(uint64_t(out.size() - start) == bytes);
}

} // namespace qb::cabmaker::deflate
