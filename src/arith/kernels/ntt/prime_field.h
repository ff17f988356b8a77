// Arithmetic modulo one transform prime, scalar and compile-time: the three
// primes of the transform product, their primitive roots, and the constants of
// the Montgomery and Shoup products.  The vector kernels use the same
// products lane by lane (modular_lanes.h); this header builds their tables.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/radix.h"

namespace tw::arith::ntt {

// A prime p = c * 2^k + 1 below 2^31 and a generator of its multiplicative group.
// Every p - 1 is divisible by 3 * 2^25, so every transform length 2^j or 3 * 2^j
// up to 3 * 2^25 has its roots of unity in all three fields.
struct TransformPrime {
    std::uint32_t p;
    std::uint32_t primitiveRoot;
};

inline constexpr std::size_t kPrimeCount = 3;
inline constexpr TransformPrime kTransformPrimes[kPrimeCount] = {
    {0x42000001u, 31},  // 33 * 2^25 + 1
    {0x66000001u, 29},  // 51 * 2^25 + 1
    {0x6C000001u, 13},  // 27 * 2^26 + 1
};

// Below 2^31, so 2p < 2^32: a sum of two residues, a difference shifted by p and
// a Shoup product before its last correction all fit one 32-bit word.
static_assert(kTransformPrimes[0].p < 0x80000000u && kTransformPrimes[1].p < 0x80000000u &&
              kTransformPrimes[2].p < 0x80000000u);

constexpr std::uint32_t mulMod(std::uint32_t a, std::uint32_t b, std::uint32_t p) {
    return std::uint32_t(std::uint64_t(a) * b % p);
}

// a^e mod p by square and multiply.
constexpr std::uint32_t powMod(std::uint32_t a, std::uint64_t e, std::uint32_t p) {
    std::uint32_t result = 1 % p;
    a %= p;
    for (; e; e >>= 1) {
        if (e & 1) result = mulMod(result, a, p);
        a = mulMod(a, a, p);
    }
    return result;
}

// a^-1 mod p for prime p and a not divisible by p (Fermat).
constexpr std::uint32_t invMod(std::uint32_t a, std::uint32_t p) { return powMod(a, p - 2, p); }

// p^-1 mod 2^32 for odd p: Newton's iteration doubles the correct low bits
// each step, starting from 3 bits (p * p = 1 mod 8).
constexpr std::uint32_t inverseModWord(std::uint32_t p) {
    std::uint32_t x = p;
    for (int i = 0; i < 4; ++i) x *= 2u - p * x;
    return x;
}

// Shoup's companion of a constant w < p: floor(w * 2^32 / p).  With it,
// x * w mod p for any 32-bit x costs two low products and one high product
// and lands in [0, 2p) (LaneField::mulShoupLazy).
constexpr std::uint32_t shoupCompanion(std::uint32_t w, std::uint32_t p) {
    return std::uint32_t((std::uint64_t(w) << 32) / p);
}

// The constants of one prime the kernels need at run time.
struct PrimeConstants {
    std::size_t index;
    std::uint32_t p;
    std::uint32_t pinv;       // p^-1 mod 2^32 (signed Montgomery reduction)
    std::uint32_t negPinv;    // -p^-1 mod 2^32 (Shoup companion from Montgomery form)
    std::uint32_t montR;      // 2^32 mod p: the Montgomery form of 1
    std::uint32_t montR2;     // 2^64 mod p: Montgomery product by it converts to Montgomery form
};

constexpr PrimeConstants primeConstants(std::size_t index) {
    const std::uint32_t p = kTransformPrimes[index].p;
    const std::uint32_t pinv = inverseModWord(p);
    const std::uint32_t r = std::uint32_t((std::uint64_t(1) << 32) % p);
    return {index, p, pinv, 0u - pinv, r, mulMod(r, r, p)};
}

// Signed Montgomery product a b / 2^32 mod p in [0, p) for a b < 2^32 p:
// m = ab p^-1 mod 2^32 makes ab - mp divisible by 2^32, so the high words'
// difference is the quotient, in (-p, p).  No division, unlike mulMod.
constexpr std::uint32_t montMul(std::uint32_t a, std::uint32_t b, const PrimeConstants& c) {
    const std::uint64_t t = std::uint64_t(a) * b;
    const std::uint32_t m = std::uint32_t(t) * c.pinv;
    const std::uint32_t hi = std::uint32_t(t >> 32);
    const std::uint32_t mpHi = std::uint32_t((std::uint64_t(m) * c.p) >> 32);
    return hi >= mpHi ? hi - mpHi : hi - mpHi + c.p;
}

// Montgomery form x 2^32 mod p of x < p.
constexpr std::uint32_t toMontgomery(std::uint32_t x, const PrimeConstants& c) { return montMul(x, c.montR2, c); }
constexpr std::uint32_t fromMontgomery(std::uint32_t xm, const PrimeConstants& c) { return montMul(xm, 1, c); }

// Shoup's companion of w from its Montgomery form m = w 2^32 mod p: the
// companion q = floor(w 2^32 / p) satisfies q p = w 2^32 - m, so q = -m / p mod 2^32.
constexpr std::uint32_t shoupCompanionOfMontgomery(std::uint32_t m, const PrimeConstants& c) { return m * c.negPinv; }

static_assert(inverseModWord(kTransformPrimes[0].p) * kTransformPrimes[0].p == 1u);
static_assert(inverseModWord(kTransformPrimes[2].p) * kTransformPrimes[2].p == 1u);
static_assert(shoupCompanionOfMontgomery(toMontgomery(12345, primeConstants(1)), primeConstants(1)) ==
              shoupCompanion(12345, kTransformPrimes[1].p));
static_assert(montMul(toMontgomery(77, primeConstants(2)), 1000, primeConstants(2)) == 77000);

}  // namespace tw::arith::ntt
