// The basecase kernels on every path this processor runs, checked limb for
// limb against the portable column sums and against GMP: every length up to
// kLaneKernelMax (the vector blocks have ragged ends at every residue),
// lopsided operands, and all-maximal limbs, whose columns force the radix
// 10^9 lanes through their settling.  The ladder is run pinned to each path.
#include <gtest/gtest.h>

#include <vector>

#include "arith/kernels/mul_basecase.h"
#include "arith/kernels/multiply.h"
#include "arith/kernels/sqr_basecase.h"
#include "mul_check.h"

namespace {

using namespace twtest;
using tw::Limb;
using BasecasePath = tw::KernelPath;
using tw::arith::kLaneKernelMax;

template <class R>
class BasecasePaths : public ::testing::Test {
protected:
    void TearDown() override { tw::resetKernelPath(); }
};
TYPED_TEST_SUITE(BasecasePaths, Radices);

std::vector<BasecasePath> supportedPaths() {
    std::vector<BasecasePath> paths;
    for (const BasecasePath p : {BasecasePath::Portable, BasecasePath::Avx2, BasecasePath::Avx512})
        if (tw::processorRuns(p)) paths.push_back(p);
    return paths;
}

const char* pathName(BasecasePath p) {
    switch (p) {
        case BasecasePath::Portable: return "columns";
        case BasecasePath::Avx2: return "lanes";
        case BasecasePath::Avx512: return "wide lanes";
        default: return "auto";
    }
}

template <class R>
Limbs columnsProduct(const Limbs& L, const Limbs& S) {
    return runKernel(L.size() + S.size(), [&](Limb* out) {
        tw::arith::mulBasecaseColumns<R>(out, L.data(), L.size(), S.data(), S.size());
    });
}

template <class R>
Limbs columnsSquare(const Limbs& a) {
    return runKernel(2 * a.size(), [&](Limb* out) {
        tw::arith::sqrTriangleColumns<R>(out, a.data(), a.size());
        tw::arith::addDoubledDiagonal<R>(out, a.data(), a.size());
    });
}

// The rung pinned to `path` against the column sums (every case) and GMP
// (every `oracleEvery`-th case, to keep the run short).
template <class R>
void expectRungProduct(BasecasePath path, const Limbs& L, const Limbs& S, bool withOracle) {
    tw::forceKernelPathForTesting(path);
    const Limbs got = runKernel(L.size() + S.size(), [&](Limb* out) {
        tw::arith::mulBasecase<R>(out, L.data(), L.size(), S.data(), S.size());
    });
    ASSERT_EQ(got, columnsProduct<R>(L, S)) << pathName(path) << ": " << L.size() << " x " << S.size();
    if (withOracle) EXPECT_TRUE(isProduct<R>(got, L, S)) << pathName(path);
}

template <class R>
void expectRungSquare(BasecasePath path, const Limbs& a, bool withOracle) {
    tw::forceKernelPathForTesting(path);
    const Limbs got = runKernel(2 * a.size(), [&](Limb* out) { tw::arith::sqrBasecase<R>(out, a.data(), a.size()); });
    ASSERT_EQ(got, columnsSquare<R>(a)) << pathName(path) << ": square of " << a.size();
    if (withOracle) EXPECT_TRUE(isProduct<R>(got, a, a)) << pathName(path);
}

TYPED_TEST(BasecasePaths, EveryLengthMatchesColumnSums) {
    using R = TypeParam;
    for (const BasecasePath path : supportedPaths()) {
        LimbGenerator gen(101);
        for (std::size_t s = 1; s <= kLaneKernelMax; ++s) {
            // Equal, one longer, odd-longer and lopsided long operands.
            for (const std::size_t l : {s, s + 1, s + 7, 3 * s + 5}) {
                expectRungProduct<R>(path, gen.limbs<R>(l), gen.limbs<R>(s), s % 9 == 0);
                if (::testing::Test::HasFatalFailure()) return;
            }
        }
    }
}

TYPED_TEST(BasecasePaths, MaximalLimbsSettleExactly) {
    using R = TypeParam;
    for (const BasecasePath path : supportedPaths()) {
        for (std::size_t s = 1; s <= kLaneKernelMax; ++s) {
            const Limbs S = LimbGenerator::maxLimbs<R>(s);
            for (const std::size_t l : {s, s + 3, 2 * s + 17}) {
                expectRungProduct<R>(path, LimbGenerator::maxLimbs<R>(l), S, s % 16 == 0 || s < 4);
                if (::testing::Test::HasFatalFailure()) return;
            }
            expectRungSquare<R>(path, S, s % 16 == 0 || s < 4);
            if (::testing::Test::HasFatalFailure()) return;
        }
    }
}

TYPED_TEST(BasecasePaths, EverySquareLengthMatchesColumnSums) {
    using R = TypeParam;
    for (const BasecasePath path : supportedPaths()) {
        LimbGenerator gen(102);
        for (std::size_t n = 1; n <= kLaneKernelMax; ++n) {
            for (int rep = 0; rep < 3; ++rep) {
                expectRungSquare<R>(path, gen.limbs<R>(n), rep == 0 && n % 7 == 0);
                if (::testing::Test::HasFatalFailure()) return;
            }
        }
    }
}

// Maximal limbs with a few random ones: columns near the mark that settle at
// different additions in different lanes.
TYPED_TEST(BasecasePaths, NearlyMaximalLimbs) {
    using R = TypeParam;
    for (const BasecasePath path : supportedPaths()) {
        LimbGenerator gen(103);
        for (const std::size_t s : {5u, 16u, 17u, 31u, 64u, 100u, 127u, 128u}) {
            Limbs L = LimbGenerator::maxLimbs<R>(s + 11), S = LimbGenerator::maxLimbs<R>(s);
            const Limbs noise = gen.limbs<R>(s);
            for (std::size_t k = 0; k < s; k += 3) S[k] = noise[k];
            for (std::size_t k = 1; k < s; k += 5) L[k] = noise[k];
            expectRungProduct<R>(path, L, S, true);
            expectRungSquare<R>(path, S, true);
            if (::testing::Test::HasFatalFailure()) return;
        }
    }
}

// The ladder pinned to each path: the rungs above the basecase bottom out in it.
TYPED_TEST(BasecasePaths, LadderOnEveryPath) {
    using R = TypeParam;
    for (const BasecasePath path : supportedPaths()) {
        tw::forceKernelPathForTesting(path);
        LimbGenerator gen(104);
        for (const std::size_t n : {8u, 33u, 64u, 65u, 100u, 129u, 192u, 193u, 300u, 511u}) {
            const Limbs a = gen.limbs<R>(n), b = gen.limbs<R>(n + n / 3);
            const Limbs p = runKernel(a.size() + b.size(), [&](Limb* out) {
                tw::arith::multiply<R>(out, b.data(), b.size(), a.data(), a.size());
            });
            EXPECT_TRUE(isProduct<R>(p, b, a)) << pathName(path);
            const Limbs q = runKernel(2 * n, [&](Limb* out) { tw::arith::square<R>(out, a.data(), n); });
            EXPECT_TRUE(isProduct<R>(q, a, a)) << pathName(path);
            const Limbs m = LimbGenerator::maxLimbs<R>(n);
            const Limbs r = runKernel(2 * n, [&](Limb* out) { tw::arith::square<R>(out, m.data(), n); });
            EXPECT_TRUE(isProduct<R>(r, m, m)) << pathName(path);
        }
    }
}

// The ladder with the raised basecase rung, on each path: shorter operands on
// both sides of the ordinary rung and of the raised one, Karatsuba above it
// whose halves fall back into it, and lopsided operands cut into pieces.
TYPED_TEST(BasecasePaths, WideBasecaseLadderOnEveryPath) {
    using R = TypeParam;
    for (const BasecasePath path : supportedPaths()) {
        tw::forceKernelPathForTesting(path);
        LimbGenerator gen(105);
        for (const std::size_t n : {11u, 12u, 64u, 65u, 127u, 128u, 129u, 192u, 193u, 256u, 300u}) {
            for (const std::size_t l : {n, n + n / 3, 5 * n + 7}) {
                const Limbs a = gen.limbs<R>(n), b = gen.limbs<R>(l);
                const Limbs p = runKernel(a.size() + b.size(), [&](Limb* out) {
                    tw::arith::multiplyWideBasecase<R>(out, a.data(), a.size(), b.data(), b.size());
                });
                EXPECT_TRUE(isProduct<R>(p, a, b)) << pathName(path) << ": " << n << " x " << l;
            }
            const Limbs m = LimbGenerator::maxLimbs<R>(n), mm = LimbGenerator::maxLimbs<R>(n + 1);
            const Limbs q = runKernel(2 * n + 1, [&](Limb* out) {
                tw::arith::multiplyWideBasecase<R>(out, mm.data(), mm.size(), m.data(), m.size());
            });
            EXPECT_TRUE(isProduct<R>(q, mm, m)) << pathName(path) << ": maximal " << n;
        }
    }
}

TEST(BasecasePathSeam, ForcingFollowsTheProcessor) {
    EXPECT_TRUE(tw::processorRuns(BasecasePath::Portable));
    tw::forceKernelPathForTesting(BasecasePath::Portable);
    EXPECT_EQ(tw::arith::basecasePathFor<tw::DecimalRadix>(64), BasecasePath::Portable);
    // Above the kernels' reach the path is the column sums whatever is forced.
    EXPECT_EQ(tw::arith::basecasePathFor<tw::DecimalRadix>(kLaneKernelMax + 1), BasecasePath::Portable);
    tw::resetKernelPath();
    EXPECT_FALSE(tw::kernelChoice().forced);
    EXPECT_EQ(tw::kernelChoice().path, tw::widestKernelPath());
}

}  // namespace
