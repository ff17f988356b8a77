// Size thresholds of the multiplication and squaring ladders, in limbs of the
// shorter operand (product) or of the operand (square).  They are fixed
// constants of the library's design, the same for both radices.
#pragma once

#include <cstddef>

namespace tw::arith {

// Product ladder: single limb, basecase up to 64, Karatsuba up to 192,
// Toom-3 up to 511, number-theoretic transform from 512.
inline constexpr std::size_t kMulBasecaseMax = 64;
inline constexpr std::size_t kMulKaratsubaMax = 192;
inline constexpr std::size_t kMulTransformMin = 512;

// Not a rung of the public ladder: the products that the digit conversions
// take by their own rule (multiplyFast) let the basecase run up to this
// shorter operand in radix 2^28 where the 512-bit kernels are available.
// There one basecase of 72 limbs takes 0.4 us against 0.7 us by Karatsuba
// over 36-limb halves, and 128 limbs 1.0 us against 1.4 us.  It cannot
// exceed the lane kernels' reach (kLaneKernelMax).
inline constexpr std::size_t kWideBasecaseMax = 128;

// Squaring ladder: wider rungs, since squaring saves the cross products.
inline constexpr std::size_t kSqrBasecaseMax = 128;
inline constexpr std::size_t kSqrKaratsubaMax = 256;
inline constexpr std::size_t kSqrTransformMin = 512;

// Transform lengths above this (in limbs) are not used: the sum of a
// convolution must stay below the product of the three transform primes.
inline constexpr std::size_t kTransformMaxLength = 0x3000000;
// Above this transform length Toom-3 splits the operands; between the two, Karatsuba.
inline constexpr std::size_t kTransformToomLength = 0x6000000;

static_assert(1 < kMulBasecaseMax && kMulBasecaseMax < kMulKaratsubaMax && kMulKaratsubaMax < kMulTransformMin);
static_assert(1 < kSqrBasecaseMax && kSqrBasecaseMax < kSqrKaratsubaMax && kSqrKaratsubaMax < kSqrTransformMin);
static_assert(kTransformMaxLength < kTransformToomLength);

}  // namespace tw::arith
