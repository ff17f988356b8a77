// Which algorithm a product takes when the caller is free to leave the
// ladder: the transform in the Toom-3 band where it is measured cheaper, and
// the cyclic product when only a residue modulo radix^N - 1 is needed.
//
// The public multiplication keeps the ladder's fixed rungs; the digit
// conversions, which divide by the same powers many times, take the faster
// rule (ProductRule::Fastest) for their reciprocals and divisions.
#pragma once

#include <cstddef>
#include <utility>

#include "arith/kernels/multiply.h"
#include "arith/kernels/ntt/transform_multiply.h"
#include "arith/tuning.h"
#include "frame/radix.h"

namespace tw::arith {

enum class ProductRule : bool {
    Ladder,   // multiply(): the rungs of tuning.h
    Fastest,  // multiplyFast(): the transform where it beats the ladder
};

// Whether a product whose shorter operand has `shorter` limbs and whose
// result has `total` limbs is cheaper by the transform than by the ladder.
// The ladder takes Toom-3 for shorter operands between the Karatsuba rung and
// the transform; measured in both radices, the transform beats it all through
// that band except for results a little longer than 512 limbs, where the
// transform's length steps up.
inline bool transformIsCheaper(std::size_t shorter, std::size_t total) {
    constexpr std::size_t kStep = 512;
    return shorter > kMulKaratsubaMax && shorter < kMulTransformMin &&
           (total <= kStep || total >= kStep + kStep / 8);
}

// out[0 .. an+bn) := a[0..an) * b[0..bn) for operands in either order, by the
// transform where transformIsCheaper says so.  out overlaps neither operand.
template <class R>
void multiplyFast(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    if (an < bn) {
        std::swap(a, b);
        std::swap(an, bn);
    }
    if (transformIsCheaper(bn, an + bn))
        transformMultiply<R>(out, a, an, b, bn);
    else
        multiplyWideBasecase<R>(out, a, an, b, bn);
}

// The product under a rule; the contract of multiply().
template <class R>
void multiplyBy(ProductRule rule, Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    if (rule == ProductRule::Fastest)
        multiplyFast<R>(out, a, an, b, bn);
    else
        multiply<R>(out, a, an, b, bn);
}

// Whether a product of operands of `shorter` and `longer` limbs, needed only
// modulo radix^N - 1 for N = `length` (cyclic_multiply.h), is cheaper by
// cyclicMultiply than in full.  Measured: the cyclic product costs about
// 15 ns a limb of N in either radix; the ladder's Karatsuba and Toom-3 rungs
// about k * longer * sqrt(shorter), so the cyclic one wins when
// shorter * longer^2 >= c N^2, with c = 46 in decimal limbs and 54 in binary
// ones (whose ladder is faster); it loses where N has just stepped up to twice
// the operands.  A shorter operand in the basecase's band keeps the ladder at
// every length measured (62 x 1000 limbs: 0.8 and 0.4 times the cyclic time).
// Against the transform (from 512 limbs, or in the Toom-3 band under
// ProductRule::Fastest) the cyclic product of N no longer than the full
// product's length always wins, which the rule also grants.
template <class R>
bool cyclicIsCheaper(std::size_t shorter, std::size_t longer, std::size_t length) {
    if (shorter > longer) std::swap(shorter, longer);
    if (shorter <= kMulBasecaseMax || longer < 140) return false;
    constexpr unsigned c = R::isBinary ? 54 : 46;
    return u128(shorter) * longer * longer >= u128(c) * length * length;
}

}  // namespace tw::arith
