// Products of limb spans: the entry points of the multiplication and squaring
// ladders.  Each picks its algorithm by the length of the shorter operand.
//
// Contract for both: operands have at least one limb; `out` holds
// an + bn (2n) limbs and overlaps no operand.  When the terminate flag is raised
// during the work they return early and `out` is unspecified: the caller makes
// the result zero.  Temporary storage comes from the standard allocator and
// may throw std::bad_alloc, which the call frame turns into error -3.
#pragma once

#include <cstddef>

#include "frame/radix.h"

namespace tw::arith {

// out[0 .. an+bn) := a[0..an) * b[0..bn).
template <class R>
void multiply(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn);

// multiply() with the basecase rung raised to kWideBasecaseMax (radix 2^28
// with the 512-bit kernels; elsewhere it is multiply()), in the top-level call
// and in every sub-product of the rungs above it.
template <class R>
void multiplyWideBasecase(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn);

// out[0 .. 2n) := a[0..n)^2.
template <class R>
void square(Limb* out, const Limb* a, std::size_t n);

}  // namespace tw::arith
