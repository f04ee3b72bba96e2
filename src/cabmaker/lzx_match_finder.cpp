// Hash chain match finding for the LZX encoder.
#include "cabmaker/lzx_match_finder.h"

#include <algorithm>
#include <cstring>

namespace qb::cabmaker::lzx {

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

} // namespace qb::cabmaker::lzx
