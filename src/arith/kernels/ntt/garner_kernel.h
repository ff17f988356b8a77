// The vector half of the Chinese remainder step (crt.h): Garner's digits of
// the residue triples and their limb-radix terms.
//
// Every function here is a template on the register type V (lanes_*.h), so
// each code path's translation unit instantiates its own copies under its own
// target options and no copy compiled for one instruction set can stand in
// for another's.  Include after lanes_<path>.h, with the non-template headers
// it uses included before switching the target.
#pragma once

#include <cstddef>
#include <cstdint>

#include "arith/kernels/ntt/crt_constants.h"
#include "arith/kernels/ntt/modular_lanes.h"

namespace tw::arith::ntt {

// Garner's digits (x0, t1, t2) by Shoup products with constants, then their
// limb-radix terms in 64-bit lanes (digits below 2^31 times weights below R).
template <class V>
void garnerKernel(std::uint64_t* e0, std::uint64_t* e1, std::uint64_t* e2, const Limb* r0, const Limb* r1,
                  const Limb* r2, std::size_t count, const GarnerConstants& g) {
    using Reg = typename V::Reg;
    const LaneField<V> f0(g.prime[0]), f1(g.prime[1]), f2(g.prime[2]);
    const Reg k0 = V::broadcast(g.k0), k0s = V::broadcast(g.k0s);
    const Reg k1 = V::broadcast(g.k1), k1s = V::broadcast(g.k1s), u1 = V::broadcast(g.u1), u1s = V::broadcast(g.u1s);
    const Reg k2 = V::broadcast(g.k2), k2s = V::broadcast(g.k2s), v = V::broadcast(g.v), vs = V::broadcast(g.vs);
    const Reg w = V::broadcast(g.w), ws = V::broadcast(g.ws);
    const std::uint32_t* rw = g.radixWeights;
    for (std::size_t i = 0; i < count; i += V::lanes) {
        const Reg x0 = f0.mulShoup(V::load(r0 + i), k0, k0s);
        const Reg t1 = f1.sub(f1.mulShoup(V::load(r1 + i), k1, k1s), f1.mulShoup(x0, u1, u1s));
        const Reg t2 = f2.sub(f2.sub(f2.mulShoup(V::load(r2 + i), k2, k2s), f2.mulShoup(x0, v, vs)),
                              f2.mulShoup(t1, w, ws));
        if constexpr (V::lanes == 1) {
            e0[i] = x0 + std::uint64_t(t1) * rw[0] + std::uint64_t(t2) * rw[1];
            e1[i] = std::uint64_t(t1) * rw[2] + std::uint64_t(t2) * rw[3];
            e2[i] = std::uint64_t(t2) * rw[4];
        } else {
            using Wide = typename V::Wide;
            constexpr std::size_t half = V::lanes / 2;
            Wide x[2], a[2], b[2];
            V::widen(x0, x[0], x[1]);
            V::widen(t1, a[0], a[1]);
            V::widen(t2, b[0], b[1]);
            for (std::size_t k = 0; k < 2; ++k) {
                V::storeWide(e0 + i + k * half,
                             V::addWide(x[k], V::addWide(V::mulLowWords(a[k], V::broadcastWide(rw[0])),
                                                         V::mulLowWords(b[k], V::broadcastWide(rw[1])))));
                V::storeWide(e1 + i + k * half, V::addWide(V::mulLowWords(a[k], V::broadcastWide(rw[2])),
                                                           V::mulLowWords(b[k], V::broadcastWide(rw[3]))));
                V::storeWide(e2 + i + k * half, V::mulLowWords(b[k], V::broadcastWide(rw[4])));
            }
        }
    }
}

}  // namespace tw::arith::ntt
