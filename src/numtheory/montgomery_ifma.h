// Montgomery products on 52-bit lanes by the AVX-512 multiply-add of 52-bit
// operands (vpmadd52luq / vpmadd52huq): numbers are padded to whole vectors
// of eight lanes, each lane one limb of radix 2^52, lowest first, with
// R = 2^(52 n) for the n limbs the modulus is given.  The caller checks
// processorRuns(KernelPath::Ifma) first.
#pragma once

#include <cstddef>
#include <cstdint>

#include "arith/tuning.h"

namespace tw::numtheory {

// Most limbs of 52 bits the kernel takes (tuning.h).
inline constexpr std::size_t kIfmaMaxLimbs = kIfmaMontgomeryMaxLimbs;
// A lane gains at most four terms below 2^52 a step over n + 1 steps.
static_assert(4 * (kIfmaMaxLimbs + 1) < (std::size_t(1) << 11), "lanes stay below 2^63");

// Lanes of a number of n limbs: whole vectors.
constexpr std::size_t ifmaLanes(std::size_t n) { return (n + 7) / 8 * 8; }

// Words of the table of a modulus of n limbs: m moved up 0, 1, ... 8 lanes,
// each over ifmaLanes(n) + 8 lanes (zero where m is not).
constexpr std::size_t ifmaModulusTableWords(std::size_t n) { return 9 * (ifmaLanes(n) + 8); }

// table := the table of m[0..n); table is 64-byte aligned.  Its first
// ifmaLanes(n) lanes are m itself.
void prepareIfmaModulus(std::uint64_t* table, const std::uint64_t* m, std::size_t n);

// out := a b / R mod m, almost: for a, b < 2m and 4m < R the result is below
// 2m, every lane below 2^52.  n <= kIfmaMaxLimbs limbs, k0 = -1 / m mod 2^52,
// m given by its table; a, b and out hold ifmaLanes(n) lanes, zero above
// limb n.  out may be a or b.
void montgomeryMulIfma(std::uint64_t* out, const std::uint64_t* a, const std::uint64_t* b,
                       const std::uint64_t* mTable, std::size_t n, std::uint64_t k0);

}  // namespace tw::numtheory
