// Tarnwick for C++: value types over the C interface.
//
//   tarnwick::Integer   integers in radix 10^9 (HI_), decimal text for free
//   tarnwick::IntegerX  integers in radix 2^28 (HX_), bits and hexadecimal for free
//   tarnwick::RadixConverter  digit vectors in any radix from 2 to 2^32 (RC_)
//
// Needs C++17; C++20 adds operator<=> and, where the standard library has
// <format>, std::format. Numbers have value semantics (copies are deep, moves
// steal the handle; a moved-from number can be assigned to and destroyed).
// When a C call reports an error, the wrapper clears the library's error state
// and throws, so the next call starts clean. Every exception thrown here is a
// tarnwick::Error and a standard exception: std::runtime_error for what the
// library reports, std::invalid_argument for text that is not a number,
// std::overflow_error for a value that does not fit the machine type asked
// for, std::domain_error for a double that is not finite.
//
// The operations are the C library's, and some results differ from GMP's and
// Python's on purpose:
//   pow(0, 0) is 0 (GMP and Python give 1);
//   / truncates toward zero and % takes the dividend's sign (Python floors);
//   x >> k truncates toward zero too: -3 >> 1 is -1 (GMP's floor shift and
//     Python give -2);
//   &, |, ^ combine the magnitudes bit by bit and the signs as bits (negative
//     counts as 1), not two's complements: -6 & 3 is 2, -6 | 3 is -7 (Python
//     -5), -6 ^ -3 is 5 (Python 7);
//   x << k throws (result too large) as soon as digits(x) + k * log2(10)
//     passes 2^32 - 1, a guard far below the true limit: 1 << 1300000000 throws;
//   sqrt and root of a negative number are -root(|x|) (sqrt(-16) is -4),
//     where GMP refuses;
//   powmod with a negative exponent uses the inverse, and invert is 0 when
//     there is none.
// The C functions read any text and skip what is not a digit; the C++
// constructors from text are strict and Integer::lenient reads as C does.
#ifndef TARNWICK_HPP
#define TARNWICK_HPP

#if __cplusplus < 201703L && !(defined(_MSVC_LANG) && _MSVC_LANG >= 201703L)
#error "tarnwick.hpp needs C++17 or later (-std=c++17)"
#endif

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <istream>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#if __has_include(<version>)
#include <version>
#endif
#if defined(__cpp_impl_three_way_comparison) && defined(__cpp_lib_three_way_comparison)
#include <compare>
#define TARNWICK_THREE_WAY 1
#endif
#if defined(__cpp_lib_format)
#include <algorithm>
#include <format>
#endif

#include "tarnwick.h"

namespace tarnwick {

// The base of every exception thrown here; each one is also the standard
// exception named by its type below, so catch either.
class Error {
public:
    virtual ~Error() = default;
    virtual const char* what() const noexcept = 0;
    // The TW_ERR_ value the library reported; TW_ERR_TOO_LARGE for a value
    // that does not fit a machine type; TW_ERR_NONE when the C++ layer refused
    // on its own (bad text, a double that is not finite).
    std::int32_t code() const noexcept { return code_; }

    static const char* describe(std::int32_t code) noexcept {
        switch (code) {
            case TW_ERR_STOPPED: return "interrupted";
            case TW_ERR_TOO_LARGE: return "result too large";
            case TW_ERR_HANDLE: return "invalid number handle";
            case TW_ERR_DIV_ZERO: return "division by zero";
            case TW_ERR_LOG: return "invalid logarithm";
            case TW_ERR_RADIX: return "invalid radix";
            default: return "library error";
        }
    }

protected:
    explicit Error(std::int32_t code) noexcept : code_(code) {}
    Error(const Error&) = default;
    Error& operator=(const Error&) = default;

private:
    std::int32_t code_;
};

// Error joined to one standard exception type.
template <class Standard>
class ErrorOf final : public Standard, public Error {
public:
    explicit ErrorOf(std::int32_t code) : Standard(describe(code)), Error(code) {}
    ErrorOf(std::int32_t code, const std::string& message) : Standard(message), Error(code) {}
    const char* what() const noexcept override { return Standard::what(); }
};

using LibraryError = ErrorOf<std::runtime_error>;  // reported by the C library
using TextError = ErrorOf<std::invalid_argument>;  // not a number in the radix asked for
using RangeError = ErrorOf<std::overflow_error>;   // too large for the machine type asked for
using DomainError = ErrorOf<std::domain_error>;    // a double that is not finite

namespace detail {

// Throws the pending error, if any, after clearing it.
// Built-in integer operands (bool and the character types too, as they
// promote), and their magnitudes as unsigned long long.
template <class T>
using IfBuiltin = std::enable_if_t<std::is_integral<T>::value, int>;
template <class T>
constexpr unsigned long long magnitudeOf(T v) {
    if constexpr (std::is_signed<T>::value)
        if (v < 0) return 0ull - static_cast<unsigned long long>(v);
    return static_cast<unsigned long long>(v);
}
template <class T>
constexpr bool isNegative(T v) {
    if constexpr (std::is_signed<T>::value) return v < 0;
    return false;
}
constexpr unsigned long long kWordMax = 0xFFFFFFFFull;

// Recording an error raises the terminate flag, so one look at the flag
// answers for both on the common path.
inline void raiseIfFailed() {
    if (TW_isTerminated() != 0) {
        const std::int32_t code = TW_getLastError();
        TW_setTerminate(0);
        throw LibraryError(code != 0 ? code : TW_ERR_STOPPED);
    }
}

template <class T>
T checked(T value) {
    raiseIfFailed();
    return value;
}

// The value of digit c in radix 2..62: 0-9, then A-Z, then a-z; letters of
// either case count the same up to radix 36.
constexpr int digitValue(char c, int radix) {
    int v = radix;
    if (c >= '0' && c <= '9') v = c - '0';
    if (c >= 'A' && c <= 'Z') v = c - 'A' + 10;
    if (c >= 'a' && c <= 'z') v = c - 'a' + (radix > 36 ? 36 : 10);
    return v < radix ? v : -1;
}

// A strictly read text: the sign, the radix (the "0x" prefix read) and the
// digits, or ok false.
struct ParsedText {
    bool ok = false, negative = false;
    int radix = 10;
    std::string_view digits;
};

// Reads [+|-][0x]digits, nothing else. Radix 0 is decimal, or hexadecimal
// after "0x"; the prefix is also allowed in radix 16.
inline ParsedText parseText(std::string_view text, int radix) {
    ParsedText p;
    if (radix != 0 && (radix < 2 || radix > 62)) return p;
    std::size_t i = 0;
    if (!text.empty() && (text[0] == '+' || text[0] == '-')) p.negative = text[i++] == '-';
    if ((radix == 0 || radix == 16) && text.size() - i >= 2 && text[i] == '0' && (text[i + 1] | 0x20) == 'x') {
        i += 2;
        radix = 16;
    }
    p.radix = radix == 0 ? 10 : radix;
    p.digits = text.substr(i);
    p.ok = !p.digits.empty();
    for (char c : p.digits) p.ok = p.ok && digitValue(c, p.radix) >= 0;
    return p;
}

// The text of a C++ integer literal: "0x", "0b" and a leading 0 choose radix
// 16, 2 and 8, and digit separators are dropped.
inline std::pair<std::string, int> literalText(const char* literal) {
    std::string text;
    for (const char* p = literal; *p != 0; ++p)
        if (*p != '\'') text += *p;
    if (text.size() > 2 && text[0] == '0' && (text[1] | 0x20) == 'x') return {text.substr(2), 16};
    if (text.size() > 2 && text[0] == '0' && (text[1] | 0x20) == 'b') return {text.substr(2), 2};
    if (text.size() > 1 && text[0] == '0') return {text.substr(1), 8};
    return {text, 10};
}

// The options of a format field as std::format reads them for integers:
// [[fill]align][sign][#][0][width][type], type one of d x X o b B.
struct FormatOptions {
    char fill = ' ';
    char align = 0;  // '<', '>', '^', or '=' for padding between the prefix and the digits
    char sign = '-';  // '+' and ' ' mark non-negative values too
    bool alternate = false;  // the radix prefix
    std::size_t width = 0;
    char type = 'd';

