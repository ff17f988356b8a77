// What one transform needs to run: its length, its prime, and where the
// roots of unity of every level are.  Plans are plain data shared by all code
// paths; the kernels (kernel_table.h) execute them.
//
// Transform order.  A length N = M or N = 3M (M a power of two) transform runs,
// for N = 3M, one radix-3 layer that splits x mod x^N - 1 into three blocks of
// M words, then on each block radix-2 decimation-in-frequency levels with
// spans h = M/2, ..., 1.  The level of span h multiplies by w_2h^j (j < h), w_2h
// a primitive 2h-th root.  The output order is a permutation fixed by the
// length and the code path; pointwise products and the inverse transform
// (the levels undone in reverse) do not depend on it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "arith/ntt/prime_field.h"
#include "frame/radix.h"

namespace tw::arith::ntt {

// Blocks of at most this many words are transformed level by level while they
// stay in the first-level cache; longer blocks run one radix-2 level over the
// whole block and recurse into both halves.
inline constexpr std::size_t kLeafLength = 4096;

// Roots of every radix-2 level in "level layout": entries [h, 2h) hold w_2h^j
// for j < h, beside them Shoup companions.  Levels below kLeafLength come
// from tables shared by every transform of the prime; longer ones from tables
// built for the transform.
struct LevelRoots {
    const Limb* leafRoots = nullptr;       // entries [0, kLeafLength)
    const Limb* leafCompanions = nullptr;
    const Limb* topRoots = nullptr;        // entries [kLeafLength, M), stored from index 0
    const Limb* topCompanions = nullptr;

    const Limb* roots(std::size_t h) const {
        return h < kLeafLength ? leafRoots + h : topRoots + (h - kLeafLength);
    }
    const Limb* companions(std::size_t h) const {
        return h < kLeafLength ? leafCompanions + h : topCompanions + (h - kLeafLength);
    }
};

struct TransformPlan {
    std::size_t length = 0;       // N
    std::size_t blockLength = 0;  // M: N == M or N == 3 * M
    PrimeConstants prime{};
    LevelRoots forward;           // w_2h^j
    LevelRoots inverse;           // w_2h^-j
    // Radix-3 layer, N == 3M only: w a primitive N-th root and c = w^M, a cube root of unity.
    std::uint32_t root = 0, rootInverse = 0;
    std::uint32_t cubeRoot = 0, cubeRootCompanion = 0;
    std::uint32_t cubeRootInverse = 0, cubeRootInverseCompanion = 0;

    bool hasRadix3() const { return length != blockLength; }
};

}  // namespace tw::arith::ntt
