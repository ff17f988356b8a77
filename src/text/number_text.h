// Text output of a number of either radix: the choice of writer and the
// conversions between the two limb radices that it needs.  Every function
// answers no text (null data) while the terminate flag is raised, checked on
// entry and after each conversion; zero is always "0".
#pragma once

#include <cstdint>

#include "frame/signed_number.h"
#include "text/text_format.h"

namespace tw::text {

// The number's own text: decimal for radix 10^9, "0x" hexadecimal for 2^28.
template <class Char, class R>
TextView<Char> naturalText(SignedNumber<R>& x, unsigned flags);

// Hexadecimal text: with "0x" for radix 10^9, bare digits for 2^28.
template <class Char, class R>
TextView<Char> hexText(SignedNumber<R>& x, unsigned flags);

// Text in `radix` (0 stands for 2^32; 1 records -7 and gives no text).
// Radix 10 and 16 take the decimal and hexadecimal writers unless grouped by
// a length other than 3 or 4; radices 0 and >= 63 take the bracketed form.
// *digitCount (may be null) receives the number of digits in the radix (1 for
// zero); when no text comes back its value is unspecified.
template <class Char, class R>
TextView<Char> radixText(SignedNumber<R>& x, std::uint32_t radix, unsigned flags, std::uint32_t groupLength,
                         std::uint32_t* digitCount);

}  // namespace tw::text
