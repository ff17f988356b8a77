// The transform kernels of one code path (portable, AVX2, AVX-512), as a table
// of plain functions so that the driver picks a path once at run time.  Every
// path computes the same values; only the order of a transform's output and
// the speed differ.  All functions need plan lengths whose block length M is at
// least 2 * lanes (transform_dispatch.h falls back to the portable path below).
#pragma once

#include <cstddef>
#include <cstdint>

#include "arith/kernels/ntt/crt_constants.h"
#include "arith/kernels/ntt/prime_field.h"
#include "arith/kernels/ntt/transform_plan.h"
#include "frame/radix.h"

namespace tw::arith::ntt {

struct TransformKernels {
    std::size_t lanes;
    // x[0..N) := transform of src[0..len) padded with zeros (len <= N, src may
    // be x; limbs of either radix are residues already).  O(N log N).
    void (*forward)(Limb* x, const Limb* src, std::size_t len, const TransformPlan& plan);
    // x[0..N) := N * (inverse transform of x): undoes forward up to the factor N.
    void (*inverse)(Limb* x, const TransformPlan& plan);
    // x[0..N) := N * 2^-32 * (cyclic convolution of src[0..len) padded with y),
    // y the forward transform of the other factor.  Forward, pointwise
    // Montgomery product and inverse run block by block while a block is in cache.
    void (*convolve)(Limb* x, const Limb* src, std::size_t len, const Limb* y, const TransformPlan& plan);
    // x[0..N) := N * 2^-32 * (cyclic convolution of src[0..len) padded with itself).
    void (*squareConvolve)(Limb* x, const Limb* src, std::size_t len, const TransformPlan& plan);
    // Roots w_2h^j (and Shoup companions) of the levels kLeafLength <= h < M,
    // each followed by its guard root -1 (transform_plan.h); topLevelOffset(M) words each.
    void (*buildTopRoots)(Limb* roots, Limb* companions, std::size_t blockLength, const PrimeConstants& prime);
    // The limb-radix terms e0, e1, e2 of count residue triples
    // (crt_constants.h); count a multiple of lanes.
    void (*garner)(std::uint64_t* e0, std::uint64_t* e1, std::uint64_t* e2, const Limb* r0, const Limb* r1,
                   const Limb* r2, std::size_t count, const GarnerConstants& g);
};

const TransformKernels& scalarKernels();
const TransformKernels& avx2Kernels();
const TransformKernels& avx512Kernels();

}  // namespace tw::arith::ntt
