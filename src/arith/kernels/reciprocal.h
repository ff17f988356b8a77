// The reciprocal of a divisor by Newton iteration, and a divisor that keeps
// its reciprocal for many divisions (the radix conversion divides by the same
// power of the target radix again and again).
#pragma once

#include <cstddef>
#include <vector>

#include "arith/kernels/fast_product.h"
#include "arith/kernels/mul_scratch.h"
#include "frame/radix.h"

namespace tw::arith {

// Limbs reciprocal() writes for precision n.
constexpr std::size_t reciprocalLimbs(std::size_t n) { return n + 2; }

// The scratch a reciprocal of precision n takes: the two products of its
// last Newton step, each of about 2n limbs.
constexpr std::size_t reciprocalScratchLimbs(std::size_t n) { return 4 * n + 16; }

// v[0..n+2) := V, the reciprocal of D = d[0..dn) to precision n:
//     |V - radix^(dn+n) / D| < 3,
// so V lies a little outside (radix^n, radix^(n+1)] at worst.  Requires
// dn >= 1, d[dn-1] != 0, n >= 1; v overlaps nothing.  Only the top
// min(dn, n+2) limbs of d are read.  Dropping the lowest j < n limbs of V
// gives a reciprocal of precision n - j with the same bound (the truncation
// adds less than 1 + 3/radix), so one reciprocal serves every shorter quotient.
//
// Algorithm: exact floor(radix^(t+h) / D_t) of the top t = min(dn, h+2) limbs
// for a starting precision h of a few limbs, then Newton steps from precision h
// to k <= 2h - 1, each costing a product of (k+2) x (h+2) limbs and one of
// (h+2) x (h+2) limbs; about two products of n limbs in all.  The first
// product of a step is needed modulo radix^N - 1 only (N >= t + 2 for the t
// limbs of D it reads), and is taken so where cyclicIsCheaper says so; `rule`
// chooses the algorithm of the full products (fast_product.h).  Returns
// early, v unspecified, when the terminate flag is raised (tested between
// steps).  Temporaries come from `scratch` (the form without one makes its
// own, reciprocalScratchLimbs(n)) and may throw std::bad_alloc.
template <class R>
void reciprocal(LimbScratch& scratch, Limb* v, const Limb* d, std::size_t dn, std::size_t n,
                ProductRule rule = ProductRule::Ladder);
template <class R>
void reciprocal(Limb* v, const Limb* d, std::size_t dn, std::size_t n, ProductRule rule = ProductRule::Ladder);

// A divisor with its reciprocal computed once: every divide() reuses it.
// The divisor is copied; zero limbs at its bottom are set aside as divide()
// does.  The reciprocal has precision blockPrecision(dn') (dn' the divisor's
// length above those zero limbs), enough for a dividend of about 2 dn' limbs
// in one step; longer dividends go in blocks of that many quotient limbs less one.
// Its products, the reciprocal's included, follow ProductRule::Fastest: the
// conversions that use it gain from the transform in the Toom-3 band.
template <class R>
class DivisorReciprocal {
public:
    // d[0..dn), dn >= 1, d[dn-1] != 0.  Costs one reciprocal.
    DivisorReciprocal(const Limb* d, std::size_t dn);

    // False when the terminate flag cut the reciprocal short; divide() then
    // does nothing.
    bool valid() const { return valid_; }
    std::size_t divisorLimbs() const { return divisor_.size(); }

    // The contract of divide() with this divisor: a[0..an), an >= dn;
    // q[0..an-dn+1) := a div d, r[0..dn) := a mod d (r may be null); no output
    // overlaps a.  Outputs are unspecified when the terminate flag is raised.
    void divide(Limb* q, Limb* r, const Limb* a, std::size_t an) const;

private:
    std::vector<Limb> divisor_;
    std::vector<Limb> reciprocal_;  // of the divisor above its zero bottom limbs
    std::size_t precision_ = 0;     // 0: none needed (one-limb divisor)
    bool valid_ = true;
};

}  // namespace tw::arith
