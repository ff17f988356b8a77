// The version text and the count of exported functions.
#pragma once

#include <cstdint>

#include "tarnwick.h"

namespace tw {

// "Tarnwick V6.0.0.3" in constant storage, 8-bit and 16-bit.
const char* versionTextA();
const tw_wchar* versionTextW();

// The number of exported functions in the groups whose bits are set in mask:
// 0x1 TW_, 0x2 HI_, 0x4 HX_, 0x8 RC_, and 0x10000 .. 0x80000 the member
// functions of the class interface (library-wide, decimal, binary, converter).
// Fixed counts of this release; other bits add nothing.
std::uint32_t exportedFunctionCount(std::uint32_t mask);

}  // namespace tw
