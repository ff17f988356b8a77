// Text input of both families: the never-refusing reading rules, round trips
// of every output form, long texts against GMP and hostile texts.
#include <gtest/gtest.h>

#include <string>

#include "text/text_support.h"

namespace {

using namespace twtest;

template <class F>
class TextInput : public ErrorStateGuard {};
TYPED_TEST_SUITE(TextInput, BothTextFamilies);

// Reads `text` with set_strA and set_strW (or the hexadecimal setters) and
// checks that both give `expected` in normal form, with no error recorded.
template <class F>
::testing::AssertionResult readsAsValue(const std::string& text, mpz_srcptr expected, bool hexOnly = false) {
    Number<F> a, w;
    const std::u16string wide = widen(text);
    const auto* units = reinterpret_cast<const tw_wchar*>(wide.c_str());
    if ((hexOnly ? F::setHexStrA(a, text.c_str()) : F::set_strA(a, text.c_str())) != a.h())
        return ::testing::AssertionFailure() << "A call did not return its handle";
    if ((hexOnly ? F::setHexStrW(w, units) : F::set_strW(w, units)) != w.h())
        return ::testing::AssertionFailure() << "W call did not return its handle";
    if (TW_getLastError() != 0) return ::testing::AssertionFailure() << "error " << TW_getLastError();
    for (const Number<F>* x : {&a, &w}) {
        const auto normal = recordIsNormal(x->object());
        if (!normal) return normal;
        if (mpz_cmp(x->value(), expected) != 0)
            return ::testing::AssertionFailure() << "'" << text.substr(0, 80) << "' read as " << x->value().str();
    }
    return ::testing::AssertionSuccess();
}

template <class F>
::testing::AssertionResult readsAs(const std::string& text, long expected, bool hexOnly = false) {
    Mpz e;
    mpz_set_si(e, expected);
    return readsAsValue<F>(text, e, hexOnly);
}

TYPED_TEST(TextInput, ReadingRules) {
    using F = TypeParam;
    EXPECT_TRUE(readsAs<F>("  -0x1f", -31));
    EXPECT_TRUE(readsAs<F>("\t\r\n -0X1F", -31));
    EXPECT_TRUE(readsAs<F>("+5", 5));
    EXPECT_TRUE(readsAs<F>("- 5", -5));
    EXPECT_TRUE(readsAs<F>("--5", -5));  // the second "-" is just skipped
    EXPECT_TRUE(readsAs<F>("x-5", 5));  // the sign must come first
    EXPECT_TRUE(readsAs<F>("abc", 0));
    EXPECT_TRUE(readsAs<F>("0x", 0));
    EXPECT_TRUE(readsAs<F>("", 0));
    EXPECT_TRUE(readsAs<F>("   ", 0));
    EXPECT_TRUE(readsAs<F>("-0", 0));
    EXPECT_TRUE(readsAs<F>("-000", 0));
    EXPECT_TRUE(readsAs<F>("1,234,567", 1234567));
    EXPECT_TRUE(readsAs<F>("1 234 567", 1234567));
    EXPECT_TRUE(readsAs<F>("12abc34", 1234));
    EXPECT_TRUE(readsAs<F>("000123", 123));
    // "x" switches to hexadecimal only right after a skipped "0", and only once.
    EXPECT_TRUE(readsAs<F>("00x1f", 31));
    EXPECT_TRUE(readsAs<F>("a0X1f", 31));
    EXPECT_TRUE(readsAs<F>("0 x1f", 1));
    EXPECT_TRUE(readsAs<F>("x1f", 1));
    EXPECT_TRUE(readsAs<F>("0x0x1f", 31));
    EXPECT_TRUE(readsAs<F>("0x1f0x2", 0x1F02));
    EXPECT_TRUE(readsAs<F>("12 0x34", 12034));
    EXPECT_TRUE(readsAs<F>("0x 1,ABCD", 0x1ABCD));
    EXPECT_TRUE(readsAs<F>("- 0x 1,abcd", -0x1ABCD));
    // The hexadecimal setters read every hexadecimal digit.
    EXPECT_TRUE(readsAs<F>("0x1F", 31, true));
    EXPECT_TRUE(readsAs<F>("1F", 31, true));
    EXPECT_TRUE(readsAs<F>(" -1f", -31, true));
    EXPECT_TRUE(readsAs<F>("-  1 F", -31, true));
    EXPECT_TRUE(readsAs<F>("1,ABCD", 0x1ABCD, true));
    EXPECT_TRUE(readsAs<F>("xyz", 0, true));
    EXPECT_TRUE(readsAs<F>("0x", 0, true));
    EXPECT_TRUE(readsAs<F>("-0x0", 0, true));
    EXPECT_TRUE(readsAs<F>("10", 16, true));
}

TYPED_TEST(TextInput, NullTextIsZero) {
    using F = TypeParam;
    Number<F> x(-77);
    EXPECT_EQ(F::set_strA(x, nullptr), x.h());
    EXPECT_EQ(F::getSign(x), 0);
    F::set_s32(x, 5);
    EXPECT_EQ(F::set_strW(x, nullptr), x.h());
    EXPECT_EQ(F::isZero(x), 1u);
    F::set_s32(x, 5);
    EXPECT_EQ(F::setHexStrA(x, nullptr), x.h());
    EXPECT_TRUE(recordIsNormal(x.object()));
    EXPECT_EQ(F::getSign(x), 0);
}

// A number set from its own text reads the text before the change frees it.
TYPED_TEST(TextInput, NumberSetFromItsOwnText) {
    using F = TypeParam;
    using R = typename F::Radix;
    LimbGenerator gen(23);
    const Mpz v = randomSigned<R>(gen, 40);
    Number<F> x;
    x.set(v);
    F::set_strA(x, F::getStrA(x, TEXT_GROUP, nullptr));
    EXPECT_EQ(mpz_cmp(x.value(), v), 0);
    F::set_strW(x, F::getStrW(x, TEXT_SIGN_SPACE, nullptr));
    EXPECT_EQ(mpz_cmp(x.value(), v), 0);
    F::setHexStrA(x, F::getHexStrA(x, 0, nullptr));
    EXPECT_EQ(mpz_cmp(x.value(), v), 0);
    F::setHexStrW(x, F::getHexStrW(x, TEXT_LOWER_CASE, nullptr));
    EXPECT_EQ(mpz_cmp(x.value(), v), 0);
    EXPECT_TRUE(recordIsNormal(x.object()));
}

// Every text the library writes reads back as its value (set_str for
// decimal and "0x" text, setHexStr for bare hexadecimal digits).
TYPED_TEST(TextInput, OutputReadsBack) {
    using F = TypeParam;
    using R = typename F::Radix;
    LimbGenerator gen(21);
    for (const std::size_t limbs : {1, 2, 3, 4, 9, 10, 11, 50, 300}) {
        for (int round = 0; round < 6; ++round) {
            const Mpz v = randomSigned<R>(gen, limbs);
            for (const std::uint8_t flags : {0, TEXT_GROUP, TEXT_GROUP | TEXT_SPACE_SEPARATOR | TEXT_SIGN_SPACE,
                                             TEXT_PLUS_SIGN | TEXT_LOWER_CASE, TEXT_GROUP | TEXT_PLUS_SIGN}) {
                ASSERT_TRUE(readsAsValue<F>(expectedDecimalText(v, flags), v));
                ASSERT_TRUE(readsAsValue<F>(expectedHexText(v, flags, true), v));
                ASSERT_TRUE(readsAsValue<F>(expectedHexText(v, flags, false), v, true));
            }
        }
    }
}

// Long texts up to a million digits, compared limb by limb: the direct
// readers (decimal for HI_, hexadecimal for HX_) and the converting ones.
TYPED_TEST(TextInput, LongTextsAgainstGmp) {
    using F = TypeParam;
    using R = typename F::Radix;
    LimbGenerator gen(22);
    const std::size_t direct = R::isBinary ? 118000 : 111112;
    Number<F> x;
    for (const std::size_t limbs : {std::size_t(700), direct}) {
        Limbs magnitude = gen.limbs<R>(limbs);
        const Mpz v = limbsValue<R>(magnitude);
        const std::string digits = v.str(R::isBinary ? 16 : 10);
        const std::string text = (R::isBinary ? "-0x" : "-") + digits;
        F::set_strA(x, text.c_str());
        ASSERT_TRUE(holdsLimbs(x.object(), magnitude, -1)) << limbs << " limbs";
        F::set_strW(x, reinterpret_cast<const tw_wchar*>(widen(text).c_str()));
        ASSERT_TRUE(holdsLimbs(x.object(), magnitude, -1)) << limbs << " limbs, W";
        if (limbs == direct) continue;
        // Separators everywhere: the slow path of the reader.
        std::string spaced;
        for (std::size_t i = 0; i < digits.size(); ++i) {
            spaced += digits[i];
            if (i % 5 == 2) spaced += i % 2 ? ',' : ' ';
        }
        F::set_strA(x, ((R::isBinary ? "0x" : "") + spaced).c_str());
        ASSERT_TRUE(holdsLimbs(x.object(), magnitude, 1));
    }
    // The other base passes through a conversion.
    for (const std::size_t limbs : {std::size_t(1200), direct}) {
        const Limbs magnitude = gen.limbs<R>(limbs);
        const Mpz v = limbsValue<R>(magnitude);
        const std::string text = R::isBinary ? v.str(10) : "0x" + v.str(16);
        F::set_strA(x, text.c_str());
        ASSERT_TRUE(holdsLimbs(x.object(), magnitude, 1)) << limbs << " limbs";
        F::setHexStrW(x, reinterpret_cast<const tw_wchar*>(widen(v.str(16)).c_str()));
        ASSERT_TRUE(holdsLimbs(x.object(), magnitude, 1)) << limbs << " limbs, hexadecimal";
    }
}

TYPED_TEST(TextInput, HostileTexts) {
    using F = TypeParam;
    EXPECT_TRUE(readsAs<F>(",,, ,\t, ,", 0));
    EXPECT_TRUE(readsAs<F>(std::string(100000, '0'), 0));
    EXPECT_TRUE(readsAs<F>("-" + std::string(100000, '0') + "7", -7));
    // Ten million characters of "-0x": one sign, one switch, no digit.
    std::string dashes;
    dashes.reserve(10000002);
    while (dashes.size() < 10000000) dashes += "-0x";
    EXPECT_TRUE(readsAs<F>(dashes, 0));
    dashes.resize(300000);
    EXPECT_TRUE(readsAs<F>(dashes, 0, true));
    EXPECT_TRUE(readsAs<F>(dashes + "1", -1));
    // An embedded zero ends the text.
    const char embedded[] = "12\0" "34";
    Number<F> x;
    F::set_strA(x, embedded);
    EXPECT_EQ(F::get_s32(x), 12);
    // Bytes above 127 are not digits.
    EXPECT_TRUE(readsAs<F>("\xB9\xB2" "1\xFF" "2\x80", 12));
    EXPECT_EQ(TW_getLastError(), 0);
}

// 16-bit code units whose low byte looks like a digit, digits of other
// scripts and surrogates are all skipped.
TYPED_TEST(TextInput, WideTextSkipsEveryOtherCodeUnit) {
    using F = TypeParam;
    const std::u16string text = {u' ', u'-', 0x2212, 0x0131, u'1', 0x0661, 0xFF12, u'2', 0xD83D, 0xDE00,
                                 0x0130, u'3', 0x0178, 0x0041 + 0x100, u'4'};
    Number<F> x;
    F::set_strW(x, reinterpret_cast<const tw_wchar*>(text.c_str()));
    EXPECT_EQ(F::get_s32(x), -1234);
    const std::u16string hex = {u'0', 0x0178, u'1', 0x0146, u'f'};  // 0x0178: not an "x"; 0x0146: not an "F"
    F::set_strW(x, reinterpret_cast<const tw_wchar*>(hex.c_str()));
    EXPECT_EQ(F::get_s32(x), 1);
    F::setHexStrW(x, reinterpret_cast<const tw_wchar*>(hex.c_str()));
    EXPECT_EQ(F::get_s32(x), 0x1F);
    EXPECT_EQ(TW_getLastError(), 0);
}

}  // namespace
