// Match finding over an encoder's sliding buffer: hash chains and binary trees.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qb::cabmaker {

// The bucket of the three bytes at p in a table of 2^bits heads.
inline uint32_t Hash3(const uint8_t *p, int bits)
{
    const uint32_t v = uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16;
    return (v * 2654435761u) >> (32 - bits);
}

// The bucket of the four bytes at p.
inline uint32_t Hash4(const uint8_t *p, int bits)
{
    uint32_t v;
    __builtin_memcpy(&v, p, 4);
    return (v * 2654435761u) >> (32 - bits);
}

struct Match
{
    uint32_t length = 0;
    uint32_t distance = 0;
};

class MatchFinder
{
public:
    // capacity: the buffer's size; positions are indices into it.
    explicit MatchFinder(size_t capacity, int hashBits);

    // Adds position pos (which needs 3 readable bytes) to the chains.
    void insert(const uint8_t *buffer, uint32_t pos)
    {
        const uint32_t h = hash(buffer + pos);
        m_prev[pos] = m_head[h];
        m_head[h] = int32_t(pos);
    }

    // The longest match at pos of at most maxLength bytes and at most maxDistance back, walking at
    // most depth links. With list, every match longer than the one before is appended (so the
    // list grows in length); returns the number of list entries, or 1/0 without a list.
    int find(const uint8_t *buffer, uint32_t pos, uint32_t maxLength, uint32_t maxDistance, int depth,
        Match &best, Match *list = nullptr) const;

    // The buffer dropped its first `shift` bytes: every stored position moves down.
    void rebase(uint32_t shift, uint32_t newSize);

    size_t memoryBytes() const { return (m_head.size() + m_prev.size()) * sizeof(int32_t); }

private:
    uint32_t hash(const uint8_t *p) const { return Hash3(p, m_hashBits); }

    int m_hashBits;
    std::vector<int32_t> m_head;
    std::vector<int32_t> m_prev;
};

// Binary trees of earlier positions ordered by the bytes that follow them, one tree per 3-byte
// hash: each search walks down from the newest position, reports every longer match on its way
// and makes the current position the new root.
class TreeMatchFinder
{
public:
    // hashBytes: 3, or 4 to keep positions that share only three bytes out of one another's
    // trees (the caller then finds three-byte matches itself).
    TreeMatchFinder(size_t capacity, int hashBits, int hashBytes = 3);

    // Reports matches at pos (length rising, each with the nearest distance found for it) into
    // list and inserts pos. maxLength bounds the match; nice stops the walk at that length.
    // Returns the number of matches. pos needs 3 readable bytes.
    // Every node must be inserted with the same nice and with at least nice bytes after it:
    // a node compared over fewer bytes leaves the tree's order wrong beyond them, and later
    // searches would report matches longer than they are. Positions nearer the end of the
    // data use find() until more data arrives.
    int findAndInsert(const uint8_t *buffer, uint32_t pos, uint32_t maxLength, uint32_t nice,
        uint32_t maxDistance, int depth, Match *list);

    // The same search without inserting pos.
    int find(const uint8_t *buffer, uint32_t pos, uint32_t maxLength, uint32_t nice, uint32_t maxDistance,
        int depth, Match *list) const;

    void rebase(uint32_t shift, uint32_t newSize);
    // Forgets every position.
    void clear();
    size_t memoryBytes() const { return (m_head.size() + m_children.size()) * sizeof(int32_t); }

private:
    uint32_t hash(const uint8_t *p) const
    {
        return m_hashBytes == 4 ? Hash4(p, m_hashBits) : Hash3(p, m_hashBits);
    }

    int m_hashBits;
    int m_hashBytes;
    std::vector<int32_t> m_head;
    std::vector<int32_t> m_children; // 2 per position: smaller, then greater
};

// Bytes equal at a and b, at most limit.
inline uint32_t MatchLength(const uint8_t *a, const uint8_t *b, uint32_t limit)
{
    uint32_t n = 0;
    while (n + 8 <= limit) {
        uint64_t x;
        uint64_t y;
        __builtin_memcpy(&x, a + n, 8);
        __builtin_memcpy(&y, b + n, 8);
        const uint64_t diff = x ^ y;
        if (diff)
            return n + uint32_t(__builtin_ctzll(diff) >> 3);
        n += 8;
    }
    while (n < limit && a[n] == b[n])
        ++n;
    return n;
}

} // namespace qb::cabmaker
