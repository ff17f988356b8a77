// Shared pieces of the arithmetic interface tests: random signed operands and
// a check that a handle holds an expected value in normal form.
#pragma once

#include "support/c_families.h"

namespace twtest {

// A signed random value of `limbs` limbs in radix R (sometimes zero).
template <class R>
Mpz randomSigned(LimbGenerator& gen, std::size_t limbs) {
    Mpz v = toMpz<R>(gen.limbs<R>(limbs));
    const auto pick = gen.next() % 16;
    if (pick == 0) mpz_set_ui(v, 0);
    if (pick & 2) mpz_neg(v, v);
    return v;
}

template <class F>
::testing::AssertionResult holds(const Number<F>& x, mpz_srcptr expected) {
    const auto normal = recordIsNormal(x.object());
    if (!normal) return normal;
    const Mpz got = x.value();
    if (mpz_cmp(got, expected) != 0) {
        Mpz e;
        mpz_set(e, expected);
        return ::testing::AssertionFailure() << "got " << got.str() << " expected " << e.str();
    }
    return ::testing::AssertionSuccess();
}

template <class F>
::testing::AssertionResult holds(const Number<F>& x, long expected) {
    Mpz e;
    mpz_set_si(e, expected);
    return holds(x, e);
}

}  // namespace twtest
