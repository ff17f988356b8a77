// Constants of the Chinese remainder step that turns the three residues of a
// convolution sum back into the sum itself (Garner's mixed-radix form), and
// the bound that makes the reconstruction exact.
#pragma once

#include <cstddef>
#include <cstdint>

#include "arith/ntt/prime_field.h"
#include "arith/thresholds.h"
#include "frame/radix.h"

namespace tw::arith::ntt {

// The product of the three primes, 3433424892571244295773749249.
inline constexpr u128 kPrimeProduct =
    u128(kTransformPrimes[0].p) * kTransformPrimes[1].p * kTransformPrimes[2].p;

// The largest convolution sum a product can meet: every transform length is
// at most kTransformMaxLength, so no sum has more terms, each below radix^2.
template <class R>
constexpr u128 largestConvolutionSum() {
    return u128(kTransformMaxLength) * (R::base - 1) * (R::base - 1);
}
static_assert(largestConvolutionSum<DecimalRadix>() < kPrimeProduct);
static_assert(largestConvolutionSum<BinaryRadix>() < kPrimeProduct);

// A sum c < p0 p1 p2 with residues c_i = c mod p_i is c = x0 + p0 t1 + p0 p1 t2
// with x0 = c_0, t1 = (c_1 - x0) / p0 mod p1, t2 = ((c_2 - x0) / p0 - t1) / p1 mod p2,
// each digit below its prime.  The transform leaves every residue multiplied by
// a known factor f_i (the inverse transform's length, and 2^-32 for the
// Montgomery pointwise product); its inverse is folded into the constants, so
// each digit costs Shoup products by constants only:
//   x0 = r0 k0,   t1 = r1 k1 - x0 u1 (mod p1),   t2 = r2 k2 - x0 v - t1 w (mod p2),
// k0 = 1/f0, u1 = 1/p0, k1 = u1/f1 (mod p1), v = 1/(p0 p1), w = 1/p1, k2 = v/f2 (mod p2).
struct GarnerConstants {
    PrimeConstants prime[kPrimeCount];
    std::uint32_t k0, k0s;
    std::uint32_t k1, k1s, u1, u1s;
    std::uint32_t k2, k2s, v, vs, w, ws;
};

// Constants for residues scaled by factors f_i, given their inverses 1/f_i mod p_i.
constexpr GarnerConstants garnerConstants(const std::uint32_t (&inverseFactor)[kPrimeCount]) {
    GarnerConstants g{};
    for (std::size_t i = 0; i < kPrimeCount; ++i) g.prime[i] = primeConstants(i);
    const std::uint32_t p0 = g.prime[0].p, p1 = g.prime[1].p, p2 = g.prime[2].p;
    // The factor-free constants fold at compile time when the call is constant.
    constexpr std::uint32_t u1 = invMod(kTransformPrimes[0].p % kTransformPrimes[1].p, kTransformPrimes[1].p);
    constexpr std::uint32_t v = invMod(mulMod(kTransformPrimes[0].p % kTransformPrimes[2].p,
                                              kTransformPrimes[1].p % kTransformPrimes[2].p, kTransformPrimes[2].p),
                                       kTransformPrimes[2].p);
    constexpr std::uint32_t w = invMod(kTransformPrimes[1].p % kTransformPrimes[2].p, kTransformPrimes[2].p);
    g.k0 = inverseFactor[0];
    g.u1 = u1;
    g.k1 = mulMod(u1, inverseFactor[1], p1);
    g.v = v;
    g.w = w;
    g.k2 = mulMod(v, inverseFactor[2], p2);
    g.k0s = shoupCompanion(g.k0, p0);
    g.u1s = shoupCompanion(g.u1, p1);
    g.k1s = shoupCompanion(g.k1, p1);
    g.vs = shoupCompanion(g.v, p2);
    g.ws = shoupCompanion(g.w, p2);
    g.k2s = shoupCompanion(g.k2, p2);
    return g;
}

}  // namespace tw::arith::ntt
