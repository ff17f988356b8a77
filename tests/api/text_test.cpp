// Text in and out of both families: every radix and flag against a formatter
// built on GMP's digits, both widths compared code unit by code unit, values
// from one limb to hundreds of thousands of digits; the reading rules that
// never refuse a text; the buffers' lifetime; and the failure answers.
#include "support/harness.h"

#include <optional>

#include "text/text_buffer.h"

namespace twtest {
namespace {

template <class F>
using Text = Family<F>;
TYPED_TEST_SUITE(Text, BothFamilies);

constexpr std::uint8_t kAllFlags = TEXT_GROUP | TEXT_SPACE_SEPARATOR | TEXT_PLUS_SIGN | TEXT_SIGN_SPACE | TEXT_LOWER_CASE;

std::u16string widen(const std::string& s) { return std::u16string(s.begin(), s.end()); }
const tw_wchar* wide(const std::u16string& s) { return reinterpret_cast<const tw_wchar*>(s.c_str()); }

// An output call in both widths (A first: its text must survive the W call).
// The text, or nullopt for null; widths that differ in any unit fail.
template <class A, class W>
std::optional<std::string> bothWidths(A callA, W callW) {
    std::uint32_t na = 12345, nw = 54321;
    const char* a = callA(&na);
    const tw_wchar* w = callW(&nw);
    if (!a) {
        EXPECT_TRUE(!w && na == 0 && nw == 0);
        return std::nullopt;
    }
    EXPECT_TRUE(w != nullptr);
    if (!w) return std::nullopt;
    const std::string text(a);
    EXPECT_TRUE(text.size() == na && nw == na && w[nw] == 0 &&
                std::u16string(reinterpret_cast<const char16_t*>(w), nw) == widen(text))
        << "widths differ for " << text;
    return text;
}
template <class F>
std::optional<std::string> strOf(typename F::Handle h, std::uint8_t flags) {
    return bothWidths([&](std::uint32_t* n) { return F::getStrA(h, flags, n); },
                      [&](std::uint32_t* n) { return F::getStrW(h, flags, n); });
}
template <class F>
std::optional<std::string> hexOf(typename F::Handle h, std::uint8_t flags) {
    return bothWidths([&](std::uint32_t* n) { return F::getHexStrA(h, flags, n); },
                      [&](std::uint32_t* n) { return F::getHexStrW(h, flags, n); });
}
template <class F>
std::optional<std::string> radixOf(typename F::Handle h, std::uint32_t radix, std::uint8_t flags, std::uint32_t group,
                                   std::uint32_t* count) {
    std::uint32_t countW = 77;
    auto text = bothWidths([&](std::uint32_t* n) { return F::getStrRadixA(h, radix, count, flags, group, n); },
                           [&](std::uint32_t* n) { return F::getStrRadixW(h, radix, &countW, flags, group, n); });
    EXPECT_EQ(countW, *count);
    return text;
}

// What getStrRadix writes for v: GMP's digits (upper case up to radix 36
// unless asked), bracketed decimal digits past radix 62, the sign and the
// groups by the flags, "0x" for radix 16.
std::string expected(mpz_srcptr v, std::uint32_t radix, std::uint8_t flags, std::uint32_t group, std::uint32_t* count) {
    if (mpz_sgn(v) == 0) return *count = 1, "0";
    const bool grouped = flags & TEXT_GROUP;
    const char sep = (flags & TEXT_SPACE_SEPARATOR) ? ' ' : ',';
    std::string sign = mpz_sgn(v) < 0 ? "-" : (flags & TEXT_PLUS_SIGN) ? "+" : "";
    if (!sign.empty() && (flags & TEXT_SIGN_SPACE)) sign += ' ';
    Mpz a;
    mpz_abs(a, v);
    std::vector<std::string> digits;
    if (radix == 0 || radix > 62) {
        const std::size_t width = std::to_string(radix - 1u).size();
        for (; mpz_sgn(a); mpz_fdiv_q_2exp(a, a, radix ? 0 : 32)) {
            const std::uint32_t d = radix ? std::uint32_t(mpz_fdiv_q_ui(a, a, radix)) : std::uint32_t(mpz_get_ui(a));
            const std::string s = std::to_string(d);
            digits.insert(digits.begin(), '[' + std::string(width - s.size(), '0') + s + ']');
        }
        if (grouped) group = 1;
    } else {
        const std::string s = a.str(radix <= 36 && !(flags & TEXT_LOWER_CASE) ? -int(radix) : int(radix));
        for (char c : s) digits.push_back(std::string(1, c));
        if (grouped && ((radix == 10 && (group == 0 || group == 3)) || (radix == 16 && (group == 0 || group == 4))))
            group = radix == 10 ? 3 : 4;
    }
    *count = std::uint32_t(digits.size());
    std::string body;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        body += digits[i];
        const std::size_t fromRight = digits.size() - i - 1;
        if (grouped && group && fromRight && fromRight % group == 0) body += sep;
    }
    return sign + (radix == 16 ? (grouped ? "0x " : "0x") : "") + body;
}
std::string expectedHex(mpz_srcptr v, std::uint8_t flags, bool prefix) {
    std::uint32_t n;
    std::string t = expected(v, 16, flags, 4, &n);
    if (!prefix && mpz_sgn(v)) t.erase(t.find("0x"), (flags & TEXT_GROUP) ? 3 : 2);
    return t;
}

// Every radix, every flag, group lengths, on values around limb boundaries.
TYPED_TEST(Text, EveryRadixAndFlagAgainstGmp) {
    using F = TypeParam;
    using R = typename F::Radix;
    Gen gen(50);
    std::vector<std::uint32_t> radices = {0, 63, 64, 100, 1000, 65535, 65536, 1000000000, 2147483648u, 4294967295u};
    for (std::uint32_t r = 2; r <= 62; ++r) radices.push_back(r);
    const std::uint32_t groups[] = {0, 1, 2, 3, 4, 5, 7, 100};
    Number<F> x;
    std::vector<Mpz> values;
    for (std::size_t limbs : {1, 2, 3, 6}) values.push_back(gen.signedValue<R>(limbs));
    for (unsigned k : {1u, 9u, 10u, 28u, 29u, 60u}) {
        Mpz p;
        mpz_ui_pow_ui(p, k % 2 ? 10 : 16, k);
        values.push_back(p);
        mpz_sub_ui(p, p, 1);
        mpz_neg(p, p);
        values.push_back(p);
    }
    values.push_back(radixPower<R>(3));
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Mpz& v = values[i];
        x.set(v);
        for (unsigned flags = 0; flags <= kAllFlags; ++flags) {
            const bool binary = R::isBinary;
            std::uint32_t count = 0, want = 0;
            ASSERT_EQ(strOf<F>(x, flags), binary ? expectedHex(v, flags, true) : expected(v, 10, flags, 3, &want));
            ASSERT_EQ(hexOf<F>(x, flags), expectedHex(v, flags, !binary));
            for (std::uint32_t radix : radices) {
                if (i > 4 && radix != 10 && radix != 16 && radix != 7) continue;
                const std::uint32_t group = groups[(flags + radix + i) % 8];
                ASSERT_EQ(radixOf<F>(x, radix, std::uint8_t(flags), group, &count), expected(v, radix, flags, group, &want))
                    << "radix " << radix << ", flags " << flags << ", group " << group;
                ASSERT_EQ(count, want);
            }
        }
        ASSERT_EQ(strOf<F>(x, 0xE0), strOf<F>(x, 0));  // unknown flag bits are ignored
    }
    F::set_s32(x, 0);
    for (unsigned flags = 0; flags <= 0xFF; ++flags) {
        std::uint32_t count = 0;
        ASSERT_EQ(strOf<F>(x, flags), "0");
        ASSERT_EQ(hexOf<F>(x, flags), "0");
        ASSERT_EQ(radixOf<F>(x, 1000, flags, 2, &count), "0");
        ASSERT_EQ(count, 1u);
    }
}

