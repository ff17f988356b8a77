// Products modulo radix^N - 1 by the three-prime transform, for callers that
// know their result up to a multiple of that modulus.
//
// A transform of length N convolves cyclically: coefficient k collects the
// products a_i b_j with i + j = k (mod N).  Since radix^N = 1 modulo
// radix^N - 1, that is exactly the product modulo radix^N - 1, so operands of
// up to N limbs each need a transform of length N instead of one of length
// an + bn - 1 for the full product.  The sums are reconstructed by the Chinese
// remainder step as in transform_multiply.h, and the two limbs that carry out
// of the top wrap round to the bottom (end-around carry).
//
// Residues are reduced: a result equal to radix^N - 1 is written as zero, so
// every result lies in [0, radix^N - 1) and two results are equal exactly when
// the residues are.
#pragma once

#include <cstddef>

#include "frame/radix.h"

namespace tw::arith {

// True when a modulus of at least `minimum` limbs is within reach of the
// transform (its length cannot exceed kTransformMaxLength).
bool cyclicFits(std::size_t minimum);

// The modulus length N a cyclic product uses for at least `minimum` limbs: the
// fastest transform length (2^k or 3 * 2^k) not below max(minimum, 4), which
// is the first one from 768 on and the first power of two below.  Requires
// cyclicFits(minimum).
std::size_t cyclicLength(std::size_t minimum);

// out[0..N) := a[0..an) mod (radix^N - 1), reduced (below radix^N - 1).
// N >= 2; an may be anything, 0 included; out does not overlap a.  O(an + N).
template <class R>
void reduceCyclic(Limb* out, std::size_t length, const Limb* a, std::size_t an);

// out[0..N) := a[0..an) * b[0..bn) mod (radix^N - 1), reduced, for
// N = cyclicLength(...) of some minimum.  Operands of any length: zero limbs
// at the top are dropped and an operand longer than N is reduced first.  out
// overlaps neither operand.  The cost is that of one transform product of
// length N: three transforms a prime.  When the terminate flag is raised it
// returns early with out unspecified.  May throw std::bad_alloc.
template <class R>
void cyclicMultiply(Limb* out, std::size_t length, const Limb* a, std::size_t an, const Limb* b, std::size_t bn);

}  // namespace tw::arith
