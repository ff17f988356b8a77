// The ladder entry points (arith/multiply.h) as the rest of the library
// calls them: every rung boundary, lopsided operands, zero limbs at either
// end, and the terminate flag.
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "arith/kernels/mul_ladder.h"
#include "arith/kernels/multiply.h"
#include "mul_check.h"
#include "tarnwick.h"

namespace {

using namespace twtest;
using tw::Limb;

template <class R>
class Ladder : public ::testing::Test {};
TYPED_TEST_SUITE(Ladder, Radices);

template <class R>
Limbs product(const Limbs& a, const Limbs& b) {
    return runKernel(a.size() + b.size(), [&](Limb* out) {
        tw::arith::multiply<R>(out, a.data(), a.size(), b.data(), b.size());
    });
}

template <class R>
Limbs squared(const Limbs& a) {
    return runKernel(2 * a.size(), [&](Limb* out) { tw::arith::square<R>(out, a.data(), a.size()); });
}

// Either operand order gives the same, correct product.
template <class R>
void expectProduct(const Limbs& a, const Limbs& b) {
    EXPECT_TRUE(isProduct<R>(product<R>(a, b), a, b));
    EXPECT_TRUE(isProduct<R>(product<R>(b, a), b, a));
}

// Shorter lengths on both sides of each threshold, balanced and a little lopsided.
TYPED_TEST(Ladder, ProductAtEveryRungBoundary) {
    using R = TypeParam;
    LimbGenerator gen(51);
    for (const std::size_t s : {1u, 2u, 64u, 65u, 192u, 193u, 511u, 512u}) {
        for (const std::size_t l : {s, s + 1, s + s / 2 + 3}) {
            expectProduct<R>(gen.limbs<R>(l), gen.limbs<R>(s));
        }
        expectProduct<R>(LimbGenerator::maxLimbs<R>(s), LimbGenerator::maxLimbs<R>(s));
    }
}

// The shorter operand picks the rung; the longer may be many times longer.
TYPED_TEST(Ladder, LopsidedProducts) {
    using R = TypeParam;
    LimbGenerator gen(52);
    const std::pair<std::size_t, std::size_t> shapes[] = {{2, 3000}, {64, 3000}, {65, 2000}, {150, 701}, {193, 2500}, {600, 5000}};
    for (const auto& [s, l] : shapes) expectProduct<R>(gen.limbs<R>(l), gen.limbs<R>(s));
}

TYPED_TEST(Ladder, SquareAtEveryRungBoundary) {
    using R = TypeParam;
    LimbGenerator gen(53);
    for (const std::size_t n : {1u, 2u, 128u, 129u, 256u, 257u, 511u, 512u}) {
        for (int rep = 0; rep < 2; ++rep) {
            const Limbs a = gen.limbs<R>(n);
            EXPECT_TRUE(isProduct<R>(squared<R>(a), a, a));
        }
        const Limbs top = LimbGenerator::maxLimbs<R>(n);
        EXPECT_TRUE(isProduct<R>(squared<R>(top), top, top));
    }
}

// A value times itself through multiply (operands may overlap) equals its square.
TYPED_TEST(Ladder, SelfProductIsSquare) {
    using R = TypeParam;
    LimbGenerator gen(54);
    for (const std::size_t n : {3u, 100u, 300u}) {
        const Limbs a = gen.limbs<R>(n);
        const Limbs p = runKernel(2 * n, [&](Limb* out) { tw::arith::multiply<R>(out, a.data(), n, a.data(), n); });
        EXPECT_EQ(p, squared<R>(a));
    }
}

// Zero limbs at the bottom only shift the product (B^k * B^k for a power of
// the radix); zero limbs at the top leave zeros; a zero operand gives zero.
TYPED_TEST(Ladder, ZeroLimbsAtEitherEnd) {
    using R = TypeParam;
    LimbGenerator gen(55);
    Limbs power(101, 0);
    power[100] = 1;
    const Limbs pp = product<R>(power, power);
    EXPECT_TRUE(isProduct<R>(pp, power, power));
    EXPECT_EQ(std::count(pp.begin(), pp.end(), Limb(0)), std::ptrdiff_t(pp.size() - 1));
    EXPECT_TRUE(isProduct<R>(squared<R>(power), power, power));

    for (const std::size_t n : {70u, 300u}) {
        Limbs a = gen.limbs<R>(n), b = gen.limbs<R>(n);
        std::fill(a.begin(), a.begin() + n / 3, 0);          // zero bottom
        b.insert(b.end(), 40, 0);                             // zero top
        expectProduct<R>(a, b);
        EXPECT_TRUE(isProduct<R>(squared<R>(a), a, a));
        EXPECT_TRUE(isProduct<R>(squared<R>(b), b, b));
    }
    const Limbs zero(5, 0);
    expectProduct<R>(zero, gen.limbs<R>(80));
    EXPECT_TRUE(isProduct<R>(squared<R>(zero), zero, zero));
}

// The arena's estimate is only a first block: a scratch that starts far too
// small grows and the result is the same.
TYPED_TEST(Ladder, ScratchGrowsPastAPoorEstimate) {
    using R = TypeParam;
    LimbGenerator gen(56);
    const Limbs a = gen.limbs<R>(700), b = gen.limbs<R>(650);
    tw::arith::LimbScratch scratch(1);
    const Limbs got = runKernel(a.size() + b.size(), [&](Limb* out) {
        tw::arith::mulLadder<R>(out, a.data(), a.size(), b.data(), b.size(), scratch);
    });
    EXPECT_TRUE(isProduct<R>(got, a, b));
    tw::arith::LimbScratch sqrScratch(1);
    const Limbs sq = runKernel(2 * a.size(), [&](Limb* out) {
        tw::arith::sqrLadder<R>(out, a.data(), a.size(), sqrScratch);
    });
    EXPECT_TRUE(isProduct<R>(sq, a, a));
}

// The first block sized by the estimate serves the whole recursion below the
// transform, so a product allocates its scratch once.
TYPED_TEST(Ladder, ScratchEstimateCoversTheRecursion) {
    using R = TypeParam;
    LimbGenerator gen(58);
    const std::pair<std::size_t, std::size_t> shapes[] = {{65, 65}, {192, 130}, {300, 300}, {511, 511}, {511, 200}, {2000, 300}};
    for (const auto& [l, s] : shapes) {
        const Limbs a = gen.limbs<R>(l), b = gen.limbs<R>(s);
        tw::arith::LimbScratch scratch(tw::arith::mulScratchEstimate(l, s));
        Limbs out(l + s);
        tw::arith::mulLadder<R>(out.data(), a.data(), l, b.data(), s, scratch);
        EXPECT_LE(scratch.blockCount(), 1u) << l << " x " << s;
        tw::arith::LimbScratch sqrScratch(tw::arith::mulScratchEstimate(l, l));
        Limbs sq(2 * l);
        tw::arith::sqrLadder<R>(sq.data(), a.data(), l, sqrScratch);
        EXPECT_LE(sqrScratch.blockCount(), 1u) << l << " squared";
    }
}

// With the terminate flag raised every rung returns at once, writing nothing
// outside the product; lowering the flag restores normal work.
TYPED_TEST(Ladder, TerminateFlagStopsEveryRung) {
    using R = TypeParam;
    LimbGenerator gen(57);
    const std::pair<std::size_t, std::size_t> shapes[] = {{5, 5}, {100, 100}, {300, 300}, {700, 600}, {5000, 70}};
    TW_setTerminate(1);
    for (const auto& [l, s] : shapes) {
        const Limbs a = gen.limbs<R>(l), b = gen.limbs<R>(s);
        product<R>(a, b);
        squared<R>(a);
    }
    TW_setTerminate(0);
    const Limbs a = gen.limbs<R>(300), b = gen.limbs<R>(250);
    expectProduct<R>(a, b);
}

}  // namespace
