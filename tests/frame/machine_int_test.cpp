// Machine integers in and out, for both families: the extremes of every
// width, the fit rules of the readers, and the limb layouts.
#include <gtest/gtest.h>

#include <limits>

#include "support/c_families.h"

namespace {

using namespace twtest;

template <class F>
class MachineIntegers : public ErrorStateGuard {};
TYPED_TEST_SUITE(MachineIntegers, BothFamilies);

constexpr std::int64_t kI64Min = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kI64Max = std::numeric_limits<std::int64_t>::max();
constexpr std::int32_t kI32Min = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kI32Max = std::numeric_limits<std::int32_t>::max();

TYPED_TEST(MachineIntegers, ThirtyTwoBitExtremes) {
    using F = TypeParam;
    Number<F> x;
    F::set_s32(x, kI32Min);
    EXPECT_EQ(F::get_s32(x), kI32Min);
    EXPECT_EQ(F::get_u32(x), 0u);  // negative
    EXPECT_EQ(F::get_s64(x), kI32Min);
    EXPECT_EQ(F::getSign(x), -1);
    EXPECT_TRUE(recordIsNormal(x.object()));

    F::set_u32(x, 4294967295u);
    EXPECT_EQ(F::get_u32(x), 4294967295u);
    EXPECT_EQ(F::get_s32(x), 0);  // above 2^31 - 1
    F::set_u64(x, 4294967296ull);
    EXPECT_EQ(F::get_u32(x), 0u);
    EXPECT_EQ(F::get_u64(x), 4294967296ull);

    F::set_s32(x, kI32Max);
    EXPECT_EQ(F::get_s32(x), kI32Max);
    F::set_u32(x, 2147483648u);
    EXPECT_EQ(F::get_s32(x), 0);
    F::negate(x);
    EXPECT_EQ(F::get_s32(x), kI32Min);  // -2^31 fits
}

TYPED_TEST(MachineIntegers, SixtyFourBitExtremes) {
    using F = TypeParam;
    Number<F> x;
    F::set_u64(x, UINT64_MAX);
    EXPECT_EQ(F::get_u64(x), UINT64_MAX);
    EXPECT_EQ(F::get_s64(x), 0);
    EXPECT_TRUE(recordIsNormal(x.object()));

    F::set_s64(x, kI64Min);
    EXPECT_EQ(F::get_s64(x), kI64Min);
    EXPECT_EQ(F::get_u64(x), 0u);
    F::abs(x);
    EXPECT_EQ(F::get_u64(x), 1ull << 63);
    EXPECT_EQ(F::get_s64(x), 0);  // +2^63 does not fit
    F::set_s64(x, kI64Max);
    EXPECT_EQ(F::get_s64(x), kI64Max);

    // One above UINT64_MAX reads as 0 everywhere.
    Mpz big;
    mpz_set_ui(big, 1);
    mpz_mul_2exp(big, big, 64);
    x.set(big);
    EXPECT_EQ(F::get_u64(x), 0u);
    EXPECT_EQ(F::get_s64(x), 0);
    EXPECT_EQ(F::get_u32(x), 0u);
}

TYPED_TEST(MachineIntegers, ZeroHasSignZeroFromEveryWidth) {
    using F = TypeParam;
    Number<F> x(5);
    F::set_s64(x, 0);
    EXPECT_EQ(F::getSign(x), 0);
    F::set_s32(x, 0);
    EXPECT_EQ(F::isZero(x), 1u);
    EXPECT_TRUE(recordIsNormal(x.object()));
    F::negate(x);
    EXPECT_EQ(F::getSign(x), 0);
}

TYPED_TEST(MachineIntegers, RandomRoundTripsAgainstGmp) {
    using F = TypeParam;
    LimbGenerator gen(20261121);
    Number<F> x;
    for (int i = 0; i < 2000; ++i) {
        const unsigned bits = unsigned(gen.below(64)) + 1;
        const std::uint64_t u = gen.next() >> (64 - bits);
        F::set_u64(x, u);
        Mpz expected;
        mpz_set_ui(expected, u);
        ASSERT_EQ(mpz_cmp(x.value(), expected), 0) << u;
        ASSERT_EQ(F::get_u64(x), u);
        ASSERT_EQ(F::get_u32(x), u <= UINT32_MAX ? std::uint32_t(u) : 0u);
        const std::int64_t s = std::int64_t(u) * ((gen.next() & 1) ? -1 : 1);
        F::set_s64(x, s);
        ASSERT_EQ(F::get_s64(x), s);
        ASSERT_EQ(F::get_s32(x), (s >= kI32Min && s <= kI32Max) ? std::int32_t(s) : 0);
        ASSERT_TRUE(recordIsNormal(x.object()));
    }
}

TEST(MachineIntegerLayout, DecimalLimbs) {
    Number<DecimalFamily> x;
    HI_set_u64(x, UINT64_MAX);
    const auto& r = x.object().rec();
    EXPECT_EQ(r.digits[0], 709551615u);
    EXPECT_EQ(r.digits[1], 446744073u);
    EXPECT_EQ(r.digits[2], 18u);
    EXPECT_EQ(r.topIndex, 2u);
    HI_set_u32(x, 999999999u);
    EXPECT_EQ(r.topIndex, 0u);
    HI_set_u32(x, 1000000000u);
    EXPECT_EQ(r.digits[0], 0u);
    EXPECT_EQ(r.digits[1], 1u);
    EXPECT_EQ(r.lowIndex, 1u);
    EXPECT_EQ(r.topIndex, 1u);
    HI_set_u32(x, 4294967295u);
    EXPECT_EQ(r.digits[0], 294967295u);
    EXPECT_EQ(r.digits[1], 4u);
}

TEST(MachineIntegerLayout, BinaryLimbs) {
    Number<BinaryFamily> x;
    HX_set_u32(x, 0xFFFFFFFFu);
    const auto& r = x.object().rec();
    EXPECT_EQ(r.digits[0], 0x0FFFFFFFu);
    EXPECT_EQ(r.digits[1], 0xFu);
    EXPECT_EQ(r.topIndex, 1u);
    HX_set_u32(x, 1u << 28);
    EXPECT_EQ(r.lowIndex, 1u);
    EXPECT_EQ(r.digits[1], 1u);
}

TYPED_TEST(MachineIntegers, SetCopiesAndSwapExchanges) {
    using F = TypeParam;
    Number<F> a(-123456789012345), b(77);
    EXPECT_EQ(F::set_own(b, a), b.h());
    EXPECT_EQ(F::get_s64(b), -123456789012345);
    EXPECT_EQ(F::set_own(a, a), a.h());
    EXPECT_EQ(F::get_s64(a), -123456789012345);
    F::set_s64(b, 5);
    const auto* recordA = &a.object().rec();
    EXPECT_EQ(F::swap(a, b), a.h());
    EXPECT_EQ(F::get_s64(a), 5);
    EXPECT_EQ(F::get_s64(b), -123456789012345);
    EXPECT_EQ(&b.object().rec(), recordA);  // records exchanged, not copied
    EXPECT_EQ(F::swap(a, a), a.h());
    EXPECT_EQ(F::get_s64(a), 5);
}

TYPED_TEST(MachineIntegers, SignTests) {
    using F = TypeParam;
    Number<F> x(-5);
    EXPECT_EQ(F::isOdd(x), 1u);
    EXPECT_EQ(F::isEven(x), 0u);
    EXPECT_EQ(F::isAbsOne(x), 0u);
    F::abs(x);
    EXPECT_EQ(F::get_s64(x), 5);
    F::set_s32(x, -1);
    EXPECT_EQ(F::isAbsOne(x), 1u);
    F::set_u64(x, 1000000000ull * 268435456ull);  // a zero low limb in both radices
    EXPECT_EQ(F::isEven(x), 1u);
    EXPECT_EQ(F::isAbsOne(x), 0u);
}

}  // namespace
