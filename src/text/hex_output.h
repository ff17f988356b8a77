// Hexadecimal text of a magnitude in limbs of radix 2^28.
#pragma once

#include <cstdint>

#include "frame/number_record.h"
#include "text/text_format.h"

namespace tw::text {

// Writes sign, optional "0x" and hexadecimal digits of the non-zero magnitude
// `value` into the text buffer of width Char of `owner` (which may be `value`
// itself).  With TEXT_GROUP the digits stand in groups of four (1,ABCD) and
// "0x" is followed by a space; TEXT_LOWER_CASE picks a-f.  The limbs are read
// as a stream of 16-bit chunks, each one table group.
template <class Char>
TextView<Char> writeHexText(NumberRecord& owner, const NumberRecord& value, std::int32_t sign, unsigned flags,
                            bool withPrefix);

// Hexadecimal digits of the non-zero magnitude `value`.
std::uint32_t hexDigits(const NumberRecord& value);

}  // namespace tw::text
