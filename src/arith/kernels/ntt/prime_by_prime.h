// One convolution of a given length over the three primes, reconstructed into
// limbs: the driver shared by the transform product and the cyclic product.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "arith/kernels/ntt/aligned_words.h"
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

// One convolution of the given length covers the whole result: the primes
// are done one after another, so besides `extraWords` of scratch only two
// residue vectors live (the second and third primes'; the first is parked in
// out).  convolveOnPrime(kernels, plan, r, scratch) leaves the prime's
// residues in r[0..length).  The result (count convolution sums) lands in
// out[0 .. count + 1); out[count + 1 .. room) must be zero.
template <class R, class ConvolveOnPrime>
void primeByPrime(Limb* out, std::size_t room, std::size_t count, std::size_t length, std::size_t extraWords,
                  ConvolveOnPrime convolveOnPrime) {
    const TransformKernels& kernels = transformKernels(length);
    const std::size_t m = transformBlockLength(length);
    // One allocation, so that repeated products reuse the same heap block.
    AlignedWords words = allocateWords(2 * length + extraWords + topRootWords(m));
    Limb* r1 = words.get();
    Limb* r2 = r1 + length;
    Limb* scratch = r2 + length;
    Limb* topWords = scratch + extraWords;
    for (std::size_t k = 0; k < kPrimeCount; ++k) {
        Limb* r = k == 2 ? r2 : r1;
        convolveOnPrime(kernels, makePlan(k, length, buildTopRootTable(kernels, k, m, topWords)), r, scratch);
        if (terminateRequested()) return;
        if (k == 0) std::copy(r, r + count, out);
    }
    crtToLimbs<R>(out, room, out, r1, r2, count, garnerForLength(length), kernels, false);
}

}  // namespace tw::arith::ntt
