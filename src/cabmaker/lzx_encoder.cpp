// The LZX encoder: E8 translation, parsing frame by frame (lazy or near-optimal), frames
// grouped into blocks by cost, and frames that won't shrink stored as they are.
#include "cabmaker/lzx_encoder.h"

#include "cabmaker/huffman_code.h"
#include "cabmaker/lzx_match_pipeline.h"
#include "cabmaker/lzx_stream_writer.h"
#include "cabmaker/match_finder.h"
#include "util/cab_format.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>

namespace qb::cabmaker {

using namespace lzx;

namespace {

constexpr uint32_t kChunkBytes = 2u << 20; // parsed and grouped into blocks at once
constexpr uint32_t kPadding = 16; // readable bytes behind the data, for 8-byte compares

struct LevelParams
{
    int depth; // hash chain links walked per search
    uint32_t nice; // a match this long is taken at once
    int lazy; // positions looked ahead before taking a match (lazy levels)
    int passes; // near-optimal passes; 0 for lazy parsing
    int maxBlockFrames;
};

constexpr LevelParams kLevels[] = {
    {0, 0, 0, 0, 0}, // unused
    {12, 56, 1, 0, 16}, // 1: fast
    {16, 64, 1, 0, 16}, //
    {32, 96, 1, 0, 32}, //
    {48, 128, 2, 0, 64}, //
    {4, 16, 0, 1, 64}, // 5: near-optimal from here on
    {8, 32, 0, 1, 64}, //
    {12, 48, 0, 1, 64}, // 7: the default
    {32, 128, 0, 2, 64}, //
    {128, 257, 0, 3, 64}, // 9: best
};

// Estimated bit costs of literals and matches, from the last trees or from defaults.
struct CostModel
{
    std::array<uint32_t, kMaxMainSymbols> main {};
    std::array<uint32_t, kNumSecondaryLengths> length {};
    std::array<uint32_t, kAlignedSymbols> aligned {};
    bool alignedBlocks = false;

    CostModel()
    {
        for (int s = 0; s < kMaxMainSymbols; ++s)
            main[size_t(s)] = s < kNumChars ? 8 : 10 + uint32_t((s - kNumChars) / 8) / 6;
        length.fill(8);
        aligned.fill(3);
    }

    void learn(const Trees &trees, int mainSymbols, bool alignedBlock)
    {
        // An unused symbol may be used next time; price it like a rare one.
        for (int s = 0; s < mainSymbols; ++s)
            main[size_t(s)] = trees.main[size_t(s)] ? trees.main[size_t(s)] : 15;
        for (int s = 0; s < kNumSecondaryLengths; ++s)
            length[size_t(s)] = trees.length[size_t(s)] ? trees.length[size_t(s)] : 14;
        for (int s = 0; s < kAlignedSymbols; ++s)
            aligned[size_t(s)] = trees.aligned[size_t(s)] ? trees.aligned[size_t(s)] : 6;
        alignedBlocks = alignedBlock;
    }

    uint32_t literal(uint8_t byte) const { return main[byte]; }

    // The bits of a match's offset footer, which don't depend on its length.
    uint32_t footer(uint32_t code, int slot) const
    {
        if (code < 3)
            return 0;
        const uint32_t extra = SlotExtraBits(slot);
        if (alignedBlocks && extra >= 3)
            return extra - 3 + aligned[(code - SlotBase(slot)) & 7];
        return extra;
    }

    // The bits of the main and length symbols of a match of this length in this slot.
    uint32_t lengthPart(int slot, uint32_t length_) const
    {
        uint32_t bits = main[size_t(MainSymbol(slot, int(length_)))];
        if (int(length_) - kMinMatch >= kNumPrimaryLengths)
            bits += length[length_ - kMinMatch - kNumPrimaryLengths];
        return bits;
    }

