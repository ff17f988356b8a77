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
