#include "numtheory/prime_tables.h"

#include <algorithm>
#include <cassert>

namespace tw::numtheory {
namespace {

// Every prime up to the small limit by the sieve of Eratosthenes over the odd
// numbers (byte i stands for 2i + 1), and pi at each odd number from the same
// pass.
void sieveSmall(PrimeTables& t) {
    const std::uint32_t half = kSmallPrimeLimit / 2 + 1;
    std::vector<std::uint8_t> composite(half, 0);
    composite[0] = 1;  // 1
    for (std::uint32_t i = 1; (2 * i + 1) * (2 * i + 1) <= kSmallPrimeLimit; ++i) {
        if (composite[i]) continue;
        const std::uint32_t p = 2 * i + 1;
        for (std::uint32_t j = (p * p) / 2; j < half; j += p) composite[j] = 1;
    }
    t.small.reserve(kSmallPrimeCount);
    t.small.push_back(2);
    t.piOffset.resize(half);
    t.piBase.resize((half >> 15) + 1);
    std::uint32_t count = 1;  // the prime 2
    for (std::uint32_t k = 0; k < half; ++k) {
        if ((k & 0x7FFF) == 0) t.piBase[k >> 15] = count + (composite[k] ^ 1);
        if (!composite[k]) t.small.push_back(2 * k + 1), ++count;
        t.piOffset[k] = std::uint16_t(count - t.piBase[k >> 15]);
    }
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

// counts[r] for r < P: how many of 1..r are prime to each of the first a
// primes, whose product P is.
std::vector<std::uint32_t> coprimeCounts(const std::uint32_t* primes, int a, std::uint32_t P) {
    std::vector<std::uint8_t> shared(P, 0);
    shared[0] = 1;
    for (int i = 0; i < a; ++i)
        for (std::uint32_t m = primes[i]; m < P; m += primes[i]) shared[m] = 1;
    std::vector<std::uint32_t> counts(P);
    for (std::uint32_t r = 0, running = 0; r < P; ++r) {
        running += shared[r] ^ 1;
        counts[r] = running;
    }
    return counts;
}

// The bit sets of phi(y, b) for the cached b, each from the one before.
void buildPhiCache(PrimeTables& t) {
    constexpr std::uint32_t words = kPhiCacheLimit / 128;
    std::vector<std::uint64_t> survivors(words, ~0ull);  // bit k: 2k + 1, from 1 on
    for (std::uint32_t b = 2; b <= kPhiCachePrimes; ++b) {
        const std::uint64_t p = t.small[b - 1];
        for (std::uint64_t k = p / 2; k < 64ull * words; k += p) survivors[k / 64] &= ~(1ull << (k % 64));
        if (b <= std::uint32_t(kPhiClosedFormPrimes)) continue;
        const std::size_t level = b - kPhiClosedFormPrimes - 1;
        t.phiBits[level] = survivors;
        t.phiBefore[level].resize(words);
        for (std::uint32_t w = 0, count = 0; w < words; ++w) {
            t.phiBefore[level][w] = count;
            count += setBits(survivors[w]);
        }
    }
}

PrimeTables build() {
    PrimeTables t;
    sieveSmall(t);
    t.top = topPrimes();
    t.primorial[0] = 1;
    for (int a = 0; a <= kPhiClosedFormPrimes; ++a) {
        if (a > 0) t.primorial[a] = t.primorial[a - 1] * t.small[a - 1];
        t.phiCounts[a] = coprimeCounts(t.small.data(), a, t.primorial[a]);
    }
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
