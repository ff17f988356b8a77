// Signed addition and subtraction in place, and the operations with one
// 32-bit machine operand, on sign-magnitude numbers of either radix.
#pragma once

#include <cstdint>
#include <utility>

#include "arith/numbers/magnitude.h"
#include "frame/machine_int.h"
#include "frame/signed_number.h"

namespace tw::arith {

// x += (ySignFlip * y) in place; x and y are distinct objects (the call frame
// sends equal operands elsewhere).  ySign is y's sign, possibly negated for
// subtraction.
template <class R>
void addSignedInPlace(SignedNumber<R>& x, const SignedNumber<R>& y, std::int32_t ySign) {
    if (&x == &y || ySign == 0) return;
    if (x.sign == 0) {
        x = y;
        x.sign = ySign;
        return;
    }
    if (x.sign == ySign) {
        addMagnitudeInPlace<R>(x.rec(), y.rec());
    } else {
        const int c = compareMagnitude(x.rec(), y.rec());
        if (c == 0) {
            x.setZero();
            return;
        }
        if (c > 0) {
            subtractMagnitudeInPlace<R>(x.rec(), y.rec());
        } else {
            x.negate();
            reverseSubtractMagnitude<R>(x.rec(), y.rec());
        }
    }
    x.normalizeSign();
}

template <class R>
void addInPlace(SignedNumber<R>& x, const SignedNumber<R>& y) { addSignedInPlace(x, y, y.sign); }
template <class R>
void subtractInPlace(SignedNumber<R>& x, const SignedNumber<R>& y) { addSignedInPlace(x, y, -y.sign); }

// x *= m for a signed machine integer m (doubling uses m = 2).
template <class R>
void multiplyBySigned(SignedNumber<R>& x, std::int64_t m) {
    if (x.isZero() || m == 1) return;
    if (m == 0) {
        x.setZero();
        return;
    }
    if (m < 0) x.negate();
    if (m != 1 && m != -1) multiplyMagnitudeByWord<R>(x.rec(), std::uint32_t(m < 0 ? -m : m));
    x.normalizeSign();
}

// |x| := n - |x| for |x| < n, as a fresh magnitude.
template <class R>
void reverseSubtractWord(SignedNumber<R>& x, std::uint32_t n) {
    const std::uint64_t magnitude = magnitudeU64(x).value_or(0);
    setMagnitudeWord<R>(x.rec(), n - magnitude);
}

// x + direction * n for direction +1 or -1.  When x has the other sign and a
// smaller magnitude than n, the magnitude becomes n - |x| but the sign stays:
// -5 + 7 gives -2 and 3 - 5 gives 2.  The library has always behaved so, and
// callers rely on it.  Zero becomes direction * n.
template <class R>
void offsetByWord(SignedNumber<R>& x, std::uint32_t n, std::int32_t direction) {
    if (n == 0) return;
    if (x.sign == 0) {
        setMagnitude64(x, direction, n);
        return;
    }
    Limb word[3];
    if (x.sign == direction) {
        addSpanInPlace<R>(x.rec(), wordSpan<R>(word, n));
    } else {
        const int c = compareMagnitudeU32(x, n);
        if (c == 0) {
            x.setZero();
            return;
        }
        if (c > 0)
            subtractSpanInPlace<R>(x.rec(), wordSpan<R>(word, n));
        else
            reverseSubtractWord(x, n);  // the sign is kept
    }
    x.normalizeSign();
}

// r := a + bSign * |b| when a and bSign * b share a sign and both have at
// most two limbs, r distinct from both, holding no text and at least three
// limbs in place: the commonest small sum, without the span kernels' set-up.
// False, with nothing changed, for any other case.
template <class R>
[[gnu::always_inline]] inline bool addSmallInto(SignedNumber<R>& r, const SignedNumber<R>& a, const SignedNumber<R>& b,
                                                std::int32_t bSign) {
    const NumberRecord& x = a.rec();
    const NumberRecord& y = b.rec();
    NumberRecord& out = r.rec();
    if (a.sign != bSign || a.sign == 0 || (x.topIndex | y.topIndex) > 1 || x.allocated() < 2 || y.allocated() < 2 ||
        out.textBufferA || out.textBufferW || out.digits != out.limbs.data() || out.allocated() < 3)
        return false;
    Limb low = x.digits[0] + y.digits[0];
    const Limb lowCarry = low >= R::base;
    low -= lowCarry ? R::base : 0;
    Limb high = x.digits[1] + y.digits[1] + lowCarry;
    const Limb highCarry = high >= R::base;
    high -= highCarry ? R::base : 0;
    for (std::uint32_t i = 3; i <= out.topIndex; ++i) out.digits[i] = 0;
    out.digits[0] = low;
    out.digits[1] = high;
    out.digits[2] = highCarry;
    out.topIndex = highCarry ? 2 : high ? 1 : 0;
    out.lowIndex = low ? 0 : high ? 1 : 2;
    r.sign = a.sign;
    return true;
}

// r := a + bSign * |b| for r distinct from a and b (a and b may be one
// object): the sum or difference is written straight into r's storage, with
// no copy of a first.  As in place, a raised terminate flag makes a
// difference zero.
template <class R>
void addSignedInto(SignedNumber<R>& r, const SignedNumber<R>& a, const SignedNumber<R>& b, std::int32_t bSign) {
    if (bSign == 0) {
        r = a;
        return;
    }
    if (a.sign == 0) {
        r = b;
        r.sign = bSign;
        return;
    }
    const NumberRecord* x = &a.rec();
    const NumberRecord* y = &b.rec();
    NumberRecord& out = r.rec();
    if (a.sign == bSign) {
        if (x->topIndex < y->topIndex) std::swap(x, y);
        const std::uint32_t n = x->topIndex + 1;
        Limb* sum = prepareOverwrite(out, n + 1);
        if (sum == nullptr) {
            r.sign = 0;
            return;
        }
        sum[n] = addSpans<R>(sum, x->digits, n, y->digits, y->topIndex + 1);
        normalizeIndices(out, n + 1);
        r.sign = a.sign;
        return;
    }
    const int c = compareMagnitude(*x, *y);
    if (c == 0 || terminateRequested()) {
        r.setZero();
        return;
    }
    if (c < 0) std::swap(x, y);
    const std::uint32_t n = x->topIndex + 1;
    Limb* difference = prepareOverwrite(out, n);
    if (difference == nullptr) {
        r.sign = 0;
        return;
    }
    subSpans<R>(difference, x->digits, n, y->digits, y->topIndex + 1);
    normalizeIndices(out, n);
    r.sign = c > 0 ? a.sign : bSign;
}

// r := a + b and r := a - b for any aliasing of r, a and b: equal operands
// double or give zero, a result equal to an operand works in place, and a
// distinct result takes the sum in its own storage.
template <class R>
void add(SignedNumber<R>& r, const SignedNumber<R>& a, const SignedNumber<R>& b) {
    if (&a == &b) {
        if (&r != &a) r = a;
        multiplyBySigned(r, 2);
    } else if (&r == &b) {
        addInPlace(r, a);
    } else if (&r == &a) {
        addInPlace(r, b);
    } else if (!addSmallInto(r, a, b, b.sign)) {
        addSignedInto(r, a, b, b.sign);
    }
}
template <class R>
void subtract(SignedNumber<R>& r, const SignedNumber<R>& a, const SignedNumber<R>& b) {
    if (&a == &b) {
        r.setZero();
    } else if (&r == &b) {
        r.negate();
        addInPlace(r, a);
    } else if (&r == &a) {
        subtractInPlace(r, b);
    } else if (!addSmallInto(r, a, b, -b.sign)) {
        addSignedInto(r, a, b, -b.sign);
    }
}

template <class R>
void addWord(SignedNumber<R>& x, std::uint32_t n) { offsetByWord(x, n, 1); }
template <class R>
void subtractWord(SignedNumber<R>& x, std::uint32_t n) { offsetByWord(x, n, -1); }

// x * n with n taken as unsigned.
template <class R>
void multiplyByWord(SignedNumber<R>& x, std::uint32_t n) {
    if (x.isZero() || n == 1) return;
    if (n == 0) {
        x.setZero();
        return;
    }
    multiplyMagnitudeByWord<R>(x.rec(), n);
    x.normalizeSign();
}

}  // namespace tw::arith
