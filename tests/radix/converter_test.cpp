// The RC_ exports: the converter's fields and their rules, conversion between
// radices, moving values to and from both integer types (against GMP), the
// machine-integer readers, the digit sum and the handle checks.
#include <gmp.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "radix/oracle_digits.h"
#include "support/c_families.h"
#include "tarnwick.h"

namespace {

using twtest::Digits;
using twtest::Mpz;

// A converter owned by a test.
class Converter {
public:
    explicit Converter(std::uint32_t radix) : h_(RC_new(radix)) {}
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    ~Converter() { RC_delete(h_); }
    operator RC_handle() const { return h_; }
    Digits digits() const {
        DigitVectorView view{};
        RC_getVector(h_, &view);
        return Digits(view.data, view.data + view.size);
    }
    void setDigits(const Digits& d) { ASSERT_EQ(RC_resetVector(h_, d.data(), std::uint32_t(d.size())), int32_t(d.size())); }

private:
    RC_handle h_;
};

class RadixConverter : public twtest::ErrorStateGuard {};

TEST_F(RadixConverter, NewConverterReadsEmpty) {
    const int32_t before = RC_getCount();
    {
        Converter c(10);
        EXPECT_EQ(RC_getCount(), before + 1);
        EXPECT_EQ(RC_getRadix(c), 10u);
        EXPECT_EQ(RC_getSign(c), 0);
        DigitVectorView view{reinterpret_cast<uint32_t*>(8), 99};
        EXPECT_EQ(RC_getVector(c, &view), &view);
        EXPECT_EQ(view.data, nullptr);
        EXPECT_EQ(view.size, 0u);
        EXPECT_EQ(RC_getVector(c, nullptr), nullptr);
        EXPECT_EQ(RC_sumOfDigits(c), 0u);
    }
    EXPECT_EQ(RC_getCount(), before);
    EXPECT_EQ(TW_getLastError(), 0);
}

// Radix 1 has no positional digits: RC_new refuses it, and so do the radix
// changes, leaving the converter as it was.
TEST_F(RadixConverter, RadixOneIsRefused) {
    const int32_t before = RC_getCount();
    EXPECT_EQ(RC_new(1), nullptr);
    EXPECT_EQ(TW_getLastError(), TW_ERR_RADIX);
    EXPECT_EQ(RC_getCount(), before);
    TW_setTerminate(0);

    Converter c(10);
    RC_set_s32(c, 907);
    EXPECT_EQ(RC_convert2Radix(c, 1), nullptr);
    EXPECT_EQ(TW_getLastError(), TW_ERR_RADIX);
    TW_setTerminate(0);
    EXPECT_EQ(RC_resetRadix(c, 1), 10);
    EXPECT_EQ(TW_getLastError(), TW_ERR_RADIX);
    EXPECT_EQ(RC_getRadix(c), 10u);
    EXPECT_EQ(c.digits(), (Digits{7, 0, 9}));
    EXPECT_EQ(RC_getSign(c), 1);
}

TEST_F(RadixConverter, MachineIntegersInAndOut) {
    Converter c(10);
    EXPECT_EQ(RC_set_s32(c, -5), static_cast<RC_handle>(c));
    EXPECT_EQ(c.digits(), Digits{5});
    EXPECT_EQ(RC_getSign(c), -1);
    EXPECT_EQ(RC_get_s32(c), -5);
    EXPECT_EQ(RC_get_s64(c), -5);
    EXPECT_EQ(RC_get_u32(c), 0u);  // negative
    EXPECT_EQ(RC_get_u64(c), 0u);

    RC_set_s32(c, INT32_MIN);
    EXPECT_EQ(RC_get_s32(c), INT32_MIN);
    RC_set_u32(c, 0xFFFFFFFFu);
    EXPECT_EQ(c.digits(), (Digits{5, 9, 2, 7, 6, 9, 4, 9, 2, 4}));
    EXPECT_EQ(RC_get_u32(c), 0xFFFFFFFFu);
    EXPECT_EQ(RC_get_s32(c), 0);  // out of range
    RC_set_s64(c, INT64_MIN);
    EXPECT_EQ(RC_get_s64(c), INT64_MIN);
    EXPECT_EQ(RC_get_u64(c), 0u);
    RC_set_u64(c, UINT64_MAX);
    EXPECT_EQ(RC_get_u64(c), UINT64_MAX);
    EXPECT_EQ(RC_get_s64(c), 0);
    // One more than 2^64 - 1 no longer fits any reader.
    Digits d = c.digits();
    d[0] += 1;
    c.setDigits(d);
    EXPECT_EQ(RC_get_u64(c), 0u);
    RC_set_u32(c, 0);
    EXPECT_TRUE(c.digits().empty());
    EXPECT_EQ(RC_getSign(c), 0);

    Converter wide(0);
    RC_set_u64(wide, 0x123456789ABCDEF0ull);
    EXPECT_EQ(wide.digits(), (Digits{0x9ABCDEF0u, 0x12345678u}));
}

TEST_F(RadixConverter, ConvertKeepsTheValue) {
    Converter c(10);
    const Digits decimal{3, 2, 1, 0, 0, 9, 8, 7, 6, 5, 4, 3, 2, 1, 9, 9, 9, 4};
    c.setDigits(decimal);
    RC_resetSign(c, -1);
    EXPECT_EQ(RC_convert2Radix(c, 2), static_cast<RC_handle>(c));
    EXPECT_EQ(RC_getRadix(c), 2u);
    const Mpz value = twtest::digitsToMpz(decimal, 10);
    EXPECT_EQ(c.digits(), twtest::mpzToDigits(value.v, 2));
    RC_convert2Radix(c, 10);
    EXPECT_EQ(c.digits(), decimal);
    EXPECT_EQ(RC_getSign(c), -1);
    // Radix 0: 32-bit digits.
    RC_convert2Radix(c, 0);
    EXPECT_EQ(c.digits(), twtest::mpzToDigits(value.v, 0));
    EXPECT_EQ(RC_getRadix(c), 0u);
    EXPECT_EQ(RC_convert2Radix(c, 0), static_cast<RC_handle>(c));  // same radix: nothing to do

    // Every kind of pair of radices (powers of two, divisors of 10^9, others), against GMP.
    twtest::LimbGenerator gen(21);
    const std::uint32_t radices[] = {2, 3, 8, 10, 16, 20, 25, 36, 62, 1000, 65536, 1000000000, 268435456,
                                     1000000007, 2147483648u, 3486784401u, 0};
    for (std::uint32_t from : radices) {
        for (std::uint32_t to : radices) {
            Converter x(from);
            const Digits d = twtest::randomDigits(gen, from, 1 + gen.below(400));
            x.setDigits(d);
            RC_convert2Radix(x, to);
            // The same radix leaves the digits as they are, top zeros included.
            const Digits expected = from == to ? d : twtest::mpzToDigits(twtest::digitsToMpz(d, from).v, to);
            ASSERT_EQ(x.digits(), expected) << from << " -> " << to;
        }
    }
}

TEST_F(RadixConverter, NumbersFromTheConverter) {
    twtest::Number<twtest::DecimalFamily> d;
    twtest::Number<twtest::BinaryFamily> b;
    Converter c(10);
    c.setDigits({1, 2, 3});
    ASSERT_EQ(HI_set_rc(d, c), d.h());
    EXPECT_EQ(HI_get_s32(d), 321);
    // A new radix gives the same digits another value.
    EXPECT_EQ(RC_resetRadix(c, 16), 16);
    EXPECT_EQ(c.digits(), (Digits{1, 2, 3}));
    HI_set_rc(d, c);
    EXPECT_EQ(HI_get_s32(d), 0x321);
    ASSERT_EQ(HX_set_rc(b, c), b.h());
    EXPECT_EQ(HX_get_s32(b), 0x321);

    // The sign comes from the converter; zero digits give sign 0.
    RC_resetSign(c, -1);
    HX_set_rc(b, c);
    EXPECT_EQ(HX_get_s32(b), -0x321);
    c.setDigits({0, 0});
    HX_set_rc(b, c);
    EXPECT_EQ(HX_getSign(b), 0);
    EXPECT_EQ(RC_getSign(c), 0);

    twtest::LimbGenerator gen(22);
    for (std::uint32_t radix : {2u, 7u, 10u, 16u, 1000000000u, 268435456u, 0u, 4294967295u}) {
        const Digits digits = twtest::randomDigits(gen, radix, 3000);
        Converter x(radix);
        x.setDigits(digits);
        RC_resetSign(x, -1);
        Mpz expected = twtest::digitsToMpz(digits, radix);
        mpz_neg(expected.v, expected.v);
        HI_set_rc(d, x);
        HX_set_rc(b, x);
        EXPECT_EQ(mpz_cmp(twtest::valueOf(d.object()).v, expected.v), 0) << radix;
        EXPECT_EQ(mpz_cmp(twtest::valueOf(b.object()).v, expected.v), 0) << radix;
    }
}

TEST_F(RadixConverter, ConverterFromNumbers) {
    twtest::Number<twtest::DecimalFamily> d;
    twtest::Number<twtest::BinaryFamily> b;
    gmp_randstate_t state;
    gmp_randinit_mt(state);
    gmp_randseed_ui(state, 23);
    for (std::uint32_t radix : {2u, 3u, 10u, 16u, 62u, 100u, 1000000000u, 268435456u, 0u, 4294967291u}) {
        Mpz v;
        mpz_urandomb(v.v, state, 20000);
        mpz_neg(v.v, v.v);
        twtest::setFromMpz(d.object(), v.v);
        twtest::setFromMpz(b.object(), v.v);
        Converter fromDecimal(radix), fromBinary(radix), copy(radix == 10 ? 7 : 10);
        ASSERT_EQ(RC_set_hi(fromDecimal, d), static_cast<RC_handle>(fromDecimal));
        ASSERT_EQ(RC_set_hx(fromBinary, b), static_cast<RC_handle>(fromBinary));
        const Digits expected = twtest::mpzToDigits(v.v, radix);
        EXPECT_EQ(fromDecimal.digits(), expected) << radix;
        EXPECT_EQ(fromBinary.digits(), expected) << radix;
        EXPECT_EQ(RC_getSign(fromDecimal), -1);
        // Into a converter of another radix, and back into one of this radix.
        ASSERT_EQ(RC_set_rc(copy, fromBinary), static_cast<RC_handle>(copy));
        EXPECT_EQ(RC_getSign(copy), -1);
        RC_clearVector(fromDecimal);
        RC_set_rc(fromDecimal, copy);
        EXPECT_EQ(fromDecimal.digits(), expected) << radix;
    }
    gmp_randclear(state);
    // A converter set from itself keeps its value (top zero digits dropped).
    Converter self(10);
    self.setDigits({4, 0, 5, 0, 0});
    RC_set_rc(self, self);
    EXPECT_EQ(self.digits(), (Digits{4, 0, 5}));
    // Zero gives an empty vector and sign 0.
    HI_set_u32(d, 0);
    RC_set_hi(self, d);
    EXPECT_TRUE(self.digits().empty());
    EXPECT_EQ(RC_getSign(self), 0);
}

TEST_F(RadixConverter, SignRules) {
    Converter c(10);
    c.setDigits({5});
    EXPECT_EQ(RC_getSign(c), 1);       // a new converter's +1
    RC_clearVector(c);
    EXPECT_TRUE(c.digits().empty());
    EXPECT_EQ(RC_getSign(c), 0);
    // resetSign stores any value unchanged; conversions read it as plus or minus.
    c.setDigits({5});
    EXPECT_EQ(RC_getSign(c), 0);       // cleared sign kept by resetVector
    twtest::Number<twtest::DecimalFamily> d;
    HI_set_rc(d, c);
    EXPECT_EQ(HI_get_s32(d), 5);
    EXPECT_EQ(RC_resetSign(c, 7), 7);
    EXPECT_EQ(RC_getSign(c), 7);
    EXPECT_EQ(RC_get_s32(c), 5);
    RC_resetSign(c, -9);
    EXPECT_EQ(RC_get_s32(c), -5);
    // A zero value reads sign 0 however it is spelled.
    c.setDigits({0});
    EXPECT_EQ(RC_getSign(c), 0);
    RC_resetSign(c, -1);
    c.setDigits({0, 0, 0});
    EXPECT_EQ(RC_getSign(c), 0);
}

TEST_F(RadixConverter, ResetVectorChecksEveryDigit) {
    Converter c(10);
    c.setDigits({1, 2});
    const uint32_t bad[] = {1, 10, 2};
    EXPECT_EQ(RC_resetVector(c, bad, 3), TW_ERR_RADIX);
    EXPECT_EQ(TW_getLastError(), TW_ERR_RADIX);
    EXPECT_EQ(c.digits(), (Digits{1, 2}));
    TW_setTerminate(0);
    EXPECT_EQ(RC_resetVector(c, nullptr, 2), 0);
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
    EXPECT_EQ(c.digits(), (Digits{1, 2}));
    TW_setTerminate(0);
    EXPECT_EQ(RC_resetVector(c, nullptr, 0), 0);
    EXPECT_TRUE(c.digits().empty());
    // Radix 0 takes every 32-bit digit.
    Converter wide(0);
    const uint32_t any[] = {0xFFFFFFFFu, 0};
    EXPECT_EQ(RC_resetVector(wide, any, 2), 2);
    EXPECT_EQ(TW_getLastError(), 0);
}

TEST_F(RadixConverter, SumOfDigits) {
    Converter c(10);
    c.setDigits({9, 9, 9, 0, 0});
    EXPECT_EQ(RC_sumOfDigits(c), 27u);
    // Radix 0: (2^32 - 1) * count passes 32 bits, so the sum is taken in 64 bits.
    Converter wide(0);
    wide.setDigits(Digits(5000, 0xFFFFFFFFu));
    EXPECT_EQ(RC_sumOfDigits(wide), 5000ull * 0xFFFFFFFFull);
    // Digits left above a smaller radix are summed in 32 bits when
    // (radix - 1) * count fits 32 bits, as the rule says.
    wide.setDigits({0xFFFFFFFFu, 0xFFFFFFFFu});
    RC_resetRadix(wide, 3);
    EXPECT_EQ(RC_sumOfDigits(wide), 0xFFFFFFFEull);
    RC_resetRadix(wide, -1);  // 2^32 - 1: the 64-bit sum
    EXPECT_EQ(RC_getRadix(wide), 0xFFFFFFFFu);
    EXPECT_EQ(RC_sumOfDigits(wide), 2 * 0xFFFFFFFFull);
    // The sign is ignored.
    RC_set_s32(c, -1234);
    EXPECT_EQ(RC_sumOfDigits(c), 10u);
}

TEST_F(RadixConverter, TextInput) {
    RC_handle c = RC_new_strA(10, "  -0x1F");
    ASSERT_NE(c, nullptr);
    DigitVectorView view{};
    RC_getVector(c, &view);
    EXPECT_EQ(Digits(view.data, view.data + view.size), (Digits{1, 3}));
    EXPECT_EQ(RC_getSign(c), -1);
    RC_delete(c);
    const tw_wchar wide[] = {'1', ',', '0', '2', '4', 0};
    c = RC_new_strW(2, wide);
    RC_getVector(c, &view);
    EXPECT_EQ(view.size, 11u);
    EXPECT_EQ(RC_get_u32(c), 1024u);
    RC_delete(c);
    c = RC_new_strA(16, nullptr);
    EXPECT_EQ(RC_getSign(c), 0);
    EXPECT_EQ(RC_sumOfDigits(c), 0u);
    RC_delete(c);
    EXPECT_EQ(RC_new_strA(1, "5"), nullptr);
    EXPECT_EQ(TW_getLastError(), TW_ERR_RADIX);
}

TEST_F(RadixConverter, UnknownAndDeletedHandles) {
    RC_handle deleted = RC_new(10);
    RC_set_s32(deleted, 42);
    const int32_t before = RC_getCount();
    EXPECT_EQ(RC_delete(deleted), 1u);
    EXPECT_EQ(RC_getCount(), before - 1);
    EXPECT_EQ(RC_delete(nullptr), 1u);
    EXPECT_EQ(TW_getLastError(), 0);

    Converter live(10);
    twtest::Number<twtest::DecimalFamily> d(77);
    const uint32_t one = 1;
    DigitVectorView view{};
    auto expectHandleError = [](auto result, auto failure) {
        EXPECT_EQ(result, failure);
        EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
        TW_setTerminate(0);
    };
    for (RC_handle bad : {deleted, static_cast<RC_handle>(nullptr), reinterpret_cast<RC_handle>(d.h())}) {
        expectHandleError(RC_delete(bad == nullptr ? deleted : bad), 0u);
        expectHandleError(RC_getRadix(bad), 0u);
        expectHandleError(RC_getSign(bad), 0);
        expectHandleError(RC_getVector(bad, &view), static_cast<DigitVectorView*>(nullptr));
        expectHandleError(RC_resetVector(bad, &one, 1), 0);
        expectHandleError(RC_resetRadix(bad, 8), 0);
        expectHandleError(RC_resetSign(bad, -1), 0);
        expectHandleError(RC_convert2Radix(bad, 2), static_cast<RC_handle>(nullptr));
        expectHandleError(RC_set_hi(bad, d), static_cast<RC_handle>(nullptr));
        expectHandleError(RC_set_rc(bad, live), static_cast<RC_handle>(nullptr));
        expectHandleError(RC_set_rc(live, bad), static_cast<RC_handle>(nullptr));
        expectHandleError(RC_set_s32(bad, 1), static_cast<RC_handle>(nullptr));
        expectHandleError(RC_set_u64(bad, 1), static_cast<RC_handle>(nullptr));
        expectHandleError(RC_get_s32(bad), 0);
        expectHandleError(RC_get_u32(bad), 0u);
        expectHandleError(RC_get_s64(bad), int64_t(0));
        expectHandleError(RC_get_u64(bad), uint64_t(0));
        expectHandleError(RC_sumOfDigits(bad), uint64_t(0));
        expectHandleError(HI_set_rc(d, bad), static_cast<HI_handle>(nullptr));
        RC_clearVector(bad);
        EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
        TW_setTerminate(0);
    }
    // The number and the live converter were left alone.
    EXPECT_EQ(HI_get_s32(d), 77);
    EXPECT_TRUE(live.digits().empty());
    // A number handle that is unknown: checked after the converter.
    HX_handle staleNumber = HX_new();
    HX_delete(staleNumber);
    expectHandleError(RC_set_hx(live, staleNumber), static_cast<RC_handle>(nullptr));
    expectHandleError(HX_set_rc(staleNumber, live), static_cast<HX_handle>(nullptr));
}

TEST_F(RadixConverter, RaisedTerminateFlagStopsTheConversion) {
    twtest::LimbGenerator gen(24);
    Converter c(7);
    c.setDigits(twtest::randomDigits(gen, 7, 20000));
    TW_setTerminate(1);
    EXPECT_EQ(RC_convert2Radix(c, 10), static_cast<RC_handle>(c));
    EXPECT_TRUE(c.digits().empty());
    EXPECT_EQ(RC_getSign(c), 0);
    EXPECT_EQ(TW_getLastError(), TW_ERR_STOPPED);
}

}  // namespace
