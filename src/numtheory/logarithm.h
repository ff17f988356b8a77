// Integer logarithms: floor(log_|b| |a|), exact.  A double estimate from the
// top limbs, then settled by comparing |a| with powers of |b| built through
// the library's power: the estimate is off by at most one, so one power and
// one or two products or exact divisions decide it.
#pragma once

#include <cstdint>

#include "arith/numbers/digit_counts.h"
#include "arith/numbers/power.h"
#include "arith/numbers/signed_div.h"
#include "arith/numbers/signed_mul.h"
#include "frame/compare.h"
#include "frame/error_state.h"
#include "frame/signed_number.h"

namespace tw::numtheory {

// floor(log_|b| |a|).  A zero a or |b| < 2 records -6 and gives 0; so does a
// raised terminate flag (without the error).
template <class R>
std::uint32_t logarithm(const SignedNumber<R>& a, const SignedNumber<R>& b) {
    if (a.isZero() || compareMagnitudeU32(b, 2) < 0) {
        setLastError(kErrLog);
        return 0;
    }
    if (compareMagnitude(a.rec(), b.rec()) < 0) return 0;
    // The radix's own base: the digit count less one.
    if (compareMagnitudeU32(b, R::isBinary ? 2 : 10) == 0) {
        const std::uint32_t digits = R::isBinary ? bitCount(a) : decimalDigitCount(a);
        return digits == 0 ? 0 : digits - 1;
    }
    SignedNumber<R> base;
    base = b;
    base.sign = 1;
    const double estimate = arith::log10Magnitude<R>(a.rec()) / arith::log10Magnitude<R>(base.rec());
    std::uint64_t k = estimate < 1 ? 1 : estimate > 4294967295.0 ? 4294967295u : std::uint64_t(estimate);
    SignedNumber<R> p;
    p = base;
    arith::powerInPlace(p, std::uint32_t(k));
    // Down while b^k > |a| (k = 1 never is: |a| >= |b|), then up while b^(k+1) <= |a|.
    while (!terminateRequested() && compareMagnitude(p.rec(), a.rec()) > 0) {
        SignedNumber<R> q;
        arith::divideSigned<R>(q, nullptr, p, base);
        p.swap(q);
        --k;
    }
    for (;;) {
        if (terminateRequested()) return 0;
        SignedNumber<R> next;
        arith::multiplyInto(next, p, base);
        if (compareMagnitude(next.rec(), a.rec()) > 0 || k == 4294967295u) break;
        p.swap(next);
        ++k;
    }
    return std::uint32_t(k);
}

// floor(log_b |a|) for a machine word b.
template <class R>
std::uint32_t logarithmWord(const SignedNumber<R>& a, std::uint32_t b) {
    SignedNumber<R> base;
    setU64(base, b);
    return logarithm(a, base);
}

}  // namespace tw::numtheory
