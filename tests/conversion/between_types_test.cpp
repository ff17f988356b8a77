// HX_set_hi and HI_set_hx: values of every size and sign survive the trip
// between the radices, against GMP; handle checks; the terminate flag.
#include <gmp.h>
#include <gtest/gtest.h>

#include "radix/oracle_digits.h"
#include "support/c_families.h"
#include "tarnwick.h"

namespace {

using twtest::BinaryFamily;
using twtest::DecimalFamily;
using twtest::Mpz;
using Decimal = twtest::Number<DecimalFamily>;
using Binary = twtest::Number<BinaryFamily>;

class BetweenTypes : public twtest::ErrorStateGuard {};

// A random value of about `digits` decimal digits, either sign.
Mpz randomValue(gmp_randstate_t state, std::size_t digits, bool negative) {
    Mpz v;
    mpz_urandomb(v.v, state, mp_bitcnt_t(double(digits) * 3.3219280948873623));
    if (negative) mpz_neg(v.v, v.v);
    return v;
}

// decimal -> binary -> decimal, checking the value and the records each way.
void roundTrip(const Mpz& value) {
    Decimal d, back;
    Binary b;
    twtest::setFromMpz(d.object(), value.v);
    ASSERT_EQ(HX_set_hi(b, d), b.h());
    ASSERT_EQ(mpz_cmp(twtest::valueOf(b.object()).v, value.v), 0);
    EXPECT_TRUE(twtest::recordIsNormal(b.object()));
    ASSERT_EQ(HI_set_hx(back, b), back.h());
    ASSERT_EQ(mpz_cmp(twtest::valueOf(back.object()).v, value.v), 0);
    EXPECT_TRUE(twtest::recordIsNormal(back.object()));
    EXPECT_EQ(HI_getSign(back), mpz_sgn(value.v));
    EXPECT_EQ(TW_getLastError(), 0);
}

TEST_F(BetweenTypes, SmallValuesAndLimbBoundaries) {
    for (const char* text : {"0", "1", "-1", "268435455", "268435456", "-268435456", "999999999", "1000000000",
                             "-1000000000", "72057594037927935", "72057594037927936", "999999999999999999",
                             "1000000000000000000", "-18446744073709551616"})
        roundTrip(Mpz(text));
}

TEST_F(BetweenTypes, RandomValuesOfManyLimbs) {
    gmp_randstate_t state;
    gmp_randinit_mt(state);
    gmp_randseed_ui(state, 2024);
    for (std::size_t digits : {10, 19, 30, 100, 500, 2000, 9001, 40000, 150000})
        for (bool negative : {false, true}) roundTrip(randomValue(state, digits, negative));
    gmp_randclear(state);
}

TEST_F(BetweenTypes, MillionDigitsBothWays) {
    gmp_randstate_t state;
    gmp_randinit_mt(state);
    gmp_randseed_ui(state, 7);
    roundTrip(randomValue(state, 1000000, true));
    gmp_randclear(state);
}

// Powers of the radices and their neighbours: long runs of zero and maximal
// limbs on one side or the other.
TEST_F(BetweenTypes, PowersOfBothRadices) {
    for (unsigned e : {1u, 7u, 100u, 1234u}) {
        Mpz p;
        mpz_ui_pow_ui(p.v, 10, 9 * e);
        roundTrip(p);
        mpz_sub_ui(p.v, p.v, 1);
        roundTrip(p);
        mpz_set_ui(p.v, 0);
        mpz_setbit(p.v, 28 * e);
        roundTrip(p);
        mpz_sub_ui(p.v, p.v, 1);
        mpz_neg(p.v, p.v);
        roundTrip(p);
    }
}

TEST_F(BetweenTypes, UnknownHandlesLeaveTheResult) {
    Decimal d(12345);
    Binary b(-77);
    HI_handle staleDecimal = HI_new();
    HI_delete(staleDecimal);
    EXPECT_EQ(HX_set_hi(b, staleDecimal), nullptr);
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
    EXPECT_EQ(HX_get_s32(b), -77);
    TW_setTerminate(0);
    // A handle of the other family is unknown to this one.
    EXPECT_EQ(HI_set_hx(d, reinterpret_cast<HX_handle>(d.h())), nullptr);
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
    EXPECT_EQ(HI_get_s32(d), 12345);
    TW_setTerminate(0);
    EXPECT_EQ(HI_set_hx(nullptr, b), nullptr);
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
}

TEST_F(BetweenTypes, RaisedTerminateFlagStopsTheConversion) {
    gmp_randstate_t state;
    gmp_randinit_mt(state);
    gmp_randseed_ui(state, 9);
    Decimal d, back;
    Binary b;
    twtest::setFromMpz(d.object(), randomValue(state, 50000, true).v);
    gmp_randclear(state);
    ASSERT_EQ(HX_set_hi(b, d), b.h());
    TW_setTerminate(1);
    EXPECT_EQ(HI_set_hx(back, b), back.h());
    EXPECT_EQ(HI_isZero(back), 1u);
    EXPECT_EQ(HI_getSign(back), 0);
    EXPECT_EQ(HX_set_hi(b, d), b.h());
    EXPECT_EQ(HX_isZero(b), 1u);
    EXPECT_EQ(HX_getSign(b), 0);
    EXPECT_EQ(TW_getLastError(), TW_ERR_STOPPED);
}

}  // namespace
