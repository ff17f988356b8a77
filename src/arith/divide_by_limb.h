// Division of a limb span by one machine word.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/radix.h"

namespace tw::arith {

// q[0..n) := a[0..n) div d, returns a mod d.  q may equal a.
// Requires 0 < d < 2^32: the running remainder stays below d, so
// remainder * radix + limb < 2^32 * 10^9 fits 64 bits for either radix.
template <class R>
Limb divideByLimb(Limb* q, const Limb* a, std::size_t n, std::uint32_t d) {
    std::uint64_t rem = 0;
    for (std::size_t i = n; i-- > 0;) {
        const std::uint64_t cur = rem * R::base + a[i];
        q[i] = Limb(cur / d);
        rem = cur % d;
    }
    return Limb(rem);
}

}  // namespace tw::arith
