// The number-theoretic transform and the products built on it: each path's
// kernels against the transform's definition, the Chinese remainder step,
// full, cyclic, kept-factor and folded products as rows of the kernel table,
// and divisions that keep their transforms.
#include "support/harness.h"

#include <unordered_map>

#include "arith/kernels/divide_newton.h"
#include "arith/kernels/ntt/crt.h"
#include "arith/kernels/ntt/crt_constants.h"
#include "arith/kernels/ntt/cyclic_multiply.h"
#include "arith/kernels/ntt/kernel_table.h"
#include "arith/kernels/ntt/roots.h"
#include "arith/kernels/ntt/roots_of_unity.h"
#include "arith/kernels/ntt/transform_dispatch.h"
#include "arith/kernels/ntt/transform_lengths.h"
#include "arith/kernels/ntt/transform_multiply.h"
#include "arith/tuning.h"

namespace twtest {
namespace {

namespace A = tw::arith;
namespace ntt = tw::arith::ntt;

// ---- the transform against its definition, X[k] = sum_j x[j] w^(jk) mod p ----

struct PathKernels {
    const char* name;
    const ntt::TransformKernels* k;
};
std::vector<PathKernels> pathKernels() {
    std::vector<PathKernels> out{{"scalar", &ntt::scalarKernels()}};
    if (tw::processorRuns(tw::KernelPath::Avx2)) out.push_back({"avx2", &ntt::avx2Kernels()});
    if (tw::processorRuns(tw::KernelPath::Avx512)) out.push_back({"avx512", &ntt::avx512Kernels()});
    return out;
}

void PrintTo(const PathKernels& p, std::ostream* o) { *o << p.name; }

class TransformDefinition : public ::testing::TestWithParam<PathKernels> {
protected:
    // Calls check(prime, n, plan) for every prime and table length the path runs up to maxLength.
    template <class Check>
    void forEachTransform(std::size_t maxLength, Check check) {
        const ntt::TransformKernels& k = *GetParam().k;
        for (std::size_t prime = 0; prime < ntt::kPrimeCount; ++prime)
            for (const std::uint32_t n : ntt::kTransformLengths) {
                if (n < 4 || n > maxLength || ntt::transformBlockLength(n) < 2 * k.lanes) continue;
                SCOPED_TRACE("prime " + std::to_string(prime) + ", length " + std::to_string(n));
                std::vector<Limb> top(ntt::topRootWords(ntt::transformBlockLength(n)));
                const ntt::TransformPlan plan =
                    ntt::makePlan(prime, n, ntt::buildTopRootTable(k, prime, ntt::transformBlockLength(n), top.data()));
                check(prime, n, plan);
                if (::testing::Test::HasFatalFailure()) return;
            }
    }
    std::vector<Limb> residues(std::size_t n, std::uint32_t p) {
        std::vector<Limb> v(n);
        for (auto& x : v) x = Limb(rng_() % p);
        return v;
    }
    // Positions to check: all for short lengths, else both ends and a sample.
    std::vector<std::size_t> positions(std::size_t n) {
        std::vector<std::size_t> q;
        for (std::size_t i = 0; i < n; ++i)
            if (n <= 1024 || i < 8 || i >= n - 8 || rng_() % (n / 16) == 0) q.push_back(i);
        return q;
    }
    std::mt19937_64 rng_{0x7a3f1e5d};
};

TEST_P(TransformDefinition, ForwardInverseAndConvolution) {
    const ntt::TransformKernels& k = *GetParam().k;
    forEachTransform(1 << 15, [&](std::size_t prime, std::size_t n, const ntt::TransformPlan& plan) {
        const std::uint32_t p = plan.prime.p, w = ntt::rootOfUnity(prime, n);
        // The path's output order, read off the transform of e_1 (entry w^k at k's position).
        std::unordered_map<std::uint32_t, std::size_t> logOf;
        for (std::uint32_t e = 0, power = 1; e < n; ++e, power = ntt::mulMod(power, w, p)) logOf.emplace(power, e);
        ASSERT_EQ(logOf.size(), n) << "root of the wrong order";
        std::vector<Limb> unit(n, 0);
        unit[1] = 1;
        k.forward(unit.data(), unit.data(), n, plan);
        for (const bool maximal : {false, true}) {  // the butterflies' sums peak at p - 1
            const std::vector<Limb> x = maximal ? std::vector<Limb>(n, p - 1) : residues(n, p), y = residues(n, p);
            std::vector<Limb> fx = x;
            k.forward(fx.data(), fx.data(), n, plan);
            for (std::size_t q : positions(n)) {
                ASSERT_TRUE(logOf.count(unit[q]));
                const std::uint32_t step = ntt::powMod(w, logOf[unit[q]], p);
                std::uint64_t want = 0;
                for (std::size_t j = 0, power = 1; j < n; ++j, power = ntt::mulMod(std::uint32_t(power), step, p))
                    want = (want + std::uint64_t(x[j]) * power) % p;
                ASSERT_EQ(fx[q], want) << "position " << q;
            }
            // The inverse undoes it up to the factor n.
            std::vector<Limb> back = fx;
            k.inverse(back.data(), plan);
            for (std::size_t i = 0; i < n; ++i) ASSERT_EQ(back[i], ntt::mulMod(x[i], std::uint32_t(n % p), p)) << i;
            // convolve(y, forward(x)) is n 2^-32 (x conv y); squaring is convolving with itself.
            const std::uint32_t scale = ntt::mulMod(std::uint32_t(n % p), ntt::invMod(plan.prime.montR, p), p);
            std::vector<Limb> conv = y, viaConvolve = x, sq = x;
            k.convolve(conv.data(), conv.data(), n, fx.data(), plan);
            for (std::size_t q : positions(n)) {
                std::uint64_t s = 0;
                for (std::size_t j = 0; j < n; ++j) s = (s + std::uint64_t(x[j]) * y[(q + n - j) % n]) % p;
                ASSERT_EQ(conv[q], ntt::mulMod(std::uint32_t(s), scale, p)) << "convolution at " << q;
            }
            k.convolve(viaConvolve.data(), viaConvolve.data(), n, fx.data(), plan);
            k.squareConvolve(sq.data(), sq.data(), n, plan);
            ASSERT_EQ(sq, viaConvolve);
        }
    });
}

// A source shorter than the transform acts as zero-padded, whatever the
// first layer's shortcuts for padding.
TEST_P(TransformDefinition, ShortSourcesActAsZeroPadded) {
    const ntt::TransformKernels& k = *GetParam().k;
    forEachTransform(1 << 13, [&](std::size_t, std::size_t n, const ntt::TransformPlan& plan) {
        const std::uint32_t p = plan.prime.p;
        std::vector<Limb> y = residues(n, p);
        k.forward(y.data(), y.data(), n, plan);
        for (std::size_t len : {std::size_t(1), n / 3 - 1, n / 3 + 5, n / 2 - 1, n / 2 + 3, 2 * n / 3 + 1, n - 7}) {
            if (len == 0 || len > n) continue;
            const std::vector<Limb> src = residues(len, p);
            std::vector<Limb> padded(n, 0), got(n, 0x77777777u);
            std::copy(src.begin(), src.end(), padded.begin());
            std::vector<Limb> want = padded;
            k.forward(want.data(), want.data(), n, plan);
            k.forward(got.data(), src.data(), len, plan);
            ASSERT_EQ(got, want) << "forward, source " << len;
            want = padded;
            k.convolve(want.data(), want.data(), n, y.data(), plan);
            k.convolve(got.data(), src.data(), len, y.data(), plan);
            ASSERT_EQ(got, want) << "convolve, source " << len;
            want = padded;
            k.squareConvolve(want.data(), want.data(), n, plan);
            k.squareConvolve(got.data(), src.data(), len, plan);
            ASSERT_EQ(got, want) << "square, source " << len;
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Paths, TransformDefinition, ::testing::ValuesIn(pathKernels()),
                         [](const auto& info) { return std::string(info.param.name); });

// The primes, their roots and the bound their product sets.
TEST(TransformPrimes, RootsAndBounds) {
    for (std::size_t i = 0; i < ntt::kPrimeCount; ++i) {
        const std::uint32_t p = ntt::kTransformPrimes[i].p, g = ntt::kTransformPrimes[i].primitiveRoot;
        EXPECT_EQ((p - 1) % (3u << 25), 0u);
        EXPECT_GT(mpz_probab_prime_p(Mpz(long(p)), 30), 0) << p;
        std::uint32_t rest = p - 1;  // g generates the group: g^((p-1)/q) != 1 for every prime q | p - 1
        for (std::uint32_t q = 2; q <= rest; ++q)
            if (rest % q == 0) {
                EXPECT_NE(ntt::powMod(g, (p - 1) / q, p), 1u) << p << ", q = " << q;
                while (rest % q == 0) rest /= q;
            }
        for (unsigned k = 0; k <= ntt::kMaxRootExponent; ++k)
            for (const std::uint64_t order : {std::uint64_t(1) << k, std::uint64_t(3) << k}) {
                const std::uint32_t w = ntt::rootOfUnity(i, order);
                EXPECT_EQ(ntt::powMod(w, order, p), 1u) << order;
                if (order % 2 == 0) EXPECT_NE(ntt::powMod(w, order / 2, p), 1u) << order;
                if (order % 3 == 0) EXPECT_NE(ntt::powMod(w, order / 3, p), 1u) << order;
                EXPECT_EQ(ntt::mulMod(w, ntt::rootOfUnity(i, order, true), p), 1u);
                EXPECT_EQ(ntt::mulMod(std::uint32_t(order % p), ntt::orderInverse(i, order), p), 1u);
            }
    }
    Mpz product(long(ntt::kTransformPrimes[0].p));
    mpz_mul_ui(product, product, ntt::kTransformPrimes[1].p);
    mpz_mul_ui(product, product, ntt::kTransformPrimes[2].p);
    EXPECT_EQ(product.str(), "3433424892571244295773749249");
    EXPECT_EQ(ntt::kPrimeProduct % 1000000007u, std::uint64_t(mpz_fdiv_ui(product, 1000000007u)));
    for (const std::uint32_t base : {Dec::base, Bin::base}) {
        Mpz largest(long(base - 1));
        mpz_mul(largest, largest, largest);
        mpz_mul_ui(largest, largest, A::kTransformMaxLength);
        EXPECT_LT(mpz_cmp(largest, product), 0) << "radix " << base;
    }
    EXPECT_EQ(ntt::roundTransformLength(5), 6u);
    EXPECT_EQ(ntt::roundTransformLength(1025), 1536u);
    EXPECT_EQ(ntt::roundTransformLength(1537), 2048u);
    EXPECT_EQ(ntt::roundTransformLength(0x2000001), 0x3000000u);
    EXPECT_EQ(ntt::roundTransformLength((std::size_t(1) << 31) + 1), 3221225472u);
    EXPECT_EQ(A::cyclicLength(1), 4u);
    EXPECT_EQ(A::cyclicLength(513), 768u);
    EXPECT_EQ(A::cyclicLength(769), 1024u);
    EXPECT_TRUE(A::cyclicFits(A::kTransformMaxLength));
    EXPECT_FALSE(A::cyclicFits(A::kTransformMaxLength + 1));
    EXPECT_TRUE(A::transformFits(0x1000000));
    EXPECT_FALSE(A::transformFits(0x1000001));
}

template <class R>
class Transforms : public Clean {};
TYPED_TEST_SUITE(Transforms, Radices);

// The remainder step rebuilds sums up to the largest convolution sum, written
// or added to limbs already there, with carries through every limb.
TYPED_TEST(Transforms, ChineseRemainderStep) {
    using R = TypeParam;
    const tw::u128 largest = ntt::largestConvolutionSum<R>();
    std::mt19937_64 rng(0xc27b);
    for (const PathKernels& path : pathKernels())
        for (std::size_t count : {1, 2, 17, 255, 256, 257, 2100, 2101}) {
            std::vector<tw::u128> sums(count);
            for (std::size_t k = 0; k < count; ++k) {
                const tw::u128 pick[] = {largest, largest - rng() % 1000, rng() % 1000,
                                         ((tw::u128(rng()) << 64) | rng()) % (largest + 1)};
                sums[k] = count == 2101 ? (k ? R::base - 1 : R::base) : pick[rng() % 4];  // 2101: one long carry
            }
            // The residues as a convolution of length n leaves them: scaled by n 2^-32.
            const std::size_t n = 3 << 20;
            std::vector<Limb> r[3];
            std::uint32_t inverseFactor[3];
            for (std::size_t i = 0; i < 3; ++i) {
                const ntt::PrimeConstants c = ntt::primeConstants(i);
                const std::uint32_t f = ntt::mulMod(std::uint32_t(n % c.p), ntt::invMod(c.montR, c.p), c.p);
                inverseFactor[i] = ntt::invMod(f, c.p);
                for (const tw::u128 s : sums) r[i].push_back(ntt::mulMod(std::uint32_t(s % c.p), f, c.p));
            }
            const ntt::GarnerConstants g = ntt::garnerConstants(inverseFactor);
            Mpz want, term;
            for (std::size_t k = count; k-- > 0;) {
                mpz_mul_ui(want, want, R::base);
                mpz_set_ui(term, std::uint64_t(sums[k] >> 64));
                mpz_mul_2exp(term, term, 64);
                mpz_add_ui(term, term, std::uint64_t(sums[k]));
                mpz_add(want, want, term);
            }
            Limbs out(count + 3, 0);
            std::copy(r[0].begin(), r[0].end(), out.begin());  // r0 in place of the output
            ntt::crtToLimbs<R>(out.data(), count + 2, out.data(), r[1].data(), r[2].data(), count, g, *path.k, false);
            ASSERT_EQ(out[count + 2], 0u);
            ASSERT_TRUE(value<R>(out) == want) << path.name << ", " << count << " sums";
            Limbs acc(count + 40, R::base - 1);  // added, the carry running through maximal limbs
            for (std::size_t i = 0; i < count + 2; ++i) acc[i] = Limb(rng() % R::base);
            acc.back() = 0;
            mpz_add(want, want, value<R>(acc));
            ntt::crtToLimbs<R>(acc.data(), acc.size(), r[0].data(), r[1].data(), r[2].data(), count, g, *path.k, true);
            ASSERT_TRUE(inRange<R>(acc.data(), acc.size()) && value<R>(acc) == want) << path.name << ", " << count << " added";
        }
}

const std::vector<std::pair<Shape, Shape>> kTransformPairs = {
    {Shape::Random, Shape::Random}, {Shape::Max, Shape::Max}, {Shape::Max, Shape::Random}, {Shape::LowZeros, Shape::NearMax}};

// Operands whose product needs exactly a table length, and one limb more.
Sizes transformSizes(std::size_t from, std::size_t to) {
    Sizes s;
    for (const std::uint32_t n : ntt::kTransformLengths)
        if (n >= from && n <= to) s.insert(s.end(), {{n - n / 2, n / 2}, {n - n / 2, n / 2 + 1}});
    return s;
}

TYPED_TEST(Transforms, FullProducts) {
    using R = TypeParam;
    run(KernelRow<R>{"transformMultiply", transformSizes(4, 1 << 13), [](std::size_t an, std::size_t bn) { return an + bn; },
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                         A::transformMultiply<R>(o, a, an, b, bn);
                     },
                     [](mpz_ptr w, mpz_srcptr a, mpz_srcptr b, std::size_t, std::size_t) { return mpz_mul(w, a, b), true; },
                     kTransformPairs},
        100);
    // Lopsided products in chunks of the longer operand, one-limb operands.
    run(KernelRow<R>{"transformMultiply lopsided", {{10000, 600}, {8988, 600}, {37344, 3000}, {200, 5}, {1000, 2}, {3000, 1}},
                     [](std::size_t an, std::size_t bn) { return an + bn; },
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                         A::transformMultiply<R>(o, a, an, b, bn);
                     },
                     [](mpz_ptr w, mpz_srcptr a, mpz_srcptr b, std::size_t, std::size_t) { return mpz_mul(w, a, b), true; },
                     {{Shape::Random, Shape::Random}, {Shape::Max, Shape::Max}, {Shape::Random, Shape::Zero}}},
        104);
    Sizes squares;
    for (const auto& [an, bn] : transformSizes(4, 1 << 14)) squares.push_back({an, 0});
    run(KernelRow<R>{"transformSquare", squares, [](std::size_t an, std::size_t) { return 2 * an; },
                     [](Limb* o, const Limb* a, std::size_t an, const Limb*, std::size_t) { A::transformSquare<R>(o, a, an); },
                     [](mpz_ptr w, mpz_srcptr a, mpz_srcptr, std::size_t, std::size_t) { return mpz_mul(w, a, a), true; },
                     {{Shape::Random, Shape::Zero}, {Shape::Max, Shape::Zero}, {Shape::LowZeros, Shape::Zero}}},
        101);
    // Chunks of the longer operand (2048 - 600 = 1448 limbs each) that start
    // with zeros, hold one limb, are zero, or end in zeros; a zero top limb.
    run(KernelRow<R>{"transformMultiply chunks", {{10000, 600}, {3000, 2500}}, [](std::size_t an, std::size_t bn) { return an + bn; },
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                         A::transformMultiply<R>(o, a, an, b, bn);
                     },
                     [](mpz_ptr w, mpz_srcptr a, mpz_srcptr b, std::size_t, std::size_t) { return mpz_mul(w, a, b), true; },
                     {{Shape::Random, Shape::Random}}, {Alias::None}, false,
                     [](Gen&, Limbs& a, Limbs& b) {
                         std::fill(a.begin() + 1448, a.begin() + 1548, 0);
                         std::fill(a.begin() + 2 * 1448, a.begin() + std::min<std::size_t>(4 * 1448, a.size() - 1), 0);
                         if (a.size() > 5 * 1448) std::fill(a.begin() + 5 * 1448 - 300, a.begin() + 5 * 1448, 0);
                         a[2 * 1448 + 700] = 5;
                         b.back() = 0;
                     }},
        102);
    // Long operands: several levels above the transform's leaf.
    run(KernelRow<R>{"transformMultiply long", {{98304, 98297}, {131072, 700}}, [](std::size_t an, std::size_t bn) { return an + bn; },
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                         A::transformMultiply<R>(o, a, an, b, bn);
                     },
                     [](mpz_ptr w, mpz_srcptr a, mpz_srcptr b, std::size_t, std::size_t) { return mpz_mul(w, a, b), true; },
                     {{Shape::Random, Shape::Random}}, {Alias::None}, false},
        103);
}

// R^N - 1.
template <class R>
Mpz modulus(std::size_t n) {
    Mpz m = radixPower<R>(n);
    mpz_sub_ui(m, m, 1);
    return m;
}

// Sizes for a cyclic product of length n: both full (every sum wraps), one
// short, neither wrapping, one limb, and operands longer than n.
Sizes cyclicSizes(std::size_t n) {
    return {{n, n}, {n, n - 1}, {n - 1, n / 2 + 1}, {n / 2, n / 2}, {n, 1}, {2 * n + 3, n}, {n + 1, 5 * n}, {7, 3 * n}};
}

// Products that land on a multiple of the modulus or on a small residue:
// the carried sums come out all maximal and must reduce, or overflow the top
// and come back round.  b := X / a mod (R^N - 1) for X in {0, 1, 2, R - 1, R, R + 1}.
template <class R>
auto landOn(std::size_t n) {
    return [n](Gen& gen, Limbs& a, Limbs& b) {
        const Mpz m = modulus<R>(n);
        Mpz inverse, x;
        while (mpz_invert(inverse, value<R>(a), m) == 0) a = gen.limbs<R>(n);
        const unsigned long xs[] = {0, 1, 2, R::base - 1, R::base, R::base + 1};
        mpz_mul_ui(x, inverse, xs[gen.below(6)]);
        mpz_mod(x, x, m);
        b = limbsOf<R>(x);
    };
}

TYPED_TEST(Transforms, CyclicProducts) {
    using R = TypeParam;
    std::uint64_t seed = 110;
    for (const std::uint32_t n : ntt::kTransformLengths) {
        if (n < 4 || n > (1 << 12)) continue;
        auto ours = [n](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
            A::cyclicMultiply<R>(o, n, a, an, b, bn);
        };
        auto want = [n](mpz_ptr w, mpz_srcptr a, mpz_srcptr b, std::size_t, std::size_t) {
            return mpz_mul(w, a, b), mpz_mod(w, w, modulus<R>(n)), true;
        };
        auto length = [n](std::size_t, std::size_t) { return std::size_t(n); };
        const auto pairs = n <= 512 ? kTransformPairs : std::vector<std::pair<Shape, Shape>>{{Shape::Random, Shape::Max}, {Shape::Max, Shape::Max}};
        run(KernelRow<R>{"cyclicMultiply", cyclicSizes(n), length, ours, want, pairs}, seed++);
        run(KernelRow<R>{"cyclicMultiply on the modulus", {{n, n}}, length, ours, want, {{Shape::Random, Shape::Random}},
                         {Alias::None}, true, landOn<R>(n)},
            seed++);
        // Kept factors: b transformed once, then multiplied by a.
        run(KernelRow<R>{"cyclicMultiplyBy", {{n, n}, {1 + n / 3, n / 2 + 1}, {2 * n + 1, 3 * n + 1}, {n, 0}, {1, n}, {n, 1}}, length,
                         [n](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                             A::CyclicFactor f;
                             f.prepare<R>(n, b, bn);
                             if (f.readyFor(n) && !f.readyFor(2 * n)) A::cyclicMultiplyBy<R>(o, n, a, an, f);
                         },
                         want, {{Shape::Random, Shape::Max}, {Shape::Max, Shape::Random}, {Shape::Max, Shape::Zero}}},
            seed++);
    }
    for (std::size_t n : {2, 3, 5, 64, 768}) {
        Sizes sizes{{0, 0}};
        for (std::size_t an : {std::size_t(1), n - 1, n, n + 1, 2 * n, 2 * n + 1, 3 * n, 7 * n + 3}) sizes.push_back({an, 0});
        run(KernelRow<R>{"reduceCyclic", sizes, [n](std::size_t, std::size_t) { return n; },
                         [n](Limb* o, const Limb* a, std::size_t an, const Limb*, std::size_t) { A::reduceCyclic<R>(o, n, a, an); },
                         [n](mpz_ptr w, mpz_srcptr a, mpz_srcptr, std::size_t, std::size_t) {
                             return mpz_mod(w, a, modulus<R>(n)), true;
                         },
                         {{Shape::Random, Shape::Zero}, {Shape::Max, Shape::Zero}, {Shape::Power, Shape::Zero},
                          {Shape::NearMax, Shape::Zero}},
                         {Alias::None}, false},
            seed++);
    }
    run(KernelRow<R>{"cyclicMultiply long", {{98304, 98299}, {131072, 131072}}, [](std::size_t an, std::size_t) { return an; },
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                         A::cyclicMultiply<R>(o, an, a, an, b, bn);
                     },
                     [](mpz_ptr w, mpz_srcptr a, mpz_srcptr b, std::size_t an, std::size_t) {
                         return mpz_mul(w, a, b), mpz_mod(w, w, modulus<R>(an)), true;
                     },
                     {{Shape::Random, Shape::Random}}, {Alias::None}, false},
        seed++);
}

