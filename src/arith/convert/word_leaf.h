// The leaves of the split on 64-bit words.  A leaf's value is cut into chunks
// by repeated division: in 28-bit limbs each pass over the value removes one
// chunk, 31 bits at most, while a pass over 64-bit words divides by the
// largest power of the chunk below 2^64 and removes two chunks or more, in a
// third of the steps.  Each step divides a two-word value by that power
// through its precomputed reciprocal (Moller and Granlund, "Improved division
// by invariant integers", algorithm 4), and four divisions go down the value
// together, one word apart, so that their chains of dependent products overlap.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "frame/radix.h"

namespace tw::convert {

class WordChunkDivider {
public:
    // 2 <= chunk < 2^32.
    explicit WordChunkDivider(std::uint64_t chunk) : chunk_(chunk) {
        divisor_ = chunk;
        chunksPerDivisor_ = 1;
        while (divisor_ <= ~std::uint64_t(0) / chunk) {
            divisor_ *= chunk;
            ++chunksPerDivisor_;
        }
        shift_ = unsigned(std::countl_zero(divisor_));
        normalized_ = divisor_ << shift_;
        inverse_ = std::uint64_t(~u128(0) / normalized_);  // floor((2^128 - 1) / d) - 2^64, wrapped
    }

    // out[0..count) := the chunks of the value of words[0..n), which is below
    // chunk^count; words are overwritten.
    void split(std::uint32_t* out, std::size_t count, std::uint64_t* words, std::size_t n) const {
        while (n > 0 && words[n - 1] == 0) --n;
        std::size_t j = 0;
        constexpr unsigned kLanes = 4;
        while (n > 0 && j < count) {
            std::uint64_t rem[kLanes] = {};
            for (std::size_t i = n; i-- > 0;) {
                std::uint64_t w = words[i];
                for (unsigned k = 0; k < kLanes; ++k) w = step(rem[k], w);
                words[i] = w;
            }
            for (unsigned k = 0; k < kLanes; ++k) j = unpack(out, j, count, rem[k] >> shift_);
            while (n > 0 && words[n - 1] == 0) --n;
        }
        for (; j < count; ++j) out[j] = 0;
    }

private:
    // (rem, w) / divisor with rem kept shifted as the normalized division
    // leaves it: returns the quotient word and updates rem.
    std::uint64_t step(std::uint64_t& rem, std::uint64_t w) const {
        const std::uint64_t u1 = rem | ((w >> 1) >> (63 - shift_));
        const std::uint64_t u0 = w << shift_;
        const u128 p = u128(inverse_) * u1 + ((u128(u1) << 64) | u0);
        std::uint64_t q = std::uint64_t(p >> 64) + 1;
        std::uint64_t r = u0 - q * normalized_;
        if (r > std::uint64_t(p)) {
            --q;
            r += normalized_;
        }
        if (r >= normalized_) [[unlikely]] {
            ++q;
            r -= normalized_;
        }
        rem = r;
        return q;
    }

    // Writes the chunks of one remainder (below divisor) from out[j] on.
    std::size_t unpack(std::uint32_t* out, std::size_t j, std::size_t count, std::uint64_t r) const {
        for (unsigned c = 0; c < chunksPerDivisor_ && j < count; ++c, ++j) {
            out[j] = std::uint32_t(r % chunk_);
            r /= chunk_;
        }
        return j;
    }

    std::uint64_t chunk_;
    std::uint64_t divisor_;        // chunk^chunksPerDivisor_, the largest power below 2^64
    unsigned chunksPerDivisor_;
    unsigned shift_;               // leading zero bits of divisor_
    std::uint64_t normalized_;     // divisor_ << shift_
    std::uint64_t inverse_;
};

// The value of binary limbs x[0..n) as 64-bit words into words[0..); returns
// the number of words written (16 limbs make 7 words).
inline std::size_t binaryLimbsToWords(std::uint64_t* words, const Limb* x, std::size_t n) {
    std::size_t w = 0;
    u128 pending = 0;
    unsigned held = 0;
    for (std::size_t i = 0; i < n; ++i) {
        pending |= u128(x[i]) << held;
        held += BinaryRadix::bitsPerLimb;
        if (held >= 64) {
            words[w++] = std::uint64_t(pending);
            pending >>= 64;
            held -= 64;
        }
    }
    if (held > 0) words[w++] = std::uint64_t(pending);
    return w;
}

}  // namespace tw::convert