    uint32_t match(uint32_t length_, uint32_t code) const
    {
        const int slot = code < 3 ? int(code) : SlotOf(code);
        uint32_t bits = main[size_t(MainSymbol(slot, int(length_)))];
        if (int(length_) - kMinMatch >= kNumPrimaryLengths)
            bits += length[length_ - kMinMatch - kNumPrimaryLengths];
        if (code >= 3) {
            const uint32_t extra = SlotExtraBits(slot);
            if (alignedBlocks && extra >= 3)
                bits += extra - 3 + aligned[(code - SlotBase(slot)) & 7];
            else
                bits += extra;
        }
        return bits;
    }
};

struct Repeats
{
    std::array<uint32_t, 3> r {1, 1, 1};

    // The offset code of a distance: a repeated slot when it is one, else distance + 2.
    uint32_t code(uint32_t distance) const
    {
        for (uint32_t k = 0; k < 3; ++k)
            if (r[k] == distance)
                return k;
        return distance + 2;
    }
    void apply(uint32_t code)
    {
        if (code == 0)
            return;
        if (code < 3) {
            std::swap(r[0], r[code]);
        } else {
            r[2] = r[1];
            r[1] = r[0];
            r[0] = code - 2;
        }
    }
};

uint32_t load32(const uint8_t *p)
{
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

void store32(uint8_t *p, uint32_t v)
{
    p[0] = uint8_t(v);
    p[1] = uint8_t(v >> 8);
    p[2] = uint8_t(v >> 16);
    p[3] = uint8_t(v >> 24);
}

// Rewrites the operands of 0xE8 bytes of one frame from relative to absolute, the inverse of
// what decoders do to their output: only in the first 1 GiB and never in a frame's last 10 bytes.
void translateFrame(uint8_t *p, uint32_t size, uint64_t framePosition, int32_t translationSize)
{
    if (size <= 10 || framePosition >= (uint64_t(1) << 30))
        return;
    for (uint32_t i = 0; i < size - 10;) {
        if (p[i] != 0xE8) {
            ++i;
            continue;
        }
        const int64_t current = int64_t(framePosition) + i;
        const auto relative = int32_t(load32(p + i + 1));
        if (relative >= -current && relative < translationSize) {
            const int64_t absolute
                = relative < translationSize - current ? relative + current : relative - translationSize;
            store32(p + i + 1, uint32_t(int32_t(absolute)));
        }
        i += 5;
    }
}

} // namespace

// Runs on the caller's thread and owns everything here but the near-optimal levels' match
// finder, which lives on its own thread inside m_pipeline and hands over matches through its ring.
class LzxEncoder::Impl
{
public:
    explicit Impl(const LzxOptions &options)
        : m_windowBits(std::clamp(options.windowBits, 15, 21))
        , m_window(1u << m_windowBits)
        , m_params(kLevels[options.level >= 1 && options.level <= 9 ? options.level : kLzxDefaultLevel])
        , m_e8(options.e8Translation)
        , m_capacity(m_window + kChunkBytes)
        , m_buffer(m_capacity + kPadding, 0)
        , m_writer(m_windowBits, options.e8Translation, kLzxE8TranslationSize)
        , m_chains(m_params.passes > 0 ? 1 : m_capacity, hashBits())
    {
        if (m_params.passes > 0)
            m_pipeline.emplace(m_capacity, hashBits(), distanceLimit(), m_params.nice, m_params.depth);
    }

    size_t peakMemory() const
    {
        return m_buffer.size() + m_chains.memoryBytes() + (m_pipeline ? m_pipeline->memoryBytes() : 0);
    }

    void encode(const uint8_t *data, size_t size, bool last, std::vector<EncodedBlock> &out)
    {
        while (size > 0 || last) {
            const auto take = uint32_t(std::min<size_t>(size, kChunkBytes));
            const bool final = last && take == size;
            encodeChunk(data, take, final, out);
            data += take;
            size -= take;
            if (final)
                break;
        }
    }

private:
    int hashBits() const { return m_windowBits >= 19 ? 17 : 16; }

