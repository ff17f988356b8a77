// The tables behind the 32-bit prime services: every prime up to 2 643 899,
// the primes from 4 294 875 367 up to 2^32, and the counts of numbers prime
// to the first a primes below each residue of their primorial (a <= 7).
// Built on first use by sieving, once per process: the first caller builds
// them, any other caller waits for it and then reads the finished tables.
#pragma once

#include <cstdint>
#include <vector>

#include "frame/radix.h"

namespace tw::numtheory {

// The largest prime of the small table, its index count, and the first prime
// of the top table with the number of primes below it.
inline constexpr std::uint32_t kSmallPrimeLimit = 2643899;
inline constexpr std::uint32_t kSmallPrimeCount = 192836;
inline constexpr std::uint32_t kTopPrimeStart = 4294875367u;
inline constexpr std::uint32_t kPrimesBelowTop = 203276124;
inline constexpr std::uint32_t kTopPrimeCount = 4097;

// The closed form of phi(x, a) for a <= 7: phi(x, a) = (x / P) phi(P, a) +
// counts[a][x mod P], with P the product of the first a primes.
inline constexpr int kPhiClosedFormPrimes = 7;

// The set bits of a word in a few arithmetic steps: std::popcount becomes a
// library call on processors the build does not assume popcnt for.
inline std::uint32_t setBits(std::uint64_t v) {
    v -= (v >> 1) & 0x5555555555555555ull;
    v = (v & 0x3333333333333333ull) + ((v >> 2) & 0x3333333333333333ull);
    v = (v + (v >> 4)) & 0x0F0F0F0F0F0F0F0Full;
    return std::uint32_t((v * 0x0101010101010101ull) >> 56);
}

// phi(y, b) is looked up for y below this and b up to this many primes.
inline constexpr std::uint32_t kPhiCacheLimit = 1u << 18;
inline constexpr std::uint32_t kPhiCachePrimes = 100;

struct PrimeTables {
    std::vector<std::uint32_t> small;  // 2, 3, 5, ..., 2 643 899
    std::vector<std::uint32_t> top;    // 4 294 875 367, ..., 4 294 967 291
    std::uint32_t primorial[kPhiClosedFormPrimes + 1];
    // phiCounts[a][r]: numbers in [1, r] prime to the first a primes, r < P.
    std::vector<std::uint32_t> phiCounts[kPhiClosedFormPrimes + 1];
    // pi(n) for n up to the small limit in two loads: for the odd number
    // 2k + 1, piBase[k >> 15] + piOffset[k].
    std::vector<std::uint32_t> piBase;
    std::vector<std::uint16_t> piOffset;

    // x / p_k (the k-th prime, p_k < 2^16) for any 32-bit x, by one product
    // with ceil(2^64 / p_k): the error stays below 2^-32 < 1 / p_k.
    std::vector<std::uint64_t> inverse;
    std::uint32_t quotient(std::uint32_t x, std::uint32_t k) const {
        return std::uint32_t((u128(x) * inverse[k - 1]) >> 64);
    }

    std::uint32_t smallPi(std::uint32_t n) const {
        if (n < 3) return n == 2;
        const std::uint32_t k = (n - 1) / 2;  // 2k + 1: the greatest odd number up to n
        return piBase[k >> 15] + piOffset[k];
    }

    // phi(y, b) for 8 <= b <= kPhiCachePrimes and y < kPhiCacheLimit: bit k of
    // phiBits[b - 8] is set when 2k + 1 has no prime factor among the first b
    // primes, phiBefore counts the set bits before each word.
    std::vector<std::uint64_t> phiBits[kPhiCachePrimes - kPhiClosedFormPrimes];
    std::vector<std::uint32_t> phiBefore[kPhiCachePrimes - kPhiClosedFormPrimes];

    std::uint32_t cachedPhi(std::uint32_t y, std::uint32_t b) const {
        if (y == 0) return 0;
        const std::uint32_t k = (y - 1) / 2;  // 2k + 1: the greatest odd number up to y
        const std::uint64_t below = k % 64 == 63 ? ~0ull : (2ull << (k % 64)) - 1;
        const std::size_t level = b - kPhiClosedFormPrimes - 1;
        return phiBefore[level][k / 64] + setBits(phiBits[level][k / 64] & below);
    }
};

const PrimeTables& primeTables();

// Marks the composites of [low, low + length) (length <= 2^32 - low) with the
// primes below 2^16; isComposite[i] describes low + i, and 0 and 1 count as
// composite.  Exact for every value below 2^32.
void sieveSegment(std::uint32_t low, std::uint32_t length, std::vector<std::uint8_t>& isComposite);

}  // namespace tw::numtheory
