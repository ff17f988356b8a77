#include "arith/kernels/divide_newton.h"

#include <algorithm>
#include <cassert>
#include <vector>

#include "arith/kernels/add_sub.h"
#include "arith/kernels/ntt/cyclic_multiply.h"
#include "arith/tuning.h"
#include "frame/error_state.h"

namespace tw::arith {

template <class R>
void multiplyFolded(Limb* out, const Limb* a, std::size_t an, const Limb* v, std::size_t vn,
                    const CyclicFactor& vf, std::size_t length, ProductRule rule) {
    const std::size_t w = an + vn - length;
    assert(an + vn > length && w < length);
    Limb* c = out;  // C fills out[0..N); H1 goes above it
    cyclicMultiplyBy<R>(c, length, a, an, vf);
    if (terminateRequested()) return;
    if (std::all_of(c + w, c + length, [](Limb x) { return x == 0; })) {
        multiplyBy<R>(rule, out, a, an, v, vn);
        return;
    }
    // The w low limbs of the product: those of the w low limbs of each factor.
    const std::size_t aw = std::min(an, w), vw = std::min(vn, w);
    std::vector<Limb> low(aw + vw);
    multiplyBy<R>(rule, low.data(), a, aw, v, vw);
    Limb* h = out + length;
    // Modulo radix^w: a borrow out of the top is dropped.
    subSpans<R>(h, c, w, low.data(), std::min(w, aw + vw));
    // L = C - H1, no borrow since C >= radix^w > H1.
    [[maybe_unused]] const Limb borrow = subSpans<R>(c, c, length, h, w);
    assert(borrow == 0);
}

namespace {

// A - Q * D in [-D, 2D) from A and Q * D modulo radix^N - 1, N = x.size() >=
// dn + 2: x[0..N) := A - Q * D modulo radix^N, and the correction it calls
// for (-1 when negative, +1 when at least D).  A non-negative difference is
// below 2 radix^dn, so its limbs from dn + 1 up are zero; a negative one
// leaves radix^N - 1 + (A - Q * D) > radix^N - 1 - radix^dn, whose top limb
// (dn + 1 or above) is not.
template <class R>
int checkModulo(Limb* x, std::size_t length, Limb* qd, const Limb* a, std::size_t an, const Limb* d,
                std::size_t dn) {
    assert(length >= dn + 2);
    reduceCyclic<R>(x, length, a, an);
    // Both residues are reduced (below radix^N - 1): on a borrow, adding
    // radix^N - 1 back is taking one from the wrapped difference, and the
    // result is reduced too.
    if (subSameLength<R>(x, x, qd, length)) subBorrow<R>(x, x, length, 1);
    if (x[length - 1] != 0) {
        addCarry<R>(x, x, length, 1);  // now A - Q * D + radix^N
        return -1;
    }
    if (std::any_of(x + dn, x + length, [](Limb v) { return v != 0; }) || compareSameLength(x, d, dn) >= 0) return 1;
    return 0;
}

// The transforms of the estimate's reciprocal truncation vn (for a quotient of
// n limbs) at length N, made now unless one of the two kept entries has them.
template <class R>
const CyclicFactor& keptEstimate(KeptTransforms& kept, std::size_t n, std::size_t length, const Limb* vn,
                                 std::size_t vl) {
    for (KeptTransforms::Estimate& e : kept.estimates)
        if (e.quotient == n && e.factor.readyFor(length)) return e.factor;
    KeptTransforms::Estimate& e = kept.estimates[kept.older];
    kept.older ^= 1;
    e.quotient = 0;
    e.factor.prepare<R>(length, vn, vl);
    if (e.factor.readyFor(length)) e.quotient = n;
    return e.factor;
}

// divideByReciprocal: the block's temporaries are one frame of `scratch`, so
// the block loop reuses the same limbs from one block to the next.
template <class R>
int divideBlock(LimbScratch& scratch, Limb* q, std::size_t qn, Limb* r, const Limb* a, std::size_t an,
                const Limb* d, std::size_t dn, const Limb* v, std::size_t p, ProductRule rule,
                KeptTransforms* kept = nullptr) {
    assert(dn >= 2 && d[dn - 1] != 0 && an >= dn);
    const std::size_t n = an - dn + 1;
    assert(n <= p && qn <= n);

    // The reciprocal at precision n is v without its p - n lowest limbs; the
    // dividend's lowest dn - 2 limbs do not reach the estimate.
    const Limb* vn = v + (p - n);
    const std::size_t vl = trimmedLengthAtLeastOne(vn, n + 2);
    const Limb* ahi = a + (dn - 2);
    const std::size_t ahl = trimmedLengthAtLeastOne(ahi, n + 1);

    // One buffer: the estimate's product, the estimate Q (n + 1 limbs: it may
    // be one above a quotient of n limbs), Q * D, and A - Q * D.  Taken
    // modulo radix^N - 1, the last two have N limbs each.
    const std::size_t el = ahl + vl;
    std::size_t length = cyclicFits(dn + 2) ? cyclicLength(dn + 2) : 0;
    if (length && !cyclicIsCheaper<R>(n + 1, dn, length)) length = 0;
    const std::size_t ql0 = length ? length : n + 1 + dn;
    const std::size_t dl = length ? length : std::max(an, n + 1 + dn);
    LimbScratch::Frame frame(scratch);
    Limb* estimateProduct = frame.take(el + (n + 1) + ql0 + dl);
    Limb* qe = estimateProduct + el;
    Limb* qd = qe + (n + 1);
    Limb* diff = qd + ql0;

    // With kept transforms, an estimate past the Karatsuba rung folds: the
    // modulus a quarter shorter than the product leaves a short low product.
    std::size_t foldLength = 0;
    if (kept && std::min(ahl, vl) > kLadder<R>.mulKaratsubaMax && cyclicFits(el - el / 4))
        foldLength = cyclicLength(el - el / 4);
    if (foldLength > 0 && foldLength < el) {
        const CyclicFactor& vf = keptEstimate<R>(*kept, n, foldLength, vn, vl);
        if (terminateRequested()) return 0;
        multiplyFolded<R>(estimateProduct, ahi, ahl, vn, vl, vf, foldLength, rule);
    } else {
        multiplyBy<R>(rule, estimateProduct, ahi, ahl, vn, vl);
    }
    if (terminateRequested()) return 0;
    std::fill(qe, qe + n + 1, 0);
    if (el > n + 2) std::copy(estimateProduct + n + 2, estimateProduct + std::min(el, 2 * n + 3), qe);
    const std::size_t ql = trimmedLengthAtLeastOne(qe, n + 1);

    int correction = 0;
    if (length) {
        if (kept) {
            if (!kept->divisor.readyFor(length)) kept->divisor.prepare<R>(length, d, dn);
            if (terminateRequested()) return 0;
            cyclicMultiplyBy<R>(qd, length, qe, ql, kept->divisor);
        } else {
            cyclicMultiply<R>(qd, length, qe, ql, d, dn);
        }
        if (terminateRequested()) return 0;
        correction = checkModulo<R>(diff, length, qd, a, an, d, dn);
        // The carry out of the add-back is the radix^N of the negative difference.
        if (correction < 0) addSpans<R>(diff, diff, length, d, dn);
        if (correction > 0) subSpans<R>(diff, diff, length, d, dn);
    } else {
        multiplyBy<R>(rule, qd, qe, ql, d, dn);
        if (terminateRequested()) return 0;
        std::copy(a, a + an, diff);
        std::fill(diff + an, diff + dl, 0);
        const Limb borrow = subSpans<R>(diff, diff, dl, qd, ql + dn);
        if (borrow) {
            // A < Q * D: the estimate is one too big; the carry out of the
            // add-back cancels the borrow.
            addSpans<R>(diff, diff, dl, d, dn);
            correction = -1;
        } else if (std::any_of(diff + dn, diff + dl, [](Limb x) { return x != 0; }) ||
                   compareSameLength(diff, d, dn) >= 0) {
            subSpans<R>(diff, diff, dl, d, dn);
            correction = 1;
        }
    }
    if (correction < 0) subBorrow<R>(qe, qe, n + 1, 1);
    if (correction > 0) addCarry<R>(qe, qe, n + 1, 1);
    assert(std::all_of(qe + qn, qe + n + 1, [](Limb x) { return x == 0; }));
    assert(std::all_of(diff + dn, diff + dl, [](Limb x) { return x == 0; }));
    assert(compareSameLength(diff, d, dn) < 0);
    std::copy(qe, qe + qn, q);
    if (r) std::copy(diff, diff + dn, r);
    return correction;
}

}  // namespace

template <class R>
int divideByReciprocal(LimbScratch& scratch, Limb* q, std::size_t qn, Limb* r, const Limb* a, std::size_t an,
                       const Limb* d, std::size_t dn, const Limb* v, std::size_t p, ProductRule rule,
                       KeptTransforms* kept) {
    return divideBlock<R>(scratch, q, qn, r, a, an, d, dn, v, p, rule, kept);
}

template <class R>
void divideInBlocks(LimbScratch& scratch, Limb* q, Limb* r, const Limb* a, std::size_t an,
                    const Limb* d, std::size_t dn, const Limb* v, std::size_t p, ProductRule rule) {
    assert(p >= 2 && an >= dn);
    const std::size_t k = p - 1;  // quotient limbs a block
    const std::size_t n = an - dn + 1;
    // The top block takes the odd part, so that the others are whole.
    const std::size_t first = n - (n - 1) / k * k;
    std::size_t pos = n - first;
    LimbScratch::Frame frame(scratch);
    Limb* window = frame.take(dn + k + dn);  // next k limbs of A below the running remainder
    Limb* rem = window + dn + k;
    divideBlock<R>(scratch, q + pos, first, rem, a + pos, an - pos, d, dn, v, p, rule);
    while (pos > 0) {
        if (terminateRequested()) return;
        pos -= k;
        std::copy(a + pos, a + pos + k, window);
        std::copy(rem, rem + dn, window + k);
        // The remainder is below D, so this block's quotient has k limbs.
        divideBlock<R>(scratch, q + pos, k, rem, window, dn + k, d, dn, v, p, rule);
    }
    if (r) std::copy(rem, rem + dn, r);
}

template void multiplyFolded<DecimalRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t,
                                          const CyclicFactor&, std::size_t, ProductRule);
template void multiplyFolded<BinaryRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t,
                                         const CyclicFactor&, std::size_t, ProductRule);
template int divideByReciprocal<DecimalRadix>(LimbScratch&, Limb*, std::size_t, Limb*, const Limb*, std::size_t,
                                              const Limb*, std::size_t, const Limb*, std::size_t, ProductRule,
                                              KeptTransforms*);
template int divideByReciprocal<BinaryRadix>(LimbScratch&, Limb*, std::size_t, Limb*, const Limb*, std::size_t,
                                             const Limb*, std::size_t, const Limb*, std::size_t, ProductRule,
                                             KeptTransforms*);
template void divideInBlocks<DecimalRadix>(LimbScratch&, Limb*, Limb*, const Limb*, std::size_t, const Limb*,
                                           std::size_t, const Limb*, std::size_t, ProductRule);
template void divideInBlocks<BinaryRadix>(LimbScratch&, Limb*, Limb*, const Limb*, std::size_t, const Limb*,
                                          std::size_t, const Limb*, std::size_t, ProductRule);

}  // namespace tw::arith
