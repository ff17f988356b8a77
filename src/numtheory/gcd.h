// Greatest common divisors of numbers: GCD, LCM and the extended GCD of two
// numbers, and the GCD and LCM of lists.  Signs, aliasing and storage are
// settled here; the Euclidean run itself is word_euclid.h, on 64-bit words.  Results are
// built apart and moved in, so any handle may be any operand.  A raised
// terminate flag makes the results zero.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "arith/numbers/digit_counts.h"
#include "arith/numbers/magnitude.h"
#include "arith/numbers/signed_add.h"
#include "arith/numbers/signed_div.h"
#include "arith/numbers/signed_mul.h"
#include "arith/tuning.h"
#include "frame/compare.h"
#include "frame/machine_int.h"
#include "frame/signed_number.h"
#include "numtheory/half_gcd.h"

namespace tw::numtheory {

// Whether a pair takes the sub-quadratic path: for both operands, the decimal
// digits less nine per common low zero limb exceed kSubquadraticGcdDigits.
template <class R>
bool useSubquadraticGcd(const SignedNumber<R>& a, const SignedNumber<R>& b) {
    const std::int64_t shared = 9 * std::int64_t(std::min(a.rec().lowIndex, b.rec().lowIndex));
    const auto above = [shared](const SignedNumber<R>& v) {
        // A limb holds at most nine decimal digits: short numbers need no count.
        if (9 * (std::int64_t(v.rec().topIndex) + 1) - shared <= kSubquadraticGcdDigits) return false;
        return std::int64_t(decimalDigitCount(v)) - shared > kSubquadraticGcdDigits;
    };
    return above(a) && above(b);
}

// x := the magnitude p[0..n) times radix^offset, positive.
template <class R>
void setMagnitudeFromLimbs(SignedNumber<R>& x, const Limb* p, std::size_t n, std::size_t offset) {
    NumberRecord out;
    if (!arith::prepareResult(out, offset + n)) {
        x.setZero();
        return;
    }
    std::copy(p, p + n, out.digits + offset);
    arith::installResult(x.rec(), std::move(out), offset + n);
    x.sign = 1;
    x.normalizeSign();
}

// The common power of two of a and b (trimmed, non-zero) leaves both: it
// is a factor of the GCD and changes no cofactor.  Returns its exponent.
inline std::size_t removeCommonTwos(Words& a, Words& b) {
    const auto zeros = [](const Words& w) {
        std::size_t i = 0;
        while (w[i] == 0) ++i;
        return 64 * i + std::size_t(__builtin_ctzll(w[i]));
    };
    const std::size_t shift = std::min(zeros(a), zeros(b));
    for (Words* w : {&a, &b}) {
        w->erase(w->begin(), w->begin() + std::ptrdiff_t(shift / 64));
        shiftRightWords(w->data(), w->size(), unsigned(shift % 64));
        w->resize(trimmedWords(w->data(), w->size()));
    }
    return shift;
}

// w * 2^shift.
inline Words shiftedLeft(const Words& w, std::size_t shift) {
    Words out(shift / 64, 0);
    const unsigned bits = unsigned(shift % 64);
    Word below = 0;
    for (Word x : w) out.push_back(bits ? (x << bits) | below : x), below = bits ? x >> (64 - bits) : 0;
    out.push_back(below);
    return out;
}

// g := gcd(|a|, |b|) for non-zero a and b, and with x non-null the cofactor
// x of |a| with |a| x = g (mod |b|), |x| <= |b| / g.  g and x are fresh
// numbers.  The work runs on 64-bit words; the common zero limbs at the
// bottom leave first, then the common power of two: both are factors of the
// GCD and change no cofactor.
template <class R>
void gcdOfNonZero(SignedNumber<R>& g, SignedNumber<R>* x, const SignedNumber<R>& a, const SignedNumber<R>& b) {
    const bool subquadratic = useSubquadraticGcd(a, b);
    const std::size_t common = std::min(a.rec().lowIndex, b.rec().lowIndex);
    Words wa = wordsOfMagnitude<R>(a.limbs() + common, a.rec().topIndex + 1 - common);
    Words wb = wordsOfMagnitude<R>(b.limbs() + common, b.rec().topIndex + 1 - common);
    g.setZero();
    if (x) x->setZero();
    if (terminateRequested() || wa.empty() || wb.empty()) return;
    const std::size_t twos = removeCommonTwos(wa, wb);
    EuclidState run(std::move(wa), std::move(wb), x != nullptr);
    if (!(subquadratic ? runSubquadratic(run) : runPlain(run)) || terminateRequested()) return;
    const Words gw = shiftedLeft(run.gcd(), twos);
    setFromWords(g, gw.data(), gw.size(), common);
    if (x) {
        setFromWords(*x, run.cofactor().data(), run.cofactor().size(), 0);
        if (run.cofactorNegative()) x->negate();
    }
    if (terminateRequested()) g.setZero(), x ? x->setZero() : void();
}

// r := gcd(|a|, |b|); gcd(0, b) = |b|.
template <class R>
void gcdInto(SignedNumber<R>& r, const SignedNumber<R>& a, const SignedNumber<R>& b) {
    if (terminateRequested()) {
        r.setZero();
        return;
    }
    if (&a == &b || a.isZero() || b.isZero()) {
        r = a.isZero() ? b : a;
        r.sign = r.isZero() ? 0 : 1;
        return;
    }
    SignedNumber<R> g;
    gcdOfNonZero<R>(g, nullptr, a, b);
    r.swap(g);
}

// r := lcm(|a|, |b|) = |a| / gcd * |b|; 0 when an operand is zero.
template <class R>
void lcmInto(SignedNumber<R>& r, const SignedNumber<R>& a, const SignedNumber<R>& b) {
    SignedNumber<R> g, quotient, product;
    if (!terminateRequested() && !a.isZero() && !b.isZero()) {
        gcdInto(g, a, b);
        if (!g.isZero()) {
            arith::divideSigned(quotient, static_cast<SignedNumber<R>*>(nullptr), a, g);
            arith::multiplyInto(product, quotient, b);
            product.sign = product.isZero() ? 0 : 1;
        }
    }
    if (terminateRequested()) product.setZero();
    r.swap(product);
}

// a x + b y = g with g = gcd(a, b) >= 0 on the signed operands, |x| <= |b| / g
// and |y| <= |a| / g + 1: x follows the Euclidean run, y = (g - a x) / b.
// gcd(a, 0) = |a| with x = sign a, y = 0; gcd(0, b) = |b| with x = 0,
// y = sign b.  The results go in y first, then x, then g: when the handles
// g, x, y are not distinct, g wins over x and x over y.
template <class R>
void extendedGcdInto(SignedNumber<R>& g, SignedNumber<R>& x, SignedNumber<R>& y, const SignedNumber<R>& a,
                     const SignedNumber<R>& b) {
    SignedNumber<R> gv, xv, yv;
    if (terminateRequested()) {
        // all three stay zero
    } else if (b.isZero()) {
        gv = a;
        gv.sign = gv.isZero() ? 0 : 1;
        setS64(xv, a.sign);
    } else if (a.isZero()) {
        gv = b;
        gv.sign = 1;
        setS64(yv, b.sign);
    } else {
        gcdOfNonZero<R>(gv, &xv, a, b);
        if (a.sign < 0) xv.negate();
        SignedNumber<R> ax, rest = gv;
        arith::multiplyInto(ax, a, xv);
        arith::subtractInPlace(rest, ax);
        arith::divideSigned(yv, static_cast<SignedNumber<R>*>(nullptr), rest, b);
    }
    if (terminateRequested()) gv.setZero(), xv.setZero(), yv.setZero();
    y.swap(yv);
    x.swap(xv);
    g.swap(gv);
}

// The values sorted by magnitude, smallest first.
template <class R>
std::vector<const SignedNumber<R>*> byMagnitude(std::vector<const SignedNumber<R>*> values) {
    std::stable_sort(values.begin(), values.end(), [](const SignedNumber<R>* p, const SignedNumber<R>* q) {
        return compareMagnitude(p->rec(), q->rec()) < 0;
    });
    return values;
}

// r := the GCD of all values (0 for none), folded from the smallest,
// skipping repeats and stopping at 1.
template <class R>
void gcdOfList(SignedNumber<R>& r, const std::vector<const SignedNumber<R>*>& values) {
    SignedNumber<R> acc;
    const SignedNumber<R>* previous = nullptr;
    for (const SignedNumber<R>* v : byMagnitude(values)) {
        if (terminateRequested()) break;
        if (previous && compareMagnitude(previous->rec(), v->rec()) == 0) continue;
        gcdInto(acc, acc, *v);
        previous = v;
        if (acc.rec().topIndex == 0 && acc.limb(0) == 1) break;
    }
    if (terminateRequested()) acc.setZero();
    r.swap(acc);
}

// r := the LCM of all values (1 for none), folded from the smallest,
// skipping repeats; a zero value ends it at 0.
template <class R>
void lcmOfList(SignedNumber<R>& r, const std::vector<const SignedNumber<R>*>& values) {
    SignedNumber<R> acc;
    setU64(acc, 1);
    const SignedNumber<R>* previous = nullptr;
    for (const SignedNumber<R>* v : byMagnitude(values)) {
        if (terminateRequested() || acc.isZero()) break;
        if (previous && compareMagnitude(previous->rec(), v->rec()) == 0) continue;
        lcmInto(acc, acc, *v);
        previous = v;
    }
    if (terminateRequested()) acc.setZero();
    r.swap(acc);
}

// r := the LCM of count machine words (1 for none).  values is not null.
template <class R>
void lcmOfWords(SignedNumber<R>& r, const std::uint32_t* values, std::uint32_t count) {
    std::vector<SignedNumber<R>> numbers(count);
    std::vector<const SignedNumber<R>*> pointers(count);
    for (std::uint32_t i = 0; i < count; ++i) setU64(numbers[i], values[i]), pointers[i] = &numbers[i];
    lcmOfList(r, pointers);
}

}  // namespace tw::numtheory
