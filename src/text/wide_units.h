// The library writes and reads 16-bit text as char16_t; the C interface names
// the same code units tw_wchar.  These casts are the only place they meet.
#pragma once

#include "tarnwick.h"

namespace tw::text {

static_assert(sizeof(tw_wchar) == sizeof(char16_t), "16-bit text is one char16_t a code unit");

inline const tw_wchar* toWide(const char16_t* text) { return reinterpret_cast<const tw_wchar*>(text); }
inline const char16_t* fromWide(const tw_wchar* text) { return reinterpret_cast<const char16_t*>(text); }

}  // namespace tw::text