    // Reads up to the closing brace; ok false when something else is left.
    template <class It>
    constexpr It parse(It it, It end, bool& ok) {
        const auto isAlign = [](char c) { return c == '<' || c == '>' || c == '^'; };
        if (it != end && *it != '}' && it + 1 != end && isAlign(it[1])) {
            fill = *it;
            align = it[1];
            it += 2;
        } else if (it != end && isAlign(*it)) {
            align = *it++;
        }
        if (it != end && (*it == '+' || *it == '-' || *it == ' ')) sign = *it++;
        if (it != end && *it == '#') {
            alternate = true;
            ++it;
        }
        if (it != end && *it == '0') {
            if (align == 0) fill = '0', align = '=';
            ++it;
        }
        while (it != end && *it >= '0' && *it <= '9') width = width * 10 + std::size_t(*it++ - '0');
        if (it != end && (*it == 'd' || *it == 'x' || *it == 'X' || *it == 'o' || *it == 'b' || *it == 'B'))
            type = *it++;
        ok = it == end || *it == '}';
        return it;
    }
};

// x's text by a format field's options. iostreams write no prefix for zero; std::format
// writes one except for octal.
template <class Number>
std::string formatted(const Number& x, const FormatOptions& opts, bool prefixForZero) {
    const char t = opts.type;
    const std::uint32_t radix = t == 'x' || t == 'X' ? 16 : t == 'o' ? 8 : t == 'b' || t == 'B' ? 2 : 10;
    const bool upper = t == 'X' || t == 'B';
    std::string digits = x.to_string(radix, upper ? 0 : TEXT_LOWER_CASE);
    std::string head;
    if (digits[0] == '-') {
        head = "-";
        digits.erase(0, 1);
    } else if (opts.sign != '-') {
        head = opts.sign;
    }
    if (radix == 16 && digits.compare(0, 2, "0x") == 0) digits.erase(0, 2);
    // The octal 0 counts as a digit, so internal padding goes before it.
    if (opts.alternate && radix == 8 && digits != "0") digits.insert(0, "0");
    if (opts.alternate && (radix == 16 || radix == 2) && (digits != "0" || prefixForZero))
        head += radix == 16 ? (upper ? "0X" : "0x") : (upper ? "0B" : "0b");
    const std::size_t length = head.size() + digits.size();
    const std::size_t pad = opts.width > length ? opts.width - length : 0;
    const auto fill = [&](std::size_t n) { return std::string(n, opts.fill); };
    switch (opts.align) {
        case '<': return head + digits + fill(pad);
        case '^': return fill(pad / 2) + head + digits + fill(pad - pad / 2);
        case '=': return head + fill(pad) + digits;
        default: return fill(pad) + head + digits;
    }
}

// The C functions of one integer family; Radix is the text radix it writes
// without conversion.
#define TARNWICK_FAMILY_TRAITS(Name, P, S, Radix)                                             \
    struct Name {                                                                             \
        using Handle = P##_handle;                                                            \
        static constexpr std::uint32_t naturalRadix = Radix;                                  \
        static Handle create() { return P##_new(); }                                          \
        static void destroy(Handle h) { P##_delete(h); }                                      \
        static constexpr auto set_s64 = P##_set_s64;                                          \
        static constexpr auto set_u64 = P##_set_u64;                                          \
        static constexpr auto set_own = P##_set_##S;                                          \
        static constexpr auto set_strA = P##_set_strA;                                        \
        static constexpr auto setHexStrA = P##_setHexStrA;                                    \
        static constexpr auto get_s64 = P##_get_s64;                                          \
        static constexpr auto get_u64 = P##_get_u64;                                          \
        static constexpr auto getSign = P##_getSign;                                          \
        static constexpr auto isZero = P##_isZero;                                            \
        static constexpr auto negate = P##_negate;                                            \
        static constexpr auto abs = P##_abs;                                                  \
        static constexpr auto swap = P##_swap;                                                \
        static constexpr auto compare = P##_compare_##S;                                      \
        static constexpr auto compare_s32 = P##_compare_s32;                                  \
        static constexpr auto compareAbs_u32 = P##_compareAbs_u32;                            \
        static constexpr auto getDigits = P##_getDigits;                                      \
        static constexpr auto getBits = P##_getBits;                                          \
        static constexpr auto add = P##_add;                                                  \
        static constexpr auto sub = P##_sub;                                                  \
        static constexpr auto add_u32 = P##_add_u32;                                          \
        static constexpr auto sub_u32 = P##_sub_u32;                                          \
        static constexpr auto mul = P##_mul;                                                  \
        static constexpr auto mul_u32 = P##_mul_u32;                                          \
        static constexpr auto divRem = P##_divRem;                                            \
        static constexpr auto mod = P##_mod;                                                  \
        static constexpr auto pow = P##_pow;                                                  \
        static constexpr auto bitLShift = P##_bitLShift;                                      \
        static constexpr auto bitRShift = P##_bitRShift;                                      \
        static constexpr auto bitAnd = P##_bitAnd;                                            \
        static constexpr auto bitOr = P##_bitOr;                                              \
        static constexpr auto bitXor = P##_bitXor;                                            \
        static constexpr auto getStrRadixA = P##_getStrRadixA;                                \
        static constexpr auto set_rc = P##_set_rc;                                            \
        static constexpr auto gcd = P##_gcd;                                                  \
        static constexpr auto lcm = P##_lcm;                                                  \
        static constexpr auto gcdEx = P##_gcdEx;                                              \
        static constexpr auto gcdList = P##_gcd_v##S;                                         \
        static constexpr auto lcmList = P##_lcm_v##S;                                         \
        static constexpr auto floor = P##_floor;                                              \
        static constexpr auto truncate = P##_truncate;                                        \
        static constexpr auto ceil = P##_ceil;                                                \
        static constexpr auto powMod = P##_powMod;                                            \
        static constexpr auto invertMod = P##_invertMod;                                      \
        static constexpr auto rootRem = P##_rootRem;                                          \
        static constexpr auto log = P##_log;                                                  \
        static constexpr auto factorial = P##_factorial;                                      \
        static constexpr auto factorial2 = P##_factorial2;                                    \
        static constexpr auto primorial = P##_primeFactorial;                                 \
        static constexpr auto binomial = P##_combination;                                     \
        static constexpr auto permutation = P##_permutation;                                  \
        static constexpr auto fibonacci = P##_fibonacci;                                      \
        static constexpr auto lucas = P##_lucas;                                              \
        static constexpr auto productList = P##_product_v##S;                                 \
        static constexpr auto isPrime = P##_isPrime;                                          \
        static constexpr auto nextPrime = P##_nextPrime;                                      \
        static constexpr auto previousPrime = P##_previousPrime;                              \
        static constexpr auto generatePrime = P##_generatePrime;                              \
        static constexpr auto random = P##_random;                                            \
    }
TARNWICK_FAMILY_TRAITS(DecimalTraits, HI, hi, 10);
TARNWICK_FAMILY_TRAITS(BinaryTraits, HX, hx, 16);
#undef TARNWICK_FAMILY_TRAITS

}  // namespace detail

class RadixConverter;

// An integer of unbounded size; Traits selects the limb radix.
template <class Traits>
class BasicInteger {
public:
    using Handle = typename Traits::Handle;

