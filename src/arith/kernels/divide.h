// Division of limb spans: the entry point of the division kernel.
//
// Contract: a[0..an) and b[0..bn) with bn >= 1, b[bn-1] != 0, an >= bn.
// q receives an - bn + 1 limbs, r receives bn limbs (r may be null when only
// the quotient is wanted).  No output overlaps an operand.  When the terminate
// flag is raised during the work the outputs are unspecified (the caller makes
// the quotient zero).  Temporaries may throw std::bad_alloc.
#pragma once

#include <cstddef>

#include "frame/radix.h"

namespace tw::arith {

// q := a div b, r := a mod b.
template <class R>
void divide(Limb* q, Limb* r, const Limb* a, std::size_t an, const Limb* b, std::size_t bn);

}  // namespace tw::arith
