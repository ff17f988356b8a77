// Conversion between the two integer types: the limbs of one are the digits
// of the other's setFromDigits, in radix 10^9 or 2^28.
#pragma once

#include "frame/signed_number.h"
#include "arith/convert/digit_conversion.h"

namespace tw {

// x := y (sign copied, magnitude converted from radix From to radix To).
template <class To, class From>
void setFromOtherRadix(SignedNumber<To>& x, const SignedNumber<From>& y) {
    setFromDigits<To>(x.rec(), From::base, y.limbs(), y.rec().topIndex + 1);
    x.sign = y.sign;
    x.normalizeSign();
}

}  // namespace tw
