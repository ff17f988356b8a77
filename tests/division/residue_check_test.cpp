// Long divisions whose products leave the ladder: the check product Q * D and
// the first product of each Newton step taken modulo radix^N - 1, and the
// transform for the Toom-3 band under ProductRule::Fastest.  Shapes sit on
// both sides of the sizes where the cyclic product takes over and at moduli
// only two limbs longer than the divisor (the least that tells the sign);
// estimates are pushed to both corrections by reciprocals at the ends of
// their contract and by dividends next to a multiple of the divisor.
#include "arith/kernels/divide_newton.h"
#include "arith/kernels/divide.h"
#include "arith/kernels/fast_product.h"
#include "arith/kernels/ntt/cyclic_multiply.h"
#include "arith/kernels/reciprocal.h"
#include "division/division_check.h"
#include "tarnwick.h"

namespace twtest {
namespace {

using tw::arith::ProductRule;

template <class R>
class ResidueCheckTest : public ::testing::Test {};
TYPED_TEST_SUITE(ResidueCheckTest, Radices);

constexpr ProductRule kRules[] = {ProductRule::Ladder, ProductRule::Fastest};

// Random divisors and the shapes at the ends of the range.
template <class R>
std::vector<Limbs> divisorsOfLength(LimbGenerator& gen, std::size_t dn) {
    Limbs power(dn, 0), oneThenMax(dn, R::base - 1), maxThenZero(dn, 0);
    power.back() = 1;
    oneThenMax.back() = 1;
    maxThenZero.back() = R::base - 1;
    return {gen.limbs<R>(dn), gen.limbs<R>(dn), power, oneThenMax, maxThenZero, LimbGenerator::maxLimbs<R>(dn)};
}

// (divisor limbs, quotient limbs).  Pairs on both sides of the rule that
// picks the cyclic check, in decimal and in binary limbs (see
// CheckShapesSitOnBothSidesOfTheRule); 254, 766 and 1534 limbs take moduli of
// 256, 768 and 1536 limbs, two above the divisor.
constexpr std::pair<std::size_t, std::size_t> kCheckShapes[] = {
    {200, 74},  {200, 75},  {200, 87},  {200, 88},   {256, 182},  {256, 183},   {256, 214},  {256, 215},
    {1000, 63}, {1000, 64}, {254, 253}, {254, 254},  {300, 150},  {511, 400},   {766, 765},  {1000, 900},
    {1534, 1200}, {2046, 1000}, {1200, 1201}};

// The check of a block with n quotient limbs (the estimate has n + 1) by a
// divisor of dn limbs is cyclic exactly when this holds.
template <class R>
bool checkIsCyclic(std::size_t dn, std::size_t n) {
    return tw::arith::cyclicIsCheaper<R>(n + 1, dn, tw::arith::cyclicLength(dn + 2));
}

TYPED_TEST(ResidueCheckTest, CheckShapesSitOnBothSidesOfTheRule) {
    using R = TypeParam;
    // The first quotient length at 200 limbs (modulus 256) and at 256 limbs,
    // where the modulus steps up to 512.
    const std::size_t first200 = R::isBinary ? 88 : 75, first256 = R::isBinary ? 215 : 183;
    EXPECT_FALSE(checkIsCyclic<R>(200, first200 - 1));
    EXPECT_TRUE(checkIsCyclic<R>(200, first200));
    EXPECT_FALSE(checkIsCyclic<R>(256, first256 - 1));
    EXPECT_TRUE(checkIsCyclic<R>(256, first256));
    // The basecase's band keeps the ladder however long the divisor.
    EXPECT_FALSE(checkIsCyclic<R>(1000, 63));
    EXPECT_TRUE(checkIsCyclic<R>(1000, 64));
    // Below 140 limbs the model overrates the ladder's cost: 126 limbs would
    // pass with a modulus of 128, and lose.
    EXPECT_FALSE(checkIsCyclic<R>(126, 125));
    for (const std::size_t dn : {254, 766, 1534}) {
        EXPECT_TRUE(checkIsCyclic<R>(dn, dn - 1));
        EXPECT_EQ(tw::arith::cyclicLength(dn + 2), dn + 2);
    }
}

TYPED_TEST(ResidueCheckTest, SingleCorrectionEitherWayAtEveryShape) {
    using R = TypeParam;
    LimbGenerator gen(0xD1C0001);
    int corrections[3] = {0, 0, 0};
    for (const auto& [dn, qn] : kCheckShapes) {
        const std::vector<Limbs> divisors = divisorsOfLength<R>(gen, dn);
        for (std::size_t i = 0; i < divisors.size(); ++i) {
            const Limbs& b = divisors[i];
            Limbs quotient = gen.limbs<R>(qn);
            if (i % 2) quotient.back() = R::base - 1 - Limb(gen.below(R::base / 4));
            Mpz delta;
            setCorrectionDelta<R>(delta, i, b);
            const Limbs a = multiplePlus<R>(quotient, b, delta);
            if (a.size() < dn) continue;
            const std::size_t n = a.size() - dn + 1;
            for (const std::size_t p : {n, n + 1}) {
                for (const long shift : {0L, -2L, 2L}) {
                    const Limbs v = shiftedReciprocal<R>(b, p, shift);
                    for (const ProductRule rule : kRules) {
                        Limbs q(n + 1, kSentinel), r(dn + 1, kSentinel);
                        const int c = tw::arith::divideByReciprocal<R>(twtest::divisionScratch(), q.data(), n, r.data(), a.data(), a.size(),
                                                                       b.data(), dn, v.data(), p, rule);
                        ASSERT_TRUE(c >= -1 && c <= 1);
                        ++corrections[c + 1];
                        ASSERT_TRUE(matchesGmp<R>(a, b, q.data(), n, r.data()))
                            << dn << " x " << qn << ", divisor " << i << ", reciprocal shifted by " << shift;
                    }
                }
            }
        }
    }
    EXPECT_GT(corrections[0], 0) << "no estimate was one too big";
    EXPECT_GT(corrections[1], 0) << "no estimate was exact";
    EXPECT_GT(corrections[2], 0) << "no estimate was one too small";
}

// Many blocks of one reciprocal, each block's check cyclic, under both rules;
// and divide() itself around the sizes where the check changes.
TYPED_TEST(ResidueCheckTest, BlocksAndDivide) {
    using R = TypeParam;
    LimbGenerator gen(0xD1C0003);
    for (const std::size_t dn : {160, 254, 300, 1000}) {
        for (const Limbs& d : divisorsOfLength<R>(gen, dn)) {
            const std::size_t p = dn + 1;
            Limbs v(p + 2);
            tw::arith::reciprocal<R>(v.data(), d.data(), dn, p);
            for (const std::size_t an : {dn + 127, 2 * dn + 1, 5 * dn + 3}) {
                const Limbs a = gen.limbs<R>(an);
                const std::size_t qn = an - dn + 1;
                for (const ProductRule rule : kRules) {
                    Limbs q(qn + 1, kSentinel), r(dn + 1, kSentinel);
                    tw::arith::divideInBlocks<R>(twtest::divisionScratch(), q.data(), r.data(), a.data(), an, d.data(), dn, v.data(), p, rule);
                    ASSERT_TRUE(matchesGmp<R>(a, d, q.data(), qn, r.data())) << dn << " by " << an;
                }
            }
        }
    }
    const std::pair<std::size_t, std::size_t> shapes[] = {{160, 286}, {160, 320}, {254, 508}, {999, 1046},
                                                          {1000, 1046}, {1000, 1047}, {1534, 3068}, {3000, 6000}};
    for (const auto& [bn, an] : shapes) {
        for (const Limbs& a : {gen.limbs<R>(an), LimbGenerator::maxLimbs<R>(an)}) {
            const Limbs b = gen.limbs<R>(bn);
            const std::size_t qn = an - bn + 1;
            Limbs q(qn + 1, kSentinel), r(bn + 1, kSentinel);
            tw::arith::divide<R>(q.data(), r.data(), a.data(), an, b.data(), bn);
            ASSERT_TRUE(matchesGmp<R>(a, b, q.data(), qn, r.data())) << bn << " by " << an;
            const Limbs maxB = LimbGenerator::maxLimbs<R>(bn);
            tw::arith::divide<R>(q.data(), r.data(), a.data(), an, maxB.data(), bn);
            ASSERT_TRUE(matchesGmp<R>(a, maxB, q.data(), qn, r.data())) << bn << " by " << an;
        }
    }
}

// V - floor(radix^(dn+n) / D), or 1000 when far off.
template <class R>
long offsetFromExact(const Limb* v, std::size_t n, const Limbs& d) {
    Mpz got, power, f;
    limbsToMpz<R>(got.v, v, n + 2);
    mpz_ui_pow_ui(power, R::base, d.size() + n);
    mpz_fdiv_q(f, power, toMpz<R>(d));
    mpz_sub(got, got, f);
    return mpz_fits_slong_p(got) ? mpz_get_si(got) : 1000;
}

// Reciprocals whose Newton steps take their first product cyclically: the
// last step's t = min(dn, n + 2) limbs of D at 254, 766 and 1022 need a
// modulus of t + 2 limbs exactly; short divisors under long precisions; and
// the rules agree with the contract at every precision the truncation gives.
TYPED_TEST(ResidueCheckTest, ReciprocalWithinThreeWhereNewtonStepsAreCyclic) {
    using R = TypeParam;
    LimbGenerator gen(0xD1C0004);
    const std::pair<std::size_t, std::size_t> shapes[] = {
        {254, 254}, {160, 320}, {300, 300}, {766, 764}, {1000, 1020}, {2000, 1020}, {3000, 764}, {1100, 4000}};
    for (const auto& [dn, n] : shapes) {
        for (const Limbs& d : divisorsOfLength<R>(gen, dn)) {
            for (const ProductRule rule : kRules) {
                Limbs v(n + 3, kSentinel);
                tw::arith::reciprocal<R>(v.data(), d.data(), dn, n, rule);
                ASSERT_EQ(v[n + 2], kSentinel);
                ASSERT_TRUE(limbsInRange<R>(v.data(), n + 2, "reciprocal"));
                const long off = offsetFromExact<R>(v.data(), n, d);
                ASSERT_TRUE(off >= -2 && off <= 3) << dn << " limbs, precision " << n << ": off by " << off;
                for (const std::size_t j : {std::size_t(1), n / 2, n - 3}) {
                    const long offj = offsetFromExact<R>(v.data() + j, n - j, d);
                    ASSERT_TRUE(offj >= -2 && offj <= 3) << dn << " limbs, precision " << n - j << ": off by " << offj;
                }
            }
        }
    }
}

// The divisor that keeps its reciprocal, through the Toom-3 band where its
// products move to the transform, and on both sides of the band.
TYPED_TEST(ResidueCheckTest, DivisorReciprocalThroughTheToomBand) {
    using R = TypeParam;
    LimbGenerator gen(0xD1C0005);
    for (const std::size_t dn : {150, 192, 193, 256, 300, 511, 512, 600, 1100}) {
        for (const Limbs& d : divisorsOfLength<R>(gen, dn)) {
            const tw::arith::DivisorReciprocal<R> divisor(d.data(), dn);
            ASSERT_TRUE(divisor.valid());
            for (const std::size_t an : {dn, dn + 1, 2 * dn - 1, 2 * dn, 2 * dn + 1, 3 * dn + 7}) {
                for (const Limbs& a : {gen.limbs<R>(an), LimbGenerator::maxLimbs<R>(an)}) {
                    const std::size_t qn = an - dn + 1;
                    Limbs q(qn + 1, kSentinel), r(dn + 1, kSentinel);
                    divisor.divide(q.data(), r.data(), a.data(), an);
                    ASSERT_TRUE(matchesGmp<R>(a, d, q.data(), qn, r.data())) << dn << " by " << an;
                }
            }
        }
    }
}

TYPED_TEST(ResidueCheckTest, ProductRulesAgree) {
    using R = TypeParam;
    LimbGenerator gen(0xD1C0006);
    for (const auto& [an, bn] : {std::pair<std::size_t, std::size_t>{193, 193}, {300, 200}, {511, 511}, {600, 250},
                                 {64, 600}, {520, 300}, {1000, 1000}}) {
        const Limbs a = gen.limbs<R>(an), b = gen.limbs<R>(bn);
        Limbs ladder(an + bn), fast(an + bn);
        tw::arith::multiplyBy<R>(ProductRule::Ladder, ladder.data(), a.data(), an, b.data(), bn);
        tw::arith::multiplyBy<R>(ProductRule::Fastest, fast.data(), a.data(), an, b.data(), bn);
        ASSERT_EQ(ladder, fast) << an << " x " << bn;
        Mpz expected;
        mpz_mul(expected, toMpz<R>(a), toMpz<R>(b));
        ASSERT_EQ(mpz_cmp(toMpz<R>(fast), expected), 0) << an << " x " << bn;
    }
}

}  // namespace
}  // namespace twtest
