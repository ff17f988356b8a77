// The portable path: one lane, no target options.
#include "arith/kernels/ntt/kernel_table.h"
#include "arith/kernels/ntt/lanes_scalar.h"
#include "arith/kernels/ntt/transform_kernels.h"

namespace tw::arith::ntt {

namespace {
constexpr TransformKernels kScalarKernels = makeKernels<ScalarLanes>();
}

const TransformKernels& scalarKernels() { return kScalarKernels; }

}  // namespace tw::arith::ntt
