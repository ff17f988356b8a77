// Test support for the text functions: both families with their text exports,
// calls of both widths compared code unit by code unit, an independent
// formatter built on GMP's digits, and fast set-up of long values.
#pragma once

#include <gmp.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "arith_api/arith_support.h"
#include "support/c_families.h"

namespace twtest {

using DecimalText = DecimalFamily;
using BinaryText = BinaryFamily;

using BothTextFamilies = ::testing::Types<DecimalText, BinaryText>;

template <class F>
class TextTest : public ErrorStateGuard {};

// ---- both widths ----

inline std::u16string widen(const std::string& s) {
    std::u16string w;
    for (const char c : s) w.push_back(char16_t(static_cast<unsigned char>(c)));
    return w;
}

// An output call made in both widths (A first, then W, so the A text must
// survive the W call).  The text, or nullopt for null; the test fails when
// the widths disagree in any code unit, in the length, or in the terminator.
template <class CallA, class CallW>
std::optional<std::string> inBothWidths(CallA callA, CallW callW) {
    std::uint32_t lengthA = 12345, lengthW = 54321;
    const char* a = callA(&lengthA);
    const tw_wchar* w = callW(&lengthW);
    if (a == nullptr) {
        EXPECT_EQ(w, nullptr);
        EXPECT_EQ(lengthA, 0u);
        EXPECT_EQ(lengthW, 0u);
        return std::nullopt;
    }
    EXPECT_NE(w, nullptr);
    if (w == nullptr) return std::nullopt;
    const std::string text(a);
    EXPECT_EQ(text.size(), lengthA) << "length out-parameter, A";
    EXPECT_EQ(lengthW, lengthA) << "length out-parameter, W";
    const std::u16string wide(reinterpret_cast<const char16_t*>(w), lengthW);
    EXPECT_EQ(w[lengthW], 0u) << "W terminator";
    EXPECT_TRUE(wide == widen(text)) << "W text differs from A text " << text;
    return text;
}

template <class F>
std::optional<std::string> strOf(typename F::Handle h, std::uint8_t flags) {
    return inBothWidths([&](std::uint32_t* n) { return F::getStrA(h, flags, n); },
                        [&](std::uint32_t* n) { return F::getStrW(h, flags, n); });
}

template <class F>
std::optional<std::string> hexStrOf(typename F::Handle h, std::uint8_t flags) {
    return inBothWidths([&](std::uint32_t* n) { return F::getHexStrA(h, flags, n); },
                        [&](std::uint32_t* n) { return F::getHexStrW(h, flags, n); });
}

// getStrRadix in both widths; *digitCount receives the A call's count and
// the W call must report the same.
template <class F>
std::optional<std::string> radixStrOf(typename F::Handle h, std::uint32_t radix, std::uint8_t flags,
                                      std::uint32_t groupLength, std::uint32_t* digitCount) {
    std::uint32_t countW = 77;
    auto text = inBothWidths(
        [&](std::uint32_t* n) { return F::getStrRadixA(h, radix, digitCount, flags, groupLength, n); },
        [&](std::uint32_t* n) { return F::getStrRadixW(h, radix, &countW, flags, groupLength, n); });
    EXPECT_EQ(countW, *digitCount);
    return text;
}

// ---- the expected text, from GMP's digits ----

inline char separatorFor(std::uint8_t flags) { return (flags & TEXT_SPACE_SEPARATOR) ? ' ' : ','; }

inline std::string signFor(int sign, std::uint8_t flags) {
    std::string s;
    if (sign < 0) s = "-";
    if (sign > 0 && (flags & TEXT_PLUS_SIGN)) s = "+";
    if (!s.empty() && (flags & TEXT_SIGN_SPACE)) s += ' ';
    return s;
}

// The digits of |v| in radix 2..62, GMP's alphabets, upper case up to 36 unless asked.
inline std::string gmpDigits(mpz_srcptr v, std::uint32_t radix, bool lowerCase) {
    Mpz a;
    mpz_abs(a, v);
    // A negative base asks GMP for upper-case letters.
    const int base = (radix <= 36 && !lowerCase) ? -int(radix) : int(radix);
    std::string s(mpz_sizeinbase(a, int(radix)) + 2, '\0');
    mpz_get_str(s.data(), base, a);
    s.resize(std::char_traits<char>::length(s.c_str()));
    return s;
}

// The digits of |v| > 0 in any radix (0 = 2^32), least significant first.
inline std::vector<std::uint32_t> digitsOf(mpz_srcptr v, std::uint32_t radix) {
    std::vector<std::uint32_t> out;
    Mpz a;
    mpz_abs(a, v);
    while (mpz_sgn(a.v) != 0) {
        if (radix == 0) {
            out.push_back(std::uint32_t(mpz_get_ui(a.v) & 0xFFFFFFFFu));
            mpz_fdiv_q_2exp(a.v, a.v, 32);
        } else {
            out.push_back(std::uint32_t(mpz_fdiv_q_ui(a.v, a.v, radix)));
        }
    }
    return out;
}

// What getStrRadix gives for v; *digitCount the expected count.
inline std::string expectedRadixText(mpz_srcptr v, std::uint32_t radix, std::uint8_t flags, std::uint32_t groupLength,
                                     std::uint32_t* digitCount) {
    if (mpz_sgn(v) == 0) {
        *digitCount = 1;
        return "0";
    }
    const bool grouped = flags & TEXT_GROUP;
    const std::string sign = signFor(mpz_sgn(v), flags);
    if (radix == 0 || radix > 62) {
        const auto digits = digitsOf(v, radix);
        const std::size_t width = std::to_string(radix - 1u).size();
        std::string body;
        for (std::size_t i = digits.size(); i-- > 0;) {
            std::string d = std::to_string(digits[i]);
            body += '[' + std::string(width - d.size(), '0') + d + ']';
            if (grouped && i > 0) body += separatorFor(flags);
        }
        *digitCount = std::uint32_t(digits.size());
        return sign + body;
    }
    const std::string digits = gmpDigits(v, radix, flags & TEXT_LOWER_CASE);
    *digitCount = std::uint32_t(digits.size());
    std::uint32_t group = grouped ? groupLength : 0;
    if (grouped && radix == 10 && (groupLength == 0 || groupLength == 3)) group = 3;
    if (grouped && radix == 16 && (groupLength == 0 || groupLength == 4)) group = 4;
    std::string body;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const std::size_t fromRight = digits.size() - i;
        body += digits[i];
        if (group && fromRight > 1 && (fromRight - 1) % group == 0) body += separatorFor(flags);
    }
    if (radix == 16) body = (grouped ? "0x " : "0x") + body;
    return sign + body;
}

