#include "numtheory/prime_tables.h"

#include <algorithm>
#include <bit>
#include <cassert>

namespace tw::numtheory {
namespace {

// Every prime up to the small limit by the sieve of Eratosthenes over the odd
// numbers (byte i stands for 2i + 1), and the counts of odd primes.
void sieveSmall(PrimeTables& t) {
    const std::uint32_t half = kSmallPrimeLimit / 2 + 1;
    std::vector<std::uint64_t> prime = allOdd(half);  // bit k: 2k + 1
    const auto strike = [&](std::uint32_t k) { prime[k / 64] &= ~(1ull << (k % 64)); };
    strike(0);  // 1
    for (std::uint32_t i = 1; (2 * i + 1) * (2 * i + 1) <= kSmallPrimeLimit; ++i) {
        if (((prime[i / 64] >> (i % 64)) & 1) == 0) continue;
        const std::uint32_t p = 2 * i + 1;
        for (std::uint32_t j = (p * p) / 2; j < half; j += p) strike(j);
    }
    t.small.reserve(kSmallPrimeCount);
    t.small.push_back(2);
    for (std::uint32_t w = 0; w < prime.size(); ++w)
        for (std::uint64_t bits = prime[w]; bits != 0; bits &= bits - 1)
            t.small.push_back(2 * (64 * w + std::uint32_t(std::countr_zero(bits))) + 1);
    t.oddPrimes.build(prime.data(), half);
}

std::vector<std::uint32_t> topPrimes() {
    const std::uint32_t length = std::uint32_t(0x100000000ull - kTopPrimeStart);
    std::vector<std::uint8_t> composite;
    sieveSegment(kTopPrimeStart, length, composite);
    std::vector<std::uint32_t> primes;
    primes.reserve(kTopPrimeCount);
    for (std::uint32_t i = 0; i < length; ++i)
        if (!composite[i]) primes.push_back(kTopPrimeStart + i);
    return primes;
}

// The odd numbers below P prime to each of the first a primes (a >= 1),
// whose product P is.
void buildCoprime(OddCounts& counts, const std::uint32_t* primes, int a, std::uint32_t P) {
    std::vector<std::uint64_t> coprime = allOdd(P / 2);  // bit k: 2k + 1
    for (int i = 1; i < a; ++i)
        for (std::uint32_t k = primes[i] / 2; k < P / 2; k += primes[i]) coprime[k / 64] &= ~(1ull << (k % 64));
    counts.build(coprime.data(), P / 2);
}

// The bit sets of phi(y, b) for the cached b, each from the one before.
void buildPhiCache(PrimeTables& t) {
    constexpr std::uint32_t odd = kPhiCacheLimit / 2;
    std::vector<std::uint64_t> survivors = allOdd(odd);  // bit k: 2k + 1, from 1 on
    for (std::uint32_t b = 2; b <= kPhiCachePrimes; ++b) {
        const std::uint32_t p = t.small[b - 1];
        for (std::uint32_t k = p / 2; k < odd; k += p) survivors[k / 64] &= ~(1ull << (k % 64));
        if (b > std::uint32_t(kPhiClosedFormPrimes)) t.phiCache[b - kPhiClosedFormPrimes - 1].build(survivors.data(), odd);
    }
}

PrimeTables build() {
    PrimeTables t;
    sieveSmall(t);
    t.top = topPrimes();
    for (int a = 1; a <= kPhiClosedFormPrimes; ++a) buildCoprime(t.coprime[a], t.small.data(), a, kPrimorial[a]);
    for (const std::uint32_t p : t.small) {
        if (p >= (1u << 16)) break;
        t.inverse.push_back(p == 2 ? std::uint64_t(1) << 63 : ~std::uint64_t(0) / p + 1);
    }
    buildPhiCache(t);
    assert(t.small.size() == kSmallPrimeCount && t.small.back() == kSmallPrimeLimit);
    assert(t.top.size() == kTopPrimeCount && t.top.front() == kTopPrimeStart);
    return t;
}

}  // namespace

const PrimeTables& primeTables() {
    static const PrimeTables tables = build();  // a concurrent first use waits here
    return tables;
}

void sieveSegment(std::uint32_t low, std::uint32_t length, std::vector<std::uint8_t>& isComposite) {
    isComposite.assign(length, 0);
    const std::uint64_t end = std::uint64_t(low) + length;
    for (std::uint64_t v = low; v < end && v < 2; ++v) isComposite[v - low] = 1;
    // The small primes reach past the square root of 2^32; while the tables are
    // being built only their first part (the primes up to 65 536) is asked for.
    static const std::vector<std::uint32_t> rootPrimes = [] {
        std::vector<std::uint32_t> primes;
        std::vector<std::uint8_t> composite(1 << 16, 0);
        for (std::uint32_t p = 2; p < (1u << 16); ++p) {
            if (composite[p]) continue;
            primes.push_back(p);
            for (std::uint32_t j = p * p; j < (1u << 16); j += p) composite[j] = 1;
        }
        return primes;
    }();
    for (const std::uint32_t p : rootPrimes) {
        const std::uint64_t square = std::uint64_t(p) * p;
        if (square >= end) break;
        std::uint64_t first = std::max<std::uint64_t>(square, (std::uint64_t(low) + p - 1) / p * p);
        for (std::uint64_t m = first; m < end; m += p) isComposite[m - low] = 1;
    }
}

}  // namespace tw::numtheory