TYPED_TEST(Text, OutputExamples) {
    using F = TypeParam;
    const bool binary = F::Radix::isBinary;
    Number<F> x(-1234567);
    std::uint32_t n = 0;
    EXPECT_EQ(radixOf<F>(x, 10, TEXT_GROUP | TEXT_SIGN_SPACE, 0, &n), "- 1,234,567");
    EXPECT_EQ(radixOf<F>(x, 10, TEXT_GROUP, 4, &n), "-123,4567");
    F::set_s32(x, 123456);
    EXPECT_EQ(radixOf<F>(x, 10, TEXT_GROUP, 3, &n), "123,456");
    F::set_s32(x, 0x1ABCD);
    EXPECT_EQ(hexOf<F>(x, TEXT_GROUP), binary ? "1,ABCD" : "0x 1,ABCD");
    F::set_s64(x, 0xF2E3D);
    EXPECT_EQ(radixOf<F>(x, 16, TEXT_GROUP | TEXT_SPACE_SEPARATOR, 2, &n), "0x F 2E 3D");
    F::set_s32(x, -31);
    EXPECT_EQ(strOf<F>(x, 0), binary ? "-0x1F" : "-31");
    F::set_s32(x, ((10 * 62 + 35) * 62 + 36) * 62 + 61);
    EXPECT_EQ(radixOf<F>(x, 62, TEXT_LOWER_CASE, 0, &n), "AZaz");  // radix 62 ignores the case flag
    F::set_s32(x, -79900);
    EXPECT_EQ(radixOf<F>(x, 1000, TEXT_GROUP | TEXT_SIGN_SPACE, 0, &n), "- [079],[900]");
    F::set_s64(x, (std::int64_t(1) << 32) + 5);
    EXPECT_EQ(radixOf<F>(x, 0, TEXT_PLUS_SIGN, 0, &n), "+[0000000001][0000000005]");
    EXPECT_EQ(n, 2u);
}

