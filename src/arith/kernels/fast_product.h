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
// result has `total` limbs is cheaper by the transform than by the ladder:
// in the Toom-3 band, but for results just past kTransformStep (tuning.h).
template <class R>
bool transformIsCheaper(std::size_t shorter, std::size_t total) {
    return shorter > kLadder<R>.mulKaratsubaMax && shorter < kLadder<R>.mulTransformMin &&
           (total <= kTransformStep || total >= kTransformStep + kTransformStep / 8);
}

// out[0 .. an+bn) := a[0..an) * b[0..bn) for operands in either order, by the
// transform where transformIsCheaper says so.  out overlaps neither operand.
template <class R>
void multiplyFast(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    if (an < bn) {
        std::swap(a, b);
        std::swap(an, bn);
    }
    if (transformIsCheaper<R>(bn, an + bn))
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
// cyclicMultiply than in full: the cost model and its measured constants are
// in tuning.h; it loses where N has just stepped up to twice the operands.
// Against the transform (from 512 limbs, or in the Toom-3 band under
// ProductRule::Fastest) the cyclic product of N no longer than the full
// product's length always wins, which the rule also grants.
template <class R>
bool cyclicIsCheaper(std::size_t shorter, std::size_t longer, std::size_t length) {
    if (shorter > longer) std::swap(shorter, longer);
    if (shorter <= kLadder<R>.mulBasecaseMax || longer < kCyclicMinLonger) return false;
    constexpr unsigned c = R::isBinary ? kCyclicCostBinary : kCyclicCostDecimal;
    return u128(shorter) * longer * longer >= u128(c) * length * length;
}

}  // namespace tw::arith
