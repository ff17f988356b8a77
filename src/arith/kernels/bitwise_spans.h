// Bitwise AND, OR and XOR of limb spans in a power-of-two radix, where limbs
// are bit fields.  Magnitudes only: the signs are the number layer's business.
#pragma once

#include <algorithm>
#include <cstddef>

#include "frame/radix.h"

namespace tw::arith {

enum class BitOp { And, Or, Xor };

template <BitOp Op>
constexpr Limb combineLimbs(Limb a, Limb b) {
    if constexpr (Op == BitOp::And)
        return a & b;
    else if constexpr (Op == BitOp::Or)
        return a | b;
    else
        return a ^ b;
}

// Limbs in the result of combining spans of an and bn limbs: AND stops with
// the shorter span, OR and XOR keep the longer one's extra limbs.
template <BitOp Op>
constexpr std::size_t combinedLength(std::size_t an, std::size_t bn) {
    return Op == BitOp::And ? std::min(an, bn) : std::max(an, bn);
}

// out[0..combinedLength(an, bn)) := a[0..an) op b[0..bn), limb by limb, in a
// power-of-two radix (where limbs are bit fields).  out may equal a or b.
// Zero limbs at the top are not removed.  Linear.
template <BitOp Op, class R>
void combineBitwiseSpans(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    static_assert(R::isBinary, "limbs are bit fields only in a power-of-two radix");
    const std::size_t common = std::min(an, bn);
    for (std::size_t i = 0; i < common; ++i) out[i] = combineLimbs<Op>(a[i], b[i]);
    if constexpr (Op != BitOp::And) {
        // x OR 0 = x XOR 0 = x on the longer span's extra limbs.
        const Limb* rest = an > bn ? a : b;
        if (out != rest) std::copy(rest + common, rest + std::max(an, bn), out + common);
    }
}

}  // namespace tw::arith