// Long values: the direct writers (decimal for HI_, hexadecimal for HX_) and
// those that convert first, with zero low limbs.
TYPED_TEST(Text, LongValuesBothWays) {
    using F = TypeParam;
    using R = typename F::Radix;
    Gen gen(51);
    Number<F> x, y;
    for (std::size_t limbs : {1000, 1200, 40000}) {
        const Mpz v = value<R>(gen.limbs<R>(limbs, Shape::LowZeros));
        Mpz neg;
        mpz_neg(neg, v);
        x.set(neg);
        std::uint32_t n = 0, want = 0;
        for (std::uint8_t flags : {0, TEXT_GROUP | TEXT_SIGN_SPACE | TEXT_LOWER_CASE}) {
            ASSERT_TRUE(strOf<F>(x, flags) == (R::isBinary ? expectedHex(neg, flags, true) : expected(neg, 10, flags, 3, &want)));
            ASSERT_TRUE(hexOf<F>(x, flags) == expectedHex(neg, flags, !R::isBinary));
        }
        ASSERT_TRUE(radixOf<F>(x, 10, TEXT_GROUP, 0, &n) == expected(neg, 10, TEXT_GROUP, 0, &want));
        ASSERT_TRUE(radixOf<F>(x, 36, TEXT_LOWER_CASE, 0, &n) == expected(neg, 36, TEXT_LOWER_CASE, 0, &want));
        ASSERT_EQ(n, want);
        // And back: decimal and "0x" text, bare hexadecimal digits, with separators.
        for (const std::string& text : {neg.str(), "-0x" + v.str(16), *strOf<F>(x, TEXT_GROUP | TEXT_SPACE_SEPARATOR)}) {
            F::set_strA(y, text.c_str());
            ASSERT_TRUE(holds(y, neg)) << limbs << " limbs";
            F::set_strW(y, wide(widen(text)));
            ASSERT_TRUE(holds(y, neg)) << limbs << " limbs, W";
        }
        F::setHexStrW(y, wide(widen(v.str(16))));
        ASSERT_TRUE(holds(y, v));
    }
}

