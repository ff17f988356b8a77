#include "arith/kernels/mul_ladder.h"
#include "arith/kernels/mul_span_ops.h"
#include "arith/kernels/ntt/transform_lengths.h"
#include "arith/kernels/ntt/transform_multiply.h"
#include "arith/tuning.h"
#include "frame/error_state.h"

namespace tw::arith {

template <class R>
void mulUnbalanced(Limb* out, const Limb* L, std::size_t l, const Limb* S, std::size_t s, LimbScratch& scratch) {
    if (terminateRequested()) return;
    // The transform of S is made once and reused for every chunk of L, so a
    // long enough L pays for it whatever the length of S.
    const std::size_t n = 2 * ntt::nextPowerOfTwo(s);
    if (n <= kTransformMaxLength && 4 * (n - s) <= l) {
        transformMultiply<R>(out, L, l, S, s);
        return;
    }
    // L in pieces of s limbs from the bottom; each piece times S through the
    // ladder (balanced, so the rung suits it) and added in at its offset.
    const std::size_t total = l + s;
    zeroLimbs(out, total);
    LimbScratch::Frame frame(scratch);
    Limb* part = frame.take(2 * s);
    for (std::size_t off = 0; off < l; off += s) {
        if (terminateRequested()) return;
        const std::size_t p = s < l - off ? s : l - off;
        std::size_t z = 0;
        while (z < p && L[off + z] == 0) ++z;
        if (z == p) continue;
        mulLadder<R>(part, L + off + z, p - z, S, s, scratch);
        addAt<R>(out, total, off + z, part, p - z + s);
    }
}

template void mulUnbalanced<DecimalRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t, LimbScratch&);
template void mulUnbalanced<BinaryRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t, LimbScratch&);

}  // namespace tw::arith
