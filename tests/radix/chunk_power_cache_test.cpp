// The powers kept between conversions: warm and cold conversions agree with
// GMP, the cache stays within its entries as radices come and go, powers
// that the terminate flag left unfinished are never handed out again, and the
// reciprocal kept for a level serves short and long quotients alike.
#include "arith/convert/chunk_power_cache.h"

#include <gmp.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "arith/kernels/divide.h"
#include "frame/error_state.h"
#include "arith/convert/digit_conversion.h"
#include "radix/oracle_digits.h"

namespace {

using twtest::Mpz;

template <class R>
class ChunkPowerCache : public ::testing::Test {
protected:
    void SetUp() override { tw::convert::clearChunkPowerCache(); }
    void TearDown() override {
        tw::clearErrorState();
        tw::convert::clearChunkPowerCache();
    }
};
using Radices = ::testing::Types<tw::DecimalRadix, tw::BinaryRadix>;
TYPED_TEST_SUITE(ChunkPowerCache, Radices);

template <class R>
tw::SignedNumber<R> randomNumber(gmp_randstate_t state, Mpz& v, std::size_t bits) {
    mpz_urandomb(v.v, state, bits);
    mpz_setbit(v.v, bits - 1);
    tw::SignedNumber<R> x;
    twtest::setFromMpz(x, v.v);
    return x;
}

// More radices than the cache keeps, twice round: every conversion, whether
// it finds its powers or builds them, gives GMP's digits.
TYPED_TEST(ChunkPowerCache, WarmAndColdConversionsAgree) {
    gmp_randstate_t state;
    gmp_randinit_mt(state);
    gmp_randseed_ui(state, 31);
    const std::vector<std::uint32_t> radices{36, 7, 3, 62, 1000000007u, 11, 4294967295u};
    for (int round = 0; round < 2; ++round) {
        for (std::uint32_t radix : radices) {
            for (std::size_t bits : {3000, 40000, 41000, 120000}) {
                Mpz v;
                const auto x = randomNumber<TypeParam>(state, v, bits);
                ASSERT_EQ(tw::toDigits<TypeParam>(x.rec(), radix), twtest::mpzToDigits(v.v, radix))
                    << "radix " << radix << ", " << bits << " bits, round " << round;
            }
            EXPECT_LE(tw::convert::chunkPowerCacheEntries(), 2 * tw::convert::kChunkPowerCacheEntries);
        }
    }
    EXPECT_GT(tw::convert::chunkPowerCacheLimbs(), 0u);
    gmp_randclear(state);
}

TYPED_TEST(ChunkPowerCache, UnfinishedPowersAreDropped) {
    const std::uint64_t chunk = 2176782336u;  // 36^6
    auto powers = tw::convert::acquireChunkPowers<TypeParam>(chunk, 32, false);
    ASSERT_FALSE(powers->odd(3).empty());
    tw::convert::releaseChunkPowers<TypeParam>(powers);
    EXPECT_EQ(tw::convert::chunkPowerCacheEntries(), 1u);
    auto again = tw::convert::acquireChunkPowers<TypeParam>(chunk, 32, false);
    EXPECT_EQ(again.get(), powers.get());

    // The flag cuts the next squarings short: the powers go, not into the cache.
    tw::setLastError(tw::kErrStopped);
    EXPECT_TRUE(again->odd(6).empty());
    tw::convert::releaseChunkPowers<TypeParam>(again);
    EXPECT_EQ(tw::convert::chunkPowerCacheEntries(), 0u);
    tw::clearErrorState();

    auto fresh = tw::convert::acquireChunkPowers<TypeParam>(chunk, 32, false);
    EXPECT_NE(fresh.get(), powers.get());
    Mpz expected;
    mpz_ui_pow_ui(expected.v, chunk, 32 << 6);
    const auto& p6 = fresh->odd(6);
    ASSERT_FALSE(p6.empty());
    EXPECT_EQ(mpz_cmp(twtest::toMpz<TypeParam>(p6).v, expected.v), 0);
    tw::convert::releaseChunkPowers<TypeParam>(fresh);
}

// A short quotient first (a reciprocal of its length), then balanced ones
// (the reciprocal is rebuilt longer), then short again (served by the longer
// one): every quotient and remainder as the plain division gives them.
TYPED_TEST(ChunkPowerCache, LevelReciprocalServesEveryQuotient) {
    const std::uint64_t chunk = 1801088541u;  // 21^7
    auto powers = tw::convert::acquireChunkPowers<TypeParam>(chunk, 32, false);
    const unsigned level = 3;
    const auto d = powers->odd(level);
    twtest::LimbGenerator gen(41);
    for (std::size_t quotientLimbs : std::vector<std::size_t>{3, 9, d.size(), d.size() - 5, 1, 20, d.size()}) {
        const auto a = gen.limbs<TypeParam>(d.size() + quotientLimbs - 1);
        std::vector<tw::Limb> q(quotientLimbs), r(d.size()), q2(quotientLimbs), r2(d.size());
        powers->divide(level, q.data(), r.data(), a.data(), a.size());
        tw::arith::divide<TypeParam>(q2.data(), r2.data(), a.data(), a.size(), d.data(), d.size());
        EXPECT_EQ(q, q2) << quotientLimbs << " quotient limbs";
        EXPECT_EQ(r, r2) << quotientLimbs << " quotient limbs";
    }
    tw::convert::releaseChunkPowers<TypeParam>(powers);
}

}  // namespace
