// Sets of small numbers (0 to 31) as bits, for the control's tables of styles and border shapes.
#pragma once

#include <QtGlobal>

#include <initializer_list>

namespace qb::controls {

constexpr quint32 SmallIntSet(std::initializer_list<int> list)
{
    quint32 mask = 0;
    for (const int v : list)
        mask |= 1u << v;
    return mask;
}

constexpr bool InSmallIntSet(int value, quint32 set)
{
    return value >= 0 && value < 32 && (set >> value) & 1u;
}

} // namespace qb::controls
