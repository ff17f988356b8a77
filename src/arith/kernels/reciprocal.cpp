#include "arith/kernels/reciprocal.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "arith/kernels/add_sub.h"
#include "arith/kernels/divide_newton.h"
#include "arith/kernels/divide_one_quotient_limb.h"
#include "arith/kernels/divide_by_limb.h"
#include "arith/kernels/ntt/cyclic_multiply.h"
#include "frame/error_state.h"

namespace tw::arith {
namespace {

// Newton starts from an exact reciprocal of this precision (or less).
constexpr std::size_t kStartPrecision = 4;

// v[0..h+2) := floor(radix^(t+h) / Dt), Dt = dt[0..t), t <= h + 2, h <= kStartPrecision.
template <class R>
void startingReciprocal(Limb* v, const Limb* dt, std::size_t t, std::size_t h) {
    Limb power[2 * kStartPrecision + 3] = {};
    Limb rem[kStartPrecision + 2];
    power[t + h] = 1;
    if (t == 1)
        divideByLimb<R>(v, power, h + 2, dt[0]);
    else
        divideSchoolbookTiny<R>(v, rem, power, t + h + 1, dt, t);
}

// radix^len - x[0..len) in place, for 0 < x < radix^len.
template <class R>
void complement(Limb* x, std::size_t len) {
    Limb borrow = 0;
    for (std::size_t i = 0; i < len; ++i) {
        const Limb owed = x[i] + borrow;
        x[i] = owed == 0 ? 0 : R::base - owed;
        borrow = owed != 0;
    }
}

// One Newton step: v[0..h+2) holds V_h, a reciprocal of D = d[0..dn) to
// precision h; on return v[0..k+2) holds V_k, h < k <= 2h - 1.
//
// With t = min(dn, k + 2) top limbs Dt of D, T = radix^(t+h) - Dt * V_h and
// V_k = V_h radix^(k-h) + V_h T / radix^(t+2h-k), which is the real Newton
// step W = X (1 + e) for X = V_h radix^(k-h), e = T / radix^(t+h).  Error of
// V_k against Y_k = radix^(dn+k) / D, with Y' = radix^(t+k) / Dt >= Y_k:
//  - Newton: W = Y'(1 - e^2) and |e| < 3.01 / radix^h (|V_h - Y_h| < 3 and
//    Y' - Y_k < radix^(k+2-t) <= 1/radix at precision h), so
//    0 <= Y' - W < 9.1 radix^(k-2h) <= 9.1 / radix;
//  - truncating D to Dt: 0 <= Y' - Y_k < radix^(k+2-t) <= 1 (0 when t = dn);
//  - only |T| >> s limbs enters the correction product, s chosen so that the
//    dropped part is worth below V_h / radix^(h+2) < 1.01 / radix, and the
//    product is truncated: V_k - W lies in (-1.01/radix - 1, 1 + 1.01/radix),
//    on the side that rounds the correction toward zero.
// Sum: -1.02 < V_k - Y_k < 2.01, inside the bound 3 that the next step
// assumes.  T has at most t + 1 limbs since |T| < 4 radix^t.
//
// That bound also lets Dt * V_h be taken modulo radix^N - 1 for N >= t + 2:
// T modulo radix^N - 1 then determines T, since a T >= 0 leaves a residue
// below 4 radix^t (limbs from t + 1 up zero), a T < 0 one above
// radix^N - 1 - 4 radix^t (top limb, t + 1 or above, not zero).
template <class R>
void newtonStep(LimbScratch& scratch, Limb* v, std::size_t h, std::size_t k, const Limb* d, std::size_t dn,
                ProductRule rule) {
    LimbScratch::Frame frame(scratch);
    const std::size_t t = std::min(dn, k + 2);
    const std::size_t vl = trimmedLengthAtLeastOne(v, h + 2);
    const std::size_t whole = t + h;  // position of radix^(t+h)

    // |T| into p[0..tl), and its sign.
    Limb* p;
    bool negative;
    std::size_t tl;
    const std::size_t length = cyclicFits(t + 2) ? cyclicLength(t + 2) : 0;
    if (length && cyclicIsCheaper<R>(t, vl, length)) {
        p = frame.take(length);
        cyclicMultiply<R>(p, length, d + dn - t, t, v, vl);
        if (terminateRequested()) return;
        // p := Dt V_h - radix^(t+h) = -T modulo radix^N - 1, reduced: on a
        // borrow, adding radix^N - 1 back takes one from the wrapped value.
        const std::size_t at = whole % length;  // radix^N = 1
        if (subBorrow<R>(p + at, p + at, length - at, 1)) subBorrow<R>(p, p, length, 1);
        // A small residue is -T >= 0; otherwise T > 0 is radix^N - 1 less the
        // residue, every limb's complement to radix - 1.
        negative = p[length - 1] == 0;
        if (!negative)
            for (std::size_t i = 0; i < length; ++i) p[i] = R::base - 1 - p[i];
        tl = trimmedLengthAtLeastOne(p, length);
        assert(tl <= t + 1);
    } else {
        p = frame.take(t + vl);
        multiplyBy<R>(rule, p, d + dn - t, t, v, vl);
        if (terminateRequested()) return;
        const std::size_t pl = t + vl;
        negative = std::any_of(p + whole, p + pl, [](Limb x) { return x != 0; });
        if (negative)
            subBorrow<R>(p + whole, p + whole, pl - whole, 1);
        else
            complement<R>(p, whole);
        tl = trimmedLengthAtLeastOne(p, negative ? pl : whole);
    }

    // C = V_h * (|T| >> s) >> e limbs.
    const std::size_t s = whole >= k + 2 ? whole - k - 2 : 0;
    const std::size_t e = t + 2 * h - k - s;
    std::size_t cl = 0;
    Limb* correction = nullptr;
    if (tl > s) {
        const std::size_t thl = tl - s;
        correction = frame.take(vl + thl);
        multiplyBy<R>(rule, correction, v, vl, p + s, thl);
        if (terminateRequested()) return;
        if (vl + thl > e) cl = trimmedLengthAtLeastOne(correction + e, vl + thl - e);
    }

    // V_k = V_h radix^(k-h) +- C.
    std::memmove(v + (k - h), v, (h + 2) * sizeof(Limb));
    std::fill(v, v + (k - h), 0);
    if (cl == 0) return;
    const Limb* c = correction + e;
    assert(cl <= k + 2);
    if (negative) {
        [[maybe_unused]] const Limb borrow = subSpans<R>(v, v, k + 2, c, cl);
        assert(borrow == 0);
    } else {
        [[maybe_unused]] const Limb carry = addSpans<R>(v, v, k + 2, c, cl);
        assert(carry == 0);
    }
}

}  // namespace

template <class R>
void reciprocal(LimbScratch& scratch, Limb* v, const Limb* d, std::size_t dn, std::size_t n, ProductRule rule) {
    assert(dn >= 1 && d[dn - 1] != 0 && n >= 1);
    // Precisions from the target down: k needs at least (k + 1) / 2 beforehand.
    std::size_t targets[64];
    std::size_t steps = 0;
    std::size_t h = n;
    while (h > kStartPrecision) {
        targets[steps++] = h;
        h = (h + 2) / 2;
    }
    const std::size_t t = std::min(dn, h + 2);
    std::fill(v, v + reciprocalLimbs(n), 0);
    startingReciprocal<R>(v, d + dn - t, t, h);

    while (steps > 0) {
        if (terminateRequested()) return;
        const std::size_t k = targets[--steps];
        newtonStep<R>(scratch, v, h, k, d, dn, rule);
        h = k;
    }
}

template <class R>
void reciprocal(Limb* v, const Limb* d, std::size_t dn, std::size_t n, ProductRule rule) {
    LimbScratch scratch(reciprocalScratchLimbs(n));
    reciprocal<R>(scratch, v, d, dn, n, rule);
}

template <class R>
DivisorReciprocal<R>::DivisorReciprocal(const Limb* d, std::size_t dn) : divisor_(d, d + dn) {
    assert(dn >= 1 && d[dn - 1] != 0);
    std::size_t low = 0;
    while (d[low] == 0) ++low;
    const std::size_t m = dn - low;
    if (m >= 2) {
        precision_ = blockPrecision(m);
        reciprocal_.resize(reciprocalLimbs(precision_));
        reciprocal<R>(reciprocal_.data(), d + low, m, precision_, ProductRule::Fastest);
        valid_ = !terminateRequested();
    }
}

template <class R>
void DivisorReciprocal<R>::divide(Limb* q, Limb* r, const Limb* a, std::size_t an) const {
    if (!valid_ || terminateRequested()) return;
    LimbScratch scratch(divideScratchLimbs(an, divisor_.size()));
    divideMagnitude<R>(scratch, q, r, a, an, divisor_.data(), divisor_.size(),
                       precision_ ? reciprocal_.data() : nullptr, precision_, ProductRule::Fastest);
}

template void reciprocal<DecimalRadix>(Limb*, const Limb*, std::size_t, std::size_t, ProductRule);
template void reciprocal<BinaryRadix>(Limb*, const Limb*, std::size_t, std::size_t, ProductRule);
template void reciprocal<DecimalRadix>(LimbScratch&, Limb*, const Limb*, std::size_t, std::size_t, ProductRule);
template void reciprocal<BinaryRadix>(LimbScratch&, Limb*, const Limb*, std::size_t, std::size_t, ProductRule);
template class DivisorReciprocal<DecimalRadix>;
template class DivisorReciprocal<BinaryRadix>;

}  // namespace tw::arith
