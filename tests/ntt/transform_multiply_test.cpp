// Transform products and squares against GMP, in both radices and on every
// code path this CPU supports: transform lengths across the table (powers of
// two and three times powers of two), chunked lopsided products, the largest
// convolution sums, zero limbs at the ends, and the terminate flag.

#include <gtest/gtest.h>

#include "arith/kernels/ntt/transform_multiply.h"
#include "arith/tuning.h"
#include "ntt_test_support.h"
#include "support/limb_oracle.h"
#include "tarnwick.h"

namespace twtest {
namespace {

constexpr Limb kSentinel = 0xDEADBEEFu;

// The value of limbs in radix R in time linear in their count: 28-bit limbs
// are exactly seven hexadecimal digits (toMpz adds them one by one).
template <class R>
Mpz valueOf(const Limbs& limbs) {
    if constexpr (!R::isBinary) {
        return toMpz<R>(limbs);
    } else {
        std::string hex;
        hex.reserve(7 * limbs.size() + 1);
        char buf[8];
        for (std::size_t i = limbs.size(); i-- > 0;) {
            std::snprintf(buf, sizeof buf, "%07x", limbs[i]);
            hex += buf;
        }
        Mpz m;
        mpz_set_str(m.v, hex.empty() ? "0" : hex.c_str(), 16);
        return m;
    }
}

// Runs the product (or square when b is null) into a buffer with a sentinel
// after it and compares with GMP.
template <class R>
::testing::AssertionResult matchesGmp(const Limbs& a, const Limbs* b) {
    const std::size_t n = a.size() + (b ? b->size() : a.size());
    Limbs out(n + 1, 0x5A5A5A5Au);
    out[n] = kSentinel;
    if (b)
        tw::arith::transformMultiply<R>(out.data(), a.data(), a.size(), b->data(), b->size());
    else
        tw::arith::transformSquare<R>(out.data(), a.data(), a.size());
    if (out[n] != kSentinel) return ::testing::AssertionFailure() << "wrote past the product";
    for (std::size_t i = 0; i < n; ++i)
        if (out[i] >= R::base) return ::testing::AssertionFailure() << "limb " << i << " out of range";
    out.pop_back();
    Mpz expected;
    const Mpz ma = valueOf<R>(a);
    mpz_mul(expected.v, ma.v, b ? valueOf<R>(*b).v : ma.v);
    const Mpz got = valueOf<R>(out);
    if (mpz_cmp(got.v, expected.v) != 0)
        return ::testing::AssertionFailure() << a.size() << " x " << (b ? b->size() : a.size()) << " limbs differ";
    return ::testing::AssertionSuccess();
}

template <class R>
::testing::AssertionResult productMatches(const Limbs& a, const Limbs& b) {
    return a.size() >= b.size() ? matchesGmp<R>(a, &b) : matchesGmp<R>(b, &a);
}
template <class R>
::testing::AssertionResult squareMatches(const Limbs& a) {
    return matchesGmp<R>(a, nullptr);
}

template <class R>
class TransformProduct : public ::testing::Test {};
using Radices = ::testing::Types<tw::DecimalRadix, tw::BinaryRadix>;
TYPED_TEST_SUITE(TransformProduct, Radices);

// Operand lengths whose product needs exactly a table length N, and one more
// limb (the next length up).
std::vector<std::pair<std::size_t, std::size_t>> balancedShapes(std::size_t maxLength) {
    std::vector<std::pair<std::size_t, std::size_t>> shapes;
    for (const std::uint32_t n : ntt::kTransformLengths) {
        if (n < 4 || n > maxLength) continue;
        shapes.push_back({n / 2, n - n / 2});
        shapes.push_back({n / 2 + 1, n - n / 2});
    }
    return shapes;
}

TYPED_TEST(TransformProduct, AcrossTransformLengthsOnEveryPath) {
    using R = TypeParam;
    for (const PathCase& path : supportedPaths()) {
        SCOPED_TRACE(path.name);
        const ForcedPath forced(path.path);
        LimbGenerator gen(0x51ab0001);
        for (const auto& [an, bn] : balancedShapes(1 << 15)) {
            const Limbs a = gen.limbs<R>(an), b = gen.limbs<R>(bn);
            ASSERT_TRUE(productMatches<R>(a, b));
            ASSERT_TRUE(squareMatches<R>(a));
        }
    }
}

TYPED_TEST(TransformProduct, LongOperands) {
    using R = TypeParam;
    LimbGenerator gen(0x51ab0002);
    // 3 * 2^17 and 2^18: several levels above the leaf on every block.
    for (const std::size_t n : {std::size_t(98304), std::size_t(131072)}) {
        const Limbs a = gen.limbs<R>(n), b = gen.limbs<R>(n - 7);
        ASSERT_TRUE(productMatches<R>(a, b));
        ASSERT_TRUE(squareMatches<R>(a));
    }
}

// The largest convolution sums: every limb maximal, squared and multiplied.
TYPED_TEST(TransformProduct, MaximalLimbs) {
    using R = TypeParam;
    for (const PathCase& path : supportedPaths()) {
        SCOPED_TRACE(path.name);
        const ForcedPath forced(path.path);
        for (const std::size_t n : {std::size_t(2), std::size_t(3), std::size_t(512), std::size_t(768),
                                    std::size_t(1536), std::size_t(6144), std::size_t(8192)}) {
            const Limbs a = LimbGenerator::maxLimbs<R>(n);
            ASSERT_TRUE(productMatches<R>(a, a));
            ASSERT_TRUE(productMatches<R>(a, LimbGenerator::maxLimbs<R>(n - 1)));
            ASSERT_TRUE(squareMatches<R>(a));
        }
        ASSERT_TRUE(productMatches<R>(LimbGenerator::maxLimbs<R>(10000), LimbGenerator::maxLimbs<R>(600)));
    }
}

// 600 x 10000 limbs runs in chunks of 2048 - 600 = 1448 limbs of the longer
// operand.  The longer operand is shaped so that one chunk starts with zero
// limbs, one holds a single non-zero limb, one is zero and one ends in zeros.
TYPED_TEST(TransformProduct, ChunkedLopsided) {
    using R = TypeParam;
    constexpr std::size_t kChunk = 1448;
    for (const PathCase& path : supportedPaths()) {
        SCOPED_TRACE(path.name);
        const ForcedPath forced(path.path);
        LimbGenerator gen(0x51ab0003);
        const Limbs s = gen.limbs<R>(600);
        Limbs l = gen.limbs<R>(10000);
        std::fill(l.begin() + kChunk, l.begin() + kChunk + 100, 0);
        std::fill(l.begin() + 2 * kChunk, l.begin() + 4 * kChunk, 0);
        l[2 * kChunk + 700] = R::base - 1;
        std::fill(l.begin() + 5 * kChunk - 300, l.begin() + 5 * kChunk, 0);
        ASSERT_TRUE(productMatches<R>(l, s));
        ASSERT_TRUE(productMatches<R>(gen.limbs<R>(10000), s));
        // A last chunk of 300 limbs fits a transform of half the length.
        ASSERT_TRUE(productMatches<R>(gen.limbs<R>(6 * kChunk + 300), s));
        // Chunks whose transform has long levels above the leaf, and a tiny shorter operand.
        const Limbs s3000 = gen.limbs<R>(3000);
        ASSERT_TRUE(productMatches<R>(gen.limbs<R>(7 * 5192 + 1000), s3000));
        ASSERT_TRUE(productMatches<R>(gen.limbs<R>(200), gen.limbs<R>(5)));
        ASSERT_TRUE(productMatches<R>(gen.limbs<R>(1000), gen.limbs<R>(2)));
    }
}

TYPED_TEST(TransformProduct, ZeroLimbsAtTheEnds) {
    using R = TypeParam;
    LimbGenerator gen(0x51ab0004);
    Limbs a = gen.limbs<R>(3000), b = gen.limbs<R>(2500);
    std::fill(a.begin(), a.begin() + 700, 0);
    std::fill(b.begin(), b.begin() + 33, 0);
    b.back() = 0;  // a zero top limb in the shorter operand
    ASSERT_TRUE(productMatches<R>(a, b));
    ASSERT_TRUE(squareMatches<R>(a));
    ASSERT_TRUE(squareMatches<R>(b));

    Limbs single(900, 0);
    single[450] = 12345;
    ASSERT_TRUE(productMatches<R>(a, single));
    ASSERT_TRUE(squareMatches<R>(single));
    ASSERT_TRUE(productMatches<R>(a, Limbs(600, 0)));
    ASSERT_TRUE(squareMatches<R>(Limbs(600, 0)));
    ASSERT_TRUE(productMatches<R>(a, Limbs{7}));
}

TYPED_TEST(TransformProduct, TerminateFlagReturnsEarly) {
    using R = TypeParam;
    LimbGenerator gen(0x51ab0005);
    const Limbs a = gen.limbs<R>(20000), b = gen.limbs<R>(600);
    Limbs out(2 * a.size());
    TW_setTerminate(1);
    tw::arith::transformMultiply<R>(out.data(), a.data(), a.size(), a.data(), a.size() - 1);
    tw::arith::transformMultiply<R>(out.data(), a.data(), a.size(), b.data(), b.size());
    tw::arith::transformSquare<R>(out.data(), a.data(), a.size());
    TW_setTerminate(0);
    ASSERT_TRUE(productMatches<R>(a, b));
}

TEST(TransformFits, BasicLengthBound) {
    EXPECT_TRUE(tw::arith::transformFits(1));
    EXPECT_TRUE(tw::arith::transformFits(0x1000000));   // N = 2^25 = 0x2000000
    EXPECT_FALSE(tw::arith::transformFits(0x1000001));  // N = 2^26 > 0x3000000
    EXPECT_FALSE(tw::arith::transformFits(tw::arith::kTransformMaxLength));
}

}  // namespace
}  // namespace twtest
