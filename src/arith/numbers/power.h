// Integer powers by left-to-right binary exponentiation through the squaring
// ladder.  Zero limbs at the bottom are taken out as they form and put back
// once at the end, so no zero limb is ever multiplied.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

#include "arith/numbers/signed_mul.h"
#include "arith/numbers/digit_counts.h"
#include "frame/signed_number.h"

namespace tw::arith {

// Decimal digits of |x| for the power's size guard: exact for the decimal
// radix; for the binary radix an estimate from the bit length that is exact or
// one too many, which only matters for results of billions of digits.
template <class R>
std::uint64_t digitsForSizeGuard(const NumberRecord& x) {
    if constexpr (R::isBinary) {
        const std::uint64_t bits = nativeDigitCount<R>(x.digits, x.topIndex);
        return bits * 30103 / 100000 + 1;  // log10(2) = 0.30103 (rounded up in the last digit)
    } else {
        return nativeDigitCount<R>(x.digits, x.topIndex);
    }
}

// log10 |x| from the top limbs, good to far more digits than the size checks need.
template <class R>
double log10Magnitude(const NumberRecord& x) {
    const std::uint32_t top = x.topIndex;
    double lead = x.digits[top];
    if (top > 0) lead += x.digits[top - 1] / double(R::base);
    return std::log10(lead) + top * std::log10(double(R::base));
}

// |x| := |x|^e for e >= 3 and a non-zero x.
template <class R>
void powerMagnitude(NumberRecord& x, std::uint32_t e) {
    // Trailing zero limbs of the final result, taken out as they form.
    std::uint64_t zeroLimbs = std::uint64_t(x.lowIndex) * e;
    dropLowLimbs(x, x.lowIndex);
    auto takeOutZeros = [&](unsigned squaringsLeft) {
        const std::uint32_t z = x.lowIndex;
        if (z == 0) return;
        zeroLimbs += std::uint64_t(z) << squaringsLeft;
        dropLowLimbs(x, z);
    };
    const NumberRecord base(x);
    const bool singleLimbBase = base.topIndex == 0;
    const int topBit = std::bit_width(e) - 1;
    for (int i = topBit - 1; i >= 0; --i) {
        if (terminateRequested()) {
            setRecordZero(x);
            return;
        }
        takeOutZeros(unsigned(i + 1));
        replaceWithProduct<R>(x, x, x);
        if ((e >> i) & 1u) {
            takeOutZeros(unsigned(i));
            if (singleLimbBase)
                multiplyMagnitudeByWord<R>(x, base.digits[0]);
            else
                replaceWithProduct<R>(x, x, base);
        }
    }
    if (terminateRequested()) {
        setRecordZero(x);
        return;
    }
    insertLowLimbs(x, std::size_t(zeroLimbs));
}

// x := x^e in place.  0^e is 0 for every e (0^0 included); a negative x turns
// positive for even e.  A result of more than 2^32 - 1 decimal digits by the
// estimate e * (digits - 1) records -3 and leaves zero.
template <class R>
void powerInPlace(SignedNumber<R>& x, std::uint32_t e) {
    if (x.isZero()) return;
    if (x.sign < 0 && e % 2 == 0) x.sign = 1;
    if (e == 0) {
        setMagnitudeWord<R>(x.rec(), 1);
        return;
    }
    if (e == 1) return;
    if (e == 2) {
        multiplyInto(x, x, x);
        return;
    }
    // The library's guard, e * (digits - 1), lets every one-digit base through;
    // beyond it a result whose digit count does not fit 32 bits is refused too
    // (99^4294967295 would have 8.6e9 digits), which one-digit bases never reach.
    const std::uint64_t digits = digitsForSizeGuard<R>(x.rec());
    if (std::uint64_t(e) * (digits - 1) > UINT32_MAX || e * log10Magnitude<R>(x.rec()) >= 4294967295.0) {
        setLastError(kErrTooLarge);
        x.setZero();
        return;
    }
    dropTextBuffers(x.rec());
    powerMagnitude<R>(x.rec(), e);
    x.normalizeSign();
}

// r := a^e.  power(x, x, e) leaves x as it is: the library's long-standing
// behaviour for a result that is its own base.
template <class R>
void power(SignedNumber<R>& r, const SignedNumber<R>& a, std::uint32_t e) {
    if (&r == &a) return;
    r = a;
    powerInPlace(r, e);
}

}  // namespace tw::arith
