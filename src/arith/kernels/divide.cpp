#include "arith/kernels/divide.h"

#include <algorithm>

#include "arith/kernels/add_sub.h"
#include "arith/kernels/divide_newton.h"
#include "arith/kernels/divide_one_quotient_limb.h"
#include "arith/kernels/divide_by_limb.h"
#include "arith/kernels/reciprocal.h"
#include "arith/tuning.h"
#include "frame/error_state.h"
#include "frame/span_contracts.h"

namespace tw::arith {

template <class R>
void divideMagnitude(LimbScratch& scratch, Limb* q, Limb* r, const Limb* a, std::size_t an, const Limb* b,
                     std::size_t bn, const Limb* v, std::size_t p, ProductRule rule, KeptTransforms* kept) {
    const std::size_t qn = an - bn + 1;

    // Zero limbs at the bottom of B are not divided: the limbs of A beside
    // them pass into the remainder as they are, and the rest is the quotient
    // and remainder of the shifted problem.
    std::size_t low = 0;
    while (b[low] == 0) ++low;
    if (r) {
        std::copy(a, a + low, r);
        r += low;
    }
    a += low;
    an -= low;
    b += low;
    bn -= low;

    const std::size_t al = trimmedLengthAtLeastOne(a, an);
    if (al < bn || (al == bn && compareSameLength(a, b, bn) < 0)) {
        std::fill(q, q + qn, 0);
        if (r) {
            std::copy(a, a + al, r);
            std::fill(r + al, r + bn, 0);
        }
        return;
    }
    const std::size_t n = al - bn + 1;  // quotient limbs at most
    std::fill(q + n, q + qn, 0);

    if (bn == 1) {
        const Limb rem = divideByLimb<R>(q, a, al, b[0]);
        if (r) r[0] = rem;
        return;
    }

    if (n == 1 || (n == 2 && compareSameLength(a + 1, b, bn) < 0)) {
        // The quotient is a single limb.
        LimbScratch::Frame frame(scratch);
        Limb* rem = r ? r : frame.take(bn);
        q[0] = divideOneQuotientLimb<R>(rem, a, al, b, bn);
        if (n == 2) q[1] = 0;
        return;
    }

    if (n <= kSchoolbookDivideMaxQuotientLimbs) {
        LimbScratch::Frame frame(scratch);
        Limb* rem = frame.take(al);
        std::copy(a, a + al, rem);
        divideSchoolbookInPlace<R>(q, rem, al, b, bn);
        if (r) std::copy(rem, rem + bn, r);
        return;
    }

    // A long quotient.  Without a given reciprocal, one of the quotient's
    // precision serves a dividend of up to about 2 bn limbs; longer dividends
    // go in blocks of bn (at least kMinBlockQuotientLimbs) quotient limbs.
    LimbScratch::Frame frame(scratch);
    if (!v) {
        p = std::min(n, blockPrecision(bn));
        if (n <= bn + 1 && n >= 2 * kMinBlockQuotientLimbs && n <= kHalfReciprocalMaxQuotientLimbs)
            p = (n + 1) / 2 + 1;
        Limb* own = frame.take(reciprocalLimbs(p));
        reciprocal<R>(scratch, own, b, bn, p, rule);
        if (terminateRequested()) return;
        v = own;
    }
    if (n <= p)
        divideByReciprocal<R>(scratch, q, n, r, a, al, b, bn, v, p, rule, kept);
    else
        divideInBlocks<R>(scratch, q, r, a, al, b, bn, v, p, rule);
}

template <class R>
void divide(Limb* q, Limb* r, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    assert(bn >= 1 && an >= bn && b[bn - 1] != 0);
    assert(spansDisjoint(q, an - bn + 1, a, an) && spansDisjoint(q, an - bn + 1, b, bn));
    assert(r == nullptr || (spansDisjoint(r, bn, a, an) && spansDisjoint(r, bn, b, bn) && spansDisjoint(r, bn, q, an - bn + 1)));
    if (terminateRequested()) return;
    if (bn >= 2 && an - bn < kSchoolbookDivideMaxQuotientLimbs && an <= kSchoolbookDivideStackLimbs) {
        // A short quotient of a short dividend: long division in a copy on
        // the stack, with no scratch to set up.
        Limb rem[kSchoolbookDivideStackLimbs];
        std::copy(a, a + an, rem);
        divideSchoolbookInPlace<R>(q, rem, an, b, bn);
        if (r) std::copy(rem, rem + bn, r);
        return;
    }
    LimbScratch scratch(divideScratchLimbs(an, bn));
    divideMagnitude<R>(scratch, q, r, a, an, b, bn, nullptr, 0);
}

template void divideMagnitude<DecimalRadix>(LimbScratch&, Limb*, Limb*, const Limb*, std::size_t, const Limb*,
                                            std::size_t, const Limb*, std::size_t, ProductRule, KeptTransforms*);
template void divideMagnitude<BinaryRadix>(LimbScratch&, Limb*, Limb*, const Limb*, std::size_t, const Limb*,
                                           std::size_t, const Limb*, std::size_t, ProductRule, KeptTransforms*);
template void divide<DecimalRadix>(Limb*, Limb*, const Limb*, std::size_t, const Limb*, std::size_t);
template void divide<BinaryRadix>(Limb*, Limb*, const Limb*, std::size_t, const Limb*, std::size_t);

}  // namespace tw::arith
