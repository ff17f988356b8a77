// The 32-bit number theory of the TW_ family: GMP (or the odd parts' gcd) as
// the oracle over exhaustive small ranges and random words, and the
// library's kept results at their edges.
#include "support/harness.h"

#include <numeric>
#include <random>

namespace twtest {
namespace {

std::uint32_t oddPart(std::uint32_t v) { return v == 0 ? 0 : v >> __builtin_ctz(v); }

// Small values exhaustively, then random words with runs of zero bits.
std::vector<std::uint32_t> words() {
    std::vector<std::uint32_t> out;
    for (std::uint32_t v = 0; v < 64; ++v) out.push_back(v);
    std::mt19937 rng(7);
    for (int i = 0; i < 96; ++i) out.push_back(rng() >> (rng() % 32) << (rng() % 8));
    for (std::uint32_t v : {0x7fffffffu, 0x80000000u, 0xfffffffeu, 0xffffffffu, 65536u, 4294967291u}) out.push_back(v);
    return out;
}

TEST_F(Clean, WordGcdAndLcmFollowTheOddPartRule) {
    for (std::uint32_t a : words())
        for (std::uint32_t b : words()) {
            const std::uint32_t g = a == 0 || b == 0 ? a | b : std::gcd(oddPart(a), oddPart(b));
            ASSERT_EQ(TW_gcd(a, b), g) << a << ", " << b;
            ASSERT_EQ(TW_lcm(a, b), a == 0 || b == 0 ? std::uint64_t(a | b) : std::uint64_t(b) * (a / g)) << a << ", " << b;
        }
    EXPECT_EQ(TW_gcd(4, 6), 1u);
    EXPECT_EQ(TW_gcd(8, 8), 1u);
    EXPECT_EQ(TW_lcm(4, 6), 24u);
    EXPECT_EQ(TW_lcm(4294967295u, 4294967294u), 18446744060824649730ull);
    const std::uint32_t list[] = {15, 0, 25, 25}, zeros[] = {0, 0, 0}, evens[] = {12, 18, 30};
    EXPECT_EQ(TW_gcd_v32(list, 4), 5u);
    EXPECT_EQ(TW_gcd_v32(zeros, 3), 0u);
    EXPECT_EQ(TW_gcd_v32(evens, 3), 3u);
    EXPECT_EQ(TW_gcd_v32(nullptr, 0), 0u);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(TW_gcd_v32(nullptr, 2), 0u);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    TW_setTerminate(1);
    EXPECT_EQ(TW_gcd_v32(list, 4), 1u);  // a raised flag stops the fold with 1
}

TEST_F(Clean, WordExtendedGcdKeepsEuclidsCofactors) {
    std::int32_t x = 7, y = 7;
    EXPECT_EQ(TW_gcdEx(&x, &y, 240, 46), 2u);
    EXPECT_TRUE(x == -9 && y == 47);
    const std::tuple<std::int32_t, std::int32_t, std::uint32_t, std::int32_t, std::int32_t> edges[] = {
        {0, 0, 0, 1, 0}, {-5, 0, 5, -1, 0}, {0, -5, 5, 0, -1}, {INT32_MIN, 0, 0x80000000u, -1, 0}};
    for (const auto& [a, b, g, ex, ey] : edges) {
        EXPECT_EQ(TW_gcdEx(&x, &y, a, b), g) << a << ", " << b;
        EXPECT_TRUE(x == ex && y == ey) << a << ", " << b;
    }
    x = y = 7;
    EXPECT_EQ(TW_gcdEx(&x, &x, 3, 4), 0u);
    EXPECT_EQ(x, 7);
    TW_gcdEx(&x, &y, INT32_MIN, -1);  // outside the domain: any answer, no trap
    Mpz g, s, t;
    for (std::uint32_t ua : words())
        for (std::uint32_t ub : words()) {
            const std::int32_t a = std::int32_t(ua), b = std::int32_t(ub);
            if ((a == INT32_MIN && b == -1) || (b == INT32_MIN && a == -1)) continue;
            const std::uint32_t r = TW_gcdEx(&x, &y, a, b);
            mpz_gcdext(g, s, t, Mpz(std::to_string(a).c_str()), Mpz(std::to_string(b).c_str()));
            ASSERT_EQ(std::to_string(r), g.str()) << a << ", " << b;
            // Bezout's identity modulo 2^32, and Euclid's bounds on the cofactors.
            ASSERT_EQ(std::uint32_t(a) * std::uint32_t(x) + std::uint32_t(b) * std::uint32_t(y), r) << a << ", " << b;
            if (a != 0 && b != 0 && r != 0x80000000u) {
                ASSERT_LE(std::abs(std::int64_t(x)) * r, std::max<std::int64_t>(std::abs(std::int64_t(b)), r)) << a << ", " << b;
                ASSERT_LE(std::abs(std::int64_t(y)) * r, std::max<std::int64_t>(std::abs(std::int64_t(a)), r)) << a << ", " << b;
            }
        }
}

TEST_F(Clean, WordPowersAndInverses) {
    Mpz want;
    for (std::uint32_t m : words())
        for (std::uint32_t base : words())
            for (std::uint32_t e : {0u, 1u, 2u, 3u, 7u, 64u, 65537u, 0x80000001u, 0xffffffffu}) {
                const std::uint32_t got = TW_powMod(base, std::int32_t(e), m);
                if (m == 0) {
                    ASSERT_EQ(got, 0u);
                    ASSERT_EQ(takeError(), TW_ERR_DIV_ZERO);
                    continue;
                }
                mpz_powm_ui(want, Mpz(std::to_string(base).c_str()), e, Mpz(std::to_string(m).c_str()));
                const std::uint32_t expected = m == 1 || base == 0 ? 0 : base == 1 || e == 0 ? 1 : mpz_get_ui(want);
                ASSERT_EQ(got, expected) << base << "^" << e << " mod " << m;
            }
    EXPECT_EQ(TW_powMod(0, 0, 7), 0u);  // 0^0 is 0: the library's rule
    EXPECT_EQ(TW_powMod(2, -1, 7), 1u);
    EXPECT_EQ(TW_powMod(3, 5, 16), 3u);
    for (std::uint32_t m : words())
        for (std::uint32_t a : words()) {
            const std::uint32_t got = TW_invertMod(a, m);
            if (m == 0) {
                ASSERT_TRUE(got == 0 && takeError() == TW_ERR_DIV_ZERO);
                continue;
            }
            const bool exists = mpz_invert(want, Mpz(std::to_string(a).c_str()), Mpz(std::to_string(m).c_str())) != 0;
            ASSERT_EQ(got, m == 1 ? 1u : exists ? mpz_get_ui(want) : 0u) << a << " mod " << m;
            ASSERT_EQ(takeError(), 0);
        }
    EXPECT_EQ(TW_invertMod(9, 1), 1u);  // modulus 1 gives 1: the library's rule
    EXPECT_EQ(TW_invertMod(2, 4), 0u);
}

}  // namespace
}  // namespace twtest
