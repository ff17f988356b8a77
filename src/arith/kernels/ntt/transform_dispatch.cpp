#include "arith/kernels/ntt/transform_dispatch.h"

#include "arith/kernels/ntt/transform_lengths.h"
#include "frame/kernel_paths.h"

namespace tw::arith::ntt {

const TransformKernels& transformKernels(std::size_t length) {
    const KernelPath path = kernelChoice().path;
    const TransformKernels* k = &scalarKernels();
    if (path >= KernelPath::Avx512) k = &avx512Kernels();
    else if (path == KernelPath::Avx2) k = &avx2Kernels();
    return transformBlockLength(length) >= 2 * k->lanes ? *k : scalarKernels();
}

}  // namespace tw::arith::ntt
