// Factorials, double factorials, primorials, binomials, arrangements,
// Fibonacci and Lucas numbers and list products of both families against
// GMP, from the smallest indices to 10^5 and over lists that fill every
// level of the product trees; the kept rules, the size limits, negative
// indices, empty and null lists, unknown handles and the terminate flag.
#include "support/harness.h"

namespace twtest {
namespace {

template <class F> struct Ops;
#define COMB_OPS(Fam, P, S)                                                                                  \
    template <> struct Ops<Fam> {                                                                            \
        static constexpr auto factorial = P##_factorial, factorial2 = P##_factorial2,                        \
                              primorial = P##_primeFactorial;                                                \
        static constexpr auto fibonacci = P##_fibonacci, lucas = P##_lucas;                                  \
        static constexpr auto combination = P##_combination, permutation = P##_permutation;                  \
        static constexpr auto productWords = P##_product_v32;                                                \
        static constexpr auto product = P##_product_v##S;                                                    \
        static constexpr auto sumsWords = P##_sumsOfLikePowers_v32;                                          \
        static constexpr auto sums = P##_sumsOfLikePowers_v##S;                                              \
    }
COMB_OPS(DecimalFamily, HI, hi);
COMB_OPS(BinaryFamily, HX, hx);

template <class F> using Combinatorics = Family<F>;
TYPED_TEST_SUITE(Combinatorics, BothFamilies);
template <class F> using H = typename F::Handle;

// n! / (n - k)! for GMP, which has no such function.
void arrangements(mpz_ptr w, unsigned long n, unsigned long k) {
    Mpz f;
    mpz_bin_uiui(w, n, k), mpz_fac_ui(f, k), mpz_mul(w, w, f);
}

// Each index function at indices around the leaves and levels of the
// product trees (primes up to 10^5 fill nine levels of 32-word leaves).
TYPED_TEST(Combinatorics, IndexFunctionsAgainstGmp) {
    using F = TypeParam;
    for (std::uint32_t n : {0u, 1u, 2u, 3u, 4u, 5u, 9u, 10u, 25u, 131u, 132u, 1000u, 2311u, 9973u, 30031u, 100000u}) {
        Mpz w;
        Number<F> r(-7);
        mpz_fac_ui(w, n);
        EXPECT_TRUE(Ops<F>::factorial(r, n) == r.h() && holds(r, w)) << "factorial " << n;
        mpz_2fac_ui(w, n), Ops<F>::factorial2(r, n);
        EXPECT_TRUE(holds(r, w)) << "factorial2 " << n;
        mpz_2fac_ui(w, n + 1), Ops<F>::factorial2(r, n + 1);
        EXPECT_TRUE(holds(r, w)) << "factorial2 " << n + 1;
        mpz_primorial_ui(w, n), Ops<F>::primorial(r, n);
        EXPECT_TRUE(holds(r, w)) << "primorial " << n;
        mpz_fib_ui(w, n), Ops<F>::fibonacci(r, std::int32_t(n));
        EXPECT_TRUE(holds(r, w)) << "fibonacci " << n;
        mpz_lucnum_ui(w, n), Ops<F>::lucas(r, std::int32_t(n));
        EXPECT_TRUE(holds(r, w)) << "lucas " << n;
        for (std::uint32_t k : {0u, 1u, 2u, 7u, n / 129, n / 127, n / 3, n / 2, n - 1, n}) {
            if (k > n) continue;
            mpz_bin_uiui(w, n, k), Ops<F>::combination(r, std::int32_t(n), std::int32_t(k));
            EXPECT_TRUE(holds(r, w)) << "combination " << n << " " << k;
            if (n > 30000 && k > n / 3) continue;  // GMP's own reference is slow there
            arrangements(w, n, k), Ops<F>::permutation(r, std::int32_t(n), std::int32_t(k));
            EXPECT_TRUE(holds(r, w)) << "permutation " << n << " " << k;
        }
    }
    Mpz w;
    Number<F> r;
    mpz_bin_uiui(w, 2147483647u, 5), Ops<F>::combination(r, 2147483647, 5);  // the direct product, no sieve to n
    EXPECT_TRUE(holds(r, w));
    arrangements(w, 2147483647u, 4), Ops<F>::permutation(r, 2147483647, 4);
    EXPECT_TRUE(holds(r, w));
    EXPECT_EQ(takeError(), 0);
}

TYPED_TEST(Combinatorics, NegativeIndicesAndRangesOutside) {
    using F = TypeParam;
    Number<F> r(5);
    const struct { std::int32_t n; long fib, luc; } named[] = {{-1, 1, -1}, {-2, -1, 3}, {-3, 2, -4}, {0, 0, 2}};
    for (const auto& c : named) {
        EXPECT_TRUE(Ops<F>::fibonacci(r, c.n) == r.h() && holds(r, c.fib)) << c.n;
        EXPECT_TRUE(Ops<F>::lucas(r, c.n) == r.h() && holds(r, c.luc)) << c.n;
    }
    for (std::int32_t m : {4, 5, 90, 91, 1001}) {
        Mpz w;
        mpz_fib_ui(w, m);
        if (m % 2 == 0) mpz_neg(w, w);
        EXPECT_TRUE(Ops<F>::fibonacci(r, -m) && holds(r, w)) << m;
        mpz_lucnum_ui(w, m);
        if (m % 2 == 1) mpz_neg(w, w);
        EXPECT_TRUE(Ops<F>::lucas(r, -m) && holds(r, w)) << m;
    }
    const std::pair<std::int32_t, std::int32_t> outside[] = {{-1, 0}, {5, -1}, {5, 6}, {-3, -5}};
    for (const auto& [n, k] : outside) {
        r.set(Mpz(9));
        EXPECT_TRUE(Ops<F>::combination(r, n, k) == r.h() && holds(r, 0L)) << n << " " << k;
        r.set(Mpz(9));
        EXPECT_TRUE(Ops<F>::permutation(r, n, k) == r.h() && holds(r, 0L)) << n << " " << k;
    }
    EXPECT_EQ(takeError(), 0);
}

// Lists whose lengths fill each level of the word tree, with words of
// every size, zeros and ones; signed lists of numbers of many limbs.
TYPED_TEST(Combinatorics, ListProductsAndSumsOfLikePowers) {
    using F = TypeParam;
    using R = typename F::Radix;
    Gen gen(91);
    for (std::size_t count : {1, 2, 31, 32, 33, 64, 65, 200, 1500}) {
        std::vector<std::uint32_t> words(count);
        for (auto& v : words) v = std::uint32_t(gen.next() >> (gen.next() % 32)) | 1u;
        Mpz w(1), s, t;
        for (std::uint32_t v : words) mpz_mul_ui(w, w, v), mpz_ui_pow_ui(t, v, 3), mpz_add(s, s, t);
        Number<F> r;
        EXPECT_TRUE(Ops<F>::productWords(r, words.data(), std::uint32_t(count)) == r.h() && holds(r, w)) << count;
        EXPECT_TRUE(Ops<F>::sumsWords(r, words.data(), std::uint32_t(count), 3) && holds(r, s)) << count;
        words[gen.below(count)] = 0;
        EXPECT_TRUE(Ops<F>::productWords(r, words.data(), std::uint32_t(count)) && holds(r, 0L)) << count;
    }
    for (std::size_t count : {1, 2, 3, 9}) {
        std::vector<std::unique_ptr<Number<F>>> numbers;
        std::vector<H<F>> handles;
        Mpz w(1), s, t;
        for (std::size_t i = 0; i < count; ++i) {
            Mpz v = gen.signedValue<R>(1 + gen.below(300));
            if (mpz_sgn(v) == 0) mpz_set_si(v, -3);
            numbers.push_back(std::make_unique<Number<F>>()), numbers.back()->set(v), handles.push_back(*numbers.back());
            mpz_mul(w, w, v), mpz_pow_ui(t, v, 5), mpz_add(s, s, t);
        }
        Number<F> r;
        EXPECT_TRUE(Ops<F>::product(r, handles.data(), std::uint32_t(count)) == r.h() && holds(r, w)) << count;
        EXPECT_TRUE(Ops<F>::sums(r, handles.data(), std::uint32_t(count), 5) && holds(r, s)) << count;
        EXPECT_TRUE(Ops<F>::product(handles[0], handles.data(), std::uint32_t(count)) && holds(*numbers[0], w));
    }
    EXPECT_EQ(takeError(), 0);
}

TYPED_TEST(Combinatorics, KeptRulesEmptyAndNullLists) {
    using F = TypeParam;
    const std::uint32_t words[] = {2, 3, 4};
    Number<F> r(8), two(2), minusTwo(-2);
    EXPECT_TRUE(Ops<F>::sumsWords(r, words, 3, 0) && holds(r, 24));  // power 0 is the product
    EXPECT_TRUE(Ops<F>::sumsWords(r, words, 3, 2) && holds(r, 29));
    const H<F> signedList[] = {two, minusTwo, minusTwo};
    EXPECT_TRUE(Ops<F>::sums(r, signedList, 3, 3) && holds(r, -8));
    EXPECT_TRUE(Ops<F>::sums(r, signedList, 3, 0) && holds(r, 8));
    EXPECT_TRUE(Ops<F>::productWords(r, nullptr, 0) == r.h() && holds(r, 1));
    EXPECT_TRUE(Ops<F>::product(r, nullptr, 0) == r.h() && holds(r, 1));
    EXPECT_TRUE(Ops<F>::sumsWords(r, words, 0, 4) && holds(r, 0L) && Ops<F>::sums(r, nullptr, 0, 0) && holds(r, 1));
    EXPECT_EQ(takeError(), 0);
    EXPECT_TRUE(Ops<F>::productWords(r, nullptr, 2) == nullptr && takeError() == -4 && holds(r, 1));
    EXPECT_TRUE(Ops<F>::sumsWords(r, nullptr, 1, 2) == nullptr && takeError() == -4);
    EXPECT_TRUE(Ops<F>::product(r, nullptr, 1) == nullptr && takeError() == -4);
    const H<F> dead = [] { const H<F> h = F::newNumber(); return F::deleteNumber(h), h; }();
    const H<F> withDead[] = {two, dead};
    EXPECT_TRUE(Ops<F>::sums(r, withDead, 2, 1) == nullptr && takeError() == -4 && holds(r, 1));
    EXPECT_TRUE(Ops<F>::factorial(dead, 5) == nullptr && takeError() == -4);
}

// The limits refuse before any work; a cheap n just inside them computes.
TYPED_TEST(Combinatorics, SizeLimits) {
    using F = TypeParam;
    Number<F> r(3);
    EXPECT_TRUE(Ops<F>::factorial(r, 518678058) == r.h() && holds(r, 0L) && takeError() == -3);
    EXPECT_TRUE(Ops<F>::factorial2(r, 1002691941) == r.h() && holds(r, 0L) && takeError() == -3);
    EXPECT_TRUE(Ops<F>::factorial(r, 4294967295u) && holds(r, 0L) && takeError() == -3);
    EXPECT_TRUE(Ops<F>::permutation(r, 2147483647, 2147483647) && holds(r, 0L) && takeError() == -3);
    EXPECT_TRUE(Ops<F>::factorial(r, 20) && holds(r, Mpz("2432902008176640000")) && takeError() == 0);
}

TYPED_TEST(Combinatorics, TheTerminateFlagGivesZero) {
    using F = TypeParam;
    Number<F> r(1), two(2);
    const std::uint32_t words[] = {5, 6};
    const H<F> list[] = {two, two};
    TW_setTerminate(1);
    for (int op = 0; op < 11; ++op) {
        r.set(Mpz(77));
        switch (op) {
            case 0: Ops<F>::factorial(r, 3000); break;
            case 1: Ops<F>::factorial2(r, 3001); break;
            case 2: Ops<F>::primorial(r, 3000); break;
            case 3: Ops<F>::combination(r, 3000, 1000); break;
            case 4: Ops<F>::permutation(r, 3000000, 10); break;
            case 5: Ops<F>::fibonacci(r, 30000); break;
            case 6: Ops<F>::lucas(r, 0); break;
            case 7: Ops<F>::productWords(r, words, 2); break;
            case 8: Ops<F>::product(r, list, 2); break;
            case 9: Ops<F>::sumsWords(r, words, 2, 2); break;
            case 10: Ops<F>::sums(r, list, 2, 0); break;
        }
        EXPECT_TRUE(holds(r, 0L)) << op;
    }
}

}  // namespace
}  // namespace twtest