// The reading rules: never refused, every non-digit skipped, one sign first,
// "x" after a skipped "0" switches to hexadecimal once.
TYPED_TEST(Text, ReadingRules) {
    using F = TypeParam;
    auto reads = [](const std::string& text, long want, bool hex = false) {
        Number<F> a(99), w(99);
        const std::u16string u = widen(text);
        EXPECT_EQ(hex ? F::setHexStrA(a, text.c_str()) : F::set_strA(a, text.c_str()), a.h());
        EXPECT_EQ(hex ? F::setHexStrW(w, wide(u)) : F::set_strW(w, wide(u)), w.h());
        return holds(a, want) && holds(w, want) && takeError() == 0;
    };
    const std::pair<const char*, long> rules[] = {
        {"  -0x1f", -31}, {"\t\r\n -0X1F", -31}, {"+5", 5}, {"- 5", -5}, {"--5", -5}, {"x-5", 5}, {"abc", 0},
        {"0x", 0}, {"", 0}, {"-000", 0}, {"1,234,567", 1234567}, {"1 234 567", 1234567}, {"12abc34", 1234},
        {"00x1f", 31}, {"a0X1f", 31}, {"0 x1f", 1}, {"x1f", 1}, {"0x0x1f", 31}, {"0x1f0x2", 0x1F02},
        {"12 0x34", 12034}, {"- 0x 1,abcd", -0x1ABCD}, {"\xB9\xB2" "1\xFF" "2\x80", 12}, {",,, ,\t, ,", 0}};
    for (const auto& [text, want] : rules) EXPECT_TRUE(reads(text, want)) << "'" << text << "'";
    for (const auto& [text, want] : std::initializer_list<std::pair<const char*, long>>{
             {"0x1F", 31}, {"1F", 31}, {"-  1 F", -31}, {"1,ABCD", 0x1ABCD}, {"xyz", 0}, {"-0x0", 0}, {"10", 16}})
        EXPECT_TRUE(reads(text, want, true)) << "hexadecimal '" << text << "'";
    EXPECT_TRUE(reads(std::string(100000, '0'), 0));
    EXPECT_TRUE(reads("-" + std::string(100000, '0') + "7", -7));
    std::string dashes;  // ten million characters of "-0x": one sign, one switch, no digit
    while (dashes.size() < 10000000) dashes += "-0x";
    EXPECT_TRUE(reads(dashes, 0));
    dashes.resize(300000);
    EXPECT_TRUE(reads(dashes + "1", -1));
    Number<F> x(-77);
    const char embedded[] = "12\0" "34";  // an embedded zero ends the text
    F::set_strA(x, embedded);
    EXPECT_EQ(F::get_s32(x), 12);
    // Code units whose low byte looks like a digit, digits of other scripts and surrogates are skipped.
    const std::u16string units = {u' ', u'-', 0x2212, 0x0131, u'1', 0x0661, 0xFF12, u'2', 0xD83D, 0xDE00, 0x0130, u'3', 0x0141, u'4'};
    F::set_strW(x, wide(units));
    EXPECT_EQ(F::get_s32(x), -1234);
    const std::u16string hex = {u'0', 0x0178, u'1', 0x0146, u'f'};
    F::set_strW(x, wide(hex));
    EXPECT_EQ(F::get_s32(x), 1);
    F::setHexStrW(x, wide(hex));
    EXPECT_EQ(F::get_s32(x), 0x1F);
    for (auto set : {F::set_strA, F::setHexStrA}) {
        F::set_s32(x, 5);
        EXPECT_EQ(set(x, nullptr), x.h());  // null text is zero
        EXPECT_TRUE(holds(x, 0L));
    }
    // A number set from its own text reads it before the change frees it.
    const Mpz v = Gen(52).signedValue<typename F::Radix>(40);
    x.set(v);
    F::set_strA(x, F::getStrA(x, TEXT_GROUP, nullptr));
    F::set_strW(x, F::getStrW(x, TEXT_SIGN_SPACE, nullptr));
    F::setHexStrA(x, F::getHexStrA(x, 0, nullptr));
    F::setHexStrW(x, F::getHexStrW(x, TEXT_LOWER_CASE, nullptr));
    EXPECT_TRUE(holds(x, v));
}

