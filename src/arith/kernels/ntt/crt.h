// The Chinese remainder step of the transform product: from the residues of
// the convolution sums modulo the three primes to limbs of radix R, carrying
// as it goes (the sums never exist as numbers of their own).
#pragma once

#include <cstddef>

#include "arith/kernels/ntt/crt_constants.h"
#include "arith/kernels/ntt/kernel_table.h"
#include "frame/radix.h"

namespace tw::arith::ntt {

// Sum_k c_k R^k, where c_k (k < count) is the convolution sum with residues
// r0[k], r1[k], r2[k] (scaled as `g` expects), written to out[0 .. count + 2)
// (as far as room reaches) or, when accumulate, added to out with the carry
// running on through out[count + 2 .. room).  The value must fit
// out[0 .. room); room >= count + 1.  r0 may be out when not accumulating.
// O(count): Garner digits in vector lanes, then carry chains in limbs.
template <class R>
void crtToLimbs(Limb* out, std::size_t room, const Limb* r0, const Limb* r1, const Limb* r2, std::size_t count,
                const GarnerConstants& g, const TransformKernels& kernels, bool accumulate);

}  // namespace tw::arith::ntt
