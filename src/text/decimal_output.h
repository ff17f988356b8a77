// Decimal text of a magnitude in limbs of radix 10^9.
#pragma once

#include <cstdint>

#include "frame/number_record.h"
#include "text/text_format.h"

namespace tw::text {

// Writes sign and decimal digits of the non-zero magnitude `value` into the
// text buffer of width Char of `owner` (which may be `value` itself).  With
// TEXT_GROUP the digits stand in groups of three (1,234,567).  Two divisions
// by 10^4 a limb (by 10^3 when grouping); limbs below lowIndex cost a copy.
template <class Char>
TextView<Char> writeDecimalText(NumberRecord& owner, const NumberRecord& value, std::int32_t sign, unsigned flags);

// Decimal digits of the non-zero magnitude `value`.
std::uint32_t decimalDigits(const NumberRecord& value);

}  // namespace tw::text