    BasicInteger() : h_(fresh()) {}
    // Every built-in integer type converts exactly (the narrower ones through
    // int or unsigned by promotion).
    BasicInteger(int v) : BasicInteger(static_cast<long long>(v)) {}
    BasicInteger(long v) : BasicInteger(static_cast<long long>(v)) {}
    BasicInteger(long long v) : BasicInteger() { run(Traits::set_s64(h_, v)); }
    BasicInteger(unsigned v) : BasicInteger(static_cast<unsigned long long>(v)) {}
    BasicInteger(unsigned long v) : BasicInteger(static_cast<unsigned long long>(v)) {}
    BasicInteger(unsigned long long v) : BasicInteger() { run(Traits::set_u64(h_, v)); }
    // A double truncated toward zero; NaN and infinities throw DomainError.
    explicit BasicInteger(double v) : BasicInteger() { assignDouble(v); }
    // Text: an optional sign, then digits of the radix (2 to 62; letters of
    // either case up to 36, then A-Z before a-z) and nothing else. Radix 0,
    // the default, reads decimal, or hexadecimal after "0x", the two forms
    // to_string writes; radix 16 allows the "0x" too. Anything else throws
    // TextError (a std::invalid_argument).
    explicit BasicInteger(const char* text, int radix = 0) : BasicInteger() {
        if (text == nullptr) throw TextError(TW_ERR_NONE, "null text");
        assignText(text, radix);
    }
    explicit BasicInteger(std::string_view text, int radix = 0) : BasicInteger() { assignText(text, radix); }
    explicit BasicInteger(const std::string& text, int radix = 0) : BasicInteger(std::string_view(text), radix) {}
    // The C library's reading, which refuses nothing: white space and one "-"
    // first, "0x" switching to hexadecimal, every other non-digit skipped
    // ("3.99" is 399, "hello" is 0).
    static BasicInteger lenient(const char* text) {
        BasicInteger r;
        r.run(Traits::set_strA(r.h_, text));
        return r;
    }
    static BasicInteger lenient(const std::string& text) { return lenient(text.c_str()); }
    // Conversion from the other integer type (and from a radix converter).
    template <class Other>
    explicit BasicInteger(const BasicInteger<Other>& other) : BasicInteger() { assignFrom(other.handle()); }
    explicit BasicInteger(const RadixConverter& rc);

