// Integer roots: root := floor(|a|^(1/n)) with a's sign, rem := a - root^n
// (so |a| = |root|^n + |rem|).  Newton's iteration from above on the
// library's products and divisions: the root of the top half of a (the low
// n*k limbs dropped) times radix^k, plus one, is an estimate above the root
// good to half the digits, one Newton step doubles them, and x^n <= |a| then
// settles the last unit.  Square roots take the recursive square root with
// remainder of square_root.h instead, which divides half as many limbs and
// needs no full square.  Results are built in fresh numbers and moved in, so any handle may
// be any operand; a raised terminate flag makes them zero.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "arith/numbers/digit_counts.h"
#include "arith/numbers/magnitude.h"
#include "arith/numbers/power.h"
#include "arith/numbers/signed_add.h"
#include "arith/numbers/signed_div.h"
#include "arith/numbers/signed_mul.h"
#include "frame/compare.h"
#include "frame/machine_int.h"
#include "frame/signed_number.h"
#include "numtheory/square_root.h"

namespace tw::numtheory {
namespace detail {

// A copy in storage of at least three limbs, positive unless zero.
template <class R>
SignedNumber<R> magnitudeCopy(const SignedNumber<R>& x) {
    SignedNumber<R> c;
    c = x;
    c.sign = c.isZero() ? 0 : 1;
    return c;
}

template <class R>
SignedNumber<R> powerOf(const SignedNumber<R>& x, std::uint32_t e) {
    SignedNumber<R> p = magnitudeCopy(x);
    arith::powerInPlace(p, e);
    return p;
}

// x := x / n truncated, for a positive x.
template <class R>
void divideByWord(SignedNumber<R>& x, std::uint32_t n) {
    SignedNumber<R> d, q;
    setU64(d, n);
    arith::divideSigned<R>(q, nullptr, x, d);
    x.swap(q);
}

// ((n - 1) x + q) / n: one Newton step for the n-th root, q = |a| / x^(n-1).
template <class R>
SignedNumber<R> newtonStep(const SignedNumber<R>& x, const SignedNumber<R>& q, std::uint32_t n) {
    SignedNumber<R> next = magnitudeCopy(x);
    arith::multiplyByWord(next, n - 1);
    arith::addInPlace(next, q);
    divideByWord(next, n);
    return next;
}

// Bits of one limb of radix R.
template <class R>
constexpr double limbBits() { return R::isBinary ? double(R::bitsPerLimb) : 29.897352853986263; }

// floor(a^(1/n)) for a positive a whose root is below 2^40: a double
// estimate, then exact steps up and down by comparing v^n with a.
template <class R>
std::uint64_t smallRoot(const SignedNumber<R>& a, std::uint32_t n) {
    if (n >= bitCount(a)) return 1;  // 2^n > a
    const auto fits = [&](std::uint64_t v) {
        SignedNumber<R> p;
        setU64(p, v);
        arith::powerInPlace(p, n);
        return compareMagnitude(p.rec(), a.rec()) <= 0;
    };
    const double estimate = std::pow(10.0, arith::log10Magnitude<R>(a.rec()) / n);
    std::uint64_t r = estimate < 1 ? 1 : std::uint64_t(estimate);
    while (r > 1 && !terminateRequested() && !fits(r)) --r;
    while (!terminateRequested() && fits(r + 1)) ++r;
    return r;
}

// root := floor(a^(1/n)), power := root^n, for a positive a and n >= 2;
// root and power are fresh numbers distinct from a.
template <class R>
void rootMagnitude(SignedNumber<R>& root, SignedNumber<R>& power, const SignedNumber<R>& a, std::uint32_t n) {
    const double rootBits = arith::log10Magnitude<R>(a.rec()) * 3.321928094887362 / n;
    if (rootBits < 40) {
        setU64(root, smallRoot(a, n));
        power = powerOf(root, n);
        return;
    }
    // Drop n*k limbs so that the root of the rest, times radix^k, is within
    // 2 radix^k of the root, and root >= 16 n radix^(2k): one Newton step
    // from there leaves an error below 1/8.
    std::uint64_t k = std::uint64_t((rootBits - std::log2(double(n)) - 4) / (2 * limbBits<R>()));
    const bool precise = k >= 1;
    if (k == 0) k = 1;  // the root has 40 bits or more: still a positive estimate
    SignedNumber<R> high = magnitudeCopy(a), s, unused;
    arith::dropLowLimbs(high.rec(), std::size_t(k * n));
    high.normalizeSign();
    rootMagnitude(s, unused, high, n);
    if (terminateRequested()) {
        root.setZero();
        return;
    }
    // x0 = (s + 1) radix^k >= the root; the first step divides a / radix^(k(n-1))
    // by (s + 1)^(n-1), the quotient a / x0^(n-1) takes.
    arith::addWord(s, 1);
    SignedNumber<R> shifted = magnitudeCopy(a), q;
    arith::dropLowLimbs(shifted.rec(), std::size_t(k * (n - 1)));
    shifted.normalizeSign();
    arith::divideSigned<R>(q, nullptr, shifted, powerOf(s, n - 1));
    arith::insertLowLimbs(s.rec(), std::size_t(k));
    SignedNumber<R> x = newtonStep(s, q, n);
    // Every iterate stays at or above the root: x^n <= a makes x the root.
    // Close to it, unit steps down are cheaper than another Newton step.
    bool close = precise;
    int unitSteps = 0;
    for (;;) {
        if (terminateRequested()) {
            root.setZero();
            return;
        }
        SignedNumber<R> p = powerOf(x, n);
        if (compareMagnitude(p.rec(), a.rec()) <= 0) {
            power.swap(p);
            break;
        }
        if (close && unitSteps < 3) {
            arith::subtractWord(x, 1);
            ++unitSteps;
            continue;
        }
        SignedNumber<R> quotient, step;
        arith::divideSigned<R>(quotient, nullptr, a, powerOf(x, n - 1));
        SignedNumber<R> next = newtonStep(x, quotient, n);
        arith::subtract(step, x, next);
        close = 2.0 * bitCount(step) + 34 < rootBits;  // the error is about n step^2 / root
        unitSteps = 0;
        x.swap(next);
    }
    root.swap(x);
}

// root := floor(sqrt(a)), rem := a - root^2 for a positive a, by the span
// kernel of square_root.h; root and rem are fresh numbers.
template <class R>
void squareRootMagnitude(SignedNumber<R>& root, SignedNumber<R>& rem, const SignedNumber<R>& a) {
    const std::size_t an = a.rec().topIndex + 1, sn = squareRootLimbs(an);
    resizeStorage(root.rec(), std::uint32_t(sn + 1), true);
    resizeStorage(rem.rec(), std::uint32_t(sn + 1), true);
    if (root.rec().allocated() < sn + 1 || rem.rec().allocated() < sn + 1) return;  // -3 recorded
    arith::LimbScratch scratch(squareRootScratchLimbs(an));
    const std::size_t rn = squareRootSpans<R>(scratch, root.rec().digits, rem.rec().digits, a.limbs(), an);
    normalizeIndices(root.rec(), std::uint32_t(sn));
    normalizeIndices(rem.rec(), std::uint32_t(std::max<std::size_t>(rn, 1)));
    root.sign = rem.sign = 1;
    root.normalizeSign();
    rem.normalizeSign();
}

}  // namespace detail

// root := trunc(a^(1/n)) with a's sign, *rem := a - root^n (rem may be null;
// a rem that is root itself is ignored: the root wins).  n = 0 records -5 and
// leaves both alone; n = 1 gives root a and rem 0.  Any of root, rem and a
// may be one object.
template <class R>
void rootRemainder(SignedNumber<R>& root, SignedNumber<R>* rem, const SignedNumber<R>& a, std::uint32_t n) {
    if (n == 0) {
        setLastError(kErrDivZero);
        return;
    }
    if (rem == &root) rem = nullptr;
    SignedNumber<R> r, rest;
    if (n == 1 || a.isZero()) {
        r = a;
    } else {
        const SignedNumber<R> magnitude = detail::magnitudeCopy(a);
        if (n == 2) {
            detail::squareRootMagnitude(r, rest, magnitude);
        } else {
            SignedNumber<R> power;
            detail::rootMagnitude(r, power, magnitude, n);
            arith::subtract(rest, magnitude, power);
        }
        if (terminateRequested()) r.setZero(), rest.setZero();
        r.sign = a.sign;
        rest.sign = a.sign;
        r.normalizeSign();
        rest.normalizeSign();
    }
    if (rem != nullptr) rem->swap(rest);
    root.swap(r);
}

}  // namespace tw::numtheory
