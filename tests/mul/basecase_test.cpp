// The bottom rungs called directly: single-limb rows, the column-wise
// product and the basecase square, including their fullest columns.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "arith/kernels/mul_basecase.h"
#include "arith/kernels/mul_span_ops.h"
#include "arith/kernels/sqr_basecase.h"
#include "mul_check.h"

namespace {

using namespace twtest;
using tw::Limb;

template <class R>
class Basecase : public ::testing::Test {};
TYPED_TEST_SUITE(Basecase, Radices);

// Every form of each basecase kernel: the portable column sums and the
// 256- and 512-bit lanes (where this processor has them), plus the
// dispatching rung.
template <class R>
using ProductKernel = void (*)(Limb*, const Limb*, std::size_t, const Limb*, std::size_t);
template <class R>
using TriangleKernel = void (*)(Limb*, const Limb*, std::size_t);

template <class R>
std::vector<std::pair<const char*, ProductKernel<R>>> productKernels() {
    std::vector<std::pair<const char*, ProductKernel<R>>> k = {{"columns", tw::arith::mulBasecaseColumns<R>},
                                                               {"rung", tw::arith::mulBasecase<R>}};
    if (tw::processorRuns(tw::KernelPath::Avx2)) k.push_back({"lanes", tw::arith::mulBasecaseLanes<R>});
    if (tw::processorRuns(tw::KernelPath::Avx512)) k.push_back({"wide lanes", tw::arith::mulBasecaseWideLanes<R>});
    return k;
}

template <class R>
std::vector<std::pair<const char*, TriangleKernel<R>>> squareKernels() {
    std::vector<std::pair<const char*, TriangleKernel<R>>> k = {{"rung", tw::arith::sqrBasecase<R>}};
    k.push_back({"columns", [](Limb* out, const Limb* a, std::size_t n) {
                     tw::arith::sqrTriangleColumns<R>(out, a, n);
                     tw::arith::addDoubledDiagonal<R>(out, a, n);
                 }});
    if (tw::processorRuns(tw::KernelPath::Avx2))
        k.push_back({"lanes", [](Limb* out, const Limb* a, std::size_t n) {
                         tw::arith::sqrTriangleLanes<R>(out, a, n);
                         tw::arith::addDoubledDiagonal<R>(out, a, n);
                     }});
    if (tw::processorRuns(tw::KernelPath::Avx512))
        k.push_back({"wide lanes", [](Limb* out, const Limb* a, std::size_t n) {
                         tw::arith::sqrTriangleWideLanes<R>(out, a, n);
                         tw::arith::addDoubledDiagonal<R>(out, a, n);
                     }});
    return k;
}

template <class R>
void expectBasecaseProduct(const Limbs& L, const Limbs& S) {
    for (const auto& [name, kernel] : productKernels<R>()) {
        const Limbs got = runKernel(L.size() + S.size(), [&](Limb* out) {
            kernel(out, L.data(), L.size(), S.data(), S.size());
        });
        EXPECT_TRUE(isProduct<R>(got, L, S)) << name;
    }
}

template <class R>
void expectBasecaseSquare(const Limbs& a) {
    for (const auto& [name, kernel] : squareKernels<R>()) {
        const Limbs got = runKernel(2 * a.size(), [&](Limb* out) { kernel(out, a.data(), a.size()); });
        EXPECT_TRUE(isProduct<R>(got, a, a)) << name;
    }
}

TYPED_TEST(Basecase, RowTimesOneLimb) {
    using R = TypeParam;
    LimbGenerator gen(11);
    for (const std::size_t n : {1u, 2u, 9u, 100u}) {
        for (const Limb m : {Limb(0), Limb(1), Limb(7), Limb(R::base - 1)}) {
            const Limbs a = gen.limbs<R>(n);
            const Limbs got = runKernel(n + 1, [&](Limb* out) { tw::arith::mulByLimb<R>(out, a.data(), n, m); });
            EXPECT_TRUE(isProduct<R>(got, a, Limbs{m}));
        }
        const Limbs top = LimbGenerator::maxLimbs<R>(n);
        const Limbs got = runKernel(n + 1, [&](Limb* out) { tw::arith::mulByLimb<R>(out, top.data(), n, R::base - 1); });
        EXPECT_TRUE(isProduct<R>(got, top, Limbs{R::base - 1}));
    }
}

TYPED_TEST(Basecase, ProductOfEveryShapeMatchesSchoolbook) {
    using R = TypeParam;
    LimbGenerator gen(12);
    const std::pair<std::size_t, std::size_t> shapes[] = {
        {1, 1}, {2, 1}, {2, 2}, {3, 2}, {4, 4}, {5, 5}, {17, 4}, {18, 18}, {33, 32}, {63, 63}, {64, 63},
        {64, 64}, {65, 64}, {700, 64}, {700, 2}, {128, 128}, {300, 127}};
    for (const auto& [l, s] : shapes)
        for (int rep = 0; rep < 4; ++rep) expectBasecaseProduct<R>(gen.limbs<R>(l), gen.limbs<R>(s));
}

// 64 maximal limbs times 64: the middle columns sum 64 products just below
// radix^2, far past what a 64-bit accumulator holds without settling.
TYPED_TEST(Basecase, FullestColumnsAreExact) {
    using R = TypeParam;
    for (const auto& [l, s] : {std::pair<std::size_t, std::size_t>{64, 64}, {64, 20}, {1000, 64}, {128, 128}})
        expectBasecaseProduct<R>(LimbGenerator::maxLimbs<R>(l), LimbGenerator::maxLimbs<R>(s));
    for (const std::size_t n : {2u, 36u, 64u, 127u, 128u}) expectBasecaseSquare<R>(LimbGenerator::maxLimbs<R>(n));
}

// Whatever the accumulator hands on to later columns, the value it stands for
// stays exact: acc + owedNext * radix + owedTwoUp * radix^2 = the column sum.
TYPED_TEST(Basecase, ColumnSumKeepsItsValueWhenSettling) {
    using R = TypeParam;
    const std::size_t count = R::isBinary ? 600 : 40;   // several settles for either radix
    const Limbs x(count, R::base - 1);
    tw::arith::ColumnSum<R> col;
    col.add(x.data(), x.data() + count - 1, count);
    EXPECT_GT(col.owedTwoUp, 0u);
    Mpz held, want;
    mpz_set_ui(held.v, col.owedTwoUp);
    mpz_mul_ui(held.v, held.v, R::base);
    mpz_mul_ui(held.v, held.v, R::base);
    Mpz acc;
    mpz_import(acc.v, 1, -1, sizeof col.acc, 0, 0, &col.acc);
    mpz_add(held.v, held.v, acc.v);
    mpz_set_ui(want.v, R::base - 1);
    mpz_mul(want.v, want.v, want.v);
    mpz_mul_ui(want.v, want.v, count);
    EXPECT_EQ(mpz_cmp(held.v, want.v), 0);
}

TYPED_TEST(Basecase, SquareMatchesSchoolbook) {
    using R = TypeParam;
    LimbGenerator gen(13);
    for (const std::size_t n : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 31u, 64u, 65u, 127u, 128u})
        for (int rep = 0; rep < 4; ++rep) expectBasecaseSquare<R>(gen.limbs<R>(n));
}

}  // namespace