    // Keeps the last window of data to make room for `incoming` bytes; returns how many bytes
    // left the front.
    uint32_t makeRoom(uint32_t incoming)
    {
        if (m_size + incoming <= m_capacity)
            return 0;
        const uint32_t keep = std::min(m_size, m_window);
        const uint32_t drop = m_size - keep;
        std::memmove(m_buffer.data(), m_buffer.data() + drop, keep);
        // The pipeline's finder rebases itself on its own thread when the next chunk starts.
        if (!m_pipeline) {
            m_chains.rebase(drop, keep);
            m_inserted -= std::min(m_inserted, drop);
        }
        m_size = keep;
        m_bufferStart += drop;
        return drop;
    }

    void insertUpTo(uint32_t position)
    {
        const uint32_t limit = std::min(position, m_size >= 3 ? m_size - 2 : 0);
        for (; m_inserted < limit; ++m_inserted)
            m_chains.insert(m_buffer.data(), m_inserted);
    }

    // The format reaches 2^w - 3 back, but one widely used decoder copies wrongly from exactly
    // there; a byte less costs nothing worth having.
    uint32_t distanceLimit() const { return m_window - 4; }
    uint32_t maxDistance(uint32_t pos) const { return std::min(distanceLimit(), pos); }

    // The longest repeated-offset match at pos: its slot (0..2) and length, length 0 if none.
    void bestRepeat(
        const Repeats &reps, uint32_t pos, uint32_t maxLength, uint32_t &slot, uint32_t &length) const
    {
        length = 0;
        slot = 0;
        const uint8_t *here = m_buffer.data() + pos;
        for (uint32_t k = 0; k < 3; ++k) {
            const uint32_t d = reps.r[k];
            if (d > maxDistance(pos))
                continue;
            const uint32_t n = MatchLength(here, here - d, maxLength);
            if (n > length) {
                length = n;
                slot = k;
            }
        }
    }

    // The best choice at pos by estimated saving: a repeat or a plain match, or length 0.
    Item bestItem(const Repeats &reps, uint32_t pos, uint32_t end, int64_t &saving)
    {
        const uint32_t maxLength = std::min<uint32_t>(kMaxMatch, end - pos);
        saving = 0;
        Item best {};
        if (maxLength < kMinMatch)
            return best;
        uint32_t repSlot;
        uint32_t repLength;
        bestRepeat(reps, pos, maxLength, repSlot, repLength);
        Match found;
        insertUpTo(pos);
        if (repLength < m_params.nice)
            m_chains.find(m_buffer.data(), pos, maxLength, maxDistance(pos), m_params.depth, found);
        auto consider = [&](uint32_t length, uint32_t code) {
            if (length < kMinMatch)
                return;
            const int64_t literals
                = int64_t(m_literalPrefix[pos + length - m_frameStart] - m_literalPrefix[pos - m_frameStart]);
            const int64_t gain = literals - int64_t(m_cost.match(length, code));
            if (gain > saving) {
                saving = gain;
                best = {length, code};
            }
        };
        consider(repLength, repSlot);
        if (found.length > 0)
            consider(found.length, reps.code(found.distance));
        return best;
    }