// A factor made on one path is made again on another, whose order differs.
TYPED_TEST(Transforms, KeptFactorFollowsThePath) {
    using R = TypeParam;
    const std::vector<PathCase> paths = kernelPaths();
    Gen gen(120);
    const Limbs a = gen.limbs<R>(1024), b = gen.limbs<R>(1017);
    A::CyclicFactor f;
    pin(paths.front());
    f.prepare<R>(1024, b.data(), b.size());
    ASSERT_TRUE(f.readyFor(1024));
    const Pinned other(paths[paths.size() - 2]);
    if (paths.size() > 2) EXPECT_FALSE(f.readyFor(1024));
    f.prepare<R>(1024, b.data(), b.size());
    Limbs out(1024);
    A::cyclicMultiplyBy<R>(out.data(), 1024, a.data(), a.size(), f);
    Mpz want;
    mpz_mul(want, value<R>(a), value<R>(b));
    mpz_mod(want, want, modulus<R>(1024));
    EXPECT_TRUE(value<R>(out) == want);
    f.clear();
    EXPECT_FALSE(f.readyFor(1024));
    EXPECT_EQ(f.words(), 0u);
}

// The size functions cover the buffers the transforms take (one block), and
// the aligned takes they use start on a cache line after an odd take.
TYPED_TEST(Transforms, ScratchSizesCoverTheTransforms) {
    using R = TypeParam;
    Gen gen(125);
    for (const auto& [l, s] : Sizes{{1000, 1000}, {10000, 600}, {3000, 2500}, {1500, 1}}) {
        const Limbs a = gen.limbs<R>(l), b = gen.limbs<R>(s);
        Limbs out(l + s), sq(2 * l), cyclic(1024);
        A::LimbScratch product(A::transformScratchLimbs(l, s)), square(A::transformScratchLimbs(l, l)),
            folded(A::cyclicScratchLimbs(1024));
        A::transformMultiply<R>(out.data(), a.data(), l, b.data(), s, product);
        A::transformSquare<R>(sq.data(), a.data(), l, square);
        A::cyclicMultiply<R>(cyclic.data(), 1024, a.data(), l, b.data(), s, folded);
        EXPECT_LE(std::max({product.blockCount(), square.blockCount(), folded.blockCount()}), 1u) << l << " x " << s;
        Mpz want;
        mpz_mul(want, value<R>(a), value<R>(b));
        EXPECT_TRUE(value<R>(out) == want) << l << " x " << s;
    }
    A::LimbScratch scratch;
    scratch.take(3);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(scratch.takeAligned(5)) % 64, 0u);
}

