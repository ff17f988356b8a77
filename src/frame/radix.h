// Radix policies: the compile-time parameter every kernel is written over.
// A kernel takes `class R` and reads the limb radix and its derived constants
// from here, so one template serves both integer types.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/uint128.h"

namespace tw {

using Limb = std::uint32_t;

// Limbs of radix 10^9: nine decimal digits a limb.
struct DecimalRadix {
    static constexpr Limb base = 1000000000u;
    static constexpr bool isBinary = false;
    static constexpr unsigned bitsPerLimb = 0;           // not a power of two
    static constexpr unsigned decimalDigitsPerLimb = 9;
    // Limbs needed for any 64-bit magnitude: 2^64 - 1 has 20 decimal digits.
    static constexpr unsigned limbsFor64 = 3;
};

// Limbs of radix 2^28: 28 bits a limb, so four limbs never overflow 2^112 and a
// limb product with room for 2^8 accumulated products fits 64 bits.
struct BinaryRadix {
    static constexpr Limb base = Limb(1) << 28;
    static constexpr bool isBinary = true;
    static constexpr unsigned bitsPerLimb = 28;
    static constexpr Limb mask = base - 1;
    static constexpr unsigned limbsFor64 = 3;            // 3 * 28 = 84 >= 64
};

// Powers of ten 10^0 .. 10^9.
inline constexpr std::uint32_t kPowersOfTen[10] = {
    1u, 10u, 100u, 1000u, 10000u, 100000u, 1000000u, 10000000u, 100000000u, 1000000000u};

// Number of decimal digits of a value below 10^9 (1 for 0).
constexpr unsigned decimalDigitsOfLimb(std::uint32_t v) {
    unsigned n = 1;
    while (n < 10 && v >= kPowersOfTen[n]) ++n;
    return n;
}

// Number of bits of v (0 for 0).
constexpr unsigned bitLength32(std::uint32_t v) { return v ? 32u - unsigned(__builtin_clz(v)) : 0u; }

}  // namespace tw
