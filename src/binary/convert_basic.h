// Conversion of a magnitude between the two limb radices by repeated division
// by the target radix.  Quadratic: for short numbers and as the reference.
#pragma once

#include <cstddef>
#include <vector>

#include "arith/divide_by_limb.h"
#include "frame/radix.h"

namespace tw {

// The limbs of the value a[0..n) (radix From) in radix To, least significant
// first, without zero limbs at the top (empty for zero).
template <class From, class To>
std::vector<Limb> convertLimbsBasic(const Limb* a, std::size_t n) {
    std::vector<Limb> work(a, a + n);
    while (n > 0 && work[n - 1] == 0) --n;
    std::vector<Limb> out;
    out.reserve(n + n / 2 + 1);
    while (n > 0) {
        out.push_back(arith::divideByLimb<From>(work.data(), work.data(), n, To::base));
        while (n > 0 && work[n - 1] == 0) --n;
    }
    return out;
}

}  // namespace tw
