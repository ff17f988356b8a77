// Cache-derived block sizes for the kernels, fixed once when the library is
// loaded from the processor's caches and the optional configuration file.
#pragma once

#include <cstdint>

namespace tw {

struct CacheTuning {
    std::uint32_t cacheBlockWords;  // largest power of two <= outer cache bytes / 4
    std::uint32_t burstWords;       // largest power of two <= cache line bytes / 4
    std::uint32_t l1Words;          // largest power of two <= L1 bytes / 4
    // 0 when L1 is at most 3 bytes, else 2^k, k the number of shifts by 2
    // that bring L1 bytes / 16 to zero.
    std::uint32_t l1Fanout;
};
// A word count is 0 only when the configuration file gives fewer than 4
// bytes; kernels must not divide by these without a guard.

const CacheTuning& cacheTuning();

}  // namespace tw
