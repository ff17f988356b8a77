// The division kernel divide(): one-limb divisors, one-limb quotients, long
// quotients through the reciprocal, and the shapes that stress each path.
#include "arith/kernels/divide.h"

#include "division/division_check.h"
#include "tarnwick.h"

namespace twtest {
namespace {

template <class R>
class DivideTest : public ::testing::Test {};
TYPED_TEST_SUITE(DivideTest, Radices);

// divide(a, b) with the remainder and without it, both checked with GMP.
template <class R>
::testing::AssertionResult dividesCorrectly(const Limbs& a, const Limbs& b) {
    const std::size_t qn = a.size() - b.size() + 1;
    Limbs q(qn + 1, kSentinel), r(b.size() + 1, kSentinel);
    tw::arith::divide<R>(q.data(), r.data(), a.data(), a.size(), b.data(), b.size());
    if (auto ok = matchesGmp<R>(a, b, q.data(), qn, r.data()); !ok) return ok;
    std::fill(q.begin(), q.end(), kSentinel);
    tw::arith::divide<R>(q.data(), nullptr, a.data(), a.size(), b.data(), b.size());
    return matchesGmp<R>(a, b, q.data(), qn, nullptr);
}

// A random value below b, as limbs.
template <class R>
Mpz randomBelow(LimbGenerator& gen, const Limbs& b) {
    Mpz v;
    mpz_tdiv_r(v, toMpz<R>(gen.limbs<R>(b.size())), toMpz<R>(b));
    return v;
}

TYPED_TEST(DivideTest, OneLimbDivisor) {
    using R = TypeParam;
    LimbGenerator gen(1);
    std::vector<Limb> divisors = {1, 2, 3, 7, R::base / 2, R::base / 2 + 1, R::base - 2, R::base - 1};
    for (int i = 0; i < 8; ++i) divisors.push_back(1 + Limb(gen.below(R::base - 1)));
    for (const Limb d : divisors)
        for (const std::size_t an : {1, 2, 3, 5, 17, 64}) {
            EXPECT_TRUE(dividesCorrectly<R>(gen.limbs<R>(an), Limbs{d}));
            EXPECT_TRUE(dividesCorrectly<R>(LimbGenerator::maxLimbs<R>(an), Limbs{d}));
        }
}

TYPED_TEST(DivideTest, OneQuotientLimb) {
    using R = TypeParam;
    LimbGenerator gen(2);
    for (const std::size_t bn : {2, 3, 4, 5, 9, 33}) {
        for (int i = 0; i < 60; ++i) {
            const Limbs b = gen.limbs<R>(bn);
            // Digits from 1 to 4 (dividend's top limb at most about 4 times
            // the divisor's) and up to the largest digit.
            Limb digit;
            switch (i % 4) {
                case 0: digit = 1 + Limb(gen.below(4)); break;
                case 1: digit = R::base - 1; break;
                default: digit = 1 + Limb(gen.below(R::base - 1)); break;
            }
            Mpz rem;
            switch (i % 3) {
                case 0: rem = randomBelow<R>(gen, b); break;
                case 1: mpz_sub_ui(rem, toMpz<R>(b), 1); break;
                default: break;  // zero
            }
            const Limbs a = multiplePlus<R>(Limbs{digit}, b, rem);
            ASSERT_TRUE(a.size() == bn || a.size() == bn + 1);
            EXPECT_TRUE(dividesCorrectly<R>(a, b)) << "digit " << digit;
        }
        // Same length, any order of the top limbs.
        for (int i = 0; i < 20; ++i) EXPECT_TRUE(dividesCorrectly<R>(gen.limbs<R>(bn), gen.limbs<R>(bn)));
    }
}

TYPED_TEST(DivideTest, LongQuotientsAtManySizes) {
    using R = TypeParam;
    LimbGenerator gen(3);
    for (int i = 0; i < 300; ++i) {
        const std::size_t bn = 2 + gen.below(30);
        const std::size_t an = bn + 1 + gen.below(3 * bn + 20);
        EXPECT_TRUE(dividesCorrectly<R>(gen.limbs<R>(an), gen.limbs<R>(bn)));
    }
    // Short divisors under long dividends (many blocks), balanced and
    // lopsided long ones.
    const std::pair<std::size_t, std::size_t> shapes[] = {{2, 300},   {3, 700},   {50, 101},  {100, 199},
                                                          {150, 300}, {40, 900},  {333, 700}, {600, 1201},
                                                          {700, 760}, {1200, 1300}};
    for (const auto& [bn, an] : shapes) EXPECT_TRUE(dividesCorrectly<R>(gen.limbs<R>(an), gen.limbs<R>(bn)));
}

// Dividends just below, at and just above a multiple of the divisor: the
// quotient estimate is then most often one off, in either direction.
TYPED_TEST(DivideTest, DividendsNextToAMultipleOfTheDivisor) {
    using R = TypeParam;
    LimbGenerator gen(4);
    // (divisor limbs, quotient limbs); divisors much longer than the
    // quotient are where the estimate also comes out one too big.
    const std::pair<std::size_t, std::size_t> shapes[] = {{2, 2},   {2, 9},   {3, 3},   {5, 4},   {8, 8},
                                                          {17, 16}, {30, 31}, {4, 40},  {64, 64}, {150, 149},
                                                          {9, 2},   {30, 3},  {64, 10}, {150, 40}};
    for (const auto& [bn, qn] : shapes) {
        for (int i = 0; i < 12; ++i) {
            const Limbs b = gen.limbs<R>(bn);
            const Limbs q = gen.limbs<R>(qn);
            Mpz delta;
            mpz_set_si(delta, -1);
            EXPECT_TRUE(dividesCorrectly<R>(multiplePlus<R>(q, b, delta), b));
            mpz_set_si(delta, 0);
            EXPECT_TRUE(dividesCorrectly<R>(multiplePlus<R>(q, b, delta), b));
            mpz_set_si(delta, 1);
            EXPECT_TRUE(dividesCorrectly<R>(multiplePlus<R>(q, b, delta), b));
            mpz_sub_ui(delta, toMpz<R>(b), 1);
            EXPECT_TRUE(dividesCorrectly<R>(multiplePlus<R>(q, b, delta), b));
        }
    }
}

TYPED_TEST(DivideTest, ZeroLimbsAtTheBottomOfTheDivisor) {
    using R = TypeParam;
    LimbGenerator gen(5);
    for (const std::size_t zeros : {1, 2, 5, 20}) {
        for (const std::size_t m : {1, 2, 3, 10, 40}) {
            Limbs b(zeros, 0);
            const Limbs top = gen.limbs<R>(m);
            b.insert(b.end(), top.begin(), top.end());
            const std::size_t bn = b.size();
            for (const std::size_t an : {bn, bn + 1, 2 * bn + 3, 5 * bn}) {
                EXPECT_TRUE(dividesCorrectly<R>(gen.limbs<R>(an), b));
                Limbs a = gen.limbs<R>(an);
                std::fill(a.begin(), a.begin() + std::min(zeros, an - 1), 0);
                EXPECT_TRUE(dividesCorrectly<R>(a, b));
            }
        }
    }
}

TYPED_TEST(DivideTest, ExtremeLimbPatterns) {
    using R = TypeParam;
    constexpr Limb kMax = R::base - 1;
    for (const std::size_t bn : {2, 3, 4, 7, 40, 130}) {
        Limbs oneThenMax(bn, kMax), oneThenZero(bn, 0), maxThenZero(bn, 0);
        oneThenMax.back() = 1;
        oneThenZero.back() = 1;
        maxThenZero.back() = kMax;
        const Limbs allMax = LimbGenerator::maxLimbs<R>(bn);
        for (const std::size_t an : {bn, bn + 1, bn + 2, 2 * bn, 2 * bn + 1, 4 * bn + 3}) {
            const Limbs a = LimbGenerator::maxLimbs<R>(an);
            EXPECT_TRUE(dividesCorrectly<R>(a, allMax));
            EXPECT_TRUE(dividesCorrectly<R>(a, oneThenMax));
            EXPECT_TRUE(dividesCorrectly<R>(a, oneThenZero));
            EXPECT_TRUE(dividesCorrectly<R>(a, maxThenZero));
            Limbs powerOfRadix(an, 0);
            powerOfRadix.back() = 1;
            EXPECT_TRUE(dividesCorrectly<R>(powerOfRadix, allMax));
            EXPECT_TRUE(dividesCorrectly<R>(powerOfRadix, oneThenMax));
        }
        EXPECT_TRUE(dividesCorrectly<R>(allMax, allMax));
        EXPECT_TRUE(dividesCorrectly<R>(oneThenMax, oneThenMax));
    }
}

TYPED_TEST(DivideTest, DividendWithZeroTopLimbs) {
    using R = TypeParam;
    LimbGenerator gen(6);
    for (const std::size_t bn : {1, 2, 3, 12}) {
        const Limbs b = gen.limbs<R>(bn);
        for (const std::size_t significant : {std::size_t(1), bn - 1, bn, bn + 1, 3 * bn}) {
            if (significant == 0) continue;
            for (const std::size_t padding : {1, 4}) {
                Limbs a = gen.limbs<R>(significant);
                if (a.size() + padding < bn) continue;
                a.resize(a.size() + padding, 0);
                EXPECT_TRUE(dividesCorrectly<R>(a, b));
            }
        }
        Limbs zero(bn + 2, 0);
        EXPECT_TRUE(dividesCorrectly<R>(zero, b));
    }
}

TYPED_TEST(DivideTest, TerminateFlagStopsBeforeAnyWork) {
    using R = TypeParam;
    LimbGenerator gen(7);
    const Limbs a = gen.limbs<R>(400), b = gen.limbs<R>(150);
    const std::size_t qn = a.size() - b.size() + 1;
    Limbs q(qn + 1, kSentinel), r(b.size() + 1, kSentinel);
    TW_setTerminate(1);
    tw::arith::divide<R>(q.data(), r.data(), a.data(), a.size(), b.data(), b.size());
    TW_setTerminate(0);
    EXPECT_EQ(std::count(q.begin(), q.end(), kSentinel), std::ptrdiff_t(q.size()));
    EXPECT_EQ(std::count(r.begin(), r.end(), kSentinel), std::ptrdiff_t(r.size()));
    EXPECT_TRUE(dividesCorrectly<R>(a, b));
}

}  // namespace
}  // namespace twtest
