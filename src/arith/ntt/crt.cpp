#include "arith/ntt/crt.h"

#include <algorithm>
#include <cstdint>

namespace tw::arith::ntt {

namespace {

// The Garner weights p0 and p0 p1 as limbs of radix R: a digit triple
// (x0, t1, t2) is x0 + t1 p0 + t2 p0 p1 = e0 + e1 R + e2 R^2 with
// e0 = x0 + t1 P0[0] + t2 P01[0], e1 = t1 P0[1] + t2 P01[1], e2 = t2 P01[2].
template <class R>
struct GarnerWeights {
    static constexpr std::uint64_t p0 = kTransformPrimes[0].p;
    static constexpr std::uint64_t p01 = p0 * kTransformPrimes[1].p;
    static constexpr std::uint64_t P0[2] = {p0 % R::base, p0 / R::base};
    static constexpr std::uint64_t P01[3] = {p01 % R::base, p01 / R::base % R::base, p01 / R::base / R::base};
    static_assert(P0[1] < R::base && P01[2] < R::base);

    // A limb position collects e0 of its own sum, e1 of the one below and e2
    // of the one below that, plus a carry and an existing limb: with every
    // digit below 2^31 and weight below R, each e is below 2^31 (1 + 2R), so
    // the total stays far below 2^64 and the carry below 2^64 / R.
    static constexpr std::uint64_t digitMax = std::uint64_t(1) << 31;
    static constexpr std::uint64_t eMax = digitMax * (1 + 2 * std::uint64_t(R::base));
    static constexpr std::uint64_t carryMax = ~std::uint64_t(0) / R::base;
    static_assert(eMax <= (~std::uint64_t(0) - carryMax - R::base) / 3);
};

constexpr std::size_t kBlock = 256;

template <class R, bool Accumulate>
struct CarryChain {
    std::uint64_t carry = 0, pending1 = 0, pending2 = 0;

    void put(Limb* out, std::uint64_t x0, std::uint64_t t1, std::uint64_t t2) {
        using W = GarnerWeights<R>;
        std::uint64_t v = x0 + t1 * W::P0[0] + t2 * W::P01[0] + pending1 + carry;
        if constexpr (Accumulate) v += *out;
        *out = Limb(v % R::base);
        carry = v / R::base;
        pending1 = t1 * W::P0[1] + t2 * W::P01[1] + pending2;
        pending2 = t2 * W::P01[2];
    }

    // The two positions the last sums reach above count, then the carry.
    void finish(Limb* out, std::size_t count, std::size_t room) {
        const std::uint64_t tail[2] = {pending1, pending2};
        std::size_t j = count;
        for (std::size_t t = 0; t < 2 && j < room; ++t, ++j) {
            std::uint64_t v = tail[t] + carry;
            if constexpr (Accumulate) v += out[j];
            out[j] = Limb(v % R::base);
            carry = v / R::base;
        }
        if constexpr (Accumulate) {
            for (; carry && j < room; ++j) {
                const std::uint64_t v = out[j] + carry;
                out[j] = Limb(v % R::base);
                carry = v / R::base;
            }
        }
    }
};

template <class R, bool Accumulate>
void combine(Limb* out, std::size_t room, const Limb* r0, const Limb* r1, const Limb* r2, std::size_t count,
             const GarnerConstants& g, const TransformKernels& kernels) {
    alignas(64) Limb x0[kBlock], t1[kBlock], t2[kBlock];
    alignas(64) Limb pad0[kBlock], pad1[kBlock], pad2[kBlock];
    CarryChain<R, Accumulate> chain;
    for (std::size_t i = 0; i < count; i += kBlock) {
        const std::size_t n = std::min(kBlock, count - i);
        const std::size_t whole = (n + kernels.lanes - 1) / kernels.lanes * kernels.lanes;
        if (whole == n) {
            kernels.garner(x0, t1, t2, r0 + i, r1 + i, r2 + i, n, g);
        } else {
            std::fill(std::copy(r0 + i, r0 + i + n, pad0), pad0 + whole, 0);
            std::fill(std::copy(r1 + i, r1 + i + n, pad1), pad1 + whole, 0);
            std::fill(std::copy(r2 + i, r2 + i + n, pad2), pad2 + whole, 0);
            kernels.garner(x0, t1, t2, pad0, pad1, pad2, whole, g);
        }
        for (std::size_t k = 0; k < n; ++k) chain.put(out + i + k, x0[k], t1[k], t2[k]);
    }
    chain.finish(out, count, room);
}

}  // namespace

template <class R>
void crtToLimbs(Limb* out, std::size_t room, const Limb* r0, const Limb* r1, const Limb* r2, std::size_t count,
                const GarnerConstants& g, const TransformKernels& kernels, bool accumulate) {
    if (accumulate)
        combine<R, true>(out, room, r0, r1, r2, count, g, kernels);
    else
        combine<R, false>(out, room, r0, r1, r2, count, g, kernels);
}

template void crtToLimbs<DecimalRadix>(Limb*, std::size_t, const Limb*, const Limb*, const Limb*, std::size_t,
                                       const GarnerConstants&, const TransformKernels&, bool);
template void crtToLimbs<BinaryRadix>(Limb*, std::size_t, const Limb*, const Limb*, const Limb*, std::size_t,
                                      const GarnerConstants&, const TransformKernels&, bool);

}  // namespace tw::arith::ntt
