// The 32-bit prime services against the test's own sieve: answer for answer
// over both table ranges, and in windows at random points and around every
// boundary of the strong test's range; pi(x) at known values and as sieved
// differences; the library's sentinels; the tables' first use from threads.
#include "support/harness.h"

#include <random>
#include <thread>

namespace twtest {
namespace {

// Primality of low, ..., low + length - 1 by sieving with the primes below 2^16.
std::vector<bool> sieved(std::uint64_t low, std::uint32_t length) {
    static const std::vector<std::uint32_t> divisors = [] {
        std::vector<std::uint32_t> ps;
        for (std::uint32_t n = 2; n < 65536; ++n) {
            bool prime = true;
            for (std::uint32_t p : ps) {
                if (p * p > n) break;
                if (n % p == 0) prime = false;
            }
            if (prime) ps.push_back(n);
        }
        return ps;
    }();
    std::vector<bool> prime(length, true);
    for (std::uint64_t v = low; v < low + length && v < 2; ++v) prime[v - low] = false;
    for (std::uint64_t p : divisors)
        for (std::uint64_t m = std::max(p * p, (low + p - 1) / p * p); m < low + length; m += p) prime[m - low] = false;
    return prime;
}

// Every service in [low, low + length) against the sieve.
void checkWindow(std::uint64_t low, std::uint32_t length) {
    const std::vector<bool> prime = sieved(low, length);
    std::uint32_t count = 0, last = 0;
    for (std::uint32_t i = 0; i < length; ++i) {
        const std::uint32_t v = std::uint32_t(low + i);
        ASSERT_EQ(TW_isPrime(v), prime[i] ? 1u : 0u) << v;
        if (prime[i] && last != 0 && v < 0x80000000u) {
            ASSERT_EQ(TW_nextPrime(std::int32_t(last)), std::int32_t(v)) << last;
            ASSERT_EQ(TW_previousPrime(std::int32_t(v)), std::int32_t(last)) << v;
            ASSERT_EQ(TW_nextPrime(std::int32_t(v) - 1), std::int32_t(v)) << v;
        }
        if (prime[i]) ++count, last = v;
    }
    const std::uint32_t high = std::uint32_t(low + length - 1);
    ASSERT_EQ(TW_getPrimeCount(std::uint32_t(low), high), count) << low;
    ASSERT_EQ(TW_getPrimePi(high) - TW_getPrimePi(std::uint32_t(low)), count - (prime[0] ? 1 : 0)) << low;
    if (last != 0) ASSERT_EQ(TW_getPrime(TW_getPrimePi(high)), last) << high;
    std::vector<std::uint32_t> list(count + 1, 0);
    ASSERT_EQ(TW_getPrimeList(list.data(), std::uint32_t(low), high, count + 1), count);
    ASSERT_EQ(TW_getPrimeList(nullptr, std::uint32_t(low), high, 0), count);
    if (count > 0) ASSERT_EQ(list[count - 1], last);
}

TEST_F(Clean, WordPrimesMatchASieveOverBothTablesAndTheStrongTestsRange) {
    checkWindow(0, 2643920);                         // the small table and past its end
    checkWindow(4294875367u - 4000, 91929 + 4000);  // the top table to 2^32 - 1
    std::mt19937 rng(41);
    const std::uint64_t around[] = {9080191, 15560651, 2147483647, 1000000000, 4294875367u - 70000};
    for (std::uint64_t v : around) checkWindow(v - 3000, 6000);
    for (int i = 0; i < 12; ++i) checkWindow(2643901 + rng() % (4294875367u - 2643901 - 8000), 8000);
    // Counts across the span where a direct sieve takes over from two values of pi.
    for (std::uint32_t span : {(1u << 18) - 1, 1u << 18, 3u << 17})
        checkWindow(50000000 + rng() % 1000000, span);
}

TEST_F(Clean, WordPrimeCountsAndIndicesAtKnownValues) {
    const std::uint32_t piOfPowersOfTen[] = {0, 4, 25, 168, 1229, 9592, 78498, 664579, 5761455, 50847534};
    std::mt19937 rng(43);
    std::vector<std::uint32_t> x(64), pi(64);
    for (std::size_t i = 0; i < x.size(); ++i) pi[i] = TW_getPrimePi(x[i] = rng());
    for (const PathCase& path : kernelPaths()) {  // popcnt or plain bit counts: the same pi
        Pinned pinned(path);
        for (std::uint32_t k = 0, v = 1; k < 10; ++k, v *= 10) EXPECT_EQ(TW_getPrimePi(v), piOfPowersOfTen[k]) << v;
        EXPECT_EQ(TW_getPrimePi(1024), 172u);
        EXPECT_EQ(TW_getPrimePi(1u << 31), 105097565u);
        EXPECT_EQ(TW_getPrimePi(4294875366u), 203276124u);
        EXPECT_EQ(TW_getPrimePi(4294967295u), 203280221u);
        for (std::size_t i = 0; i < x.size(); ++i) ASSERT_EQ(TW_getPrimePi(x[i]), pi[i]) << path.name << " " << x[i];
    }
    const std::pair<std::uint32_t, std::uint32_t> nth[] = {
        {0, 0}, {1, 2}, {192836, 2643899}, {192837, 2643913}, {664579, 9999991}, {664580, 10000019},
        {5761455, 99999989}, {50847534, 999999937}, {50847535, 1000000007}, {203276125, 4294875367u},
        {203280221, 4294967291u}, {203280222, 0}, {0xFFFFFFFFu, 0}};
    for (const auto& [k, p] : nth) EXPECT_EQ(TW_getPrime(k), p) << k;
    EXPECT_EQ(TW_getPrimeCount(10, 9), 0u);
    EXPECT_EQ(TW_getPrimeCount(0, 4294967295u), 203280221u);
    std::uint32_t three[3];
    EXPECT_EQ(TW_getPrimeList(three, 4294967200u, 4294967295u, 3), 3u);
    EXPECT_TRUE(three[0] == 4294967231u && three[2] == 4294967291u);
    EXPECT_EQ(TW_getPrimeList(three, 20, 10, 3), 0u);
}

TEST_F(Clean, WordPrimeSentinelsAndNegativePrimes) {
    EXPECT_EQ(TW_isPrime(9080191), 0u);
    EXPECT_EQ(TW_nextPrime(9080190), TW_nextPrime(9080191));
    const std::pair<std::int32_t, std::int32_t> next[] = {{-3, -2},         {-2, 2}, {1, 2}, {INT32_MIN, -2147483647},
                                                          {2643899, 2643913}, {2147483646, 2147483647}, {2147483647, 1}};
    for (const auto& [n, p] : next) EXPECT_EQ(TW_nextPrime(n), p) << n;
    const std::pair<std::int32_t, std::int32_t> previous[] = {{2, -2}, {-1, -2}, {-2, -3}, {3, 2}, {-2147483646, -2147483647},
                                                              {-2147483647, -1}, {INT32_MIN, -1}, {2643913, 2643899}};
    for (const auto& [n, p] : previous) EXPECT_EQ(TW_previousPrime(n), p) << n;
    EXPECT_EQ(takeError(), 0);
}

// The tables are built on first use; threads that ask at once all wait for
// them (a fresh process, so that the tables are not built yet).
TEST(WordPrimesDeathTest, FirstUseFromManyThreadsSeesWholeTables) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            std::vector<std::thread> threads;
            std::atomic<int> wrong{0};
            for (int i = 0; i < 4; ++i)
                threads.emplace_back([&] { wrong += TW_getPrimePi(4294967295u) != 203280221u || TW_getPrime(192836) != 2643899; });
            for (auto& t : threads) t.join();
            std::exit(wrong.load());
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace twtest