    BasicInteger(const BasicInteger& other) : BasicInteger() { run(Traits::set_own(h_, other.h_)); }
    // The source is left without a handle: it can only be assigned or destroyed.
    BasicInteger(BasicInteger&& other) noexcept : h_(std::exchange(other.h_, nullptr)) {}
    BasicInteger& operator=(const BasicInteger& other) {
        if (this == &other) return *this;
        if (h_ == nullptr) h_ = fresh();
        return run(Traits::set_own(h_, other.h_));
    }
    BasicInteger& operator=(BasicInteger&& other) noexcept {
        std::swap(h_, other.h_);
        return *this;
    }
    ~BasicInteger() {
        if (h_ != nullptr) Traits::destroy(h_);
    }

    Handle handle() const noexcept { return h_; }

    // ---- queries ----
    int sign() const { return detail::checked(Traits::getSign(h_)); }
    bool is_zero() const { return detail::checked(Traits::isZero(h_)) != 0; }
    std::uint32_t digits() const { return detail::checked(Traits::getDigits(h_)); }
    std::uint32_t bits() const { return detail::checked(Traits::getBits(h_)); }
    explicit operator bool() const { return !is_zero(); }
    bool operator!() const { return is_zero(); }

    // The value as a machine integer; RangeError (a std::overflow_error) when
    // it does not fit. The C functions give 0 then, which zero also gives.
    bool fits_int64() const { return detail::checked(Traits::get_s64(h_)) != 0 || is_zero(); }
    bool fits_uint64() const { return detail::checked(Traits::get_u64(h_)) != 0 || is_zero(); }
    std::int64_t to_int64() const {
        if (!fits_int64()) throw RangeError(TW_ERR_TOO_LARGE, "value does not fit in int64_t");
        return Traits::get_s64(h_);
    }
    std::uint64_t to_uint64() const {
        if (!fits_uint64()) throw RangeError(TW_ERR_TOO_LARGE, "value does not fit in uint64_t");
        return Traits::get_u64(h_);
    }
    // The nearest double toward zero (as GMP's mpz_get_d); infinity past the
    // largest double.
    double to_double() const {
        const std::uint32_t length = bits();
        const std::uint32_t dropped = length > 64 ? length - 64 : 0;
        std::uint64_t top = (abs(*this) >> dropped).to_uint64();
        // Truncated to 53 bits here, the conversion below is exact.
        if (length - dropped > 53) top &= ~((std::uint64_t(1) << (length - dropped - 53)) - 1);
        const double magnitude = std::ldexp(static_cast<double>(top), static_cast<int>(dropped));
        return sign() < 0 ? -magnitude : magnitude;
    }

    // Text in radix 2..62 (0 for 2^32, 63 and above bracketed); flags are the
    // TEXT_ values; groupLength is used with TEXT_GROUP for radices other than 10 and 16.
    std::string to_string(std::uint32_t radix = 10, std::uint8_t flags = 0, std::uint32_t groupLength = 0) const {
        std::uint32_t length = 0;
        const char* text = Traits::getStrRadixA(h_, radix, nullptr, flags, groupLength, &length);
        detail::raiseIfFailed();
        return text != nullptr ? std::string(text, length) : std::string();
    }

    // ---- arithmetic ----
    BasicInteger& operator+=(const BasicInteger& b) { return run(Traits::add(h_, h_, b.h_)); }
    BasicInteger& operator-=(const BasicInteger& b) { return run(Traits::sub(h_, h_, b.h_)); }
    BasicInteger& operator*=(const BasicInteger& b) { return run(Traits::mul(h_, h_, b.h_)); }
    // Truncating division; the remainder takes the dividend's sign.
    BasicInteger& operator/=(const BasicInteger& b) { return run(Traits::divRem(h_, h_, b.h_, nullptr)); }
    BasicInteger& operator%=(const BasicInteger& b) { return run(Traits::mod(h_, h_, b.h_)); }
    BasicInteger& operator&=(const BasicInteger& b) { return run(Traits::bitAnd(h_, h_, b.h_)); }
    BasicInteger& operator|=(const BasicInteger& b) { return run(Traits::bitOr(h_, h_, b.h_)); }
    BasicInteger& operator^=(const BasicInteger& b) { return run(Traits::bitXor(h_, h_, b.h_)); }
    BasicInteger& operator<<=(std::uint32_t k) { return run(Traits::bitLShift(h_, k)); }
    BasicInteger& operator>>=(std::uint32_t k) { return run(Traits::bitRShift(h_, k)); }

    BasicInteger operator-() const {
        BasicInteger r(*this);
        r.run(Traits::negate(r.h_));
        return r;
    }
    BasicInteger operator+() const { return *this; }
    BasicInteger& operator++() { return run(Traits::add_u32(h_, h_, 1)); }
    BasicInteger& operator--() { return run(Traits::sub_u32(h_, h_, 1)); }
    BasicInteger operator++(int) {
        BasicInteger old(*this);
        ++*this;
        return old;
    }
    BasicInteger operator--(int) {
        BasicInteger old(*this);
        --*this;
        return old;
    }

