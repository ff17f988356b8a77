// Setting numbers from machine integers and reading them back.
// Works for both radices: a 64-bit magnitude takes at most three limbs of
// either 10^9 or 2^28, and three limbs of either fit 128 bits.
#pragma once

#include <cstdint>
#include <optional>

#include "frame/signed_number.h"

namespace tw {

// x := sign * magnitude (sign is forced to 0 for a zero magnitude).
template <class R>
void setMagnitude64(SignedNumber<R>& x, std::int32_t sign, std::uint64_t magnitude) {
    NumberRecord& r = x.rec();
    dropTextBuffers(r);
    resizeStorage(r, R::limbsFor64, true);
    for (unsigned i = 0; magnitude != 0; ++i) {
        r.digits[i] = Limb(magnitude % R::base);
        magnitude /= R::base;
    }
    normalizeIndices(r, R::limbsFor64);
    x.sign = sign;
    x.normalizeSign();
}

template <class R> void setU64(SignedNumber<R>& x, std::uint64_t v) { setMagnitude64(x, 1, v); }
template <class R> void setS64(SignedNumber<R>& x, std::int64_t v) {
    // Negating in unsigned arithmetic gives -2^63 the magnitude 2^63.
    const std::uint64_t magnitude = v < 0 ? 0 - std::uint64_t(v) : std::uint64_t(v);
    setMagnitude64(x, v < 0 ? -1 : 1, magnitude);
}

// The magnitude when it fits 64 bits.
template <class R>
std::optional<std::uint64_t> magnitudeU64(const SignedNumber<R>& x) {
    const NumberRecord& r = x.rec();
    if (r.topIndex >= R::limbsFor64) return std::nullopt;
    u128 v = 0;
    for (std::uint32_t i = r.topIndex + 1; i-- > 0;) v = v * R::base + r.digits[i];
    if (v > UINT64_MAX) return std::nullopt;
    return std::uint64_t(v);
}

template <class R>
std::optional<std::uint32_t> magnitudeU32(const SignedNumber<R>& x) {
    const auto m = magnitudeU64(x);
    if (!m || *m > UINT32_MAX) return std::nullopt;
    return std::uint32_t(*m);
}

template <class R> std::uint64_t getU64(const SignedNumber<R>& x) {
    return x.sign < 0 ? 0 : magnitudeU64(x).value_or(0);
}
template <class R> std::uint32_t getU32(const SignedNumber<R>& x) {
    return x.sign < 0 ? 0 : magnitudeU32(x).value_or(0);
}

template <class R> std::int64_t getS64(const SignedNumber<R>& x) {
    const std::uint64_t m = magnitudeU64(x).value_or(0);
    constexpr std::uint64_t limit = std::uint64_t(1) << 63;
    if (x.sign < 0) return m <= limit ? std::int64_t(0 - m) : 0;
    return m < limit ? std::int64_t(m) : 0;
}
template <class R> std::int32_t getS32(const SignedNumber<R>& x) {
    const std::uint32_t m = magnitudeU32(x).value_or(0);
    constexpr std::uint32_t limit = std::uint32_t(1) << 31;
    if (x.sign < 0) return m <= limit ? std::int32_t(0 - m) : 0;
    return m < limit ? std::int32_t(m) : 0;
}

}  // namespace tw