// The product folded into a cyclic one a quarter shorter, unfolded by its low
// limbs, for every fold width, and on the fold's ambiguous residues.
TYPED_TEST(Transforms, FoldedProducts) {
    using R = TypeParam;
    std::uint64_t seed = 130;
    for (std::size_t n : {8, 64, 512, 768}) {
        Sizes sizes;
        for (std::size_t w : {std::size_t(1), std::size_t(2), n / 4, n / 2, n - 1})
            sizes.insert(sizes.end(), {{(n + w) / 2 + 1, n + w - (n + w) / 2 - 1}, {n + w - 3, 3}});
        auto ours = [n](Limb* o, const Limb* a, std::size_t an, const Limb* v, std::size_t vn) {
            A::CyclicFactor f;
            f.prepare<R>(n, v, vn);
            A::multiplyFolded<R>(o, a, an, v, vn, f, n, A::ProductRule::Fastest);
        };
        auto product = [](mpz_ptr w, mpz_srcptr a, mpz_srcptr b, std::size_t, std::size_t) { return mpz_mul(w, a, b), true; };
        run(KernelRow<R>{"multiplyFolded", sizes, [](std::size_t an, std::size_t bn) { return an + bn; }, ours, product,
                         kTransformPairs, {Alias::None}, false},
            seed++);
        // (R^N - 1) v, (R^N - 2) v, R^N v and (2 R^N - 1) v: residues zero,
        // small, and sums past the modulus.
        if (n == 8 || n == 512)
            for (std::size_t w : {std::size_t(2), std::size_t(5), n / 3})
                run(KernelRow<R>{"multiplyFolded ambiguous", {{n, w}, {n + 1, w - 1}}, [](std::size_t an, std::size_t bn) { return an + bn; },
                                 ours, product,
                                 {{Shape::Max, Shape::Random}, {Shape::NearMax, Shape::Random}, {Shape::Power, Shape::Random},
                                  {Shape::OneMax, Shape::Random}, {Shape::Random, Shape::Max}},
                                 {Alias::None}, false},
                    seed++);
    }
}

