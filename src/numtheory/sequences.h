// Fibonacci and Lucas numbers of signed indices by index doubling on
// squares: from F(k) and F(k-1),
//   F(2k-1) = F(k)^2 + F(k-1)^2,  F(2k+1) = 4 F(k)^2 - F(k-1)^2 + 2 (-1)^k,
//   F(2k) = F(2k+1) - F(2k-1),
// two squares a bit of the index, read from the top.  L(n) = F(n) + 2 F(n-1).
// Negative indices: F(-m) = (-1)^(m+1) F(m) and L(-m) = (-1)^m L(m).  A
// raised terminate flag makes the result zero.
#pragma once

#include <bit>
#include <cstdint>

#include "arith/numbers/signed_add.h"
#include "arith/numbers/signed_mul.h"
#include "frame/error_state.h"
#include "frame/machine_int.h"
#include "frame/signed_number.h"

namespace tw::numtheory {

// f := F(m) and g := F(m-1) for m >= 1.
template <class R>
void fibonacciPair(SignedNumber<R>& f, SignedNumber<R>& g, std::uint32_t m) {
    setU64(f, 1);  // k = 1: F(1), F(0)
    g.setZero();
    SignedNumber<R> below;
    for (int bit = std::bit_width(m) - 2; bit >= 0 && !terminateRequested(); --bit) {
        arith::multiplyInto(f, f, f);  // F(k)^2
        arith::multiplyInto(g, g, g);  // F(k-1)^2
        below = f;
        arith::addInPlace(below, g);   // F(2k-1)
        arith::multiplyBySigned(f, 4);
        arith::subtractInPlace(f, g);  // 4 F(k)^2 - F(k-1)^2
        const std::uint32_t k = m >> (bit + 1);
        if (k % 2 == 0)
            arith::addWord(f, 2);
        else
            arith::subtractWord(f, 2);  // F(2k+1): at least 2 before the step, so never past zero
        if ((m >> bit) & 1) {
            g = f;
            arith::subtractInPlace(g, below);  // (F(2k+1), F(2k))
        } else {
            arith::subtractInPlace(f, below);
            g.swap(below);                     // (F(2k), F(2k-1))
        }
    }
}

// x := F(n), or L(n) with `lucas` (L(0) = 2).
template <class R>
void fibonacciInto(SignedNumber<R>& x, std::int32_t n, bool lucas) {
    const std::uint32_t m = n < 0 ? std::uint32_t(0) - std::uint32_t(n) : std::uint32_t(n);
    SignedNumber<R> f, g;
    if (terminateRequested()) {
        x.setZero();
        return;
    }
    if (m == 0) {
        setU64(f, lucas ? 2 : 0);
    } else {
        fibonacciPair(f, g, m);
        if (lucas) {
            arith::multiplyBySigned(g, 2);
            arith::addInPlace(f, g);
        }
        if (n < 0 && m % 2 == (lucas ? 1u : 0u)) f.negate();
    }
    if (terminateRequested()) f.setZero();
    x.swap(f);
}

}  // namespace tw::numtheory
