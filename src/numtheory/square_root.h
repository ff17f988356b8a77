// The square root with remainder of a limb span: the recursive square root
// (Zimmermann's Karatsuba square root) over any radix B, every temporary in
// one scratch arena.
//
// a = A B^2k + a1 B^k + a0 with k about a quarter of the limbs; from
// s'^2 + r' = A, q = (r' B^k + a1) div 2s' with remainder u, s = s' B^k + q
// is never below the root, and a - s^2 = u B^k + a0 - q^2.  Since s' has more
// limbs than k, s overshoots by a unit or two at most, each taken back by
// r += 2s - 1, s -= 1.  Short quotients go by long division; longer divisions
// and the squares take the transform wherever it beats the ladder
// (ProductRule::Fastest).
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "arith/kernels/add_sub.h"
#include "arith/kernels/divide_newton.h"
#include "arith/kernels/divide_one_quotient_limb.h"
#include "arith/kernels/fast_product.h"
#include "arith/kernels/mul_scratch.h"
#include "arith/kernels/mul_span_ops.h"
#include "arith/tuning.h"
#include "frame/error_state.h"
#include "frame/machine_int.h"
#include "frame/radix.h"

namespace tw::numtheory {

// Limbs of the root of an an-limb number.
constexpr std::size_t squareRootLimbs(std::size_t an) { return (an + 1) / 2; }

// A first block for the arena of squareRootSpans: every level's spans sum to
// a few times the root, and the divisions' own frames sit on top.
constexpr std::size_t squareRootScratchLimbs(std::size_t an) { return 8 * an + 256; }

namespace detail {

// out[0 .. 2n) := a[0..n)^2 by the squaring ladder, or by the transform where
// it is cheaper.
template <class R>
void squareFast(arith::LimbScratch& scratch, Limb* out, const Limb* a, std::size_t n) {
    if (arith::transformIsCheaper<R>(n, 2 * n))
        arith::transformSquare<R>(out, a, n, scratch);
    else
        arith::square<R>(out, a, n);
}

// m := x - m for a negative value -m[0..mn) plus x[0..xn) (m holds max(mn, xn)
// limbs); returns whether the sum is still negative.
template <class R>
bool addToNegative(Limb* m, std::size_t mn, const Limb* x, std::size_t xn) {
    const bool turned = arith::absDifference<R>(m, m, mn, x, xn);
    return !turned && arith::trimmedLength(m, std::max(mn, xn)) != 0;
}

}  // namespace detail

// s[0 .. sn] := floor(sqrt(a)) (sn = squareRootLimbs(an); the limb s[sn] is
// room for a passing overshoot and ends zero), r[0 .. sn] := a - s^2; returns
// r's length without zero top limbs.  a[0..an) with an >= 1 and a[an-1] != 0;
// s and r overlap neither a nor each other.  When the terminate flag is raised
// the outputs are unspecified.  Temporaries are frames of `scratch`.
template <class R>
std::size_t squareRootSpans(arith::LimbScratch& scratch, Limb* s, Limb* r, const Limb* a, std::size_t an) {
    const std::size_t sn = squareRootLimbs(an);
    if (an <= 4) {  // below 2^120 in either radix: 128-bit arithmetic
        u128 v = 0;
        for (std::size_t i = an; i-- > 0;) v = v * R::base + a[i];
        std::uint64_t x = std::uint64_t(std::sqrt(double(v)));
        if (x != 0) x = std::uint64_t((x + v / x) / 2);  // a Newton step from the double estimate
        while (u128(x) * x > v) --x;
        while (u128(x + 1) * (x + 1) <= v) ++x;
        u128 rest = v - u128(x) * x;
        for (std::size_t i = 0; i <= sn; ++i, x /= R::base) s[i] = Limb(x % R::base);
        for (std::size_t i = 0; i <= sn; ++i, rest /= R::base) r[i] = Limb(rest % R::base);
        return arith::trimmedLength(r, sn + 1);
    }
    const std::size_t k = (an - 1) / 4, hs = sn - k;
    arith::LimbScratch::Frame frame(scratch);
    // s' into the top of s, r' apart.
    Limb* rTop = frame.take(hs + 1);
    const std::size_t rTopN = squareRootSpans<R>(scratch, s + k, rTop, a + 2 * k, an - 2 * k);
    if (terminateRequested()) return 0;

    // q, u := (r' B^k + a1) divmod 2s'.
    Limb* num = frame.take(k + hs + 2);
    arith::copyLimbs(num, a + k, k);
    arith::copyLimbs(num + k, rTop, rTopN);
    const std::size_t numN = arith::trimmedLength(num, k + rTopN);
    Limb* den = frame.take(hs + 1);
    den[hs] = arith::addSameLength<R>(den, s + k, s + k, hs);
    const std::size_t denN = hs + (den[hs] != 0);
    Limb* q = frame.take(k + 2);
    Limb* u = frame.take(denN);
    std::size_t qn = 0;
    if (numN < denN) {
        arith::copyLimbs(u, num, numN);
        arith::zeroLimbs(u + numN, denN - numN);
    } else if (denN >= 2 && (numN - denN + 1) * denN <= kRootLongDivisionMax) {
        // Short quotients by long division in place: a reciprocal costs more.
        qn = numN - denN + 1;
        num[numN] = 0;
        const arith::QuotientEstimator<R> top(den, denN);
        for (std::size_t i = qn; i-- > 0;) q[i] = arith::divideOneQuotientLimb<R>(num + i, num + i, denN + 1, den, denN, top);
        arith::copyLimbs(u, num, denN);
        qn = arith::trimmedLength(q, qn);
    } else {
        arith::divideMagnitude<R>(scratch, q, u, num, numN, den, denN, nullptr, 0, arith::ProductRule::Fastest);
        if (terminateRequested()) return 0;
        qn = arith::trimmedLength(q, numN - denN + 1);
    }

    // s := s' B^k + q.
    arith::copyLimbs(s, q, std::min(qn, k));
    arith::zeroLimbs(s + std::min(qn, k), k - std::min(qn, k));
    if (qn > k) s[sn] = arith::addSpans<R>(s + k, s + k, hs, q + k, qn - k);

    // r := u B^k + a0 - q^2, held as a magnitude and a sign.
    const std::size_t width = std::max(sn + 1, 2 * qn);
    Limb* t = frame.take(width);
    arith::copyLimbs(t, a, k);
    arith::copyLimbs(t + k, u, denN);
    arith::zeroLimbs(t + k + denN, width - k - denN);
    bool negative = false;
    if (qn != 0) {
        Limb* square = frame.take(2 * qn);
        detail::squareFast<R>(scratch, square, q, qn);
        negative = arith::absDifference<R>(t, t, k + denN, square, 2 * qn);
        negative = negative && arith::trimmedLength(t, width) != 0;
    }
    // s overshot: r += 2s - 1, s -= 1, as r += s, s -= 1, r += s.
    while (negative && !terminateRequested()) {
        negative = detail::addToNegative<R>(t, width, s, sn + 1);
        arith::subBorrow<R>(s, s, sn + 1, 1);
        if (negative) negative = detail::addToNegative<R>(t, width, s, sn + 1);
        else arith::addSpans<R>(t, t, width, s, sn + 1);
    }
    arith::copyLimbs(r, t, sn + 1);
    return arith::trimmedLength(r, sn + 1);
}

}  // namespace tw::numtheory
