// The radix-2 and radix-4 levels of one transform plan on one code path,
// written once over a register type V (lanes_*.h): the passes over memory
// that the recursion (transform_passes.h) and the leaves (transform_leaves.h)
// are made of.  Each level is (N/2) butterflies of about sixteen register
// operations per register of lanes; a pair of levels runs as radix 4 in
// registers, one pass over memory for two levels.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "arith/kernels/ntt/butterflies.h"
#include "arith/kernels/ntt/modular_lanes.h"
#include "arith/kernels/ntt/prime_field.h"
#include "arith/kernels/ntt/roots_of_unity.h"
#include "arith/kernels/ntt/transform_plan.h"

namespace tw::arith::ntt {

template <class V>
class TransformLevels {
public:
    using Reg = typename V::Reg;
    static constexpr std::size_t L = V::lanes;

    explicit TransformLevels(const TransformPlan& plan) : plan_(plan), f_(plan.prime) {}

    const TransformPlan& plan() const { return plan_; }
    const LaneField<V>& field() const { return f_; }

    // Powers root^(e*j) for the lanes j, j+1, ... in Montgomery form, stepped
    // by one register at a time: a Montgomery-form factor times a plain one
    // stays in Montgomery form, so the step is a Shoup product.
    struct RootChain {
        Reg value, step, stepCompanion;
        RootChain(const TransformPlan& plan, std::uint32_t root, std::uint32_t e) {
            const PrimeConstants& c = plan.prime;
            std::uint32_t base = toMontgomery(root, c);
            if (e == 2) base = montMul(base, base, c);
            alignas(64) Limb start[L];
            std::uint32_t power = c.montR;
            for (std::size_t i = 0; i < L; ++i) {
                start[i] = power;
                power = montMul(power, base, c);
            }
            value = V::load(start);
            step = V::broadcast(fromMontgomery(power, c));
            stepCompanion = V::broadcast(shoupCompanionOfMontgomery(power, c));
        }
        void advance(const LaneField<V>& f) { value = f.mulShoup(value, step, stepCompanion); }
    };

    // src[i .. i+L) with zeros at and past len (i < len).
    static Reg loadPadded(const Limb* src, std::size_t i, std::size_t len) {
        if (i + L <= len) return V::load(src + i);
        alignas(64) Limb t[L] = {};
        for (std::size_t k = 0; i + k < len; ++k) t[k] = src[i + k];
        return V::load(t);
    }

    static void loadBlock(Limb* x, const Limb* src, std::size_t len, std::size_t n) {
        if (src != x) std::copy(src, src + len, x);
        std::fill(x + len, x + n, Limb(0));
    }

    // The level of span n/2 from src[0..len) padded with zeros: where the
    // upper half is padding the butterfly is (a, a w^j); past len, zeros.
    void firstLevelFrom(Limb* x, const Limb* src, std::size_t len, std::size_t n) const {
        const std::size_t h = n / 2;
        const Limb* w = plan_.forward.roots(h);
        const Limb* ws = plan_.forward.companions(h);
        std::size_t j = 0;
        for (; j < h && j < len; j += L) {
            Reg a = loadPadded(src, j, len);
            if (h + j < len) {
                Reg b = loadPadded(src, h + j, len);
                butterflyForward(f_, a, b, V::load(w + j), V::load(ws + j));
                V::store(x + j, a);
                V::store(x + h + j, b);
            } else {
                V::store(x + j, a);
                V::store(x + h + j, f_.mulShoup(a, V::load(w + j), V::load(ws + j)));
            }
        }
        std::fill(x + j, x + h, Limb(0));
        std::fill(x + h + j, x + n, Limb(0));
    }

    // The inverse roots of the level of span h: the inverse table below
    // kLeafLength; above it (Reflected) the forward roots read backwards,
    // w^-j = -w^(h-j), so the butterfly subtracts where it would add.
    template <bool Reflected>
    struct InverseRoots {
        const Limb* roots;
        const Limb* companions;
        std::size_t h;
        InverseRoots(const TransformPlan& plan, std::size_t span)
            : roots(Reflected ? plan.forward.roots(span) : plan.inverse.roots(span)),
              companions(Reflected ? plan.forward.companions(span) : plan.inverse.companions(span)),
              h(span) {}

        void load(std::size_t j, Reg& w, Reg& ws) const {
            if constexpr (Reflected) {
                const std::size_t i = h - j - (L - 1);
                w = V::reverse(V::load(roots + i));
                ws = V::reverse(V::load(companions + i));
            } else {
                w = V::load(roots + j);
                ws = V::load(companions + j);
            }
        }
        // (a, b) -> (a + b w^-j', a - b w^-j') for the lanes j' = j, j+1, ...
        void butterfly(const LaneField<V>& f, Reg& a, Reg& b, Reg w, Reg ws) const {
            if constexpr (Reflected) {
                const Reg t = f.mulShoup(b, w, ws);
                b = f.add(a, t);
                a = f.sub(a, t);
            } else {
                butterflyInverse(f, a, b, w, ws);
            }
        }
        void butterfly(const LaneField<V>& f, Reg& a, Reg& b, std::size_t j) const {
            Reg w, ws;
            load(j, w, ws);
            butterfly(f, a, b, w, ws);
        }
    };