    // Lazy parsing of one frame.
    void parseLazy(uint32_t start, uint32_t end, Repeats &reps, std::vector<Item> &items)
    {
        // Running sums of literal costs, so that pricing a match as literals takes two reads.
        m_frameStart = start;
        m_literalPrefix.resize(end - start + 1);
        m_literalPrefix[0] = 0;
        for (uint32_t i = start; i < end; ++i)
            m_literalPrefix[i - start + 1] = m_literalPrefix[i - start] + m_cost.literal(m_buffer[i]);
        uint32_t pos = start;
        while (pos < end) {
            int64_t saving;
            Item item = bestItem(reps, pos, end, saving);
            if (item.length == 0) {
                items.push_back(Literal(m_buffer[pos]));
                ++pos;
                continue;
            }
            // Look ahead: a better match one or two bytes on is worth the literals before it.
            for (int step = 1;
                 step <= m_params.lazy && item.length < m_params.nice && pos + uint32_t(step) < end; ++step) {
                int64_t laterSaving;
                const Item later = bestItem(reps, pos + uint32_t(step), end, laterSaving);
                const int64_t literals
                    = int64_t(m_literalPrefix[pos + uint32_t(step) - start] - m_literalPrefix[pos - start]);
                if (later.length > 0 && laterSaving - literals > saving) {
                    for (int i = 0; i < step; ++i)
                        items.push_back(Literal(m_buffer[pos + uint32_t(i)]));
                    pos += uint32_t(step);
                    item = later;
                    saving = laterSaving;
                    step = 0;
                }
            }
            items.push_back(item);
            reps.apply(item.value);
            pos += item.length;
        }
        insertUpTo(end);
    }

    // Near-optimal parsing of one frame: the cheapest path by the cost model, passes times,
    // each pass pricing with the code lengths the one before produced.
    void parseOptimal(
        uint32_t start, uint32_t end, const FrameMatches &found, Repeats &reps, std::vector<Item> &items)
    {
        const Repeats startReps = reps;
        CostModel cost = m_cost;
        for (int pass = 0; pass < m_params.passes; ++pass) {
            items.clear();
            reps = startReps;
            optimalPath(start, end, found, cost, reps, items);
            if (pass + 1 < m_params.passes) {
                Stats stats;
                for (const Item &item : items)
                    stats.add(item);
                const StreamWriter::Plan plan = m_writer.plan(stats);
                cost.learn(plan.trees, m_writer.mainSymbols(), plan.type == kBlockAligned);
            }
        }
    }

    void optimalPath(uint32_t start, uint32_t end, const FrameMatches &found, const CostModel &cost,
        Repeats &reps, std::vector<Item> &items)
    {
        const uint32_t n = end - start;
        constexpr uint32_t kInfinite = std::numeric_limits<uint32_t>::max();
        m_nodeCost.assign(n + 1, kInfinite);
        m_nodeFrom.assign(n + 1, 0);
        m_nodeItem.assign(n + 1, Item {});
        m_nodeReps.resize(n + 1);
        m_nodeCost[0] = 0;
        m_nodeReps[0] = reps;
        // Relaxes matches of lengths lo..hi with one offset code from node i.
        auto relaxMatches
            = [&](uint32_t i, uint32_t lo, uint32_t hi, uint32_t code, const Repeats &state, uint32_t base) {
                  const int slot = code < 3 ? int(code) : SlotOf(code);
                  const uint32_t fixed = base + cost.footer(code, slot);
                  Repeats next = state;
                  next.apply(code);
                  for (uint32_t l = lo; l <= hi; ++l) {
                      const uint32_t c = fixed + cost.lengthPart(slot, l);
                      if (c < m_nodeCost[i + l]) {
                          m_nodeCost[i + l] = c;
                          m_nodeFrom[i + l] = i;
                          m_nodeItem[i + l] = Item {l, code};
                          m_nodeReps[i + l] = next;
                      }
                  }
              };
        for (uint32_t i = 0; i < n; ++i) {
            if (m_nodeCost[i] == kInfinite)
                continue;
            const uint32_t pos = start + i;
            const uint32_t base = m_nodeCost[i];
            const Repeats state = m_nodeReps[i];
            const uint32_t literalCost = base + cost.literal(m_buffer[pos]);
            if (literalCost < m_nodeCost[i + 1]) {
                m_nodeCost[i + 1] = literalCost;
                m_nodeFrom[i + 1] = i;
                m_nodeItem[i + 1] = Literal(m_buffer[pos]);
                m_nodeReps[i + 1] = state;
            }
            const uint32_t maxLength = std::min<uint32_t>(kMaxMatch, n - i);
            if (maxLength < kMinMatch)
                continue;
            uint32_t longest = 0;
            for (uint32_t k = 0; k < 3; ++k) {
                const uint32_t d = state.r[k];
                if (d > maxDistance(pos) || (k > 0 && (d == state.r[0] || (k == 2 && d == state.r[1]))))
                    continue;
                const uint32_t length
                    = MatchLength(m_buffer.data() + pos, m_buffer.data() + pos - d, maxLength);
                if (length >= kMinMatch)
                    relaxMatches(i, kMinMatch, length, k, state, base);
                longest = std::max(longest, length);
            }
            uint32_t previous = kMinMatch - 1;
            for (uint32_t m = found.index[i]; m < found.index[i + 1]; ++m) {
                const Match &match = found.matches[m];
                if (match.length > previous)
                    relaxMatches(i, previous + 1, match.length, state.code(match.distance), state, base);
                previous = std::max(previous, match.length);
                longest = std::max(longest, match.length);
            }
            // A very long match is taken as it is; the positions inside it are not expanded.
            if (longest >= m_params.nice) {
                const uint32_t target = i + longest;
                for (uint32_t j = i + 1; j < target; ++j)
                    m_nodeCost[j] = kInfinite;
                i = target - 1;
            }
        }
        // Walk back from the end, then emit forward.
        m_path.clear();
        for (uint32_t at = n; at > 0; at = m_nodeFrom[at])
            m_path.push_back(m_nodeItem[at]);
        for (auto it = m_path.rbegin(); it != m_path.rend(); ++it) {
            items.push_back(*it);
            if (it->length)
                reps.apply(it->value);
        }
    }

