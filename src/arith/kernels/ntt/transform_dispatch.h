// Run-time choice of the transform's code path.
#pragma once

#include <cstddef>

#include "arith/kernels/ntt/kernel_table.h"

namespace tw::arith::ntt {

enum class TransformPath { Auto, Scalar, Avx2, Avx512 };

// True when this CPU can run the path (Auto and Scalar always).
bool transformPathSupported(TransformPath path);

// Test seam: pins every later transform to `path` (Auto restores the choice by
// CPU features).  A path the CPU does not support is ignored.  Not meant to be
// changed while another thread multiplies.
void forceTransformPathForTesting(TransformPath path);

// The kernels for a transform of `length` words: the chosen path, or the
// portable one when the length's power-of-two block is shorter than two
// registers of that path.
const TransformKernels& transformKernels(std::size_t length);

}  // namespace tw::arith::ntt
