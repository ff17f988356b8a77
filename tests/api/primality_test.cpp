// Primality and prime search of both families against GMP: random values,
// strong pseudoprimes, Carmichael numbers, Lucas pseudoprimes and Mersenne
// numbers; the codes of each range; next and previous primes beside
// mpz_nextprime and a backward search; prime generation; bad input.
#include "support/harness.h"

#include "numtheory/primality.h"
#include "numtheory/probable_prime.h"
#include "numtheory/residue_words.h"

namespace twtest {
namespace {

template <class F> struct Ops;
#define PRIME_OPS(Fam, P)                                                                                  \
    template <> struct Ops<Fam> {                                                                          \
        static constexpr auto isPrime = P##_isPrime;                                                       \
        static constexpr auto test = P##_testPrimality;                                                    \
        static constexpr auto next = P##_nextPrime, previous = P##_previousPrime;                          \
        static constexpr auto generate = P##_generatePrime;                                                \
    }
PRIME_OPS(DecimalFamily, HI);
PRIME_OPS(BinaryFamily, HX);

template <class F> using Primes = Family<F>;
TYPED_TEST_SUITE(Primes, BothFamilies);

Mpz mpzOf(const char* expression) {
    Mpz v;
    mpz_set_str(v, expression, 0);
    return v;
}

TYPED_TEST(Primes, TestAgainstGmpAndItsOwnRanges) {
    using F = TypeParam;
    std::vector<Mpz> values;
    for (const char* v : {"0", "1", "2", "4294967291", "4294967297", "46856248255981", "9999999999999937",
                          "10000000000000061", "3825123056546413051", "18446744073709551557",
                          // Carmichael numbers (6k + 1)(12k + 1)(18k + 1)
                          "561", "1307351018993397769", "1307898589087370881",
                          // the square of a prime, and 2^128 + 1
                          "100000000000001220000000000003721", "340282366920938463463374607431768211457"})
        values.push_back(mpzOf(v));
    for (unsigned p : {61u, 67u, 89u, 101u, 107u, 127u, 521u, 607u}) {  // Mersenne numbers
        Mpz m;
        mpz_ui_pow_ui(m, 2, p), mpz_sub_ui(m, m, 1);
        values.push_back(m);
    }
    Gen gen(5);
    for (int i = 0; i < 120; ++i) {
        Mpz v;
        mpz_set_ui(v, gen.next() | 1);
        for (int k = i % 12; k > 0; --k) mpz_mul_2exp(v, v, 64), mpz_add_ui(v, v, gen.next());
        if (i % 3 == 0) mpz_nextprime(v, v);
        values.push_back(v);
    }
    // The portable words and the library's own choice (the multiply-add lanes
    // where the processor has them).
    for (const PathCase& path : {PathCase{"portable", true, tw::KernelPath::Portable}, kOwnChoice})
    for (const Mpz& v : values) {
        const Pinned pinned(path);
        for (int sign : {1, -1}) {
            Number<F> x;
            Mpz sv = v;
            if (sign < 0) mpz_neg(sv, sv);
            x.set(sv);
            const int gmp = mpz_probab_prime_p(v, 30);
            const std::uint32_t want = gmp == 0 ? 0 : mpz_cmp_ui(v, 10000000000000000ull) < 0 ? 2 : 1;
            ASSERT_EQ(Ops<F>::test(x, 3), want) << path.name << " " << v;
            ASSERT_EQ(Ops<F>::isPrime(x), gmp != 0 ? 1u : 0u) << path.name << " " << v;
        }
    }
    EXPECT_EQ(takeError(), 0);
}

// The strong Lucas test alone on pseudoprimes of its own and of base 2.
TEST(Primes, StrongLucasHalfOfBailliePsw) {
    using tw::numtheory::ResidueWords;
    for (std::uint64_t n : {5459ull, 5777ull, 10877ull, 16109ull, 18971ull, 22499ull, 24569ull, 25199ull, 40309ull, 58519ull}) {
        ResidueWords ring(&n, 1);
        const std::vector<std::uint64_t> words{n};
        const std::int64_t D = tw::numtheory::selfridgeD(words, 1000);
        EXPECT_TRUE(D != 0 && D != 1 && tw::numtheory::strongLucasProbablePrime(ring, words, D)) << n;
        EXPECT_FALSE(tw::numtheory::strongProbablePrimeBaseTwo(ring, words)) << n;
    }
    // Squares of the Wieferich primes pass the base-2 test and have no D: the square check decides.
    for (std::uint64_t n : {1093ull * 1093, 3511ull * 3511}) {
        EXPECT_EQ(tw::numtheory::selfridgeD({n}, 205), 1) << n;
        EXPECT_FALSE(tw::numtheory::detail::bailliePsw({n}, 0)) << n;
    }
    for (std::uint64_t n : {2047ull, 3277ull, 4033ull, 4681ull, 3215031751ull}) {  // strong pseudoprimes to base 2
        ResidueWords ring(&n, 1);
        const std::vector<std::uint64_t> words{n};
        EXPECT_TRUE(tw::numtheory::strongProbablePrimeBaseTwo(ring, words)) << n;
        const std::int64_t D = tw::numtheory::selfridgeD(words, 1000);
        EXPECT_TRUE(D == 0 || !tw::numtheory::strongLucasProbablePrime(ring, words, D)) << n;
    }
}

TYPED_TEST(Primes, NextAndPreviousAgainstGmp) {
    using F = TypeParam;
    for (const char* start : {"-5", "0", "1", "2", "3", "4294967290", "4294967291", "4294967296", "18446744073709551557",
                              "18446744073709551615", "0x1000000000000000000000000000000000000000000000000001"}) {
        Number<F> a, r;
        const Mpz v = mpzOf(start);
        a.set(v);
        Mpz next, previous = v;
        mpz_nextprime(next, mpz_sgn(v) < 0 ? Mpz() : v);
        ASSERT_TRUE(Ops<F>::next(r, a) == r.h() && holds(r, next)) << start;
        if (mpz_cmp_ui(v, 2) <= 0) {
            mpz_set_ui(previous, 0);
        } else {
            do mpz_sub_ui(previous, previous, 1);
            while (mpz_probab_prime_p(previous, 30) == 0);
        }
        ASSERT_TRUE(Ops<F>::previous(r, a) == r.h() && holds(r, previous)) << start;
        ASSERT_TRUE(Ops<F>::next(a, a) == a.h() && holds(a, next)) << start;  // in place
    }
}

TYPED_TEST(Primes, GenerationSizesAndBadInput) {
    using F = TypeParam;
    const bool decimal = std::is_same_v<typename F::Radix, tw::DecimalRadix>;
    Number<F> r;
    for (std::uint32_t size : {1u, 2u, 9u, 40u, 300u}) {
        ASSERT_EQ(Ops<F>::generate(r, size), r.h());
        const Mpz v = r.value();
        const std::uint32_t got = std::uint32_t(decimal ? v.str(10).size() : mpz_sizeinbase(v, 2));
        if (size == 1 && !decimal) {
            EXPECT_EQ(mpz_sgn(v), 0);  // no prime has one bit
            continue;
        }
        ASSERT_TRUE(got == size && mpz_probab_prime_p(v, 30) != 0) << size << ": " << v;
    }
    EXPECT_TRUE(Ops<F>::generate(r, 0) == r.h() && holds(r, Mpz()));
    EXPECT_EQ(takeError(), 0);
    const auto dead = F::newNumber();
    F::deleteNumber(dead);
    EXPECT_EQ(Ops<F>::test(dead, 0), 1u);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    EXPECT_EQ(Ops<F>::isPrime(dead), 0u);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    Number<F> a(1000003);
    TW_setTerminate(1);
    EXPECT_TRUE(Ops<F>::next(r, a) == r.h() && holds(r, Mpz()));  // a raised flag leaves 0
}

}  // namespace
}  // namespace twtest
