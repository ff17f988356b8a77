// Roots of unity of the three fields, derived from the primitive roots 31, 29
// and 13: the tables of the short levels, shared by every transform, and the
// plan of one transform with the tables of its long levels.
#pragma once

#include <cstddef>

#include "arith/ntt/aligned_words.h"
#include "arith/ntt/kernel_table.h"
#include "arith/ntt/transform_plan.h"

namespace tw::arith::ntt {

// Level-layout roots w_2h^j (and their inverses) for every span h < kLeafLength,
// built once per process on first use.  Entry 0 is unused.
struct LeafRootTables {
    alignas(64) Limb forwardRoots[kLeafLength];
    alignas(64) Limb forwardCompanions[kLeafLength];
    alignas(64) Limb inverseRoots[kLeafLength];
    alignas(64) Limb inverseCompanions[kLeafLength];
};
const LeafRootTables& leafRootTables(std::size_t primeIndex);

// The tables of the levels kLeafLength <= h < M of one transform (none when
// M <= kLeafLength): 4 (M - kLeafLength) words, reused across builds.
class TopRoots {
public:
    void build(const TransformKernels& kernels, std::size_t primeIndex, std::size_t blockLength);
    LevelRoots forward(std::size_t primeIndex) const;
    LevelRoots inverse(std::size_t primeIndex) const;

private:
    AlignedWords words_;
    std::size_t capacity_ = 0;
    std::size_t levelWords_ = 0;
};

// The plan of a length-N transform (N = 2^k or 3 * 2^k, 3 * 2^k <= 3 * 2^25) on the
// prime; `top` must have been built for this prime and a block length >= N's.
TransformPlan makePlan(std::size_t primeIndex, std::size_t length, const TopRoots& top);

}  // namespace tw::arith::ntt
