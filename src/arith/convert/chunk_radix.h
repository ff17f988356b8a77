// What the conversion engine derives from a digit radix (2 .. 2^32, 0 standing
// for 2^32): the chunk, the largest power of the radix that fits 32 bits, so
// that a run of digits packs into one word; whether the radix is a power of
// two or of ten (the radices that regroup without arithmetic); and division of
// a word-sized running remainder by the chunk.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "frame/radix.h"

namespace tw::convert {

// The radix as a number: 0 stands for 2^32.
constexpr std::uint64_t radixValue(std::uint32_t radix) { return radix == 0 ? std::uint64_t(1) << 32 : radix; }

struct ChunkRadix {
    std::uint64_t radix = 0;       // 2 .. 2^32
    std::uint64_t chunk = 0;       // radix^digitsPerChunk <= 2^32
    unsigned digitsPerChunk = 0;   // at least 1
};

// Requires radix >= 2 (as a number).
constexpr ChunkRadix chunkRadixOf(std::uint64_t radix) {
    ChunkRadix c{radix, radix, 1};
    while (c.chunk <= (std::uint64_t(1) << 32) / radix) {
        c.chunk *= radix;
        ++c.digitsPerChunk;
    }
    return c;
}

// j with radix = 2^j (1 .. 32), else 0.
constexpr unsigned powerOfTwoExponent(std::uint64_t radix) {
    return std::has_single_bit(radix) ? unsigned(std::countr_zero(radix)) : 0u;
}

// j with radix = 10^j (1 .. 9), else 0.
constexpr unsigned powerOfTenExponent(std::uint64_t radix) {
    for (unsigned j = 1; j < 10; ++j)
        if (radix == kPowersOfTen[j]) return j;
    return 0;
}

// Bits of a limb of radix R, as the exact log2 of the radix.
template <class R>
constexpr double limbBits() {
    if constexpr (R::isBinary)
        return double(R::bitsPerLimb);
    else
        return 29.897352853986263;  // log2(10^9)
}

// Division of values below 2^62 by a fixed 2 <= d <= 2^32 through one
// multiply-high: with 2^(l-1) < d <= 2^l and m = floor(2^(62+l) / d) + 1,
// m*d lies in (2^(62+l), 2^(62+l) + 2^l], which makes
// floor(n * m / 2^(62+l)) = floor(n / d) for every n < 2^62
// (Granlund and Montgomery, division by invariant integers, theorem 4.2).
// The running remainder of a limb division, rem * radix + limb with
// rem < d <= 2^32 and radix <= 10^9, stays below 2^62.
class WordDivisor {
public:
    explicit WordDivisor(std::uint64_t d)
        : d_(d), shift_(62 + unsigned(std::bit_width(d - 1))),
          magic_(std::uint64_t((u128(1) << shift_) / d) + 1) {}

    std::uint64_t divisor() const { return d_; }
    // n / d for n < 2^62; the remainder goes to rem.
    std::uint64_t divide(std::uint64_t n, std::uint64_t& rem) const {
        const std::uint64_t q = std::uint64_t((u128(n) * magic_) >> shift_);
        rem = n - q * d_;
        return q;
    }

private:
    std::uint64_t d_;
    unsigned shift_;
    std::uint64_t magic_;
};

}  // namespace tw::convert
