// Position slot tables of LZX.
#include "cabmaker/lzx_tables.h"

#include <array>

namespace qb::cabmaker::lzx {

namespace {

struct SlotTable
{
    std::array<uint8_t, kMaxPositionSlots + 1> extra {};
    std::array<uint32_t, kMaxPositionSlots + 1> base {};
    constexpr SlotTable()
    {
        for (int slot = 0; slot <= kMaxPositionSlots; ++slot) {
            const int bits = slot < 4 ? 0 : slot / 2 - 1;
            extra[size_t(slot)] = uint8_t(bits > 17 ? 17 : bits);
            base[size_t(slot)] = slot == 0 ? 0 : base[size_t(slot - 1)] + (1u << extra[size_t(slot - 1)]);
        }
    }
};

constexpr SlotTable kSlots;

} // namespace

int PositionSlots(int windowBits)
{
    switch (windowBits) {
    case 15:
        return 30;
    case 16:
        return 32;
    case 17:
        return 34;
    case 18:
        return 36;
    case 19:
        return 38;
    case 20:
        return 42;
    default:
        return 50;
    }
}

uint8_t SlotExtraBits(int slot)
{
    return kSlots.extra[size_t(slot)];
}

uint32_t SlotBase(int slot)
{
    return kSlots.base[size_t(slot)];
}

} // namespace qb::cabmaker::lzx
