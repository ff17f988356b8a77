// Bitwise AND, OR and XOR of integers in sign-magnitude: the magnitudes are
// combined as binary numbers, the signs by their own rule.  Not two's
// complement: (-6) AND 3 is 2, (-6) OR 3 is -7, (-6) XOR (-3) is 5.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "arith/convert/convert_limbs.h"
#include "arith/kernels/bitwise_spans.h"
#include "frame/error_state.h"
#include "frame/radix.h"
#include "frame/signed_number.h"

namespace tw::arith {

// The sign of x op y from the two signs; zero counts as non-negative.
template <BitOp Op>
constexpr std::int32_t combinedSign(std::int32_t x, std::int32_t y) {
    const bool xNegative = x < 0, yNegative = y < 0;
    bool negative;
    if constexpr (Op == BitOp::And)
        negative = xNegative && yNegative;
    else if constexpr (Op == BitOp::Or)
        negative = xNegative || yNegative;
    else
        negative = xNegative != yNegative;
    return negative ? -1 : 1;
}

// |x| := |x| op b[0..bn) with x in radix 2^28 and b in the same radix.
template <BitOp Op>
void combineMagnitudeInPlace(NumberRecord& x, const Limb* b, std::size_t bn) {
    const std::size_t an = x.usedLimbs();
    const std::size_t n = combinedLength<Op>(an, bn);
    if (n > an) resizeStorage(x, std::uint32_t(n), false);
    if (x.allocated() < n) return;  // storage exhausted: -3 recorded, x is zero
    combineBitwiseSpans<Op, BinaryRadix>(x.digits, x.digits, an, b, bn);
    std::fill(x.digits + n, x.digits + std::max(an, n), Limb(0));  // AND drops x's extra limbs
    normalizeIndices(x, std::uint32_t(std::max(an, n)));
}

// x := x op y for numbers of one radix.  A decimal magnitude passes through
// radix 2^28 (convertLimbs) both ways.  y may be x itself.  Under a
// raised terminate flag, operands that need combining give zero.
template <BitOp Op, class R>
void bitwiseInPlace(SignedNumber<R>& x, const SignedNumber<R>& y) {
    NumberRecord& rx = x.rec();
    dropTextBuffers(rx);
    const std::int32_t sign = combinedSign<Op>(x.sign, y.sign);
    if (&x == &y) {
        // x AND x = x OR x = x; x XOR x = 0.
        if constexpr (Op == BitOp::Xor) x.setZero();
        x.normalizeSign();
        return;
    }
    if (y.isZero()) {
        // x OR 0 = x XOR 0 = x, the sign included; x AND 0 = 0.
        if constexpr (Op == BitOp::And) x.setZero();
        x.normalizeSign();
        return;
    }
    if (terminateRequested()) {  // a long operation under a raised flag yields zero
        x.setZero();
        return;
    }
    const NumberRecord& ry = y.rec();
    if constexpr (R::isBinary) {
        combineMagnitudeInPlace<Op>(rx, ry.digits, ry.usedLimbs());
    } else {
        std::vector<Limb> bx = convertLimbs<R, BinaryRadix>(rx.digits, rx.usedLimbs());
        const std::vector<Limb> by = convertLimbs<R, BinaryRadix>(ry.digits, ry.usedLimbs());
        const std::size_t n = combinedLength<Op>(bx.size(), by.size());
        bx.resize(std::max(bx.size(), n));
        combineBitwiseSpans<Op, BinaryRadix>(bx.data(), bx.data(), bx.size(), by.data(), by.size());
        const std::vector<Limb> back = convertLimbs<BinaryRadix, R>(bx.data(), n);
        resizeStorage(rx, std::uint32_t(back.size()), true);
        if (rx.allocated() >= back.size()) {
            std::copy(back.begin(), back.end(), rx.digits);
            normalizeIndices(rx, std::uint32_t(back.size()));
        }
    }
    x.sign = sign;
    x.normalizeSign();
}

// r := a op b with the call frame's aliasing: equal operands need no
// combining (a copy of a, or zero for XOR); a result equal to an operand
// works in place (op is commutative); otherwise r starts as a copy of a.
template <BitOp Op, class R>
void bitwise(SignedNumber<R>& r, const SignedNumber<R>& a, const SignedNumber<R>& b) {
    if (&a == &b) {
        if constexpr (Op == BitOp::Xor) {
            r.setZero();
        } else if (&r != &a) {
            r = a;
        }
        return;
    }
    if (&r == &b) {
        bitwiseInPlace<Op>(r, a);
        return;
    }
    if (&r != &a) r = a;
    bitwiseInPlace<Op>(r, b);
}

}  // namespace tw::arith
