// Factorials, double factorials, primorials, binomial coefficients and
// arrangement counts as products of prime powers.  With e(p) the exponent of
// the prime p in the result, the result is the product over the bits i of
// (the product of the primes whose e(p) has bit i)^(2^i), formed from the
// top bit down by one squaring and one product a bit, each product a
// balanced tree of primes.  The power of two (binary radix) or the common
// power of ten (decimal radix) leaves the exponents first and returns as one
// shift at the end, so no zero limb is ever multiplied and a decimal result
// prints without conversion.  A raised terminate flag makes the result zero.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <vector>

#include "arith/numbers/shifts.h"
#include "arith/numbers/signed_div.h"
#include "arith/numbers/signed_mul.h"
#include "arith/tuning.h"
#include "frame/error_state.h"
#include "frame/machine_int.h"
#include "frame/signed_number.h"
#include "numtheory/list_products.h"
#include "numtheory/prime_powers.h"

namespace tw::numtheory {

// The largest n whose n! (and n!!) keeps its decimal length within 2^32 - 1.
inline constexpr std::uint32_t kFactorialMax = 518678057;
inline constexpr std::uint32_t kDoubleFactorialMax = 1002691940;

// x := the product over the primes p <= high of p^exponent(p).
template <class R, class Exponent>
void setPrimePowerProduct(SignedNumber<R>& x, std::uint32_t high, Exponent exponent) {
    SignedNumber<R> result;
    setU64(result, 1);
    const std::uint64_t twos = high >= 2 ? exponent(2) : 0, fives = high >= 5 ? exponent(5) : 0;
    const std::uint64_t shift = R::isBinary ? twos : std::min(twos, fives);
    std::vector<std::uint32_t> byBit[64];
    int topBit = -1;
    forEachPrimeRun(high, [&](const std::uint32_t* primes, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint32_t p = primes[i];
            std::uint64_t e = exponent(p);
            if (p == 2 || (p == 5 && !R::isBinary)) e -= shift;
            if (e != 0) topBit = std::max(topBit, int(std::bit_width(e)) - 1);
            for (; e != 0; e &= e - 1) byBit[std::countr_zero(e)].push_back(p);
        }
    });
    // Squares and products go to a target distinct from their operands, so
    // the two long numbers keep their storage from bit to bit.
    SignedNumber<R> square, factor;
    for (int i = topBit; i >= 0 && !terminateRequested(); --i) {
        arith::multiplyInto(square, result, result);
        if (byBit[i].empty()) {
            result.swap(square);
            continue;
        }
        setProductOfWords(factor, byBit[i].data(), byBit[i].size());
        std::vector<std::uint32_t>().swap(byBit[i]);
        arith::multiplyInto(result, square, factor);
    }
    if constexpr (R::isBinary)
        arith::shiftLimbsLeftBits(result.rec(), shift / R::bitsPerLimb, unsigned(shift % R::bitsPerLimb));
    else
        arith::decimalShiftLeft(result, std::uint32_t(shift));
    if (terminateRequested()) result.setZero();
    x.swap(result);
}

// x := n!, or n!! when `twoStep`; beyond the limits -3 and zero.
template <class R>
void factorialInto(SignedNumber<R>& x, std::uint32_t n, bool twoStep) {
    if (terminateRequested() || n > (twoStep ? kDoubleFactorialMax : kFactorialMax)) {
        if (!terminateRequested()) setLastError(kErrTooLarge);
        x.setZero();
        return;
    }
    if (!twoStep) {
        setPrimePowerProduct(x, n, [n](std::uint32_t p) { return legendreExponent(n, p); });
    } else if (n % 2 == 0) {  // (2m)!! = 2^m m!
        const std::uint32_t m = n / 2;
        setPrimePowerProduct(x, std::max(m, 2u),
                             [m](std::uint32_t p) { return legendreExponent(m, p) + (p == 2 ? m : 0); });
    } else {  // (2m+1)!! = (2m+1)! / (2^m m!)
        const std::uint32_t m = n / 2;
        setPrimePowerProduct(x, n, [n, m](std::uint32_t p) {
            return legendreExponent(n, p) - legendreExponent(m, p) - (p == 2 ? m : 0);
        });
    }
}

// x := the product of the primes up to n (1 for n < 2).
template <class R>
void primorialInto(SignedNumber<R>& x, std::uint32_t n) {
    if (terminateRequested()) {
        x.setZero();
        return;
    }
    setPrimePowerProduct(x, n, [](std::uint32_t) { return std::uint64_t(1); });
}

// x := low * (low + 1) * ... * high for 1 <= low, high < 2^32 (1 when low > high).
template <class R>
void setProductOfRange(SignedNumber<R>& x, std::uint32_t low, std::uint32_t high) {
    std::vector<std::uint32_t> words(low <= high ? std::size_t(high - low) + 1 : 0);
    std::iota(words.begin(), words.end(), low);
    setProductOfWords(x, words.data(), words.size());
}

// Whether log10 of n! / (n - k)! / (binomial ? k! : 1) reaches 2^32 - 1 digits.
inline bool beyondDecimalLength(std::int32_t n, std::int32_t k, bool binomial) {
    const double ln = std::lgamma(n + 1.0) - std::lgamma(n - k + 1.0) - (binomial ? std::lgamma(k + 1.0) : 0.0);
    return ln / std::log(10.0) >= 4294967295.0;
}

// x := n! / (n - k)!, the arrangements of k of n things, and with `binomial`
// C(n, k) = n! / ((n - k)! k!); 0 for n < 0, k < 0 or k > n.  A small k
// multiplies the k top words (and divides by k!) instead of sieving to n.
template <class R>
void arrangementsInto(SignedNumber<R>& x, std::int32_t n, std::int32_t k, bool binomial) {
    if (terminateRequested() || n < 0 || k < 0 || k > n) {
        x.setZero();
        return;
    }
    if (binomial) k = std::min(k, n - k);
    if (beyondDecimalLength(n, k, binomial)) {
        setLastError(kErrTooLarge);
        x.setZero();
        return;
    }
    const std::uint32_t un = std::uint32_t(n), uk = std::uint32_t(k);
    if (uk < un / arith::kDirectProductShare) {
        setProductOfRange(x, un - uk + 1, un);
        if (!binomial || uk < 2) return;
        SignedNumber<R> denominator, quotient;
        factorialInto(denominator, uk, false);
        arith::divideSigned<R>(quotient, nullptr, x, denominator);
        x.swap(quotient);
        if (terminateRequested()) x.setZero();
    } else if (binomial) {
        setPrimePowerProduct(x, un, [un, uk](std::uint32_t p) {
            return legendreExponent(un, p) - legendreExponent(uk, p) - legendreExponent(un - uk, p);
        });
    } else {
        setPrimePowerProduct(x, un, [un, uk](std::uint32_t p) {
            return legendreExponent(un, p) - legendreExponent(un - uk, p);
        });
    }
}

}  // namespace tw::numtheory
