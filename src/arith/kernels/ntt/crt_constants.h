// Constants of the Chinese remainder step that turns the three residues of a
// convolution sum back into the sum itself (Garner's mixed-radix form), and
// the bound that makes the reconstruction exact.
#pragma once

#include <cstddef>
#include <cstdint>

#include "arith/kernels/ntt/prime_field.h"
#include "arith/tuning.h"
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
//
// The digits then meet the limb radix R: with p0 = P0[0] + P0[1] R and
// p0 p1 = P01[0] + P01[1] R + P01[2] R^2, the sum is e0 + e1 R + e2 R^2 for
// e0 = x0 + t1 P0[0] + t2 P01[0], e1 = t1 P0[1] + t2 P01[1], e2 = t2 P01[2]
// (radixWeights: P0[0], P01[0], P0[1], P01[1], P01[2]).
struct GarnerConstants {
    PrimeConstants prime[kPrimeCount];
    std::uint32_t k0, k0s;
    std::uint32_t k1, k1s, u1, u1s;
    std::uint32_t k2, k2s, v, vs, w, ws;
    std::uint32_t radixWeights[5];
};

// The weights of p0 and p0 p1 in radix R (every one below R).
template <class R>
constexpr void setRadixWeights(GarnerConstants& g) {
    constexpr std::uint64_t p0 = kTransformPrimes[0].p, p01 = p0 * kTransformPrimes[1].p, b = R::base;
    static_assert(p0 / b < b && p01 / b / b < b);
    g.radixWeights[0] = std::uint32_t(p0 % b);
    g.radixWeights[1] = std::uint32_t(p01 % b);
    g.radixWeights[2] = std::uint32_t(p0 / b);
    g.radixWeights[3] = std::uint32_t(p01 / b % b);
    g.radixWeights[4] = std::uint32_t(p01 / b / b);
}

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
