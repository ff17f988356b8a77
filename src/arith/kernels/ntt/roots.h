// Roots of unity of the three fields, derived from the primitive roots 31, 29
// and 13: the tables of the short levels, shared by every transform, and the
// plan of one transform with the tables of its long levels.
#pragma once

#include <cstddef>

#include "arith/kernels/ntt/kernel_table.h"
#include "arith/kernels/ntt/transform_plan.h"

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

// The roots of the levels kLeafLength <= h < M of one transform, in words
// the caller provides (none when M <= kLeafLength): the forward roots of every
// such level, then their Shoup companions, in the layout of transform_plan.h.
struct TopRootTable {
    const Limb* words = nullptr;
    std::size_t blockLength = 0;  // the M it was built for
};

// Words a table for block length M takes: about 2 (M - kLeafLength).
std::size_t topRootWords(std::size_t blockLength);

TopRootTable buildTopRootTable(const TransformKernels& kernels, std::size_t primeIndex, std::size_t blockLength,
                               Limb* words);

// The plan of a length-N transform (N = 2^k or 3 * 2^k, N <= 3 * 2^25) on the
// prime; `top` must belong to this prime and a block length at least N's.
TransformPlan makePlan(std::size_t primeIndex, std::size_t length, const TopRootTable& top);

}  // namespace tw::arith::ntt