    void encodeChunk(const uint8_t *data, uint32_t size, bool last, std::vector<EncodedBlock> &out)
    {
        const uint32_t dropped = makeRoom(size);
        const uint32_t begin = m_size;
        if (size > 0)
            std::memcpy(m_buffer.data() + begin, data, size);
        m_size += size;
        std::memset(m_buffer.data() + m_size, 0, kPadding);

        struct Frame
        {
            uint32_t start = 0;
            uint32_t size = 0;
            bool stored = false;
            std::vector<Item> items;
            Stats stats;
            std::array<uint32_t, 3> repeatsBefore {};
        };
        std::vector<Frame> frames;
        for (uint32_t at = begin; at < m_size; at += kFrameSize) {
            Frame frame;
            frame.start = at;
            frame.size = std::min<uint32_t>(kFrameSize, m_size - at);
            if (m_e8)
                translateFrame(
                    m_buffer.data() + at, frame.size, m_bufferStart + at, int32_t(kLzxE8TranslationSize));
            frames.push_back(std::move(frame));
        }

        // The window holds the whole chunk now and stays as it is until the finder has finished.
        if (m_pipeline)
            m_pipeline->start(m_buffer.data(), begin, m_size, dropped);
        for (size_t k = 0; k < frames.size(); ++k) {
            Frame &frame = frames[k];
            frame.repeatsBefore = m_reps.r;
            Repeats reps = m_reps;
            if (m_pipeline) {
                parseOptimal(frame.start, frame.start + frame.size, m_pipeline->take(k), reps, frame.items);
                m_pipeline->release(k);
            } else {
                parseLazy(frame.start, frame.start + frame.size, reps, frame.items);
            }
            for (const Item &item : frame.items)
                frame.stats.add(item);
            const StreamWriter::Plan alone = m_writer.plan(frame.stats);
            frame.stored = alone.bits >= StreamWriter::uncompressedBits(frame.size);
            // A stored frame leaves the repeated offsets as they were before it.
            if (!frame.stored) {
                m_reps = reps;
                m_cost.learn(alone.trees, m_writer.mainSymbols(), alone.type == kBlockAligned);
            }
        }
        if (m_pipeline)
            m_pipeline->finish();

        // Neighbouring frames share a block while one block costs less than two.
        std::vector<std::vector<uint8_t>> written;
        size_t f = 0;
        while (f < frames.size()) {
            if (frames[f].stored) {
                m_writer.writeUncompressed(
                    m_buffer.data() + frames[f].start, frames[f].size, frames[f].repeatsBefore, written);
                ++f;
                continue;
            }
            Stats group = frames[f].stats;
            StreamWriter::Plan plan = m_writer.plan(group);
            size_t g = f + 1;
            while (g < frames.size() && !frames[g].stored && int(g - f) < m_params.maxBlockFrames) {
                Stats merged = group;
                merged.add(frames[g].stats);
                const StreamWriter::Plan together = m_writer.plan(merged);
                const StreamWriter::Plan apart = m_writer.plan(frames[g].stats);
                if (together.bits > plan.bits + apart.bits)
                    break;
                group = merged;
                plan = together;
                ++g;
            }
            std::vector<const std::vector<Item> *> items;
            std::vector<uint32_t> sizes;
            for (size_t k = f; k < g; ++k) {
                items.push_back(&frames[k].items);
                sizes.push_back(frames[k].size);
            }
            m_writer.writeBlock(plan, items, sizes, written);
            m_cost.learn(plan.trees, m_writer.mainSymbols(), plan.type == kBlockAligned);
            f = g;
        }
        for (size_t k = 0; k < frames.size(); ++k) {
            EncodedBlock block;
            block.payload
                = QByteArray(reinterpret_cast<const char *>(written[k].data()), qsizetype(written[k].size()));
            block.uncompressedSize = quint16(frames[k].size);
            out.push_back(std::move(block));
        }
        Q_UNUSED(last);
    }

