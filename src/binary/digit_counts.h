// Sizes of a magnitude in decimal digits and in bits, for either radix.
// The count native to the radix is read off the top limb; the other one needs
// the magnitude in the other radix.
#pragma once

#include <cstdint>

#include "binary/convert_basic.h"
#include "frame/error_state.h"
#include "frame/signed_number.h"

namespace tw {

// Digits of the magnitude in radix R's natural unit (decimal digits for 10^9,
// bits for 2^28) from limbs[0..n), n >= 1 with a non-zero top limb.
template <class R>
std::uint32_t nativeDigitCount(const Limb* limbs, std::uint32_t top) {
    if constexpr (R::isBinary)
        return R::bitsPerLimb * top + bitLength32(limbs[top]);
    else
        return R::decimalDigitsPerLimb * top + decimalDigitsOfLimb(limbs[top]);
}

// Decimal digits of |x|: 1 for zero, 0 while the terminate flag is raised.
template <class R>
std::uint32_t decimalDigitCount(const SignedNumber<R>& x) {
    if (terminateRequested()) return 0;
    if (x.isZero()) return 1;
    if constexpr (R::isBinary) {
        const auto dec = convertLimbsBasic<R, DecimalRadix>(x.limbs(), x.rec().topIndex + 1);
        return nativeDigitCount<DecimalRadix>(dec.data(), std::uint32_t(dec.size() - 1));
    } else {
        return nativeDigitCount<R>(x.limbs(), x.rec().topIndex);
    }
}

// Bit length of |x|: floor(log2 |x|) + 1, 0 for zero.
template <class R>
std::uint32_t bitCount(const SignedNumber<R>& x) {
    if (x.isZero()) return 0;
    if constexpr (R::isBinary) {
        return nativeDigitCount<R>(x.limbs(), x.rec().topIndex);
    } else {
        const auto bin = convertLimbsBasic<R, BinaryRadix>(x.limbs(), x.rec().topIndex + 1);
        return nativeDigitCount<BinaryRadix>(bin.data(), std::uint32_t(bin.size() - 1));
    }
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
