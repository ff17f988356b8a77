#include <algorithm>

#include "arith/kernels/mul_ladder.h"
#include "arith/kernels/mul_span_ops.h"
#include "arith/kernels/mul_toom3.h"
#include "frame/error_state.h"

namespace tw::arith {

namespace {

// L in three pieces (k, k, l-2k limbs), S in two (k, s-k limbs), k < s <= 2k:
// W = (L0 + L1 t + L2 t^2)(S0 + S1 t) has four coefficients, found from
// W(0) = L0 S0, W(inf) = L2 S1, W(1) and W(-1) with one exact halving.
template <class R>
void toom32(Limb* out, const Limb* L, std::size_t l, const Limb* S, std::size_t s, std::size_t k,
            LimbScratch& scratch) {
    const std::size_t total = l + s;
    const std::size_t l2 = l - 2 * k, s1 = s - k;
    LimbScratch::Frame frame(scratch);
    const std::size_t aN = l2 + 1, bN = k + 1, wn = aN + bN;
    Limb* a1 = frame.take(aN);
    Limb* am1 = frame.take(aN);
    Limb* b1 = frame.take(bN);
    Limb* bm1 = frame.take(bN);
    const bool negA = toomEvaluatePlusMinus<R>(a1, am1, L, k, l2, aN);
    addPadded<R>(b1, bN, S, k, S + k, s1);
    const bool negB = absDifference<R>(bm1, S, k, S + k, s1);
    bm1[k] = 0;

    mulLadder<R>(out, L, k, S, k, scratch);                         // c0, [0, 2k)
    zeroLimbs(out + 2 * k, k);
    mulLadder<R>(out + 3 * k, L + 2 * k, l2, S + k, s1, scratch);   // c3, [3k, total)
    Limb* w1 = frame.take(wn);
    Limb* wm1 = frame.take(wn);
    mulLadder<R>(w1, a1, aN, b1, bN, scratch);
    mulLadder<R>(wm1, am1, aN, bm1, bN, scratch);
    if (terminateRequested()) return;

    // even = c0 + c2, odd = c1 + c3.
    Limb* even = frame.take(wn + 1);
    Limb* odd = frame.take(wn + 1);
    toomHalfSumAndDifference<R>(even, odd, w1, wm1, negA != negB, wn);
    subtractSpanInPlace<R>(even, wn + 1, out, 2 * k);
    subtractSpanInPlace<R>(odd, wn + 1, out + 3 * k, total - 3 * k);
    addAt<R>(out, total, k, odd, wn + 1);
    addAt<R>(out, total, 2 * k, even, wn + 1);
}

// Both in three pieces of k limbs (top pieces l-2k >= s-2k >= 1 limbs):
// five products at 0, 1, -1, 2 and infinity.
template <class R>
void toom33(Limb* out, const Limb* L, std::size_t l, const Limb* S, std::size_t s, std::size_t k,
            LimbScratch& scratch) {
    const std::size_t total = l + s;
    const std::size_t l2 = l - 2 * k, s2 = s - 2 * k;
    LimbScratch::Frame frame(scratch);
    const std::size_t aN = l2 + 1, bN = std::max(k, s2) + 1, wn = aN + bN;
    Limb* a1 = frame.take(aN);
    Limb* am1 = frame.take(aN);
    Limb* a2 = frame.take(aN);
    Limb* b1 = frame.take(bN);
    Limb* bm1 = frame.take(bN);
    Limb* b2 = frame.take(bN);
    const bool negA = toomEvaluatePlusMinus<R>(a1, am1, L, k, l2, aN);
    const bool negB = toomEvaluatePlusMinus<R>(b1, bm1, S, k, s2, bN);
    toomEvaluateTwo<R>(a2, L, k, l2, aN);
    toomEvaluateTwo<R>(b2, S, k, s2, bN);

    mulLadder<R>(out, L, k, S, k, scratch);                         // c0, [0, 2k)
    zeroLimbs(out + 2 * k, 2 * k);
    mulLadder<R>(out + 4 * k, L + 2 * k, l2, S + 2 * k, s2, scratch);  // c4, [4k, total)
    Limb* w1 = frame.take(wn);
    Limb* wm1 = frame.take(wn);
    Limb* w2 = frame.take(wn);
    mulLadder<R>(w1, a1, aN, b1, bN, scratch);
    mulLadder<R>(wm1, am1, aN, bm1, bN, scratch);
    mulLadder<R>(w2, a2, aN, b2, bN, scratch);
    if (terminateRequested()) return;
    toomInterpolate5<R>(out, total, k, w1, wm1, negA != negB, w2, wn, frame);
}

}  // namespace

template <class R>
void mulToom3(Limb* out, const Limb* L, std::size_t l, const Limb* S, std::size_t s, LimbScratch& scratch) {
    if (terminateRequested()) return;
    const std::size_t k = l / 3;
    if (s <= k)
        mulUnbalanced<R>(out, L, l, S, s, scratch);
    else if (s <= 2 * k)
        toom32<R>(out, L, l, S, s, k, scratch);
    else
        toom33<R>(out, L, l, S, s, k, scratch);
}

template void mulToom3<DecimalRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t, LimbScratch&);
template void mulToom3<BinaryRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t, LimbScratch&);

}  // namespace tw::arith
