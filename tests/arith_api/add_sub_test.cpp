// Signed addition and subtraction through the interface, against GMP, with
// every aliasing pattern, and the machine-word operations with their kept
// sign rules.
#include <gtest/gtest.h>

#include "arith_api/arith_support.h"

namespace {

using namespace twtest;

template <class F>
class AddSub : public ErrorStateGuard {};
TYPED_TEST_SUITE(AddSub, BothFamilies);

// Runs op under all five aliasing patterns of (result, a, b) and compares with
// GMP's answer for the values a and b actually passed.
template <class F, class Op, class Ref>
void checkAliasing(mpz_srcptr va, mpz_srcptr vb, Op op, Ref ref) {
    Number<F> r, a, b;
    Mpz expected;
    auto reset = [&] { a.set(va); b.set(vb); r.set(vb); };
    reset();
    ref(expected.v, va, vb);
    ASSERT_EQ(op(r, a, b), r.h());
    ASSERT_TRUE(holds(r, expected)) << "distinct";
    ASSERT_TRUE(holds(a, va));
    ASSERT_TRUE(holds(b, vb));
    reset();
    ASSERT_EQ(op(a, a, b), a.h());
    ASSERT_TRUE(holds(a, expected)) << "result is a";
    reset();
    ASSERT_EQ(op(b, a, b), b.h());
    ASSERT_TRUE(holds(b, expected)) << "result is b";
    reset();
    ref(expected.v, va, va);
    ASSERT_EQ(op(r, a, a), r.h());
    ASSERT_TRUE(holds(r, expected)) << "a is b";
    ASSERT_EQ(op(a, a, a), a.h());
    ASSERT_TRUE(holds(a, expected)) << "all three the same";
}

TYPED_TEST(AddSub, RandomAgainstGmpWithAliasing) {
    using F = TypeParam;
    using R = typename F::Radix;
    LimbGenerator gen(1);
    for (int i = 0; i < 300; ++i) {
        const Mpz va = randomSigned<R>(gen, 1 + gen.below(30));
        Mpz vb = randomSigned<R>(gen, 1 + gen.below(30));
        if (i % 9 == 0) mpz_neg(vb, va);   // opposite sign, equal magnitude
        if (i % 13 == 0) mpz_set(vb, va);
        checkAliasing<F>(va, vb, F::add, mpz_add);
        checkAliasing<F>(va, vb, F::sub, mpz_sub);
    }
}

TYPED_TEST(AddSub, CarriesAndBorrowsAcrossLimbs) {
    using F = TypeParam;
    using R = typename F::Radix;
    Number<F> r, a, b;
    Mpz top, one;
    mpz_ui_pow_ui(top, R::base, 20);
    mpz_set_ui(one, 1);
    Mpz allMax;
    mpz_sub_ui(allMax, top, 1);
    a.set(allMax);
    b.set(one);
    F::add(r, a, b);
    EXPECT_TRUE(holds(r, top));  // carry out of the top limb
    F::sub(r, r, b);
    EXPECT_TRUE(holds(r, allMax));  // borrow through every limb
    F::set_u32(a, R::base - 1);
    F::add_u32(r, a, 1);
    EXPECT_EQ(r.object().rec().topIndex, 1u);
    EXPECT_TRUE(holds(r, long(R::base)));
    // Opposite signs, equal magnitudes: zero with sign 0.
    F::set_s64(a, -123456789012345);
    F::set_s64(b, 123456789012345);
    F::add(r, a, b);
    EXPECT_EQ(F::getSign(r), 0);
    EXPECT_TRUE(holds(r, 0L));
}

TYPED_TEST(AddSub, WordOperationsKeepTheirSignRules) {
    using F = TypeParam;
    Number<F> r, a;
    auto addU32 = [&](long x, std::uint32_t n) { F::set_s64(a, x); F::add_u32(r, a, n); return F::get_s64(r); };
    auto subU32 = [&](long x, std::uint32_t n) { F::set_s64(a, x); F::sub_u32(r, a, n); return F::get_s64(r); };
    // A negative value smaller than n stays negative, and a positive value
    // smaller than n stays positive: the library's own rules.
    EXPECT_EQ(addU32(-5, 7), -2);
    EXPECT_EQ(addU32(-7, 7), 0);
    EXPECT_EQ(F::getSign(r), 0);
    EXPECT_EQ(addU32(-9, 7), -2);
    EXPECT_EQ(addU32(0, 7), 7);
    EXPECT_EQ(addU32(5, 0), 5);
    EXPECT_EQ(subU32(0, 5), -5);
    EXPECT_EQ(subU32(3, 5), 2);
    EXPECT_EQ(subU32(-3, 5), -8);
    EXPECT_EQ(subU32(5, 5), 0);
    EXPECT_EQ(subU32(9, 5), 4);
    EXPECT_EQ(addU32(-1, 4294967295u), -4294967294);
    EXPECT_EQ(addU32(1, 4294967295u), 4294967296);
    EXPECT_EQ(subU32(1, 4294967295u), 4294967294);

    F::set_s64(a, -6);
    F::mul_u32(r, a, 4294967295u);
    EXPECT_EQ(F::get_s64(r), -6 * 4294967295ll);
    F::mul_u32(r, a, 0);
    EXPECT_EQ(F::getSign(r), 0);
    F::mul_u32(a, a, 1);
    EXPECT_EQ(F::get_s64(a), -6);
    // In place, where the kept rule applies again: -6 + 10 stays negative.
    F::add_u32(a, a, 10);
    EXPECT_EQ(F::get_s64(a), -4);
    F::sub_u32(a, a, 1);
    EXPECT_EQ(F::get_s64(a), -5);
    // One past UINT64_MAX stops reading back as a machine integer.
    F::set_u64(a, UINT64_MAX);
    EXPECT_EQ(F::get_u64(a), UINT64_MAX);
    F::add_u32(a, a, 1);
    EXPECT_EQ(F::get_u64(a), 0u);
    EXPECT_EQ(F::getBits(a), 65u);
}

TYPED_TEST(AddSub, WordOperationsAgainstGmp) {
    using F = TypeParam;
    using R = typename F::Radix;
    LimbGenerator gen(2);
    Number<F> r, a;
    for (int i = 0; i < 400; ++i) {
        const Mpz va = randomSigned<R>(gen, 1 + gen.below(6));
        const std::uint32_t n = (i % 3 == 0) ? std::uint32_t(gen.next()) : std::uint32_t(gen.below(2000));
        a.set(va);
        Mpz expected;
        F::mul_u32(r, a, n);
        mpz_mul_ui(expected, va, n);
        ASSERT_TRUE(holds(r, expected));
        // Plain arithmetic wherever the kept sign rules do not apply.
        if (mpz_sgn(va) >= 0) {
            F::add_u32(r, a, n);
            mpz_add_ui(expected, va, n);
            ASSERT_TRUE(holds(r, expected));
        }
        if (mpz_sgn(va) <= 0) {
            F::sub_u32(r, a, n);
            mpz_sub_ui(expected, va, n);
            ASSERT_TRUE(holds(r, expected));
        }
    }
}

TYPED_TEST(AddSub, OnlyTheResultHandleIsCheckedBySubAndMulU32) {
    using F = TypeParam;
    Number<F> r(11), a(5);
    auto stale = F::newNumber();
    F::deleteNumber(stale);
    // An unknown source is not checked: no error, the result stays as it was.
    EXPECT_EQ(F::sub_u32(r, stale, 3), r.h());
    EXPECT_EQ(F::mul_u32(r, stale, 3), r.h());
    EXPECT_EQ(TW_getLastError(), 0);
    EXPECT_EQ(F::get_s64(r), 11);
    // add_u32 checks both.
    EXPECT_EQ(F::add_u32(r, stale, 3), nullptr);
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
    TW_setTerminate(0);
    EXPECT_EQ(F::sub_u32(stale, a, 3), nullptr);
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
    TW_setTerminate(0);
    EXPECT_EQ(F::add(r, a, stale), nullptr);
    EXPECT_EQ(F::get_s64(r), 11);
}

}  // namespace