// Divisions with kept transforms of divisor and reciprocal: quotient lengths
// that come and go (a third length evicts the older kept estimate), on every
// path in turn, each against GMP and the same division without kept transforms.
TYPED_TEST(Transforms, DivisionsKeepTheirTransforms) {
    using R = TypeParam;
    Gen gen(140);
    const std::size_t k = A::kLadder<R>.mulKaratsubaMax;
    for (const auto& [dn, p] : Sizes{{k - 2, k - 2}, {k, k + 1}, {300, 300}, {348, 568}, {600, 600}, {1000, 700}, {400, 420}})
        for (long shift : {0L, -2L, 3L}) {
            const Limbs d = gen.limbs<R>(dn);
            Mpz v;
            mpz_fdiv_q(v, radixPower<R>(dn + p), value<R>(d));
            shift >= 0 ? mpz_add_ui(v, v, shift) : mpz_sub_ui(v, v, -shift);
            const Limbs rec = limbsOf<R>(v, p + 2);
            A::KeptTransforms kept;
            std::size_t step = 0;
            for (const PathCase& path : kernelPaths())
                for (std::size_t qn : {p - 1, p - 2, p - 1, p - 3, p - 41}) {
                    const Pinned pinned(path);
                    Mpz a;
                    mpz_mul(a, value<R>(gen.limbs<R>(qn, step % 2 ? Shape::Max : Shape::Random)), value<R>(d));
                    if (step++ % 3 == 1) mpz_sub_ui(a, a, 1);
                    const Limbs av = limbsOf<R>(a);
                    const std::size_t n = av.size() - dn + 1;
                    Limbs q(n), r(dn), q0(n), r0(dn);
                    A::divideByReciprocal<R>(divisionScratch(), q.data(), n, r.data(), av.data(), av.size(), d.data(), dn, rec.data(), p,
                                             A::ProductRule::Fastest, &kept);
                    A::divideByReciprocal<R>(divisionScratch(), q0.data(), n, r0.data(), av.data(), av.size(), d.data(), dn, rec.data(), p,
                                             A::ProductRule::Fastest);
                    Mpz wq, wr;
                    mpz_tdiv_qr(wq, wr, a, value<R>(d));
                    ASSERT_TRUE(value<R>(q) == wq && value<R>(r) == wr && q == q0 && r == r0)
                        << path.name << ": " << dn << " limbs, precision " << p << ", quotient " << n << ", shift " << shift;
                }
            if (p >= 300) EXPECT_GT(kept.words(), 0u);
        }
}

