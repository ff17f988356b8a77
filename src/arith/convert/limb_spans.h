// Small span helpers of the conversion engine: trimmed products into vectors,
// word multiply-adds, and the shifted addition of binary limbs that applies a
// power of two inside a radix power as a shift instead of a product.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "arith/kernels/fast_product.h"
#include "arith/kernels/multiply.h"
#include "frame/radix.h"

namespace tw::convert {

using Limbs = std::vector<Limb>;

inline void trimTop(Limbs& x) {
    while (!x.empty() && x.back() == 0) x.pop_back();
}

using arith::multiplyFast;

// a * b, trimmed; empty when either is empty (zero).  a and b may be the same
// vector (a square).
template <class R>
Limbs productOf(const Limbs& a, const Limbs& b) {
    if (a.empty() || b.empty()) return {};
    Limbs out(a.size() + b.size());
    if (&a == &b)
        arith::square<R>(out.data(), a.data(), a.size());
    else
        multiplyFast<R>(out.data(), a.data(), a.size(), b.data(), b.size());
    trimTop(out);
    return out;
}

// x := x * m + add for m <= 2^32, add < 2^35; x grows at the top as needed.
// limb * m + carry stays below 2^30 * 2^32 + 2^35 < 2^63.
template <class R>
void mulAddWord(Limbs& x, std::uint64_t m, std::uint64_t add) {
    std::uint64_t carry = add;
    for (Limb& limb : x) {
        const std::uint64_t t = std::uint64_t(limb) * m + carry;
        limb = Limb(t % R::base);
        carry = t / R::base;
    }
    for (; carry != 0; carry /= R::base) x.push_back(Limb(carry % R::base));
}

// acc[0..size) += src[0..n) * 2^(28 * offset + bits) (binary limbs, bits < 28).
// The sum must fit acc's size limbs.
inline void addShiftedBits(Limb* acc, std::size_t size, std::size_t offset, const Limb* src, std::size_t n,
                           unsigned bits) {
    constexpr unsigned width = BinaryRadix::bitsPerLimb;
    Limb* out = acc + offset;
    const std::size_t room = size - offset;
    Limb below = 0;  // bits of the previous source limb pushed up into this one
    Limb carry = 0;
    std::size_t i = 0;
    for (; i < n; ++i) {
        const Limb moved = ((src[i] << bits) & BinaryRadix::mask) | below;
        below = bits ? src[i] >> (width - bits) : 0;
        const Limb s = out[i] + moved + carry;
        carry = s >> width;
        out[i] = s & BinaryRadix::mask;
    }
    for (Limb rest = below + carry; rest != 0 && i < room; ++i) {
        const Limb s = out[i] + rest;
        rest = s >> width;
        out[i] = s & BinaryRadix::mask;
    }
}

}  // namespace tw::convert
