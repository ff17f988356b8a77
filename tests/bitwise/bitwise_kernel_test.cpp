// The bitwise span kernel against a limb-by-limb reference, with a sentinel
// after every output and every aliasing the contract allows.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "arith/numbers/bitwise.h"
#include "support/limb_oracle.h"

namespace {

using tw::arith::BitOp;
using twtest::LimbGenerator;
using twtest::Limbs;
using Bin = tw::BinaryRadix;

template <BitOp Op>
Limbs referenceCombine(const Limbs& a, const Limbs& b) {
    Limbs out(tw::arith::combinedLength<Op>(a.size(), b.size()));
    for (std::size_t i = 0; i < out.size(); ++i) {
        const tw::Limb x = i < a.size() ? a[i] : 0, y = i < b.size() ? b[i] : 0;
        out[i] = Op == BitOp::And ? (x & y) : Op == BitOp::Or ? (x | y) : (x ^ y);
    }
    return out;
}

template <BitOp Op>
void checkKernel(LimbGenerator& gen, std::size_t an, std::size_t bn) {
    const Limbs a = gen.limbs<Bin>(an), b = gen.limbs<Bin>(bn);
    const Limbs want = referenceCombine<Op>(a, b);
    const std::size_t n = want.size();
    constexpr tw::Limb kSentinel = 0xDEADBEEF;

    Limbs out(n + 1, kSentinel);  // separate output
    tw::arith::combineBitwiseSpans<Op, Bin>(out.data(), a.data(), an, b.data(), bn);
    EXPECT_EQ(Limbs(out.begin(), out.begin() + std::ptrdiff_t(n)), want) << an << " x " << bn;
    EXPECT_EQ(out[n], kSentinel) << "wrote past the result";

    // In place over either operand, with room for the longer one.
    for (bool overA : {true, false}) {
        Limbs inPlace = overA ? a : b;
        inPlace.resize(std::max(an, bn) + 1, kSentinel);
        if (overA)
            tw::arith::combineBitwiseSpans<Op, Bin>(inPlace.data(), inPlace.data(), an, b.data(), bn);
        else
            tw::arith::combineBitwiseSpans<Op, Bin>(inPlace.data(), a.data(), an, inPlace.data(), bn);
        EXPECT_EQ(Limbs(inPlace.begin(), inPlace.begin() + std::ptrdiff_t(n)), want)
            << an << " x " << bn << (overA ? " over a" : " over b");
        EXPECT_EQ(inPlace[std::max(an, bn)], kSentinel);
    }
}

TEST(BitwiseKernel, MatchesTheLimbByLimbReference) {
    LimbGenerator gen(20240611);
    const std::size_t lengths[][2] = {{1, 1}, {1, 9}, {9, 1}, {5, 5}, {3, 40}, {40, 3}, {17, 18}, {64, 1}};
    for (int round = 0; round < 4; ++round) {
        for (const auto& len : lengths) {
            checkKernel<BitOp::And>(gen, len[0], len[1]);
            checkKernel<BitOp::Or>(gen, len[0], len[1]);
            checkKernel<BitOp::Xor>(gen, len[0], len[1]);
        }
    }
}

}  // namespace
