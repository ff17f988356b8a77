// Conversion of a magnitude between the two limb radices as a limb vector.
// Short numbers go by repeated division by the target radix, which needs no
// temporaries; from kConvertByDivisionMax limbs on, the divide-and-conquer
// conversion of setFromDigits takes over.
#pragma once

#include <cstddef>
#include <vector>

#include "arith/kernels/divide_by_limb.h"
#include "arith/tuning.h"
#include "frame/number_record.h"
#include "frame/radix.h"
#include "arith/convert/digit_conversion.h"

namespace tw {

// The limbs of the value a[0..n) (radix From) in radix To, least significant
// first, without zero limbs at the top (empty for zero, and when the terminate
// flag stops a long conversion).
template <class From, class To>
std::vector<Limb> convertLimbs(const Limb* a, std::size_t n) {
    while (n > 0 && a[n - 1] == 0) --n;
    if (n >= convert::kConvertByDivisionMax) {
        NumberRecord converted;
        setFromDigits<To>(converted, From::base, a, n);
        if (converted.isZero()) return {};
        return std::vector<Limb>(converted.digits, converted.digits + converted.topIndex + 1);
    }
    std::vector<Limb> work(a, a + n);
    std::vector<Limb> out;
    out.reserve(n + n / 2 + 1);
    while (n > 0) {
        out.push_back(arith::divideByLimb<From>(work.data(), work.data(), n, To::base));
        while (n > 0 && work[n - 1] == 0) --n;
    }
    return out;
}

}  // namespace tw
