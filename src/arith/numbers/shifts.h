// Shifts by powers of ten (decimal numbers) and of two (both radices).  All
// truncate toward zero, so negative values move toward zero.
#pragma once

#include <cstdint>

#include "arith/kernels/divide_by_limb.h"
#include "arith/numbers/magnitude.h"
#include "arith/numbers/power.h"
#include "arith/numbers/signed_div.h"
#include "arith/numbers/signed_mul.h"
#include "frame/signed_number.h"

namespace tw::arith {

// log2(10) in 2.30 fixed point.  The left-shift size guard multiplies the
// shift by it, where log10(2) would give the true digit growth: the guard is
// far stricter than needed, and the library keeps it that way.
inline constexpr std::uint64_t kLog2TenFixed30 = 3566893132u;

// Refuses (-3, zero) a result whose decimal digit count would not fit 32 bits.
inline void decimalShiftLeft(DecimalNumber& x, std::uint32_t k) {
    if (k == 0 || x.isZero()) return;
    if (digitsForSizeGuard<DecimalRadix>(x.rec()) + k > UINT32_MAX) {
        setLastError(kErrTooLarge);
        x.setZero();
        return;
    }
    const std::uint32_t r = k % 9;
    if (r != 0) multiplyMagnitudeByWord<DecimalRadix>(x.rec(), kPowersOfTen[r]);
    insertLowLimbs(x.rec(), k / 9);
    x.normalizeSign();
}

inline void decimalShiftRight(DecimalNumber& x, std::uint32_t k) {
    if (k == 0 || x.isZero()) return;
    const std::uint32_t r = k % 9;
    if (r != 0) {
        // Scale so the cut falls on a limb boundary, then drop whole limbs.
        multiplyMagnitudeByWord<DecimalRadix>(x.rec(), kPowersOfTen[9 - r]);
        dropLowLimbs(x.rec(), std::size_t(k / 9) + 1);
    } else {
        dropLowLimbs(x.rec(), k / 9);
    }
    x.normalizeSign();
}

// Shifts of binary limbs by whole bits: out[i] collects the bits of a moved up
// (or down) by `bits` < 28 positions.
inline void shiftLimbsLeftBits(NumberRecord& x, std::size_t limbs, unsigned bits) {
    const std::size_t n = x.topIndex + 1;
    const std::size_t total = n + limbs + 1;
    if (!fitsLimbCount(total)) {
        setLastError(kErrTooLarge);
        setRecordZero(x);
        return;
    }
    dropTextBuffers(x);
    resizeStorage(x, std::uint32_t(total), false);
    if (x.allocated() < total) return;
    Limb* d = x.digits;
    constexpr unsigned width = BinaryRadix::bitsPerLimb;
    for (std::size_t i = n + 1; i-- > 0;) {
        const Limb high = i < n ? d[i] << bits : 0;
        const Limb low = (i > 0 && bits != 0) ? d[i - 1] >> (width - bits) : 0;
        d[i + limbs] = (high | low) & BinaryRadix::mask;
    }
    std::fill(d, d + limbs, 0);
    normalizeIndices(x, std::uint32_t(total));
}

inline void shiftLimbsRightBits(NumberRecord& x, std::size_t limbs, unsigned bits) {
    dropLowLimbs(x, limbs);
    if (bits == 0 || x.isZero()) return;
    Limb* d = x.digits;
    const std::size_t n = x.topIndex + 1;
    constexpr unsigned width = BinaryRadix::bitsPerLimb;
    for (std::size_t i = 0; i < n; ++i) {
        const Limb above = i + 1 < n ? (d[i + 1] << (width - bits)) & BinaryRadix::mask : 0;
        d[i] = (d[i] >> bits) | above;
    }
    normalizeIndices(x, std::uint32_t(n));
}

// 2^k as a number of radix R.
template <class R>
SignedNumber<R> powerOfTwo(std::uint32_t k) {
    SignedNumber<R> p;
    setU64(p, 2);
    powerInPlace(p, k);
    return p;
}

template <class R>
void bitShiftLeft(SignedNumber<R>& x, std::uint32_t k) {
    if (k == 0 || x.isZero()) return;
    if (k >= 32) {
        const std::uint64_t digits = digitsForSizeGuard<R>(x.rec());
        if (digits + ((std::uint64_t(k) * kLog2TenFixed30) >> 30) > UINT32_MAX) {
            setLastError(kErrTooLarge);
            x.setZero();
            return;
        }
    }
    if constexpr (R::isBinary) {
        shiftLimbsLeftBits(x.rec(), k / R::bitsPerLimb, k % R::bitsPerLimb);
    } else if (k < 32) {
        multiplyMagnitudeByWord<R>(x.rec(), std::uint32_t(1) << k);
    } else {
        const SignedNumber<R> p = powerOfTwo<R>(k);
        replaceWithProduct<R>(x.rec(), x.rec(), p.rec());
    }
    x.normalizeSign();
}

template <class R>
void bitShiftRight(SignedNumber<R>& x, std::uint32_t k) {
    if (k == 0 || x.isZero()) return;
    NumberRecord& rec = x.rec();
    if constexpr (R::isBinary) {
        shiftLimbsRightBits(rec, k / R::bitsPerLimb, k % R::bitsPerLimb);
    } else if (k < 10) {
        if (k == 1) {
            dropTextBuffers(rec);
            divideByLimb<R>(rec.digits, rec.digits, rec.topIndex + 1, 2);
            normalizeIndices(rec, rec.topIndex + 1);
        } else {
            // 2^9 divides 10^9: scale by 10^9 / 2^k and drop one limb.
            multiplyMagnitudeByWord<R>(rec, R::base >> k);
            dropLowLimbs(rec, 1);
        }
    } else if (k < 32) {
        dropTextBuffers(rec);
        divideByLimb<R>(rec.digits, rec.digits, rec.topIndex + 1, std::uint32_t(1) << k);
        normalizeIndices(rec, rec.topIndex + 1);
    } else if (digitsForSizeGuard<R>(rec) * kLog2TenFixed30 >= (std::uint64_t(k) << 30)) {
        // The magnitude may reach 2^k: divide by it.
        const SignedNumber<R> p = powerOfTwo<R>(k);
        NumberRecord quotient;
        divideMagnitudes<R>(quotient, nullptr, rec, p.rec());
        dropTextBuffers(rec);
        std::swap(rec, quotient);
        resizeStorage(rec, rec.topIndex + 1, false);
    } else {
        setRecordZero(rec);
    }
    x.normalizeSign();
}

}  // namespace tw::arith