    int m_windowBits;
    uint32_t m_window;
    LevelParams m_params;
    bool m_e8;
    uint32_t m_capacity;
    // The window. The finder thread reads it while a chunk is parsed, so it changes only between.
    std::vector<uint8_t> m_buffer;
    uint32_t m_size = 0;
    uint64_t m_bufferStart = 0;
    StreamWriter m_writer;
    Repeats m_reps;
    CostModel m_cost;

    // The lazy levels find their own matches as they parse.
    MatchFinder m_chains;
    uint32_t m_inserted = 0; // positions before this are in the chains
    std::vector<uint32_t> m_literalPrefix;
    uint32_t m_frameStart = 0;

    // The near-optimal levels: their match finder, and the parser's scratch kept between frames.
    std::optional<MatchPipeline> m_pipeline;
    std::vector<uint32_t> m_nodeCost;
    std::vector<uint32_t> m_nodeFrom;
    std::vector<Item> m_nodeItem;
    std::vector<Repeats> m_nodeReps;
    std::vector<Item> m_path;
};

LzxEncoder::LzxEncoder(const LzxOptions &options)
    : m_impl(std::make_unique<Impl>(options))
    , m_windowBits(std::clamp(options.windowBits, 15, 21))
{ }

LzxEncoder::~LzxEncoder() = default;

quint16 LzxEncoder::compressionType() const
{
    return cab::lzxCompressionType(m_windowBits);
}

void LzxEncoder::encode(const unsigned char *data, size_t size, bool last, std::vector<EncodedBlock> &out)
{
    m_impl->encode(data, size, last, out);
}

size_t LzxEncoder::peakMemory() const
{
    return m_impl->peakMemory();
}

std::vector<EncodedBlock> LzxCompressBuffer(const unsigned char *data, size_t size, const LzxOptions &options)
{
    LzxEncoder encoder(options);
    std::vector<EncodedBlock> blocks;
    encoder.encode(data, size, true, blocks);
    return blocks;
}

} // namespace qb::cabmaker
