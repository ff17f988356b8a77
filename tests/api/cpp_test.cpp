// The C++ interface: value semantics over handles, operators against GMP,
// conversions, text, and errors as exceptions that leave the state clear.
#include <sstream>

#include "support/harness.h"
#include "tarnwick.hpp"

namespace twtest {
namespace {

using tarnwick::Integer;
using tarnwick::IntegerX;

template <class T>
class Cpp : public Clean {};
using BothTypes = ::testing::Types<Integer, IntegerX>;
TYPED_TEST_SUITE(Cpp, BothTypes);

TYPED_TEST(Cpp, ValuesOperatorsAndErrors) {
    using T = TypeParam;
    const auto count = [] { return std::is_same_v<T, Integer> ? HI_getCount() : HX_getCount(); };
    const int before = count();
    {
        T a(42), b = a;  // a deep copy
        b += T(1);
        T c = std::move(b);  // the handle moves
        EXPECT_TRUE(a.to_int64() == 42 && c.to_int64() == 43);
        swap(a, c);
        EXPECT_EQ(a.to_int64(), 43);
        EXPECT_EQ(count(), before + 2);
    }
    EXPECT_EQ(count(), before);
    const char* texts[] = {"0", "-1", "123456789012345678901234567890", "-98765432109876543210987654321987",
                           "340282366920938463463374607431768211456"};
    for (const char* x : texts)
        for (const char* y : texts) {
            const T a(x), b(y);
            const Mpz ma(x), mb(y);
            Mpz e;
            EXPECT_EQ((a + b).to_string(), (mpz_add(e, ma, mb), e.str()));
            EXPECT_EQ((a - b).to_string(), (mpz_sub(e, ma, mb), e.str()));
            EXPECT_EQ((a * b).to_string(), (mpz_mul(e, ma, mb), e.str()));
            EXPECT_EQ(a < b, mpz_cmp(ma, mb) < 0);
            EXPECT_EQ(a == b, mpz_cmp(ma, mb) == 0);
            if (mpz_sgn(mb) == 0) continue;
            EXPECT_EQ((a / b).to_string(), (mpz_tdiv_q(e, ma, mb), e.str()));
            EXPECT_EQ((a % b).to_string(), (mpz_tdiv_r(e, ma, mb), e.str()));
        }
    EXPECT_EQ((T(1) << 70).to_string(16), "0x400000000000000000");
    EXPECT_EQ((-(T(1) << 70) >> 69).to_int64(), -2);
    EXPECT_EQ((T(12) & T(10)).to_int64(), 8);
    auto [q, r] = divmod(T(-7), T(2));
    EXPECT_TRUE(q.to_int64() == -3 && r.to_int64() == -1);
    const T v("-1234567");
    EXPECT_EQ(v.to_string(10, TEXT_GROUP), "-1,234,567");
    EXPECT_EQ(v.to_string(36, TEXT_LOWER_CASE), "-qglj");
    std::ostringstream out;
    out << v << ' ' << std::hex << T(255) << ' ' << std::uppercase << std::showbase << T(255);
    EXPECT_EQ(out.str(), "-1234567 ff 0XFF");
    EXPECT_TRUE(v.digits() == 7 && v.bits() == 21);
    T a(10), zero;
    try {
        a /= zero;
        ADD_FAILURE() << "no exception";
    } catch (const tarnwick::Error& e) {
        EXPECT_EQ(e.code(), TW_ERR_DIV_ZERO);
        EXPECT_STREQ(e.what(), "division by zero");
    }
    EXPECT_TRUE(TW_getLastError() == 0 && TW_isTerminated() == 0);
    EXPECT_THROW(a.to_string(1), tarnwick::Error);
    EXPECT_EQ((a + T(1)).to_int64(), 1);  // a became 0 by the failed division
}

TEST(Cpp, ConversionsAndTheRadixConverter) {
    const Integer d("-123456789012345678901234567890123456789");
    const IntegerX x(d);
    EXPECT_EQ(x.to_string(), d.to_string());
    EXPECT_EQ(Integer(x), d);
    tarnwick::RadixConverter rc(1000, d);
    EXPECT_TRUE(rc.sign() == -1 && rc.digits().front() == 789u);
    rc.convert(2);
    EXPECT_EQ(Integer(rc), d);
    const tarnwick::RadixConverter copy = rc;
    EXPECT_EQ(copy.digits(), rc.digits());
    EXPECT_EQ(tarnwick::RadixConverter(10, Integer(999)).sum_of_digits(), 27u);
}

TYPED_TEST(Cpp, NumberTheory) {
    using T = TypeParam;
    const T a = pow(T(6), 40), b = pow(T(4), 30) * 9;
    EXPECT_EQ(gcd(a, b), pow(T(2), 40) * 9);
    EXPECT_EQ(lcm(a, b), a / gcd(a, b) * b);
    const auto e = gcdext(a, -b);
    EXPECT_EQ(a * e.x + (-b) * e.y, e.g);
    EXPECT_EQ(powmod(T(3), T(-1), T(7)), T(5));
    EXPECT_EQ(invert(T(3), T(7)), T(5));
    EXPECT_EQ(sqrt(pow(T(10), 40) - 1), pow(T(10), 20) - 1);
    EXPECT_EQ(root(T(-27), 3), T(-3));
    EXPECT_EQ(ilog(pow(T(3), 50), T(3)), 50u);
    EXPECT_EQ(gcd(std::vector<T>{a, b, T(6)}), T(6));
    EXPECT_TRUE(gcd(std::vector<T>{}) == T(0) && lcm(std::vector<T>{}) == T(1));
    EXPECT_EQ(lcm(std::vector<T>{T(4), T(-6), T(10)}), T(60));
    EXPECT_EQ(T::factorial(25) / T::factorial2(25) / T::factorial2(24) + T::primorial(10) + T::lucas(-3), T(207));
    EXPECT_EQ(T::binomial(60, 30) * T::permutation(9, 0) - T::fibonacci(-80) + product(std::vector<T>{T(-2), T(3)}),
              T("118264581564861424") + T("23416728348467685") - 6);
    const T x(-1000003);  // 20 bits: floor, trunc and ceil keep 2 decimal digits or 18 bits
    const bool decimal = std::is_same_v<T, Integer>;
    const std::uint32_t n = decimal ? 2 : 18;
    EXPECT_EQ(floor(x, n), decimal ? T(-1100000) : T(-1000004));
    EXPECT_EQ(trunc(x, n), T(-1000000));
    EXPECT_EQ(ceil(-x, n), decimal ? T(1100000) : T(1000004));
    EXPECT_TRUE(isprime(nextprime(pow(T(10), 30))) && !isprime(T(561)) && prevprime(T(3)) == T(2));
    EXPECT_TRUE(tarnwick::prime_pi(100) == 25 && tarnwick::nth_prime(25) == 97 && isprime(T::genprime(64)));
    EXPECT_THROW(powmod(T(3), T(2), T(0)), tarnwick::Error);
    EXPECT_THROW(ilog(T(0), T(10)), tarnwick::Error);
    EXPECT_EQ(TW_getLastError(), 0);  // a throw leaves the error state clear
}

}  // namespace
}  // namespace twtest
