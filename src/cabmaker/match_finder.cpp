// Hash chain and binary tree match finding for the LZ encoders.
#include "cabmaker/match_finder.h"

#include <algorithm>
#include <cstring>

namespace qb::cabmaker {

MatchFinder::MatchFinder(size_t capacity, int hashBits)
    : m_hashBits(hashBits)
    , m_head(size_t(1) << hashBits, -1)
    , m_prev(capacity, -1)
{ }

int MatchFinder::find(const uint8_t *buffer, uint32_t pos, uint32_t maxLength, uint32_t maxDistance,
    int depth, Match &best, Match *list) const
{
    best = {};
    int found = 0;
    if (maxLength < 3)
        return 0;
    const uint8_t *here = buffer + pos;
    int32_t candidate = m_head[hash(here)];
    // A candidate must beat the best so far, so its byte at the best length is checked first.
    uint32_t bestLength = 2;
    while (candidate >= 0 && depth-- > 0) {
        const uint32_t distance = pos - uint32_t(candidate);
        if (distance > maxDistance || distance == 0)
            break;
        const uint8_t *there = buffer + candidate;
        if (there[bestLength] == here[bestLength] && there[0] == here[0] && there[1] == here[1]) {
            const uint32_t length = MatchLength(here, there, maxLength);
            if (length > bestLength) {
                bestLength = length;
                best = {length, distance};
                if (list)
                    list[found++] = best;
                else
                    found = 1;
                if (length >= maxLength)
                    break;
            }
        }
        candidate = m_prev[size_t(candidate)];
    }
    return found;
}

void MatchFinder::rebase(uint32_t shift, uint32_t newSize)
{
    auto move = [shift](int32_t v) { return v >= int32_t(shift) ? v - int32_t(shift) : -1; };
    for (int32_t &v : m_head)
        v = move(v);
    std::memmove(m_prev.data(), m_prev.data() + shift, size_t(newSize) * sizeof(int32_t));
    for (uint32_t i = 0; i < newSize; ++i)
        m_prev[i] = move(m_prev[i]);
    std::fill(m_prev.begin() + newSize, m_prev.end(), -1);
}

TreeMatchFinder::TreeMatchFinder(size_t capacity, int hashBits, int hashBytes)
    : m_hashBits(hashBits)
    , m_hashBytes(hashBytes == 4 ? 4 : 3)
    , m_head(size_t(1) << hashBits, -1)
    , m_children(capacity * 2, -1)
{ }

namespace {

// One walk down a tree from candidate, reporting every longer match into list. With kInsert the
// walk also re-hangs the nodes it passes under pos, which becomes the root (children is then
// writable); without it the tree is only read.
template<bool kInsert, typename Node>
int WalkTree(const uint8_t *buffer, uint32_t pos, uint32_t limit, uint32_t maxDistance, int depth,
    int32_t candidate, Node *children, Match *list)
{
    const uint8_t *here = buffer + pos;
    // Where the next smaller and the next greater node hang: first the new node's own children.
    [[maybe_unused]] Node *smaller = &children[size_t(pos) * 2];
    [[maybe_unused]] Node *greater = &children[size_t(pos) * 2 + 1];
    uint32_t smallerLength = 0; // bytes known equal with everything under `smaller`
    uint32_t greaterLength = 0;
    uint32_t best = 2;
    int found = 0;
    while (candidate >= 0 && depth-- > 0 && pos - uint32_t(candidate) <= maxDistance) {
        const uint8_t *there = buffer + candidate;
        uint32_t length = std::min(smallerLength, greaterLength);
        length += MatchLength(here + length, there + length, limit - length);
        if (length > best) {
            best = length;
            list[found++] = {length, pos - uint32_t(candidate)};
        }
        Node *node = &children[size_t(candidate) * 2];
        if (length >= limit) {
            if constexpr (kInsert) {
                // As long as the new node's bytes reach: its place in the tree is the candidate's.
                *smaller = node[0];
                *greater = node[1];
            }
            return found;
        }
        if (there[length] < here[length]) {
            if constexpr (kInsert) {
                *smaller = candidate;
                smaller = &node[1];
            }
            candidate = node[1];
            smallerLength = length;
        } else {
            if constexpr (kInsert) {
                *greater = candidate;
                greater = &node[0];
            }
            candidate = node[0];
            greaterLength = length;
        }
    }
    if constexpr (kInsert) {
        *smaller = -1;
        *greater = -1;
    }
    return found;
}

} // namespace

int TreeMatchFinder::findAndInsert(const uint8_t *buffer, uint32_t pos, uint32_t maxLength, uint32_t nice,
    uint32_t maxDistance, int depth, Match *list)
{
    const uint32_t limit = std::min(maxLength, nice);
    if (limit < uint32_t(m_hashBytes))
        return 0; // too near the end to place in the tree; the position is simply not indexed
    int32_t &root = m_head[hash(buffer + pos)];
    const int32_t candidate = root;
    root = int32_t(pos);
    return WalkTree<true>(buffer, pos, limit, maxDistance, depth, candidate, m_children.data(), list);
}

int TreeMatchFinder::find(const uint8_t *buffer, uint32_t pos, uint32_t maxLength, uint32_t nice,
    uint32_t maxDistance, int depth, Match *list) const
{
    const uint32_t limit = std::min(maxLength, nice);
    if (limit < uint32_t(m_hashBytes))
        return 0;
    return WalkTree<false>(
        buffer, pos, limit, maxDistance, depth, m_head[hash(buffer + pos)], m_children.data(), list);
}

void TreeMatchFinder::rebase(uint32_t shift, uint32_t newSize)
{
    auto move = [shift](int32_t v) { return v >= int32_t(shift) ? v - int32_t(shift) : -1; };
    for (int32_t &v : m_head)
        v = move(v);
    std::memmove(
        m_children.data(), m_children.data() + size_t(shift) * 2, size_t(newSize) * 2 * sizeof(int32_t));
    for (size_t i = 0; i < size_t(newSize) * 2; ++i)
        m_children[i] = move(m_children[i]);
    std::fill(m_children.begin() + std::ptrdiff_t(newSize) * 2, m_children.end(), -1);
}

void TreeMatchFinder::clear()
{
    std::fill(m_head.begin(), m_head.end(), -1);
    std::fill(m_children.begin(), m_children.end(), -1);
}

} // namespace qb::cabmaker
