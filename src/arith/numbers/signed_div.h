// Division of numbers: quotients truncated toward zero, remainders with the
// dividend's sign, except divideByInt32 whose remainder follows the quotient.
#pragma once

#include <cstdint>
#include <optional>

#include "arith/kernels/divide.h"
#include "arith/kernels/divide_by_limb.h"
#include "arith/numbers/magnitude.h"
#include "frame/machine_int.h"
#include "frame/signed_number.h"

namespace tw::arith {

// Q := |A| div |B|, R := |A| mod |B| (R may be null).  Q and R are records of
// their own, distinct from A and B; B is not zero.
template <class R>
void divideMagnitudes(NumberRecord& q, NumberRecord* r, const NumberRecord& a, const NumberRecord& b) {
    if (terminateRequested()) {
        setRecordZero(q);
        return;
    }
    const int c = compareMagnitude(a, b);
    if (c <= 0) {
        if (r) {
            if (c < 0) *r = a;
            else setRecordZero(*r);
        }
        if (c < 0) setRecordZero(q);
        else setMagnitudeWord<R>(q, 1);
        return;
    }
    // Both are written straight into the storage of q and r (their capacity
    // reused), which are distinct from A and B.
    const std::size_t an = a.topIndex + 1, bn = b.topIndex + 1;
    Limb* quotient = prepareOverwrite(q, std::uint32_t(an - bn + 1));
    Limb* remainder = r && quotient ? prepareOverwrite(*r, std::uint32_t(bn)) : nullptr;
    if (quotient == nullptr || (r && remainder == nullptr)) {
        setRecordZero(q);
        return;
    }
    if (bn == 1) {
        const Limb rest = divideByLimb<R>(quotient, a.digits, an, b.digits[0]);
        if (r) remainder[0] = rest;
    } else {
        divide<R>(quotient, remainder, a.digits, an, b.digits, bn);
    }
    if (terminateRequested()) {
        setRecordZero(q);
        if (r) setRecordZero(*r);
        return;
    }
    normalizeIndices(q, std::uint32_t(an - bn + 1));
    if (r) normalizeIndices(*r, std::uint32_t(bn));
}

// q := a / b truncated, r := a - q*b with a's sign (r may be null).  q, r, a, b
// are distinct objects.  A zero divisor records -5 and leaves q and r alone.
template <class R>
void divideSigned(SignedNumber<R>& q, SignedNumber<R>* r, const SignedNumber<R>& a, const SignedNumber<R>& b) {
    if (b.isZero()) {
        setLastError(kErrDivZero);
        return;
    }
    if (r) r->setZero();
    if (a.isZero()) {
        q.setZero();
        return;
    }
    divideMagnitudes<R>(q.rec(), r ? &r->rec() : nullptr, a.rec(), b.rec());
    q.sign = a.sign * b.sign;
    q.normalizeSign();
    if (r) {
        r->sign = a.sign;
        r->normalizeSign();
    }
}

// q := a / d truncated for a signed 32-bit d, returning the remainder |a| mod |d|
// with the sign of the quotient as it stands before a zero quotient loses its
// sign: -7 / -2 = 3 rem 1, 7 / -2 = -3 rem -1, 1 / -2 = 0 rem -1.  This
// convention is this operation's own and differs from divideSigned.
// Returns nothing for a zero divisor (-5 recorded, q made zero).
template <class R>
std::optional<std::int32_t> divideByInt32(SignedNumber<R>& q, const SignedNumber<R>& a, std::int32_t d) {
    if (d == 0) {
        setLastError(kErrDivZero);
        q.setZero();
        return std::nullopt;
    }
    q = a;
    if (q.isZero()) return 0;
    if (d < 0) q.negate();
    const std::uint32_t divisor = d < 0 ? 0u - std::uint32_t(d) : std::uint32_t(d);
    NumberRecord& rec = q.rec();
    dropTextBuffers(rec);
    const std::int32_t rest = std::int32_t(divideByLimb<R>(rec.digits, rec.digits, rec.topIndex + 1, divisor));
    normalizeIndices(rec, rec.topIndex + 1);
    const std::int32_t remainder = q.sign > 0 ? rest : -rest;
    q.normalizeSign();
    return remainder;
}

// q := a / b with the remainder into *r (r may be null): every aliasing of
// q with a and b is safe, since the quotient is built apart and moved in.  A
// remainder that is a or b itself is left alone and the quotient is zero: the
// library's long-standing rule for that call.
template <class R>
void divideWithRemainder(SignedNumber<R>& q, SignedNumber<R>* r, const SignedNumber<R>& a, const SignedNumber<R>& b) {
    if (&q != &a && &q != &b && &q != r && r != &a && r != &b) {
        // Nothing aliased: both results straight into their own storage.  A
        // zero divisor leaves a zero quotient, as the path below does.
        if (b.isZero()) q.setZero();
        divideSigned(q, r, a, b);
        return;
    }
    SignedNumber<R> fresh;
    if (r != &a && r != &b) divideSigned(fresh, r, a, b);
    q.swap(fresh);
}

// r := a mod b (truncated, a's sign), r may be a or b.
template <class R>
void remainder(SignedNumber<R>& r, const SignedNumber<R>& a, const SignedNumber<R>& b) {
    SignedNumber<R> quotient, rest;
    divideSigned(quotient, &rest, a, b);
    r.swap(rest);
}

// q := a / d for a signed 32-bit d, the remainder into *rest when there is
// one (divideByInt32's convention); q may be a.
template <class R>
void divideByInt32Into(SignedNumber<R>& q, const SignedNumber<R>& a, std::int32_t d, std::int32_t* rest) {
    SignedNumber<R> quotient;
    const auto r = divideByInt32(quotient, a, d);
    if (r && rest != nullptr) *rest = *r;
    q.swap(quotient);
}

}  // namespace tw::arith
