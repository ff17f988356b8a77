// Powers and shifts through the interface against GMP, with the size guards,
// the kept pow(x, x, e) rule and truncation toward zero.
#include <gtest/gtest.h>

#include "arith_api/arith_support.h"

namespace {

using namespace twtest;

template <class F>
class PowShift : public ErrorStateGuard {};
TYPED_TEST_SUITE(PowShift, BothFamilies);

TYPED_TEST(PowShift, PowerExamples) {
    using F = TypeParam;
    Number<F> r, a;
    auto power = [&](long base, std::uint32_t e) {
        F::set_s64(a, base);
        EXPECT_EQ(F::pow(r, a, e), r.h());
        return F::get_s64(r);
    };
    EXPECT_EQ(power(0, 0), 0);  // 0^0 is 0 here
    EXPECT_EQ(F::getSign(r), 0);
    EXPECT_EQ(power(5, 0), 1);
    EXPECT_EQ(power(-5, 0), 1);
    EXPECT_EQ(power(-2, 3), -8);
    EXPECT_EQ(power(-2, 4), 16);
    EXPECT_EQ(power(7, 1), 7);
    EXPECT_EQ(power(3, 39), 4052555153018976267);
    // pow(x, x, e) leaves x as it was.
    F::set_s64(a, 12);
    EXPECT_EQ(F::pow(a, a, 3), a.h());
    EXPECT_EQ(F::get_s64(a), 12);
}

TYPED_TEST(PowShift, PowersAgainstGmp) {
    using F = TypeParam;
    using R = typename F::Radix;
    LimbGenerator gen(6);
    Number<F> r, a;
    Mpz expected;
    for (int i = 0; i < 60; ++i) {
        const Mpz va = randomSigned<R>(gen, 1 + gen.below(i < 40 ? 3 : 12));
        const std::uint32_t e = std::uint32_t(gen.below(i < 40 ? 300 : 60));
        a.set(va);
        F::pow(r, a, e);
        mpz_pow_ui(expected, va, e);
        if (mpz_sgn(va) == 0) mpz_set_ui(expected, 0);
        ASSERT_TRUE(holds(r, expected)) << i << " e=" << e;
    }
    // Bases with zero limbs at the bottom: (radix^3 * 7)^e.
    Mpz base;
    mpz_ui_pow_ui(base, R::base, 3);
    mpz_mul_ui(base, base, 7);
    for (std::uint32_t e : {3u, 4u, 5u, 16u, 77u}) {
        a.set(base);
        F::pow(r, a, e);
        mpz_pow_ui(expected, base, e);
        ASSERT_TRUE(holds(r, expected)) << e;
    }
}

TEST(Power, BillionToTheThousandIsOneAndNineThousandZeros) {
    Number<DecimalFamily> r, a;
    HI_set_u32(a, 1000000000u);
    HI_pow(r, a, 1000);
    EXPECT_EQ(HI_getDigits(r), 9001u);
    EXPECT_EQ(HI_getTailDecZeros(r), 9000u);
    EXPECT_EQ(r.object().rec().lowIndex, 1000u);
}

TYPED_TEST(PowShift, PowerSizeGuard) {
    using F = TypeParam;
    Number<F> r, a;
    // 99^e has about 2e digits: e * (2 - 1) passes 2^32 - 1 only for e >= 2^32,
    // so a two-digit base cannot trip it; a ten-digit base can.
    F::set_u64(a, 9999999999ull);
    EXPECT_EQ(F::pow(r, a, 477218589), r.h());  // 477218589 * 9 > 2^32 - 1
    EXPECT_EQ(TW_getLastError(), TW_ERR_TOO_LARGE);
    EXPECT_EQ(F::getSign(r), 0);
}

// Results whose digit count cannot be held in 32 bits are refused, while the
// documented guard still lets every one-digit base through.
TYPED_TEST(PowShift, PowersTooLargeToCount) {
    using F = TypeParam;
    Number<F> r, a(99);
    EXPECT_EQ(F::pow(r, a, 4294967295u), r.h());  // e * (2 - 1) is not above the limit
    EXPECT_EQ(TW_getLastError(), TW_ERR_TOO_LARGE);
    EXPECT_EQ(F::getSign(r), 0);
    TW_setTerminate(0);
    F::set_s64(a, 9);
    F::set_s64(r, 5);
    TW_setTerminate(1);  // 9^4294967295 is allowed: stop it at once
    F::pow(r, a, 4294967295u);
    EXPECT_EQ(TW_getLastError(), TW_ERR_STOPPED);
}

TEST(DecimalShifts, ResultTooLargeToCount) {
    Number<DecimalFamily> x(123);
    EXPECT_EQ(HI_decLShift(x, 4294967293u), x.h());
    EXPECT_EQ(TW_getLastError(), TW_ERR_TOO_LARGE);
    EXPECT_EQ(HI_getSign(x), 0);
    TW_setTerminate(0);
}

TYPED_TEST(PowShift, BitShiftsAgainstGmp) {
    using F = TypeParam;
    using R = typename F::Radix;
    LimbGenerator gen(8);
    Number<F> x;
    Mpz expected;
    const std::uint32_t shifts[] = {0, 1, 2, 9, 10, 27, 28, 29, 31, 32, 33, 56, 100, 280, 1000};
    for (int i = 0; i < 40; ++i) {
        const Mpz v = randomSigned<R>(gen, 1 + gen.below(20));
        for (std::uint32_t k : shifts) {
            x.set(v);
            ASSERT_EQ(F::bitLShift(x, k), x.h());
            mpz_mul_2exp(expected, v, k);
            ASSERT_TRUE(holds(x, expected)) << "<< " << k;
            x.set(v);
            ASSERT_EQ(F::bitRShift(x, k), x.h());
            mpz_tdiv_q_2exp(expected, v, k);
            ASSERT_TRUE(holds(x, expected)) << ">> " << k;
        }
    }
    F::set_s64(x, -1);
    F::bitRShift(x, 1);
    EXPECT_EQ(F::getSign(x), 0);
    F::set_s64(x, -3);
    F::bitRShift(x, 1);
    EXPECT_EQ(F::get_s64(x), -1);
}

TYPED_TEST(PowShift, LeftShiftSizeGuardIsDeliberatelyStrict) {
    using F = TypeParam;
    Number<F> x(1);
    // The guard multiplies the shift by log2(10) instead of log10(2): 1 << k is
    // refused once k * log2(10) reaches 2^32 - 1 digits, although the true
    // result would have only about 0.3 k digits.
    EXPECT_EQ(F::bitLShift(x, 1292913987u), x.h());
    EXPECT_EQ(TW_getLastError(), TW_ERR_TOO_LARGE);
    EXPECT_EQ(F::getSign(x), 0);
}

TEST(DecimalShifts, AgainstGmp) {
    LimbGenerator gen(9);
    Number<DecimalFamily> x;
    Mpz expected, scale;
    for (int i = 0; i < 40; ++i) {
        const Mpz v = randomSigned<tw::DecimalRadix>(gen, 1 + gen.below(12));
        for (std::uint32_t k : {0u, 1u, 8u, 9u, 10u, 17u, 18u, 19u, 95u, 200u}) {
            mpz_ui_pow_ui(scale, 10, k);
            x.set(v);
            HI_decLShift(x, k);
            mpz_mul(expected, v, scale);
            ASSERT_TRUE(holds(x, expected)) << "<< " << k;
            x.set(v);
            HI_decRShift(x, k);
            mpz_tdiv_q(expected, v, scale);
            ASSERT_TRUE(holds(x, expected)) << ">> " << k;
        }
    }
    HI_set_s32(x, -19);
    HI_decRShift(x, 1);
    EXPECT_EQ(HI_get_s32(x), -1);
    HI_set_u64(x, 123456789123456789ull);
    HI_decRShift(x, 9);
    EXPECT_EQ(x.object().rec().topIndex, 0u);
    EXPECT_EQ(HI_get_u64(x), 123456789u);
}

}  // namespace
