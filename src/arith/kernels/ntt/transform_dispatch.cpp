#include "arith/kernels/ntt/transform_dispatch.h"

#include <atomic>

#include "arith/kernels/ntt/transform_lengths.h"

namespace tw::arith::ntt {

namespace {

std::atomic<TransformPath> forcedPath{TransformPath::Auto};

}  // namespace

bool transformPathSupported(TransformPath path) {
    __builtin_cpu_init();
    switch (path) {
        case TransformPath::Avx512: return __builtin_cpu_supports("avx512f");
        case TransformPath::Avx2: return __builtin_cpu_supports("avx2");
        default: return true;
    }
}

namespace {

TransformPath bestPath() {
    static const TransformPath best = transformPathSupported(TransformPath::Avx512) ? TransformPath::Avx512
                                      : transformPathSupported(TransformPath::Avx2) ? TransformPath::Avx2
                                                                                    : TransformPath::Scalar;
    return best;
}

}  // namespace

void forceTransformPathForTesting(TransformPath path) {
    if (transformPathSupported(path)) forcedPath.store(path, std::memory_order_relaxed);
}

const TransformKernels& transformKernels(std::size_t length) {
    TransformPath path = forcedPath.load(std::memory_order_relaxed);
    if (path == TransformPath::Auto) path = bestPath();
    const TransformKernels* k = &scalarKernels();
    if (path == TransformPath::Avx512) k = &avx512Kernels();
    else if (path == TransformPath::Avx2) k = &avx2Kernels();
    return transformBlockLength(length) >= 2 * k->lanes ? *k : scalarKernels();
}

}  // namespace tw::arith::ntt
