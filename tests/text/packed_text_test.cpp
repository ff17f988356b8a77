// The packed text form of binary numbers: radix 2^8 and 2^16 characters,
// most significant first, against GMP's export.
#include <gtest/gtest.h>

#include <string>

#include "text/text_support.h"

namespace {

using namespace twtest;

class PackedText : public ErrorStateGuard {};
using Binary = Number<BinaryText>;

// The digits of |v| in radix 2^(8 * size), most significant first.
template <class Unit>
std::basic_string<Unit> packedDigits(mpz_srcptr v) {
    std::basic_string<Unit> out((mpz_sizeinbase(v, 2) + 8 * sizeof(Unit) - 1) / (8 * sizeof(Unit)), Unit(0));
    std::size_t count = 0;
    mpz_export(out.data(), &count, 1, sizeof(Unit), 0, 0, v);
    out.resize(count);
    return out;
}

TEST_F(PackedText, Examples) {
    Binary x(65);
    EXPECT_STREQ(HX_getTextA(x), "A");
    HX_set_u32(x, 16706);
    EXPECT_STREQ(HX_getTextA(x), "AB");
    HX_set_u32(x, 65536);
    const tw_wchar* w = HX_getTextW(x);
    ASSERT_NE(w, nullptr);
    EXPECT_EQ(w[0], 1u);
    EXPECT_EQ(w[1], 0u);
    EXPECT_EQ(w[2], 0u);
    HX_set_s32(x, -16706);
    EXPECT_STREQ(HX_getTextA(x), "AB");
    HX_set_u32(x, 0);
    EXPECT_EQ(HX_getTextA(x), nullptr);
    EXPECT_EQ(HX_getTextW(x), nullptr);
    EXPECT_EQ(TW_getLastError(), 0);
}

TEST_F(PackedText, RandomValuesAgainstGmp) {
    LimbGenerator gen(31);
    Binary x, back;
    for (const std::size_t limbs : {1, 2, 3, 4, 5, 7, 8, 9, 16, 33, 100, 1000}) {
        for (int round = 0; round < 8; ++round) {
            const Mpz v = randomSigned<tw::BinaryRadix>(gen, limbs);
            if (mpz_sgn(v) == 0) continue;
            x.set(v);
            const std::string narrow = packedDigits<char>(v);
            const std::u16string wide = packedDigits<char16_t>(v);
            const char* a = HX_getTextA(x);
            const tw_wchar* w = HX_getTextW(x);
            ASSERT_NE(a, nullptr);
            ASSERT_NE(w, nullptr);
            ASSERT_EQ(std::string(a, narrow.size() + 1), narrow + '\0');
            ASSERT_TRUE(std::u16string(reinterpret_cast<const char16_t*>(w), wide.size() + 1) == wide + u'\0');
            // Back up to the first zero character; the sign is always positive.
            Mpz expected;
            const std::size_t upper = narrow.find('\0');
            const std::string head = narrow.substr(0, upper);
            mpz_import(expected, head.size(), 1, 1, 0, 0, head.data());
            ASSERT_EQ(HX_setTextA(back, a), back.h());
            ASSERT_EQ(mpz_cmp(back.value(), expected), 0);
            ASSERT_TRUE(recordIsNormal(back.object()));
            const std::u16string wideHead = wide.substr(0, wide.find(u'\0'));
            mpz_import(expected, wideHead.size(), 1, 2, 0, 0, wideHead.data());
            ASSERT_EQ(HX_setTextW(back, w), back.h());
            ASSERT_EQ(mpz_cmp(back.value(), expected), 0);
            ASSERT_TRUE(recordIsNormal(back.object()));
        }
    }
}

TEST_F(PackedText, SettingStopsAtTheFirstZeroAndIsNeverNegative) {
    Binary x(-1);
    const char bytes[] = "\x01\x02\x00\x03";
    EXPECT_EQ(HX_setTextA(x, bytes), x.h());
    EXPECT_EQ(HX_get_s32(x), 0x0102);
    // 2^16 + 1 has an inner zero byte: only its upper part comes back.
    HX_set_s32(x, -(65536 + 1));
    HX_setTextA(x, HX_getTextA(x));
    EXPECT_EQ(HX_get_s32(x), 1);
    HX_set_s64(x, -0x123456789ALL);
    HX_setTextW(x, HX_getTextW(x));
    EXPECT_EQ(HX_get_s64(x), 0x123456789ALL);
    const std::string high = "\xFF\xFE\x80";
    HX_setTextA(x, high.c_str());
    EXPECT_EQ(HX_get_s32(x), 0xFFFE80);
    HX_setTextA(x, "");
    EXPECT_EQ(HX_getSign(x), 0);
    HX_set_s32(x, 5);
    EXPECT_EQ(HX_setTextW(x, nullptr), x.h());
    EXPECT_EQ(HX_getSign(x), 0);
    EXPECT_EQ(TW_getLastError(), 0);
}

TEST_F(PackedText, RaisedTerminateFlagAndUnknownHandles) {
    Binary x(65);
    TW_setTerminate(1);
    EXPECT_EQ(HX_getTextA(x), nullptr);
    EXPECT_EQ(HX_getTextW(x), nullptr);
    EXPECT_EQ(HX_setTextA(x, "B"), x.h());
    EXPECT_EQ(HX_isZero(x), 1u);
    TW_setTerminate(0);
    EXPECT_EQ(HX_getTextA(nullptr), nullptr);
    EXPECT_EQ(TW_getLastError(), -4);
    TW_setTerminate(0);
    EXPECT_EQ(HX_setTextW(nullptr, nullptr), nullptr);
    EXPECT_EQ(TW_getLastError(), -4);
}

}  // namespace
