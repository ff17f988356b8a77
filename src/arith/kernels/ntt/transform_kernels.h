// The transform passes of one code path (levels, depth-first recursion, the
// radix-3 layer, leaves with the pointwise product) and its table of kernels,
// written once over a register type V (lanes_*.h).
//
// Every function here is a template on V, so each code path's translation unit
// instantiates its own copies under its own target options and no copy
// compiled for one instruction set can stand in for another's.  Include this
// header after lanes_<path>.h, and include the non-template headers it uses
// before switching the target.
//
// Order of work (transform_plan.h): radix-2 decimation in frequency, two
// levels per pass over memory where possible (radix 4 in registers).  Levels
// whose span h is at least the lane count pair whole registers; the last
// levels pair lanes inside registers (split/merge in lanes_*.h).  Long blocks
// recurse depth first, two levels over the whole block each step, until a
// block fits kLeafLength; the convolution runs forward levels, pointwise
// product and inverse levels of a leaf while it is in cache.  Cost per
// transform: (N/2) log2 N butterflies of about sixteen register operations per
// register of lanes, plus for N = 3M one radix-3 layer (about four levels' worth).
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "arith/kernels/ntt/butterflies.h"
#include "arith/kernels/ntt/garner_kernel.h"
#include "arith/kernels/ntt/kernel_table.h"
#include "arith/kernels/ntt/modular_lanes.h"
#include "arith/kernels/ntt/prime_field.h"
#include "arith/kernels/ntt/root_kernels.h"
#include "arith/kernels/ntt/roots_of_unity.h"
#include "arith/kernels/ntt/transform_plan.h"

namespace tw::arith::ntt {

// The passes of one transform plan on one code path.
template <class V>
class TransformPasses {
public:
    using Reg = typename V::Reg;
    static constexpr std::size_t L = V::lanes;

    explicit TransformPasses(const TransformPlan& plan) : plan_(plan), f_(plan.prime) {
        bottomRoot_ = V::load(plan.forward.roots(L));
        bottomCompanion_ = V::load(plan.forward.companions(L));
        bottomInverseRoot_ = V::load(plan.inverse.roots(L));
        bottomInverseCompanion_ = V::load(plan.inverse.companions(L));
        if constexpr (L > 1) {
            alignas(64) Limb a[L], b[L];
            for (std::size_t i = 0; i < L; ++i) {
                a[i] = Limb(i);
                b[i] = Limb(L + i);
            }
            Reg posA = V::load(a), posB = V::load(b);
            collectRegisterRoots<V, L / 2>(registerRoots_, posA, posB, plan);
        }
    }

    // x[0..n) := forward transform of src[0..len) padded with zeros (src may be x).
    void forwardFrom(Limb* x, const Limb* src, std::size_t len, std::size_t n) const {
        if (n <= kLeafLength) {
            loadBlock(x, src, len, n);
            leafForward(x, n);
            return;
        }
        firstLevelFrom(x, src, len, n);
        forward(x, n / 2);
        forward(x + n / 2, n / 2);
    }

    // x[0..n) := inverse(forward(src padded) * y) (y := the forward transform itself when Square).
    template <bool Square>
    void convolveFrom(Limb* x, const Limb* src, std::size_t len, const Limb* y, std::size_t n) const {
        if (n <= kLeafLength) {
            loadBlock(x, src, len, n);
            leafConvolve<Square>(x, y, n);
            return;
        }
        firstLevelFrom(x, src, len, n);
        convolve<Square>(x, y, n / 2);
        convolve<Square>(x + n / 2, y + n / 2, n / 2);
        inverseLevel(x, n, n / 2);
    }

    // Forward transform of the power-of-two block x[0..n), n >= 2L.
    // Above the leaf two levels run per pass over the block, then the four
    // quarters recurse; a lone level remains when only one is above the leaf.
    void forward(Limb* x, std::size_t n) const {
        if (n <= kLeafLength) {
            leafForward(x, n);
        } else if (n / 2 <= kLeafLength) {
            forwardLevel(x, n, n / 2);
            leafForward(x, n / 2);
            leafForward(x + n / 2, n / 2);
        } else {
            forwardLevelPair(x, n, n / 2);
            for (std::size_t k = 0; k < 4; ++k) forward(x + k * (n / 4), n / 4);
        }
    }

    // n times the inverse transform of the block x[0..n).
    void inverse(Limb* x, std::size_t n) const {
        if (n <= kLeafLength) {
            leafInverse(x, n);
        } else if (n / 2 <= kLeafLength) {
            leafInverse(x, n / 2);
            leafInverse(x + n / 2, n / 2);
            inverseLevel(x, n, n / 2);
        } else {
            for (std::size_t k = 0; k < 4; ++k) inverse(x + k * (n / 4), n / 4);
            inverseLevelPair(x, n, n / 2);
        }
    }

