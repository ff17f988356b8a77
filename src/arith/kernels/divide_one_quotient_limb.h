// Division whose quotient is a single limb, and the tiny long division built
// from it.  Header-only: the kernels are short and sit inside other loops.
#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "arith/kernels/add_sub.h"
#include "frame/radix.h"

namespace tw::arith {

// r[0..n) := (a[0..n) - b[0..n) * m) mod radix^n; returns what must still be
// taken from the limb above (the product's carry plus the borrow, below 2^33).
// m < 2^32.  r may equal a or b.  Cost: n limb products.
template <class R>
std::uint64_t subMulByWord(Limb* r, const Limb* a, const Limb* b, std::size_t n, std::uint32_t m) {
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < n; ++i) {
        // (radix - 1) * (2^32 - 1) + carry stays below 2^62.
        const std::uint64_t t = std::uint64_t(b[i]) * m + carry;
        const Limb lo = Limb(t % R::base);
        carry = t / R::base;
        const Limb ai = a[i];
        if (ai >= lo) {
            r[i] = ai - lo;
        } else {
            r[i] = ai + (R::base - lo);
            ++carry;
        }
    }
    return carry;
}

// Value of limbs[0..n) for n <= 4: below radix^4 <= 10^36 < 2^128.
template <class R>
u128 limbsToU128(const Limb* limbs, std::size_t n) {
    u128 v = 0;
    for (std::size_t i = n; i-- > 0;) v = v * R::base + limbs[i];
    return v;
}

// Quotient of one limb.  A = a[0..an) with an == bn or an == bn + 1 (the top
// limb may be zero), B = b[0..bn), bn >= 2, b[bn-1] != 0, and A < B * radix so
// that the quotient is below the radix.  Returns A div B; r[0..bn) := A mod B.
// r may equal a (in place), otherwise it overlaps neither operand.
// Cost: one 128-bit division and one or two passes over B.
//
// The digit is estimated from the top three limbs of B and the limbs of A
// above them (at most four limbs, exact in 128 bits).  With B3 the truncated
// divisor (B3 >= radix^2) the estimate q' = floor(A3 / B3) satisfies
// q <= q' <= q + 1: q * B3 <= A / radix^(bn-3) and q * B3 is an integer, so
// q <= q'; and q' <= (A/B) * B3' / (B3' - 1) < A/B + radix / (radix^2 - 1)
// with B3' = B / radix^(bn-3), so q' < q + 2.  One multiply-subtract and at
// most one add-back give the exact digit.  With bn <= 3 the estimate is exact.
template <class R>
Limb divideOneQuotientLimb(Limb* r, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    assert(bn >= 2 && b[bn - 1] != 0 && (an == bn || an == bn + 1));
    const std::size_t w = std::min<std::size_t>(bn, 3);
    const u128 bTop = limbsToU128<R>(b + bn - w, w);
    const u128 aTop = limbsToU128<R>(a + bn - w, an - bn + w);
    u128 qEst = aTop / bTop;
    // The true digit is below the radix, so an estimate of radix is one too big.
    if (qEst >= R::base) qEst = R::base - 1;
    Limb qd = Limb(qEst);
    const Limb above = an > bn ? a[bn] : 0;
    const std::uint64_t owed = subMulByWord<R>(r, a, b, bn, qd);
    if (owed > above) {
        // A - q'B < 0: q' was one too big.
        --qd;
        addSameLength<R>(r, r, b, bn);
    }
    return qd;
}

// q[0..an-bn+1) := A div B, r[0..bn) := A mod B by long division one quotient
// limb at a time.  Only for a few limbs (the starting value of the Newton
// reciprocal): cost (an - bn + 1) * bn limb products.  bn >= 2, b[bn-1] != 0,
// an >= bn; no output overlaps an operand.
template <class R>
void divideSchoolbookTiny(Limb* q, Limb* r, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    assert(bn >= 2 && an >= bn && b[bn - 1] != 0);
    // r holds the running remainder, kept below B; each step brings down one
    // limb of A below it, so the window is (r, a[i]) of bn + 1 limbs.
    Limb window[16];
    assert(bn + 1 <= 16);
    std::copy(a + an - (bn - 1), a + an, window);
    window[bn - 1] = 0;
    for (std::size_t i = an - bn + 1; i-- > 0;) {
        std::memmove(window + 1, window, bn * sizeof(Limb));
        window[0] = a[i];
        q[i] = divideOneQuotientLimb<R>(window, window, bn + 1, b, bn);
    }
    std::copy(window, window + bn, r);
}

}  // namespace tw::arith
