// The AVX2 path.  Everything not written over the register type is included
// before the target switch, so only the AVX2 instantiations of the kernels
// carry the AVX2 target; the dispatcher calls them only on CPUs that have it.
#include <immintrin.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "arith/ntt/kernel_table.h"
#include "arith/ntt/prime_field.h"
#include "arith/ntt/roots_of_unity.h"
#include "arith/ntt/transform_plan.h"

#pragma GCC push_options
#pragma GCC target("avx2")

#include "arith/ntt/lanes_avx2.h"
#include "arith/ntt/modular_lanes.h"
#include "arith/ntt/transform_kernels.h"

namespace tw::arith::ntt {
namespace {
constexpr TransformKernels kAvx2Kernels = makeKernels<Avx2Lanes>();
}
}  // namespace tw::arith::ntt

#pragma GCC pop_options

namespace tw::arith::ntt {
const TransformKernels& avx2Kernels() { return kAvx2Kernels; }
}  // namespace tw::arith::ntt
