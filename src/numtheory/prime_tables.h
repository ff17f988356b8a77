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
inline std::uint32_t setBits(std::uint32_t v) {
    v -= (v >> 1) & 0x55555555u;
    v = (v & 0x33333333u) + ((v >> 2) & 0x33333333u);
    v = (v + (v >> 4)) & 0x0F0F0F0Fu;
    return (v * 0x01010101u) >> 24;
}

// A set of odd numbers that answers "how many members up to y" with one
// cache line: each 32 odd numbers share a word of membership bits and the
// count of members below them.
class OddCounts {
public:
    struct Word {
        std::uint32_t before, bits;
    };
    // From a bit set over the odd numbers: bit k of bits[k / 64] says whether
    // 2k + 1 belongs, for k < oddCount (the bits past it must be clear).
    void build(const std::uint64_t* bits, std::uint32_t oddCount) {
        words_.resize(oddCount / 32 + 1);
        std::uint32_t count = 0;
        for (std::size_t w = 0; w < words_.size(); ++w) {
            const std::uint32_t word = std::uint32_t(bits[w / 2] >> (32 * (w % 2)));
            words_[w] = Word{count, word};
            count += setBits(word);
        }
    }
    Word word(std::uint32_t k) const { return words_[k / 32]; }  // the word of 2k + 1
    // Members among 1, 3, ..., up to y (y at most 2 * oddCount).
    std::uint32_t upTo(std::uint32_t y) const {
        if (y == 0) return 0;
        const std::uint32_t k = (y - 1) / 2;  // 2k + 1: the greatest odd number up to y
        const Word w = word(k);
        return w.before + setBits(w.bits & (0xFFFFFFFFu >> (31 - k % 32)));
    }

private:
    std::vector<Word> words_;
};

// A bit set over the odd numbers below 2 * oddCount, all set, padded to the
// words OddCounts::build reads.
inline std::vector<std::uint64_t> allOdd(std::uint32_t oddCount) {
    std::vector<std::uint64_t> bits(oddCount / 64 + 2, 0);
    for (std::uint32_t w = 0; w < oddCount / 64; ++w) bits[w] = ~0ull;
    if (oddCount % 64 != 0) bits[oddCount / 64] = (1ull << (oddCount % 64)) - 1;
    return bits;
}

// phi(y, b) is looked up for y below this and b up to this many primes.
inline constexpr std::uint32_t kPhiCacheLimit = 1u << 18;
inline constexpr std::uint32_t kPhiCachePrimes = 100;

// The product of the first a primes, a <= 7.
inline constexpr std::uint32_t kPrimorial[kPhiClosedFormPrimes + 1] = {1, 2, 6, 30, 210, 2310, 30030, 510510};

struct PrimeTables {
    std::vector<std::uint32_t> small;  // 2, 3, 5, ..., 2 643 899
    std::vector<std::uint32_t> top;    // 4 294 875 367, ..., 4 294 967 291
    // coprime[a]: the odd numbers below the a-th primorial P prime to the
    // first a primes (1 <= a <= 7), so phi(r, a) = coprime[a].upTo(r), r < P.
    OddCounts coprime[kPhiClosedFormPrimes + 1];
    OddCounts oddPrimes;  // 3, 5, 7, ..., 2 643 899

    // x / p_k (the k-th prime, p_k < 2^16) for any 32-bit x, by one product
    // with ceil(2^64 / p_k): the error stays below 2^-32 < 1 / p_k.
    std::vector<std::uint64_t> inverse;
    std::uint32_t quotient(std::uint32_t x, std::uint32_t k) const {
        return std::uint32_t((u128(x) * inverse[k - 1]) >> 64);
    }

    // pi(n) for n up to the small limit.
    std::uint32_t smallPi(std::uint32_t n) const { return n < 2 ? 0 : 1 + oddPrimes.upTo(n); }

    // phi(y, b) for 8 <= b <= kPhiCachePrimes and y < kPhiCacheLimit: the odd
    // numbers below the limit with no prime factor among the first b primes.
    OddCounts phiCache[kPhiCachePrimes - kPhiClosedFormPrimes];
};

const PrimeTables& primeTables();

// Marks the composites of [low, low + length) (length <= 2^32 - low) with the
// primes below 2^16; isComposite[i] describes low + i, and 0 and 1 count as
// composite.  Exact for every value below 2^32.
void sieveSegment(std::uint32_t low, std::uint32_t length, std::vector<std::uint8_t>& isComposite);

}  // namespace tw::numtheory
