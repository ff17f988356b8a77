// The primes up to a bound, window by window, and the exponent of a prime in
// a factorial (Legendre's formula).  The products of factorials, binomials
// and primorials are built from these: each prime with its exponent.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "frame/error_state.h"
#include "numtheory/prime_tables.h"

namespace tw::numtheory {

// Numbers a sieve window covers: the window's bytes stay in the second-level cache.
inline constexpr std::uint32_t kPrimeWindow = 1u << 18;

// Calls visit(primes, count) with the primes up to `high` in ascending
// order, in runs: the table's primes first, then those of each sieved window.
// Stops early (without a word) when the terminate flag is raised.
template <class Visit>
void forEachPrimeRun(std::uint32_t high, Visit visit) {
    const std::vector<std::uint32_t>& small = primeTables().small;
    const auto tableEnd = std::upper_bound(small.begin(), small.end(), high);
    visit(small.data(), std::size_t(tableEnd - small.begin()));
    std::vector<std::uint8_t> composite;
    std::vector<std::uint32_t> primes;
    for (std::uint64_t low = std::uint64_t(kSmallPrimeLimit) + 1; low <= high; low += kPrimeWindow) {
        if (terminateRequested()) return;
        const std::uint32_t length = std::uint32_t(std::min<std::uint64_t>(kPrimeWindow, std::uint64_t(high) + 1 - low));
        sieveSegment(std::uint32_t(low), length, composite);
        primes.clear();
        for (std::uint32_t i = low % 2 ? 0 : 1; i < length; i += 2)
            if (!composite[i]) primes.push_back(std::uint32_t(low) + i);
        visit(primes.data(), primes.size());
    }
}

// The exponent of the prime p in m!: the sum of m / p^j over j >= 1.
// In 32 bits, where division is cheaper: the sum stays below m.
inline std::uint32_t legendreExponent(std::uint32_t m, std::uint32_t p) {
    std::uint32_t e = 0;
    for (std::uint32_t q = m / p; q != 0; q /= p) e += q;
    return e;
}

}  // namespace tw::numtheory
