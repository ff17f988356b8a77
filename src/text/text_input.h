// Reading integers from text.  Input is never refused: characters that are not
// digits are skipped and no error is recorded.
//
//  - A null or empty text, or one of white space only, gives zero.
//  - Leading space, tab, carriage return and line feed are skipped; a "-"
//    after them makes the value negative (any other character, "+" too, is
//    just the start of the rest).
//  - Until the first significant digit ("1"-"9"; in hexadecimal also A-F,
//    a-f), every character is skipped, and an "x" or "X" right after a
//    skipped "0" switches to hexadecimal, once.
//  - From there every digit of the chosen base counts and everything else is
//    ignored: "1,234,567" and "1 234 567" both read 1234567, "12abc34" reads
//    1234, "-0" is zero with sign 0.
//
// Char is char or char16_t (code units above 0xFF are never digits).  Decimal
// text is read straight into radix 10^9 limbs and hexadecimal text into radix
// 2^28 limbs, linearly; the other radix is reached through setFromDigits.
#pragma once

#include "frame/signed_number.h"

namespace tw::text {

// x := the decimal (or, after "0x", hexadecimal) value of text.
template <class R, class Char>
void parseDecimalOrHexText(SignedNumber<R>& x, const Char* text);

// x := the hexadecimal value of text: white space and one "-" as above, then
// every hexadecimal digit counts ("0x1F" and "1F" are the same value).
template <class R, class Char>
void parseHexText(SignedNumber<R>& x, const Char* text);

}  // namespace tw::text
