// setFromDigits and toDigits against GMP: every radix from 2 to 62, radix 0
// (2^32), radices next to powers, vectors with zero digits at both ends, and
// lengths across the divide-and-conquer levels.
#include "arith/convert/digit_conversion.h"

#include <gmp.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "frame/error_state.h"
#include "radix/oracle_digits.h"

namespace {

using twtest::Digits;
using twtest::Mpz;

template <class R>
class DigitConversion : public ::testing::Test {
protected:
    void TearDown() override { tw::clearErrorState(); }
};
using Radices = ::testing::Types<tw::DecimalRadix, tw::BinaryRadix>;
TYPED_TEST_SUITE(DigitConversion, Radices);

// Radices whose chunks, regroupings and free factors differ: every small
// radix, 2^32, powers of two and ten, and their neighbours.
std::vector<std::uint32_t> radicesUnderTest() {
    std::vector<std::uint32_t> radices;
    for (std::uint32_t r = 2; r <= 62; ++r) radices.push_back(r);
    for (std::uint32_t r : {0u, 1u << 31, (1u << 31) - 1, (1u << 31) + 1, 1000000000u, 999999999u, 1000000007u,
                            3486784401u /* 3^20 */, 268435456u, 268435455u, 4294967295u, 65536u, 65537u, 100u,
                            100000u, 10000000u})
        radices.push_back(r);
    return radices;
}

template <class R>
void checkBothWays(const Digits& digits, std::uint32_t radix) {
    const Mpz expected = twtest::digitsToMpz(digits, radix);
    tw::NumberRecord x;
    tw::resizeStorage(x, 3, true);
    tw::setFromDigits<R>(x, radix, digits.data(), digits.size());
    ASSERT_EQ(mpz_cmp(twtest::recordToMpz<R>(x).v, expected.v), 0)
        << "radix " << radix << ", " << digits.size() << " digits";
    EXPECT_EQ(x.digits[x.topIndex] == 0, x.topIndex == 0 && mpz_sgn(expected.v) == 0);
    EXPECT_EQ(tw::toDigits<R>(x, radix), twtest::mpzToDigits(expected.v, radix))
        << "radix " << radix << ", " << digits.size() << " digits";
}

TYPED_TEST(DigitConversion, EveryRadixBothWays) {
    twtest::LimbGenerator gen(11);
    for (std::uint32_t radix : radicesUnderTest())
        for (std::size_t n : {1, 2, 3, 7, 40, 150}) checkBothWays<TypeParam>(twtest::randomDigits(gen, radix, n), radix);
}

// The digits GMP writes as text, for every radix its text covers (this also
// checks the oracle the other cases lean on).
TYPED_TEST(DigitConversion, AgreesWithGmpText) {
    gmp_randstate_t state;
    gmp_randinit_mt(state);
    gmp_randseed_ui(state, 17);
    for (int radix = 2; radix <= 62; ++radix) {
        Mpz v;
        mpz_urandomb(v.v, state, 3000);
        tw::SignedNumber<TypeParam> x;
        twtest::setFromMpz(x, v.v);
        const std::string text = v.str(radix);
        // GMP's alphabet: 0-9a-z up to radix 36, 0-9A-Za-z above.
        Digits expected;
        for (auto c = text.rbegin(); c != text.rend(); ++c) {
            const char ch = *c;
            const std::uint32_t value = ch <= '9'   ? std::uint32_t(ch - '0')
                                        : ch >= 'a' ? std::uint32_t(ch - 'a') + (radix <= 36 ? 10 : 36)
                                                    : std::uint32_t(ch - 'A') + 10;
            expected.push_back(value);
        }
        EXPECT_EQ(tw::toDigits<TypeParam>(x.rec(), std::uint32_t(radix)), expected) << "radix " << radix;
        tw::NumberRecord back;
        tw::setFromDigits<TypeParam>(back, std::uint32_t(radix), expected.data(), expected.size());
        EXPECT_EQ(mpz_cmp(twtest::recordToMpz<TypeParam>(back).v, v.v), 0) << "radix " << radix;
    }
    gmp_randclear(state);
}

// Lengths on both sides of the tree's leaf and level boundaries, and long
// enough for several levels of products and divisions.
TYPED_TEST(DigitConversion, LongVectorsThroughTheTree) {
    twtest::LimbGenerator gen(13);
    for (std::uint32_t radix : {10u, 7u, 62u, 0u, 1000000000u, 268435456u, 3486784401u, 2147483648u, 1000000007u})
        for (std::size_t n : {31, 32, 33, 64, 65, 300, 1025, 5000, 30000})
            checkBothWays<TypeParam>(twtest::randomDigits(gen, radix, n), radix);
}

TYPED_TEST(DigitConversion, ZeroDigitsAtBothEnds) {
    twtest::LimbGenerator gen(12);
    for (std::uint32_t radix : {0u, 2u, 10u, 1000000000u, 268435456u, 7u, 3486784401u}) {
        for (std::size_t low : {0, 1, 5, 60, 3000}) {
            for (std::size_t high : {0, 1, 9}) {
                Digits d = twtest::randomDigits(gen, radix, 25);
                d[0] = d[24] = 1;
                d.insert(d.begin(), low, 0);
                d.insert(d.end(), high, 0);
                checkBothWays<TypeParam>(d, radix);
                // A single significant digit scaled by a power of the radix.
                Digits single(low, 0);
                single.push_back(radix == 2 ? 1 : 5);
                single.insert(single.end(), high, 0);
                checkBothWays<TypeParam>(single, radix);
            }
        }
    }
}

TYPED_TEST(DigitConversion, EmptyAndZeroVectorsGiveZero) {
    for (const Digits& d : {Digits{}, Digits{0}, Digits{0, 0, 0}}) {
        tw::SignedNumber<TypeParam> n;
        twtest::setFromMpz(n, Mpz("123456789012345678901234567890").v);
        tw::setFromDigits<TypeParam>(n.rec(), 10, d.data(), d.size());
        EXPECT_TRUE(n.rec().isZero());
        EXPECT_EQ(n.rec().topIndex, 0u);
        EXPECT_EQ(n.rec().lowIndex, 0u);
        EXPECT_TRUE(tw::toDigits<TypeParam>(n.rec(), 10).empty());
    }
}

// Digits not below the radix (a converter whose radix changed under its
// digits) count with their full value.
TYPED_TEST(DigitConversion, DigitsAboveTheRadixKeepTheirValue) {
    twtest::LimbGenerator gen(14);
    for (std::uint32_t radix : {2u, 10u, 16u, 1000u, 1000000000u, 268435456u, 7u}) {
        for (std::size_t n : {1, 5, 200}) {
            Digits d(n);
            for (auto& x : d) x = std::uint32_t(gen.next());
            Mpz expected;
            for (std::size_t i = n; i-- > 0;) {
                mpz_mul_ui(expected.v, expected.v, radix);
                mpz_add_ui(expected.v, expected.v, d[i]);
            }
            tw::NumberRecord x;
            tw::resizeStorage(x, 3, true);
            tw::setFromDigits<TypeParam>(x, radix, d.data(), d.size());
            EXPECT_EQ(mpz_cmp(twtest::recordToMpz<TypeParam>(x).v, expected.v), 0) << "radix " << radix;
        }
    }
}

TYPED_TEST(DigitConversion, RadixOneSumsTheDigits) {
    const Digits d{4000000000u, 4000000000u, 7};
    tw::NumberRecord x;
    tw::resizeStorage(x, 3, true);
    tw::setFromDigits<TypeParam>(x, 1, d.data(), d.size());
    EXPECT_EQ(twtest::recordToMpz<TypeParam>(x).str(), "8000000007");
    EXPECT_TRUE(tw::toDigits<TypeParam>(x, 1).empty());
    EXPECT_EQ(tw::lastError(), tw::kErrRadix);
}

TYPED_TEST(DigitConversion, RaisedTerminateFlagStopsTheWork) {
    twtest::LimbGenerator gen(15);
    const Digits d = twtest::randomDigits(gen, 7, 20000);
    tw::NumberRecord x;
    tw::resizeStorage(x, 3, true);
    tw::setFromDigits<TypeParam>(x, 7, d.data(), d.size());
    ASSERT_FALSE(x.isZero());
    tw::setLastError(tw::kErrStopped);
    EXPECT_TRUE(tw::toDigits<TypeParam>(x, 3).empty());
    tw::setFromDigits<TypeParam>(x, 7, d.data(), d.size());
    EXPECT_TRUE(x.isZero());
}

// Decimal records from 128 to 1400 limbs split by way of binary limbs: the
// lengths on both sides of that band, near-maximal and random values.
TEST(DecimalSplit, LengthsAroundTheBinaryBand) {
    gmp_randstate_t state;
    gmp_randinit_mt(state);
    gmp_randseed_ui(state, 23);
    for (std::size_t limbs : {127, 128, 129, 1399, 1400, 1401}) {
        Mpz top, below, v;
        mpz_ui_pow_ui(top.v, 10, 9 * limbs);
        mpz_ui_pow_ui(below.v, 10, 9 * (limbs - 1));
        for (int kind = 0; kind < 2; ++kind) {
            // kind 0: top - 1 (every limb maximal); kind 1: a random value of exactly `limbs` limbs.
            mpz_urandomm(v.v, state, below.v);
            if (kind == 0) mpz_set_ui(v.v, 0);
            mpz_sub(v.v, top.v, v.v);
            mpz_sub_ui(v.v, v.v, 1);
            tw::SignedNumber<tw::DecimalRadix> x;
            twtest::setFromMpz(x, v.v);
            ASSERT_EQ(x.rec().topIndex + 1, limbs);
            for (std::uint32_t radix : {36u, 7u, 4294967295u, 1000000007u})
                EXPECT_EQ(tw::toDigits<tw::DecimalRadix>(x.rec(), radix), twtest::mpzToDigits(v.v, radix))
                    << limbs << " limbs, kind " << kind << ", radix " << radix;
        }
    }
    gmp_randclear(state);
}

}  // namespace
