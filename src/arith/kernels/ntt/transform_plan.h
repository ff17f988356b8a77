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

#include "arith/kernels/ntt/prime_field.h"
#include "arith/tuning.h"
#include "frame/radix.h"

namespace tw::arith::ntt {

// Words a pass over a whole transform (the radix-3 layer, the root table)
// handles between two tests of the terminate flag: about a millisecond of
// work, most of it first touches of fresh scratch pages.  A stopped pass
// leaves its output unfinished for the caller to discard.
inline constexpr std::size_t kPassPollWords = std::size_t(1) << 16;

// Words after each long level's roots: one guard root w_2h^h = -1 and
// padding that keeps the next level on a cache line.
inline constexpr std::size_t kTopLevelPad = 16;

// Where the level of span h >= kLeafLength starts in a table of long levels:
// the levels kLeafLength, 2 kLeafLength, ... follow one another, each h roots
// and kTopLevelPad words long.
constexpr std::size_t topLevelOffset(std::size_t h) {
    std::size_t levels = 0;
    for (std::size_t k = kLeafLength; k < h; k *= 2) ++levels;
    return (h - kLeafLength) + levels * kTopLevelPad;
}

// Roots of every radix-2 level: for span h, roots(h)[j] = w_2h^j (j < h), w_2h
// a primitive 2h-th root (or its inverse), beside them Shoup companions.
// Levels below kLeafLength are in "level layout", entries [h, 2h) of tables
// shared by every transform of the prime; longer ones come from a table built
// for the transform (topLevelOffset).  The inverse transform has no table of
// its own for the long levels: it reads the forward roots backwards, since
// w_2h^-j = -w_2h^(h-j) (the guard entry serves j = 0).
struct LevelRoots {
    const Limb* leafRoots = nullptr;       // entries [0, kLeafLength)
    const Limb* leafCompanions = nullptr;
    const Limb* topRoots = nullptr;        // levels >= kLeafLength (forward roots in both directions)
    const Limb* topCompanions = nullptr;

    const Limb* roots(std::size_t h) const {
        return h < kLeafLength ? leafRoots + h : topRoots + topLevelOffset(h);
    }
    const Limb* companions(std::size_t h) const {
        return h < kLeafLength ? leafCompanions + h : topCompanions + topLevelOffset(h);
    }
};

struct TransformPlan {
    std::size_t length = 0;       // N
    std::size_t blockLength = 0;  // M: N == M or N == 3 * M
    std::size_t primeIndex = 0;   // which of the three primes
    PrimeConstants prime{};
    LevelRoots forward;           // w_2h^j
    LevelRoots inverse;           // w_2h^-j below kLeafLength, the forward roots above
    // Radix-3 layer, N == 3M only: w a primitive N-th root and c = w^M, a cube root of unity.
    std::uint32_t root = 0, rootInverse = 0;
    std::uint32_t cubeRoot = 0, cubeRootCompanion = 0;
    std::uint32_t cubeRootInverse = 0, cubeRootInverseCompanion = 0;

    bool hasRadix3() const { return length != blockLength; }
};

}  // namespace tw::arith::ntt
