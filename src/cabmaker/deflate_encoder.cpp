// Near-optimal deflate parsing: every match the tree reports is priced at every length up to
// its own, from the block's end backwards, with costs learned from the previous parse.
#include "cabmaker/deflate_encoder.h"

#include "cabmaker/deflate_block_writer.h"
#include "cabmaker/match_finder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace qb::cabmaker {

using namespace deflate;

namespace {

constexpr uint32_t kWindow = kMaxDistance;
constexpr uint32_t kCapacity = 2 * kWindow;
constexpr int kHashBits = 15;
constexpr uint32_t kMaxReach = kMaxDistance;
// What a symbol absent from the last code is taken to cost: rare, but not out of reach.
constexpr uint32_t kAbsentSymbolBits = 9;

// A length packed below a cost (see parse()); costs of a block stay far below 2^22 bits.
constexpr int kLengthBits = 9;
constexpr uint32_t kLengthMask = (1u << kLengthBits) - 1;
static_assert(kMaxMatch <= kLengthMask);

// Bits each choice costs, extra bits included.
struct CostModel
{
    std::array<uint32_t, 256> literal {};
    std::array<int32_t, kMaxMatch + 1> length {};
    std::array<uint32_t, kDistanceSymbols> distance {};

    void learn(const BlockCode &code)
    {
        auto bits = [](uint8_t l) { return l ? uint32_t(l) : kAbsentSymbolBits; };
        for (int b = 0; b < 256; ++b)
            literal[size_t(b)] = bits(code.literalLength[size_t(b)]);
        for (uint32_t l = kMinMatch; l <= kMaxMatch; ++l) {
            const int slot = LengthSlot(l);
            length[l] = int32_t(bits(code.literalLength[size_t(257 + slot)]) + kLengthExtra[size_t(slot)]);
        }
        for (int slot = 0; slot < kDistanceSymbols; ++slot)
            distance[size_t(slot)] = bits(code.distance[size_t(slot)]) + kDistanceExtra[size_t(slot)];
    }
    uint32_t distanceCost(uint32_t d) const { return distance[DistanceSlot(d)]; }
};

} // namespace

// Whether the bytes' own statistics leave nothing to gain: at least 7.95 bits of entropy per
// byte, as packed and encrypted data have.
bool LooksIncompressible(const uint8_t *data, size_t size)
{
    if (size < 4096)
        return false;
    std::array<uint32_t, 256> counts {};
    for (size_t i = 0; i < size; ++i)
        ++counts[data[i]];
    double bits = 0;
    for (uint32_t c : counts)
        if (c > 0)
            bits -= double(c) * std::log2(double(c) / double(size));
    return bits >= 7.99 * double(size);
}

class DeflateEncoder::Impl
{
public:
    explicit Impl(const DeflateOptions &options)
        : m_options(options)
        , m_buffer(kCapacity)
        , m_tree(kCapacity, kHashBits, 4)
        , m_recent3(size_t(1) << kHashBits, -1)
    {
        m_options.depth = std::max(1, m_options.depth);
        m_options.nice = std::clamp<uint32_t>(m_options.nice, kMinMatch + 1, kMaxMatch);
        m_options.hop = std::clamp<uint32_t>(m_options.hop, kMinMatch, kMaxMatch);
        m_options.passes = std::max(1, m_options.passes);
    }

    void restart(const uint8_t *history, size_t size)
    {
        m_tree.clear();
        std::fill(m_recent3.begin(), m_recent3.end(), -1);
        const size_t keep = std::min<size_t>(size, kWindow);
        if (keep > 0)
            std::memcpy(m_buffer.data(), history + size - keep, keep);
        m_size = uint32_t(keep);
        m_inserted = 0;
        m_haveModel = false;
    }

    void compress(const uint8_t *block, size_t size, QByteArray &out)
    {
        Q_ASSERT(size <= kMaxBlock);
        makeRoom(uint32_t(size));
        const uint32_t start = m_size;
        if (size > 0)
            std::memcpy(m_buffer.data() + start, block, size);
        m_size += uint32_t(size);
        indexUpTo(start);
        if (LooksIncompressible(block, size)) {
            repeatsOnly(start);
            m_haveModel = false;
            if (m_steps.size() == size) { // no repeat: nothing can beat the bytes as they are
                WriteFinalStoredBlock(block, size, out);
                return;
            }
            const SymbolCounts counts(m_steps);
            WriteFinalBlock(m_steps, counts, BlockCode(counts), block, size, out);
            m_haveModel = false;
            return;
        }
        gatherMatches(start, m_size);

        if (!m_haveModel)
            m_model.learn(BlockCode(SymbolCounts(greedySteps(start))));
        for (int pass = 0; pass < m_options.passes; ++pass) {
            parse(start, m_model);
            if (pass + 1 < m_options.passes)
                m_model.learn(BlockCode(SymbolCounts(m_steps)));
        }
        const SymbolCounts counts(m_steps);
        const BlockCode code(counts);
        WriteFinalBlock(m_steps, counts, code, m_buffer.data() + start, size, out);
        // The next block of the same data is priced from this one's code at first.
        m_model.learn(code);
        m_haveModel = true;
    }

private:
    void makeRoom(uint32_t incoming)
    {
        if (m_size + incoming <= kCapacity)
            return;
        const uint32_t keep = std::min(m_size, kWindow);
        const uint32_t shift = m_size - keep;
        std::memmove(m_buffer.data(), m_buffer.data() + shift, keep);
        m_tree.rebase(shift, keep);
        for (int32_t &p : m_recent3)
            p = p >= int32_t(shift) ? p - int32_t(shift) : -1;
        m_inserted = std::max(m_inserted, shift) - shift;
        m_size = keep;
    }

