// Handles, registries and the error state: lifecycle and counts, unknown,
// stale and wrong-family handles with each family of failure values, and the
// first-error-wins rule of the terminate flag.
#include <gtest/gtest.h>

#include "support/c_families.h"

namespace {

using namespace twtest;

template <class F>
class Registry : public ErrorStateGuard {};
TYPED_TEST_SUITE(Registry, BothFamilies);

TYPED_TEST(Registry, CountFollowsNewAndDelete) {
    using F = TypeParam;
    const std::int32_t before = F::getCount();
    typename F::Handle h[5];
    for (auto& x : h) x = F::newNumber();
    EXPECT_EQ(F::getCount(), before + 5);
    EXPECT_EQ(F::deleteNumber(h[1]), 1u);
    EXPECT_EQ(F::deleteNumber(h[3]), 1u);
    EXPECT_EQ(F::getCount(), before + 3);
    for (int i : {0, 2, 4}) F::deleteNumber(h[i]);
    EXPECT_EQ(F::getCount(), before);
    EXPECT_EQ(TW_getLastError(), 0);
}

TYPED_TEST(Registry, NewNumberIsZero) {
    using F = TypeParam;
    Number<F> x;
    EXPECT_EQ(F::isZero(x), 1u);
    EXPECT_EQ(F::getSign(x), 0);
    EXPECT_EQ(F::getDigits(x), 1u);
    EXPECT_EQ(F::getBits(x), 0u);
}

TYPED_TEST(Registry, DeleteOfNullUnknownAndDeletedHandles) {
    using F = TypeParam;
    EXPECT_EQ(F::deleteNumber(nullptr), 1u);
    EXPECT_EQ(TW_getLastError(), 0);
    EXPECT_EQ(TW_isTerminated(), 0u);

    auto h = F::newNumber();
    EXPECT_EQ(F::deleteNumber(h), 1u);
    EXPECT_EQ(F::deleteNumber(h), 0u);
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
    TW_setTerminate(0);

    int local = 0;
    EXPECT_EQ(F::deleteNumber(reinterpret_cast<typename F::Handle>(&local)), 0u);
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
}

TYPED_TEST(Registry, DeletedHandlesAreNeverHandedOutAgain) {
    using F = TypeParam;
    std::set<const void*> seen;
    for (int i = 0; i < 200; ++i) {
        auto h = F::newNumber();
        EXPECT_TRUE(seen.insert(h).second) << "handle value reused";
        F::set_u64(h, ~0ull);  // give it storage that delete must free
        F::deleteNumber(h);
    }
}

// Every kind of function fails an unknown handle with its own value and -4,
// and changes no other argument.
TYPED_TEST(Registry, UnknownHandleFailureValues) {
    using F = TypeParam;
    Number<F> good(-42);
    const auto stale = F::newNumber();
    F::deleteNumber(stale);
    for (auto bad : {static_cast<typename F::Handle>(nullptr), stale}) {
        auto expectMinus4 = [] {
            EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
            EXPECT_EQ(TW_isTerminated(), 1u);
            TW_setTerminate(0);
        };
        EXPECT_EQ(F::set_u32(bad, 5), nullptr); expectMinus4();
        EXPECT_EQ(F::set_own(good, bad), nullptr); expectMinus4();
        EXPECT_EQ(F::set_own(bad, good), nullptr); expectMinus4();
        EXPECT_EQ(F::get_s64(bad), 0); expectMinus4();
        EXPECT_EQ(F::get_u32(bad), 0u); expectMinus4();
        EXPECT_EQ(F::getSign(bad), 0); expectMinus4();
        EXPECT_EQ(F::isZero(bad), 1u); expectMinus4();
        EXPECT_EQ(F::isEven(bad), 1u); expectMinus4();
        EXPECT_EQ(F::isOdd(bad), 0u); expectMinus4();
        EXPECT_EQ(F::isAbsOne(bad), 0u); expectMinus4();
        EXPECT_EQ(F::negate(bad), nullptr); expectMinus4();
        EXPECT_EQ(F::swap(good, bad), nullptr); expectMinus4();
        EXPECT_EQ(F::compare(good, bad), 0); expectMinus4();
        EXPECT_EQ(F::compareAbs(bad, good), 0); expectMinus4();
        EXPECT_EQ(F::compare_s32(bad, -1), 0); expectMinus4();
        EXPECT_EQ(F::getDigits(bad), 0u); expectMinus4();
        EXPECT_EQ(F::getBits(bad), 0u); expectMinus4();
    }
    EXPECT_EQ(F::get_s64(good), -42);
}

TEST_F(ErrorStateGuard, HandleOfTheOtherFamilyIsUnknown) {
    Number<DecimalFamily> hi(7);
    Number<BinaryFamily> hx(7);
    EXPECT_EQ(HI_get_u32(reinterpret_cast<HI_handle>(hx.h())), 0u);
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
    TW_setTerminate(0);
    EXPECT_EQ(HX_negate(reinterpret_cast<HX_handle>(hi.h())), nullptr);
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
    TW_setTerminate(0);
    EXPECT_EQ(HX_delete(reinterpret_cast<HX_handle>(hi.h())), 0u);
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
    TW_setTerminate(0);
    EXPECT_EQ(HI_get_u32(hi), 7u);
}

TEST_F(ErrorStateGuard, FirstErrorWinsUntilCleared) {
    TW_setTerminate(1);
    EXPECT_EQ(TW_getLastError(), TW_ERR_STOPPED);
    EXPECT_EQ(TW_isTerminated(), 1u);
    EXPECT_EQ(HI_get_u32(nullptr), 0u);  // would record -4
    EXPECT_EQ(TW_getLastError(), TW_ERR_STOPPED);
    TW_setTerminate(0);
    EXPECT_EQ(TW_getLastError(), 0);
    EXPECT_EQ(TW_isTerminated(), 0u);

    HX_abs(nullptr);
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
    TW_setTerminate(1);  // a later stop does not replace the first error
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
    TW_setTerminate(0);
    EXPECT_EQ(TW_getLastError(), 0);
}

// Handle checks stop at the first unknown handle, in argument order.
TEST_F(ErrorStateGuard, HandlesCheckedInArgumentOrder) {
    Number<DecimalFamily> a(1), b(2);
    EXPECT_EQ(HI_swap(a, nullptr), nullptr);
    EXPECT_EQ(HI_get_u32(a), 1u);
    TW_setTerminate(0);
    EXPECT_EQ(HI_swap(nullptr, b), nullptr);
    EXPECT_EQ(HI_get_u32(b), 2u);
}

}  // namespace