    friend BasicInteger operator+(BasicInteger a, const BasicInteger& b) {
        a += b;
        return a;
    }
    friend BasicInteger operator-(BasicInteger a, const BasicInteger& b) {
        a -= b;
        return a;
    }
    friend BasicInteger operator*(BasicInteger a, const BasicInteger& b) {
        a *= b;
        return a;
    }
    friend BasicInteger operator/(BasicInteger a, const BasicInteger& b) {
        a /= b;
        return a;
    }
    friend BasicInteger operator%(BasicInteger a, const BasicInteger& b) {
        a %= b;
        return a;
    }
    friend BasicInteger operator&(BasicInteger a, const BasicInteger& b) {
        a &= b;
        return a;
    }
    friend BasicInteger operator|(BasicInteger a, const BasicInteger& b) {
        a |= b;
        return a;
    }
    friend BasicInteger operator^(BasicInteger a, const BasicInteger& b) {
        a ^= b;
        return a;
    }
    friend BasicInteger operator<<(BasicInteger a, std::uint32_t k) {
        a <<= k;
        return a;
    }
    friend BasicInteger operator>>(BasicInteger a, std::uint32_t k) {
        a >>= k;
        return a;
    }

    // Built-in operands of up to 32 bits go through the word functions, with
    // no number made for them; wider ones that do not fit a word make one.
    template <class T, detail::IfBuiltin<T> = 0>
    BasicInteger& operator+=(T v) { return offsetBy(v, false); }
    template <class T, detail::IfBuiltin<T> = 0>
    BasicInteger& operator-=(T v) { return offsetBy(v, true); }
    template <class T, detail::IfBuiltin<T> = 0>
    BasicInteger& operator*=(T v) {
        const unsigned long long m = detail::magnitudeOf(v);
        if (m > detail::kWordMax) return *this *= BasicInteger(v);
        run(Traits::mul_u32(h_, h_, static_cast<std::uint32_t>(m)));
        return detail::isNegative(v) ? run(Traits::negate(h_)) : *this;
    }
    template <class T, detail::IfBuiltin<T> = 0>
    friend BasicInteger operator+(BasicInteger a, T v) { return std::move(a += v); }
    template <class T, detail::IfBuiltin<T> = 0>
    friend BasicInteger operator+(T v, BasicInteger a) { return std::move(a += v); }
    template <class T, detail::IfBuiltin<T> = 0>
    friend BasicInteger operator-(BasicInteger a, T v) { return std::move(a -= v); }
    template <class T, detail::IfBuiltin<T> = 0>
    friend BasicInteger operator-(T v, BasicInteger a) {
        a.run(Traits::negate(a.h_));
        return std::move(a += v);
    }
    template <class T, detail::IfBuiltin<T> = 0>
    friend BasicInteger operator*(BasicInteger a, T v) { return std::move(a *= v); }
    template <class T, detail::IfBuiltin<T> = 0>
    friend BasicInteger operator*(T v, BasicInteger a) { return std::move(a *= v); }

    // Quotient and remainder in one division.
    friend std::pair<BasicInteger, BasicInteger> divmod(const BasicInteger& a, const BasicInteger& b) {
        BasicInteger q, r;
        q.run(Traits::divRem(q.h_, a.h_, b.h_, r.h_));
        return {std::move(q), std::move(r)};
    }
    friend BasicInteger pow(const BasicInteger& a, std::uint32_t e) {
        BasicInteger r;
        r.run(Traits::pow(r.h_, a.h_, e));
        return r;
    }
    friend BasicInteger abs(BasicInteger a) {
        a.run(Traits::abs(a.h_));
        return a;
    }

    // ---- number theory ----
    // gcd and lcm of the magnitudes; gcdext gives g = a x + b y >= 0 as
    // {g, x, y}; powmod takes a negative exponent as the inverse's power;
    // invert gives 0 when a has no inverse modulo m; sqrt and root truncate
    // toward zero (root(-27, 3) is -3); ilog is floor(log_|base| |a|).
    friend BasicInteger gcd(const BasicInteger& a, const BasicInteger& b) {
        BasicInteger r;
        r.run(Traits::gcd(r.h_, a.h_, b.h_));
        return r;
    }
    friend BasicInteger lcm(const BasicInteger& a, const BasicInteger& b) {
        BasicInteger r;
        r.run(Traits::lcm(r.h_, a.h_, b.h_));
        return r;
    }
    struct GcdExt;
    friend GcdExt gcdext(const BasicInteger& a, const BasicInteger& b) {
        GcdExt e;
        e.g.run(Traits::gcdEx(e.g.h_, e.x.h_, e.y.h_, a.h_, b.h_));
        return e;
    }
    // The gcd and lcm of a list: 0 and 1 for an empty one.
    friend BasicInteger gcd(const std::vector<BasicInteger>& values) { return ofList(Traits::gcdList, values); }
    friend BasicInteger lcm(const std::vector<BasicInteger>& values) { return ofList(Traits::lcmList, values); }
    friend BasicInteger powmod(const BasicInteger& base, const BasicInteger& e, const BasicInteger& m) {
        BasicInteger r;
        r.run(Traits::powMod(r.h_, base.h_, e.h_, m.h_));
        return r;
    }
    friend BasicInteger invert(const BasicInteger& a, const BasicInteger& m) {
        BasicInteger r;
        r.run(Traits::invertMod(r.h_, a.h_, m.h_));
        return r;
    }
    friend BasicInteger root(const BasicInteger& a, std::uint32_t n) {
        BasicInteger r;
        r.run(Traits::rootRem(r.h_, nullptr, a.h_, n));
        return r;
    }
    friend BasicInteger sqrt(const BasicInteger& a) { return root(a, 2); }
    friend std::uint32_t ilog(const BasicInteger& a, const BasicInteger& base) {
        return detail::checked(Traits::log(a.h_, base.h_));
    }
    // x with only its n leading digits (decimal digits for Integer, bits
    // for IntegerX), the rest rounded away toward -infinity, toward zero
    // or toward +infinity; n = 0 keeps x.
    friend BasicInteger floor(BasicInteger x, std::uint32_t n) {
        x.run(Traits::floor(x.h_, n));
        return x;
    }
    friend BasicInteger trunc(BasicInteger x, std::uint32_t n) {
        x.run(Traits::truncate(x.h_, n));
        return x;
    }
    friend BasicInteger ceil(BasicInteger x, std::uint32_t n) {
        x.run(Traits::ceil(x.h_, n));
        return x;
    }
    // ---- numbers defined by an index: Integer::factorial(100), IntegerX::fibonacci(-5) ----
    // n!, n!! (the numbers up to n of n's parity), the product of the primes
    // up to n, C(n, k) and n! / (n - k)! (0 for k outside 0..n), F(n) and L(n)
    // (negative n too); a list's product (1 for an empty one).
    static BasicInteger factorial(std::uint32_t n) { return made(Traits::factorial, n); }
    static BasicInteger factorial2(std::uint32_t n) { return made(Traits::factorial2, n); }
    static BasicInteger primorial(std::uint32_t n) { return made(Traits::primorial, n); }
    static BasicInteger binomial(std::int32_t n, std::int32_t k) { return made(Traits::binomial, n, k); }
    static BasicInteger permutation(std::int32_t n, std::int32_t k) { return made(Traits::permutation, n, k); }
    static BasicInteger fibonacci(std::int32_t n) { return made(Traits::fibonacci, n); }
    static BasicInteger lucas(std::int32_t n) { return made(Traits::lucas, n); }
    friend BasicInteger product(const std::vector<BasicInteger>& values) { return ofList(Traits::productList, values); }

