// Conversions that are a regrouping rather than arithmetic, linear in the
// length: digits of radix 2^j against binary limbs (bit strings cut at other
// places), digits of radix 10^j against decimal limbs (decimal digit strings
// cut at other places).
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "frame/radix.h"

namespace tw::radix {

// Limbs of radix 2^28 of the value of digits[0..n) in radix 2^j, 1 <= j <= 32;
// every digit below 2^j.  Zero limbs at the top are kept.
inline std::vector<Limb> bitDigitsToLimbs(const std::uint32_t* digits, std::size_t n, unsigned j) {
    constexpr unsigned width = BinaryRadix::bitsPerLimb;
    std::vector<Limb> out;
    out.reserve((n * j) / width + 2);
    // Fewer than 28 bits wait in `pending`; adding a digit leaves below 60.
    std::uint64_t pending = 0;
    unsigned held = 0;
    for (std::size_t i = 0; i < n; ++i) {
        pending |= std::uint64_t(digits[i]) << held;
        held += j;
        while (held >= width) {
            out.push_back(Limb(pending) & BinaryRadix::mask);
            pending >>= width;
            held -= width;
        }
    }
    if (held > 0) out.push_back(Limb(pending));
    return out;
}

// Digits of radix 2^j (1 <= j <= 32) of the value of limbs[0..n) in radix
// 2^28.  Zero digits at the top are kept.
inline std::vector<std::uint32_t> limbsToBitDigits(const Limb* limbs, std::size_t n, unsigned j) {
    constexpr unsigned width = BinaryRadix::bitsPerLimb;
    const std::uint64_t mask = (std::uint64_t(1) << j) - 1;
    std::vector<std::uint32_t> out;
    out.reserve((n * width) / j + 2);
    // Fewer than j bits wait in `pending`; adding a limb leaves below 60.
    std::uint64_t pending = 0;
    unsigned held = 0;
    for (std::size_t i = 0; i < n; ++i) {
        pending |= std::uint64_t(limbs[i]) << held;
        held += width;
        while (held >= j) {
            out.push_back(std::uint32_t(pending & mask));
            pending >>= j;
            held -= j;
        }
    }
    if (held > 0) out.push_back(std::uint32_t(pending));
    return out;
}

// Limbs of radix 10^9 of the value of digits[0..n) in radix 10^j, 1 <= j <= 9;
// every digit below 10^j.  Zero limbs at the top are kept.
inline std::vector<Limb> decimalDigitsToLimbs(const std::uint32_t* digits, std::size_t n, unsigned j) {
    std::vector<Limb> out;
    out.reserve((n * j) / 9 + 2);
    // `pending` holds fewer than 9 decimal digits; adding one digit leaves
    // fewer than 18, below 2^60.
    std::uint64_t pending = 0;
    unsigned held = 0;
    for (std::size_t i = 0; i < n; ++i) {
        pending += std::uint64_t(digits[i]) * kPowersOfTen[held];
        held += j;
        if (held >= 9) {
            out.push_back(Limb(pending % DecimalRadix::base));
            pending /= DecimalRadix::base;
            held -= 9;
        }
    }
    if (held > 0) out.push_back(Limb(pending));
    return out;
}

// Digits of radix 10^j (1 <= j <= 9) of the value of limbs[0..n) in radix
// 10^9.  Zero digits at the top are kept.
inline std::vector<std::uint32_t> limbsToDecimalDigits(const Limb* limbs, std::size_t n, unsigned j) {
    const std::uint64_t unit = kPowersOfTen[j];
    std::vector<std::uint32_t> out;
    out.reserve((n * 9) / j + 2);
    // `pending` holds fewer than j decimal digits; adding a limb leaves fewer than 18.
    std::uint64_t pending = 0;
    unsigned held = 0;
    for (std::size_t i = 0; i < n; ++i) {
        pending += std::uint64_t(limbs[i]) * kPowersOfTen[held];
        held += 9;
        while (held >= j) {
            out.push_back(std::uint32_t(pending % unit));
            pending /= unit;
            held -= j;
        }
    }
    if (held > 0) out.push_back(std::uint32_t(pending));
    return out;
}

}  // namespace tw::radix
