// Fuzz targets stop at the first broken promise, so that the fuzzer keeps the input.
#pragma once

#include <cstdlib>

inline void check(bool ok)
{
    if (!ok)
        std::abort();
}