    // ---- primes ----
    // isprime: exact below 10^16, Baillie-PSW above; nextprime and prevprime
    // of |a| (2 below 2; prevprime is 0 when no prime lies below);
    // Integer::genprime(n) a random prime of n decimal digits (IntegerX: n
    // bits) and Integer::random(n) a random number below 10^n (2^n) from the
    // library's generator (TW_seedRandom).
    friend bool isprime(const BasicInteger& a) { return detail::checked(Traits::isPrime(a.h_)) != 0; }
    friend BasicInteger nextprime(const BasicInteger& a) {
        BasicInteger r;
        r.run(Traits::nextPrime(r.h_, a.h_));
        return r;
    }
    friend BasicInteger prevprime(const BasicInteger& a) {
        BasicInteger r;
        r.run(Traits::previousPrime(r.h_, a.h_));
        return r;
    }
    static BasicInteger genprime(std::uint32_t size) { return made(Traits::generatePrime, size); }
    static BasicInteger random(std::int32_t size) { return made(Traits::random, size); }

    friend void swap(BasicInteger& a, BasicInteger& b) noexcept { std::swap(a.h_, b.h_); }

    // ---- comparison ----
    friend int compare(const BasicInteger& a, const BasicInteger& b) {
        return detail::checked(Traits::compare(a.h_, b.h_));
    }
    friend bool operator==(const BasicInteger& a, const BasicInteger& b) { return compare(a, b) == 0; }
    // With a built-in integer: the word comparison when it fits 32 signed bits.
    template <class T, detail::IfBuiltin<T> = 0>
    friend int compare(const BasicInteger& a, T v) {
        if (detail::isNegative(v) ? detail::magnitudeOf(v) <= 0x80000000ull : detail::magnitudeOf(v) <= 0x7FFFFFFFull)
            return detail::checked(Traits::compare_s32(a.h_, static_cast<std::int32_t>(v)));
        return compare(a, BasicInteger(v));
    }
    template <class T, detail::IfBuiltin<T> = 0>
    friend bool operator==(const BasicInteger& a, T v) { return compare(a, v) == 0; }
#ifdef TARNWICK_THREE_WAY
    friend std::strong_ordering operator<=>(const BasicInteger& a, const BasicInteger& b) { return compare(a, b) <=> 0; }
    template <class T, detail::IfBuiltin<T> = 0>
    friend std::strong_ordering operator<=>(const BasicInteger& a, T v) { return compare(a, v) <=> 0; }
#else
    template <class T, detail::IfBuiltin<T> = 0>
    friend bool operator==(T v, const BasicInteger& a) { return compare(a, v) == 0; }
#define TARNWICK_BUILTIN_ORDER(op)                                                                          \
    template <class T, detail::IfBuiltin<T> = 0>                                                            \
    friend bool operator op(const BasicInteger& a, T v) { return compare(a, v) op 0; }                     \
    template <class T, detail::IfBuiltin<T> = 0>                                                            \
    friend bool operator op(T v, const BasicInteger& a) { return 0 op compare(a, v); }
    TARNWICK_BUILTIN_ORDER(!=)
    TARNWICK_BUILTIN_ORDER(<)
    TARNWICK_BUILTIN_ORDER(<=)
    TARNWICK_BUILTIN_ORDER(>)
    TARNWICK_BUILTIN_ORDER(>=)
#undef TARNWICK_BUILTIN_ORDER
    friend bool operator!=(const BasicInteger& a, const BasicInteger& b) { return compare(a, b) != 0; }
    friend bool operator<(const BasicInteger& a, const BasicInteger& b) { return compare(a, b) < 0; }
    friend bool operator<=(const BasicInteger& a, const BasicInteger& b) { return compare(a, b) <= 0; }
    friend bool operator>(const BasicInteger& a, const BasicInteger& b) { return compare(a, b) > 0; }
    friend bool operator>=(const BasicInteger& a, const BasicInteger& b) { return compare(a, b) >= 0; }
#endif

