// Conversion of magnitudes between a limb record of either radix and a vector
// of digits in any radix from 2 to 2^32 (radix 0 stands for 2^32).  Both
// directions are sub-quadratic (divide and conquer over powers of the radix)
// and poll the terminate flag; on a raised flag the result is unspecified and
// callers make it zero.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "frame/number_record.h"

namespace tw {

// x := the value of digits[0..count) in sourceRadix, least significant first,
// as a magnitude of radix R.  Zero digits at either end are allowed, and so
// are digits not below the radix (they count as digit * radix^i all the same;
// radix 1 therefore sums the digits).  Drops x's text buffers; the sign is the
// caller's business.
template <class R>
void setFromDigits(NumberRecord& x, std::uint32_t sourceRadix, const std::uint32_t* digits, std::size_t count);

// The digits of the magnitude x (radix R) in targetRadix, least significant
// first, with no zero digit above the most significant one; empty for zero.
// Radix 1 has no digits to give: -7 is recorded and the result is empty.
template <class R>
std::vector<std::uint32_t> toDigits(const NumberRecord& x, std::uint32_t targetRadix);

}  // namespace tw
