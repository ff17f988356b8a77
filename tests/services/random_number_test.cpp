// HI_random and HX_random: |size| decimal digits or bits, uniform below the
// bound, negated for a negative size, reproducible from TW_seedRandom.
#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "support/c_families.h"

namespace {

using twtest::DecimalFamily;
using twtest::Mpz;
using twtest::Number;

// HI_random or HX_random, as the family's own function.
template <class F>
typename F::Handle randomNumber(typename F::Handle r, std::int32_t size) {
    return F::random(r, size);
}

// 10^size or 2^size.
template <class F>
Mpz bound(std::uint32_t size) {
    Mpz b;
    if (F::Radix::isBinary)
        mpz_ui_pow_ui(b, 2, size);
    else
        mpz_ui_pow_ui(b, 10, size);
    return b;
}

template <class F>
class RandomNumbers : public twtest::ErrorStateGuard {};
TYPED_TEST_SUITE(RandomNumbers, twtest::BothFamilies);

TYPED_TEST(RandomNumbers, BelowTheBoundAndUsuallyFullLength) {
    TW_seedRandom(2024);
    Number<TypeParam> r;
    // Sizes around one and two limbs (9 digits, 28 bits) and well beyond.
    for (std::uint32_t size : {1u, 2u, 8u, 9u, 10u, 18u, 19u, 27u, 28u, 29u, 56u, 57u, 100u, 1000u}) {
        const Mpz limit = bound<TypeParam>(size);
        Mpz largest;
        for (int draw = 0; draw < 40; ++draw) {
            ASSERT_EQ(randomNumber<TypeParam>(r, std::int32_t(size)), r.h());
            const Mpz v = r.value();
            ASSERT_GE(mpz_sgn(v.v), 0) << size;
            ASSERT_LT(mpz_cmp(v.v, limit.v), 0) << size;
            ASSERT_TRUE(twtest::recordIsNormal(r.object()));
            if (mpz_cmp(v.v, largest.v) > 0) largest = v;
        }
        // The top of the range is reached: the largest of 40 draws lies in
        // the upper three quarters (a uniform draw misses with (1/4)^40).
        Mpz quarter;
        mpz_mul_ui(quarter, largest, 4);
        EXPECT_GE(mpz_cmp(quarter.v, limit.v), 0) << "size " << size << ": largest " << largest.str();
    }
    EXPECT_EQ(TW_getLastError(), 0);
}

TYPED_TEST(RandomNumbers, SmallSizesCoverTheirRange) {
    TW_seedRandom(11);
    Number<TypeParam> r;
    for (std::int32_t size : {1, 2, 3, 6}) {
        const std::uint64_t count = mpz_get_ui(bound<TypeParam>(std::uint32_t(size)).v);
        if (count > 100) continue;  // 4000 draws see every value of at most 100
        std::set<std::int64_t> seen;
        for (int draw = 0; draw < 4000 && seen.size() < count; ++draw) {
            randomNumber<TypeParam>(r, size);
            seen.insert(TypeParam::get_s64(r));
        }
        EXPECT_EQ(seen.size(), count) << "size " << size;
        EXPECT_EQ(*seen.begin(), 0);
        EXPECT_EQ(std::uint64_t(*seen.rbegin()), count - 1);
    }
}

TYPED_TEST(RandomNumbers, NegativeSizeNegates) {
    Number<TypeParam> positive, negative;
    for (std::int32_t size : {1, 9, 28, 200}) {
        TW_seedRandom(5);
        randomNumber<TypeParam>(positive, size);
        TW_seedRandom(5);
        ASSERT_EQ(randomNumber<TypeParam>(negative, -size), negative.h());
        Mpz want;
        mpz_neg(want, positive.value());
        EXPECT_EQ(negative.value().str(), want.str()) << size;
        EXPECT_TRUE(twtest::recordIsNormal(negative.object()));  // sign 0 if the draw was 0
    }
}

TYPED_TEST(RandomNumbers, SizeZeroGivesZero) {
    Number<TypeParam> r(-12345);
    EXPECT_EQ(randomNumber<TypeParam>(r, 0), r.h());
    EXPECT_TRUE(TypeParam::isZero(r));
    EXPECT_EQ(TypeParam::getSign(r), 0);
    EXPECT_EQ(TW_getLastError(), 0);
}

TYPED_TEST(RandomNumbers, SameSeedSameNumbers) {
    auto draws = [](std::uint32_t seed) {
        TW_seedRandom(seed);
        Number<TypeParam> r;
        std::vector<std::string> out;
        for (std::int32_t size : {5, 50, -500, 3, 90})
            out.push_back((randomNumber<TypeParam>(r, size), r.value().str(16)));
        return out;
    };
    const auto first = draws(31337);
    EXPECT_EQ(draws(31337), first);
    EXPECT_NE(draws(31338), first);
}

TYPED_TEST(RandomNumbers, UnknownHandle) {
    EXPECT_EQ(randomNumber<TypeParam>(nullptr, 10), nullptr);
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
}

// A decimal number of more than 1 292 913 986 digits has a bit count beyond
// 32 bits: refused before any storage is taken.
TEST(RandomNumbersTooLarge, DecimalSizesPastA32BitBitCount) {
    TW_setTerminate(0);
    Number<DecimalFamily> r(77);
    for (std::int32_t size : {INT32_MIN, INT32_MAX, 1292913987, -1292913987}) {
        TW_setTerminate(0);
        EXPECT_EQ(HI_random(r, size), r.h()) << size;
        EXPECT_EQ(TW_getLastError(), TW_ERR_TOO_LARGE) << size;
        EXPECT_TRUE(HI_isZero(r));
        EXPECT_EQ(HI_getSign(r), 0);
        HI_set_u32(r, 77);
    }
    TW_setTerminate(0);
}

}  // namespace
