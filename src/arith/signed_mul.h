// Products and squares of numbers: spans are taken from the lowest non-zero
// limb so zero limbs at the bottom are never multiplied, and the product lands
// at the sum of the offsets.  An interrupted product is zero, never partial.
#pragma once

#include <utility>

#include "arith/magnitude.h"
#include "arith/multiply.h"
#include "frame/signed_number.h"

namespace tw::arith {

// target := |a| * |b|.  target may be a or b: the product is built in a fresh
// record and then takes target's place.
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
    NumberRecord out;
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
    installResult(target, std::move(out), limbs);
}

// x *= y in place, x and y distinct (equal operands are squared instead).
template <class R>
void multiplyInPlace(SignedNumber<R>& x, const SignedNumber<R>& y) {
    if (&x == &y) return;
    if (y.isZero()) {
        x.setZero();
        return;
    }
    if (x.isZero()) return;
    const std::int32_t sign = x.sign * y.sign;
    if (!(y.rec().topIndex == 0 && y.limb(0) == 1)) replaceWithProduct<R>(x.rec(), x.rec(), y.rec());
    x.sign = sign;
    x.normalizeSign();
}

// x := x^2 in place; a raised terminate flag makes x zero.
template <class R>
void squareInPlace(SignedNumber<R>& x) {
    if (terminateRequested()) {
        x.setZero();
        return;
    }
    if (x.isZero()) return;
    replaceWithProduct<R>(x.rec(), x.rec(), x.rec());
    x.sign = 1;
    x.normalizeSign();
}

}  // namespace tw::arith
