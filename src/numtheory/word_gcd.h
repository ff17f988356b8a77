// Greatest common divisors of 32-bit machine integers: the library's
// odd-part binary GCD, the LCM and vector GCD built on it, and the extended
// Euclidean algorithm with its exact cofactor sequence.
#pragma once

#include <cstdint>

namespace tw::numtheory {

// The odd-part binary GCD: only the smaller operand is stripped of factors
// of two and no common power of two is put back, so for non-zero a and b the
// result is gcd(a, b) without its power of two (gcd(4, 6) is 1, gcd(6, 6) is
// 3); with a zero operand it is the other one.  The library's own rule for its
// 32-bit functions, kept as it is.  Subtractions and bit scans only.
std::uint32_t oddPartGcd(std::uint32_t a, std::uint32_t b);

// b * (a / g) with g the odd-part GCD, as a full 64-bit product (lcm(4, 6)
// is 24); a zero operand gives the other one.
std::uint64_t oddPartLcm(std::uint32_t a, std::uint32_t b);

// The odd-part GCD of count values, folded from the smallest up, skipping
// repeats and stopping at 1: 0 for no values; a null array with values
// records -4 and gives 0; a raised terminate flag gives 1.
std::uint32_t oddPartGcdOf(const std::uint32_t* values, std::uint32_t count);

// Extended Euclid on signed values with truncating quotients: g >= 0 with
// a*x + b*y = g, the cofactors those of the plain remainder sequence
// (240, 46 give 2 = 240*(-9) + 46*47), wrapping modulo 2^32.  The same
// pointer for x and y gives 0 and writes nothing.  Pairs whose quotient
// overflows (-2^31 by -1) give a defined but meaningless result.
std::uint32_t extendedGcd(std::int32_t* x, std::int32_t* y, std::int32_t a, std::int32_t b);

}  // namespace tw::numtheory