    // As iostreams write built-in integers: dec, hex or oct; the prefix (0x,
    // 0X with uppercase, 0 for octal) only with showbase and never for zero;
    // "+" with showpos; width, fill and left, right or internal adjustment.
    // A negative number is written as its sign and magnitude: -0xff.
    friend std::ostream& operator<<(std::ostream& out, const BasicInteger& x) {
        const std::ios::fmtflags flags = out.flags();
        const std::ios::fmtflags base = flags & std::ios::basefield, adjust = flags & std::ios::adjustfield;
        detail::FormatOptions opts;
        opts.type = base == std::ios::oct ? 'o' : base != std::ios::hex ? 'd' : (flags & std::ios::uppercase) ? 'X' : 'x';
        opts.sign = (flags & std::ios::showpos) ? '+' : '-';
        opts.alternate = (flags & std::ios::showbase) != 0;
        opts.fill = out.fill();
        opts.width = out.width() > 0 ? static_cast<std::size_t>(out.width()) : 0;
        opts.align = adjust == std::ios::left ? '<' : adjust == std::ios::internal ? '=' : '>';
        return out << detail::formatted(x, opts, false);  // which resets the width
    }
    // As iostreams read built-in integers: white space skipped (with skipws),
    // an optional sign, digits of the basefield (dec, hex with an optional
    // 0x, oct; none set: 0x hexadecimal, 0 octal, else decimal), read while
    // they last. No digit sets failbit and leaves x unchanged.
    friend std::istream& operator>>(std::istream& in, BasicInteger& x) {
        const std::istream::sentry ok(in);
        if (!ok) return in;
        const std::ios::fmtflags base = in.flags() & std::ios::basefield;
        int radix = base == std::ios::dec ? 10 : base == std::ios::hex ? 16 : base == std::ios::oct ? 8 : 0;
        std::streambuf& buffer = *in.rdbuf();
        const auto eof = std::char_traits<char>::eof();
        auto c = buffer.sgetc();
        std::string sign, digits;
        if (c == '-' || c == '+') {
            sign = char(c);
            c = buffer.snextc();
        }
        if (c == '0' && (radix == 0 || radix == 16)) {
            c = buffer.snextc();
            if (c == 'x' || c == 'X') {
                radix = 16;
                c = buffer.snextc();
            } else {
                digits = "0";
                if (radix == 0) radix = 8;
            }
        }
        if (radix == 0) radix = 10;
        for (; c != eof && detail::digitValue(char(c), radix) >= 0; c = buffer.snextc()) digits += char(c);
        std::ios::iostate state = c == eof ? std::ios::eofbit : std::ios::goodbit;
        if (digits.empty()) state |= std::ios::failbit;
        else x = BasicInteger(sign + digits, radix);
        in.setstate(state);
        return in;
    }

private:
    static Handle fresh() {
        const Handle h = detail::checked(Traits::create());
        if (h == nullptr) throw LibraryError(TW_ERR_TOO_LARGE);
        return h;
    }

    template <class OtherHandle>
    void assignFrom(OtherHandle other);

    void assignText(std::string_view text, int radix);

    void assignDouble(double v) {
        if (!std::isfinite(v)) throw DomainError(TW_ERR_NONE, "not a finite number");
        if (std::fabs(v) < 9223372036854775808.0) {
            run(Traits::set_s64(h_, static_cast<long long>(v)));  // truncating
            return;
        }
        // |v| >= 2^63: its 53-bit mantissa as an integer, shifted into place.
        int exponent = 0;
        const double mantissa = std::frexp(v, &exponent);
        run(Traits::set_s64(h_, static_cast<long long>(std::ldexp(mantissa, 53))));
        run(Traits::bitLShift(h_, static_cast<std::uint32_t>(exponent - 53)));
    }

    template <class ListFunction>
    static BasicInteger ofList(ListFunction f, const std::vector<BasicInteger>& values) {
        std::vector<Handle> handles;
        handles.reserve(values.size());
        for (const BasicInteger& v : values) handles.push_back(v.h_);
        BasicInteger r;
        r.run(f(r.h_, handles.data(), static_cast<std::uint32_t>(handles.size())));
        return r;
    }

    template <class Function, class... Args>
    static BasicInteger made(Function f, Args... args) {
        BasicInteger r;
        r.run(f(r.h_, args...));
        return r;
    }

    // *this += v, or -= v.  The word functions keep the sign of a number
    // whose magnitude is below a word of the other sign (-5 + 7 gives -2
    // there), so such a sum is negated back to the true one.
    template <class T>
    BasicInteger& offsetBy(T v, bool subtract) {
        const unsigned long long m = detail::magnitudeOf(v);
        if (m > detail::kWordMax) return subtract ? *this -= BasicInteger(v) : *this += BasicInteger(v);
        const auto word = static_cast<std::uint32_t>(m);
        const bool down = detail::isNegative(v) != subtract;
        const int s = Traits::getSign(h_);  // a bad handle fails in the word function below
        const bool crosses = s != 0 && (s < 0) != down && Traits::compareAbs_u32(h_, word) < 0;
        run(down ? Traits::sub_u32(h_, h_, word) : Traits::add_u32(h_, h_, word));
        return crosses ? run(Traits::negate(h_)) : *this;
    }

    BasicInteger& run(Handle result) {
        (void)result;
        detail::raiseIfFailed();
        return *this;
    }

