// The operations only the binary type has: they read and cut its magnitude
// at bit positions, which its 28-bit limbs make cheap.  The sign is never
// consulted: bit k is the magnitude's bit.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "frame/error_state.h"
#include "frame/signed_number.h"

namespace tw {

// Bit k of |x|: in limb k / 28 at position k % 28; 0 above the top limb.
inline std::uint32_t magnitudeBit(const BinaryNumber& x, std::uint32_t k) {
    const std::uint32_t q = k / BinaryRadix::bitsPerLimb;
    if (q > x.rec().topIndex) return 0;
    return (x.limb(q) >> (k % BinaryRadix::bitsPerLimb)) & 1u;
}

// Trailing zero bits of |x|: 0 for zero and while the terminate flag is raised.
inline std::uint32_t trailingZeroBits(const BinaryNumber& x) {
    if (terminateRequested() || x.isZero()) return 0;
    const std::uint32_t low = x.rec().lowIndex;
    return BinaryRadix::bitsPerLimb * low + std::uint32_t(std::countr_zero(x.limb(low)));
}

// |x| := |x| mod 2^k, sign kept (0 when the result is zero).  k = 0 leaves x
// as it is, deliberately: it does not give zero.
inline void keepLowBits(BinaryNumber& x, std::uint32_t k) {
    if (k == 0) return;
    NumberRecord& r = x.rec();
    const std::uint32_t q = k / BinaryRadix::bitsPerLimb;
    if (q > r.topIndex) return;  // already below 2^k
    dropTextBuffers(r);
    if (q < r.lowIndex) {
        x.setZero();
        return;
    }
    r.digits[q] &= (Limb(1) << (k % BinaryRadix::bitsPerLimb)) - 1;
    std::fill(r.digits + q + 1, r.digits + r.topIndex + 1, 0);
    normalizeIndices(r, q + 1);
    x.normalizeSign();
}

}  // namespace tw
