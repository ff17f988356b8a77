// The lagged-Fibonacci generator against Knuth's published check values, and
// the seeding of the library's own instance.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "frame/random_generator.h"
#include "tarnwick.h"

namespace {

using tw::LaggedFibonacciGenerator;

// TAOCP 3.6: after ran_start(310952) and 2009 calls of ran_array(a, 1009),
// ran_x[0] is 995235265; 1009 calls of ran_array(a, 2009) reach the same
// point of the sequence.  The next call's a[0] is that same number.
TEST(LaggedFibonacci, ReproducesKnuthsCheckValue) {
    LaggedFibonacciGenerator g;
    std::vector<std::uint32_t> a(2009);
    g.start(310952);
    for (int m = 0; m < 2009; ++m) g.generate(a.data(), 1009);
    EXPECT_EQ(g.state()[0], 995235265u);
    g.generate(a.data(), 1009);
    EXPECT_EQ(a[0], 995235265u);

    g.start(310952);
    for (int m = 0; m < 1009; ++m) g.generate(a.data(), 2009);
    EXPECT_EQ(g.state()[0], 995235265u);
}

TEST(LaggedFibonacci, SeedsAboveTheRangeAreHalved) {
    LaggedFibonacciGenerator big, halved, other;
    big.start(0xFFFFFFFFu);   // halved three times, to 0x1FFFFFFF
    halved.start(0x1FFFFFFFu);
    other.start(0x1FFFFFFEu);
    EXPECT_EQ(big.state(), halved.state());
    EXPECT_NE(big.state(), other.state());
    LaggedFibonacciGenerator top, below;
    top.start(LaggedFibonacciGenerator::kMaxSeed);  // the largest seed kept as it is
    below.start(LaggedFibonacciGenerator::kMaxSeed >> 1);
    EXPECT_NE(top.state(), below.state());
}

// Numbers are handed out as the first 100 of each batch of 1009.
TEST(LaggedFibonacci, NextHandsOutTheHeadOfEachBatch) {
    LaggedFibonacciGenerator g, reference;
    g.start(12345);
    reference.start(12345);
    std::vector<std::uint32_t> batch(LaggedFibonacciGenerator::kBatchLength);
    for (int round = 0; round < 3; ++round) {
        reference.generate(batch.data(), batch.size());
        for (std::size_t i = 0; i < LaggedFibonacciGenerator::kBatchUsed; ++i) {
            const std::uint32_t v = g.next();
            ASSERT_EQ(v, batch[i]) << "round " << round << " index " << i;
            ASSERT_LT(v, 1u << 30);
        }
    }
}

TEST(LibraryGenerator, SeedIsMixedBeforeSeeding) {
    for (std::uint32_t seed : {0u, 1u, 310952u, 0x2B9ACA00u, 0xFFFFFFFFu}) {
        TW_seedRandom(seed);
        LaggedFibonacciGenerator reference;
        reference.start(seed ^ 0x2B9ACA00u);
        for (int i = 0; i < 250; ++i) ASSERT_EQ(tw::libraryGenerator().next(), reference.next()) << seed;
    }
}

TEST(LibraryGenerator, SameSeedSameNumbers) {
    auto draw = [] {
        std::vector<std::uint32_t> v;
        for (int i = 0; i < 300; ++i) v.push_back(tw::randomBelow(1000));
        return v;
    };
    TW_seedRandom(77);
    const auto first = draw();
    TW_seedRandom(78);
    const auto other = draw();
    TW_seedRandom(77);
    EXPECT_EQ(draw(), first);
    EXPECT_NE(other, first);
}

TEST(LibraryGenerator, RandomBelowCoversItsRange) {
    TW_seedRandom(5);
    for (std::uint32_t bound : {1u, 2u, 10u, 37u, 1000u}) {
        std::vector<int> seen(bound);
        for (std::uint32_t i = 0; i < 60 * bound; ++i) {
            const std::uint32_t v = tw::randomBelow(bound);
            ASSERT_LT(v, bound);
            ++seen[v];
        }
        for (std::uint32_t v = 0; v < bound; ++v) EXPECT_GT(seen[v], 0) << v << " below " << bound;
    }
    for (std::uint32_t bound : {1000000000u, 1u << 28, 1u << 30}) {
        std::uint32_t top = 0;
        for (int i = 0; i < 2000; ++i) top = std::max(top, tw::randomBelow(bound));
        EXPECT_LT(top, bound);
        EXPECT_GT(top, bound - bound / 100);  // reaches the top of the range
    }
}

}  // namespace
