#include "arith/kernels/ntt/crt.h"

#include <algorithm>
#include <cstdint>

#include "frame/error_state.h"

namespace tw::arith::ntt {

namespace {

// A limb position collects e0 of its own sum, e1 of the one below and e2 of
// the one below that, plus a carry and an existing limb.  With every digit
// below 2^31 and every weight below R, each e is below 2^31 (1 + 2R), so the
// total stays below 2^64 and the carry below 2^64 / R.
template <class R>
constexpr bool positionTotalsFitOneWord() {
    constexpr std::uint64_t eMax = (std::uint64_t(1) << 31) * (1 + 2 * std::uint64_t(R::base));
    constexpr std::uint64_t carryMax = ~std::uint64_t(0) / R::base;
    return eMax <= (~std::uint64_t(0) - carryMax - R::base) / 3;
}
static_assert(positionTotalsFitOneWord<DecimalRadix>() && positionTotalsFitOneWord<BinaryRadix>());

constexpr std::size_t kBlock = 512;

// Blocks combined between two tests of the terminate flag (a few hundred
// microseconds of work); a stopped product is discarded by its caller.
constexpr std::size_t kBlocksPerPoll = 64;
// Independent carry chains a block is cut into: the division of each
// position's total by R waits for the previous position's carry, so one
// chain is bound by that latency; interleaved chains hide it.
constexpr std::size_t kChains = 4;

// The carry state of one chain: the carry into the next position, and the
// parts of the last two sums that reach one and two positions further.
struct CarryState {
    std::uint64_t carry = 0, pending1 = 0, pending2 = 0;
};

template <class R, bool Accumulate>
inline void put(CarryState& c, Limb* out, std::uint64_t e0, std::uint64_t e1, std::uint64_t e2) {
    std::uint64_t v = e0 + c.pending1 + c.carry;
    if constexpr (Accumulate) v += *out;
    *out = Limb(v % R::base);
    c.carry = v / R::base;
    c.pending1 = e1 + c.pending2;
    c.pending2 = e2;
}

// Adds a chain's final state into the limbs out[0 .. length) it reaches
// (already written by the next chain); what carries past them is returned.
template <class R>
std::uint64_t addState(Limb* out, std::size_t length, const CarryState& c) {
    std::uint64_t carry = c.carry;
    const std::uint64_t tail[2] = {c.pending1, c.pending2};
    std::size_t j = 0;
    for (; j < length && (j < 2 || carry); ++j) {
        const std::uint64_t v = out[j] + carry + (j < 2 ? tail[j] : 0);
        out[j] = Limb(v % R::base);
        carry = v / R::base;
    }
    return carry;
}

template <class R, bool Accumulate>
void finish(CarryState& c, Limb* out, std::size_t count, std::size_t room) {
    const std::uint64_t tail[2] = {c.pending1, c.pending2};
    std::size_t j = count;
    for (std::size_t t = 0; t < 2 && j < room; ++t, ++j) {
        std::uint64_t v = tail[t] + c.carry;
        if constexpr (Accumulate) v += out[j];
        out[j] = Limb(v % R::base);
        c.carry = v / R::base;
    }
    if constexpr (Accumulate) {
        for (; c.carry && j < room; ++j) {
            const std::uint64_t v = out[j] + c.carry;
            out[j] = Limb(v % R::base);
            c.carry = v / R::base;
        }
    }
}

template <class R, bool Accumulate>
void combine(Limb* out, std::size_t room, const Limb* r0, const Limb* r1, const Limb* r2, std::size_t count,
             const GarnerConstants& g, const TransformKernels& kernels) {
    alignas(64) std::uint64_t e0[kBlock], e1[kBlock], e2[kBlock];
    alignas(64) Limb pad0[kBlock], pad1[kBlock], pad2[kBlock];
    CarryState head;
    for (std::size_t i = 0; i < count; i += kBlock) {
        if (i % (kBlocksPerPoll * kBlock) == 0 && terminateRequested()) return;
        const std::size_t n = std::min(kBlock, count - i);
        const std::size_t whole = (n + kernels.lanes - 1) / kernels.lanes * kernels.lanes;
        if (whole == n) {
            kernels.garner(e0, e1, e2, r0 + i, r1 + i, r2 + i, n, g);
        } else {
            std::fill(std::copy(r0 + i, r0 + i + n, pad0), pad0 + whole, 0);
            std::fill(std::copy(r1 + i, r1 + i + n, pad1), pad1 + whole, 0);
            std::fill(std::copy(r2 + i, r2 + i + n, pad2), pad2 + whole, 0);
            kernels.garner(e0, e1, e2, pad0, pad1, pad2, whole, g);
        }
        Limb* o = out + i;
        if (n < kBlock) {
            for (std::size_t k = 0; k < n; ++k) put<R, Accumulate>(head, o + k, e0[k], e1[k], e2[k]);
            continue;
        }
        // Chain c covers [c part, (c+1) part); chain 0 continues the head.
        constexpr std::size_t part = kBlock / kChains;
        CarryState chain[kChains];
        chain[0] = head;
        for (std::size_t k = 0; k < part; ++k)
            for (std::size_t c = 0; c < kChains; ++c) {
                const std::size_t at = c * part + k;
                put<R, Accumulate>(chain[c], o + at, e0[at], e1[at], e2[at]);
            }
        // Each chain's state belongs at the start of the next part; a carry
        // through a whole part joins that part's own state.
        for (std::size_t c = 1; c < kChains; ++c)
            chain[c].carry += addState<R>(o + c * part, part, chain[c - 1]);
        head = chain[kChains - 1];
    }
    finish<R, Accumulate>(head, out, count, room);
}


}  // namespace

template <class R>
void crtToLimbs(Limb* out, std::size_t room, const Limb* r0, const Limb* r1, const Limb* r2, std::size_t count,
                const GarnerConstants& g, const TransformKernels& kernels, bool accumulate) {
    GarnerConstants withWeights = g;
    setRadixWeights<R>(withWeights);
    if (accumulate)
        combine<R, true>(out, room, r0, r1, r2, count, withWeights, kernels);
    else
        combine<R, false>(out, room, r0, r1, r2, count, withWeights, kernels);
}

template void crtToLimbs<DecimalRadix>(Limb*, std::size_t, const Limb*, const Limb*, const Limb*, std::size_t,
                                       const GarnerConstants&, const TransformKernels&, bool);
template void crtToLimbs<BinaryRadix>(Limb*, std::size_t, const Limb*, const Limb*, const Limb*, std::size_t,
                                      const GarnerConstants&, const TransformKernels&, bool);

}  // namespace tw::arith::ntt
