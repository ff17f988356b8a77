// Storage rules of the number record: sizing, growth, copies, normalisation,
// and exhaustion turning a number into zero with error -3.
#include <gtest/gtest.h>

#include "frame/number_record.h"
#include "frame/signed_number.h"
#include "support/c_families.h"

namespace {

using tw::NumberRecord;
using twtest::ErrorStateGuard;

void writeLimbs(NumberRecord& r, std::initializer_list<tw::Limb> limbs) {
    tw::resizeStorage(r, std::uint32_t(limbs.size()), true);
    std::copy(limbs.begin(), limbs.end(), r.digits);
    tw::normalizeIndices(r, std::uint32_t(limbs.size()));
}

TEST(NumberRecord, NewNumberIsThreeZeroLimbs) {
    tw::DecimalNumber x;
    EXPECT_EQ(x.sign, 0);
    EXPECT_EQ(x.rec().allocated(), 3u);
    EXPECT_EQ(x.rec().topIndex, 0u);
    EXPECT_EQ(x.rec().lowIndex, 0u);
    EXPECT_TRUE(x.isZero());
    EXPECT_EQ(x.rec().textBufferA, nullptr);
    EXPECT_EQ(x.rec().textBufferW, nullptr);
}

TEST(NumberRecord, ResizeKeepsAtLeastThreeLimbsAndNeverShrinks) {
    NumberRecord r;
    tw::resizeStorage(r, 0, false);
    EXPECT_EQ(r.allocated(), 3u);
    tw::resizeStorage(r, 1, true);
    EXPECT_EQ(r.allocated(), 3u);

    writeLimbs(r, {1, 2, 3, 4, 5, 6, 7, 8});
    // Shrinking without discard keeps the length and zeroes from limbCount up,
    // even below the minimum of three.
    tw::resizeStorage(r, 2, false);
    EXPECT_EQ(r.allocated(), 8u);
    EXPECT_EQ(r.digits[0], 1u);
    EXPECT_EQ(r.digits[1], 2u);
    for (int i = 2; i < 8; ++i) EXPECT_EQ(r.digits[i], 0u) << i;

    // Growing without discard keeps the value; with discard all limbs are zero.
    writeLimbs(r, {9, 8, 7});
    tw::resizeStorage(r, 40, false);
    EXPECT_EQ(r.allocated(), 40u);
    EXPECT_EQ(r.digits[0], 9u);
    EXPECT_EQ(r.digits[2], 7u);
    EXPECT_EQ(r.digits[39], 0u);
    tw::resizeStorage(r, 5, true);
    for (std::size_t i = 0; i < r.allocated(); ++i) EXPECT_EQ(r.digits[i], 0u);
}

TEST(NumberRecord, ResizeMovesAdvancedDigitsBack) {
    NumberRecord r;
    writeLimbs(r, {0, 0, 5, 6, 7});
    // An operation that dropped two low limbs by advancing the limb pointer.
    r.digits += 2;
    tw::resizeStorage(r, 3, false);
    EXPECT_EQ(r.digits, r.limbs.data());
    EXPECT_EQ(r.digits[0], 5u);
    EXPECT_EQ(r.digits[1], 6u);
    EXPECT_EQ(r.digits[2], 7u);
}

TEST(NumberRecord, CopyHoldsExactlyTheUsedLimbs) {
    NumberRecord r;
    writeLimbs(r, {0, 1, 0, 0, 0, 4, 0, 0, 0, 0});
    EXPECT_EQ(r.topIndex, 5u);
    EXPECT_EQ(r.lowIndex, 1u);
    r.textBufferA = std::make_unique<std::string>("text");
    NumberRecord copy(r);
    EXPECT_EQ(copy.allocated(), 6u);  // no minimum of three for a copy
    EXPECT_EQ(copy.topIndex, 5u);
    EXPECT_EQ(copy.lowIndex, 1u);
    EXPECT_EQ(copy.textBufferA, nullptr);

    NumberRecord target;
    target.textBufferW = std::make_unique<std::u16string>(u"old");
    target = r;
    EXPECT_EQ(target.textBufferW, nullptr);
    EXPECT_EQ(target.digits[5], 4u);
    EXPECT_EQ(target.topIndex, 5u);
}

TEST(NumberRecord, NormalizeIndicesFindsTopAndLow) {
    NumberRecord r;
    writeLimbs(r, {0, 0, 0, 0});
    EXPECT_EQ(r.topIndex, 0u);
    EXPECT_EQ(r.lowIndex, 0u);
    EXPECT_EQ(r.allocated(), 3u);
    writeLimbs(r, {0, 1000, 0});  // 1000 * 10^9
    EXPECT_EQ(r.topIndex, 1u);
    EXPECT_EQ(r.lowIndex, 1u);
    writeLimbs(r, {999999999});
    EXPECT_EQ(r.topIndex, 0u);
}

class StorageExhaustion : public ErrorStateGuard {
protected:
    void TearDown() override {
        tw::setLimbAllocationCeilingForTesting(UINT32_MAX);
        ErrorStateGuard::TearDown();
    }
};

TEST_F(StorageExhaustion, NumberBecomesZeroWithErrorMinus3) {
    tw::DecimalNumber x;
    x.sign = 1;
    writeLimbs(x.rec(), {1, 2, 3});
    x.rec().textBufferA = std::make_unique<std::string>("3000000002000000001");
    tw::setLimbAllocationCeilingForTesting(100);
    tw::resizeStorage(x.rec(), 1000, false);
    x.normalizeSign();
    EXPECT_TRUE(x.isZero());
    EXPECT_EQ(x.sign, 0);
    EXPECT_GE(x.rec().allocated(), 3u);
    EXPECT_EQ(x.rec().textBufferA, nullptr);
    EXPECT_EQ(TW_getLastError(), TW_ERR_TOO_LARGE);
    EXPECT_EQ(TW_isTerminated(), 1u);
}

TEST_F(StorageExhaustion, CopyIntoNumberThatCannotGrowLeavesZero) {
    tw::BinaryNumber big, target;
    big.sign = -1;
    tw::resizeStorage(big.rec(), 50, true);
    for (int i = 0; i < 50; ++i) big.rec().digits[i] = 7;
    tw::normalizeIndices(big.rec(), 50);
    tw::setLimbAllocationCeilingForTesting(10);
    target = big;
    EXPECT_TRUE(target.isZero());
    EXPECT_EQ(target.sign, 0);
    EXPECT_EQ(TW_getLastError(), TW_ERR_TOO_LARGE);
}

}  // namespace
