// Text output of both families against a formatter built on GMP's digits:
// every radix, every flag, both widths, values from one limb to a million digits.
#include <gtest/gtest.h>

#include "text/text_support.h"

namespace {

using namespace twtest;

template <class F>
class TextOutput : public ErrorStateGuard {};
TYPED_TEST_SUITE(TextOutput, BothTextFamilies);

constexpr std::uint8_t kAllFlags = TEXT_GROUP | TEXT_SPACE_SEPARATOR | TEXT_PLUS_SIGN | TEXT_SIGN_SPACE | TEXT_LOWER_CASE;

// getStr, getHexStr and the radix-10 and radix-16 getStrRadix calls for v
// with the given flags.
template <class F>
void checkNaturalTexts(Number<F>& x, mpz_srcptr v, std::uint8_t flags) {
    x.set(v);
    const bool binary = F::Radix::isBinary;
    const std::string decimal = expectedDecimalText(v, flags);
    EXPECT_EQ(strOf<F>(x, flags), binary ? expectedHexText(v, flags, true) : decimal);
    EXPECT_EQ(hexStrOf<F>(x, flags), expectedHexText(v, flags, !binary));
    std::uint32_t count = 0, expectedCount = 0;
    EXPECT_EQ(radixStrOf<F>(x, 10, flags, 0, &count), expectedRadixText(v, 10, flags, 0, &expectedCount));
    EXPECT_EQ(count, expectedCount);
    EXPECT_EQ(radixStrOf<F>(x, 16, flags, 4, &count), expectedRadixText(v, 16, flags, 4, &expectedCount));
    EXPECT_EQ(count, expectedCount);
}

TYPED_TEST(TextOutput, NaturalAndHexadecimalTextWithEveryFlag) {
    using F = TypeParam;
    using R = typename F::Radix;
    LimbGenerator gen(11);
    Number<F> x;
    for (const std::size_t limbs : {1, 2, 3, 4, 5, 7, 8, 13, 40, 200}) {
        for (int round = 0; round < 4; ++round) {
            const Mpz v = randomSigned<R>(gen, limbs);
            for (unsigned flags = 0; flags <= kAllFlags; ++flags) checkNaturalTexts(x, v, std::uint8_t(flags));
            checkNaturalTexts(x, v, 0xE0);  // unknown bits are ignored
        }
    }
}

TYPED_TEST(TextOutput, EveryRadixWithEveryFlag) {
    using F = TypeParam;
    using R = typename F::Radix;
    LimbGenerator gen(12);
    std::vector<std::uint32_t> radices = {0, 63, 64, 100, 1000, 65535, 65536, 1000000000, 2147483648u, 4294967295u};
    for (std::uint32_t radix = 2; radix <= 62; ++radix) radices.push_back(radix);
    const std::uint32_t groupLengths[] = {0, 1, 2, 3, 4, 5, 7, 100};
    Number<F> x;
    for (const std::size_t limbs : {1, 2, 3, 6}) {
        const Mpz v = randomSigned<R>(gen, limbs);
        x.set(v);
        for (const std::uint32_t radix : radices) {
            for (unsigned flags = 0; flags <= kAllFlags; ++flags) {
                const std::uint32_t groupLength = groupLengths[(flags + radix + limbs) % 8];
                std::uint32_t count = 0, expectedCount = 0;
                const std::string expected = expectedRadixText(v, radix, std::uint8_t(flags), groupLength, &expectedCount);
                ASSERT_EQ(radixStrOf<F>(x, radix, std::uint8_t(flags), groupLength, &count), expected)
                    << "radix " << radix << " flags " << flags << " group " << groupLength;
                ASSERT_EQ(count, expectedCount);
                // Every alphabetic text reads back through GMP.
                if (radix >= 2 && radix <= 62 && !(flags & TEXT_GROUP) && radix != 16 && !(flags & TEXT_SIGN_SPACE)) {
                    Mpz back;
                    ASSERT_EQ(mpz_set_str(back, expected.c_str() + ((flags & TEXT_PLUS_SIGN) && mpz_sgn(v) > 0), int(radix)), 0);
                    ASSERT_EQ(mpz_cmp(back, v), 0);
                }
            }
        }
    }
}

TYPED_TEST(TextOutput, LowLimbsOfZeroAndLimbBoundaries) {
    using F = TypeParam;
    using R = typename F::Radix;
    Number<F> x;
    // 10^k - 1, 10^k, 16^k - 1, 16^k and R^k around every limb boundary, with zero low limbs.
    for (unsigned k = 1; k <= 60; ++k) {
        Mpz values[6];
        mpz_ui_pow_ui(values[0], 10, k);
        mpz_sub_ui(values[1], values[0], 1);
        mpz_ui_pow_ui(values[2], 16, k);
        mpz_sub_ui(values[3], values[2], 1);
        mpz_ui_pow_ui(values[4], R::base, k / 6 + 1);
        mpz_neg(values[5], values[4]);
        for (const Mpz& v : values)
            for (const std::uint8_t flags : {0, TEXT_GROUP, TEXT_GROUP | TEXT_PLUS_SIGN | TEXT_SIGN_SPACE})
                checkNaturalTexts(x, v, flags);
    }
}

// Long values up to a million digits: the direct writers (decimal for HI_,
// hexadecimal for HX_) and the ones that convert first.
TYPED_TEST(TextOutput, LongValuesAgainstGmp) {
    using F = TypeParam;
    using R = typename F::Radix;
    LimbGenerator gen(13);
    Number<F> x;
    const std::size_t direct = R::isBinary ? 118000 : 111112;  // about 10^6 decimal digits
    for (const std::size_t limbs : {std::size_t(1000), direct}) {
        Limbs magnitude = gen.limbs<R>(limbs);
        std::fill(magnitude.begin(), magnitude.begin() + 37, 0);  // zero low limbs
        const Mpz v = limbsValue<R>(magnitude);
        Mpz negative;
        mpz_neg(negative, v);
        setLimbs(x.object(), magnitude, -1);
        for (const std::uint8_t flags : {0, TEXT_GROUP | TEXT_SIGN_SPACE | TEXT_LOWER_CASE}) {
            const auto text = strOf<F>(x, flags);
            ASSERT_TRUE(text.has_value());
            const std::string expected =
                R::isBinary ? expectedHexText(negative, flags, true) : expectedDecimalText(negative, flags);
            ASSERT_TRUE(*text == expected) << "natural text of " << limbs << " limbs, flags " << int(flags);
        }
    }
    // The other radix passes through a conversion.
    const bool binary = R::isBinary;
    for (const std::size_t limbs : {std::size_t(1200), direct}) {
        const Limbs magnitude = gen.limbs<R>(limbs);
        const Mpz v = limbsValue<R>(magnitude);
        setLimbs(x.object(), magnitude, 1);
        EXPECT_TRUE(hexStrOf<F>(x, 0) == expectedHexText(v, 0, !binary)) << limbs << " limbs";
        std::uint32_t count = 0, expectedCount = 0;
        EXPECT_TRUE(radixStrOf<F>(x, 10, TEXT_GROUP, 0, &count) ==
                    expectedRadixText(v, 10, TEXT_GROUP, 0, &expectedCount));
        EXPECT_EQ(count, expectedCount);
        if (limbs == direct) continue;  // the general writer on the shorter value only: fast under sanitizers
        EXPECT_TRUE(radixStrOf<F>(x, 36, TEXT_LOWER_CASE, 0, &count) ==
                    expectedRadixText(v, 36, TEXT_LOWER_CASE, 0, &expectedCount));
        EXPECT_EQ(count, expectedCount);
    }
}

TYPED_TEST(TextOutput, ZeroIsPlainZeroWhateverTheFlags) {
    using F = TypeParam;
    Number<F> x(0);
    for (unsigned flags = 0; flags <= 0xFF; ++flags) {
        EXPECT_EQ(strOf<F>(x, std::uint8_t(flags)), "0");
        EXPECT_EQ(hexStrOf<F>(x, std::uint8_t(flags)), "0");
        for (const std::uint32_t radix : {0u, 2u, 10u, 16u, 36u, 62u, 1000u}) {
            std::uint32_t count = 0;
            EXPECT_EQ(radixStrOf<F>(x, radix, std::uint8_t(flags), 2, &count), "0");
            EXPECT_EQ(count, 1u);
        }
    }
}

TYPED_TEST(TextOutput, DecimalExamples) {
    using F = TypeParam;
    Number<F> x(-1234567);
    std::uint32_t count = 0;
    EXPECT_EQ(radixStrOf<F>(x, 10, TEXT_GROUP | TEXT_SIGN_SPACE, 0, &count), "- 1,234,567");
    EXPECT_EQ(radixStrOf<F>(x, 10, TEXT_GROUP | TEXT_SPACE_SEPARATOR, 0, &count), "-1 234 567");
    EXPECT_EQ(count, 7u);
    // Radix 10 grouped by four goes through the general writer.
    EXPECT_EQ(radixStrOf<F>(x, 10, TEXT_GROUP, 4, &count), "-123,4567");
    EXPECT_EQ(radixStrOf<F>(x, 10, TEXT_PLUS_SIGN, 4, &count), "-1234567");
    F::set_s32(x, 1234567);
    EXPECT_EQ(radixStrOf<F>(x, 10, TEXT_PLUS_SIGN | TEXT_SIGN_SPACE, 0, &count), "+ 1234567");
    // Exactly 3, 6 and 9 digits: no separator in front.
    for (const auto& [value, text] : {std::pair{123, "123"}, {123456, "123,456"}, {123456789, "123,456,789"}}) {
        F::set_s32(x, value);
        EXPECT_EQ(radixStrOf<F>(x, 10, TEXT_GROUP, 3, &count), text);
        F::set_s32(x, -value);
        EXPECT_EQ(radixStrOf<F>(x, 10, TEXT_GROUP, 3, &count), std::string("-") + text);
    }
    if constexpr (!F::Radix::isBinary) {
        F::set_s32(x, -123456);
        EXPECT_EQ(strOf<F>(x, TEXT_GROUP), "-123,456");
    }
}

TYPED_TEST(TextOutput, HexadecimalExamples) {
    using F = TypeParam;
    const bool binary = F::Radix::isBinary;
    Number<F> x(31);
    EXPECT_EQ(hexStrOf<F>(x, 0), binary ? "1F" : "0x1F");
    EXPECT_EQ(hexStrOf<F>(x, TEXT_LOWER_CASE), binary ? "1f" : "0x1f");
    std::uint32_t count = 0;
    EXPECT_EQ(radixStrOf<F>(x, 16, TEXT_PLUS_SIGN | TEXT_SIGN_SPACE, 0, &count), "+ 0x1F");
    EXPECT_EQ(count, 2u);
    F::set_s32(x, -31);
    EXPECT_EQ(hexStrOf<F>(x, 0), binary ? "-1F" : "-0x1F");
    F::set_s32(x, 0x1ABCD);
    EXPECT_EQ(hexStrOf<F>(x, TEXT_GROUP), binary ? "1,ABCD" : "0x 1,ABCD");
    EXPECT_EQ(radixStrOf<F>(x, 16, TEXT_GROUP, 0, &count), "0x 1,ABCD");
    // Group length 2 goes through the general writer.
    F::set_s64(x, 0x1F2E3D);
    EXPECT_EQ(radixStrOf<F>(x, 16, TEXT_GROUP, 2, &count), "0x 1F,2E,3D");
    F::set_s64(x, 0xF2E3D);
    EXPECT_EQ(radixStrOf<F>(x, 16, TEXT_GROUP | TEXT_SPACE_SEPARATOR, 2, &count), "0x F 2E 3D");
    if constexpr (binary) {
        F::set_s32(x, 31);
        EXPECT_EQ(strOf<F>(x, 0), "0x1F");
        F::set_s32(x, -31);
        EXPECT_EQ(strOf<F>(x, 0), "-0x1F");
    }
}

TYPED_TEST(TextOutput, AlphabetsAndBracketedDigits) {
    using F = TypeParam;
    Number<F> x;
    std::uint32_t count = 0;
    // 35 * 36^2 + 10 * 36 + 0: the letters of radix 36 in either case.
    F::set_s32(x, 35 * 36 * 36 + 10 * 36);
    EXPECT_EQ(radixStrOf<F>(x, 36, 0, 0, &count), "ZA0");
    EXPECT_EQ(radixStrOf<F>(x, 36, TEXT_LOWER_CASE, 0, &count), "za0");
    EXPECT_EQ(count, 3u);
    // Radix 62 ignores the case flag: 10 is A, 35 Z, 36 a, 61 z.
    F::set_s32(x, ((10 * 62 + 35) * 62 + 36) * 62 + 61);
    EXPECT_EQ(radixStrOf<F>(x, 62, 0, 0, &count), "AZaz");
    EXPECT_EQ(radixStrOf<F>(x, 62, TEXT_LOWER_CASE, 0, &count), "AZaz");
    F::set_s32(x, 79900);
    EXPECT_EQ(radixStrOf<F>(x, 100, 0, 0, &count), "[07][99][00]");
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(radixStrOf<F>(x, 100, TEXT_GROUP | TEXT_SPACE_SEPARATOR, 7, &count), "[07] [99] [00]");
    EXPECT_EQ(radixStrOf<F>(x, 1000, 0, 0, &count), "[079][900]");
    F::set_s32(x, -79900);
    EXPECT_EQ(radixStrOf<F>(x, 1000, TEXT_GROUP | TEXT_SIGN_SPACE, 0, &count), "- [079],[900]");
    F::set_s64(x, (std::int64_t(1) << 32) + 5);
    EXPECT_EQ(radixStrOf<F>(x, 0, TEXT_PLUS_SIGN, 0, &count), "+[0000000001][0000000005]");
    EXPECT_EQ(count, 2u);
}

}  // namespace