// Each width keeps its text until its next call; a change or free drops both.
TYPED_TEST(Text, BufferLifetimes) {
    using F = TypeParam;
    Number<F> x(-123456789);
    const char* a = F::getStrRadixA(x, 7, nullptr, 0, 0, nullptr);  // null out-parameters are fine
    const std::string first(a);
    F::getStrRadixW(x, 2, nullptr, TEXT_GROUP, 1, nullptr);
    F::getStrW(x, TEXT_GROUP, nullptr);
    EXPECT_EQ(std::string(a), first);
    const tw_wchar* w = F::getHexStrW(x, 0, nullptr);
    const std::u16string wideText(reinterpret_cast<const char16_t*>(w));
    F::getStrRadixA(x, 3, nullptr, TEXT_GROUP, 1, nullptr);
    EXPECT_TRUE(std::u16string(reinterpret_cast<const char16_t*>(w)) == wideText);
    EXPECT_EQ(std::string(F::getStrRadixA(x, 7, nullptr, 0, 0, nullptr)), first);
    F::freeStrBuffer(x);
    EXPECT_TRUE(!x.object().rec().textBufferA && !x.object().rec().textBufferW);
    F::getStrA(x, 0, nullptr);
    F::getHexStrW(x, 0, nullptr);
    F::set_strA(x, "17");
    EXPECT_TRUE(!x.object().rec().textBufferA && !x.object().rec().textBufferW);
    EXPECT_EQ(takeError(), 0);
}

TYPED_TEST(Text, FailureAnswers) {
    using F = TypeParam;
    typename F::Handle deleted = F::newNumber();
    F::deleteNumber(deleted);
    std::uint32_t count = 99;
    for (const typename F::Handle h : {typename F::Handle(nullptr), deleted}) {
        EXPECT_EQ(strOf<F>(h, 0), std::nullopt);
        EXPECT_EQ(hexOf<F>(h, 0), std::nullopt);
        EXPECT_EQ(radixOf<F>(h, 7, 0, 0, &count), std::nullopt);
        EXPECT_EQ(count, 0u);
        EXPECT_EQ(takeError(), TW_ERR_HANDLE);
        EXPECT_EQ(F::set_strA(h, "5"), nullptr);
        EXPECT_EQ(F::setHexStrW(h, nullptr), nullptr);
        F::freeStrBuffer(h);
        EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    }
    Number<F> x(-5000);
    count = 99;
    EXPECT_EQ(radixOf<F>(x, 1, TEXT_GROUP, 3, &count), std::nullopt);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(takeError(), TW_ERR_RADIX);
    // A raised flag: no text, an emptied buffer.
    ASSERT_NE(F::getStrA(x, 0, nullptr), nullptr);
    TW_setTerminate(1);
    EXPECT_EQ(strOf<F>(x, 0), std::nullopt);
    EXPECT_EQ(hexOf<F>(x, TEXT_GROUP), std::nullopt);
    for (std::uint32_t radix : {0u, 7u, 10u, 16u, 1000u}) {
        EXPECT_EQ(radixOf<F>(x, radix, 0, 0, &count), std::nullopt);
        EXPECT_EQ(count, 0u);
    }
    EXPECT_TRUE(x.object().rec().textBufferA->empty());
    TW_setTerminate(0);
    // A buffer that cannot grow: -3, no text, the number untouched.
    F::set_strA(x, "123456789012345678901234567890");
    tw::text::setTextAllocationCeilingForTesting(20);
    EXPECT_EQ(strOf<F>(x, 0), std::nullopt);
    EXPECT_EQ(takeError(), TW_ERR_TOO_LARGE);
    EXPECT_EQ(radixOf<F>(x, 3, 0, 0, &count), std::nullopt);
    EXPECT_EQ(takeError(), TW_ERR_TOO_LARGE);
    EXPECT_EQ(radixOf<F>(x, 1000, TEXT_GROUP, 0, &count), std::nullopt);
    EXPECT_EQ(takeError(), TW_ERR_TOO_LARGE);
    tw::text::setTextAllocationCeilingForTesting(SIZE_MAX);
    EXPECT_EQ(radixOf<F>(x, 10, 0, 0, &count), "123456789012345678901234567890");
    // A conversion between the limb radices that runs out of storage: no text; a text read as zero.
    const bool binary = F::Radix::isBinary;
    const std::string digits(600, '7');
    F::set_strA(x, ((binary ? "0x" : "") + digits).c_str());
    tw::setLimbAllocationCeilingForTesting(20);
    EXPECT_EQ(binary ? radixOf<F>(x, 10, 0, 0, &count) : hexOf<F>(x, 0), std::nullopt);
    EXPECT_EQ(takeError(), TW_ERR_TOO_LARGE);
    Number<F> y(5);
    F::set_strA(y, ((binary ? "" : "0x") + digits).c_str());
    EXPECT_EQ(takeError(), TW_ERR_TOO_LARGE);
    EXPECT_TRUE(holds(y, 0L));
    tw::setLimbAllocationCeilingForTesting(SIZE_MAX);
}

