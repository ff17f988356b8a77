// Divisions that keep the transforms of their divisor and reciprocal from one
// call to the next, and the folded product their estimates take: a cyclic
// product a quarter shorter than the full one, unfolded by the product's low
// limbs.  Against GMP in both radices: folds of one limb up to nearly the
// modulus, products built to land on the fold's ambiguous residues, quotient
// lengths that alternate and evict the kept entries, transforms kept across
// a change of the transform's code path, and the terminate flag mid-way.
#include "arith/kernels/divide_newton.h"
#include "arith/kernels/ntt/cyclic_multiply.h"
#include "arith/kernels/ntt/transform_dispatch.h"
#include "frame/kernel_paths.h"
#include "arith/kernels/reciprocal.h"
#include "arith/tuning.h"
#include "division/division_check.h"
#include "tarnwick.h"

namespace twtest {
namespace {

using tw::arith::CyclicFactor;
using tw::arith::KeptTransforms;
using tw::arith::ProductRule;
namespace ntt = tw::arith::ntt;

template <class R>
class KeptTransformsTest : public ::testing::Test {};
TYPED_TEST_SUITE(KeptTransformsTest, Radices);

template <class R>
::testing::AssertionResult foldedMatches(const Limbs& a, const Limbs& v, std::size_t length) {
    CyclicFactor vf;
    vf.prepare<R>(length, v.data(), v.size());
    if (!vf.readyFor(length)) return ::testing::AssertionFailure() << "factor not made";
    const std::size_t total = a.size() + v.size();
    Limbs out(total + 1, 0x5A5A5A5Au);
    out[total] = kSentinel;
    tw::arith::multiplyFolded<R>(out.data(), a.data(), a.size(), v.data(), v.size(), vf, length, ProductRule::Fastest);
    if (out[total] != kSentinel) return ::testing::AssertionFailure() << "wrote past the product";
    if (auto ok = limbsInRange<R>(out.data(), total, "product"); !ok) return ok;
    Mpz want, got;
    mpz_mul(want, toMpz<R>(a), toMpz<R>(v));
    limbsToMpz<R>(got.v, out.data(), total);
    if (mpz_cmp(got, want) != 0)
        return ::testing::AssertionFailure() << a.size() << " x " << v.size() << " folded at " << length;
    return ::testing::AssertionSuccess();
}

TYPED_TEST(KeptTransformsTest, FoldedProductsOfEveryFoldWidth) {
    using R = TypeParam;
    LimbGenerator gen(0xF01D0001);
    for (const std::size_t n : {std::size_t(8), std::size_t(64), std::size_t(512), std::size_t(768)}) {
        // w = an + vn - N from one limb to N - 1, split unevenly between the factors.
        for (const std::size_t w : {std::size_t(1), std::size_t(2), n / 4, n / 2, n - 1}) {
            const std::size_t an = (n + w) / 2 + 1, vn = n + w - an;
            ASSERT_TRUE(foldedMatches<R>(gen.limbs<R>(an), gen.limbs<R>(vn), n));
            ASSERT_TRUE(foldedMatches<R>(gen.limbs<R>(n + w - 3), gen.limbs<R>(3), n));
            ASSERT_TRUE(foldedMatches<R>(LimbGenerator::maxLimbs<R>(an), LimbGenerator::maxLimbs<R>(vn), n));
        }
    }
}

// (radix^N - 1) * v for v of w limbs: H + L is exactly radix^N - 1, the
// residue is zero and the product must be taken in full.  Its neighbours:
// (radix^N - 2) * v, whose residue is small but not zero, and (radix^N) * v
// (an operand longer than N), where H + L passes the modulus.
TYPED_TEST(KeptTransformsTest, ProductsOnTheFoldsAmbiguousResidues) {
    using R = TypeParam;
    LimbGenerator gen(0xF01D0002);
    for (const std::size_t n : {std::size_t(16), std::size_t(512)}) {
        for (const std::size_t w : {std::size_t(1), std::size_t(5), n / 3}) {
            const Limbs v = gen.limbs<R>(w);
            Limbs allMax = LimbGenerator::maxLimbs<R>(n);
            ASSERT_TRUE(foldedMatches<R>(allMax, v, n));
            allMax[0] = R::base - 2;
            ASSERT_TRUE(foldedMatches<R>(allMax, v, n));
            Limbs power(n, 0);
            power.push_back(1);
            if (w > 1) ASSERT_TRUE(foldedMatches<R>(power, Limbs(v.begin(), v.end() - 1), n));
            // All-maximal low part plus a one at the fold: L near radix^N.
            Limbs nearPower(n, R::base - 1);
            nearPower.push_back(1);
            if (w > 1) ASSERT_TRUE(foldedMatches<R>(nearPower, Limbs(v.begin(), v.end() - 1), n));
            ASSERT_TRUE(foldedMatches<R>(v, allMax, n));
        }
    }
}

// One divisor, one reciprocal, one KeptTransforms over a run of divisions
// whose quotient lengths come and go (two kept estimate entries, a third
// length evicts the older); each against GMP and against the same division
// without kept transforms.
template <class R>
void runKeptDivisions(LimbGenerator& gen, const Limbs& d, std::size_t p, long shift,
                      const std::vector<std::size_t>& quotients, KeptTransforms& kept) {
    const std::size_t dn = d.size();
    const Limbs v = shiftedReciprocal<R>(d, p, shift);
    int i = 0;
    for (const std::size_t n : quotients) {
        Limbs quotient = gen.limbs<R>(n);
        if (i % 2) quotient.back() = R::base - 1;
        Mpz delta;
        setCorrectionDelta<R>(delta, std::size_t(i++), d);
        Limbs a = multiplePlus<R>(quotient, d, delta);
        if (a.size() < dn) continue;
        const std::size_t qn = a.size() - dn + 1;
        if (qn > p) continue;
        Limbs q(qn + 1, kSentinel), r(dn + 1, kSentinel), q0(qn + 1, kSentinel), r0(dn + 1, kSentinel);
        tw::arith::divideByReciprocal<R>(twtest::divisionScratch(), q.data(), qn, r.data(), a.data(), a.size(), d.data(), dn, v.data(), p,
                                         ProductRule::Fastest, &kept);
        ASSERT_TRUE(matchesGmp<R>(a, d, q.data(), qn, r.data())) << dn << " limbs, quotient " << qn;
        tw::arith::divideByReciprocal<R>(twtest::divisionScratch(), q0.data(), qn, r0.data(), a.data(), a.size(), d.data(), dn, v.data(), p,
                                         ProductRule::Fastest);
        ASSERT_EQ(q, q0);
        ASSERT_EQ(r, r0);
    }
}

TYPED_TEST(KeptTransformsTest, RepeatedDivisionsAgainstGmp) {
    using R = TypeParam;
    LimbGenerator gen(0xF01D0003);
    // Divisors on both sides of the folded estimate (its reciprocal and the
    // dividend's top both past the Karatsuba rung) and of the cyclic check.
    const std::size_t k = tw::arith::kMulKaratsubaMax;
    const std::pair<std::size_t, std::size_t> shapes[] = {{k - 2, k - 2}, {k, k + 1}, {300, 300},
                                                          {348, 568}, {600, 600}, {1000, 700}};
    for (const auto& [dn, p] : shapes) {
        for (const long shift : {0L, -2L, 3L}) {
            Limbs d = gen.limbs<R>(dn);
            KeptTransforms kept;
            runKeptDivisions<R>(gen, d, p, shift, {p - 1, p - 2, p - 1, p - 2, p - 3, p - 1, p - 3, p - 41}, kept);
            if (::testing::Test::HasFatalFailure()) return;
            if (p >= 300) EXPECT_GT(kept.words(), 0u) << dn << " by " << p;
        }
    }
}

// Kept transforms made on one code path of the transform are made again on
// another, whose output order differs.
TYPED_TEST(KeptTransformsTest, KeptAcrossTransformPaths) {
    using R = TypeParam;
    LimbGenerator gen(0xF01D0004);
    const Limbs d = gen.limbs<R>(400);
    const std::size_t p = 420;
    KeptTransforms kept;
    for (const auto path : {tw::KernelPath::Portable, tw::KernelPath::Avx2, tw::KernelPath::Avx512,
                            tw::KernelPath::Portable}) {
        if (!tw::processorRuns(path)) continue;
        tw::forceKernelPathForTesting(path);
        runKeptDivisions<R>(gen, d, p, 1, {p - 1, p - 2}, kept);
        tw::resetKernelPath();
        if (::testing::Test::HasFatalFailure()) return;
    }
}

// The terminate flag raised while the transforms are made leaves none that a
// later division would take as whole.
TYPED_TEST(KeptTransformsTest, TerminateLeavesNothingHalfMade) {
    using R = TypeParam;
    LimbGenerator gen(0xF01D0005);
    const Limbs d = gen.limbs<R>(500);
    const std::size_t p = 520;
    const Limbs v = shiftedReciprocal<R>(d, p, 0);
    const Limbs a = gen.limbs<R>(d.size() + p - 1);
    KeptTransforms kept;
    Limbs q(p + 1), r(d.size() + 1);
    TW_setTerminate(1);
    tw::arith::divideByReciprocal<R>(twtest::divisionScratch(), q.data(), p, r.data(), a.data(), a.size(), d.data(), d.size(), v.data(), p,
                                     ProductRule::Fastest, &kept);
    TW_setTerminate(0);
    EXPECT_EQ(kept.words(), 0u);
    runKeptDivisions<R>(gen, d, p, 0, {p - 1, p - 2}, kept);
}

}  // namespace
}  // namespace twtest
