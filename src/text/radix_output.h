// Text of a digit vector in any radix: radices 2 to 62 with one character a
// digit, radix 0 (2^32) and radices from 63 up as bracketed decimal numbers.
#pragma once

#include <cstdint>
#include <vector>

#include "frame/number_record.h"
#include "text/text_format.h"

namespace tw::text {

// digits: non-empty, least significant first, no zero digit on top, each below radix.

// Radix 2..62: alphabet 0-9A-Z (a-z with TEXT_LOWER_CASE) up to 36, 0-9A-Za-z
// above.  With TEXT_GROUP and groupLength > 0 a separator follows every
// groupLength digits counted from the right.  Radix 16 gets "0x" (and a space
// when grouping).  Returns no text when the terminate flag is raised meanwhile.
template <class Char>
TextView<Char> writeRadixText(NumberRecord& owner, const std::vector<std::uint32_t>& digits, std::uint32_t radix,
                              std::int32_t sign, unsigned flags, std::uint32_t groupLength);

// Radix 0 or >= 63: each digit in decimal, zero-padded to the width of the
// largest digit (10 for radix 0) and put in square brackets: [07][99][00] in
// radix 100.  With TEXT_GROUP a separator stands between the brackets.
template <class Char>
TextView<Char> writeBracketedText(NumberRecord& owner, const std::vector<std::uint32_t>& digits, std::uint32_t radix,
                                  std::int32_t sign, unsigned flags);

}  // namespace tw::text
