// Long quotients through a reciprocal: the quotient estimate, its single
// correction, the block loop for dividends much longer than the divisor, and
// the dispatcher that divide() and DivisorReciprocal share.
#pragma once

#include <cstddef>

#include "arith/kernels/fast_product.h"
#include "arith/kernels/mul_scratch.h"
#include "arith/kernels/mul_span_ops.h"
#include "arith/kernels/ntt/cyclic_multiply.h"
#include "arith/tuning.h"
#include "frame/radix.h"

namespace tw::arith {

// Reciprocal precision for dividing by a divisor of dn limbs: one block then
// takes a dividend of dn + max(dn, kMinBlockQuotientLimbs) limbs.
constexpr std::size_t blockPrecision(std::size_t dn) {
    return (dn > kMinBlockQuotientLimbs ? dn : kMinBlockQuotientLimbs) + 1;
}

// The scratch a division of an by bn limbs takes at once (a size for the
// first block of its LimbScratch; the arena grows should it fall short): one
// block's estimate, quotient, check product and difference, about five times
// the longest dividend a block sees, and the block loop's window.
constexpr std::size_t divideScratchLimbs(std::size_t an, std::size_t bn) {
    const std::size_t block = 2 * bn + blockPrecision(bn);
    return 5 * (an < block ? an : block) + 3 * bn + 64;
}

// One block.  A = a[0..an), D = d[0..dn) with dn >= 2, d[dn-1] != 0,
// an >= dn; v is a reciprocal of D (contract of reciprocal()) of precision
// p >= an - dn + 1.  The caller knows A div D < radix^qn, qn <= an - dn + 1.
// q[0..qn) := A div D, r[0..dn) := A mod D (r may be null); no output
// overlaps an input.  Returns the correction applied to the estimate (-1, 0
// or +1): the estimate is within one of the quotient, so one correction is
// all there is.
//
// Cost: a product of (n+1) x (n+2) limbs (n = an - dn + 1) for the estimate
// and one of (n+1) x dn for the check, then linear work.  The check needs
// A - Q * D only, which lies in [-D, 2D) since Q is within one of the
// quotient; where cyclicIsCheaper says so, Q * D and A are taken modulo
// radix^N - 1 (N >= dn + 2, cyclic_multiply.h), a range that holds [-D, 2D)
// with room to tell the sign from the top limb.  `rule` chooses the
// algorithm of the full products (fast_product.h).
//
// With V the reciprocal truncated to precision n, |V - Y| < 3 for
// Y = radix^(dn+n) / D, and A = Ahi * radix^(dn-2) + Alo, the estimate is
// floor(y) with y = Ahi * V / radix^(n+2), and x = A / D:
//     x - y = A (Y - V) / radix^(dn+n) + Alo * V / radix^(dn+n).
// A < radix^(dn+n-1) bounds the first term by 3/radix in size; Alo <
// radix^(dn-2) and V <= radix^(n+1) + 3 put the second in [0, 2/radix).  So
// |x - y| < 1 and floor(y) is floor(x) - 1, floor(x) or floor(x) + 1.
//
// `kept`, for a divisor divided by many times with the same reciprocal, holds
// transforms of D and of the truncated reciprocals, made on first use and
// reused: the check product and (for quotients past the Karatsuba rung) the
// estimate then transform only their other operand.
struct KeptTransforms {
    CyclicFactor divisor;
    struct Estimate {
        CyclicFactor factor;
        std::size_t quotient = 0;  // the n of the truncation it was made from
    };
    Estimate estimates[2];         // the two quotient lengths last seen
    unsigned older = 0;            // the entry to replace next

    std::size_t words() const {
        return divisor.words() + estimates[0].factor.words() + estimates[1].factor.words();
    }
    void clear() { *this = KeptTransforms{}; }
};

// out[0 .. an+vn) := a[0..an) * v[0..vn) through vf, v's transforms for the
// modulus length N (vf.readyFor(N), an + vn - N = w with 1 <= w < N): the
// cyclic product C = a v mod (radix^N - 1) and the w low limbs of the product,
// taken apart as a product of w-limb spans.  With P = H radix^N + L, H <
// radix^w, C is H + L or, when that reaches radix^N - 1, H + L - (radix^N - 1);
// the low limbs give H1 = (C - L) mod radix^w.  In the first case H1 = H and
// C >= H; in the second C < H1 <= radix^w - 1 (or C = 0).  So C >= radix^w
// settles the first case, P = H1 radix^N + (C - H1); below it (the top N - w
// limbs of C all zero, next to never for operands that are not built for it)
// the product is taken in full by `rule`.  out overlaps neither operand.
template <class R>
void multiplyFolded(Limb* out, const Limb* a, std::size_t an, const Limb* v, std::size_t vn,
                    const CyclicFactor& vf, std::size_t length, ProductRule rule);

template <class R>
int divideByReciprocal(LimbScratch& scratch, Limb* q, std::size_t qn, Limb* r, const Limb* a, std::size_t an,
                       const Limb* d, std::size_t dn, const Limb* v, std::size_t p,
                       ProductRule rule = ProductRule::Ladder, KeptTransforms* kept = nullptr);

// Dividends much longer than the divisor: q[0..an-dn+1) := A div D,
// r[0..dn) := A mod D (r may be null), taking the quotient p - 1 limbs at a
// time from the top with one reciprocal v of precision p >= 2; each block's
// dividend is the previous remainder followed by the next p - 1 limbs of A.
// Preconditions as divideByReciprocal, without the bound on an.  Cost:
// (an - dn + 1) / (p - 1) blocks.  Tests the terminate flag between blocks.
template <class R>
void divideInBlocks(LimbScratch& scratch, Limb* q, Limb* r, const Limb* a, std::size_t an,
                    const Limb* d, std::size_t dn, const Limb* v, std::size_t p,
                    ProductRule rule = ProductRule::Ladder);

// The contract of divide() (divide.h), plus an optional reciprocal: when v is
// not null it is the reciprocal, of precision p, of b above its zero bottom
// limbs; otherwise one is computed for this division if it needs one.  The
// products follow `rule`.
// `kept` serves a single-block division (divideByReciprocal) and must belong
// to b and v.  Temporaries come from `scratch` (divideScratchLimbs sizes it).
template <class R>
void divideMagnitude(LimbScratch& scratch, Limb* q, Limb* r, const Limb* a, std::size_t an, const Limb* b,
                     std::size_t bn, const Limb* v, std::size_t p, ProductRule rule = ProductRule::Ladder,
                     KeptTransforms* kept = nullptr);

}  // namespace tw::arith
