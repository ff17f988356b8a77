// The radix-3 layer of transforms of length N = 3M: the first layer of the
// forward transform splits the operand into three blocks of M words, each
// then transformed by the power-of-two passes; the inverse undoes it last.
// About four levels' worth of work.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "arith/kernels/ntt/prime_field.h"
#include "arith/kernels/ntt/transform_levels.h"
#include "frame/error_state.h"

namespace tw::arith::ntt {

// The radix-3 layer of one transform plan on one code path.
template <class V>
class Radix3Layer {
    using Reg = typename V::Reg;
    using RootChain = typename TransformLevels<V>::RootChain;
    static constexpr std::size_t L = V::lanes;

public:
    explicit Radix3Layer(const TransformLevels<V>& levels) : plan(levels.plan()), f(levels.field()) {}

    // x[0..3M) := the layer applied to src[0..len) (zeros past len): with
    // a, b, c the words j of the three thirds and c3 the cube root, the thirds
    // become a + b + c, (a + c3 b + c3^2 c) w^j and (a + c3^2 b + c3 c) w^2j (w
    // the N-th root); c3 + c3^2 = -1 leaves one product by c3.  Where the
    // padding makes c, or b and c, zero the shorter forms run, and past len
    // only zeros.
    void forwardFrom(Limb* x, const Limb* src, std::size_t len) const;
    // Undoes forwardFrom up to a factor 3.
    void inverse(Limb* x) const;

private:
    const TransformPlan& plan;
    const LaneField<V>& f;
};

template <class V>
void Radix3Layer<V>::forwardFrom(Limb* x, const Limb* src, std::size_t len) const {
    const std::size_t m = plan.blockLength;
    RootChain c1(plan, plan.root, 1), c2(plan, plan.root, 2);
    const Reg w3 = V::broadcast(plan.cubeRoot), w3s = V::broadcast(plan.cubeRootCompanion);
    std::size_t j = 0;
    for (; j < m && j < len; j += L) {
        if (j % kPassPollWords == 0 && terminateRequested()) return;  // the caller drops x
        const Reg a = TransformLevels<V>::loadPadded(src, j, len);
        Reg y0 = a, y1 = a, y2 = a;
        if (m + j < len) {
            const Reg b = TransformLevels<V>::loadPadded(src, m + j, len);
            if (2 * m + j < len) {
                const Reg c = TransformLevels<V>::loadPadded(src, 2 * m + j, len);
                const Reg t = f.mulShoup(f.subLazy(b, c), w3, w3s);
                y0 = f.add(f.add(a, b), c);
                y1 = f.add(f.sub(a, c), t);
                y2 = f.sub(f.sub(a, b), t);
            } else {
                const Reg t = f.mulShoup(b, w3, w3s);
                y0 = f.add(a, b);
                y1 = f.add(a, t);
                y2 = f.sub(f.sub(a, b), t);
            }
        }
        V::store(x + j, y0);
        V::store(x + m + j, f.mulMontgomery(y1, c1.value));
        V::store(x + 2 * m + j, f.mulMontgomery(y2, c2.value));
        c1.advance(f);
        c2.advance(f);
    }
    for (std::size_t r = 0; r < 3; ++r) std::fill(x + r * m + j, x + (r + 1) * m, Limb(0));
}

template <class V>
void Radix3Layer<V>::inverse(Limb* x) const {
    const std::size_t m = plan.blockLength;
    RootChain c1(plan, plan.rootInverse, 1), c2(plan, plan.rootInverse, 2);
    const Reg w3 = V::broadcast(plan.cubeRootInverse), w3s = V::broadcast(plan.cubeRootInverseCompanion);
    for (std::size_t j = 0; j < m; j += L) {
        if (j % kPassPollWords == 0 && terminateRequested()) return;
        const Reg y0 = V::load(x + j);
        const Reg y1 = f.mulMontgomery(V::load(x + m + j), c1.value);
        const Reg y2 = f.mulMontgomery(V::load(x + 2 * m + j), c2.value);
        const Reg t = f.mulShoup(f.subLazy(y1, y2), w3, w3s);
        V::store(x + j, f.add(f.add(y0, y1), y2));
        V::store(x + m + j, f.add(f.sub(y0, y2), t));
        V::store(x + 2 * m + j, f.sub(f.sub(y0, y1), t));
        c1.advance(f);
        c2.advance(f);
    }
}

}  // namespace tw::arith::ntt
