// Primitive roots of unity of every transform length's order in the three
// fields, and the inverses of the lengths, computed at compile time from the
// primitive roots 31, 29 and 13: the root of order n is g^((p-1)/n).
#pragma once

#include <cstddef>
#include <cstdint>

#include "arith/kernels/ntt/prime_field.h"

namespace tw::arith::ntt {

// Orders 2^k and 3 * 2^k for k <= 25: every p - 1 is divisible by 3 * 2^25.
inline constexpr unsigned kMaxRootExponent = 25;

// Table slot of an order n = 2^k (slot k) or 3 * 2^k (slot 32 + k).
constexpr std::size_t rootSlot(std::uint64_t n) {
    const unsigned k = unsigned(__builtin_ctzll(n));
    return (n >> k) == 1 ? k : 32 + k;
}

struct FieldRoots {
    std::uint32_t root[64];            // primitive root of unity of the slot's order
    std::uint32_t rootInverse[64];
    std::uint32_t orderInverse[64];    // the order's inverse mod p
};

constexpr FieldRoots makeFieldRoots(std::size_t primeIndex) {
    const TransformPrime t = kTransformPrimes[primeIndex];
    FieldRoots r{};
    for (unsigned k = 0; k <= kMaxRootExponent; ++k) {
        const std::uint64_t orders[2] = {std::uint64_t(1) << k, std::uint64_t(3) << k};
        for (const std::uint64_t n : orders) {
            const std::size_t slot = rootSlot(n);
            r.root[slot] = powMod(t.primitiveRoot, (t.p - 1) / n, t.p);
            r.rootInverse[slot] = invMod(r.root[slot], t.p);
            r.orderInverse[slot] = invMod(std::uint32_t(n % t.p), t.p);
        }
    }
    return r;
}

inline constexpr FieldRoots kFieldRoots[kPrimeCount] = {makeFieldRoots(0), makeFieldRoots(1), makeFieldRoots(2)};

// The primitive root of unity of order n (n = 2^k or 3 * 2^k, k <= 25), or its inverse.
constexpr std::uint32_t rootOfUnity(std::size_t primeIndex, std::uint64_t n, bool inverse = false) {
    const FieldRoots& r = kFieldRoots[primeIndex];
    return inverse ? r.rootInverse[rootSlot(n)] : r.root[rootSlot(n)];
}

// n^-1 mod p for the same orders.
constexpr std::uint32_t orderInverse(std::size_t primeIndex, std::uint64_t n) {
    return kFieldRoots[primeIndex].orderInverse[rootSlot(n)];
}

static_assert(powMod(rootOfUnity(0, 3 << 25), 3 << 24, kTransformPrimes[0].p) != 1);
static_assert(mulMod(rootOfUnity(2, 1 << 25), rootOfUnity(2, 1 << 25, true), kTransformPrimes[2].p) == 1);

}  // namespace tw::arith::ntt
