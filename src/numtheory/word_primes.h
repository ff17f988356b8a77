// Prime questions about 32-bit values: tests, the next and previous prime,
// the prime-counting function, the k-th prime, counts and lists of primes
// in a range.  Look-ups in the prime tables at both ends of the range, a
// strong-probable-prime test that is exact for 32-bit values in between.
#pragma once

#include <cstdint>

namespace tw::numtheory {

// 1 when n is prime.
std::uint32_t isPrimeWord(std::uint32_t n);

// The least prime above n; 0 when none is below 2^32.
std::uint32_t nextPrimeWord(std::uint32_t n);
// The greatest prime below n; 0 when there is none.
std::uint32_t previousPrimeWord(std::uint32_t n);

// The signed forms count negated primes as primes (..., -3, -2, 2, 3, ...);
// no prime fits: 1 from the next, -1 from the previous.
std::int32_t nextPrimeSigned(std::int32_t n);
std::int32_t previousPrimeSigned(std::int32_t n);

// pi(n), the number of primes not above n.
std::uint32_t primePi(std::uint32_t n);
// The k-th prime (the first is 2); 0 for k = 0 and beyond the last 32-bit prime.
std::uint32_t nthPrime(std::uint32_t k);
// The number of primes in [low, high]; 0 when low > high.
std::uint32_t primeCount(std::uint32_t low, std::uint32_t high);
// Writes the primes of [low, high] ascending to out, at most maxCount of them,
// and returns how many it wrote; a null out writes nothing and returns how
// many primes [low, high] holds.
std::uint32_t primeList(std::uint32_t* out, std::uint32_t low, std::uint32_t high, std::uint32_t maxCount);

}  // namespace tw::numtheory
