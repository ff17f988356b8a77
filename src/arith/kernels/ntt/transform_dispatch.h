// The transform kernels of the path in force (frame/kernel_paths.h): the
// scalar, AVX2 or AVX-512 table of kernel_table.h.
#pragma once

#include <cstddef>

#include "arith/kernels/ntt/kernel_table.h"

namespace tw::arith::ntt {

// The kernels for a transform of `length` words: the path's own, or the
// portable one when the length's power-of-two block is shorter than two
// registers of that path.
const TransformKernels& transformKernels(std::size_t length);

}  // namespace tw::arith::ntt