    // One radix-2 level of span h (h >= L) over x[0..n), n a multiple of 2h.
    void forwardLevel(Limb* x, std::size_t n, std::size_t h) const {
        const Limb* w = plan_.forward.roots(h);
        const Limb* ws = plan_.forward.companions(h);
        for (std::size_t block = 0; block < n; block += 2 * h) {
            Limb* lo = x + block;
            Limb* hi = lo + h;
            for (std::size_t j = 0; j < h; j += L) {
                Reg a = V::load(lo + j), b = V::load(hi + j);
                butterflyForward(f_, a, b, V::load(w + j), V::load(ws + j));
                V::store(lo + j, a);
                V::store(hi + j, b);
            }
        }
    }
    void inverseLevel(Limb* x, std::size_t n, std::size_t h) const {
        if (h >= kLeafLength)
            inverseLevelWith<true>(x, n, h);
        else
            inverseLevelWith<false>(x, n, h);
    }
    template <bool Reflected>
    void inverseLevelWith(Limb* x, std::size_t n, std::size_t h) const {
        const InverseRoots<Reflected> w(plan_, h);
        for (std::size_t block = 0; block < n; block += 2 * h) {
            Limb* lo = x + block;
            Limb* hi = lo + h;
            for (std::size_t j = 0; j < h; j += L) {
                Reg a = V::load(lo + j), b = V::load(hi + j);
                w.butterfly(f_, a, b, j);
                V::store(lo + j, a);
                V::store(hi + j, b);
            }
        }
    }

    // The levels of spans h and h/2 (h/2 >= L) in one pass: radix-4 in
    // registers, the four quarter-words j, j+q, j+2q, j+3q (q = h/2) of each
    // block of 2h taking w_2h^j, w_2h^(j+q) and then w_h^j twice.
    void forwardLevelPair(Limb* x, std::size_t n, std::size_t h) const {
        const std::size_t q = h / 2;
        const Limb* w1 = plan_.forward.roots(h);
        const Limb* w1s = plan_.forward.companions(h);
        const Limb* w2 = plan_.forward.roots(q);
        const Limb* w2s = plan_.forward.companions(q);
        for (std::size_t block = 0; block < n; block += 2 * h) {
            Limb* p = x + block;
            for (std::size_t j = 0; j < q; j += L) {
                Reg a0 = V::load(p + j), a1 = V::load(p + q + j), a2 = V::load(p + 2 * q + j),
                    a3 = V::load(p + 3 * q + j);
                butterflyForward(f_, a0, a2, V::load(w1 + j), V::load(w1s + j));
                butterflyForward(f_, a1, a3, V::load(w1 + q + j), V::load(w1s + q + j));
                const Reg w = V::load(w2 + j), ws = V::load(w2s + j);
                butterflyForward(f_, a0, a1, w, ws);
                butterflyForward(f_, a2, a3, w, ws);
                V::store(p + j, a0);
                V::store(p + q + j, a1);
                V::store(p + 2 * q + j, a2);
                V::store(p + 3 * q + j, a3);
            }
        }
    }
    // Undoes forwardLevelPair up to a factor 4: spans h/2, then h.
    // (Both levels of a pair lie on the same side of kLeafLength.)
    void inverseLevelPair(Limb* x, std::size_t n, std::size_t h) const {
        if (h / 2 >= kLeafLength)
            inverseLevelPairWith<true>(x, n, h);
        else
            inverseLevelPairWith<false>(x, n, h);
    }
    template <bool Reflected>
    void inverseLevelPairWith(Limb* x, std::size_t n, std::size_t h) const {
        const std::size_t q = h / 2;
        const InverseRoots<Reflected> w1(plan_, h), w2(plan_, q);
        for (std::size_t block = 0; block < n; block += 2 * h) {
            Limb* p = x + block;
            for (std::size_t j = 0; j < q; j += L) {
                Reg a0 = V::load(p + j), a1 = V::load(p + q + j), a2 = V::load(p + 2 * q + j),
                    a3 = V::load(p + 3 * q + j);
                Reg w, ws;
                w2.load(j, w, ws);
                w2.butterfly(f_, a0, a1, w, ws);
                w2.butterfly(f_, a2, a3, w, ws);
                w1.butterfly(f_, a0, a2, j);
                w1.butterfly(f_, a1, a3, q + j);
                V::store(p + j, a0);
                V::store(p + q + j, a1);
                V::store(p + 2 * q + j, a2);
                V::store(p + 3 * q + j, a3);
            }
        }
    }

protected:
    const TransformPlan& plan_;
    LaneField<V> f_;
};

}  // namespace tw::arith::ntt
