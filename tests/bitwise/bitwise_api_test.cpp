// Sign-magnitude AND, OR and XOR of both families through the C interface,
// against GMP on the magnitudes plus the sign rules.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "arith/numbers/bitwise.h"
#include "support/c_families.h"
#include "support/limb_oracle.h"

namespace {

using tw::arith::BitOp;
using twtest::BinaryFamily;
using twtest::DecimalFamily;
using twtest::LimbGenerator;
using twtest::Mpz;
using twtest::Number;
using Bin = tw::BinaryRadix;

template <BitOp Op, class F>
constexpr auto exported() {
    if constexpr (Op == BitOp::And)
        return F::bitAnd;
    else if constexpr (Op == BitOp::Or)
        return F::bitOr;
    else
        return F::bitXor;
}

// GMP on |a| and |b|, then the sign rule: AND negative when both are,
// OR when either is, XOR when exactly one is; zero is never negative.
template <BitOp Op>
Mpz expected(const Mpz& a, const Mpz& b) {
    Mpz x, y, r;
    mpz_abs(x, a);
    mpz_abs(y, b);
    if constexpr (Op == BitOp::And)
        mpz_and(r, x, y);
    else if constexpr (Op == BitOp::Or)
        mpz_ior(r, x, y);
    else
        mpz_xor(r, x, y);
    const bool aNeg = mpz_sgn(a.v) < 0, bNeg = mpz_sgn(b.v) < 0;
    const bool negative = Op == BitOp::And ? (aNeg && bNeg) : Op == BitOp::Or ? (aNeg || bNeg) : (aNeg != bNeg);
    if (negative) mpz_neg(r, r);
    return r;
}

template <class F>
class BitwiseApi : public twtest::ErrorStateGuard {};
TYPED_TEST_SUITE(BitwiseApi, twtest::BothFamilies);

// A signed operand of n binary limbs (zero, runs of ones, zero limbs at the
// bottom: the generator's mix), the same value in either family.
Mpz operand(LimbGenerator& gen, std::size_t n) {
    Mpz v = twtest::toMpz<Bin>(gen.limbs<Bin>(n));
    if (gen.below(8) == 0) mpz_set_ui(v, 0);
    if (gen.below(2) == 0) mpz_neg(v, v);
    return v;
}

template <BitOp Op, class F>
void checkAgainstGmp(LimbGenerator& gen, std::size_t an, std::size_t bn) {
    const Mpz av = operand(gen, an), bv = operand(gen, bn), want = expected<Op>(av, bv);
    constexpr auto op = exported<Op, F>();
    Number<F> a, b, r;
    a.set(av);
    b.set(bv);
    r.set(Mpz("123456789123456789123456789"));  // a stale result is overwritten
    ASSERT_EQ(op(r, a, b), r.h());
    EXPECT_EQ(r.value().str(16), want.str(16)) << an << " x " << bn;
    EXPECT_TRUE(twtest::recordIsNormal(r.object()));
    EXPECT_EQ(a.value().str(), av.str());  // operands untouched
    EXPECT_EQ(b.value().str(), bv.str());

    Number<F> x, y;  // in place: the result is the first operand, then the second
    x.set(av);
    y.set(bv);
    ASSERT_EQ(op(x, x, y), x.h());
    EXPECT_EQ(x.value().str(16), want.str(16)) << "r = a";
    EXPECT_TRUE(twtest::recordIsNormal(x.object()));
    x.set(av);
    ASSERT_EQ(op(y, x, y), y.h());
    EXPECT_EQ(y.value().str(16), want.str(16)) << "r = b";
    EXPECT_TRUE(twtest::recordIsNormal(y.object()));
}

TYPED_TEST(BitwiseApi, ManyLimbOperandsAgainstGmp) {
    LimbGenerator gen(77);
    // Lengths in 28-bit limbs: equal, close, and very different, both ways round.
    const std::size_t lengths[][2] = {{1, 1}, {2, 3}, {30, 30}, {31, 29}, {1, 120}, {120, 1},
                                      {3, 200}, {200, 4}, {64, 160}, {160, 64}};
    for (int round = 0; round < 3; ++round) {
        for (const auto& len : lengths) {
            checkAgainstGmp<BitOp::And, TypeParam>(gen, len[0], len[1]);
            checkAgainstGmp<BitOp::Or, TypeParam>(gen, len[0], len[1]);
            checkAgainstGmp<BitOp::Xor, TypeParam>(gen, len[0], len[1]);
        }
    }
    EXPECT_EQ(TW_getLastError(), 0);
}

TYPED_TEST(BitwiseApi, WorkedExamples) {
    using B = TypeParam;
    Number<TypeParam> a(-6), b(3), c(-3), r;
    EXPECT_EQ(B::bitAnd(r, a, b), r.h());
    EXPECT_EQ(TypeParam::get_s64(r), 2);
    B::bitOr(r, a, b);
    EXPECT_EQ(TypeParam::get_s64(r), -7);
    B::bitXor(r, a, c);
    EXPECT_EQ(TypeParam::get_s64(r), 5);
    B::bitXor(r, a, b);
    EXPECT_EQ(TypeParam::get_s64(r), -5);

    // A negative operand and a zero magnitude: 0 with sign 0.
    Number<TypeParam> m4(-4), m5(-5), n5(-5);
    B::bitAnd(r, m4, b);
    EXPECT_EQ(TypeParam::getSign(r), 0);
    EXPECT_TRUE(twtest::recordIsNormal(r.object()));
    B::bitXor(r, m5, n5);  // equal values, different handles
    EXPECT_EQ(TypeParam::getSign(r), 0);
    EXPECT_TRUE(twtest::recordIsNormal(r.object()));

    // 10^100 OR 1 keeps the high part of the longer operand.
    const Mpz big(("1" + std::string(100, '0')).c_str());
    Number<TypeParam> g, one(1);
    g.set(big.v);
    B::bitOr(r, g, one);
    EXPECT_EQ(r.value().str(), "1" + std::string(99, '0') + "1");
    B::bitOr(r, one, g);
    EXPECT_EQ(r.value().str(), "1" + std::string(99, '0') + "1");
    B::bitAnd(r, g, one);
    EXPECT_TRUE(TypeParam::isZero(r));
}

TYPED_TEST(BitwiseApi, ZeroOperands) {
    using B = TypeParam;
    const Mpz big("-987654321987654321987654321987654321");
    Number<TypeParam> x, zero, r;
    x.set(big.v);
    B::bitOr(r, x, zero);
    EXPECT_EQ(r.value().str(), big.str());
    B::bitXor(r, x, zero);
    EXPECT_EQ(r.value().str(), big.str());
    B::bitOr(r, zero, x);
    EXPECT_EQ(r.value().str(), big.str());
    B::bitXor(r, zero, x);
    EXPECT_EQ(r.value().str(), big.str());
    // x AND 0 is 0 with sign 0, whichever side the zero is on.
    B::bitAnd(r, x, zero);
    EXPECT_EQ(TypeParam::getSign(r), 0);
    EXPECT_TRUE(twtest::recordIsNormal(r.object()));
    B::bitAnd(r, zero, x);
    EXPECT_EQ(TypeParam::getSign(r), 0);
    r.set(big.v);
    B::bitAnd(r, r, zero);  // in place
    EXPECT_EQ(TypeParam::getSign(r), 0);
    EXPECT_TRUE(twtest::recordIsNormal(r.object()));
    B::bitAnd(r, zero, zero);
    EXPECT_TRUE(TypeParam::isZero(r));
}

TYPED_TEST(BitwiseApi, SameHandleOperands) {
    using B = TypeParam;
    Mpz v("-1234567890123456789012345678901234567890");
    Number<TypeParam> a, r;
    a.set(v.v);
    EXPECT_EQ(B::bitAnd(r, a, a), r.h());
    EXPECT_EQ(r.value().str(), v.str());
    r.set(Mpz("5"));
    EXPECT_EQ(B::bitOr(r, a, a), r.h());
    EXPECT_EQ(r.value().str(), v.str());
    EXPECT_EQ(B::bitXor(r, a, a), r.h());
    EXPECT_TRUE(TypeParam::isZero(r));
    EXPECT_EQ(TypeParam::getSign(r), 0);
    // All three the same handle.
    EXPECT_EQ(B::bitAnd(a, a, a), a.h());
    EXPECT_EQ(a.value().str(), v.str());
    EXPECT_EQ(B::bitOr(a, a, a), a.h());
    EXPECT_EQ(a.value().str(), v.str());
    EXPECT_EQ(B::bitXor(a, a, a), a.h());
    EXPECT_TRUE(TypeParam::isZero(a));
    EXPECT_TRUE(twtest::recordIsNormal(a.object()));
    EXPECT_EQ(TW_getLastError(), 0);
}

TYPED_TEST(BitwiseApi, RaisedTerminateFlagGivesZero) {
    using B = TypeParam;
    Number<TypeParam> a(12), b(10), r(99);
    TW_setTerminate(1);
    for (auto op : {B::bitAnd, B::bitOr, B::bitXor}) {
        TypeParam::set_s32(r, 99);
        EXPECT_EQ(op(r, a, b), r.h());
        EXPECT_TRUE(TypeParam::isZero(r));
        EXPECT_TRUE(twtest::recordIsNormal(r.object()));
    }
    TW_setTerminate(0);
    B::bitOr(r, a, b);
    EXPECT_EQ(TypeParam::get_s64(r), 14);
}

TYPED_TEST(BitwiseApi, UnknownHandles) {
    using B = TypeParam;
    using Handle = typename TypeParam::Handle;
    Number<TypeParam> a(12), b(10), r(99);
    const Handle stale = [] {
        Handle h = TypeParam::newNumber();
        TypeParam::deleteNumber(h);
        return h;
    }();
    for (auto op : {B::bitAnd, B::bitOr, B::bitXor}) {
        EXPECT_EQ(op(nullptr, a, b), nullptr);
        EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
        TW_setTerminate(0);
        EXPECT_EQ(op(r, stale, b), nullptr);
        EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
        TW_setTerminate(0);
        EXPECT_EQ(op(r, a, nullptr), nullptr);
        EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
        TW_setTerminate(0);
        EXPECT_EQ(TypeParam::get_s64(r), 99);  // the result is left alone
    }
}

}  // namespace
