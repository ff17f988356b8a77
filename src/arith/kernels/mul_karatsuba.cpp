#include <algorithm>

#include "arith/kernels/mul_karatsuba.h"
#include "arith/kernels/mul_ladder.h"
#include "arith/kernels/mul_span_ops.h"
#include "frame/error_state.h"

namespace tw::arith {

template <class R>
void mulKaratsuba(Limb* out, const Limb* L, std::size_t l, const Limb* S, std::size_t s, LimbScratch& scratch) {
    if (terminateRequested()) return;
    const std::size_t h = l / 2;
    if (h >= s) {
        mulUnbalanced<R>(out, L, l, S, s, scratch);
        return;
    }
    // L = L1*B^h + L0 and S = S1*B^h + S0; L1 has l-h >= h limbs, S1 has s-h.
    const std::size_t total = l + s;
    mulLadder<R>(out, L, h, S, h, scratch);
    mulLadder<R>(out + 2 * h, L + h, l - h, S + h, s - h, scratch);

    LimbScratch::Frame frame(scratch);
    const std::size_t dlN = l - h;
    const std::size_t dsN = std::max(h, s - h);
    Limb* dL = frame.take(dlN);
    Limb* dS = frame.take(dsN);
    const bool negL = absDifference<R>(dL, L + h, l - h, L, h);
    const bool negS = absDifference<R>(dS, S + h, s - h, S, h);
    // (L1-L0)(S1-S0) = L1S1 + L0S0 - (L0S1 + L1S0): subtract it when positive.
    Limb* P = frame.take(dlN + dsN);
    mulLadder<R>(P, dL, dlN, dS, dsN, scratch);
    if (terminateRequested()) return;
    karatsubaCombine<R>(out, total, h, P, dlN + dsN, negL == negS, frame);
}

template void mulKaratsuba<DecimalRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t, LimbScratch&);
template void mulKaratsuba<BinaryRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t, LimbScratch&);

}  // namespace tw::arith
