// The three fields and the Chinese remainder step: the primes and their
// roots are what the transform assumes, the primes' product bounds every
// convolution sum, and the step rebuilds sums up to that bound in both radices,
// written or added, on every code path.

#include <gtest/gtest.h>

#include "arith/kernels/ntt/crt.h"
#include "arith/kernels/ntt/crt_constants.h"
#include "arith/kernels/ntt/roots_of_unity.h"
#include "arith/tuning.h"
#include "ntt_test_support.h"
#include "support/limb_oracle.h"

namespace twtest {
namespace {

bool isPrime(std::uint32_t n) {
    if (n < 2) return false;
    for (std::uint32_t d = 2; std::uint64_t(d) * d <= n; ++d)
        if (n % d == 0) return false;
    return true;
}

TEST(TransformPrimes, ShapeAndPrimitiveRoots) {
    const std::uint32_t expected[3][3] = {{1107296257u, 33, 25}, {1711276033u, 51, 25}, {1811939329u, 27, 26}};
    for (std::size_t i = 0; i < ntt::kPrimeCount; ++i) {
        const std::uint32_t p = ntt::kTransformPrimes[i].p, g = ntt::kTransformPrimes[i].primitiveRoot;
        SCOPED_TRACE(p);
        EXPECT_EQ(p, expected[i][0]);
        EXPECT_EQ(p, (expected[i][1] << expected[i][2]) + 1);
        EXPECT_TRUE(isPrime(p));
        EXPECT_EQ((p - 1) % (3u << 25), 0u);
        // g generates the group iff g^((p-1)/q) != 1 for every prime q dividing p - 1.
        std::uint32_t rest = p - 1;
        for (std::uint32_t q = 2; q <= rest; ++q) {
            if (rest % q != 0) continue;
            EXPECT_NE(ntt::powMod(g, (p - 1) / q, p), 1u) << "q = " << q;
            while (rest % q == 0) rest /= q;
        }
        // Every tabled root has exactly its order; inverses are inverses.
        for (unsigned k = 0; k <= ntt::kMaxRootExponent; ++k) {
            for (const std::uint64_t order : {std::uint64_t(1) << k, std::uint64_t(3) << k}) {
                const std::uint32_t w = ntt::rootOfUnity(i, order);
                EXPECT_EQ(ntt::powMod(w, order, p), 1u) << order;
                if (order % 2 == 0) EXPECT_NE(ntt::powMod(w, order / 2, p), 1u) << order;
                if (order % 3 == 0) EXPECT_NE(ntt::powMod(w, order / 3, p), 1u) << order;
                EXPECT_EQ(ntt::mulMod(w, ntt::rootOfUnity(i, order, true), p), 1u);
                EXPECT_EQ(ntt::mulMod(std::uint32_t(order % p), ntt::orderInverse(i, order), p), 1u);
            }
        }
    }
}

TEST(TransformPrimes, ProductBoundsEveryConvolutionSum) {
    Mpz product(std::to_string(ntt::kTransformPrimes[0].p).c_str());
    mpz_mul_ui(product.v, product.v, ntt::kTransformPrimes[1].p);
    mpz_mul_ui(product.v, product.v, ntt::kTransformPrimes[2].p);
    EXPECT_EQ(product.str(), "3433424892571244295773749249");
    for (const std::uint32_t base : {tw::DecimalRadix::base, tw::BinaryRadix::base}) {
        Mpz largest;
        mpz_set_ui(largest.v, base - 1);
        mpz_mul(largest.v, largest.v, largest.v);
        mpz_mul_ui(largest.v, largest.v, tw::arith::kTransformMaxLength);
        EXPECT_LT(mpz_cmp(largest.v, product.v), 0) << "radix " << base;
    }
    EXPECT_EQ(ntt::kPrimeProduct % 1000000007u, std::uint64_t(mpz_fdiv_ui(product.v, 1000000007u)));
}

// Residues of the sums c_k as a convolution of length n leaves them: scaled by
// n 2^-32 modulo each prime.
struct ScaledResidues {
    std::vector<Limb> r[ntt::kPrimeCount];
    ntt::GarnerConstants g;
    ScaledResidues(const std::vector<tw::u128>& sums, std::size_t n) {
        std::uint32_t inverseFactor[ntt::kPrimeCount];
        for (std::size_t i = 0; i < ntt::kPrimeCount; ++i) {
            const ntt::PrimeConstants c = ntt::primeConstants(i);
            const std::uint32_t factor = ntt::mulMod(std::uint32_t(n % c.p), ntt::invMod(c.montR, c.p), c.p);
            inverseFactor[i] = ntt::invMod(factor, c.p);
            for (const tw::u128 s : sums) r[i].push_back(ntt::mulMod(std::uint32_t(s % c.p), factor, c.p));
        }
        g = ntt::garnerConstants(inverseFactor);
    }
};

template <class R>
Mpz weightedSum(const std::vector<tw::u128>& sums) {
    Mpz total, term, weight;
    mpz_set_ui(weight.v, 1);
    for (const tw::u128 s : sums) {
        mpz_set_ui(term.v, std::uint64_t(s >> 64));
        mpz_mul_2exp(term.v, term.v, 64);
        mpz_add_ui(term.v, term.v, std::uint64_t(s));
        mpz_addmul(total.v, term.v, weight.v);
        mpz_mul_ui(weight.v, weight.v, R::base);
    }
    return total;
}

template <class R>
class ChineseRemainder : public ::testing::Test {};
using Radices = ::testing::Types<tw::DecimalRadix, tw::BinaryRadix>;
TYPED_TEST_SUITE(ChineseRemainder, Radices);

TYPED_TEST(ChineseRemainder, RebuildsSumsUpToTheBound) {
    using R = TypeParam;
    const tw::u128 largest = ntt::largestConvolutionSum<R>();
    std::mt19937_64 rng(0xc27b0001);
    for (const PathCase& path : supportedPaths()) {
        SCOPED_TRACE(path.name);
        for (const std::size_t count : {1, 2, 17, 255, 256, 257, 1000, 2100, 2101}) {
            std::vector<tw::u128> sums(count);
            // count 2101: sums R - 1 except the first, R: the carry from position
            // 0 runs through every limb (across the block's carry chains).
            const bool ripple = count == 2101;
            for (std::size_t k = 0; k < count; ++k) {
                if (ripple) {
                    sums[k] = k == 0 ? R::base : R::base - 1;
                    continue;
                }
                switch (rng() % 4) {
                    case 0: sums[k] = largest; break;
                    case 1: sums[k] = largest - rng() % 1000; break;
                    case 2: sums[k] = rng() % 1000; break;
                    default: sums[k] = ((tw::u128(rng()) << 64) | rng()) % (largest + 1); break;
                }
            }
            const ScaledResidues res(sums, 3 << 20);
            const Mpz expected = weightedSum<R>(sums);

            // Written: the sum needs at most count + 2 limbs; out has room for one more.
            Limbs out(count + 3, 0);
            std::copy(res.r[0].begin(), res.r[0].end(), out.begin());  // r0 in place of the output
            ntt::crtToLimbs<R>(out.data(), count + 2, out.data(), res.r[1].data(), res.r[2].data(), count, res.g,
                               *path.kernels, false);
            ASSERT_EQ(out[count + 2], 0u);
            ASSERT_EQ(mpz_cmp(toMpz<R>(out).v, expected.v), 0) << "count " << count;

            // Added to limbs already there, with a run of maximal limbs above to carry through.
            Limbs acc(count + 40);
            for (std::size_t i = 0; i < count + 2; ++i) acc[i] = Limb(rng() % R::base);
            for (std::size_t i = count + 2; i < count + 39; ++i) acc[i] = R::base - 1;
            acc.back() = 0;
            Mpz sum = toMpz<R>(acc);
            mpz_add(sum.v, sum.v, expected.v);
            ntt::crtToLimbs<R>(acc.data(), acc.size(), res.r[0].data(), res.r[1].data(), res.r[2].data(), count,
                               res.g, *path.kernels, true);
            ASSERT_EQ(mpz_cmp(toMpz<R>(acc).v, sum.v), 0) << "count " << count;
            for (const Limb l : acc) ASSERT_LT(l, R::base);
        }
    }
}

}  // namespace
}  // namespace twtest
