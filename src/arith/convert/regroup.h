// Conversions that are a regrouping rather than arithmetic, linear in the
// length: digits of radix 2^j against binary limbs (bit strings cut at other
// places), digits of radix 10^j against decimal limbs (decimal digit strings
// cut at other places).
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "frame/radix.h"

namespace tw::convert {

// The value of in[0..n) in radix 2^inBits, each word below it, as words of
// radix 2^outBits; 1 <= inBits, outBits <= 32.  Zero words at the top are kept.
inline std::vector<std::uint32_t> regroupBits(const std::uint32_t* in, std::size_t n, unsigned inBits,
                                              unsigned outBits) {
    const std::uint64_t mask = (std::uint64_t(1) << outBits) - 1;
    std::vector<std::uint32_t> out;
    out.reserve(n * inBits / outBits + 2);
    // Fewer than outBits bits wait in `pending`; adding a word leaves below 64.
    std::uint64_t pending = 0;
    unsigned held = 0;
    for (std::size_t i = 0; i < n; ++i) {
        pending |= std::uint64_t(in[i]) << held;
        for (held += inBits; held >= outBits; held -= outBits) {
            out.push_back(std::uint32_t(pending & mask));
            pending >>= outBits;
        }
    }
    if (held > 0) out.push_back(std::uint32_t(pending));
    return out;
}

// The value of in[0..n) in radix 10^inDigits, each word below it, as words of
// radix 10^outDigits; 1 <= inDigits, outDigits <= 9.  Zero words at the top
// are kept.
inline std::vector<std::uint32_t> regroupDecimal(const std::uint32_t* in, std::size_t n, unsigned inDigits,
                                                 unsigned outDigits) {
    const std::uint64_t unit = kPowersOfTen[outDigits];
    std::vector<std::uint32_t> out;
    out.reserve(n * inDigits / outDigits + 2);
    // Fewer than outDigits decimal digits wait in `pending`; adding a word
    // leaves fewer than 18, below 2^60.
    std::uint64_t pending = 0;
    unsigned held = 0;
    for (std::size_t i = 0; i < n; ++i) {
        pending += std::uint64_t(in[i]) * kPowersOfTen[held];
        for (held += inDigits; held >= outDigits; held -= outDigits) {
            out.push_back(std::uint32_t(pending % unit));
            pending /= unit;
        }
    }
    if (held > 0) out.push_back(std::uint32_t(pending));
    return out;
}

// Limbs from digits of radix 2^j or 10^j, and digits of those radices from limbs.
inline std::vector<Limb> bitDigitsToLimbs(const std::uint32_t* digits, std::size_t n, unsigned j) {
    return regroupBits(digits, n, j, BinaryRadix::bitsPerLimb);
}
inline std::vector<std::uint32_t> limbsToBitDigits(const Limb* limbs, std::size_t n, unsigned j) {
    return regroupBits(limbs, n, BinaryRadix::bitsPerLimb, j);
}
inline std::vector<Limb> decimalDigitsToLimbs(const std::uint32_t* digits, std::size_t n, unsigned j) {
    return regroupDecimal(digits, n, j, DecimalRadix::decimalDigitsPerLimb);
}
inline std::vector<std::uint32_t> limbsToDecimalDigits(const Limb* limbs, std::size_t n, unsigned j) {
    return regroupDecimal(limbs, n, DecimalRadix::decimalDigitsPerLimb, j);
}

}  // namespace tw::convert
