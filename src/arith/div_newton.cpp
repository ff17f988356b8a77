#include "arith/div_newton.h"

#include <algorithm>
#include <cassert>
#include <vector>

#include "arith/add_sub.h"
#include "arith/multiply.h"
#include "frame/error_state.h"

namespace tw::arith {

namespace {

// divideByReciprocal with its temporaries in `scratch`, which the block loop
// keeps from one block to the next.
template <class R>
int divideBlock(std::vector<Limb>& scratch, Limb* q, std::size_t qn, Limb* r, const Limb* a, std::size_t an,
                const Limb* d, std::size_t dn, const Limb* v, std::size_t p) {
    assert(dn >= 2 && d[dn - 1] != 0 && an >= dn);
    const std::size_t n = an - dn + 1;
    assert(n <= p && qn <= n);

    // The reciprocal at precision n is v without its p - n lowest limbs; the
    // dividend's lowest dn - 2 limbs do not reach the estimate.
    const Limb* vn = v + (p - n);
    const std::size_t vl = significantLength(vn, n + 2);
    const Limb* ahi = a + (dn - 2);
    const std::size_t ahl = significantLength(ahi, n + 1);

    // One buffer: the estimate's product, the estimate Q (n + 1 limbs: it may
    // be one above a quotient of n limbs), Q * D, and A - Q * D.
    const std::size_t el = ahl + vl;
    const std::size_t dl = std::max(an, n + 1 + dn);
    scratch.resize(el + (n + 1) + (n + 1 + dn) + dl);
    Limb* estimateProduct = scratch.data();
    Limb* qe = estimateProduct + el;
    Limb* qd = qe + (n + 1);
    Limb* diff = qd + (n + 1 + dn);

    multiply<R>(estimateProduct, ahi, ahl, vn, vl);
    if (terminateRequested()) return 0;
    std::fill(qe, qe + n + 1, 0);
    if (el > n + 2) std::copy(estimateProduct + n + 2, estimateProduct + std::min(el, 2 * n + 3), qe);

    const std::size_t ql = significantLength(qe, n + 1);
    multiply<R>(qd, qe, ql, d, dn);
    if (terminateRequested()) return 0;
    std::copy(a, a + an, diff);
    std::fill(diff + an, diff + dl, 0);
    const Limb borrow = subSpans<R>(diff, diff, dl, qd, ql + dn);

    int correction = 0;
    if (borrow) {
        // A < Q * D: the estimate is one too big; the carry out of the
        // add-back cancels the borrow.
        addSpans<R>(diff, diff, dl, d, dn);
        subBorrow<R>(qe, qe, n + 1, 1);
        correction = -1;
    } else if (std::any_of(diff + dn, diff + dl, [](Limb x) { return x != 0; }) ||
               compareSameLength(diff, d, dn) >= 0) {
        subSpans<R>(diff, diff, dl, d, dn);
        addCarry<R>(qe, qe, n + 1, 1);
        correction = 1;
    }
    assert(std::all_of(qe + qn, qe + n + 1, [](Limb x) { return x == 0; }));
    assert(std::all_of(diff + dn, diff + dl, [](Limb x) { return x == 0; }));
    assert(compareSameLength(diff, d, dn) < 0);
    std::copy(qe, qe + qn, q);
    if (r) std::copy(diff, diff + dn, r);
    return correction;
}

}  // namespace

template <class R>
int divideByReciprocal(Limb* q, std::size_t qn, Limb* r, const Limb* a, std::size_t an,
                       const Limb* d, std::size_t dn, const Limb* v, std::size_t p) {
    std::vector<Limb> scratch;
    return divideBlock<R>(scratch, q, qn, r, a, an, d, dn, v, p);
}

template <class R>
void divideInBlocks(Limb* q, Limb* r, const Limb* a, std::size_t an,
                    const Limb* d, std::size_t dn, const Limb* v, std::size_t p) {
    assert(p >= 2 && an >= dn);
    const std::size_t k = p - 1;  // quotient limbs a block
    const std::size_t n = an - dn + 1;
    // The top block takes the odd part, so that the others are whole.
    const std::size_t first = n - (n - 1) / k * k;
    std::size_t pos = n - first;
    std::vector<Limb> buffer(dn + k + dn), scratch;
    Limb* window = buffer.data();  // next k limbs of A below the running remainder
    Limb* rem = window + dn + k;
    divideBlock<R>(scratch, q + pos, first, rem, a + pos, an - pos, d, dn, v, p);
    while (pos > 0) {
        if (terminateRequested()) return;
        pos -= k;
        std::copy(a + pos, a + pos + k, window);
        std::copy(rem, rem + dn, window + k);
        // The remainder is below D, so this block's quotient has k limbs.
        divideBlock<R>(scratch, q + pos, k, rem, window, dn + k, d, dn, v, p);
    }
    if (r) std::copy(rem, rem + dn, r);
}

template int divideByReciprocal<DecimalRadix>(Limb*, std::size_t, Limb*, const Limb*, std::size_t, const Limb*,
                                              std::size_t, const Limb*, std::size_t);
template int divideByReciprocal<BinaryRadix>(Limb*, std::size_t, Limb*, const Limb*, std::size_t, const Limb*,
                                             std::size_t, const Limb*, std::size_t);
template void divideInBlocks<DecimalRadix>(Limb*, Limb*, const Limb*, std::size_t, const Limb*, std::size_t,
                                           const Limb*, std::size_t);
template void divideInBlocks<BinaryRadix>(Limb*, Limb*, const Limb*, std::size_t, const Limb*, std::size_t,
                                          const Limb*, std::size_t);

}  // namespace tw::arith
