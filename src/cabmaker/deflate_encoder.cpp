// Near-optimal deflate parsing: every match the tree reports is priced at every length up to
// its own, from the block's end backwards, with costs learned from the previous parse.
#include "cabmaker/deflate_encoder.h"

#include "cabmaker/deflate_block_writer.h"
#include "cabmaker/match_finder.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace qb::cabmaker {

using namespace deflate;

namespace {

constexpr uint32_t kWindow = kMaxDistance;
constexpr uint32_t kCapacity = 3 * kWindow; // slides by two blocks at a time
constexpr int kHashBits = 16;
constexpr uint32_t kMaxReach = kMaxDistance;
// What a symbol absent from the last code is taken to cost: rare, but not out of reach.
constexpr uint32_t kAbsentSymbolBits = 13;

// Bits each choice costs, extra bits included.
struct CostModel
{
    std::array<uint32_t, 256> literal {};
    std::array<uint32_t, kMaxMatch + 1> length {};
    std::array<uint32_t, kDistanceSymbols> distance {};

    void learn(const BlockCode &code)
    {
        auto bits = [](uint8_t l) { return l ? uint32_t(l) : kAbsentSymbolBits; };
        for (int b = 0; b < 256; ++b)
            literal[size_t(b)] = bits(code.literalLength[size_t(b)]);
        for (uint32_t l = kMinMatch; l <= kMaxMatch; ++l) {
            const int slot = LengthSlot(l);
            length[l] = bits(code.literalLength[size_t(257 + slot)]) + kLengthExtra[size_t(slot)];
        }
        for (int slot = 0; slot < kDistanceSymbols; ++slot)
            distance[size_t(slot)] = bits(code.distance[size_t(slot)]) + kDistanceExtra[size_t(slot)];
    }
    uint32_t distanceCost(uint32_t d) const { return distance[DistanceSlot(d)]; }
};

} // namespace

class DeflateEncoder::Impl
{
public:
    explicit Impl(const DeflateOptions &options)
        : m_options(options)
        , m_buffer(kCapacity)
        , m_tree(kCapacity, kHashBits)
    {
        m_options.depth = std::max(1, m_options.depth);
        m_options.nice = std::clamp<uint32_t>(m_options.nice, kMinMatch, kMaxMatch);
        m_options.passes = std::max(1, m_options.passes);
    }

    void restart(const uint8_t *history, size_t size)
    {
        m_tree.clear();
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
        m_inserted = std::max(m_inserted, shift) - shift;
        m_size = keep;
    }

    // Puts the positions before `end` that are not in the tree yet into it, as far as `nice`
    // bytes follow them; the rest wait for more data.
    void indexUpTo(uint32_t end)
    {
        for (; m_inserted < end && m_size - m_inserted >= m_options.nice; ++m_inserted)
            m_tree.findAndInsert(m_buffer.data(), m_inserted, std::min(kMaxMatch, m_size - m_inserted),
                m_options.nice, kMaxReach, m_options.depth, m_list);
    }

    // The tree's matches for every position of the block; none inside a match of `nice` bytes
    // or more, which the parse takes whole.
    void gatherMatches(uint32_t start, uint32_t end)
    {
        const uint32_t n = end - start;
        m_index.assign(n + 1, 0);
        m_matches.clear();
        uint32_t skip = 0;
        uint32_t i = 0;
        for (; i < n; ++i) {
            const uint32_t pos = start + i;
            m_index[i] = uint32_t(m_matches.size());
            const uint32_t available = std::min(kMaxMatch, end - pos);
            if (available < kMinMatch)
                break;
            int count = 0;
            if (m_inserted == pos && available >= m_options.nice) {
                count = m_tree.findAndInsert(
                    m_buffer.data(), pos, available, m_options.nice, kMaxReach, m_options.depth, m_list);
                ++m_inserted;
            } else {
                count = m_tree.find(
                    m_buffer.data(), pos, available, m_options.nice, kMaxReach, m_options.depth, m_list);
            }
            if (skip > 0) {
                --skip;
                continue;
            }
            if (count > 0 && m_list[count - 1].length >= m_options.nice) {
                // The tree stops comparing at `nice`; the match itself may go on.
                Match &longest = m_list[count - 1];
                const uint8_t *here = m_buffer.data() + pos;
                longest.length = MatchLength(here, here - longest.distance, available);
                skip = longest.length - 1;
            }
            m_matches.insert(m_matches.end(), m_list, m_list + count);
        }
        for (; i <= n; ++i)
            m_index[i] = uint32_t(m_matches.size());
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
            uint32_t best = cost.literal[bytes[i]] + m_cost[i + 1];
            deflate::Step choice {0, bytes[i]};
            uint32_t shorter = kMinMatch - 1;
            for (uint32_t m = m_index[i]; m < m_index[i + 1]; ++m) {
                const Match &match = m_matches[m];
                const uint32_t distanceCost = cost.distanceCost(match.distance);
                for (uint32_t l = shorter + 1; l <= match.length; ++l) {
                    const uint32_t c = distanceCost + cost.length[l] + m_cost[i + l];
                    if (c < best) {
                        best = c;
                        choice = {uint16_t(l), uint16_t(match.distance)};
                    }
                }
                shorter = match.length;
            }
            m_cost[i] = best;
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
    uint32_t m_size = 0;
    uint32_t m_inserted = 0;
    bool m_haveModel = false;
    CostModel m_model;
    Match m_list[kMaxMatch + 1];
    std::vector<uint32_t> m_index;
    std::vector<Match> m_matches;
    std::vector<uint32_t> m_cost;
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
