// Products, quotients and remainders through the interface against GMP: the
// ladder's rung boundaries for both families, aliasing, the sign conventions
// of each division, and zero divisors.
#include <gtest/gtest.h>

#include "arith_api/arith_support.h"

namespace {

using namespace twtest;

template <class F>
class MulDiv : public ErrorStateGuard {};
TYPED_TEST_SUITE(MulDiv, BothFamilies);

TYPED_TEST(MulDiv, ProductsAtRungBoundariesAndLopsided) {
    using F = TypeParam;
    using R = typename F::Radix;
    LimbGenerator gen(3);
    Number<F> r, a, b;
    Mpz expected;
    const std::size_t shorter[] = {1, 2, 63, 64, 65, 128, 129, 192, 193, 256, 257, 511, 512, 700};
    for (std::size_t s : shorter) {
        for (std::size_t longer : {s, s + 1, 3 * s + 5, 9 * s}) {
            const Mpz va = randomSigned<R>(gen, longer), vb = randomSigned<R>(gen, s);
            a.set(va);
            b.set(vb);
            ASSERT_EQ(F::mul(r, a, b), r.h());
            mpz_mul(expected, va, vb);
            ASSERT_TRUE(holds(r, expected)) << s << " x " << longer;
            ASSERT_EQ(F::mul(r, b, b), r.h());  // squaring ladder
            mpz_mul(expected, vb, vb);
            ASSERT_TRUE(holds(r, expected)) << s << " squared";
        }
    }
}

TYPED_TEST(MulDiv, ProductAliasingAndUnits) {
    using F = TypeParam;
    using R = typename F::Radix;
    LimbGenerator gen(4);
    Number<F> r, a, b;
    const Mpz va = randomSigned<R>(gen, 40), vb = randomSigned<R>(gen, 33);
    Mpz ab, aa;
    mpz_mul(ab, va, vb);
    mpz_mul(aa, va, va);
    a.set(va); b.set(vb);
    F::mul(a, a, b);
    EXPECT_TRUE(holds(a, ab));
    a.set(va);
    F::mul(b, a, b);
    EXPECT_TRUE(holds(b, ab));
    F::mul(r, a, a);
    EXPECT_TRUE(holds(r, aa));
    F::mul(a, a, a);
    EXPECT_TRUE(holds(a, aa));
    // Zero and units.
    a.set(va);
    F::set_s32(b, 0);
    F::mul(r, a, b);
    EXPECT_EQ(F::getSign(r), 0);
    F::set_s32(b, -1);
    F::mul(r, a, b);
    Mpz neg;
    mpz_neg(neg, va);
    EXPECT_TRUE(holds(r, neg));
}

TYPED_TEST(MulDiv, ZeroLimbsAtTheBottomAreSkipped) {
    using F = TypeParam;
    using R = typename F::Radix;
    Number<F> r, a, b;
    Mpz va, vb, expected;
    mpz_ui_pow_ui(va, R::base, 100);  // 100 zero limbs below a one
    mpz_ui_pow_ui(vb, R::base, 100);
    a.set(va); b.set(vb);
    F::mul(r, a, b);
    mpz_ui_pow_ui(expected, R::base, 200);
    EXPECT_TRUE(holds(r, expected));
    mpz_add_ui(va, va, 0);
    mpz_mul_ui(va, va, 987654321);
    mpz_ui_pow_ui(vb, R::base, 700);
    mpz_sub_ui(vb, vb, 1);
    mpz_mul_2exp(vb, vb, 0);
    Mpz shifted;
    mpz_ui_pow_ui(shifted, R::base, 37);
    mpz_mul(vb, vb, shifted);
    a.set(va); b.set(vb);
    F::mul(r, a, b);
    mpz_mul(expected, va, vb);
    EXPECT_TRUE(holds(r, expected));
}

TYPED_TEST(MulDiv, DivisionSignConventions) {
    using F = TypeParam;
    Number<F> q, r, a, b;
    auto divRem = [&](long x, long y) {
        F::set_s64(a, x);
        F::set_s64(b, y);
        EXPECT_EQ(F::divRem(q, a, b, r), q.h());
        return std::pair{F::get_s64(q), F::get_s64(r)};
    };
    EXPECT_EQ(divRem(7, 2), std::pair(3L, 1L));
    EXPECT_EQ(divRem(-7, 2), std::pair(-3L, -1L));
    EXPECT_EQ(divRem(7, -2), std::pair(-3L, 1L));
    EXPECT_EQ(divRem(-7, -2), std::pair(3L, -1L));
    EXPECT_EQ(divRem(3, 7), std::pair(0L, 3L));
    EXPECT_EQ(F::getSign(q), 0);

    auto mod = [&](long x, long y) {
        F::set_s64(a, x);
        F::set_s64(b, y);
        EXPECT_EQ(F::mod(r, a, b), r.h());
        return F::get_s64(r);
    };
    EXPECT_EQ(mod(-7, 2), -1);
    EXPECT_EQ(mod(7, -2), 1);
    EXPECT_EQ(mod(8, -2), 0);
    EXPECT_EQ(F::getSign(r), 0);

    // The 32-bit division's remainder follows the quotient's sign.
    auto divS32 = [&](long x, std::int32_t d) {
        F::set_s64(a, x);
        std::int32_t rest = 12345;
        EXPECT_EQ(F::div_s32(q, a, d, &rest), q.h());
        return std::pair{F::get_s64(q), long(rest)};
    };
    EXPECT_EQ(divS32(-7, -2), std::pair(3L, 1L));
    EXPECT_EQ(divS32(7, -2), std::pair(-3L, -1L));
    EXPECT_EQ(divS32(1, -2), std::pair(0L, -1L));
    EXPECT_EQ(divS32(-7, 2), std::pair(-3L, -1L));
    EXPECT_EQ(divS32(0, 5), std::pair(0L, 0L));
    EXPECT_EQ(divS32(-9000000000000000000, INT32_MIN), std::pair(4190951585L, 1652817920L));
    F::set_s64(a, 100);
    EXPECT_EQ(F::div_s32(q, a, 7, nullptr), q.h());
    EXPECT_EQ(F::get_s64(q), 14);
    EXPECT_EQ(F::div_s32(a, a, 7, nullptr), a.h());
    EXPECT_EQ(F::get_s64(a), 14);
}

TYPED_TEST(MulDiv, DivisionAliasingRules) {
    using F = TypeParam;
    Number<F> q(99), r(77), a(1000), b(-7);
    // Quotient into an operand.
    F::divRem(a, a, b, r);
    EXPECT_EQ(F::get_s64(a), -142);
    EXPECT_EQ(F::get_s64(r), 6);
    F::set_s64(a, 1000);
    F::divRem(b, a, b, r);
    EXPECT_EQ(F::get_s64(b), -142);
    // A remainder handle equal to a or b: quotient 0, remainder untouched.
    F::set_s64(b, -7);
    F::divRem(q, a, b, a);
    EXPECT_EQ(F::getSign(q), 0);
    EXPECT_EQ(F::get_s64(a), 1000);
    F::set_s64(q, 5);
    F::divRem(q, a, b, b);
    EXPECT_EQ(F::getSign(q), 0);
    EXPECT_EQ(F::get_s64(b), -7);
    // a divided by itself; a null remainder.
    F::divRem(q, a, a, r);
    EXPECT_EQ(F::get_s64(q), 1);
    EXPECT_EQ(F::getSign(r), 0);
    F::divRem(q, a, b, nullptr);
    EXPECT_EQ(F::get_s64(q), -142);
    // mod with every aliasing.
    F::mod(a, a, b);
    EXPECT_EQ(F::get_s64(a), 6);
    F::set_s64(a, 1000);
    F::mod(b, a, b);
    EXPECT_EQ(F::get_s64(b), 6);
    F::mod(a, a, a);
    EXPECT_EQ(F::getSign(a), 0);
    EXPECT_EQ(TW_getLastError(), 0);
}

TYPED_TEST(MulDiv, ZeroDivisor) {
    using F = TypeParam;
    Number<F> q(5), r(6), a(100), zero;
    EXPECT_EQ(F::divRem(q, a, zero, r), q.h());
    EXPECT_EQ(TW_getLastError(), TW_ERR_DIV_ZERO);
    EXPECT_EQ(F::getSign(q), 0);    // the quotient becomes 0
    EXPECT_EQ(F::get_s64(r), 6);   // the remainder is left alone
    TW_setTerminate(0);
    EXPECT_EQ(F::mod(r, a, zero), r.h());
    EXPECT_EQ(TW_getLastError(), TW_ERR_DIV_ZERO);
    EXPECT_EQ(F::getSign(r), 0);
    TW_setTerminate(0);
    std::int32_t rest = 42;
    EXPECT_EQ(F::div_s32(q, a, 0, &rest), q.h());
    EXPECT_EQ(TW_getLastError(), TW_ERR_DIV_ZERO);
    EXPECT_EQ(rest, 42);
    EXPECT_EQ(F::getSign(q), 0);
}

TYPED_TEST(MulDiv, RandomQuotientsAgainstGmp) {
    using F = TypeParam;
    using R = typename F::Radix;
    LimbGenerator gen(5);
    Number<F> q, r, a, b;
    Mpz eq, er;
    for (int i = 0; i < 250; ++i) {
        const std::size_t bn = 1 + gen.below(i < 200 ? 40 : 700);
        const std::size_t an = bn + gen.below(i < 200 ? 60 : 900);
        Mpz va = randomSigned<R>(gen, an), vb = randomSigned<R>(gen, bn);
        if (mpz_sgn(vb) == 0) mpz_set_ui(vb, 3);
        if (i % 4 == 1) {
            // Just below or above a multiple of the divisor.
            mpz_tdiv_q(eq, va, vb);
            mpz_mul(va, eq, vb);
            if (gen.next() & 1) mpz_sub_ui(va, va, 1); else mpz_add_ui(va, va, 1);
        }
        a.set(va); b.set(vb);
        F::divRem(q, a, b, r);
        mpz_tdiv_qr(eq, er, va, vb);
        ASSERT_TRUE(holds(q, eq)) << an << " / " << bn;
        ASSERT_TRUE(holds(r, er)) << an << " / " << bn;
        const std::int32_t d = std::int32_t(gen.next());
        if (d != 0) {
            std::int32_t rest;
            F::div_s32(q, a, d, &rest);
            Mpz vd;
            mpz_set_si(vd, d);
            mpz_tdiv_qr(eq, er, va, vd);
            ASSERT_TRUE(holds(q, eq));
            ASSERT_EQ(std::abs(long(rest)), std::abs(long(mpz_get_si(er))));
        }
    }
}

}  // namespace
