// Montgomery products on 64-bit words for odd moduli of cryptographic sizes:
// what binary numbers run their modular powers on below
// kWordMontgomeryMaxBits, where the full machine word and a square that
// computes each cross product once beat the 28-bit limbs of montgomery.h.
// Words are lowest first; R = 2^(64 n).
#pragma once

#include <cstddef>
#include <cstdint>

namespace tw::numtheory {

// -1 / m0 mod 2^64 for odd m0.
std::uint64_t negativeInverseMod64(std::uint64_t m0);

// out := a b / R mod m for a, b < m, m odd of n words, minv = -1 / m mod
// 2^64; q[0..n) is scratch.  out may be a or b (or both).
void montgomeryMulWords(std::uint64_t* out, const std::uint64_t* a, const std::uint64_t* b, const std::uint64_t* m,
                        std::size_t n, std::uint64_t minv, std::uint64_t* q);

// out := a^2 / R mod m, the same contract: each cross product once.
void montgomerySqrWords(std::uint64_t* out, const std::uint64_t* a, const std::uint64_t* m, std::size_t n,
                        std::uint64_t minv, std::uint64_t* q);

}  // namespace tw::numtheory
