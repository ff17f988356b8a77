// Sizes of a magnitude in decimal digits and in bits, for either radix.
// The count native to the radix is read off the top limb.  The other one is
// floor(log |x|) + 1 in the other base: estimated from the top three limbs,
// which is exact unless |x| lies within a hair of a power of that base; only
// then is the magnitude converted to settle it.
#pragma once

#include <cmath>
#include <cstdint>
#include <type_traits>

#include "frame/error_state.h"
#include "frame/signed_number.h"
#include "arith/convert/digit_conversion.h"

namespace tw {

// Digits of the magnitude in radix R's natural unit (decimal digits for 10^9,
// bits for 2^28) from limbs[0..top], with a non-zero top limb.
template <class R>
std::uint32_t nativeDigitCount(const Limb* limbs, std::uint32_t top) {
    if constexpr (R::isBinary)
        return R::bitsPerLimb * top + bitLength32(limbs[top]);
    else
        return R::decimalDigitsPerLimb * top + decimalDigitsOfLimb(limbs[top]);
}

namespace detail {

// floor(log_b |x|) + 1 for the base b that is not R's own (2 for decimal
// limbs, 10 for binary limbs), |x| non-zero; 0 when the terminate flag cut the
// settling conversion short.
//
// log_b |x| = log_b T + (top - 2) * log_b(radix), T the top three limbs
// (the lower limbs add less than radix^-2 relatively).  In double arithmetic
// the error stays below 1e-13 * (top + 10), so an estimate farther than that
// from a whole number has the right floor.
template <class R>
std::uint32_t foreignDigitCount(const NumberRecord& x) {
    constexpr double logBaseOfRadix = R::isBinary ? 8.428839878591473 : 29.89735285398626;  // log10 2^28, log2 10^9
    const std::uint32_t top = x.topIndex;
    const Limb* d = x.digits;
    if (top < 3) {
        u128 v = 0;
        for (std::uint32_t i = top + 1; i-- > 0;) v = v * R::base + d[i];
        std::uint32_t count = 0;
        for (; v != 0; v /= R::isBinary ? 10 : 2) ++count;
        return count;
    }
    const double head = (double(d[top]) * R::base + d[top - 1]) * R::base + d[top - 2];
    const double estimate =
        (R::isBinary ? std::log10(head) : std::log2(head)) + double(top - 2) * logBaseOfRadix;
    const double margin = 1e-13 * (double(top) + 10);
    const double whole = std::floor(estimate);
    if (estimate - whole > margin && whole + 1 - estimate > margin) return std::uint32_t(whole) + 1;
    // Near a power of the base: convert and read the count off the other radix.
    using Other = std::conditional_t<R::isBinary, DecimalRadix, BinaryRadix>;
    NumberRecord other;
    setFromDigits<Other>(other, R::base, d, top + 1);
    return other.isZero() ? 0 : nativeDigitCount<Other>(other.digits, other.topIndex);
}

}  // namespace detail

// Decimal digits of |x|: 1 for zero, 0 while the terminate flag is raised.
template <class R>
std::uint32_t decimalDigitCount(const SignedNumber<R>& x) {
    if (terminateRequested()) return 0;
    if (x.isZero()) return 1;
    if constexpr (R::isBinary)
        return detail::foreignDigitCount<R>(x.rec());
    else
        return nativeDigitCount<R>(x.limbs(), x.rec().topIndex);
}

// Bit length of |x|: floor(log2 |x|) + 1, 0 for zero.
template <class R>
std::uint32_t bitCount(const SignedNumber<R>& x) {
    if (x.isZero()) return 0;
    if constexpr (R::isBinary)
        return nativeDigitCount<R>(x.limbs(), x.rec().topIndex);
    else
        return detail::foreignDigitCount<R>(x.rec());
}

// Trailing decimal zeros of a decimal number: 0 for zero and while the
// terminate flag is raised.
inline std::uint32_t trailingDecimalZeros(const DecimalNumber& x) {
    if (terminateRequested() || x.isZero()) return 0;
    std::uint32_t low = x.limb(x.rec().lowIndex);
    std::uint32_t zeros = DecimalRadix::decimalDigitsPerLimb * x.rec().lowIndex;
    while (low % 10 == 0) {
        low /= 10;
        ++zeros;
    }
    return zeros;
}

}  // namespace tw
