// The butterflies of the transform on registers of lanes: radix-2
// Gentleman-Sande (forward) and Cooley-Tukey (inverse) pairs of registers, and
// the levels whose span lies inside one register, chained through the
// split/merge shuffles of lanes_*.h.
//
// Every function here is a template on the register type V (lanes_*.h), so
// each code path's translation unit instantiates its own copies under its own
// target options and no copy compiled for one instruction set can stand in
// for another's.  Include after lanes_<path>.h, with the non-template headers
// it uses included before switching the target.
#pragma once

#include <cstddef>

#include "arith/kernels/ntt/modular_lanes.h"
#include "arith/kernels/ntt/transform_plan.h"

namespace tw::arith::ntt {

template <std::size_t H>
inline constexpr std::size_t kLog2 = 1 + kLog2<H / 2>;
template <>
inline constexpr std::size_t kLog2<1> = 0;

// Gentleman-Sande butterfly (a, b) -> (a + b, (a - b) w).
template <class V>
inline void butterflyForward(const LaneField<V>& f, typename V::Reg& a, typename V::Reg& b, typename V::Reg w,
                             typename V::Reg ws) {
    const typename V::Reg d = f.subLazy(a, b);
    a = f.add(a, b);
    b = f.mulShoup(d, w, ws);
}

// Cooley-Tukey butterfly (a, b) -> (a + b w, a - b w): with w the inverse root
// it undoes butterflyForward up to a factor 2.
template <class V>
inline void butterflyInverse(const LaneField<V>& f, typename V::Reg& a, typename V::Reg& b, typename V::Reg w,
                             typename V::Reg ws) {
    const typename V::Reg t = f.mulShoup(b, w, ws);
    b = f.sub(a, t);
    a = f.add(a, t);
}

// split<H> / merge<H> (H < lanes) serve the butterfly levels whose span lies
// inside one register: split gathers, from two registers, the lanes whose
// index has bit H clear into the first and their partners (bit H set) into the
// second, partner beside partner; merge undoes it.  Applied to the output of
// the previous split, the partners of the next level are again H/2 lanes apart
// in the same register, so the levels chain without merging in between.
// Spans 2 and 1 stay inside 128-bit quarters; longer ones cross them.
template <class V, std::size_t H>
inline void split(typename V::Reg& a, typename V::Reg& b) {
    if constexpr (H > 2) {
        V::template splitHalves<H>(a, b);
    } else {
        const typename V::Reg p = H == 2 ? V::unpackLo64(a, b) : V::evenWords(a, b);
        const typename V::Reg q = H == 2 ? V::unpackHi64(a, b) : V::oddWords(a, b);
        a = p;
        b = q;
    }
}
template <class V, std::size_t H>
inline void merge(typename V::Reg& p, typename V::Reg& q) {
    if constexpr (H > 2) {
        V::template mergeHalves<H>(p, q);
    } else if constexpr (H == 2) {
        split<V, 2>(p, q);  // exchanging 64-bit pairs undoes itself
    } else {
        const typename V::Reg a = V::unpackLo32(p, q), b = V::unpackHi32(p, q);
        p = a;
        q = b;
    }
}

// The roots of the in-register levels (spans H < lanes) in the lane order
// split<H> leaves them in, indexed by log2 H (H = 1 multiplies by 1).
template <class V>
struct RegisterRoots {
    typename V::Reg forward[4], forwardCompanion[4], inverse[4], inverseCompanion[4];
};

// Tracks the original positions of the lanes through the splits and reads
// the root of each lane's butterfly: position j mod 2H, j < H, takes w_2H^j.
template <class V, std::size_t H>
void collectRegisterRoots(RegisterRoots<V>& rr, typename V::Reg& posA, typename V::Reg& posB,
                          const TransformPlan& plan) {
    split<V, H>(posA, posB);
    if constexpr (H > 1) {
        alignas(64) Limb pos[V::lanes], w[V::lanes], ws[V::lanes], iw[V::lanes], iws[V::lanes];
        V::store(pos, posA);
        for (std::size_t lane = 0; lane < V::lanes; ++lane) {
            const std::size_t j = pos[lane] % (2 * H);
            w[lane] = plan.forward.roots(H)[j];
            ws[lane] = plan.forward.companions(H)[j];
            iw[lane] = plan.inverse.roots(H)[j];
            iws[lane] = plan.inverse.companions(H)[j];
        }
        constexpr std::size_t k = kLog2<H>;
        rr.forward[k] = V::load(w);
        rr.forwardCompanion[k] = V::load(ws);
        rr.inverse[k] = V::load(iw);
        rr.inverseCompanion[k] = V::load(iws);
        collectRegisterRoots<V, H / 2>(rr, posA, posB, plan);
    }
}

template <class V, std::size_t H>
inline void registerLevelsForward(const LaneField<V>& f, typename V::Reg& a, typename V::Reg& b,
                                  const RegisterRoots<V>& rr) {
    split<V, H>(a, b);
    if constexpr (H == 1) {
        const typename V::Reg d = f.sub(a, b);
        a = f.add(a, b);
        b = d;
    } else {
        butterflyForward(f, a, b, rr.forward[kLog2<H>], rr.forwardCompanion[kLog2<H>]);
        registerLevelsForward<V, H / 2>(f, a, b, rr);
    }
}

template <class V, std::size_t H>
inline void registerLevelsInverse(const LaneField<V>& f, typename V::Reg& a, typename V::Reg& b,
                                  const RegisterRoots<V>& rr) {
    if constexpr (H == 1) {
        const typename V::Reg d = f.sub(a, b);
        a = f.add(a, b);
        b = d;
    } else {
        registerLevelsInverse<V, H / 2>(f, a, b, rr);
        butterflyInverse(f, a, b, rr.inverse[kLog2<H>], rr.inverseCompanion[kLog2<H>]);
    }
    merge<V, H>(a, b);
}

}  // namespace tw::arith::ntt
