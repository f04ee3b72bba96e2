// Match finding for the near-optimal LZX levels, on a thread of its own a few frames ahead of the
// parser: finding depends only on the data, never on the parse, so it need not wait for it.
#pragma once

#include "cabmaker/match_finder.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <thread>
#include <vector>

namespace qb::cabmaker::lzx {

// The matches of every position of one frame: index[i]..index[i+1] are position i's, lengths
// rising.
struct FrameMatches
{
    std::vector<uint32_t> index;
    std::vector<Match> matches;
};

// The finder's state: the binary trees over the window and what has gone into them.
class FrameMatchFinder
{
public:
    // distanceLimit: the farthest a match may reach back. nice and depth bound each search.
    FrameMatchFinder(size_t capacity, int hashBits, uint32_t distanceLimit, uint32_t nice, int depth);

    // The matches of each position of buffer[start, end): the tree's, compared as far as size
    // but cut at end, and a near two-byte match.
    void gather(const uint8_t *buffer, uint32_t size, uint32_t start, uint32_t end, FrameMatches &out);

    // The window dropped its first `shift` bytes and kept newSize.
    void rebase(uint32_t shift, uint32_t newSize);

    size_t memoryBytes() const;

private:
    void insertUpTo(const uint8_t *buffer, uint32_t size, uint32_t end, Match *scratch);

    uint32_t m_distanceLimit;
    uint32_t m_nice;
    int m_depth;
    TreeMatchFinder m_tree;
    uint32_t m_inserted = 0; // positions before this are in the tree
    std::vector<int32_t> m_lastPair; // the latest position of each byte pair, -1 if none
};

// Frame k's matches pass from the finder to the parser through slot k % kSlots. The finder fills
// the slot once `consumed` > k - kSlots, then sets `ready` to k + 1; the parser reads it once
// `ready` > k, then sets `consumed` to k + 1. A slot thus belongs to one side at a time, and the
// counters' release and acquire carry its contents across.
class MatchRing
{
public:
    static constexpr size_t kSlots = 4; // how far the finder may run ahead; bounds the memory

    // Before a chunk's first frame, with no finder running.
    void restart();

    // Finder side: frame k's slot once it is free, or null once the parser has abandoned the chunk.
    FrameMatches *slotToFill(size_t k);
    void publish(size_t k);

    // Parser side.
    const FrameMatches &take(size_t k);
    void release(size_t k);
    void abandon();

    // With no finder running.
    size_t memoryBytes() const;

private:
    static constexpr size_t kAbandoned = ~size_t(0) / 2;

    std::array<FrameMatches, kSlots> m_slots;
    std::atomic<size_t> m_ready {0};
    std::atomic<size_t> m_consumed {0};
};

// Runs a FrameMatchFinder over each chunk's frames on a thread of its own. The finder is that
// thread's alone; the parser sees only the ring.
class MatchPipeline
{
public:
    MatchPipeline(size_t capacity, int hashBits, uint32_t distanceLimit, uint32_t nice, int depth);
    ~MatchPipeline();
    MatchPipeline(const MatchPipeline &) = delete;
    MatchPipeline &operator=(const MatchPipeline &) = delete;

    // Starts on the frames of buffer[begin, end), after `dropped` bytes left the window's front.
    // The buffer must not change until finish().
    void start(const uint8_t *buffer, uint32_t begin, uint32_t end, uint32_t dropped);
    // Frame k of the chunk (counting from begin), waiting for it; valid until release(k).
    const FrameMatches &take(size_t k) { return m_ring.take(k); }
    void release(size_t k) { m_ring.release(k); }
    void finish();

    // Between chunks.
    size_t memoryBytes() const { return m_finder.memoryBytes() + m_ring.memoryBytes(); }

private:
    FrameMatchFinder m_finder;
    MatchRing m_ring;
    std::thread m_thread;
};

} // namespace qb::cabmaker::lzx
