// What the multiplication kernels need to know about a radix beyond the radix
// itself: how a 64-bit column accumulator is kept from overflowing, and how a
// 64-bit value splits into a limb and a carry.  The kernels are written once
// over `MulTraits<R>`; only this header differs between the radices.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/radix.h"

namespace tw::arith {

template <class R>
struct MulTraits;

// Radix 10^9.  A limb product is below 10^18 and 2^64 is about 18.4 * 10^18,
// so an accumulator has room for one product above 17 * 10^18 only.  After
// every addition the accumulator is compared with that mark; above it, 17 * 10^18
// (= 17 * radix^2) is taken out and owed as 17 units to the column two places up.
// The comparison is a single predictable branch, so the inner loop carries no
// per-product carry handling.
template <>
struct MulTraits<DecimalRadix> {
    // Products summed between two calls of settle().
    static constexpr std::size_t kProductsPerSettle = 1;
    // Upper 32 bits >= 0xEBEC21EF: the accumulator is above 17 * 10^18.
    static constexpr std::uint64_t kSettleMark = std::uint64_t(0xEBEC21EF) << 32;
    // 2^64 - 17 * 10^18: adding it (wrapping) subtracts 17 * 10^18.
    static constexpr std::uint64_t kSettleWrap = 0x1413DE11E25C0000ull;
    static constexpr std::uint64_t kSettleUnits = 17;

    static void settle(std::uint64_t& acc, std::uint64_t& owedTwoUp) {
        if (acc >= kSettleMark) [[unlikely]] {
            acc += kSettleWrap;
            owedTwoUp += kSettleUnits;
        }
    }
    static Limb low(std::uint64_t v) { return Limb(v % DecimalRadix::base); }
    static std::uint64_t high(std::uint64_t v) { return v / DecimalRadix::base; }
};

// Radix 2^28.  A limb product is below 2^56, so about 250 of them fit an
// accumulator together with a column's carry.  settle() runs once per block of
// products and moves whatever lies above 2^56 (= radix^2) to the column two
// places up: a shift and a mask.
template <>
struct MulTraits<BinaryRadix> {
    // Block size: 252 products below 2^56, a carry below 2^37 and a settled
    // accumulator below 2^56 stay below 2^64.
    static constexpr std::size_t kProductsPerSettle = 252;
    static constexpr unsigned kRadixSquaredBits = 2 * BinaryRadix::bitsPerLimb;

    static void settle(std::uint64_t& acc, std::uint64_t& owedTwoUp) {
        owedTwoUp += acc >> kRadixSquaredBits;
        acc &= (std::uint64_t(1) << kRadixSquaredBits) - 1;
    }
    static Limb low(std::uint64_t v) { return Limb(v) & BinaryRadix::mask; }
    static std::uint64_t high(std::uint64_t v) { return v >> BinaryRadix::bitsPerLimb; }
};

}  // namespace tw::arith