    // x := inverse(forward(x) * y) on the block (y := x when Square).
    template <bool Square>
    void convolve(Limb* x, const Limb* y, std::size_t n) const {
        if (n <= kLeafLength) {
            leafConvolve<Square>(x, y, n);
        } else if (n / 2 <= kLeafLength) {
            forwardLevel(x, n, n / 2);
            leafConvolve<Square>(x, y, n / 2);
            leafConvolve<Square>(x + n / 2, y + n / 2, n / 2);
            inverseLevel(x, n, n / 2);
        } else {
            forwardLevelPair(x, n, n / 2);
            for (std::size_t k = 0; k < 4; ++k) convolve<Square>(x + k * (n / 4), y + k * (n / 4), n / 4);
            inverseLevelPair(x, n, n / 2);
        }
    }

    // Radix-3 layer from src[0..len) (zeros past len) into x[0..3M): with
    // a, b, c the words j of the three thirds and c3 the cube root, the thirds
    // become a + b + c, (a + c3 b + c3^2 c) w^j and (a + c3^2 b + c3 c) w^2j (w the
    // N-th root); c3 + c3^2 = -1 leaves one product by c3.  Where the padding
    // makes c, or b and c, zero the shorter forms run, and past len only zeros.
    void radix3ForwardFrom(Limb* x, const Limb* src, std::size_t len) const {
        const std::size_t m = plan_.blockLength;
        RootChain c1(plan_, plan_.root, 1), c2(plan_, plan_.root, 2);
        const Reg w3 = V::broadcast(plan_.cubeRoot), w3s = V::broadcast(plan_.cubeRootCompanion);
        std::size_t j = 0;
        for (; j < m && j < len; j += L) {
            const Reg a = loadPadded(src, j, len);
            Reg y0 = a, y1 = a, y2 = a;
            if (m + j < len) {
                const Reg b = loadPadded(src, m + j, len);
                if (2 * m + j < len) {
                    const Reg c = loadPadded(src, 2 * m + j, len);
                    const Reg t = f_.mulShoup(f_.subLazy(b, c), w3, w3s);
                    y0 = f_.add(f_.add(a, b), c);
                    y1 = f_.add(f_.sub(a, c), t);
                    y2 = f_.sub(f_.sub(a, b), t);
                } else {
                    const Reg t = f_.mulShoup(b, w3, w3s);
                    y0 = f_.add(a, b);
                    y1 = f_.add(a, t);
                    y2 = f_.sub(f_.sub(a, b), t);
                }
            }
            V::store(x + j, y0);
            V::store(x + m + j, f_.mulMontgomery(y1, c1.value));
            V::store(x + 2 * m + j, f_.mulMontgomery(y2, c2.value));
            c1.advance(f_);
            c2.advance(f_);
        }
        for (std::size_t r = 0; r < 3; ++r) std::fill(x + r * m + j, x + (r + 1) * m, Limb(0));
    }

    // Undoes radix3ForwardFrom up to a factor 3.
    void radix3Inverse(Limb* x) const {
        const std::size_t m = plan_.blockLength;
        RootChain c1(plan_, plan_.rootInverse, 1), c2(plan_, plan_.rootInverse, 2);
        const Reg w3 = V::broadcast(plan_.cubeRootInverse), w3s = V::broadcast(plan_.cubeRootInverseCompanion);
        for (std::size_t j = 0; j < m; j += L) {
            const Reg y0 = V::load(x + j);
            const Reg y1 = f_.mulMontgomery(V::load(x + m + j), c1.value);
            const Reg y2 = f_.mulMontgomery(V::load(x + 2 * m + j), c2.value);
            const Reg t = f_.mulShoup(f_.subLazy(y1, y2), w3, w3s);
            V::store(x + j, f_.add(f_.add(y0, y1), y2));
            V::store(x + m + j, f_.add(f_.sub(y0, y2), t));
            V::store(x + 2 * m + j, f_.sub(f_.sub(y0, y1), t));
            c1.advance(f_);
            c2.advance(f_);
        }
    }

private:
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

    // The levels of spans n/2 down to 2L, two a pass; the inverse undoes them
    // in the opposite order.
    void forwardLeafLevels(Limb* x, std::size_t n) const {
        std::size_t h = n / 2;
        for (; h >= 4 * L; h /= 4) forwardLevelPair(x, n, h);
        if (h == 2 * L) forwardLevel(x, n, h);
    }
    void inverseLeafLevels(Limb* x, std::size_t n) const {
        std::size_t levels = 0;
        for (std::size_t h = 2 * L; h < n; h *= 2) ++levels;
        std::size_t h = 2 * L;
        if (levels % 2) {
            inverseLevel(x, n, h);
            h *= 2;
        }
        for (; h < n; h *= 4) inverseLevelPair(x, n, 2 * h);
    }

