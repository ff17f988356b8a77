// The linear helpers under the divide-and-conquer rungs, on the carries
// that random operands rarely produce.
#include <gtest/gtest.h>

#include "arith/kernels/mul_span_ops.h"
#include "mul_check.h"

namespace {

using namespace twtest;
using tw::Limb;

template <class R>
class SpanOps : public ::testing::Test {};
TYPED_TEST_SUITE(SpanOps, Radices);

// A carry (borrow) born at the bottom must ripple through the lower half,
// across into the upper half and out of the top.
TYPED_TEST(SpanOps, CarriesRippleAcrossBothHalves) {
    using R = TypeParam;
    for (const std::size_t n : {1u, 2u, 7u, 8u, 31u}) {
        const Limbs top = LimbGenerator::maxLimbs<R>(n);
        Limbs one(n, 0);
        one[0] = 1;
        Limbs sum(n);
        EXPECT_EQ((tw::arith::combineSameLength<R, false>(sum.data(), top.data(), one.data(), n)), 1u);
        EXPECT_EQ(sum, Limbs(n, 0));
        Limbs diff(n);
        EXPECT_EQ((tw::arith::combineSameLength<R, true>(diff.data(), sum.data(), one.data(), n)), 1u);
        EXPECT_EQ(diff, top);
        // In place, and with a longer first operand: the carry stops inside it.
        Limbs longer = top;
        longer.push_back(5);
        EXPECT_EQ((tw::arith::combineSpans<R, false>(longer.data(), longer.data(), n + 1, one.data(), n)), 0u);
        Limbs want(n + 1, 0);
        want[n] = 6;
        EXPECT_EQ(longer, want);
    }
}

TYPED_TEST(SpanOps, AbsoluteDifferenceAndItsSign) {
    using R = TypeParam;
    LimbGenerator gen(61);
    const Limbs a = gen.limbs<R>(20);
    Limbs b = a;
    b[0] = b[0] == 0 ? 1 : b[0] - 1;   // b = a - 1 or a + 1
    const bool aSmaller = b[0] > a[0];
    Limbs d(22, 0x7777);
    Limbs bPadded = b;
    bPadded.resize(22, 0);   // zero top limbs must not count
    EXPECT_EQ(tw::arith::absDifference<R>(d.data(), a.data(), 20, bPadded.data(), 22), aSmaller);
    Limbs want(22, 0);
    want[0] = 1;
    EXPECT_EQ(d, want);
    EXPECT_FALSE(tw::arith::absDifference<R>(d.data(), a.data(), 20, a.data(), 20));
    EXPECT_EQ(Limbs(d.begin(), d.begin() + 20), Limbs(20, 0));
}

// a -= m * b where the product's top carry and the borrow must come off
// limbs above b's length.
TYPED_TEST(SpanOps, SubtractMultipleBorrowsAboveTheSubtrahend) {
    using R = TypeParam;
    Limbs a = {0, 0, 0, 1};                 // radix^3
    const Limbs b = LimbGenerator::maxLimbs<R>(2);
    tw::arith::subtractMultipleInPlace<R>(a.data(), a.size(), b.data(), b.size(), 16);
    // radix^3 - 16 (radix^2 - 1) = radix^3 - 16 radix^2 + 16
    const Limbs want = {16, 0, R::base - 16, 0};
    EXPECT_EQ(a, want);
}

TYPED_TEST(SpanOps, ExactSmallDivisions) {
    using R = TypeParam;
    LimbGenerator gen(62);
    const Limbs q = gen.limbs<R>(30);
    for (const Limb d : {Limb(2), Limb(3)}) {
        Limbs v = q;
        v.push_back(0);
        tw::arith::mulByLimb<R>(v.data(), q.data(), q.size(), d);
        if (d == 2)
            tw::arith::divideExactInPlace<R, 2>(v.data(), v.size());
        else
            tw::arith::divideExactInPlace<R, 3>(v.data(), v.size());
        Limbs want = q;
        want.push_back(0);
        EXPECT_EQ(v, want);
    }
}

}  // namespace
