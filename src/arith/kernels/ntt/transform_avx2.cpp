// The AVX2 path.  Everything not written over the register type is included
// before the target switch, so only the AVX2 instantiations of the kernels
// carry the AVX2 target; the dispatcher calls them only on CPUs that have it.
#include <immintrin.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "arith/kernels/ntt/kernel_table.h"
#include "arith/kernels/ntt/prime_field.h"
#include "arith/kernels/ntt/roots_of_unity.h"
#include "arith/kernels/ntt/transform_plan.h"

// clang takes the target of a region from its own pragma.
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2")
#endif

#include "arith/kernels/ntt/lanes_avx2.h"
#include "arith/kernels/ntt/modular_lanes.h"
#include "arith/kernels/ntt/transform_kernels.h"

namespace tw::arith::ntt {
namespace {
constexpr TransformKernels kAvx2Kernels = makeKernels<Avx2Lanes>();
}
}  // namespace tw::arith::ntt

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

namespace tw::arith::ntt {
const TransformKernels& avx2Kernels() { return kAvx2Kernels; }
}  // namespace tw::arith::ntt
