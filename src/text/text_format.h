// Pieces every text writer shares: the output flags, separators, signs and
// four-character group copies.  Text is written for one character type at a
// time (char for the A functions, char16_t for the W functions); both produce
// the same code units.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include "tarnwick.h"

namespace tw::text {

// A finished text: the pointer handed out and its length without the
// terminating zero.  A null data() means no text (terminate flag, error).
template <class Char>
using TextView = std::basic_string_view<Char>;

// Room kept in front of the digits for the longest prefix: sign, space, "0x", space.
inline constexpr std::size_t kPrefixRoom = 5;

inline bool grouping(unsigned flags) { return (flags & TEXT_GROUP) != 0; }

template <class Char>
Char separator(unsigned flags) {
    return Char((flags & TEXT_SPACE_SEPARATOR) ? ' ' : ',');
}

// Writes the sign in front of p and returns the new start: "-" for negative
// values, "+" for positive ones only with TEXT_PLUS_SIGN, either followed by a
// space with TEXT_SIGN_SPACE.  Needs two free characters before p.
template <class Char>
Char* prependSign(Char* p, std::int32_t sign, unsigned flags) {
    if (sign < 0 || (sign > 0 && (flags & TEXT_PLUS_SIGN))) {
        if (flags & TEXT_SIGN_SPACE) *--p = Char(' ');
        *--p = Char(sign < 0 ? '-' : '+');
    }
    return p;
}

// Copies one four-character table group (a single load and store).
template <class Char>
void copyGroup(Char* dst, const Char* group) {
    std::memcpy(dst, group, 4 * sizeof(Char));
}

}  // namespace tw::text
