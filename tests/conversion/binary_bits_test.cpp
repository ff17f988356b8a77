// The operations only the binary type has: HX_isBitOne, HX_getTailBitZeros,
// HX_modPowTwo; and how a 32-bit value lies in 28-bit limbs.
#include <gmp.h>
#include <gtest/gtest.h>

#include "radix/oracle_digits.h"
#include "support/c_families.h"
#include "tarnwick.h"

namespace {

using twtest::BinaryFamily;
using twtest::Mpz;
using Binary = twtest::Number<BinaryFamily>;

class BinaryBits : public twtest::ErrorStateGuard {};

Mpz powerOfTwoPlus(unsigned k, long add) {
    Mpz v;
    mpz_setbit(v.v, k);
    if (add >= 0)
        mpz_add_ui(v.v, v.v, static_cast<unsigned long>(add));
    else
        mpz_sub_ui(v.v, v.v, static_cast<unsigned long>(-add));
    return v;
}

TEST_F(BinaryBits, ThirtyTwoBitValueTakesTwoLimbs) {
    Binary x;
    HX_set_u32(x, 0xFFFFFFFFu);
    ASSERT_EQ(x.object().rec().topIndex, 1u);
    EXPECT_EQ(x.object().limb(0), 0x0FFFFFFFu);
    EXPECT_EQ(x.object().limb(1), 0xFu);
}

TEST_F(BinaryBits, IsBitOneReadsTheMagnitude) {
    Binary x;
    twtest::setFromMpz(x.object(), powerOfTwoPlus(28, 0).v);
    EXPECT_EQ(HX_isBitOne(x, 27), 0u);
    EXPECT_EQ(HX_isBitOne(x, 28), 1u);
    EXPECT_EQ(HX_isBitOne(x, 29), 0u);
    EXPECT_EQ(HX_isBitOne(x, 56), 0u);              // beyond the top limb
    EXPECT_EQ(HX_isBitOne(x, 0xFFFFFFFFu), 0u);
    HX_negate(x);
    EXPECT_EQ(HX_isBitOne(x, 28), 1u);              // a negative value answers for its magnitude
    EXPECT_EQ(HX_isBitOne(x, 27), 0u);
    // Every bit of a random value against GMP.
    gmp_randstate_t state;
    gmp_randinit_mt(state);
    gmp_randseed_ui(state, 5);
    Mpz v;
    mpz_urandomb(v.v, state, 1000);
    gmp_randclear(state);
    twtest::setFromMpz(x.object(), v.v);
    for (unsigned k = 0; k < 1100; ++k) ASSERT_EQ(HX_isBitOne(x, k), unsigned(mpz_tstbit(v.v, k))) << "bit " << k;
}

TEST_F(BinaryBits, TailBitZeros) {
    Binary x;
    twtest::setFromMpz(x.object(), powerOfTwoPlus(28, 0).v);
    EXPECT_EQ(HX_getTailBitZeros(x), 28u);
    HX_set_s32(x, -6);
    EXPECT_EQ(HX_getTailBitZeros(x), 1u);
    HX_set_u32(x, 0);
    EXPECT_EQ(HX_getTailBitZeros(x), 0u);
    twtest::setFromMpz(x.object(), powerOfTwoPlus(1000, 0).v);
    EXPECT_EQ(HX_getTailBitZeros(x), 1000u);
    TW_setTerminate(1);
    EXPECT_EQ(HX_getTailBitZeros(x), 0u);
}

TEST_F(BinaryBits, ModPowTwoKeepsTheLowBits) {
    Binary x;
    // k = 0 leaves the value as it is (it does not give zero).
    HX_set_s32(x, -12345);
    EXPECT_EQ(HX_modPowTwo(x, 0), x.h());
    EXPECT_EQ(HX_get_s32(x), -12345);

    twtest::setFromMpz(x.object(), powerOfTwoPlus(28, 5).v);
    HX_modPowTwo(x, 28);
    EXPECT_EQ(HX_get_s32(x), 5);
    EXPECT_TRUE(twtest::recordIsNormal(x.object()));

    twtest::setFromMpz(x.object(), powerOfTwoPlus(28, 0).v);
    HX_negate(x);
    HX_modPowTwo(x, 28);
    EXPECT_EQ(HX_isZero(x), 1u);
    EXPECT_EQ(HX_getSign(x), 0);
    EXPECT_TRUE(twtest::recordIsNormal(x.object()));

    // Against GMP's truncated remainder by 2^k, for cuts inside, below and above the value.
    gmp_randstate_t state;
    gmp_randinit_mt(state);
    gmp_randseed_ui(state, 6);
    for (unsigned k : {1u, 27u, 28u, 29u, 56u, 100u, 333u, 999u, 1000u, 1001u, 5000u}) {
        Mpz v, expected;
        mpz_urandomb(v.v, state, 1000);
        mpz_mul_2exp(v.v, v.v, 60);  // zero limbs at the bottom
        mpz_neg(v.v, v.v);
        twtest::setFromMpz(x.object(), v.v);
        HX_modPowTwo(x, k);
        mpz_tdiv_r_2exp(expected.v, v.v, k);
        EXPECT_EQ(mpz_cmp(twtest::valueOf(x.object()).v, expected.v), 0) << "k " << k;
        EXPECT_TRUE(twtest::recordIsNormal(x.object())) << "k " << k;
    }
    gmp_randclear(state);
}

TEST_F(BinaryBits, UnknownHandles) {
    HX_handle stale = HX_new();
    HX_delete(stale);
    EXPECT_EQ(HX_isBitOne(stale, 0), 0u);
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
    TW_setTerminate(0);
    EXPECT_EQ(HX_getTailBitZeros(stale), 0u);
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
    TW_setTerminate(0);
    EXPECT_EQ(HX_modPowTwo(stale, 3), nullptr);
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
}

}  // namespace
