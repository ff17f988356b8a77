// multiplyFast, the conversion trees' product, against the multiplication
// ladder at the edges of the band where it takes the transform instead:
// the shorter operand on either side of the Karatsuba and transform rungs,
// results on either side of 576 limbs, operands in either order.
#include "arith/convert/limb_spans.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <utility>
#include <vector>

namespace {

template <class R>
class FastProduct : public ::testing::Test {};
using Radices = ::testing::Types<tw::DecimalRadix, tw::BinaryRadix>;
TYPED_TEST_SUITE(FastProduct, Radices);

template <class R>
tw::convert::Limbs randomLimbs(std::mt19937_64& gen, std::size_t n, std::size_t zerosAtBottom) {
    tw::convert::Limbs x(n);
    for (std::size_t i = 0; i < n; ++i) x[i] = i < zerosAtBottom ? 0 : tw::Limb(gen() % R::base);
    x[n - 1] = tw::Limb(R::base - 1 - gen() % 3);  // full-sized top limb
    return x;
}

TYPED_TEST(FastProduct, AgreesWithTheLadderAtTheBandEdges) {
    using R = TypeParam;
    std::mt19937_64 gen(20260);
    const std::pair<std::size_t, std::size_t> shapes[] = {
        {192, 192}, {193, 193}, {256, 256}, {270, 250}, {287, 287}, {288, 288},
        {511, 511}, {512, 511}, {511, 300}, {250, 700}, {1500, 193}, {2000, 511}, {193, 150}};
    for (const auto& [an, bn] : shapes) {
        for (std::size_t zeros : {std::size_t(0), std::size_t(37)}) {
            const tw::convert::Limbs a = randomLimbs<R>(gen, an, zeros), b = randomLimbs<R>(gen, bn, 0);
            std::vector<tw::Limb> fast(an + bn, 7), ladder(an + bn);
            tw::convert::multiplyFast<R>(fast.data(), a.data(), an, b.data(), bn);
            if (an >= bn)
                tw::arith::multiply<R>(ladder.data(), a.data(), an, b.data(), bn);
            else
                tw::arith::multiply<R>(ladder.data(), b.data(), bn, a.data(), an);
            EXPECT_EQ(fast, ladder) << an << " x " << bn << ", " << zeros << " zero limbs at the bottom";
        }
    }
}

}  // namespace
