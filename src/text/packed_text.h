// The packed text form of a binary number: its magnitude as digits of radix
// 2^8 (char) or 2^16 (char16_t), one character each, most significant first,
// then a zero character.  Zero digits inside the number are zero characters,
// so the length is known to the caller from the bit count, not from the text.
#pragma once

#include "frame/signed_number.h"

namespace tw::text {

// The packed text of |x| in the text buffer of width Char; null for zero and
// while the terminate flag is raised.
template <class Char>
const Char* packedText(BinaryNumber& x);

// x := the non-negative value of the packed text up to its first zero
// character; zero for a null or empty text and while the terminate flag is raised.
template <class Char>
void setFromPackedText(BinaryNumber& x, const Char* text);

}  // namespace tw::text
