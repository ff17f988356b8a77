// Division of a limb span by one machine word.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/radix.h"

namespace tw::arith {

// q[0..n) := a[0..n) div d, returns a mod d.  q may equal a.
// Requires 0 < d < 2^32: the running remainder stays below d, so
// remainder * radix + limb < 2^32 * 10^9 < 2^62 fits 64 bits for either radix.
// Cost: n steps of two multiplications each, one pass from the top.
//
// Each step divides cur < 2^62 by d through the precomputed inverse
// inv = floor((2^64 - 1) / d) instead of a hardware division, which is slower
// on most processors and sits on the chain from one limb to the next.  Since
// (2^64 - 1) / d - 1 < inv, the estimate floor(cur * inv / 2^64) lies above
// cur / d - 2 cur / 2^64 > cur / d - 1/2 and below cur / d: it is the
// quotient or one less, settled by one compare.
template <class R>
Limb divideByLimb(Limb* q, const Limb* a, std::size_t n, std::uint32_t d) {
    const std::uint64_t inv = ~std::uint64_t(0) / d;
    std::uint64_t rem = 0;
    for (std::size_t i = n; i-- > 0;) {
        const std::uint64_t cur = rem * R::base + a[i];
        std::uint64_t digit = std::uint64_t((u128(cur) * inv) >> 64);
        rem = cur - digit * d;
        const bool low = rem >= d;
        digit += low;
        rem -= low ? d : 0;
        q[i] = Limb(digit);
    }
    return Limb(rem);
}

}  // namespace tw::arith
