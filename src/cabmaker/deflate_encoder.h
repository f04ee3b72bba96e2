// A deflate compressor for blocks of up to 32 KiB that may refer back into the block before
// them: binary-tree match finding and near-optimal parsing over the real code lengths.
#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace qb::cabmaker {

struct DeflateOptions
{
    int depth = 12; // tree nodes visited per search
    uint32_t nice = 128; // the tree compares this far (longer matches are measured directly)
    uint32_t hop = 48; // a match this long is taken whole, without searching inside it
    // Parses per block, the first priced with the code of the block before (or a greedy parse's
    // statistics), each further one with the code the one before chose.
    int passes = 1;
};

class DeflateEncoder
{
public:
    static constexpr size_t kMaxBlock = 32768;

    explicit DeflateEncoder(const DeflateOptions &options = {});
    ~DeflateEncoder();
    DeflateEncoder(const DeflateEncoder &) = delete;
    DeflateEncoder &operator=(const DeflateEncoder &) = delete;

    // Starts over: the next block may refer to the last 32 KiB of history and nothing before.
    void restart(const uint8_t *history, size_t size);

    // Appends one complete deflate stream (a single final block) of the block's bytes to out. The
    // stream may refer back 32 KiB, into the blocks compressed since restart and the history.
    void compress(const uint8_t *block, size_t size, QByteArray &out);

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace qb::cabmaker
