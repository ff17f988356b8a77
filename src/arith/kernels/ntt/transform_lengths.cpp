#include "arith/kernels/ntt/transform_lengths.h"

#include <algorithm>

namespace tw::arith::ntt {

std::size_t roundTransformLength(std::size_t length) {
    if (isPowerOfTwo(length)) return length;
    return *std::lower_bound(kTransformLengths.begin(), kTransformLengths.end(), length);
}

}  // namespace tw::arith::ntt