// The packed text of binary numbers: radix 2^8 and 2^16 characters, most
// significant first, the sign dropped, reading up to the first zero.
TEST_F(Clean, PackedText) {
    Gen gen(53);
    Number<BinaryFamily> x, back;
    for (std::size_t limbs : {1, 2, 3, 5, 8, 9, 33, 1000})
        for (int round = 0; round < 4; ++round) {
            const Mpz v = gen.signedValue<Bin>(limbs);
            if (!mpz_sgn(v)) continue;
            x.set(v);
            for (std::size_t unit : {1, 2}) {
                std::string bytes((mpz_sizeinbase(v, 2) + 15) / 8 + 2, '\0');
                std::size_t count = 0;
                mpz_export(bytes.data(), &count, 1, unit, 1, 0, v);  // big-endian units
                bytes.resize(count * unit);
                const std::size_t firstZero = [&] {
                    for (std::size_t i = 0; i < count; ++i)
                        if ((unit == 1 ? bytes[i] : bytes[2 * i] | bytes[2 * i + 1]) == 0) return i;
                    return count;
                }();
                Mpz head;
                mpz_import(head, firstZero, 1, unit, 1, 0, bytes.data());
                if (unit == 1) {
                    const char* a = HX_getTextA(x);
                    ASSERT_EQ(std::string(a, count + 1), bytes + '\0');
                    HX_setTextA(back, a);
                } else {
                    const tw_wchar* w = HX_getTextW(x);
                    for (std::size_t i = 0; i <= count; ++i)
                        ASSERT_EQ(w[i], i < count ? std::uint16_t(std::uint8_t(bytes[2 * i]) << 8 | std::uint8_t(bytes[2 * i + 1])) : 0u);
                    HX_setTextW(back, w);
                }
                ASSERT_TRUE(holds(back, head)) << limbs << " limbs, " << unit << "-byte units";
            }
        }
    HX_set_s32(x, 0);
    EXPECT_TRUE(HX_getTextA(x) == nullptr && HX_getTextW(x) == nullptr);
    HX_setTextA(x, "\xFF\xFE\x80");
    EXPECT_EQ(HX_get_s32(x), 0xFFFE80);
    EXPECT_EQ(HX_setTextW(x, nullptr), x.h());
    EXPECT_EQ(HX_getSign(x), 0);
    EXPECT_EQ(takeError(), 0);
    TW_setTerminate(1);
    HX_set_s32(x, 65);
    EXPECT_EQ(HX_getTextA(x), nullptr);
    EXPECT_EQ(HX_setTextA(x, "B"), x.h());
    EXPECT_EQ(HX_isZero(x), 1u);
    TW_setTerminate(0);
    EXPECT_EQ(HX_getTextA(nullptr), nullptr);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
}

}  // namespace
}  // namespace twtest
