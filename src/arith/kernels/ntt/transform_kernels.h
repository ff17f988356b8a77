// The table of transform kernels of one code path: forward, inverse,
// convolution and square over the passes (transform_passes.h) and the radix-3
// layer (transform_radix3.h), written once over a register type V (lanes_*.h).
//
// Every function here is a template on V, so each code path's translation unit
// instantiates its own copies under its own target options and no copy
// compiled for one instruction set can stand in for another's.  Include this
// header after lanes_<path>.h, and include the non-template headers it uses
// before switching the target.
//
// Order of work (transform_plan.h): radix-2 decimation in frequency, two
// levels per pass over memory where possible (radix 4 in registers).  Levels
// whose span h is at least the lane count pair whole registers; the last
// levels pair lanes inside registers (split/merge in lanes_*.h).  Long blocks
// recurse depth first, two levels over the whole block each step, until a
// block fits kLeafLength; the convolution runs forward levels, pointwise
// product and inverse levels of a leaf while it is in cache.  Cost per
// transform: (N/2) log2 N butterflies of about sixteen register operations per
// register of lanes, plus for N = 3M one radix-3 layer (about four levels' worth).
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "arith/kernels/ntt/garner_kernel.h"
#include "arith/kernels/ntt/kernel_table.h"
#include "arith/kernels/ntt/transform_passes.h"
#include "arith/kernels/ntt/transform_radix3.h"

namespace tw::arith::ntt {

template <class V>
void forwardTransform(Limb* x, const Limb* src, std::size_t len, const TransformPlan& plan) {
    const TransformPasses<V> passes(plan);
    const std::size_t m = plan.blockLength;
    if (plan.hasRadix3()) {
        Radix3Layer<V>(passes).forwardFrom(x, src, len);
        if (terminateRequested()) return;  // the layer is a pass over all of x
        for (std::size_t r = 0; r < 3; ++r) passes.forward(x + r * m, m);
    } else {
        passes.forwardFrom(x, src, len, m);
    }
}

template <class V>
void inverseTransform(Limb* x, const TransformPlan& plan) {
    const TransformPasses<V> passes(plan);
    const std::size_t m = plan.blockLength;
    if (plan.hasRadix3()) {
        for (std::size_t r = 0; r < 3; ++r) passes.inverse(x + r * m, m);
        if (terminateRequested()) return;
        Radix3Layer<V>(passes).inverse(x);
    } else {
        passes.inverse(x, m);
    }
}

template <class V, bool Square>
void convolveTransform(Limb* x, const Limb* src, std::size_t len, const Limb* y, const TransformPlan& plan) {
    const TransformPasses<V> passes(plan);
    const std::size_t m = plan.blockLength;
    if (plan.hasRadix3()) {
        Radix3Layer<V>(passes).forwardFrom(x, src, len);
        if (terminateRequested()) return;
        for (std::size_t r = 0; r < 3; ++r) passes.template convolve<Square>(x + r * m, y + r * m, m);
        if (terminateRequested()) return;
        Radix3Layer<V>(passes).inverse(x);
    } else {
        passes.template convolveFrom<Square>(x, src, len, y, m);
    }
}

template <class V>
void convolveKernel(Limb* x, const Limb* src, std::size_t len, const Limb* y, const TransformPlan& plan) {
    convolveTransform<V, false>(x, src, len, y, plan);
}
template <class V>
void squareKernel(Limb* x, const Limb* src, std::size_t len, const TransformPlan& plan) {
    convolveTransform<V, true>(x, src, len, x, plan);
}

template <class V>
constexpr TransformKernels makeKernels() {
    return {V::lanes,           &forwardTransform<V>, &inverseTransform<V>, &convolveKernel<V>,
            &squareKernel<V>,   &buildTopRoots<V>,    &garnerKernel<V>};
}

}  // namespace tw::arith::ntt
