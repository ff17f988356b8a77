// Products and squares of numbers: spans are taken from the lowest non-zero
// limb so zero limbs at the bottom are never multiplied, and the product lands
// at the sum of the offsets.  An interrupted product is zero, never partial.
#pragma once

#include <utility>

#include "arith/numbers/magnitude.h"
#include "arith/kernels/multiply.h"
#include "frame/signed_number.h"

namespace tw::arith {

// target := |a| * |b|.  A target distinct from a and b takes the product in
// its own storage (its capacity reused); a target that is a or b gets it
// built in a fresh record that then takes its place.
template <class R>
void replaceWithProduct(NumberRecord& target, const NumberRecord& a, const NumberRecord& b) {
    if (terminateRequested() || a.isZero() || b.isZero()) {
        setRecordZero(target);
        return;
    }
    Span as = spanOf(a), bs = spanOf(b);
    if (as.length < bs.length) std::swap(as, bs);
    const std::size_t offset = as.offset + bs.offset;
    const std::size_t limbs = offset + as.length + bs.length;
    const bool distinct = &target != &a && &target != &b;
    NumberRecord fresh;
    NumberRecord& out = distinct ? target : fresh;
    if (distinct) dropTextBuffers(target);
    if (!prepareResult(out, limbs)) {
        setRecordZero(target);
        return;
    }
    if (as.limbs == bs.limbs && as.length == bs.length)
        square<R>(out.digits + offset, as.limbs, as.length);
    else
        multiply<R>(out.digits + offset, as.limbs, as.length, bs.limbs, bs.length);
    if (terminateRequested()) {
        setRecordZero(target);
        return;
    }
    if (distinct)
        normalizeIndices(target, std::uint32_t(limbs));
    else
        installResult(target, std::move(fresh), limbs);
}

// target := a * b, a square when a and b are one object, for any aliasing of
// target with a and b; a distinct result needs no copy of an operand first.  A zero operand gives zero and a factor of +-1
// the other operand with its sign adjusted; a raised terminate flag makes
// the product zero.
template <class R>
void multiplyInto(SignedNumber<R>& target, const SignedNumber<R>& a, const SignedNumber<R>& b) {
    const std::int32_t sign = a.sign * b.sign;
    if (sign == 0) {
        target.setZero();
        return;
    }
    const auto isUnit = [](const SignedNumber<R>& v) { return v.rec().topIndex == 0 && v.limb(0) == 1; };
    if (&a != &b && isUnit(b))
        target = a;
    else if (&a != &b && isUnit(a))
        target = b;
    else
        replaceWithProduct<R>(target.rec(), a.rec(), b.rec());
    target.sign = sign;
    target.normalizeSign();
}

}  // namespace tw::arith
