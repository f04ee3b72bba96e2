// The near-optimal LZX levels' match finder, its thread, and the ring that hands its matches over.
#include "cabmaker/lzx_match_pipeline.h"

#include "cabmaker/lzx_tables.h"

#include <algorithm>

namespace qb::cabmaker::lzx {

namespace {

constexpr uint32_t kMaxPairDistance = 2048;
constexpr int kMaxList = 32; // the longest matches kept per position

} // namespace

FrameMatchFinder::FrameMatchFinder(
    size_t capacity, int hashBits, uint32_t distanceLimit, uint32_t nice, int depth)
    : m_distanceLimit(distanceLimit)
    , m_nice(nice)
    , m_depth(depth)
    , m_tree(capacity, hashBits)
    , m_lastPair(65536, -1)
{ }

size_t FrameMatchFinder::memoryBytes() const
{
    return m_tree.memoryBytes() + m_lastPair.size() * sizeof(int32_t);
}

void FrameMatchFinder::rebase(uint32_t shift, uint32_t newSize)
{
    m_tree.rebase(shift, newSize);
    m_inserted -= std::min(m_inserted, shift);
    for (int32_t &last : m_lastPair)
        last = last >= int32_t(shift) ? last - int32_t(shift) : -1;
}

void FrameMatchFinder::gather(
    const uint8_t *buffer, uint32_t size, uint32_t start, uint32_t end, FrameMatches &out)
{
    const uint32_t n = end - start;
    out.index.assign(n + 1, 0);
    out.matches.resize(std::max<size_t>(out.matches.size(), size_t(n) * 2));
    uint32_t used = 0;
    Match list[kMaxMatch + 1];
    for (uint32_t i = 0; i < n; ++i) {
        const uint32_t pos = start + i;
        out.index[i] = used;
        if (out.matches.size() < size_t(used) + kMaxList + 1)
            out.matches.resize(out.matches.size() * 2);
        Match *slots = out.matches.data();
        const uint32_t maxLength = std::min<uint32_t>(kMaxMatch, end - pos);
        const uint32_t maxDistance = std::min(m_distanceLimit, pos);
        // The tree compares as far as the data goes; matches are cut at the frame's end.
        const uint32_t available = std::min<uint32_t>(kMaxMatch, size - pos);
        // Positions without `nice` bytes after them are only searched until the next chunk
        // brings those bytes; the tree's order needs them (see TreeMatchFinder).
        insertUpTo(buffer, size, pos, list);
        int count = 0;
        if (m_inserted == pos && available >= m_nice) {
            count = m_tree.findAndInsert(buffer, pos, available, m_nice, maxDistance, m_depth, list);
            ++m_inserted;
        } else {
            count = m_tree.find(buffer, pos, available, m_nice, maxDistance, m_depth, list);
        }
        int kept = 0;
        for (int k = 0; k < count; ++k) {
            const uint32_t length = std::min(list[k].length, maxLength);
            if (length < 3 || (kept > 0 && list[kept - 1].length >= length))
                continue;
            list[kept++] = {length, list[k].distance};
        }
        // Two-byte matches come from the nearest earlier pair; only near ones can pay.
        if (maxLength >= kMinMatch) {
            int32_t &last = m_lastPair[size_t(buffer[pos]) | size_t(buffer[pos + 1]) << 8];
            const uint32_t distance = last >= 0 ? pos - uint32_t(last) : 0;
            if (last >= 0 && distance <= kMaxPairDistance && distance <= maxDistance)
                slots[used++] = Match {2, distance};
            last = int32_t(pos);
        }
        for (int k = std::max(0, kept - kMaxList); k < kept; ++k)
            slots[used++] = list[k];
    }
    out.index[n] = used;
}

// Inserts the positions before `end` that were left out for lack of data after them.
void FrameMatchFinder::insertUpTo(const uint8_t *buffer, uint32_t size, uint32_t end, Match *scratch)
{
    for (; m_inserted < end && size - m_inserted >= m_nice; ++m_inserted)
        m_tree.findAndInsert(buffer, m_inserted, std::min<uint32_t>(kMaxMatch, size - m_inserted), m_nice,
            std::min(m_distanceLimit, m_inserted), m_depth, scratch);
}

void MatchRing::restart()
{
    m_ready.store(0, std::memory_order_relaxed);
    m_consumed.store(0, std::memory_order_relaxed);
}

FrameMatches *MatchRing::slotToFill(size_t k)
{
    size_t done = m_consumed.load(std::memory_order_acquire);
    for (; done + kSlots <= k; done = m_consumed.load(std::memory_order_acquire))
        m_consumed.wait(done, std::memory_order_acquire);
    return done == kAbandoned ? nullptr : &m_slots[k % kSlots];
}

void MatchRing::publish(size_t k)
{
    m_ready.store(k + 1, std::memory_order_release);
    m_ready.notify_one();
}

const FrameMatches &MatchRing::take(size_t k)
{
    for (size_t seen = m_ready.load(std::memory_order_acquire); seen <= k;
         seen = m_ready.load(std::memory_order_acquire))
        m_ready.wait(seen, std::memory_order_acquire);
    return m_slots[k % kSlots];
}

void MatchRing::release(size_t k)
{
    m_consumed.store(k + 1, std::memory_order_release);
    m_consumed.notify_one();
}

void MatchRing::abandon()
{
    m_consumed.store(kAbandoned, std::memory_order_release);
    m_consumed.notify_one();
}

size_t MatchRing::memoryBytes() const
{
    size_t bytes = 0;
    for (const FrameMatches &slot : m_slots)
        bytes += slot.index.capacity() * sizeof(uint32_t) + slot.matches.capacity() * sizeof(Match);
    return bytes;
}

MatchPipeline::MatchPipeline(size_t capacity, int hashBits, uint32_t distanceLimit, uint32_t nice, int depth)
    : m_finder(capacity, hashBits, distanceLimit, nice, depth)
{ }

MatchPipeline::~MatchPipeline()
{
    // Only when the parse was cut short: don't leave the finder waiting for frames it never takes.
    if (m_thread.joinable()) {
        m_ring.abandon();
        m_thread.join();
    }
}

void MatchPipeline::start(const uint8_t *buffer, uint32_t begin, uint32_t end, uint32_t dropped)
{
    m_ring.restart();
    m_thread = std::thread([this, buffer, begin, end, dropped] {
        if (dropped > 0)
            m_finder.rebase(dropped, begin);
        for (size_t k = 0; begin + k * kFrameSize < end; ++k) {
            FrameMatches *slot = m_ring.slotToFill(k);
            if (!slot)
                return;
            const auto start = uint32_t(begin + k * kFrameSize);
            m_finder.gather(buffer, end, start, std::min<uint32_t>(start + kFrameSize, end), *slot);
            m_ring.publish(k);
        }
    });
}

void MatchPipeline::finish()
{
    m_thread.join();
}

} // namespace qb::cabmaker::lzx
