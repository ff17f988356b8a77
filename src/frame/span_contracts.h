// Operand-overlap contracts of the span kernels, asserted at their entries.
// The sanitizer build keeps assertions on, so every test run there checks
// that no caller hands a kernel a result that partly overlaps an operand.
#pragma once

#include <cassert>
#include <cstddef>

#include "frame/radix.h"

namespace tw {

// [a, a + an) and [b, b + bn) share no limb.
inline bool spansDisjoint(const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    return a + an <= b || b + bn <= a;
}

// out may be exactly the operand (in place) or lie apart from it.
inline bool spansSameOrDisjoint(const Limb* out, std::size_t on, const Limb* a, std::size_t an) {
    return out == a || spansDisjoint(out, on, a, an);
}

}  // namespace tw
