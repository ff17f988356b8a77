// getBits and getDigits of both families against GMP, above all next to the
// powers of 2 and 10 where a count steps up and an estimate could be off.
#include <gmp.h>
#include <gtest/gtest.h>

#include <string>

#include "radix/oracle_digits.h"
#include "support/c_families.h"
#include "tarnwick.h"

namespace {

using twtest::Mpz;

template <class F>
class DigitCounts : public twtest::ErrorStateGuard {};
TYPED_TEST_SUITE(DigitCounts, twtest::BothFamilies);

template <class F>
void expectCounts(const Mpz& v) {
    twtest::Number<F> x;
    twtest::setFromMpz(x.object(), v.v);
    const std::size_t bits = mpz_sgn(v.v) == 0 ? 0 : mpz_sizeinbase(v.v, 2);
    std::string text = v.str();
    if (text[0] == '-') text.erase(0, 1);
    EXPECT_EQ(F::getBits(x), bits) << text.size() << " digits";
    EXPECT_EQ(F::getDigits(x), text.size()) << bits << " bits";
}

TYPED_TEST(DigitCounts, NextToPowersOfTwoAndTen) {
    for (unsigned k : {1u, 2u, 27u, 28u, 29u, 63u, 64u, 83u, 84u, 85u, 90u, 91u, 200u, 1001u, 33333u, 200000u}) {
        for (long add : {-1L, 0L, 1L}) {
            Mpz two, ten;
            mpz_setbit(two.v, k);
            mpz_ui_pow_ui(ten.v, 10, k);
            if (add < 0) {
                mpz_sub_ui(two.v, two.v, 1);
                mpz_sub_ui(ten.v, ten.v, 1);
            } else {
                mpz_add_ui(two.v, two.v, unsigned(add));
                mpz_add_ui(ten.v, ten.v, unsigned(add));
            }
            expectCounts<TypeParam>(two);
            expectCounts<TypeParam>(ten);
            mpz_neg(ten.v, ten.v);
            expectCounts<TypeParam>(ten);
        }
    }
}

TYPED_TEST(DigitCounts, RandomValuesAndZero) {
    expectCounts<TypeParam>(Mpz("0"));
    gmp_randstate_t state;
    gmp_randinit_mt(state);
    gmp_randseed_ui(state, 31);
    for (unsigned bits : {5u, 40u, 100u, 1000u, 10000u, 100000u}) {
        for (int i = 0; i < 5; ++i) {
            Mpz v;
            mpz_rrandomb(v.v, state, bits);  // long runs of ones and zeros
            expectCounts<TypeParam>(v);
            mpz_urandomb(v.v, state, bits);
            expectCounts<TypeParam>(v);
        }
    }
    gmp_randclear(state);
}

TYPED_TEST(DigitCounts, DigitsReadZeroUnderTheTerminateFlag) {
    twtest::Number<TypeParam> x(123456789);
    TW_setTerminate(1);
    EXPECT_EQ(TypeParam::getDigits(x), 0u);
}

}  // namespace
