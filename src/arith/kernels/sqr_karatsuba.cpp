#include "arith/kernels/mul_karatsuba.h"
#include "arith/kernels/mul_ladder.h"
#include "arith/kernels/mul_span_ops.h"
#include "frame/error_state.h"

namespace tw::arith {

template <class R>
void sqrKaratsuba(Limb* out, const Limb* a, std::size_t n, LimbScratch& scratch) {
    if (terminateRequested()) return;
    // a = a1*B^h + a0 with h = ceil(n/2) limbs in a0, so a1 is never longer.
    const std::size_t h = (n + 1) / 2;
    sqrLadder<R>(out, a, h, scratch);
    sqrLadder<R>(out + 2 * h, a + h, n - h, scratch);

    LimbScratch::Frame frame(scratch);
    Limb* d = frame.take(h);
    absDifference<R>(d, a, h, a + h, n - h);
    // (a1-a0)^2 = a1^2 + a0^2 - 2*a1*a0: always subtracted.
    Limb* P = frame.take(2 * h);
    sqrLadder<R>(P, d, h, scratch);
    if (terminateRequested()) return;
    karatsubaCombine<R>(out, 2 * n, h, P, 2 * h, true, frame);
}

template void sqrKaratsuba<DecimalRadix>(Limb*, const Limb*, std::size_t, LimbScratch&);
template void sqrKaratsuba<BinaryRadix>(Limb*, const Limb*, std::size_t, LimbScratch&);

}  // namespace tw::arith
