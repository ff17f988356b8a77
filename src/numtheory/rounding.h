// Rounding to the n leading significant digits: decimal digits of the
// decimal type, bits of the binary type.  The digits below are cut by a shift
// (toward zero), the kept head moves one unit away from zero when the mode
// asks for it and something non-zero was cut, and the shift back restores the
// size (a carry may add a digit: 999 kept to one digit upward is 1000).
#pragma once

#include <cstdint>

#include "arith/numbers/digit_counts.h"
#include "arith/numbers/shifts.h"
#include "arith/numbers/signed_add.h"
#include "frame/compare.h"
#include "frame/signed_number.h"

namespace tw::numtheory {

enum class Rounding { Floor, Truncate, Ceil };  // toward -infinity, zero, +infinity

namespace detail {

template <class R>
void shiftDigitsRight(SignedNumber<R>& x, std::uint32_t k) {
    if constexpr (R::isBinary)
        arith::bitShiftRight(x, k);
    else
        arith::decimalShiftRight(x, k);
}
template <class R>
void shiftDigitsLeft(SignedNumber<R>& x, std::uint32_t k) {
    if constexpr (R::isBinary)
        arith::bitShiftLeft(x, k);
    else
        arith::decimalShiftLeft(x, k);
}

}  // namespace detail

// x keeps its n leading digits, the rest rounded by `mode`; n = 0, or n not
// below the digit count, leaves x as it is.
template <class R>
void roundToLeadingDigits(SignedNumber<R>& x, std::uint32_t n, Rounding mode) {
    if (n == 0 || x.isZero()) return;
    const std::uint32_t digits = R::isBinary ? bitCount(x) : decimalDigitCount(x);
    if (n >= digits) return;
    const std::uint32_t cut = digits - n;
    SignedNumber<R> head;
    head = x;
    detail::shiftDigitsRight(head, cut);
    const bool away = mode == Rounding::Ceil ? x.sign > 0 : mode == Rounding::Floor && x.sign < 0;
    if (away) {
        SignedNumber<R> back;
        back = head;
        detail::shiftDigitsLeft(back, cut);
        if (compareValues(back, x) != 0) arith::offsetByWord(head, 1, head.sign);
    }
    detail::shiftDigitsLeft(head, cut);
    x.swap(head);
}

}  // namespace tw::numtheory
