// The LZX bit stream: bits go in from the top of 16-bit words, stored little-endian.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qb::cabmaker::lzx {

class BitWriter
{
public:
    // Appends the low `bits` bits of value (at most 32), most significant first.
    void put(uint32_t value, int bits)
    {
        if (bits == 0)
            return;
        m_acc = (m_acc << bits) | (uint64_t(value) & ((uint64_t(1) << bits) - 1));
        m_count += bits;
        while (m_count >= 16) {
            m_count -= 16;
            const auto word = uint16_t(m_acc >> m_count);
            m_out.push_back(uint8_t(word));
            m_out.push_back(uint8_t(word >> 8));
        }
        m_acc &= (uint64_t(1) << m_count) - 1;
    }
    // Pads with zero bits to the next 16-bit boundary (nothing when already there).
    void align()
    {
        if (m_count > 0)
            put(0, 16 - m_count);
    }
    bool aligned() const { return m_count == 0; }
    // Raw bytes; only on a 16-bit boundary.
    void putBytes(const uint8_t *data, size_t size) { m_out.insert(m_out.end(), data, data + size); }
    void putLittle32(uint32_t value)
    {
        for (int i = 0; i < 4; ++i)
            m_out.push_back(uint8_t(value >> (8 * i)));
    }
    // Bits written so far, padding included.
    uint64_t bitCount() const { return uint64_t(m_out.size()) * 8 + uint64_t(m_count); }
    // Hands over the finished bytes (the stream must be aligned).
    std::vector<uint8_t> take()
    {
        std::vector<uint8_t> out;
        out.swap(m_out);
        return out;
    }

private:
    std::vector<uint8_t> m_out;
    uint64_t m_acc = 0;
    int m_count = 0;
};

} // namespace qb::cabmaker::lzx
