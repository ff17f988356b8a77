// The divide-and-conquer rungs called directly, on shapes that steer each
// one through all of its branches (balanced splits, lopsided operands that
// fall to the unbalanced routine, both signs of the differences).
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "arith/kernels/mul_ladder.h"
#include "mul_check.h"

namespace {

using namespace twtest;
using tw::Limb;
using Shape = std::pair<std::size_t, std::size_t>;   // (len L, len S), L the longer

template <class R>
class Rungs : public ::testing::Test {};
TYPED_TEST_SUITE(Rungs, Radices);

// Random operands of each shape, then the same shape with all limbs maximal.
template <class R>
void checkProducts(ProductRung<R> rung, const std::vector<Shape>& shapes, std::uint64_t seed) {
    LimbGenerator gen(seed);
    for (const auto& [l, s] : shapes) {
        for (int rep = 0; rep < 3; ++rep) {
            const Limbs L = gen.limbs<R>(l), S = gen.limbs<R>(s);
            EXPECT_TRUE(rungMultiplies<R>(rung, L, S));
        }
        EXPECT_TRUE(rungMultiplies<R>(rung, LimbGenerator::maxLimbs<R>(l), LimbGenerator::maxLimbs<R>(s)));
    }
}

template <class R>
void checkSquares(SquareRung<R> rung, const std::vector<std::size_t>& lengths, std::uint64_t seed) {
    LimbGenerator gen(seed);
    for (const std::size_t n : lengths) {
        for (int rep = 0; rep < 3; ++rep) EXPECT_TRUE(rungSquares<R>(rung, gen.limbs<R>(n)));
        EXPECT_TRUE(rungSquares<R>(rung, LimbGenerator::maxLimbs<R>(n)));
    }
}

// X * B^h + Y for an h-limb Y: fixes the sign of (high half - low half).
template <class R>
Limbs joinHalves(const Limbs& low, const Limbs& high) {
    Limbs v = low;
    v.insert(v.end(), high.begin(), high.end());
    return v;
}

TYPED_TEST(Rungs, KaratsubaProducts) {
    using R = TypeParam;
    // Balanced at both ends of its range, odd lengths, S just longer than h,
    // and S no longer than h (unbalanced).
    checkProducts<R>(tw::arith::mulKaratsuba<R>,
                     {{2, 2}, {3, 2}, {65, 65}, {66, 65}, {131, 66}, {192, 192}, {193, 150}, {140, 70}, {140, 65}, {400, 70}},
                     21);
}

TYPED_TEST(Rungs, KaratsubaDifferenceSigns) {
    using R = TypeParam;
    LimbGenerator gen(22);
    const std::size_t h = 80;
    const Limbs small = gen.limbs<R>(h), big = LimbGenerator::maxLimbs<R>(h);
    // (high, low) orders for L and S: every sign pair, and a zero difference.
    const std::pair<Limbs, Limbs> halves[] = {{big, small}, {small, big}, {small, small}};
    for (const auto& [lLow, lHigh] : halves)
        for (const auto& [sLow, sHigh] : halves) {
            const Limbs L = joinHalves<R>(lLow, lHigh), S = joinHalves<R>(sLow, sHigh);
            EXPECT_TRUE(rungMultiplies<R>(tw::arith::mulKaratsuba<R>, L, S));
        }
}

TYPED_TEST(Rungs, KaratsubaSquares) {
    using R = TypeParam;
    checkSquares<R>(tw::arith::sqrKaratsuba<R>, {2, 3, 129, 130, 200, 255, 256}, 23);
    // Equal halves: the difference is zero.
    LimbGenerator gen(24);
    const Limbs half = gen.limbs<R>(70);
    EXPECT_TRUE(rungSquares<R>(tw::arith::sqrKaratsuba<R>, joinHalves<R>(half, half)));
}

TYPED_TEST(Rungs, Toom3Products) {
    using R = TypeParam;
    // k = floor(l/3).  3-by-3: s > 2k (including s = 2k + 1 and the top piece
    // of S a single limb).  3-by-2: k < s <= 2k.  Unbalanced: s <= k.
    checkProducts<R>(tw::arith::mulToom3<R>,
                     {{3, 3}, {5, 5}, {193, 193}, {301, 250}, {300, 201}, {511, 511}, {512, 500}},
                     31);
    checkProducts<R>(tw::arith::mulToom3<R>, {{3, 2}, {300, 101}, {300, 200}, {302, 150}, {511, 250}}, 32);
    checkProducts<R>(tw::arith::mulToom3<R>, {{300, 100}, {600, 65}, {900, 193}}, 33);
}

TYPED_TEST(Rungs, Toom3Squares) {
    using R = TypeParam;
    checkSquares<R>(tw::arith::sqrToom3<R>, {3, 4, 5, 257, 258, 259, 400, 511}, 34);
}

TYPED_TEST(Rungs, UnbalancedProducts) {
    using R = TypeParam;
    // With N = 2 * (power of two >= s): 4 (N - s) > l cuts L into pieces of
    // s limbs, each through the ladder at the rung s selects, the last piece
    // shorter.
    checkProducts<R>(tw::arith::mulUnbalanced<R>,
                     {{5, 5}, {5, 1}, {30, 7}, {200, 64}, {700, 65}, {1000, 193}, {1100, 512}}, 41);
    // Otherwise straight to the transform, whatever the length of S.
    checkProducts<R>(tw::arith::mulUnbalanced<R>, {{1000, 1}, {1000, 7}, {1000, 64}, {3000, 65}}, 43);
}

// Whole pieces of zero limbs are skipped and pieces starting with zeros are
// multiplied from their first non-zero limb; the result must not notice.
TYPED_TEST(Rungs, UnbalancedSkipsZeroLimbs) {
    using R = TypeParam;
    LimbGenerator gen(42);
    const std::size_t s = 70;
    const Limbs S = gen.limbs<R>(s);
    Limbs L = gen.limbs<R>(10 * s + 3);
    for (std::size_t i = 0; i < 2 * s; ++i) L[i] = 0;              // two whole pieces
    for (std::size_t i = 3 * s; i < 3 * s + 50; ++i) L[i] = 0;      // the start of a piece
    for (std::size_t i = 5 * s - 10; i < 6 * s + 1; ++i) L[i] = 0;  // a piece but its last limb
    EXPECT_TRUE(rungMultiplies<R>(tw::arith::mulUnbalanced<R>, L, S));
}

}  // namespace
