// The portable path: one lane, no target options.
#include "arith/ntt/kernel_table.h"
#include "arith/ntt/lanes_scalar.h"
#include "arith/ntt/transform_kernels.h"

namespace tw::arith::ntt {

namespace {
constexpr TransformKernels kScalarKernels = makeKernels<ScalarLanes>();
}

const TransformKernels& scalarKernels() { return kScalarKernels; }

}  // namespace tw::arith::ntt
