// What the fuzz targets share: GMP values, the fuzzer's bytes read as a
// stream, operands of the lengths where the library changes method, both
// number types behind one set of names, and checks that stop the run with a
// report (libFuzzer then keeps the input as a crash file).
#pragma once

#include <gmp.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include "tarnwick.h"

namespace twfuzz {

inline std::string mpzText(mpz_srcptr v, int base) {
    std::string s(mpz_sizeinbase(v, base < 0 ? -base : base) + 2, '\0');  // a negative base: upper case
    mpz_get_str(s.data(), base, v);
    s.resize(std::strlen(s.c_str()));
    return s;
}

struct Mpz {
    mpz_t v;
    Mpz() { mpz_init(v); }
    Mpz(const Mpz& o) { mpz_init_set(v, o.v); }
    Mpz& operator=(const Mpz& o) { mpz_set(v, o.v); return *this; }
    ~Mpz() { mpz_clear(v); }
    operator mpz_ptr() { return v; }
    operator mpz_srcptr() const { return v; }
    __mpz_struct* operator->() { return v; }  // for GMP's macros (mpz_sgn, mpz_odd_p)
    const __mpz_struct* operator->() const { return v; }
    std::string str(int base) const { return mpzText(v, base); }
};

// The fuzzer's bytes front to back; past the end every read gives 0, so any
// input is a whole program.
class Bytes {
public:
    Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
    bool empty() const { return at_ >= size_; }
    std::uint8_t u8() { return at_ < size_ ? data_[at_++] : 0; }
    std::uint16_t u16() { return std::uint16_t(u8() | u8() << 8); }
    std::uint32_t u32() { return u16() | std::uint32_t(u16()) << 16; }

private:
    const std::uint8_t* data_;
    std::size_t size_, at_ = 0;
};

inline std::string clip(const std::string& s) {
    return s.size() > 200 ? s.substr(0, 90) + "..(" + std::to_string(s.size()) + " chars).." + s.substr(s.size() - 90) : s;
}

[[noreturn]] inline void fail(const char* what, const std::string& got, const std::string& want) {
    std::fprintf(stderr, "\nMISMATCH in %s\n  got:  %s\n  want: %s\n", what, clip(got).c_str(), clip(want).c_str());
    std::abort();
}

inline void check(bool ok, const char* what) {
    if (!ok) fail(what, "false", "true");
}

// The error the last call recorded must be `code`; a recorded error is then
// cleared, as a program that handles it would.
inline void expectError(std::int32_t code, const char* what) {
    const std::int32_t got = TW_getLastError();
    if (got != code) fail(what, "error " + std::to_string(got), "error " + std::to_string(code));
    if (code != 0) TW_setTerminate(0);
}

// The texts the library writes without flags: decimal for HI_, "0x" and
// upper-case hexadecimal for HX_.
inline std::string decimalText(mpz_srcptr v) { return mpzText(v, 10); }
inline std::string hexText(mpz_srcptr v) {
    if (mpz_sgn(v) == 0) return "0";
    Mpz m;
    mpz_abs(m, v);
    return (mpz_sgn(v) < 0 ? "-0x" : "0x") + m.str(-16);
}

// Both types under one set of names: F::add is HI_add or HX_add.
#define TWFUZZ_OPERATIONS(X)                                                                                   \
    X(add) X(sub) X(mul) X(mod) X(add_u32) X(sub_u32) X(mul_u32) X(divRem) X(div_s32) X(bitLShift)             \
    X(bitRShift) X(bitAnd) X(bitOr) X(bitXor) X(pow) X(negate) X(abs) X(swap) X(getSign) X(isZero) X(isEven)    \
    X(isOdd) X(getBits) X(getDigits) X(get_s64) X(get_u64) X(set_s64) X(getStrA) X(getStrW) X(set_strA)         \
    X(set_strW) X(setHexStrA) X(setHexStrW) X(getStrRadixA) X(getStrRadixW) X(set_rc) X(gcd) X(lcm) X(gcdEx)    \
    X(powMod) X(powMod_u32) X(powMod_u32_u32) X(mulMod) X(invertMod) X(invertMod_u32) X(rootRem) X(log)         \
    X(log_u32) X(floor) X(truncate) X(ceil) X(isPrime) X(testPrimality) X(nextPrime) X(previousPrime)
#define TWFUZZ_HI(name) static constexpr auto name = HI_##name;
#define TWFUZZ_HX(name) static constexpr auto name = HX_##name;

struct Hi {
    using H = HI_handle;
    static constexpr bool binary = false;
    static constexpr const char* name = "HI";
    TWFUZZ_OPERATIONS(TWFUZZ_HI)
    static constexpr auto create = HI_new;
    static constexpr auto destroy = HI_delete;
    static constexpr auto compare = HI_compare_hi, compareAbs = HI_compareAbs_hi;
    static constexpr auto rcSet = RC_set_hi;
    static std::string text(mpz_srcptr v) { return decimalText(v); }
};
struct Hx {
    using H = HX_handle;
    static constexpr bool binary = true;
    static constexpr const char* name = "HX";
    TWFUZZ_OPERATIONS(TWFUZZ_HX)
    static constexpr auto create = HX_new;
    static constexpr auto destroy = HX_delete;
    static constexpr auto compare = HX_compare_hx, compareAbs = HX_compareAbs_hx;
    static constexpr auto rcSet = RC_set_hx;
    static std::string text(mpz_srcptr v) { return hexText(v); }
};
#undef TWFUZZ_OPERATIONS
#undef TWFUZZ_HI
#undef TWFUZZ_HX

// The value of h must be want (read through the library's plain text).
template <class F>
void expectValue(typename F::H h, mpz_srcptr want, const char* what) {
    const char* got = F::getStrA(h, 0, nullptr);
    const std::string expected = F::text(want);
    if (!got || expected != got) fail(what, got ? got : "(null)", expected);
}

// The value of h as GMP reads its text.
template <class F>
void valueOf(typename F::H h, mpz_ptr out) {
    const char* text = F::getStrA(h, 0, nullptr);
    if (!text || mpz_set_str(out, text, 0) != 0) fail("reading a value", text ? text : "(null)", "a number");
}

// Limb counts where a method changes (the ladders' rungs, the division's and
// the conversions' bounds) and their neighbours, and small ones; a length
// is drawn from one byte.
inline std::size_t drawLimbs(Bytes& in, bool binary) {
    static constexpr std::size_t kDecimal[] = {0,   1,   2,   3,   4,   5,   7,   11,  19,  20,  21,  31,  32,  33,
                                               39,  40,  41,  63,  64,  65,  74,  75,  76,  127, 128, 129, 130, 182,
                                               183, 184, 198, 199, 200, 201, 256, 400, 1399, 1401, 4097};
    static constexpr std::size_t kBinary[] = {0,   1,   2,   3,   4,   5,   11,  12,  13,  15,  16,  17,  20,
                                              21,  32,  33,  39,  40,  41,  63,  64,  65,  127, 128, 129, 130,
                                              470, 471, 472, 473, 498, 499, 500, 501, 640, 1401, 4097};
    const std::uint8_t b = in.u8();
    if (b < 64) return b % 8;  // most operands short: programs stay fast
    return binary ? kBinary[b % std::size(kBinary)] : kDecimal[b % std::size(kDecimal)];
}

// Digits (of radix 10 or 16) of a value with the given count, in runs of the
// top digit, of zeros and of random digits, so that carries and borrows run
// long; the first digit is not zero.
inline std::string drawDigits(std::mt19937& rng, std::size_t count, int radix) {
    static constexpr char kAlphabet[] = "0123456789ABCDEF";
    std::string s;
    s.reserve(count);
    const unsigned style = rng() % 4;  // 0: random digits; else runs
    while (s.size() < count) {
        const std::size_t run = style == 0 ? count : 1 + rng() % (1 + rng() % 64);
        const unsigned kind = style == 0 ? 0 : rng() % 3;
        for (std::size_t i = 0; i < run && s.size() < count; ++i)
            s += kind == 1 ? kAlphabet[radix - 1] : kind == 2 ? '0' : kAlphabet[rng() % radix];
    }
    if (count && s[0] == '0') s[0] = '1';
    return s;
}

// An operand of about `limbs` limbs of the family's radix (fewer digits of
// its top limb drawn at random), signed by the caller's choice.
inline std::string drawOperandText(Bytes& in, std::size_t limbs, bool binary) {
    std::mt19937 rng(in.u16());
    const std::size_t per = binary ? 7 : 9;
    if (limbs == 0) return "0";
    const std::size_t count = limbs * per - rng() % per;
    std::string digits = drawDigits(rng, count, binary ? 16 : 10);
    return (in.u8() & 1 ? "-" : "") + std::string(binary ? "0x" : "") + digits;
}

}  // namespace twfuzz