// The terminate flag: transform products return early writing nothing past
// the product; kept transforms are left empty rather than half made.
TYPED_TEST(Transforms, TerminateFlagStopsEarly) {
    using R = TypeParam;
    Gen gen(150);
    const Limbs a = gen.limbs<R>(20000), b = gen.limbs<R>(1000);
    Limbs out(2 * a.size() + 1, kSentinel), cyclic(1025, kSentinel);
    TW_setTerminate(1);
    A::transformMultiply<R>(out.data(), a.data(), a.size(), b.data(), b.size());
    A::transformSquare<R>(out.data(), a.data(), a.size());
    A::cyclicMultiply<R>(cyclic.data(), 1024, a.data(), 1024, b.data(), b.size());
    EXPECT_EQ(out.back(), kSentinel);
    EXPECT_EQ(cyclic.back(), kSentinel);
    A::CyclicFactor f;
    f.prepare<R>(1024, b.data(), b.size());
    EXPECT_FALSE(f.readyFor(1024));
    const Limbs d(a.begin(), a.begin() + 500), v(a.begin() + 500, a.begin() + 1022);
    A::KeptTransforms kept;
    Limbs q(520), r(500);
    A::divideByReciprocal<R>(divisionScratch(), q.data(), 520, r.data(), a.data(), 1019, d.data(), 500, v.data(), 520, A::ProductRule::Fastest, &kept);
    EXPECT_EQ(kept.words(), 0u);
}

}  // namespace
}  // namespace twtest