    // Puts the positions before `end` that are not in the tree yet into it, as far as `nice`
    // bytes follow them; the rest wait for more data.
    void indexUpTo(uint32_t end)
    {
        // Nothing is searched for here, so a shallower walk does: it only places the node.
        const int depth = std::max(1, m_options.depth / 2);
        for (; m_inserted < end && m_size - m_inserted >= m_options.nice; ++m_inserted) {
            m_tree.findAndInsert(m_buffer.data(), m_inserted, std::min(kMaxMatch, m_size - m_inserted),
                m_options.nice, kMaxReach, depth, m_list);
            m_recent3[Hash3(m_buffer.data() + m_inserted, kHashBits)] = int32_t(m_inserted);
        }
    }

    // The tree keys on four bytes; three-byte matches come from the newest position with the
    // same three bytes. Returns the number of matches in m_list, lengths rising.
    int addThreeByteMatch(uint32_t pos, uint32_t available, int count)
    {
        int32_t &slot = m_recent3[Hash3(m_buffer.data() + pos, kHashBits)];
        const int32_t candidate = slot;
        slot = int32_t(pos);
        if (candidate < 0 || (count > 0 && m_list[0].length == kMinMatch))
            return count;
        const uint32_t distance = pos - uint32_t(candidate);
        const uint8_t *here = m_buffer.data() + pos;
        if (distance > kMaxReach || available < kMinMatch || here[0] != here[-int64_t(distance)]
            || here[1] != here[1 - int64_t(distance)] || here[2] != here[2 - int64_t(distance)])
            return count;
        std::memmove(m_list + 1, m_list, sizeof(Match) * size_t(count));
        m_list[0] = {kMinMatch, distance};
        return count + 1;
    }

    // The tree's matches for every position of the block. A match of `hop` bytes or more is
    // taken whole: the positions inside it are not searched, and, below `nice` bytes, not
    // indexed either, since its source is in the tree already. Positions inside the longest
    // matches still go into the tree: they keep the nearest copies of long runs within reach.
    void gatherMatches(uint32_t start, uint32_t end)
    {
        const uint32_t n = end - start;
        m_index.assign(n + 1, 0);
        m_matches.clear();
        uint32_t hop = 0;
        bool indexInside = false;
        uint32_t i = 0;
        for (; i < n; ++i) {
            const uint32_t pos = start + i;
            m_index[i] = uint32_t(m_matches.size());
            const uint32_t available = std::min(kMaxMatch, end - pos);
            if (available < kMinMatch)
                break;
            if (hop > 0 && !indexInside) {
                --hop;
                m_inserted += m_inserted == pos ? 1 : 0;
                continue;
            }
            int count = 0;
            if (m_inserted == pos && available >= m_options.nice) {
                count = m_tree.findAndInsert(
                    m_buffer.data(), pos, available, m_options.nice, kMaxReach, m_options.depth, m_list);
                ++m_inserted;
            } else {
                count = m_tree.find(
                    m_buffer.data(), pos, available, m_options.nice, kMaxReach, m_options.depth, m_list);
            }
            count = addThreeByteMatch(pos, available, count);
            if (hop > 0) {
                --hop;
                continue;
            }
            if (count > 0 && m_list[count - 1].length >= m_options.hop) {
                Match &longest = m_list[count - 1];
                // The tree stops comparing at `nice`; the match itself may go on.
                indexInside = longest.length >= m_options.nice;
                if (indexInside) {
                    const uint8_t *here = m_buffer.data() + pos;
                    longest.length = MatchLength(here, here - longest.distance, available);
                }
                hop = longest.length - 1;
            }
            m_matches.insert(m_matches.end(), m_list, m_list + count);
        }
        for (; i <= n; ++i)
            m_index[i] = uint32_t(m_matches.size());
    }

