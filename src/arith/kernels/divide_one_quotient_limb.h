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
// taken from the limb above (the product's carry plus the borrow, at most
// radix).  m < radix.  r may equal a or b.  Cost: n limb products.
//
// The products and their splits into limbs do not wait on the carry: only a
// signed running carry k - hi passes from limb to limb, with the borrow
// k in {-2, -1, 0} read from two compares (a[i] - lo + carry lies in
// [-2 radix, radix), since lo < radix and hi < m < radix).
template <class R>
std::uint64_t subMulByWord(Limb* r, const Limb* a, const Limb* b, std::size_t n, std::uint32_t m) {
    constexpr std::int64_t base = R::base;
    std::int64_t carry = 0;  // in [-(radix + 1), 0]
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint64_t t = std::uint64_t(b[i]) * m;
        const std::int64_t hi = std::int64_t(t / R::base);
        const std::int64_t lo = std::int64_t(t) - hi * base;
        const std::int64_t v = std::int64_t(a[i]) - lo + carry;
        const std::int64_t k = -std::int64_t(v < 0) - std::int64_t(v < -base);
        r[i] = Limb(v - k * base);
        carry = k - hi;
    }
    return std::uint64_t(-carry);
}

// Value of limbs[0..n) for n <= 4: below radix^4 <= 10^36 < 2^128.
template <class R>
u128 limbsToU128(const Limb* limbs, std::size_t n) {
    u128 v = 0;
    for (std::size_t i = n; i-- > 0;) v = v * R::base + limbs[i];
    return v;
}

inline double u128ToDouble(u128 v) { return double(std::uint64_t(v >> 64)) * 0x1p64 + double(std::uint64_t(v)); }

// The top of a divisor B = b[0..bn), bn >= 2, b[bn-1] != 0, prepared once
// for the one-limb quotients of a long division: its top three limbs (all of
// B for bn <= 3) exact in 128 bits, and their reciprocal in floating point,
// so that each estimate is a multiplication instead of a division.
template <class R>
struct QuotientEstimator {
    std::size_t w;
    u128 bTop;
    double inverse;

    QuotientEstimator(const Limb* b, std::size_t bn)
        : w(std::min<std::size_t>(bn, 3)), bTop(limbsToU128<R>(b + bn - w, w)), inverse(1.0 / u128ToDouble(bTop)) {}

    // floor(aTop / bTop) when it is below 2^40: the floating-point estimate
    // is off by at most one (53 bits of precision against a quotient of 40),
    // made exact with 128-bit products.
    std::uint64_t quotient(u128 aTop) const {
        std::uint64_t q = std::uint64_t(u128ToDouble(aTop) * inverse);
        u128 product = u128(q) * bTop;
        while (product > aTop) {
            --q;
            product -= bTop;
        }
        while (aTop - product >= bTop) {
            ++q;
            product += bTop;
        }
        return q;
    }
};

// Quotient of one limb.  A = a[0..an) with an == bn or an == bn + 1 (the top
// limb may be zero), B = b[0..bn), bn >= 2, b[bn-1] != 0, and A < B * radix so
// that the quotient is below the radix.  Returns A div B; r[0..bn) := A mod B.
// r may equal a (in place), otherwise it overlaps neither operand.
// Cost: one estimate and one or two passes over B.
//
// The digit is estimated from the top three limbs of B and the limbs of A
// above them (at most four limbs, exact in 128 bits).  With B3 the truncated
// divisor (B3 >= radix^2) the estimate q' = floor(A3 / B3) satisfies
// q <= q' <= q + 1: q * B3 <= A / radix^(bn-3) and q * B3 is an integer, so
// q <= q'; and q' <= (A/B) * B3' / (B3' - 1) < A/B + radix / (radix^2 - 1)
// with B3' = B / radix^(bn-3), so q' < q + 2.  One multiply-subtract and at
// most one add-back give the exact digit.  With bn <= 3 the estimate is exact.
template <class R>
Limb divideOneQuotientLimb(Limb* r, const Limb* a, std::size_t an, const Limb* b, std::size_t bn,
                           const QuotientEstimator<R>& top) {
    assert(bn >= 2 && b[bn - 1] != 0 && (an == bn || an == bn + 1));
    const u128 aTop = limbsToU128<R>(a + bn - top.w, an - bn + top.w);
    // aTop < bTop * (radix + 1), so the quotient is at most radix.
    std::uint64_t qEst = top.quotient(aTop);
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
template <class R>
Limb divideOneQuotientLimb(Limb* r, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    return divideOneQuotientLimb<R>(r, a, an, b, bn, QuotientEstimator<R>(b, bn));
}

// q[0..an-bn+1) := A div B by long division in place, one quotient limb at
// a time, leaving A mod B in a[0..bn) (the limbs above are left stale).
// bn >= 2, b[bn-1] != 0, an >= bn; q overlaps neither.  Each step divides a
// window of the running remainder (below B) and the next limb of A, so its
// quotient is below the radix.  Cost: (an - bn + 1) * bn limb products.
template <class R>
void divideSchoolbookInPlace(Limb* q, Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    const QuotientEstimator<R> top(b, bn);
    std::size_t i = an - bn;
    q[i] = divideOneQuotientLimb<R>(a + i, a + i, bn, b, bn, top);
    while (i-- > 0) q[i] = divideOneQuotientLimb<R>(a + i, a + i, bn + 1, b, bn, top);
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
    const QuotientEstimator<R> top(b, bn);
    std::copy(a + an - (bn - 1), a + an, window);
    window[bn - 1] = 0;
    for (std::size_t i = an - bn + 1; i-- > 0;) {
        std::memmove(window + 1, window, bn * sizeof(Limb));
        window[0] = a[i];
        q[i] = divideOneQuotientLimb<R>(window, window, bn + 1, b, bn, top);
    }
    std::copy(window, window + bn, r);
}

}  // namespace tw::arith