    Handle h_;
};

// The result of gcdext: g = a x + b y.
template <class Traits>
struct BasicInteger<Traits>::GcdExt {
    BasicInteger g, x, y;
};

using Integer = BasicInteger<detail::DecimalTraits>;
using IntegerX = BasicInteger<detail::BinaryTraits>;

// pi(n), the number of primes up to n, and the k-th prime (0 past the last
// 32-bit prime), for 32-bit values.
inline std::uint32_t prime_pi(std::uint32_t n) { return TW_getPrimePi(n); }
inline std::uint32_t nth_prime(std::uint32_t k) { return TW_getPrime(k); }

template <>
template <>
inline void Integer::assignFrom(HX_handle other) { run(HI_set_hx(h_, other)); }
template <>
template <>
inline void IntegerX::assignFrom(HI_handle other) { run(HX_set_hi(h_, other)); }

// A sign and a vector of digits in one radix (0 stands for 2^32).
class RadixConverter {
public:
    explicit RadixConverter(std::uint32_t radix) : h_(detail::checked(RC_new(radix))) {
        if (h_ == nullptr) throw LibraryError(TW_ERR_TOO_LARGE);
    }
    template <class Traits>
    RadixConverter(std::uint32_t radix, const BasicInteger<Traits>& value) : RadixConverter(radix) {
        set(value.handle());
    }
    RadixConverter(const RadixConverter& other) : RadixConverter(other.radix()) {
        detail::checked(RC_set_rc(h_, other.h_));
    }
    RadixConverter(RadixConverter&& other) noexcept : h_(std::exchange(other.h_, nullptr)) {}
    RadixConverter& operator=(RadixConverter other) noexcept {
        std::swap(h_, other.h_);
        return *this;
    }
    ~RadixConverter() {
        if (h_ != nullptr) RC_delete(h_);
    }

    RC_handle handle() const noexcept { return h_; }
    std::uint32_t radix() const { return detail::checked(RC_getRadix(h_)); }
    int sign() const { return detail::checked(RC_getSign(h_)); }
    std::vector<std::uint32_t> digits() const {
        DigitVectorView view{};
        detail::checked(RC_getVector(h_, &view));
        return std::vector<std::uint32_t>(view.data, view.data + view.size);
    }
    void set_digits(const std::vector<std::uint32_t>& digits, int sign = 1) {
        detail::checked(RC_resetVector(h_, digits.data(), std::uint32_t(digits.size())));
        detail::checked(RC_resetSign(h_, sign));
    }
    // Same value, digits in another radix.
    RadixConverter& convert(std::uint32_t radix) {
        detail::checked(RC_convert2Radix(h_, radix));
        return *this;
    }
    std::uint64_t sum_of_digits() const { return detail::checked(RC_sumOfDigits(h_)); }

private:
    void set(HI_handle a) { detail::checked(RC_set_hi(h_, a)); }
    void set(HX_handle a) { detail::checked(RC_set_hx(h_, a)); }
    RC_handle h_;
};

template <class Traits>
BasicInteger<Traits>::BasicInteger(const RadixConverter& rc) : BasicInteger() {
    run(Traits::set_rc(h_, rc.handle()));
}

template <class Traits>
void BasicInteger<Traits>::assignText(std::string_view text, int radix) {
    const detail::ParsedText p = detail::parseText(text, radix);
    if (!p.ok) {
        const bool radixOk = radix == 0 || (radix >= 2 && radix <= 62);
        throw TextError(radixOk ? TW_ERR_NONE : TW_ERR_RADIX,
                        radixOk ? "not an integer in radix " + std::to_string(radix == 0 ? 10 : radix) + ": \"" +
                                      std::string(text.substr(0, 40)) + (text.size() > 40 ? "...\"" : "\"")
                                : "invalid radix " + std::to_string(radix));
    }
    // Decimal and hexadecimal digits go to the library's readers as they are;
    // other radices through a digit vector, least significant digit first.
    if (p.radix == 10 || p.radix == 16) {
        const std::string digits = (p.negative ? "-" : "") + std::string(p.digits);
        run(p.radix == 10 ? Traits::set_strA(h_, digits.c_str()) : Traits::setHexStrA(h_, digits.c_str()));
        return;
    }
    std::vector<std::uint32_t> values(p.digits.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = static_cast<std::uint32_t>(detail::digitValue(p.digits[values.size() - 1 - i], p.radix));
    RadixConverter digits(static_cast<std::uint32_t>(p.radix));
    digits.set_digits(values, p.negative ? -1 : 1);
    run(Traits::set_rc(h_, digits.handle()));
}

// The decimal text, for generic code that calls to_string unqualified.
template <class Traits>
std::string to_string(const BasicInteger<Traits>& x, std::uint32_t radix = 10) {
    return x.to_string(radix);
}

// 123_tw is an Integer, 0xFF_twx an IntegerX: literals of any length, in
// decimal, hexadecimal (0x), binary (0b) or octal (leading 0), with digit
// separators. A literal that is no integer (1.5_tw) throws TextError.
inline namespace literals {
inline Integer operator""_tw(const char* literal) {
    const auto [text, radix] = detail::literalText(literal);
    return Integer(text, radix);
}
inline IntegerX operator""_twx(const char* literal) {
    const auto [text, radix] = detail::literalText(literal);
    return IntegerX(text, radix);
}
}  // namespace literals

}  // namespace tarnwick

namespace std {

// Equal values have equal text in the type's own radix, hence equal hashes.
template <class Traits>
struct hash<tarnwick::BasicInteger<Traits>> {
    size_t operator()(const tarnwick::BasicInteger<Traits>& x) const {
        return hash<string>()(x.to_string(Traits::naturalRadix));
    }
};

#if defined(__cpp_lib_format)
// std::format("{:#x}", x) and the rest of the integer format options:
// [[fill]align][sign][#][0][width][type], type one of d x X o b B.
template <class Traits>
struct formatter<tarnwick::BasicInteger<Traits>, char> {
    tarnwick::detail::FormatOptions opts;

    constexpr format_parse_context::iterator parse(format_parse_context& context) {
        bool ok = false;
        const auto end = opts.parse(context.begin(), context.end(), ok);
        if (!ok) throw format_error("invalid format for an integer");
        return end;
    }
    template <class Context>
    typename Context::iterator format(const tarnwick::BasicInteger<Traits>& x, Context& context) const {
        const string text = tarnwick::detail::formatted(x, opts, true);
        return copy(text.begin(), text.end(), context.out());
    }
};
#endif

}  // namespace std

#endif  // TARNWICK_HPP
