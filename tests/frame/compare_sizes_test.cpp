// Comparisons and size queries, against GMP on many-limb values of both
// families, with the lowIndex cases and the terminate-flag rule.
#include <gtest/gtest.h>

#include "support/c_families.h"

namespace {

using namespace twtest;

template <class F>
class CompareAndSizes : public ErrorStateGuard {};
TYPED_TEST_SUITE(CompareAndSizes, BothFamilies);

int sgn(int v) { return (v > 0) - (v < 0); }

TYPED_TEST(CompareAndSizes, RandomValuesAgainstGmp) {
    using F = TypeParam;
    using R = typename F::Radix;
    LimbGenerator gen(7);
    Number<F> a, b;
    for (int i = 0; i < 600; ++i) {
        Mpz va = toMpz<R>(gen.limbs<R>(1 + gen.below(12)));
        Mpz vb = toMpz<R>(gen.limbs<R>(1 + gen.below(12)));
        if (i % 5 == 0) mpz_set(vb, va);                        // equal magnitudes
        if (i % 7 == 0) mpz_add_ui(vb, va, 1);                  // neighbours
        if (gen.next() & 1) mpz_neg(va, va);
        if (gen.next() & 1) mpz_neg(vb, vb);
        if (i % 11 == 0) mpz_set_ui(va, 0);
        a.set(va);
        b.set(vb);
        ASSERT_EQ(F::compare(a, b), sgn(mpz_cmp(va, vb)));
        ASSERT_EQ(F::compareAbs(a, b), sgn(mpz_cmpabs(va, vb)));
        const std::uint32_t u = std::uint32_t(gen.next());
        const std::int32_t s = std::int32_t(gen.next());
        ASSERT_EQ(F::compare_u32(a, u), sgn(mpz_cmp_ui(va.v, u)));
        ASSERT_EQ(F::compare_s32(a, s), sgn(mpz_cmp_si(va.v, s)));
        Mpz absA;
        mpz_abs(absA, va);
        ASSERT_EQ(F::compareAbs_u32(a, u), sgn(mpz_cmp_ui(absA.v, u)));
        ASSERT_EQ(F::compareAbs_s32(a, s), sgn(mpz_cmp_ui(absA.v, s < 0 ? 0u - std::uint32_t(s) : std::uint32_t(s))));
        ASSERT_EQ(F::getDigits(a), mpz_sgn(va.v) ? std::uint32_t(absA.str().size()) : 1u);
        ASSERT_EQ(F::getBits(a), std::uint32_t(mpz_sgn(va.v) ? mpz_sizeinbase(va, 2) : 0));
    }
}

TYPED_TEST(CompareAndSizes, MachineIntegerComparisonRules) {
    using F = TypeParam;
    Number<F> x(-1), zero;
    EXPECT_EQ(F::compare_u32(x, 0), -1);  // every negative is below every u32
    EXPECT_EQ(F::compare_s32(zero, 0), 0);
    EXPECT_EQ(F::compare_s32(zero, -3), 1);
    EXPECT_EQ(F::compare_s32(zero, 3), -1);
    F::set_s32(x, INT32_MIN);
    EXPECT_EQ(F::compare_s32(x, INT32_MIN), 0);
    EXPECT_EQ(F::compareAbs_s32(x, INT32_MIN), 0);
    EXPECT_EQ(F::compareAbs_u32(x, 2147483648u), 0);
    F::set_u64(x, 1ull << 40);  // too large for a u32: larger than all of them
    EXPECT_EQ(F::compareAbs_u32(x, UINT32_MAX), 1);
    F::negate(x);
    EXPECT_EQ(F::compare_s32(x, INT32_MIN), -1);
    EXPECT_EQ(F::compare(x, x), 0);
}

TEST(CompareLowIndex, DecimalLimbOrder) {
    Number<DecimalFamily> a, b;
    HI_set_u64(a, 1000000000ull);
    HI_set_u64(b, 2000000000ull);
    EXPECT_EQ(HI_compareAbs_hi(a, b), -1);  // same indices, limb 1 decides
    HI_set_u64(a, 1000000001ull);
    HI_set_u64(b, 1000000000ull);
    EXPECT_EQ(HI_compareAbs_hi(a, b), 1);   // equal top limbs, the lower lowIndex wins
    EXPECT_EQ(HI_compareAbs_hi(b, a), -1);
}

TEST(Sizes, DecimalDigitsAndTrailingZeros) {
    Number<DecimalFamily> x;
    EXPECT_EQ(HI_getDigits(x), 1u);
    EXPECT_EQ(HI_getTailDecZeros(x), 0u);
    HI_set_u32(x, 1000000000u);
    EXPECT_EQ(HI_getTailDecZeros(x), 9u);
    EXPECT_EQ(HI_getDigits(x), 10u);
    HI_set_u32(x, 10);
    EXPECT_EQ(HI_getTailDecZeros(x), 1u);
    HI_set_s64(x, -1200000000000000000);
    EXPECT_EQ(HI_getTailDecZeros(x), 17u);
    Mpz v("123456789000000000000000000000000000000000000000000000000000000");
    x.set(v);
    EXPECT_EQ(HI_getTailDecZeros(x), 54u);
    EXPECT_EQ(HI_getDigits(x), 63u);
}

TYPED_TEST(CompareAndSizes, DigitCountsAreZeroWhileTerminated) {
    using F = TypeParam;
    Number<F> x(123456);
    TW_setTerminate(1);
    EXPECT_EQ(F::getDigits(x), 0u);
    TW_setTerminate(0);
    EXPECT_EQ(F::getDigits(x), 6u);
}

TEST_F(ErrorStateGuard, TailZerosAreZeroWhileTerminated) {
    Number<DecimalFamily> x(1000);
    TW_setTerminate(1);
    EXPECT_EQ(HI_getTailDecZeros(x), 0u);
}

TYPED_TEST(CompareAndSizes, PowersOfTwoAndTenAtLimbEdges) {
    using F = TypeParam;
    Number<F> x;
    Mpz v;
    for (unsigned e = 0; e < 400; e += 1) {
        mpz_ui_pow_ui(v, 2, e);
        x.set(v);
        ASSERT_EQ(F::getBits(x), e + 1);
        mpz_sub_ui(v, v, 1);
        x.set(v);
        ASSERT_EQ(F::getBits(x), e);
        mpz_ui_pow_ui(v, 10, e);
        x.set(v);
        ASSERT_EQ(F::getDigits(x), e + 1);
        mpz_sub_ui(v, v, 1);
        x.set(v);
        ASSERT_EQ(F::getDigits(x), e == 0 ? 1u : e);
    }
}

}  // namespace
