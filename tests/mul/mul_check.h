// Shared checks of the multiplication tests: a plain schoolbook reference,
// the GMP cross-check, and a harness that runs a kernel into a buffer with a
// sentinel limb behind the product.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>

#include "arith/kernels/mul_scratch.h"
#include "frame/radix.h"
#include "support/limb_oracle.h"

namespace twtest {

using Radices = ::testing::Types<tw::DecimalRadix, tw::BinaryRadix>;

// The product the slow way: one row at a time, one division per limb product.
template <class R>
Limbs schoolbookProduct(const Limbs& a, const Limbs& b) {
    Limbs out(a.size() + b.size(), 0);
    for (std::size_t j = 0; j < b.size(); ++j) {
        std::uint64_t carry = 0;
        for (std::size_t i = 0; i < a.size(); ++i) {
            const std::uint64_t t = std::uint64_t(a[i]) * b[j] + out[i + j] + carry;
            out[i + j] = Limb(t % R::base);
            carry = t / R::base;
        }
        out[a.size() + j] = Limb(carry);
    }
    return out;
}

// Marks the limb behind a result; a kernel must never write it.
inline constexpr Limb kSentinel = 0xA5A5A5A5u;

// Runs `kernel(out)` on a buffer of `n` limbs (filled with garbage first, so
// that a kernel relying on zeroed output is caught) plus one sentinel limb.
inline Limbs runKernel(std::size_t n, const std::function<void(Limb*)>& kernel) {
    Limbs buf(n + 1, 0x5EEDu);
    buf[n] = kSentinel;
    kernel(buf.data());
    EXPECT_EQ(buf[n], kSentinel) << "limb behind the product overwritten";
    buf.pop_back();
    return buf;
}

// The product must equal the schoolbook reference limb for limb and agree with GMP.
template <class R>
::testing::AssertionResult isProduct(const Limbs& got, const Limbs& a, const Limbs& b) {
    const Limbs want = schoolbookProduct<R>(a, b);
    if (got != want) {
        std::size_t i = 0;
        while (i < got.size() && got[i] == want[i]) ++i;
        return ::testing::AssertionFailure() << a.size() << " x " << b.size() << " limbs: first wrong limb " << i
                                             << " of " << want.size();
    }
    Mpz p;
    mpz_mul(p.v, toMpz<R>(a).v, toMpz<R>(b).v);
    if (mpz_cmp(p.v, toMpz<R>(got).v) != 0)
        return ::testing::AssertionFailure() << a.size() << " x " << b.size() << ": disagrees with GMP";
    return ::testing::AssertionSuccess();
}

// A rung as the tests call it: (out, L, l, S, s, scratch).
template <class R>
using ProductRung = void (*)(Limb*, const Limb*, std::size_t, const Limb*, std::size_t, tw::arith::LimbScratch&);
template <class R>
using SquareRung = void (*)(Limb*, const Limb*, std::size_t, tw::arith::LimbScratch&);

template <class R>
::testing::AssertionResult rungMultiplies(ProductRung<R> rung, const Limbs& L, const Limbs& S) {
    tw::arith::LimbScratch scratch;
    const Limbs got = runKernel(L.size() + S.size(), [&](Limb* out) {
        rung(out, L.data(), L.size(), S.data(), S.size(), scratch);
    });
    return isProduct<R>(got, L, S);
}

template <class R>
::testing::AssertionResult rungSquares(SquareRung<R> rung, const Limbs& a) {
    tw::arith::LimbScratch scratch;
    const Limbs got = runKernel(2 * a.size(), [&](Limb* out) { rung(out, a.data(), a.size(), scratch); });
    return isProduct<R>(got, a, a);
}

}  // namespace twtest
