// The recombination step shared by the Karatsuba product and square.
#pragma once

#include <cstddef>

#include "arith/kernels/mul_scratch.h"
#include "arith/kernels/mul_span_ops.h"
#include "frame/radix.h"

namespace tw::arith {

// out[0..total) holds z0 = X0*Y0 in its low 2h limbs and z2 = X1*Y1 above;
// P[0..pn) is |X1-X0| * |Y1-Y0|, to be subtracted when the two differences
// had the same sign, else added.  Adds the middle term z0 + z2 -+ P at limb h,
// completing X*Y.  Needs total - h scratch limbs; linear time.
template <class R>
void karatsubaCombine(Limb* out, std::size_t total, std::size_t h, const Limb* P, std::size_t pn, bool subtract,
                      LimbScratch::Frame& frame) {
    const std::size_t tn = total - h;   // room above h; holds the middle term
    const std::size_t highN = total - 2 * h;
    Limb* mid = frame.take(tn);
    copyLimbs(mid, out + 2 * h, highN);
    zeroLimbs(mid + highN, tn - highN);
    addAt<R>(mid, tn, 0, out, 2 * h);
    if (subtract)
        subtractSpanInPlace<R>(mid, tn, P, pn);
    else
        addAt<R>(mid, tn, 0, P, pn);
    addAt<R>(out, total, h, mid, tn);
}

}  // namespace tw::arith
