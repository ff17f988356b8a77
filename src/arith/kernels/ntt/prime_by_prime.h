// One convolution of a given length over the three primes, reconstructed into
// limbs: the driver shared by the transform product and the cyclic product.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "arith/kernels/mul_scratch.h"
#include "arith/kernels/ntt/crt.h"
#include "arith/kernels/ntt/roots.h"
#include "arith/kernels/ntt/roots_of_unity.h"
#include "arith/kernels/ntt/transform_dispatch.h"
#include "arith/kernels/ntt/transform_lengths.h"
#include "frame/error_state.h"

namespace tw::arith::ntt {

// Garner constants for residues left by a convolution of the given length:
// the inverse transform multiplies by N, the Montgomery pointwise product by
// 2^-32, so the residues are undone by 2^32 / N.
inline GarnerConstants garnerForLength(std::size_t length) {
    std::uint32_t inverseFactor[kPrimeCount];
    for (std::size_t i = 0; i < kPrimeCount; ++i) {
        const PrimeConstants c = primeConstants(i);
        inverseFactor[i] = mulMod(c.montR, orderInverse(i, length), c.p);
    }
    return garnerConstants(inverseFactor);
}

// The scratch primeByPrime takes for a convolution of the given length: two
// residue vectors, `extraWords` and the root table of the long levels, each on
// a cache line.
inline std::size_t primeByPrimeScratchLimbs(std::size_t length, std::size_t extraWords) {
    return 2 * length + extraWords + topRootWords(transformBlockLength(length)) +
           4 * LimbScratch::kAlignedTakeSlack;
}

// One convolution of the given length covers the whole result: the primes
// are done one after another, so besides `extraWords` of scratch only two
// residue vectors live (the second and third primes'; the first is parked in
// out).  convolveOnPrime(kernels, plan, r, extra) leaves the prime's
// residues in r[0..length).  The result (count convolution sums) lands in
// out[0 .. count + 1); out[count + 1 .. room) must be zero.  The buffers are
// frames of `scratch` (primeByPrimeScratchLimbs).
template <class R, class ConvolveOnPrime>
void primeByPrime(LimbScratch& scratch, Limb* out, std::size_t room, std::size_t count, std::size_t length,
                  std::size_t extraWords, ConvolveOnPrime convolveOnPrime) {
    const TransformKernels& kernels = transformKernels(length);
    const std::size_t m = transformBlockLength(length);
    LimbScratch::Frame frame(scratch);
    Limb* r1 = frame.takeAligned(length);
    Limb* r2 = frame.takeAligned(length);
    Limb* extra = frame.takeAligned(extraWords);
    Limb* topWords = frame.takeAligned(topRootWords(m));
    for (std::size_t k = 0; k < kPrimeCount; ++k) {
        Limb* r = k == 2 ? r2 : r1;
        const TransformPlan plan = makePlan(k, length, buildTopRootTable(kernels, k, m, topWords));
        if (terminateRequested()) return;  // the root table alone is a pass of m/2 words
        convolveOnPrime(kernels, plan, r, extra);
        if (terminateRequested()) return;
        if (k == 0) std::copy(r, r + count, out);
    }
    crtToLimbs<R>(out, room, out, r1, r2, count, garnerForLength(length), kernels, false);
}

}  // namespace tw::arith::ntt
