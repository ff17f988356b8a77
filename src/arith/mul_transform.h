// The ladder's view of the number-theoretic transform rung.
//
// The transform is not part of the build yet: kTransformRung is false and the
// ladder runs Toom-3 from 512 limbs up.  These forwarders keep the rung's call
// sites in place for the day it arrives.
#pragma once

#include <cstddef>

#include "frame/radix.h"

namespace tw::arith {

inline constexpr bool kTransformRung = false;

// Whether the transform accepts a product whose shorter operand has m limbs.
inline bool transformAccepts(std::size_t) { return false; }

template <class R>
void transformProduct(Limb*, const Limb*, std::size_t, const Limb*, std::size_t) {}

template <class R>
void transformSquareOf(Limb*, const Limb*, std::size_t) {}

}  // namespace tw::arith
