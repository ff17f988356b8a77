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

#include "arith/multiply.h"
#include "arith/ntt/transform_multiply.h"
#include "arith/thresholds.h"
#include "frame/radix.h"

namespace tw::arith {

enum class ProductRule : bool {
    Ladder,   // multiply(): the rungs of thresholds.h
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
        multiply<R>(out, a, an, b, bn);
}

// The product under a rule; the contract of multiply().
template <class R>
void multiplyBy(ProductRule rule, Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    if (rule == ProductRule::Fastest)
        multiplyFast<R>(out, a, an, b, bn);
    else
        multiply<R>(out, a, an, b, bn);
}

// Whether a product needed only modulo radix^N - 1, N the cyclic length of
// `longer` + 2 limbs (cyclic_multiply.h), is cheaper by cyclicMultiply than
// in full, for operands of `shorter` and `longer` limbs.  Measured in both
// radices against either rule (the full product by the transform is about
// twice the cyclic one wherever both are transforms): the cyclic product wins
// from about 160 limbs once the shorter operand reaches 128, and from 1000
// limbs already when the shorter has 48, below which the basecase is cheaper.
inline bool cyclicIsCheaper(std::size_t shorter, std::size_t longer) {
    if (shorter > longer) std::swap(shorter, longer);
    return (longer >= 160 && shorter >= 128) || (longer >= 1000 && shorter >= 48);
}

}  // namespace tw::arith
