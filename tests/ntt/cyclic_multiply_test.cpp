// Products modulo radix^N - 1 against GMP, in both radices and on every code
// path this CPU supports: every transform length up to 2^14 and a few longer
// ones, operands shorter than, equal to and longer than N, the largest
// convolution sums, results that come out as radix^N - 1 before reduction,
// and the terminate flag.

#include <gtest/gtest.h>

#include "arith/kernels/ntt/cyclic_multiply.h"
#include "arith/kernels/ntt/transform_lengths.h"
#include "arith/tuning.h"
#include "ntt_test_support.h"
#include "support/limb_oracle.h"
#include "tarnwick.h"

namespace twtest {
namespace {

constexpr Limb kSentinel = 0xDEADBEEFu;

template <class R>
Mpz valueOf(const Limb* x, std::size_t n) {
    Mpz m;
    limbsToMpz<R>(m.v, x, n);
    return m;
}

// radix^N - 1.
template <class R>
Mpz modulusOf(std::size_t length) {
    Mpz m;
    mpz_ui_pow_ui(m.v, R::base, length);
    mpz_sub_ui(m.v, m.v, 1);
    return m;
}

template <class R>
::testing::AssertionResult reducedResidueIs(const Limbs& out, std::size_t length, const Mpz& expected) {
    if (out[length] != kSentinel) return ::testing::AssertionFailure() << "wrote past the residue";
    for (std::size_t i = 0; i < length; ++i)
        if (out[i] >= R::base) return ::testing::AssertionFailure() << "limb " << i << " out of range";
    const Mpz got = valueOf<R>(out.data(), length);
    // Reduced: strictly below the modulus, so radix^N - 1 itself never shows.
    if (mpz_cmp(got.v, modulusOf<R>(length).v) >= 0)
        return ::testing::AssertionFailure() << "residue of length " << length << " not reduced";
    if (mpz_cmp(got.v, expected.v) != 0)
        return ::testing::AssertionFailure() << "residue of length " << length << " differs";
    return ::testing::AssertionSuccess();
}

template <class R>
::testing::AssertionResult cyclicMatches(std::size_t length, const Limbs& a, const Limbs& b) {
    Limbs out(length + 1, 0x5A5A5A5Au);
    out[length] = kSentinel;
    tw::arith::cyclicMultiply<R>(out.data(), length, a.data(), a.size(), b.data(), b.size());
    Mpz expected;
    mpz_mul(expected.v, valueOf<R>(a.data(), a.size()).v, valueOf<R>(b.data(), b.size()).v);
    mpz_mod(expected.v, expected.v, modulusOf<R>(length).v);
    if (auto ok = reducedResidueIs<R>(out, length, expected); !ok)
        return ok << " (" << a.size() << " x " << b.size() << " limbs)";
    return ::testing::AssertionSuccess();
}

template <class R>
class CyclicProduct : public ::testing::Test {};
using Radices = ::testing::Types<tw::DecimalRadix, tw::BinaryRadix>;
TYPED_TEST_SUITE(CyclicProduct, Radices);

// The lengths of the table from 4 up to maxLength.
std::vector<std::size_t> lengthsUpTo(std::size_t maxLength) {
    std::vector<std::size_t> out;
    for (const std::uint32_t n : ntt::kTransformLengths)
        if (n >= 4 && n <= maxLength) out.push_back(n);
    return out;
}

TYPED_TEST(CyclicProduct, LengthIsATransformLengthNotBelowTheMinimum) {
    EXPECT_EQ(tw::arith::cyclicLength(1), 4u);
    EXPECT_EQ(tw::arith::cyclicLength(4), 4u);
    EXPECT_EQ(tw::arith::cyclicLength(5), 8u);
    EXPECT_EQ(tw::arith::cyclicLength(7), 8u);
    EXPECT_EQ(tw::arith::cyclicLength(130), 256u);
    EXPECT_EQ(tw::arith::cyclicLength(257), 512u);
    EXPECT_EQ(tw::arith::cyclicLength(513), 768u);
    EXPECT_EQ(tw::arith::cyclicLength(768), 768u);
    EXPECT_EQ(tw::arith::cyclicLength(769), 1024u);
    EXPECT_EQ(tw::arith::cyclicLength(1025), 1536u);
    EXPECT_TRUE(tw::arith::cyclicFits(tw::arith::kTransformMaxLength));
    EXPECT_FALSE(tw::arith::cyclicFits(tw::arith::kTransformMaxLength + 1));
    EXPECT_EQ(tw::arith::cyclicLength(tw::arith::kTransformMaxLength), tw::arith::kTransformMaxLength);
}

TYPED_TEST(CyclicProduct, EveryLengthOnEveryPath) {
    using R = TypeParam;
    for (const PathCase& path : supportedPaths()) {
        SCOPED_TRACE(path.name);
        const ForcedPath forced(path.path);
        LimbGenerator gen(0xC1C10001);
        for (const std::size_t n : lengthsUpTo(1 << 14)) {
            // Both full (every sum wraps), one full and one short, both short
            // enough that nothing wraps, and one limb.
            const std::pair<std::size_t, std::size_t> shapes[] = {
                {n, n}, {n, n - 1}, {n - 1, n / 2 + 1}, {n / 2, n / 2}, {n, 1}, {1 + gen.below(n), 1 + gen.below(n)}};
            for (const auto& [an, bn] : shapes) ASSERT_TRUE(cyclicMatches<R>(n, gen.limbs<R>(an), gen.limbs<R>(bn)));
        }
    }
}

TYPED_TEST(CyclicProduct, LongLengths) {
    using R = TypeParam;
    LimbGenerator gen(0xC1C10002);
    // 3 * 2^15 and 2^17: several levels above the transform's leaf.
    for (const std::size_t n : {std::size_t(98304), std::size_t(131072)})
        ASSERT_TRUE(cyclicMatches<R>(n, gen.limbs<R>(n), gen.limbs<R>(n - 5)));
}

// Every limb maximal: the largest sums, the most carries out of the top, and
// an operand that is itself the modulus (zero).
TYPED_TEST(CyclicProduct, MaximalLimbs) {
    using R = TypeParam;
    for (const PathCase& path : supportedPaths()) {
        SCOPED_TRACE(path.name);
        const ForcedPath forced(path.path);
        for (const std::size_t n : {std::size_t(4), std::size_t(6), std::size_t(16), std::size_t(48),
                                    std::size_t(512), std::size_t(768), std::size_t(6144), std::size_t(8192)}) {
            const Limbs full = LimbGenerator::maxLimbs<R>(n), short1 = LimbGenerator::maxLimbs<R>(n - 1);
            ASSERT_TRUE(cyclicMatches<R>(n, full, full));
            ASSERT_TRUE(cyclicMatches<R>(n, short1, short1));
            ASSERT_TRUE(cyclicMatches<R>(n, short1, LimbGenerator::maxLimbs<R>(n / 2)));
            ASSERT_TRUE(cyclicMatches<R>(n, LimbGenerator::maxLimbs<R>(3 * n + 2), short1));
        }
    }
}

// Products that are a non-zero multiple of radix^N - 1, so that the carried
// sums come out as every limb maximal and must be reduced to zero; and their
// neighbours one above and one below.
TYPED_TEST(CyclicProduct, MultiplesOfTheModulusReduceToZero) {
    using R = TypeParam;
    for (const PathCase& path : supportedPaths()) {
        SCOPED_TRACE(path.name);
        const ForcedPath forced(path.path);
        LimbGenerator gen(0xC1C10003);
        for (const std::size_t n : {std::size_t(4), std::size_t(12), std::size_t(64), std::size_t(1536)}) {
            const Limbs ones(n, 1);  // (radix^N - 1) / (radix - 1)
            ASSERT_TRUE(cyclicMatches<R>(n, ones, Limbs{R::base - 1}));
            ASSERT_TRUE(cyclicMatches<R>(n, Limbs{R::base - 1}, ones));
            ASSERT_TRUE(cyclicMatches<R>(n, Limbs{1}, LimbGenerator::maxLimbs<R>(n)));
            ASSERT_TRUE(cyclicMatches<R>(n, gen.limbs<R>(n), LimbGenerator::maxLimbs<R>(n)));
            // (radix - 1) * ones +- 1 as the other factor's neighbours.
            ASSERT_TRUE(cyclicMatches<R>(n, ones, Limbs{R::base - 2}));
            Limbs onesPlus = ones;
            onesPlus[0] = 2;
            ASSERT_TRUE(cyclicMatches<R>(n, onesPlus, Limbs{R::base - 1}));
            // A multiple of the modulus times a power of the radix: the
            // all-maximal sums are rotated.
            Limbs shifted(n / 2, 0);
            shifted.push_back(1);
            ASSERT_TRUE(cyclicMatches<R>(n, shifted, LimbGenerator::maxLimbs<R>(n)));
        }
    }
}

// Full-length operands whose product is a small residue X: the sums then
// overflow the top by far more than X, so the value below radix^N plus the
// overflow reaches past radix^N and the end-around carry must come back in.
// b = X / a modulo radix^N - 1.
TYPED_TEST(CyclicProduct, ProductsThatWrapToASmallResidue) {
    using R = TypeParam;
    for (const PathCase& path : supportedPaths()) {
        SCOPED_TRACE(path.name);
        const ForcedPath forced(path.path);
        LimbGenerator gen(0xC1C10007);
        for (const std::size_t n : {std::size_t(4), std::size_t(6), std::size_t(32), std::size_t(96),
                                    std::size_t(1024)}) {
            const Mpz modulus = modulusOf<R>(n);
            for (const unsigned long x : {1ul, 2ul, 3ul, (unsigned long)R::base - 1, (unsigned long)R::base,
                                          (unsigned long)R::base + 1}) {
                Limbs a;
                Mpz inverse;
                do {
                    a = gen.limbs<R>(n);
                } while (mpz_invert(inverse.v, valueOf<R>(a.data(), a.size()).v, modulus.v) == 0);
                Mpz bv;
                mpz_mul_ui(bv.v, inverse.v, x);
                mpz_mod(bv.v, bv.v, modulus.v);
                const Limbs b = mpzToLimbs<R>(bv.v);
                ASSERT_TRUE(cyclicMatches<R>(n, a, b)) << "residue " << x;
                ASSERT_TRUE(cyclicMatches<R>(n, b, a)) << "residue " << x;
            }
        }
    }
}

// Operands longer than N are reduced before the transform; zero operands and
// zero limbs at the top.
TYPED_TEST(CyclicProduct, LongAndZeroOperands) {
    using R = TypeParam;
    LimbGenerator gen(0xC1C10004);
    for (const std::size_t n : {std::size_t(4), std::size_t(24), std::size_t(1024), std::size_t(3072)}) {
        ASSERT_TRUE(cyclicMatches<R>(n, gen.limbs<R>(2 * n + 3), gen.limbs<R>(n)));
        ASSERT_TRUE(cyclicMatches<R>(n, gen.limbs<R>(n + 1), gen.limbs<R>(5 * n)));
        ASSERT_TRUE(cyclicMatches<R>(n, gen.limbs<R>(7), gen.limbs<R>(3 * n)));
        ASSERT_TRUE(cyclicMatches<R>(n, Limbs{}, gen.limbs<R>(n)));
        ASSERT_TRUE(cyclicMatches<R>(n, Limbs(n, 0), gen.limbs<R>(n)));
        Limbs padded = gen.limbs<R>(n / 2);
        padded.resize(3 * n, 0);  // long only by its zero top limbs
        ASSERT_TRUE(cyclicMatches<R>(n, padded, gen.limbs<R>(n)));
        // A long operand that is a multiple of the modulus: zero.
        Limbs twice(2 * n, R::base - 1);
        ASSERT_TRUE(cyclicMatches<R>(n, twice, gen.limbs<R>(n)));
    }
}

template <class R>
::testing::AssertionResult reduceMatches(std::size_t length, const Limbs& a) {
    Limbs out(length + 1, 0x5A5A5A5Au);
    out[length] = kSentinel;
    tw::arith::reduceCyclic<R>(out.data(), length, a.data(), a.size());
    Mpz expected = valueOf<R>(a.data(), a.size());
    mpz_mod(expected.v, expected.v, modulusOf<R>(length).v);
    return reducedResidueIs<R>(out, length, expected);
}

TYPED_TEST(CyclicProduct, ReduceFoldsEveryPiece) {
    using R = TypeParam;
    LimbGenerator gen(0xC1C10005);
    for (const std::size_t n : {std::size_t(2), std::size_t(3), std::size_t(5), std::size_t(64), std::size_t(768)}) {
        ASSERT_TRUE(reduceMatches<R>(n, Limbs{}));
        for (const std::size_t an : {std::size_t(1), n - 1, n, n + 1, 2 * n, 2 * n + 1, 7 * n + 3})
            ASSERT_TRUE(reduceMatches<R>(n, gen.limbs<R>(an)));
        // The modulus and its multiples reduce to zero; a carry out of every
        // piece; the modulus plus one.
        ASSERT_TRUE(reduceMatches<R>(n, LimbGenerator::maxLimbs<R>(n)));
        ASSERT_TRUE(reduceMatches<R>(n, LimbGenerator::maxLimbs<R>(3 * n)));
        ASSERT_TRUE(reduceMatches<R>(n, LimbGenerator::maxLimbs<R>(3 * n + 1)));
        Limbs above(n + 1, 0);
        above[n] = 1;
        ASSERT_TRUE(reduceMatches<R>(n, above));
        Limbs carries(2 * n, R::base - 1);
        carries[n] = R::base - 2;  // the sum carries out, then lands on all maximal minus one
        ASSERT_TRUE(reduceMatches<R>(n, carries));
    }
}

// A factor transformed once and multiplied by many: every length up to 2^12
// on every path, factors longer than N (reduced first), zero and all-maximal
// factors, and a factor made on one path is made again on another.
template <class R>
::testing::AssertionResult keptMatches(std::size_t length, const Limbs& a, const tw::arith::CyclicFactor& bf,
                                       const Limbs& b) {
    Limbs out(length + 1, 0x5A5A5A5Au);
    out[length] = kSentinel;
    tw::arith::cyclicMultiplyBy<R>(out.data(), length, a.data(), a.size(), bf);
    Mpz expected;
    mpz_mul(expected.v, valueOf<R>(a.data(), a.size()).v, valueOf<R>(b.data(), b.size()).v);
    mpz_mod(expected.v, expected.v, modulusOf<R>(length).v);
    if (auto ok = reducedResidueIs<R>(out, length, expected); !ok)
        return ok << " (" << a.size() << " x kept " << b.size() << " limbs)";
    return ::testing::AssertionSuccess();
}

TYPED_TEST(CyclicProduct, KeptFactorOnEveryPath) {
    using R = TypeParam;
    for (const PathCase& path : supportedPaths()) {
        SCOPED_TRACE(path.name);
        const ForcedPath forced(path.path);
        LimbGenerator gen(0xC1C10008);
        for (const std::size_t n : lengthsUpTo(1 << 12)) {
            for (const Limbs& b : {gen.limbs<R>(n), gen.limbs<R>(n / 2 + 1), gen.limbs<R>(3 * n + 1), Limbs{},
                                   LimbGenerator::maxLimbs<R>(n)}) {
                tw::arith::CyclicFactor bf;
                bf.prepare<R>(n, b.data(), b.size());
                ASSERT_TRUE(bf.readyFor(n));
                EXPECT_FALSE(bf.readyFor(2 * n));
                for (const Limbs& a : {gen.limbs<R>(n), gen.limbs<R>(1 + gen.below(n)), gen.limbs<R>(2 * n + 1)})
                    ASSERT_TRUE(keptMatches<R>(n, a, bf, b));
            }
        }
    }
}

TYPED_TEST(CyclicProduct, KeptFactorFollowsThePath) {
    using R = TypeParam;
    const std::vector<PathCase> paths = supportedPaths();
    if (paths.size() < 2) GTEST_SKIP() << "one transform path only";
    LimbGenerator gen(0xC1C10009);
    const std::size_t n = 1024;
    const Limbs a = gen.limbs<R>(n), b = gen.limbs<R>(n - 7);
    tw::arith::CyclicFactor bf;
    {
        const ForcedPath forced(paths.front().path);
        bf.prepare<R>(n, b.data(), b.size());
        ASSERT_TRUE(bf.readyFor(n));
    }
    const ForcedPath forced(paths.back().path);
    EXPECT_FALSE(bf.readyFor(n));
    bf.prepare<R>(n, b.data(), b.size());
    ASSERT_TRUE(keptMatches<R>(n, a, bf, b));
    bf.clear();
    EXPECT_FALSE(bf.readyFor(n));
    EXPECT_EQ(bf.words(), 0u);
}

TYPED_TEST(CyclicProduct, TerminateFlagReturnsEarly) {
    using R = TypeParam;
    LimbGenerator gen(0xC1C10006);
    const Limbs a = gen.limbs<R>(1024), b = gen.limbs<R>(1000);
    Limbs out(1025, kSentinel);
    TW_setTerminate(1);
    tw::arith::cyclicMultiply<R>(out.data(), 1024, a.data(), a.size(), b.data(), b.size());
    TW_setTerminate(0);
    EXPECT_EQ(out[1024], kSentinel);
    ASSERT_TRUE(cyclicMatches<R>(1024, a, b));
}

}  // namespace
}  // namespace twtest
