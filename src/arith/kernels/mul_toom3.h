// Evaluation and interpolation steps shared by the Toom-3 product and square.
//
// A number X is cut into pieces X0, X1 (k limbs each) and X2 (the rest), read
// as the polynomial X0 + X1 t + X2 t^2 at t = B^k.  The product polynomial's
// coefficients c0 .. c4 are all non-negative, so the interpolation below is
// arranged to keep every intermediate value non-negative: plain unsigned span
// arithmetic throughout, with the sign of the value at -1 carried separately.
#pragma once

#include <cstddef>
#include <utility>

#include "arith/kernels/mul_scratch.h"
#include "arith/kernels/mul_span_ops.h"
#include "frame/radix.h"

namespace tw::arith {

// out[0..width) := a[0..an) + b[0..bn), zero-extended; width > max(an, bn).
template <class R>
void addPadded(Limb* out, std::size_t width, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    if (an < bn) {
        std::swap(a, b);
        std::swap(an, bn);
    }
    out[an] = combineSpans<R, false>(out, a, an, b, bn);
    zeroLimbs(out + an + 1, width - an - 1);
}

// p1 := X0 + X1 + X2 and pm1 := |X0 - X1 + X2|, both of `width` limbs
// (width > max(k, topN)); X2 = X[2k .. 2k+topN).  Returns true when
// X0 - X1 + X2 is negative.
template <class R>
bool toomEvaluatePlusMinus(Limb* p1, Limb* pm1, const Limb* X, std::size_t k, std::size_t topN, std::size_t width) {
    addPadded<R>(pm1, width, X, k, X + 2 * k, topN);
    copyLimbs(p1, pm1, width);
    addAt<R>(p1, width, 0, X + k, k);
    return absDifference<R>(pm1, pm1, width, X + k, k);
}

// p2 := X0 + 2 X1 + 4 X2 = 2 (2 X2 + X1) + X0, `width` limbs as above.
template <class R>
void toomEvaluateTwo(Limb* p2, const Limb* X, std::size_t k, std::size_t topN, std::size_t width) {
    copyLimbs(p2, X + 2 * k, topN);
    zeroLimbs(p2 + topN, width - topN);
    combineSameLength<R, false>(p2, p2, p2, width);
    addAt<R>(p2, width, 0, X + k, k);
    combineSameLength<R, false>(p2, p2, p2, width);
    addAt<R>(p2, width, 0, X, k);
}

// From w1 = W(1) and wm1 = |W(-1)| (negative: W(-1) < 0), each wn limbs:
// half := (W(1) + W(-1)) / 2 = sum of the even coefficients,
// halfDiff := (W(1) - W(-1)) / 2 = sum of the odd ones; wn + 1 limbs each.
// Both sums are exact (W(1) and W(-1) have the same parity).
template <class R>
void toomHalfSumAndDifference(Limb* half, Limb* halfDiff, const Limb* w1, const Limb* wm1, bool negative,
                              std::size_t wn) {
    Limb* plus = negative ? halfDiff : half;    // gets w1 + |W(-1)|
    Limb* minus = negative ? half : halfDiff;   // gets w1 - |W(-1)|
    addPadded<R>(plus, wn + 1, w1, wn, wm1, wn);
    copyLimbs(minus, w1, wn);
    minus[wn] = 0;
    subtractSpanInPlace<R>(minus, wn + 1, wm1, wn);
    divideExactInPlace<R, 2>(half, wn + 1);
    divideExactInPlace<R, 2>(halfDiff, wn + 1);
}

// Completes a five-point Toom-3 product in out[0..total): on entry out holds
// c0 = W(0) in [0, 2k), c4 = W(inf) from 4k up and zeros between; w1, wm1
// (with its sign) and w2 are W(1), |W(-1)| and W(2), wn limbs each; w2 is
// overwritten.  Then
//   c1 + c3 = (W(1) - W(-1)) / 2,   c0 + c2 + c4 = (W(1) + W(-1)) / 2,
//   6 c3 = W(2) - c0 - 4 c2 - 16 c4 - 2 (c1 + c3),
// one exact halving and one exact division by 3 giving c3, and c1, c2, c3
// are added at limbs k, 2k, 3k.  Scratch 2 (wn + 1) limbs; linear time.
template <class R>
void toomInterpolate5(Limb* out, std::size_t total, std::size_t k, const Limb* w1, const Limb* wm1, bool negative,
                      Limb* w2, std::size_t wn, LimbScratch::Frame& frame) {
    Limb* even = frame.take(wn + 1);
    Limb* odd = frame.take(wn + 1);
    toomHalfSumAndDifference<R>(even, odd, w1, wm1, negative, wn);
    const Limb* c0 = out;
    const Limb* c4 = out + 4 * k;
    const std::size_t c4n = total - 4 * k;
    Limb* c2 = even;
    subtractSpanInPlace<R>(c2, wn + 1, c0, 2 * k);
    subtractSpanInPlace<R>(c2, wn + 1, c4, c4n);
    Limb* c3 = w2;
    subtractSpanInPlace<R>(c3, wn, c0, 2 * k);
    subtractMultipleInPlace<R>(c3, wn, c2, wn + 1, 4);
    subtractMultipleInPlace<R>(c3, wn, c4, c4n, 16);
    subtractMultipleInPlace<R>(c3, wn, odd, wn + 1, 2);
    divideExactInPlace<R, 2>(c3, wn);
    divideExactInPlace<R, 3>(c3, wn);
    Limb* c1 = odd;
    subtractSpanInPlace<R>(c1, wn + 1, c3, wn);
    addAt<R>(out, total, k, c1, wn + 1);
    addAt<R>(out, total, 2 * k, c2, wn + 1);
    addAt<R>(out, total, 3 * k, c3, wn);
}

}  // namespace tw::arith
