// Products of limb spans by the three-prime number-theoretic transform: the
// top rung of the multiplication and squaring ladders.
//
// Each factor's limbs are the coefficients of a polynomial; the product's
// convolution sums are computed modulo three primes near 2^30 by transforms of
// length N = 2^k or 3 * 2^k, reconstructed by the Chinese remainder theorem
// and carried into radix R.  The shorter factor S is transformed once per
// prime; the longer one is cut into chunks of N - len(S) limbs, each convolved
// with S and added in at its offset.  O(n log n) for balanced factors.
#pragma once

#include <cstddef>

#include "arith/kernels/mul_scratch.h"
#include "frame/radix.h"

namespace tw::arith {

// True when a product whose shorter operand has `shorterLength` limbs may use
// the transform: the basic length N = 2 * (smallest power of two >= shorterLength)
// must not exceed kTransformMaxLength.
bool transformFits(std::size_t shorterLength);

// The scratch transformMultiply takes for operands of an and bn limbs without
// zero limbs at either end (a size for the first block of its LimbScratch;
// the arena grows should it fall short): the residue vectors and root tables
// of the chosen transform length.  transformScratchLimbs(n, n) covers
// transformSquare of n limbs.
std::size_t transformScratchLimbs(std::size_t an, std::size_t bn);

// out[0 .. an+bn) := a[0..an) * b[0..bn); an >= bn >= 1, transformFits(bn); out
// overlaps neither operand.  Temporaries are frames of `scratch`.  When the
// terminate flag is raised it returns early with out unspecified (the caller
// zeroes it).  May throw std::bad_alloc.
template <class R>
void transformMultiply(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn, LimbScratch& scratch);

// out[0 .. 2n) := a[0..n)^2 with one forward transform and a pointwise square
// per prime; n >= 1, transformFits(n), out does not overlap a.  Scratch,
// terminate flag and allocation as transformMultiply.
template <class R>
void transformSquare(Limb* out, const Limb* a, std::size_t n, LimbScratch& scratch);

// The same with an arena of their own, sized by transformScratchLimbs.
template <class R>
void transformMultiply(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn);
template <class R>
void transformSquare(Limb* out, const Limb* a, std::size_t n);

}  // namespace tw::arith
