// The C++ interface: value semantics, operators against GMP, conversions
// between the two types, text, the radix converter, and errors as exceptions
// that leave the library's error state clear.
#include <gtest/gtest.h>

#include <sstream>

#include "support/limb_oracle.h"
#include "tarnwick.hpp"

namespace {

using tarnwick::Integer;
using tarnwick::IntegerX;
using twtest::Mpz;

template <class T>
class CppInteger : public ::testing::Test {};
using BothTypes = ::testing::Types<Integer, IntegerX>;
TYPED_TEST_SUITE(CppInteger, BothTypes);

TYPED_TEST(CppInteger, ValueSemanticsAndHandleCount) {
    using T = TypeParam;
    const auto count = [] { return std::is_same_v<T, Integer> ? HI_getCount() : HX_getCount(); };
    const int before = count();
    {
        T a(42);
        T b = a;              // deep copy
        b += T(1);
        EXPECT_EQ(a.to_int64(), 42);
        EXPECT_EQ(b.to_int64(), 43);
        T c = std::move(b);   // the handle moves
        EXPECT_EQ(c.to_int64(), 43);
        a = c;
        c = T(7);
        EXPECT_EQ(a.to_int64(), 43);
        swap(a, c);
        EXPECT_EQ(a.to_int64(), 7);
        EXPECT_EQ(count(), before + 2);  // b was moved from: it holds no handle
    }
    EXPECT_EQ(count(), before);  // every handle deleted
}

TYPED_TEST(CppInteger, OperatorsAgainstGmp) {
    using T = TypeParam;
    const char* texts[] = {"0", "1", "-1", "123456789012345678901234567890", "-98765432109876543210987654321987",
                           "340282366920938463463374607431768211456"};
    for (const char* x : texts) {
        for (const char* y : texts) {
            const T a(x), b(y);
            const Mpz ma(x), mb(y);
            Mpz e;
            mpz_add(e, ma, mb);
            EXPECT_EQ((a + b).to_string(), e.str());
            mpz_sub(e, ma, mb);
            EXPECT_EQ((a - b).to_string(), e.str());
            mpz_mul(e, ma, mb);
            EXPECT_EQ((a * b).to_string(), e.str());
            EXPECT_EQ(a < b, mpz_cmp(ma, mb) < 0);
            EXPECT_EQ(a == b, mpz_cmp(ma, mb) == 0);
            if (mpz_sgn(mb.v) != 0) {
                mpz_tdiv_q(e, ma, mb);
                EXPECT_EQ((a / b).to_string(), e.str());
                mpz_tdiv_r(e, ma, mb);
                EXPECT_EQ((a % b).to_string(), e.str());
            }
        }
    }
    T x(3);
    EXPECT_EQ(pow(x, 100).to_string(), "515377520732011331036461129765621272702107522001");
    EXPECT_EQ((T(1) << 70).to_string(16), "0x400000000000000000");
    EXPECT_EQ((-(T(1) << 70) >> 69).to_int64(), -2);
    EXPECT_EQ(abs(T(-5)).to_int64(), 5);
    EXPECT_EQ((T(12) & T(10)).to_int64(), 8);
    auto [q, r] = divmod(T(-7), T(2));
    EXPECT_EQ(q.to_int64(), -3);
    EXPECT_EQ(r.to_int64(), -1);
}

TYPED_TEST(CppInteger, ErrorsAreExceptionsAndClearTheState) {
    using T = TypeParam;
    T a(10), zero;
    try {
        a /= zero;
        FAIL() << "no exception";
    } catch (const tarnwick::Error& e) {
        EXPECT_EQ(e.code(), TW_ERR_DIV_ZERO);
        EXPECT_STREQ(e.what(), "division by zero");
    }
    EXPECT_EQ(TW_getLastError(), 0);
    EXPECT_EQ(TW_isTerminated(), 0u);
    EXPECT_THROW(a.to_string(1), tarnwick::Error);
    EXPECT_EQ((a + T(1)).to_int64(), 1);  // a became 0 by the failed division
}

TYPED_TEST(CppInteger, TextAndStreams) {
    using T = TypeParam;
    const T v("-1234567");
    EXPECT_EQ(v.to_string(10, TEXT_GROUP), "-1,234,567");
    EXPECT_EQ(v.to_string(36, TEXT_LOWER_CASE), "-qglj");
    std::ostringstream out;
    out << v << ' ' << std::hex << T(255) << ' ' << std::uppercase << T(255);
    EXPECT_EQ(out.str(), "-1234567 0xff 0xFF");
    EXPECT_EQ(v.digits(), 7u);
    EXPECT_EQ(v.bits(), 21u);
}

TEST(CppConversions, BetweenTheTypesAndThroughARadixConverter) {
    const Integer d("-123456789012345678901234567890123456789");
    const IntegerX x(d);
    EXPECT_EQ(x.to_string(), d.to_string());
    EXPECT_EQ(Integer(x), d);
    tarnwick::RadixConverter rc(1000, d);
    EXPECT_EQ(rc.sign(), -1);
    EXPECT_EQ(rc.digits().front(), 789u);
    rc.convert(2);
    EXPECT_EQ(Integer(rc), d);
    tarnwick::RadixConverter copy = rc;
    EXPECT_EQ(copy.digits(), rc.digits());
    tarnwick::RadixConverter nines(10, Integer(999));
    EXPECT_EQ(nines.sum_of_digits(), 27u);
}

}  // namespace
