// The leaves of the transform: blocks of at most kLeafLength words, small
// enough for the cache, whose remaining levels run back to back down to the
// levels inside registers (lanes_*.h); a convolution leaf does forward levels,
// pointwise product and inverse levels while the block is in cache.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "arith/kernels/ntt/butterflies.h"
#include "arith/kernels/ntt/root_kernels.h"
#include "arith/kernels/ntt/transform_levels.h"

namespace tw::arith::ntt {

template <class V>
class TransformLeaves : public TransformLevels<V> {
    using Base = TransformLevels<V>;
    using Base::f_;

protected:
    using Base::forwardLevel;
    using Base::forwardLevelPair;
    using Base::inverseLevel;
    using Base::inverseLevelPair;

public:
    using Reg = typename V::Reg;
    static constexpr std::size_t L = V::lanes;

    explicit TransformLeaves(const TransformPlan& plan) : Base(plan) {
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

private:
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

public:
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

private:
    RegisterRoots<V> registerRoots_{};
    Reg bottomRoot_, bottomCompanion_, bottomInverseRoot_, bottomInverseCompanion_;
};

}  // namespace tw::arith::ntt
