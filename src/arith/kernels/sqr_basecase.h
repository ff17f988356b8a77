// Basecase square: the bottom rung of the squaring ladder.  Each cross
// product a[i]*a[j], i < j, is taken once: the columns of that triangle are
// summed as in the basecase product, then one pass doubles them and adds the
// squares a[i]^2 on the diagonal.  About n^2/2 products.
#pragma once

#include <cstddef>
#include <cstdint>

#include "arith/kernels/mul_basecase.h"
#include "arith/kernels/radix_traits.h"
#include "frame/radix.h"

namespace tw::arith {

// out[0 .. 2n) := sum of a[i]*a[j] * B^(i+j) over i < j, n >= 1, out not
// overlapping a.  Portable.
template <class R>
void sqrTriangleColumns(Limb* out, const Limb* a, std::size_t n) {
    ColumnSum<R> col;
    out[0] = 0;
    for (std::size_t c = 1; c < 2 * n; ++c) {
        // Pairs i < c - i with both indices below n.
        const std::size_t first = c < n ? 0 : c - n + 1;
        const std::size_t last = (c - 1) / 2;
        if (first <= last) col.add(a + first, a + (c - first), last - first + 1);
        out[c] = col.finish();
    }
}

// sqrTriangleColumns four columns at a time in 256-bit lanes: same contract,
// n <= kLaneKernelMax, only on the AVX2 path.
template <class R>
void sqrTriangleLanes(Limb* out, const Limb* a, std::size_t n);

// The same sixteen columns at a time in 512-bit lanes: same contract,
// n <= kLaneKernelMax, only on the AVX-512 path.
template <class R>
void sqrTriangleWideLanes(Limb* out, const Limb* a, std::size_t n);

// out[0..2n) := 2 * out + sum of a[i]^2 * B^(2i): turns the triangle into the
// square.  Linear.
template <class R>
void addDoubledDiagonal(Limb* out, const Limb* a, std::size_t n) {
    using T = MulTraits<R>;
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint64_t sq = std::uint64_t(a[i]) * a[i];
        std::uint64_t v = 2 * std::uint64_t(out[2 * i]) + T::low(sq) + carry;
        out[2 * i] = T::low(v);
        carry = T::high(v);
        v = 2 * std::uint64_t(out[2 * i + 1]) + T::high(sq) + carry;
        out[2 * i + 1] = T::low(v);
        carry = T::high(v);
    }
}

// out[0 .. 2n) := a[0..n)^2, n >= 1, out not overlapping a.
template <class R>
void sqrBasecase(Limb* out, const Limb* a, std::size_t n) {
    if (!R::isBinary && n <= kSqrAsProductMaxDecimal) {
        // Short: the product's lanes beat the triangle and its serial pass.
        mulBasecase<R>(out, a, n, a, n);
        return;
    }
    const KernelPath path = basecasePathFor<R>(n, kWideLanesSqrMin);
    if (path == KernelPath::Avx512)
        sqrTriangleWideLanes<R>(out, a, n);
    else if (path == KernelPath::Avx2)
        sqrTriangleLanes<R>(out, a, n);
    else
        sqrTriangleColumns<R>(out, a, n);
    addDoubledDiagonal<R>(out, a, n);
}

}  // namespace tw::arith
