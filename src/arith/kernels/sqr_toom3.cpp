#include "arith/kernels/mul_ladder.h"
#include "arith/kernels/mul_span_ops.h"
#include "arith/kernels/mul_toom3.h"
#include "frame/error_state.h"

namespace tw::arith {

template <class R>
void sqrToom3(Limb* out, const Limb* a, std::size_t n, LimbScratch& scratch) {
    if (terminateRequested()) return;
    // Pieces a0, a1 of k limbs and a2 of n - 2k (k to k + 2) limbs; the
    // square's value at -1 is never negative.
    const std::size_t k = n / 3, n2 = n - 2 * k;
    LimbScratch::Frame frame(scratch);
    const std::size_t aN = n2 + 1, wn = 2 * aN;
    Limb* a1 = frame.take(aN);
    Limb* am1 = frame.take(aN);
    Limb* a2 = frame.take(aN);
    toomEvaluatePlusMinus<R>(a1, am1, a, k, n2, aN);
    toomEvaluateTwo<R>(a2, a, k, n2, aN);

    sqrLadder<R>(out, a, k, scratch);                     // c0, [0, 2k)
    zeroLimbs(out + 2 * k, 2 * k);
    sqrLadder<R>(out + 4 * k, a + 2 * k, n2, scratch);    // c4, [4k, 2n)
    Limb* w1 = frame.take(wn);
    Limb* wm1 = frame.take(wn);
    Limb* w2 = frame.take(wn);
    sqrLadder<R>(w1, a1, aN, scratch);
    sqrLadder<R>(wm1, am1, aN, scratch);
    sqrLadder<R>(w2, a2, aN, scratch);
    if (terminateRequested()) return;
    toomInterpolate5<R>(out, 2 * n, k, w1, wm1, false, w2, wn, frame);
}

template void sqrToom3<DecimalRadix>(Limb*, const Limb*, std::size_t, LimbScratch&);
template void sqrToom3<BinaryRadix>(Limb*, const Limb*, std::size_t, LimbScratch&);

}  // namespace tw::arith
