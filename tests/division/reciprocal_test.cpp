// The Newton reciprocal, the single-correction quotient built on it, the block
// loop for long dividends, and a divisor that keeps its reciprocal.
#include "arith/kernels/reciprocal.h"

#include "arith/kernels/divide_newton.h"
#include "division/division_check.h"
#include "tarnwick.h"

namespace twtest {
namespace {

template <class R>
class ReciprocalTest : public ::testing::Test {};
TYPED_TEST_SUITE(ReciprocalTest, Radices);

// floor(radix^(dn+n) / D).
template <class R>
Mpz exactReciprocal(const Limbs& d, std::size_t n) {
    Mpz power, f;
    mpz_ui_pow_ui(power, R::base, d.size() + n);
    mpz_fdiv_q(f, power, toMpz<R>(d));
    return f;
}

// V - floor(radix^(dn+n) / D) for v[0..vn).
template <class R>
long offsetFromExact(const Limb* v, std::size_t vn, const Limbs& d, std::size_t n) {
    Mpz got;
    limbsToMpz<R>(got.v, v, vn);
    mpz_sub(got, got, exactReciprocal<R>(d, n));
    return mpz_fits_slong_p(got) ? mpz_get_si(got) : 1000;
}

// Divisors of the given length: random ones and the shapes at the ends of the
// range (a power of the radix, all limbs maximal, top limb 1 over maximal).
template <class R>
std::vector<Limbs> divisorsOfLength(LimbGenerator& gen, std::size_t dn, int randomCount) {
    std::vector<Limbs> out;
    for (int i = 0; i < randomCount; ++i) out.push_back(gen.limbs<R>(dn));
    Limbs power(dn, 0), oneThenMax(dn, R::base - 1);
    power.back() = 1;
    oneThenMax.back() = 1;
    out.push_back(power);
    out.push_back(oneThenMax);
    out.push_back(LimbGenerator::maxLimbs<R>(dn));
    return out;
}

// |V - radix^(dn+n)/D| < 3 means V - floor(radix^(dn+n)/D) is in [-2, 3].
TYPED_TEST(ReciprocalTest, WithinThreeOfTheTrueReciprocalAtEveryPrecision) {
    using R = TypeParam;
    LimbGenerator gen(21);
    const std::pair<std::size_t, std::size_t> large[] = {{300, 300}, {5, 500}, {700, 20}, {40, 650}};
    std::vector<std::pair<std::size_t, std::size_t>> shapes(std::begin(large), std::end(large));
    for (const std::size_t dn : {1, 2, 3, 4, 5, 7, 12, 40})
        for (const std::size_t n : {1, 2, 3, 4, 5, 6, 9, 17, 33, 64}) shapes.emplace_back(dn, n);
    for (const auto& [dn, n] : shapes) {
        for (const Limbs& d : divisorsOfLength<R>(gen, dn, 3)) {
            Limbs v(tw::arith::reciprocalLimbs(n) + 1, kSentinel);
            tw::arith::reciprocal<R>(v.data(), d.data(), dn, n);
            ASSERT_EQ(v[n + 2], kSentinel);
            ASSERT_TRUE(limbsInRange<R>(v.data(), n + 2, "reciprocal"));
            const long off = offsetFromExact<R>(v.data(), n + 2, d, n);
            EXPECT_TRUE(off >= -2 && off <= 3) << dn << " limbs, precision " << n << ": off by " << off;
            // Its truncations are reciprocals of lower precision.
            for (const std::size_t j : {std::size_t(1), n / 2, n - 1}) {
                if (j == 0 || j >= n) continue;
                const long offj = offsetFromExact<R>(v.data() + j, n + 2 - j, d, n - j);
                EXPECT_TRUE(offj >= -2 && offj <= 3) << dn << " limbs, precision " << n - j << ": off by " << offj;
            }
        }
    }
}

// divideByReciprocal with the real reciprocal and with the two ends of its
// contract (floor - 2 and floor + 2 are both within 3 of the true value): the
// result is exact after its single correction, so the estimate was within
// one; both directions of the correction occur.
TYPED_TEST(ReciprocalTest, EstimateIsWithinOneAndCorrectsEitherWay) {
    using R = TypeParam;
    LimbGenerator gen(22);
    int corrections[3] = {0, 0, 0};
    for (int i = 0; i < 400; ++i) {
        const std::size_t dn = 2 + gen.below(14), qn = 1 + gen.below(14);
        Limbs b = gen.limbs<R>(dn), quotient = gen.limbs<R>(qn);
        if (i % 2) b.back() = R::base - 1 - Limb(gen.below(R::base / 4));  // large top limbs
        if (i % 3) quotient.back() = R::base - 1 - Limb(gen.below(R::base / 4));
        Mpz delta;
        setCorrectionDelta<R>(delta, i, b);
        const Limbs a = multiplePlus<R>(quotient, b, delta);
        if (a.size() < dn) continue;
        const std::size_t n = a.size() - dn + 1;
        const std::size_t p = n + gen.below(3);  // also a longer reciprocal, truncated inside
        Limbs real(p + 2);
        tw::arith::reciprocal<R>(real.data(), b.data(), dn, p);
        const Mpz exact = exactReciprocal<R>(b, p);
        for (const long shift : {0L, -2L, 2L}) {
            Limbs v = real;
            if (shift != 0) {
                Mpz edge;
                if (shift > 0)
                    mpz_add_ui(edge, exact, 2);
                else
                    mpz_sub_ui(edge, exact, 2);
                v = limbsOf<R>(edge, p + 2);
            }
            Limbs q(n + 1, kSentinel), r(dn + 1, kSentinel);
            const int c = tw::arith::divideByReciprocal<R>(twtest::divisionScratch(), q.data(), n, r.data(), a.data(), a.size(), b.data(), dn,
                                                           v.data(), p);
            ASSERT_TRUE(c >= -1 && c <= 1);
            ++corrections[c + 1];
            EXPECT_TRUE(matchesGmp<R>(a, b, q.data(), n, r.data())) << "reciprocal shifted by " << shift;
        }
    }
    EXPECT_GT(corrections[0], 0) << "no estimate was one too big";
    EXPECT_GT(corrections[2], 0) << "no estimate was one too small";
}

TYPED_TEST(ReciprocalTest, BlocksReuseOneReciprocal) {
    using R = TypeParam;
    LimbGenerator gen(23);
    for (const std::size_t dn : {2, 3, 7, 30}) {
        for (const Limbs& d : divisorsOfLength<R>(gen, dn, 2)) {
            for (const std::size_t p : {std::size_t(2), std::size_t(3), dn + 1, 2 * dn}) {
                Limbs v(p + 2);
                tw::arith::reciprocal<R>(v.data(), d.data(), dn, p);
                for (const std::size_t an : {dn, dn + 1, dn + p, 2 * dn + 2, 10 * dn + 5}) {
                    const Limbs a = gen.limbs<R>(an);
                    const std::size_t qn = an - dn + 1;
                    Limbs q(qn + 1, kSentinel), r(dn + 1, kSentinel);
                    tw::arith::divideInBlocks<R>(twtest::divisionScratch(), q.data(), r.data(), a.data(), an, d.data(), dn, v.data(), p);
                    EXPECT_TRUE(matchesGmp<R>(a, d, q.data(), qn, r.data())) << "precision " << p;
                }
            }
        }
    }
}

TYPED_TEST(ReciprocalTest, DivisorReciprocalServesManyDividends) {
    using R = TypeParam;
    LimbGenerator gen(24);
    for (const std::size_t zeros : {0, 3}) {
        for (const std::size_t m : {1, 2, 5, 31}) {
            Limbs d(zeros, 0);
            const Limbs top = gen.limbs<R>(m);
            d.insert(d.end(), top.begin(), top.end());
            const std::size_t dn = d.size();
            const tw::arith::DivisorReciprocal<R> divisor(d.data(), dn);
            ASSERT_TRUE(divisor.valid());
            for (const std::size_t an : {dn, dn + 1, 2 * dn - 1, 2 * dn, 2 * dn + 1, 7 * dn + 3}) {
                for (const bool withRemainder : {true, false}) {
                    const Limbs a = gen.limbs<R>(an);
                    const std::size_t qn = an - dn + 1;
                    Limbs q(qn + 1, kSentinel), r(dn + 1, kSentinel);
                    divisor.divide(q.data(), withRemainder ? r.data() : nullptr, a.data(), an);
                    EXPECT_TRUE(matchesGmp<R>(a, d, q.data(), qn, withRemainder ? r.data() : nullptr));
                }
            }
        }
    }
}

TYPED_TEST(ReciprocalTest, TerminateFlagLeavesTheDivisorUnusable) {
    using R = TypeParam;
    LimbGenerator gen(25);
    const Limbs d = gen.limbs<R>(60), a = gen.limbs<R>(100);
    TW_setTerminate(1);
    const tw::arith::DivisorReciprocal<R> divisor(d.data(), d.size());
    TW_setTerminate(0);
    EXPECT_FALSE(divisor.valid());
    Limbs q(a.size() - d.size() + 2, kSentinel);
    divisor.divide(q.data(), nullptr, a.data(), a.size());
    EXPECT_EQ(std::count(q.begin(), q.end(), kSentinel), std::ptrdiff_t(q.size()));
}

}  // namespace
}  // namespace twtest
