// Comparisons of magnitudes and of signed values.
#pragma once

#include <cstdint>

#include "frame/machine_int.h"
#include "frame/signed_number.h"

namespace tw {

// -1, 0, +1 for |a| <, ==, > |b|.  Compares from the top limb down to the
// higher of the two lowIndex values; below it one side has only zero limbs,
// so equal limbs so far leave the side with the lower lowIndex the larger.
int compareMagnitude(const NumberRecord& a, const NumberRecord& b);

template <class R>
int compareValues(const SignedNumber<R>& a, const SignedNumber<R>& b) {
    if (&a == &b) return 0;
    if (a.sign == 0) return -b.sign;
    if (a.sign != b.sign) return a.sign;
    const int c = compareMagnitude(a.rec(), b.rec());
    return a.sign > 0 ? c : -c;
}

inline int compareU32(std::uint32_t a, std::uint32_t b) { return a < b ? -1 : (a > b ? 1 : 0); }

// A non-zero magnitude too large for 32 bits is larger than every u32.
template <class R>
int compareMagnitudeU32(const SignedNumber<R>& a, std::uint32_t v) {
    const auto m = magnitudeU32(a);
    return m ? compareU32(*m, v) : 1;
}

template <class R>
int compareValueU32(const SignedNumber<R>& a, std::uint32_t v) {
    return a.sign < 0 ? -1 : compareMagnitudeU32(a, v);
}

template <class R>
int compareValueS32(const SignedNumber<R>& a, std::int32_t v) {
    const int signV = v < 0 ? -1 : (v > 0 ? 1 : 0);
    if (a.sign == 0) return -signV;
    if (a.sign != signV) return a.sign;
    const std::uint32_t absV = v < 0 ? 0u - std::uint32_t(v) : std::uint32_t(v);
    const int c = compareMagnitudeU32(a, absV);
    return a.sign > 0 ? c : -c;
}

}  // namespace tw