// Hexadecimal text as getHexStr / HX_getStr give it, with or without "0x".
inline std::string expectedHexText(mpz_srcptr v, std::uint8_t flags, bool withPrefix) {
    std::uint32_t count;
    std::string text = expectedRadixText(v, 16, flags, 4, &count);
    if (!withPrefix && mpz_sgn(v) != 0) text.erase(text.find("0x"), (flags & TEXT_GROUP) ? 3 : 2);
    return text;
}

inline std::string expectedDecimalText(mpz_srcptr v, std::uint8_t flags) {
    std::uint32_t count;
    return expectedRadixText(v, 10, flags, 3, &count);
}

// ---- long values without quadratic set-up ----

// The value of binary limbs, packed into 64-bit words for mpz_import.
inline Mpz binaryLimbsToMpz(const Limbs& limbs) {
    std::vector<std::uint64_t> words((limbs.size() * 28 + 63) / 64 + 1, 0);
    for (std::size_t i = 0; i < limbs.size(); ++i) {
        const std::size_t bit = i * 28;
        words[bit / 64] |= std::uint64_t(limbs[i]) << (bit % 64);
        if (bit % 64 > 36) words[bit / 64 + 1] |= std::uint64_t(limbs[i]) >> (64 - bit % 64);
    }
    Mpz m;
    mpz_import(m.v, words.size(), -1, sizeof(std::uint64_t), 0, 0, words.data());
    return m;
}

template <class R>
Mpz limbsValue(const Limbs& limbs) {
    if constexpr (R::isBinary)
        return binaryLimbsToMpz(limbs);
    else
        return toMpz<R>(limbs);
}

// x := sign * the value of limbs (top limb non-zero).
template <class R>
void setLimbs(tw::SignedNumber<R>& x, const Limbs& limbs, int sign) {
    tw::NumberRecord& rec = x.rec();
    tw::dropTextBuffers(rec);
    tw::resizeStorage(rec, std::uint32_t(limbs.size()), true);
    std::copy(limbs.begin(), limbs.end(), rec.digits);
    tw::normalizeIndices(rec, std::uint32_t(limbs.size()));
    x.sign = sign;
    x.normalizeSign();
}

// True when x holds exactly sign * limbs (trailing zero limbs of `limbs` allowed).
template <class R>
::testing::AssertionResult holdsLimbs(const tw::SignedNumber<R>& x, Limbs limbs, int sign) {
    while (limbs.size() > 1 && limbs.back() == 0) limbs.pop_back();
    const auto normal = recordIsNormal(x);
    if (!normal) return normal;
    if (x.sign != sign) return ::testing::AssertionFailure() << "sign " << x.sign << " expected " << sign;
    if (x.rec().topIndex + 1 != limbs.size())
        return ::testing::AssertionFailure() << x.rec().topIndex + 1 << " limbs, expected " << limbs.size();
    for (std::size_t i = 0; i < limbs.size(); ++i)
        if (x.limb(std::uint32_t(i)) != limbs[i]) return ::testing::AssertionFailure() << "limb " << i << " differs";
    return ::testing::AssertionSuccess();
}

}  // namespace twtest
