// Uniform random numbers of a given size for either radix: |size| decimal
// digits for radix 10^9, |size| bits for radix 2^28.
#pragma once

#include <cstdint>

#include "frame/error_state.h"
#include "frame/radix.h"
#include "frame/random_generator.h"
#include "frame/signed_number.h"

namespace tw {

// Digits of the size unit in one limb: 9 decimal digits or 28 bits.
template <class R>
constexpr std::uint32_t sizeUnitsPerLimb() {
    if constexpr (R::isBinary)
        return R::bitsPerLimb;
    else
        return R::decimalDigitsPerLimb;
}

// 10^k or 2^k for 1 <= k <= sizeUnitsPerLimb<R>(): the bound of a limb holding k units.
template <class R>
constexpr std::uint32_t limbBoundForUnits(std::uint32_t k) {
    if constexpr (R::isBinary)
        return std::uint32_t(1) << k;
    else
        return kPowersOfTen[k];
}

// The largest size accepted.  A decimal number of n digits has up to
// floor(n log2 10) + 1 bits; beyond 1 292 913 986 digits that count no longer
// fits the 32-bit bit count the library reports.  Binary sizes take the same
// bound, so that both types refuse the same requests at once instead of one
// of them spending seconds on a number of 2^31 bits.
template <class R>
constexpr std::uint32_t maxRandomSize() {
    return 1292913986u;
}

// x := a number uniform in [0, 10^|size|) (decimal) or [0, 2^|size|) (binary),
// negated when size < 0.  Size 0 gives 0.  A size above maxRandomSize records
// -3 and gives 0; so does storage that cannot be had.
template <class R>
void setRandom(SignedNumber<R>& x, std::int32_t size) {
    const std::uint32_t units = size < 0 ? 0u - std::uint32_t(size) : std::uint32_t(size);
    if (units > maxRandomSize<R>()) setLastError(kErrTooLarge);
    if (units == 0 || units > maxRandomSize<R>()) {
        x.setZero();
        return;
    }
    constexpr std::uint32_t perLimb = sizeUnitsPerLimb<R>();
    const std::uint32_t limbCount = (units - 1) / perLimb + 1;
    NumberRecord& r = x.rec();
    dropTextBuffers(r);
    resizeStorage(r, limbCount, true);
    if (r.allocated() < limbCount) {  // -3 recorded, the record is zero
        x.sign = 0;
        return;
    }
    // Independent uniform limbs, the top one below the power its units allow.
    const auto lock = lockLibraryGenerator();
    for (std::uint32_t i = 0; i + 1 < limbCount; ++i) r.digits[i] = randomBelow(R::base);
    r.digits[limbCount - 1] = randomBelow(limbBoundForUnits<R>(units - (limbCount - 1) * perLimb));
    normalizeIndices(r, limbCount);
    x.sign = size < 0 ? -1 : 1;
    x.normalizeSign();
}

}  // namespace tw
