// Left-to-right sliding-window powers over any ring of modular residues
// (the limb rings of montgomery.h, the word rings of word_power.h): a ring
// gives size() in its words and mul/sqr that may write over their operands.
// Exponents come as chunks of 28 bits.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "arith/kernels/divide_by_limb.h"
#include "frame/error_state.h"
#include "frame/number_record.h"
#include "frame/radix.h"

namespace tw::numtheory {

inline constexpr unsigned kChunkBits = 28;

// |e| in chunks of 28 bits, lowest first (none for zero): the limbs
// themselves in radix 2^28, repeated division by 2^28 in radix 10^9.
template <class R>
std::vector<std::uint32_t> bitChunks(const NumberRecord& e) {
    std::size_t n = e.isZero() ? 0 : e.topIndex + 1;
    if constexpr (R::isBinary) {
        return std::vector<std::uint32_t>(e.digits, e.digits + n);
    } else {
        std::vector<Limb> a(e.digits, e.digits + n), q(n);
        std::vector<std::uint32_t> out;
        while (n > 0 && !terminateRequested()) {
            out.push_back(arith::divideByLimb<R>(q.data(), a.data(), n, 1u << kChunkBits));
            std::swap(a, q);
            while (n > 0 && a[n - 1] == 0) --n;
        }
        return out;
    }
}

// The window width for an exponent of `bits` bits: the k that minimises
// about 2^(k-1) table products + bits / (k + 1) window products.
inline unsigned windowWidth(std::size_t bits) {
    static constexpr std::size_t kUpTo[] = {8, 24, 80, 240, 672, 1792};
    unsigned k = 1;
    while (k <= 6 && bits > kUpTo[k - 1]) ++k;
    return k;
}

// acc := base^e in the ring's form for non-zero chunks e, left to right with
// sliding windows over a table of the odd powers base^1, base^3, ...
// False when the terminate flag stopped it.
template <class Ring, class Word>
bool ringPower(Ring& ring, Word* acc, const Word* base, const std::vector<std::uint32_t>& e) {
    const std::size_t n = ring.size();
    const std::size_t bits = kChunkBits * (e.size() - 1) + bitLength32(e.back());
    const unsigned w = windowWidth(bits);
    std::vector<Word> table(n << (w - 1)), square(n);
    std::copy(base, base + n, table.begin());
    if (w > 1) ring.sqr(square.data(), base);
    for (std::size_t k = 1; k < (std::size_t(1) << (w - 1)); ++k)
        ring.mul(&table[k * n], &table[(k - 1) * n], square.data());
    const auto bit = [&e](std::ptrdiff_t i) { return (e[i / kChunkBits] >> (i % kChunkBits)) & 1u; };
    bool first = true;
    for (std::ptrdiff_t i = std::ptrdiff_t(bits) - 1; i >= 0;) {
        if (terminateRequested()) return false;
        if (!bit(i)) {
            ring.sqr(acc, acc);
            --i;
            continue;
        }
        std::ptrdiff_t j = std::max<std::ptrdiff_t>(i - w + 1, 0);
        while (!bit(j)) ++j;  // the window ends on a one
        std::uint32_t v = 0;
        for (std::ptrdiff_t k = i; k >= j; --k) v = 2 * v + bit(k);
        const Word* odd = &table[(v >> 1) * n];
        if (first) {
            std::copy(odd, odd + n, acc);
            first = false;
        } else {
            for (std::ptrdiff_t k = i; k >= j; --k) ring.sqr(acc, acc);
            ring.mul(acc, acc, odd);
        }
        i = j - 1;
    }
    return true;
}

}  // namespace tw::numtheory
