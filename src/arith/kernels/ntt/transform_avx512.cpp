// The AVX-512 path.  Everything not written over the register type is included
// before the target switch, so only the AVX-512 instantiations of the kernels
// carry the AVX-512F target; the dispatcher calls them only on CPUs that have it.
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
#pragma clang attribute push(__attribute__((target("avx512f"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx512f")
#endif
// GCC 12's AVX-512 intrinsics start from _mm512_undefined_epi32(), which the
// uninitialized-use warnings report once the intrinsics are inlined; the
// value is never read.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#if !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#include "arith/kernels/ntt/lanes_avx512.h"
#include "arith/kernels/ntt/modular_lanes.h"
#include "arith/kernels/ntt/transform_kernels.h"

namespace tw::arith::ntt {
namespace {
constexpr TransformKernels kAvx512Kernels = makeKernels<Avx512Lanes>();
}
}  // namespace tw::arith::ntt

#pragma GCC diagnostic pop
#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

namespace tw::arith::ntt {
const TransformKernels& avx512Kernels() { return kAvx512Kernels; }
}  // namespace tw::arith::ntt
