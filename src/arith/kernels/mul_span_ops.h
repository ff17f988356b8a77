// Linear-time helpers of the multiplication ladder: trimming, signed
// differences, placing partial products, and the exact small divisions of
// Toom-3 interpolation.  All are templates over the radix R; none allocates.
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>

#include "arith/kernels/add_sub.h"
#include "arith/kernels/radix_traits.h"
#include "frame/radix.h"

namespace tw::arith {

// Length of p[0..n) without its zero top limbs (0 for a zero value).
inline std::size_t trimmedLength(const Limb* p, std::size_t n) {
    while (n > 0 && p[n - 1] == 0) --n;
    return n;
}
// The same, but a zero value keeps one limb (the division's spans).
inline std::size_t trimmedLengthAtLeastOne(const Limb* p, std::size_t n) {
    while (n > 1 && p[n - 1] == 0) --n;
    return n;
}

// Count of zero limbs at the bottom of p[0..n), n >= 1 and p not all zero.
inline std::size_t lowZeroLimbs(const Limb* p) {
    std::size_t z = 0;
    while (p[z] == 0) ++z;
    return z;
}

inline void zeroLimbs(Limb* p, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) p[i] = 0;
}

inline void copyLimbs(Limb* out, const Limb* p, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) out[i] = p[i];
}

// One limb of a sum or difference, branch-free: returns a + b + carry (or
// a - b - borrow) reduced into [0, radix) and updates the carry (borrow).
// Both radices are below 2^31, so a negative difference shows in bit 31.
template <class R, bool Subtract>
inline Limb limbStep(Limb a, Limb b, Limb& carry) {
    if constexpr (Subtract) {
        const Limb t = a - b - carry;
        carry = t >> 31;
        return t + (R::base & (0u - carry));
    } else {
        const Limb t = a + b + carry;
        carry = t >= R::base;
        return t - (R::base & (0u - carry));
    }
}

// out[0..n) := a[0..n) +- b[0..n); returns the carry (borrow).  out may equal
// a or b.  Scalar: the two halves run as two independent carry chains, which
// the processor overlaps, and the lower half's carry then moves into the upper.
template <class R, bool Subtract>
Limb combineSameLengthTwoChains(Limb* out, const Limb* a, const Limb* b, std::size_t n) {
    const std::size_t h = n / 2;
    Limb low = 0, high = 0;
    for (std::size_t i = 0; i < h; ++i) {
        out[i] = limbStep<R, Subtract>(a[i], b[i], low);
        out[h + i] = limbStep<R, Subtract>(a[h + i], b[h + i], high);
    }
    if (n % 2 != 0) out[n - 1] = limbStep<R, Subtract>(a[n - 1], b[n - 1], high);
    // The whole sum (difference) carries at most once, so the two can't both be set.
    const Limb moved = Subtract ? subBorrow<R>(out + h, out + h, n - h, low) : addCarry<R>(out + h, out + h, n - h, low);
    return high | moved;
}

// out[0..n) := a[0..n) +- b[0..n); returns the carry (borrow).  out may equal
// a or b.  The 512-bit kernels from their threshold on.
template <class R, bool Subtract>
Limb combineSameLength(Limb* out, const Limb* a, const Limb* b, std::size_t n) {
    if (useWideAddSub(n))
        return Subtract ? subSameLengthWide<R>(out, a, b, n, 0) : addSameLengthWide<R>(out, a, b, n, 0);
    return combineSameLengthTwoChains<R, Subtract>(out, a, b, n);
}

// out[0..an) := a[0..an) +- b[0..bn), an >= bn; returns the carry (borrow).
// out may equal a or b.
template <class R, bool Subtract>
Limb combineSpans(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    const Limb c = combineSameLength<R, Subtract>(out, a, b, bn);
    return Subtract ? subBorrow<R>(out + bn, a + bn, an - bn, c) : addCarry<R>(out + bn, a + bn, an - bn, c);
}

// Compares a[0..an) with b[0..bn) as numbers (either may have zero top limbs).
inline int compareSpans(const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    an = trimmedLength(a, an);
    bn = trimmedLength(b, bn);
    if (an != bn) return an < bn ? -1 : 1;
    return compareSameLength(a, b, an);
}

// out[0..max(an, bn)) := |a - b|; returns true when a < b.  out may equal
// a or b (limbs are read before they are written at the same index).
template <class R>
bool absDifference(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    const bool negative = compareSpans(a, an, b, bn) < 0;
    const Limb* big = negative ? b : a;
    const Limb* small = negative ? a : b;
    std::size_t bigN = negative ? bn : an;
    std::size_t smallN = trimmedLength(small, negative ? an : bn);
    const std::size_t width = an > bn ? an : bn;
    // The larger value's trimmed length is at least the smaller's.
    bigN = trimmedLength(big, bigN);
    combineSpans<R, true>(out, big, bigN, small, smallN);
    zeroLimbs(out + bigN, width - bigN);
    return negative;
}

// out[off .. outN) += x[0..xn), x possibly with zero top limbs; the sum must
// fit (the ladder only adds parts of a product into room the product fills).
template <class R>
void addAt(Limb* out, std::size_t outN, std::size_t off, const Limb* x, std::size_t xn) {
    xn = trimmedLength(x, xn);
    assert(off + xn <= outN);
    [[maybe_unused]] const Limb carry = combineSpans<R, false>(out + off, out + off, outN - off, x, xn);
    assert(carry == 0);
}

// a[0..an) -= b[0..bn), an >= bn after trimming b; a must stay non-negative.
template <class R>
void subtractSpanInPlace(Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    bn = trimmedLength(b, bn);
    assert(bn <= an);
    [[maybe_unused]] const Limb borrow = combineSpans<R, true>(a, a, an, b, bn);
    assert(borrow == 0);
}

// a[0..an) -= m * b[0..bn), m small (m * radix fits 32 bits); a stays non-negative.
template <class R>
void subtractMultipleInPlace(Limb* a, std::size_t an, const Limb* b, std::size_t bn, Limb m) {
    using T = MulTraits<R>;
    bn = trimmedLength(b, bn);
    assert(bn <= an);
    std::uint64_t carry = 0;
    Limb borrow = 0;
    for (std::size_t i = 0; i < bn; ++i) {
        const std::uint64_t p = std::uint64_t(b[i]) * m + carry;
        const Limb lo = T::low(p);
        carry = T::high(p);
        const Limb d = a[i] - lo - borrow;
        borrow = a[i] < lo + borrow;
        a[i] = borrow ? d + R::base : d;
    }
    // What is still owed (below m + 2) comes off the limbs above b's top.
    std::uint64_t owed = carry + borrow;
    for (std::size_t i = bn; owed != 0 && i < an; ++i) {
        if (a[i] >= owed) {
            a[i] -= Limb(owed);
            owed = 0;
        } else {
            a[i] = Limb(a[i] + R::base - owed);
            owed = 1;
        }
    }
    assert(owed == 0);
}

// a[0..n) := a / D, exact (a is a multiple of D); top-down, one limb at a time.
// D is a compile-time constant so the divisions become multiplications.
template <class R, Limb D>
void divideExactInPlace(Limb* a, std::size_t n) {
    std::uint64_t rem = 0;
    for (std::size_t i = n; i-- > 0;) {
        const std::uint64_t cur = rem * R::base + a[i];
        a[i] = Limb(cur / D);
        rem = cur % D;
    }
    assert(rem == 0);
}

}  // namespace tw::arith
