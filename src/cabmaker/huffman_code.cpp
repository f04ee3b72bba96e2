// Package-merge code lengths and canonical code assignment.
#include "cabmaker/huffman_code.h"

#include <algorithm>
#include <vector>

namespace qb::cabmaker {

void BuildCodeLengths(const uint32_t *frequencies, int count, int maxLength, uint8_t *lengths)
{
    std::fill(lengths, lengths + count, uint8_t(0));
    std::vector<int> used;
    for (int i = 0; i < count; ++i)
        if (frequencies[i] > 0)
            used.push_back(i);
    if (used.empty())
        return;
    if (used.size() == 1) {
        lengths[used[0]] = 1;
        lengths[used[0] == 0 ? 1 : 0] = 1;
        return;
    }
    std::stable_sort(used.begin(), used.end(), [&](int a, int b) { return frequencies[a] < frequencies[b]; });
    const size_t n = used.size();

    // Nodes are leaves (0..n-1, in weight order) and packages of two nodes of the level before.
    struct Node
    {
        uint64_t weight;
        int32_t left;
        int32_t right; // -1 for a leaf; left is then the leaf's index
    };
    std::vector<Node> pool;
    pool.reserve(n * size_t(maxLength) * 2);
    for (size_t i = 0; i < n; ++i)
        pool.push_back({frequencies[used[i]], int32_t(i), -1});
    std::vector<int32_t> leaves(n);
    for (size_t i = 0; i < n; ++i)
        leaves[i] = int32_t(i);

    std::vector<int32_t> list = leaves;
    std::vector<int32_t> packages;
    std::vector<int32_t> merged;
    for (int level = 1; level < maxLength; ++level) {
        packages.clear();
        for (size_t i = 0; i + 1 < list.size(); i += 2) {
            pool.push_back(
                {pool[size_t(list[i])].weight + pool[size_t(list[i + 1])].weight, list[i], list[i + 1]});
            packages.push_back(int32_t(pool.size() - 1));
        }
        merged.clear();
        std::merge(leaves.begin(), leaves.end(), packages.begin(), packages.end(), std::back_inserter(merged),
            [&](int32_t a, int32_t b) { return pool[size_t(a)].weight < pool[size_t(b)].weight; });
        list.swap(merged);
    }
    // The first 2n - 2 items of the last list: each leaf's length is how often it occurs in them.
    std::vector<uint32_t> depth(n, 0);
    std::vector<int32_t> stack;
    for (size_t i = 0; i < 2 * n - 2 && i < list.size(); ++i) {
        stack.push_back(list[i]);
        while (!stack.empty()) {
            const Node &node = pool[size_t(stack.back())];
            stack.pop_back();
            if (node.right < 0) {
                ++depth[size_t(node.left)];
            } else {
                stack.push_back(node.left);
                stack.push_back(node.right);
            }
        }
    }
    for (size_t i = 0; i < n; ++i)
        lengths[used[i]] = uint8_t(depth[i]);
}

void BuildCanonicalCodes(const uint8_t *lengths, int count, uint32_t *codes)
{
    uint32_t lengthCount[33] = {};
    for (int i = 0; i < count; ++i)
        ++lengthCount[lengths[i]];
    lengthCount[0] = 0;
    uint32_t next[33] = {};
    uint32_t code = 0;
    for (int bits = 1; bits <= 32; ++bits) {
        code = (code + lengthCount[bits - 1]) << 1;
        next[bits] = code;
    }
    for (int i = 0; i < count; ++i)
        codes[i] = lengths[i] ? next[lengths[i]]++ : 0;
}

} // namespace qb::cabmaker
