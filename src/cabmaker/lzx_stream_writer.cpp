// LZX block writing: pretree-coded length deltas, the three trees, symbols and footers.
#include "cabmaker/lzx_stream_writer.h"

#include "cabmaker/huffman_code.h"

namespace qb::cabmaker::lzx {

void Stats::add(const Item &item)
{
    if (item.length == 0) {
        ++main[item.value];
        return;
    }
    const int slot = item.value < 3 ? int(item.value) : SlotOf(item.value);
    ++main[size_t(MainSymbol(slot, int(item.length)))];
    if (int(item.length) - kMinMatch >= kNumPrimaryLengths)
        ++length[item.length - kMinMatch - kNumPrimaryLengths];
    if (item.value < 3)
        return;
    const int extra = SlotExtraBits(slot);
    extraBits += uint64_t(extra);
    if (extra >= 3) {
        ++aligned[(item.value - SlotBase(slot)) & 7];
        extraBitsAboveAligned += uint64_t(extra - 3);
    } else {
        extraBitsAboveAligned += uint64_t(extra);
    }
}

void Stats::add(const Stats &other)
{
    for (size_t i = 0; i < main.size(); ++i)
        main[i] += other.main[i];
    for (size_t i = 0; i < length.size(); ++i)
        length[i] += other.length[i];
    for (size_t i = 0; i < aligned.size(); ++i)
        aligned[i] += other.aligned[i];
    extraBits += other.extraBits;
    extraBitsAboveAligned += other.extraBitsAboveAligned;
}

StreamWriter::StreamWriter(int windowBits, bool e8Translation, uint32_t e8Size)
    : m_mainSymbols(kNumChars + PositionSlots(windowBits) * 8)
    , m_e8(e8Translation)
    , m_e8Size(e8Size)
{ }

namespace {

struct TreeToken
{
    uint8_t symbol;
    uint8_t extraBits;
    uint8_t extra;
    uint8_t second; // the delta symbol that follows a run of equal lengths (symbol 19)
};

// The pretree tokens that turn `previous` into `lengths`.
void tokenize(const uint8_t *previous, const uint8_t *lengths, int count, std::vector<TreeToken> &tokens)
{
    auto delta = [&](int i, int value) { return uint8_t((previous[i] - value + 17) % 17); };
    int i = 0;
    while (i < count) {
        const int value = lengths[i];
        int run = 1;
        while (i + run < count && lengths[i + run] == value && run < (value == 0 ? 51 : 5))
            ++run;
        if (value == 0 && run >= 20) {
            tokens.push_back({18, 5, uint8_t(run - 20), 0});
        } else if (value == 0 && run >= 4) {
            tokens.push_back({17, 4, uint8_t(run - 4), 0});
        } else if (value != 0 && run >= 4) {
            tokens.push_back({19, 1, uint8_t(run - 4), delta(i, value)});
        } else {
            run = 1;
            tokens.push_back({delta(i, value), 0, 0, 0});
        }
        i += run;
    }
}

} // namespace

void StreamWriter::writeTree(
    const uint8_t *previous, const uint8_t *lengths, int count, BitWriter *out, uint64_t *cost) const
{
    std::vector<TreeToken> tokens;
    tokens.reserve(size_t(count));
    tokenize(previous, lengths, count, tokens);
    uint32_t frequencies[kPretreeSymbols] = {};
    for (const TreeToken &t : tokens) {
        ++frequencies[t.symbol];
        if (t.symbol == 19)
            ++frequencies[t.second];
    }
    uint8_t pretree[kPretreeSymbols];
    BuildCodeLengths(frequencies, kPretreeSymbols, kMaxPretreeLength, pretree);
    uint32_t codes[kPretreeSymbols];
    BuildCanonicalCodes(pretree, kPretreeSymbols, codes);
    if (cost) {
        uint64_t bits = uint64_t(kPretreeSymbols) * 4;
        for (const TreeToken &t : tokens) {
            bits += pretree[t.symbol] + t.extraBits;
            if (t.symbol == 19)
                bits += pretree[t.second];
        }
        *cost = bits;
    }
    if (!out)
        return;
    for (int s = 0; s < kPretreeSymbols; ++s)
        out->put(pretree[s], 4);
    for (const TreeToken &t : tokens) {
        out->put(codes[t.symbol], pretree[t.symbol]);
        out->put(t.extra, t.extraBits);
        if (t.symbol == 19)
            out->put(codes[t.second], pretree[t.second]);
    }
}

uint64_t StreamWriter::treeBits(const uint8_t *previous, const uint8_t *lengths, int count) const
{
    uint64_t bits = 0;
    writeTree(previous, lengths, count, nullptr, &bits);
    return bits;
}

StreamWriter::Plan StreamWriter::plan(const Stats &stats) const
{
    Plan plan;
    BuildCodeLengths(stats.main.data(), m_mainSymbols, kMaxCodeLength, plan.trees.main.data());
    BuildCodeLengths(stats.length.data(), kNumSecondaryLengths, kMaxCodeLength, plan.trees.length.data());
    BuildCodeLengths(stats.aligned.data(), kAlignedSymbols, kMaxAlignedLength, plan.trees.aligned.data());

    uint64_t symbols = 0;
    for (int s = 0; s < m_mainSymbols; ++s)
        symbols += uint64_t(stats.main[size_t(s)]) * plan.trees.main[size_t(s)];
    for (int s = 0; s < kNumSecondaryLengths; ++s)
        symbols += uint64_t(stats.length[size_t(s)]) * plan.trees.length[size_t(s)];
    uint64_t alignedSymbols = 0;
    for (int s = 0; s < kAlignedSymbols; ++s)
        alignedSymbols += uint64_t(stats.aligned[size_t(s)]) * plan.trees.aligned[size_t(s)];

    const uint64_t trees = treeBits(m_previousMain.data(), plan.trees.main.data(), kNumChars)
        + treeBits(
            m_previousMain.data() + kNumChars, plan.trees.main.data() + kNumChars, m_mainSymbols - kNumChars)
        + treeBits(m_previousLength.data(), plan.trees.length.data(), kNumSecondaryLengths);
    const uint64_t header = 3 + 24 + (m_headerWritten ? 0 : (m_e8 ? 33 : 1));
    const uint64_t verbatim = header + trees + symbols + stats.extraBits;
    const uint64_t aligned = header + 24 + trees + symbols + alignedSymbols + stats.extraBitsAboveAligned;
    bool anyAligned = false;
    for (uint32_t f : stats.aligned)
        anyAligned = anyAligned || f > 0;
    if (anyAligned && aligned < verbatim) {
        plan.type = kBlockAligned;
        plan.bits = aligned;
    } else {
        plan.type = kBlockVerbatim;
        plan.bits = verbatim;
    }
    return plan;
}

void StreamWriter::writeHeaderOnce()
{
    if (m_headerWritten)
        return;
    m_headerWritten = true;
    m_bits.put(m_e8 ? 1 : 0, 1);
    if (m_e8) {
        m_bits.put(m_e8Size >> 16, 16);
        m_bits.put(m_e8Size & 0xFFFF, 16);
    }
}

void StreamWriter::writeBlock(const Plan &plan, const std::vector<const std::vector<Item> *> &frameItems,
    const std::vector<uint32_t> &frameSizes, std::vector<std::vector<uint8_t>> &frames)
{
    writeHeaderOnce();
    uint32_t total = 0;
    for (uint32_t size : frameSizes)
        total += size;
    const bool alignedBlock = plan.type == kBlockAligned;
    m_bits.put(uint32_t(plan.type), 3);
    m_bits.put(total >> 8, 16);
    m_bits.put(total & 0xFF, 8);
    if (alignedBlock) {
        for (int s = 0; s < kAlignedSymbols; ++s)
            m_bits.put(plan.trees.aligned[size_t(s)], 3);
    }
    writeTree(m_previousMain.data(), plan.trees.main.data(), kNumChars, &m_bits, nullptr);
    writeTree(m_previousMain.data() + kNumChars, plan.trees.main.data() + kNumChars,
        m_mainSymbols - kNumChars, &m_bits, nullptr);
    writeTree(m_previousLength.data(), plan.trees.length.data(), kNumSecondaryLengths, &m_bits, nullptr);
    m_previousMain = plan.trees.main;
    m_previousLength = plan.trees.length;

    std::array<uint32_t, kMaxMainSymbols> mainCodes {};
    std::array<uint32_t, kNumSecondaryLengths> lengthCodes {};
    std::array<uint32_t, kAlignedSymbols> alignedCodes {};
    BuildCanonicalCodes(plan.trees.main.data(), m_mainSymbols, mainCodes.data());
    BuildCanonicalCodes(plan.trees.length.data(), kNumSecondaryLengths, lengthCodes.data());
    BuildCanonicalCodes(plan.trees.aligned.data(), kAlignedSymbols, alignedCodes.data());
    const auto &mainLengths = plan.trees.main;
    const auto &lengthLengths = plan.trees.length;
    const auto &alignedLengths = plan.trees.aligned;

    for (const std::vector<Item> *items : frameItems) {
        for (const Item &item : *items) {
            if (item.length == 0) {
                m_bits.put(mainCodes[item.value], mainLengths[item.value]);
                continue;
            }
            const int slot = item.value < 3 ? int(item.value) : SlotOf(item.value);
            const size_t symbol = size_t(MainSymbol(slot, int(item.length)));
            m_bits.put(mainCodes[symbol], mainLengths[symbol]);
            if (int(item.length) - kMinMatch >= kNumPrimaryLengths) {
                const size_t l = item.length - kMinMatch - kNumPrimaryLengths;
                m_bits.put(lengthCodes[l], lengthLengths[l]);
            }
            if (item.value < 3)
                continue;
            const int extra = SlotExtraBits(slot);
            const uint32_t footer = item.value - SlotBase(slot);
            if (alignedBlock && extra >= 3) {
                m_bits.put(footer >> 3, extra - 3);
                m_bits.put(alignedCodes[footer & 7], alignedLengths[footer & 7]);
            } else {
                m_bits.put(footer, extra);
            }
        }
        // Decoders realign to 16 bits at every frame's end.
        m_bits.align();
        frames.push_back(m_bits.take());
    }
}

void StreamWriter::writeUncompressed(const uint8_t *data, uint32_t size,
    const std::array<uint32_t, 3> &repeats, std::vector<std::vector<uint8_t>> &frames)
{
    writeHeaderOnce();
    m_bits.put(kBlockUncompressed, 3);
    m_bits.put(size >> 8, 16);
    m_bits.put(size & 0xFF, 8);
    // One to sixteen bits of padding: a whole word when the stream is already on a boundary.
    if (m_bits.aligned())
        m_bits.put(0, 16);
    else
        m_bits.align();
    for (uint32_t r : repeats)
        m_bits.putLittle32(r);
    m_bits.putBytes(data, size);
    if (size & 1) {
        const uint8_t pad = 0;
        m_bits.putBytes(&pad, 1);
    }
    frames.push_back(m_bits.take());
}

} // namespace qb::cabmaker::lzx
