// The roots of a transform's long levels, built in registers of lanes.
//
// Every function here is a template on the register type V (lanes_*.h), so
// each code path's translation unit instantiates its own copies under its own
// target options and no copy compiled for one instruction set can stand in
// for another's.  Include after lanes_<path>.h, with the non-template headers
// it uses included before switching the target.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "arith/kernels/ntt/modular_lanes.h"
#include "arith/kernels/ntt/prime_field.h"
#include "arith/kernels/ntt/roots_of_unity.h"
#include "arith/kernels/ntt/transform_plan.h"
#include "frame/error_state.h"

namespace tw::arith::ntt {

// Roots of the levels kLeafLength <= h < M (layout in transform_plan.h).
// The longest level is four interleaved chains of Montgomery forms
// w^j 2^32 mod p, stepped one register at a time; from the Montgomery form m
// of w, the Shoup companion floor(w 2^32 / p) is -m / p mod 2^32 (w 2^32 - m is a
// multiple of p whose quotient is below 2^32), and w itself the Montgomery
// reduction of m.  Each shorter level takes every other root of the one above
// (w_h = w_2h^2).
template <class V>
void buildTopRoots(Limb* roots, Limb* companions, std::size_t blockLength, const PrimeConstants& prime) {
    using Reg = typename V::Reg;
    constexpr std::size_t L = V::lanes;
    constexpr std::size_t kChains = 4;
    if (blockLength <= kLeafLength) return;
    const LaneField<V> f(prime);
    const Reg one = V::broadcast(1), negPinv = V::broadcast(prime.negPinv);

    const std::size_t top = blockLength / 2;
    {
        Limb* r = roots + topLevelOffset(top);
        Limb* c = companions + topLevelOffset(top);
        const std::uint32_t w = toMontgomery(rootOfUnity(prime.index, 2 * top), prime);
        alignas(64) Limb start[kChains * L];
        std::uint32_t power = prime.montR;
        for (std::size_t i = 0; i < kChains * L; ++i) {
            start[i] = power;
            power = montMul(power, w, prime);
        }
        const Reg step = V::broadcast(fromMontgomery(power, prime));
        const Reg stepCompanion = V::broadcast(shoupCompanionOfMontgomery(power, prime));
        Reg m[kChains];
        for (std::size_t k = 0; k < kChains; ++k) m[k] = V::load(start + k * L);
        for (std::size_t j = 0; j < top; j += kChains * L) {
            if (j % kPassPollWords == 0 && terminateRequested()) return;  // the caller drops the table
            for (std::size_t k = 0; k < kChains; ++k) {
                V::store(r + j + k * L, f.mulMontgomery(m[k], one));
                V::store(c + j + k * L, V::mullo(m[k], negPinv));
                m[k] = f.mulShoup(m[k], step, stepCompanion);
            }
        }
    }
    for (std::size_t h = top / 2; h >= kLeafLength; h /= 2) {
        const Limb* ra = roots + topLevelOffset(2 * h);
        const Limb* ca = companions + topLevelOffset(2 * h);
        Limb* rb = roots + topLevelOffset(h);
        Limb* cb = companions + topLevelOffset(h);
        for (std::size_t j = 0; j < h; j += L) {
            if (j % kPassPollWords == 0 && terminateRequested()) return;
            V::store(rb + j, V::evenLanes(V::load(ra + 2 * j), V::load(ra + 2 * j + L)));
            V::store(cb + j, V::evenLanes(V::load(ca + 2 * j), V::load(ca + 2 * j + L)));
        }
    }
    for (std::size_t h = kLeafLength; h <= top; h *= 2) {
        std::fill(roots + topLevelOffset(h) + h, roots + topLevelOffset(h) + h + kTopLevelPad, prime.p - 1);
        std::fill(companions + topLevelOffset(h) + h, companions + topLevelOffset(h) + h + kTopLevelPad,
                  shoupCompanion(prime.p - 1, prime.p));
    }
}

}  // namespace tw::arith::ntt