    // Data that looks random (packed, encrypted) gains nothing from short matches, so only
    // long repeats are looked for, by a small hash of eight bytes, and the tree is left alone.
    void repeatsOnly(uint32_t start)
    {
        constexpr int kBits = 13;
        constexpr uint32_t kMinRepeat = 5;
        std::vector<int32_t> &recent = m_recent8;
        recent.assign(size_t(1) << kBits, -1);
        const uint8_t *buffer = m_buffer.data();
        auto hash = [&](uint32_t pos) {
            uint64_t v;
            std::memcpy(&v, buffer + pos, 8);
            return uint32_t(((v << 24) * 0x9E3779B97F4A7C15ull) >> (64 - kBits)); // the first five bytes
        };
        const uint32_t end = m_size;
        // Every fourth position of the history: a repeat of it is still caught within four bytes.
        for (uint32_t pos = start - std::min(start, kMaxReach); pos + 8 <= start; pos += 4)
            recent[hash(pos)] = int32_t(pos);
        m_steps.clear();
        uint32_t lastDistance = 0;
        for (uint32_t pos = start; pos < end;) {
            const uint32_t room = std::min(kMaxMatch, end - pos);
            // A repeat longer than one match goes on at the same distance.
            if (lastDistance > 0 && room >= kMinRepeat) {
                const uint32_t length = MatchLength(buffer + pos, buffer + pos - lastDistance, room);
                if (length >= kMinRepeat) {
                    m_steps.push_back({uint16_t(length), uint16_t(lastDistance)});
                    pos += length;
                    continue;
                }
            }
            if (pos + 8 <= end) {
                int32_t &slot = recent[hash(pos)];
                const int32_t candidate = slot;
                slot = int32_t(pos);
                if (candidate >= 0 && pos - uint32_t(candidate) <= kMaxReach) {
                    const uint32_t length = MatchLength(buffer + pos, buffer + candidate, room);
                    if (length >= kMinRepeat) {
                        lastDistance = pos - uint32_t(candidate);
                        m_steps.push_back({uint16_t(length), uint16_t(lastDistance)});
                        pos += length;
                        continue;
                    }
                }
            }
            m_steps.push_back({0, buffer[pos]});
            ++pos;
        }
        m_inserted = std::max(m_inserted, end);
    }

    // The longest match wherever there is one: a first guess at the block's statistics.
    const std::vector<deflate::Step> &greedySteps(uint32_t start)
    {
        m_steps.clear();
        const uint32_t n = m_size - start;
        for (uint32_t i = 0; i < n;) {
            if (m_index[i + 1] > m_index[i]) {
                const Match &longest = m_matches[m_index[i + 1] - 1];
                m_steps.push_back({uint16_t(longest.length), uint16_t(longest.distance)});
                i += longest.length;
            } else {
                m_steps.push_back({0, m_buffer[start + i]});
                ++i;
            }
        }
        return m_steps;
    }

    // The cheapest way to the block's end from every position, then the path from its start.
    void parse(uint32_t start, const CostModel &cost)
    {
        const uint32_t n = m_size - start;
        m_cost.assign(n + 1, 0);
        m_choice.resize(n + 1);
        const uint8_t *bytes = m_buffer.data() + start;
        for (uint32_t i = n; i-- > 0;) {
            uint32_t best = cost.literal[bytes[i]] + uint32_t(m_cost[i + 1]);
            deflate::Step choice {0, bytes[i]};
            int shorter = int(kMinMatch) - 1;
            const int32_t *after = m_cost.data() + i;
            for (uint32_t m = m_index[i]; m < m_index[i + 1]; ++m) {
                const Match &match = m_matches[m];
                // The cheapest length of this match: cost and length packed into one number
                // whose minimum carries both, a loop the compiler turns into vector code.
                int32_t cheapest = INT32_MAX;
                for (int l = shorter + 1; l <= int(match.length); ++l) {
                    const int32_t packed = ((cost.length[size_t(l)] + after[l]) << kLengthBits) | l;
                    cheapest = cheapest < packed ? cheapest : packed;
                }
                shorter = int(match.length);
                const uint32_t c = uint32_t(cheapest >> kLengthBits) + cost.distanceCost(match.distance);
                if (c < best) {
                    best = c;
                    choice = {uint16_t(uint32_t(cheapest) & kLengthMask), uint16_t(match.distance)};
                }
            }
            m_cost[i] = int32_t(best);
            m_choice[i] = choice;
        }
        m_steps.clear();
        for (uint32_t i = 0; i < n;) {
            m_steps.push_back(m_choice[i]);
            i += std::max<uint32_t>(1, m_choice[i].length);
        }
    }

    DeflateOptions m_options;
    std::vector<uint8_t> m_buffer;
    TreeMatchFinder m_tree;
    std::vector<int32_t> m_recent3; // by three-byte hash, the newest position
    std::vector<int32_t> m_recent8; // the quick path's table
    uint32_t m_size = 0;
    uint32_t m_inserted = 0;
    bool m_haveModel = false;
    CostModel m_model;
    Match m_list[kMaxMatch + 1];
    std::vector<uint32_t> m_index;
    std::vector<Match> m_matches;
    std::vector<int32_t> m_cost;
    std::vector<deflate::Step> m_choice;
    std::vector<deflate::Step> m_steps;
};

DeflateEncoder::DeflateEncoder(const DeflateOptions &options)
    : m_impl(std::make_unique<Impl>(options))
{ }

DeflateEncoder::~DeflateEncoder() = default;

void DeflateEncoder::restart(const uint8_t *history, size_t size)
{
    m_impl->restart(history, size);
}

void DeflateEncoder::compress(const uint8_t *block, size_t size, QByteArray &out)
{
    m_impl->compress(block, size, out);
}

} // namespace qb::cabmaker
