// The fast transforms of every code path against the transform's definition,
// X[k] = sum_j x[j] w^(jk) mod p, on every prime, for lengths 2^k and 3 * 2^k.
// The output order is the path's own: it is read off the transform of the unit
// vector e_1, whose entry at each position is w^k for that position's k.

#include <gtest/gtest.h>

#include "ntt_test_support.h"

namespace twtest {
namespace {

constexpr std::uint64_t kSeed = 0x7a3f1e5d2c4b6a98ull;

// Table lengths the path runs, from 4 up to maxLength.
std::vector<std::size_t> lengthsFor(const ntt::TransformKernels& k, std::size_t minLength, std::size_t maxLength) {
    std::vector<std::size_t> out;
    for (const std::uint32_t n : ntt::kTransformLengths)
        if (n >= minLength && n <= maxLength && ntt::transformBlockLength(n) >= 2 * k.lanes) out.push_back(n);
    return out;
}

// frequencyAt[q] = the k whose X[k] the path stores at position q.
::testing::AssertionResult outputOrder(const ntt::TransformKernels& k, const ntt::TransformPlan& plan,
                                       std::vector<std::size_t>& frequencyAt) {
    const std::size_t n = plan.length;
    const std::uint32_t p = plan.prime.p;
    const std::uint32_t w = ntt::rootOfUnity(plan.prime.index, n);
    std::unordered_map<std::uint32_t, std::size_t> logOf;
    std::uint32_t power = 1;
    for (std::size_t e = 0; e < n; ++e, power = ntt::mulMod(power, w, p)) logOf.emplace(power, e);
    if (logOf.size() != n) return ::testing::AssertionFailure() << "root of wrong order";

    std::vector<Limb> unit(n, 0);
    unit[1] = 1;
    k.forward(unit.data(), unit.data(), n, plan);
    frequencyAt.assign(n, 0);
    std::vector<bool> seen(n, false);
    for (std::size_t q = 0; q < n; ++q) {
        const auto it = logOf.find(unit[q]);
        if (it == logOf.end()) return ::testing::AssertionFailure() << "position " << q << " holds no root";
        if (seen[it->second]) return ::testing::AssertionFailure() << "frequency " << it->second << " twice";
        seen[it->second] = true;
        frequencyAt[q] = it->second;
    }
    return ::testing::AssertionSuccess();
}

// Positions to check: all of them for short lengths, else the ends and a random sample.
std::vector<std::size_t> positionsToCheck(std::size_t n, std::mt19937_64& rng) {
    std::vector<std::size_t> q;
    if (n <= 1536) {
        for (std::size_t i = 0; i < n; ++i) q.push_back(i);
        return q;
    }
    for (std::size_t i = 0; i < 8; ++i) {
        q.push_back(i);
        q.push_back(n - 1 - i);
    }
    for (std::size_t i = 0; i < 24; ++i) q.push_back(std::size_t(rng() % n));
    return q;
}

// Calls check(prime, n, plan) for every prime and every table length up to
// maxLength the path runs.
template <class Check>
void forEachTransform(const ntt::TransformKernels& k, std::size_t maxLength, Check check) {
    for (std::size_t prime = 0; prime < ntt::kPrimeCount; ++prime) {
        for (const std::size_t n : lengthsFor(k, 4, maxLength)) {
            SCOPED_TRACE("prime " + std::to_string(prime) + " length " + std::to_string(n));
            const PlannedTransform t(k, prime, n);
            check(prime, n, t.plan);
            if (::testing::Test::HasFatalFailure()) return;
        }
    }
}

class TransformPaths : public ::testing::TestWithParam<PathCase> {};

TEST_P(TransformPaths, ForwardMatchesDefinition) {
    const ntt::TransformKernels& k = *GetParam().kernels;
    std::mt19937_64 rng(kSeed);
    forEachTransform(k, 1 << 14, [&](std::size_t prime, std::size_t n, const ntt::TransformPlan& plan) {
        std::vector<std::size_t> frequencyAt;
        ASSERT_TRUE(outputOrder(k, plan, frequencyAt));
        const std::uint32_t p = plan.prime.p, w = ntt::rootOfUnity(prime, n);
        // Maximal residues as well as random ones: the butterflies' sums peak there.
        for (const bool maximal : {false, true}) {
            const std::vector<Limb> x = maximal ? std::vector<Limb>(n, p - 1) : randomResidues(rng, n, p);
            std::vector<Limb> y = x;
            k.forward(y.data(), y.data(), n, plan);
            for (const std::size_t q : positionsToCheck(n, rng))
                ASSERT_EQ(y[q], dftAt(x, w, frequencyAt[q], p)) << "position " << q;
        }
    });
}

TEST_P(TransformPaths, InverseUndoesForward) {
    const ntt::TransformKernels& k = *GetParam().kernels;
    std::mt19937_64 rng(kSeed + 1);
    forEachTransform(k, 1 << 15, [&](std::size_t, std::size_t n, const ntt::TransformPlan& plan) {
        const std::uint32_t p = plan.prime.p;
        const std::vector<Limb> x = randomResidues(rng, n, p);
        std::vector<Limb> y = x;
        k.forward(y.data(), y.data(), n, plan);
        k.inverse(y.data(), plan);
        const std::uint32_t scale = std::uint32_t(n % p);
        for (std::size_t i = 0; i < n; ++i) ASSERT_EQ(y[i], ntt::mulMod(x[i], scale, p)) << "index " << i;
    });
}

// A source shorter than the transform is taken as padded with zeros: the first
// layer's shortcuts for padding (in each third of a 3 * 2^k length, in the
// upper half of a 2^k one, ragged ends inside a register) change nothing.
TEST_P(TransformPaths, ShortSourcesActAsZeroPadded) {
    const ntt::TransformKernels& k = *GetParam().kernels;
    std::mt19937_64 rng(kSeed + 3);
    forEachTransform(k, 1 << 13, [&](std::size_t, std::size_t n, const ntt::TransformPlan& plan) {
        const std::uint32_t p = plan.prime.p;
        std::vector<Limb> y = randomResidues(rng, n, p);
        k.forward(y.data(), y.data(), n, plan);
        for (const std::size_t len :
             {std::size_t(1), n / 3 - 1, n / 3 + 5, n / 2 - 1, n / 2 + 3, 2 * n / 3 + 1, n - 7}) {
            if (len == 0 || len > n) continue;
            SCOPED_TRACE("source " + std::to_string(len));
            const std::vector<Limb> src = randomResidues(rng, len, p);
            std::vector<Limb> padded(n, 0), got(n, 0x77777777u);
            std::copy(src.begin(), src.end(), padded.begin());
            std::vector<Limb> expected = padded;
            k.forward(expected.data(), expected.data(), n, plan);
            k.forward(got.data(), src.data(), len, plan);
            ASSERT_EQ(got, expected);
            expected = padded;
            k.convolve(expected.data(), expected.data(), n, y.data(), plan);
            k.convolve(got.data(), src.data(), len, y.data(), plan);
            ASSERT_EQ(got, expected);
            expected = padded;
            k.squareConvolve(expected.data(), expected.data(), n, plan);
            k.squareConvolve(got.data(), src.data(), len, plan);
            ASSERT_EQ(got, expected);
        }
    });
}

// convolve(x, forward(y)) is n 2^-32 (x conv y); squaring agrees with
// convolving with the own transform.
TEST_P(TransformPaths, ConvolutionMatchesDefinition) {
    const ntt::TransformKernels& k = *GetParam().kernels;
    std::mt19937_64 rng(kSeed + 2);
    forEachTransform(k, 1 << 14, [&](std::size_t, std::size_t n, const ntt::TransformPlan& plan) {
        const std::uint32_t p = plan.prime.p;
        const std::uint32_t scale = ntt::mulMod(std::uint32_t(n % p), ntt::invMod(plan.prime.montR, p), p);
        const std::vector<Limb> x = randomResidues(rng, n, p), y = randomResidues(rng, n, p);
        std::vector<Limb> ty = y, product = x;
        k.forward(ty.data(), ty.data(), n, plan);
        k.convolve(product.data(), product.data(), n, ty.data(), plan);
        for (const std::size_t q : positionsToCheck(n, rng))
            ASSERT_EQ(product[q], ntt::mulMod(cyclicConvolutionAt(x, y, q, p), scale, p)) << "index " << q;

        std::vector<Limb> tx = x, viaConvolve = x, square = x;
        k.forward(tx.data(), tx.data(), n, plan);
        k.convolve(viaConvolve.data(), viaConvolve.data(), n, tx.data(), plan);
        k.squareConvolve(square.data(), square.data(), n, plan);
        ASSERT_EQ(square, viaConvolve);
    });
}

INSTANTIATE_TEST_SUITE_P(Paths, TransformPaths, ::testing::ValuesIn(supportedPaths()),
                         [](const ::testing::TestParamInfo<PathCase>& info) { return std::string(info.param.name); });

TEST(TransformLengths, TableAndRounding) {
    EXPECT_EQ(ntt::kTransformLengths[0], 0u);
    EXPECT_EQ(ntt::kTransformLengths[1], 1u);
    EXPECT_EQ(ntt::kTransformLengths[2], 2u);
    EXPECT_EQ(ntt::kTransformLengths[3], 3u);
    EXPECT_EQ(ntt::kTransformLengths[62], 2147483648u);
    EXPECT_EQ(ntt::kTransformLengths[63], 3221225472u);
    for (std::size_t i = 1; i < ntt::kTransformLengthCount; ++i)
        EXPECT_LT(ntt::kTransformLengths[i - 1], ntt::kTransformLengths[i]);

    EXPECT_EQ(ntt::roundTransformLength(5), 6u);
    EXPECT_EQ(ntt::roundTransformLength(7), 8u);
    EXPECT_EQ(ntt::roundTransformLength(1025), 1536u);
    EXPECT_EQ(ntt::roundTransformLength(1536), 1536u);
    EXPECT_EQ(ntt::roundTransformLength(1537), 2048u);
    EXPECT_EQ(ntt::roundTransformLength(2222224), 3145728u);
    EXPECT_EQ(ntt::roundTransformLength(0x2000001), 0x3000000u);
    EXPECT_EQ(ntt::roundTransformLength(std::size_t(1) << 31), std::size_t(1) << 31);
    EXPECT_EQ(ntt::roundTransformLength((std::size_t(1) << 31) + 1), 3221225472u);
}

}  // namespace
}  // namespace twtest