    // The level of span L pairs two consecutive registers; the in-register
    // levels follow on the same pair.
    void bottomForward(Reg& a, Reg& b) const {
        butterflyForward(f_, a, b, bottomRoot_, bottomCompanion_);
        if constexpr (L > 1) registerLevelsForward<V, L / 2>(f_, a, b, registerRoots_);
    }
    void bottomInverse(Reg& a, Reg& b) const {
        if constexpr (L > 1) registerLevelsInverse<V, L / 2>(f_, a, b, registerRoots_);
        butterflyInverse(f_, a, b, bottomInverseRoot_, bottomInverseCompanion_);
    }

    void leafForward(Limb* x, std::size_t n) const {
        forwardLeafLevels(x, n);
        for (std::size_t i = 0; i < n; i += 2 * L) {
            Reg a = V::load(x + i), b = V::load(x + i + L);
            bottomForward(a, b);
            V::store(x + i, a);
            V::store(x + i + L, b);
        }
    }
    void leafInverse(Limb* x, std::size_t n) const {
        for (std::size_t i = 0; i < n; i += 2 * L) {
            Reg a = V::load(x + i), b = V::load(x + i + L);
            bottomInverse(a, b);
            V::store(x + i, a);
            V::store(x + i + L, b);
        }
        inverseLeafLevels(x, n);
    }
    template <bool Square>
    void leafConvolve(Limb* x, const Limb* y, std::size_t n) const {
        forwardLeafLevels(x, n);
        for (std::size_t i = 0; i < n; i += 2 * L) {
            Reg a = V::load(x + i), b = V::load(x + i + L);
            bottomForward(a, b);
            if constexpr (Square) {
                a = f_.mulMontgomery(a, a);
                b = f_.mulMontgomery(b, b);
            } else {
                a = f_.mulMontgomery(a, V::load(y + i));
                b = f_.mulMontgomery(b, V::load(y + i + L));
            }
            bottomInverse(a, b);
            V::store(x + i, a);
            V::store(x + i + L, b);
        }
        inverseLeafLevels(x, n);
    }

    const TransformPlan& plan_;
    LaneField<V> f_;
    RegisterRoots<V> registerRoots_{};
    Reg bottomRoot_, bottomCompanion_, bottomInverseRoot_, bottomInverseCompanion_;
};

template <class V>
void forwardTransform(Limb* x, const Limb* src, std::size_t len, const TransformPlan& plan) {
    const TransformPasses<V> passes(plan);
    const std::size_t m = plan.blockLength;
    if (plan.hasRadix3()) {
        passes.radix3ForwardFrom(x, src, len);
        for (std::size_t r = 0; r < 3; ++r) passes.forward(x + r * m, m);
    } else {
        passes.forwardFrom(x, src, len, m);
    }
}

template <class V>
void inverseTransform(Limb* x, const TransformPlan& plan) {
    const TransformPasses<V> passes(plan);
    const std::size_t m = plan.blockLength;
    if (plan.hasRadix3()) {
        for (std::size_t r = 0; r < 3; ++r) passes.inverse(x + r * m, m);
        passes.radix3Inverse(x);
    } else {
        passes.inverse(x, m);
    }
}

template <class V, bool Square>
void convolveTransform(Limb* x, const Limb* src, std::size_t len, const Limb* y, const TransformPlan& plan) {
    const TransformPasses<V> passes(plan);
    const std::size_t m = plan.blockLength;
    if (plan.hasRadix3()) {
        passes.radix3ForwardFrom(x, src, len);
        for (std::size_t r = 0; r < 3; ++r) passes.template convolve<Square>(x + r * m, y + r * m, m);
        passes.radix3Inverse(x);
    } else {
        passes.template convolveFrom<Square>(x, src, len, y, m);
    }
}

template <class V>
void convolveKernel(Limb* x, const Limb* src, std::size_t len, const Limb* y, const TransformPlan& plan) {
    convolveTransform<V, false>(x, src, len, y, plan);
}
template <class V>
void squareKernel(Limb* x, const Limb* src, std::size_t len, const TransformPlan& plan) {
    convolveTransform<V, true>(x, src, len, x, plan);
}

template <class V>
constexpr TransformKernels makeKernels() {
    return {V::lanes,           &forwardTransform<V>, &inverseTransform<V>, &convolveKernel<V>,
            &squareKernel<V>,   &buildTopRoots<V>,    &garnerKernel<V>};
}

}  // namespace tw::arith::ntt
