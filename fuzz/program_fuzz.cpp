// Programs over three numbers of each type, mirrored on GMP and compared
// after every step: arithmetic with every aliasing the slot indices give,
// division, shifts, bitwise operations, powers, conversions between the two
// types and through the radix converter, text round trips in several radices,
// and deleting and creating numbers.
//
// Input: steps of an operation byte (bit 0 the type, the rest the operation),
// a byte of slot indices and the operation's own arguments.
#include <algorithm>
#include <vector>

#include "fuzz_support.h"

using namespace twfuzz;

namespace {

constexpr std::size_t kSlots = 3;
constexpr std::size_t kMaxBits = 300000;  // results beyond are not asked for
// A program ends after kMaxSteps steps or once the bits of the numbers its
// steps left behind add up to kBudgetBits, so that an input of long numbers
// runs a few steps only and every input stays fast under the sanitizers.
constexpr int kMaxSteps = 40;
constexpr std::size_t kBudgetBits = 400000;

std::size_t bitsOf(mpz_srcptr v) { return mpz_sgn(v) ? mpz_sizeinbase(v, 2) : 0; }

template <class F>
struct Bank {
    typename F::H h[kSlots];
    Mpz v[kSlots];
    Bank() {
        for (auto& x : h) x = F::create();
    }
    void reset() {
        for (std::size_t i = 0; i < kSlots; ++i) F::set_s64(h[i], 0), mpz_set_ui(v[i], 0);
    }
    void expect(std::size_t i, const char* what) { expectValue<F>(h[i], v[i], what); }
};

Bank<Hi>& decimalBank() {
    static Bank<Hi> bank;
    return bank;
}
Bank<Hx>& binaryBank() {
    static Bank<Hx> bank;
    return bank;
}

// A 32-bit argument: a value at an edge, or any.
std::uint32_t drawWord(Bytes& in) {
    static constexpr std::uint32_t kEdges[] = {0, 1, 2, 3, 7, 10, 999999999, 1000000000, 0x0FFFFFFF, 0x10000000,
                                               0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0xFFFFFFF9};
    const std::uint8_t b = in.u8();
    return b & 1 ? in.u32() : kEdges[(b >> 1) % std::size(kEdges)];
}

// The absolute values of a and b under a bitwise operation, signed by the library's rule.
void signMagnitude(mpz_ptr w, mpz_srcptr a, mpz_srcptr b, int op) {
    Mpz x, y;
    mpz_abs(x, a), mpz_abs(y, b);
    const bool na = mpz_sgn(a) < 0, nb = mpz_sgn(b) < 0;
    if (op == 0) mpz_and(w, x, y);
    if (op == 1) mpz_ior(w, x, y);
    if (op == 2) mpz_xor(w, x, y);
    if (op == 0 ? na && nb : op == 1 ? na || nb : na != nb) mpz_neg(w, w);
}

// Digits of |v| in a radix up to 62, in the library's alphabet.
std::string radixDigits(mpz_srcptr v, unsigned radix, bool lower) {
    Mpz m;
    mpz_abs(m, v);
    std::string s = m.str(radix <= 36 && !lower ? -int(radix) : int(radix));
    return s;
}

// The text of a in a radix, read back by GMP (digits of radix up to 62, or
// bracketed digits), and by the library when decimal or hexadecimal.
template <class F>
void textStep(Bank<F>& b, Bytes& in, std::size_t r, std::size_t a) {
    static constexpr std::uint32_t kRadices[] = {2, 3, 7, 8, 10, 16, 36, 37, 62, 0, 100, 1000, 65536};
    const std::uint32_t radix = kRadices[in.u8() % std::size(kRadices)];
    const std::uint8_t flags = in.u8() & 0x1F;
    const std::uint32_t group = in.u8() % 8;
    std::uint32_t digitCount = 0, length = 0;
    const char* out = F::getStrRadixA(b.h[a], radix, &digitCount, flags, group, &length);
    if (!out) fail("getStrRadixA", "(null)", "text");
    const std::string text(out);
    check(length == text.size(), "getStrRadixA length");
    const tw_wchar* wide = F::getStrRadixW(b.h[a], radix, nullptr, flags, group, nullptr);
    check(wide && std::equal(text.begin(), text.end(), wide) && wide[text.size()] == 0, "getStrRadixW as A");

    const mpz_srcptr v = b.v[a];
    if (mpz_sgn(v) == 0) {
        if (text != "0" || digitCount != 1) fail("text of zero", text, "0");
    } else if (radix >= 2 && radix <= 62) {
        // The sign, "0x" in radix 16, then the digits between separators.
        std::string want = mpz_sgn(v) < 0 ? "-" : flags & TEXT_PLUS_SIGN ? "+" : "";
        if (!want.empty() && flags & TEXT_SIGN_SPACE) want += ' ';
        if (radix == 16) want += "0x";
        const std::string digits = radixDigits(v, radix, flags & TEXT_LOWER_CASE);
        std::string got = text;
        if (flags & TEXT_GROUP) {
            std::string kept = got.substr(0, want.size());
            for (std::size_t i = want.size(); i < got.size(); ++i)
                if (got[i] != ',' && got[i] != ' ') kept += got[i];
            got = kept;
        }
        if (got != want + digits) fail("getStrRadixA", text, want + digits);
        if (digitCount != digits.size()) fail("getStrRadixA digit count", std::to_string(digitCount), std::to_string(digits.size()));
        if (radix == 10 || radix == 16) {
            F::set_strA(b.h[r], out);  // grouped, signed, prefixed: all read back
            mpz_set(b.v[r], v);
            b.expect(r, "set_strA of written text");
        }
    } else if (bitsOf(v) <= 8000) {
        // Bracketed digits of a fixed width, rebuilt by Horner's rule.
        const unsigned width = radix == 0 ? 10 : unsigned(std::to_string(radix - 1).size());
        Mpz got;
        std::size_t i = 0, count = 0;
        const bool negative = text[0] == '-';
        while (i < text.size() && text[i] != '[') ++i;
        for (; i < text.size(); ++i) {
            if (text[i] != '[') continue;
            const std::size_t close = text.find(']', i);
            check(close == i + 1 + width, "bracketed digit width");
            const unsigned long digit = std::stoul(text.substr(i + 1, width));
            check(radix == 0 || digit < radix, "bracketed digit below radix");
            if (radix == 0) mpz_mul_2exp(got, got, 32);
            else mpz_mul_ui(got, got, radix);
            mpz_add_ui(got, got, digit);
            ++count, i = close;
        }
        if (negative) mpz_neg(got, got);
        if (mpz_cmp(got, v) != 0) fail("bracketed text", text, mpzText(v, 10));
        check(count == digitCount, "bracketed digit count");
    }
    expectError(0, "text output");
}

// a in one radix of the converter, changed to another, and read back into r.
template <class F>
void converterStep(Bank<F>& b, Bytes& in, std::size_t r, std::size_t a) {
    static constexpr std::uint32_t kRadices[] = {2, 10, 16, 1000000000, 1u << 28, 0, 3, 255, 1u << 31, 99991};
    RC_handle rc = RC_new(kRadices[in.u8() % std::size(kRadices)]);
    F::rcSet(rc, b.h[a]);
    RC_convert2Radix(rc, kRadices[in.u8() % std::size(kRadices)]);
    F::set_rc(b.h[r], rc);
    RC_delete(rc);
    mpz_set(b.v[r], b.v[a]);
    b.expect(r, "through the radix converter");
    expectError(0, "radix converter");
}

template <class F>
void step(Bank<F>& b, Bytes& in, unsigned op) {
    const std::uint8_t idx = in.u8();
    const std::size_t r = idx % 3, a = idx / 3 % 3, c = idx / 9 % 3;
    auto& v = b.v;
    auto& h = b.h;
    Mpz w, t;
    switch (op) {
    case 0: {  // set from text of a chosen length
        const std::string text = drawOperandText(in, drawLimbs(in, F::binary), F::binary);
        F::set_strA(h[r], text.c_str());
        mpz_set_str(v[r], text.c_str(), 0);
        b.expect(r, "set_strA");
        break;
    }
    case 1:
    case 2:
    case 3:
        if (bitsOf(v[a]) + bitsOf(v[c]) > kMaxBits) return;
        if (op == 1) F::add(h[r], h[a], h[c]), mpz_add(v[r], v[a], v[c]);
        if (op == 2) F::sub(h[r], h[a], h[c]), mpz_sub(v[r], v[a], v[c]);
        if (op == 3) F::mul(h[r], h[a], h[c]), mpz_mul(v[r], v[a], v[c]);
        b.expect(r, op == 1 ? "add" : op == 2 ? "sub" : "mul");
        break;
    case 4: {  // q = a / c, and the remainder into the slot left over (or none)
        std::size_t other = kSlots;
        for (std::size_t s = 0; s < kSlots; ++s)
            if (s != r && s != a && s != c && !(idx & 0x80)) other = s;
        const typename F::H remainder = other < kSlots ? h[other] : nullptr;
        F::divRem(h[r], h[a], h[c], remainder);
        if (mpz_sgn(v[c]) == 0) {
            expectError(TW_ERR_DIV_ZERO, "divRem by zero");
            mpz_set_ui(v[r], 0);
            b.expect(r, "divRem by zero");
            if (other < kSlots) valueOf<F>(h[other], v[other]);  // left as the library leaves it
            return;
        }
        mpz_tdiv_qr(w, t, v[a], v[c]);
        mpz_set(v[r], w);
        b.expect(r, "divRem quotient");
        if (other < kSlots) mpz_set(v[other], t), b.expect(other, "divRem remainder");
        break;
    }
    case 5:
        F::mod(h[r], h[a], h[c]);
        if (mpz_sgn(v[c]) == 0) {
            expectError(TW_ERR_DIV_ZERO, "mod by zero");
            mpz_set_ui(v[r], 0);
        } else {
            mpz_tdiv_r(v[r], v[a], v[c]);
        }
        b.expect(r, "mod");
        break;
    case 6: {
        const std::int32_t d = std::int32_t(drawWord(in));
        std::int32_t remainder = 12345;
        F::div_s32(h[r], h[a], d, &remainder);
        if (d == 0) {
            expectError(TW_ERR_DIV_ZERO, "div_s32 by zero");
            mpz_set_ui(v[r], 0);
            b.expect(r, "div_s32 by zero");
            return;
        }
        const long long divisor = d;
        Mpz md;
        mpz_set_si(md, long(divisor < 0 ? -divisor : divisor));
        mpz_tdiv_r(t, v[a], md);
        mpz_abs(t, t);
        if ((mpz_sgn(v[a]) < 0) != (d < 0)) mpz_neg(t, t);
        mpz_set_si(md, long(divisor));
        mpz_tdiv_q(v[r], v[a], md);
        b.expect(r, "div_s32 quotient");
        if (mpz_cmp_si(t, remainder) != 0) fail("div_s32 remainder", std::to_string(remainder), t.str(10));
        break;
    }
    case 7:
    case 8: {
        const std::uint32_t k = in.u16() % 20000;
        if (op == 7 && bitsOf(v[r]) + k > kMaxBits) return;
        if (op == 7) F::bitLShift(h[r], k), mpz_mul_2exp(v[r], v[r], k);
        else F::bitRShift(h[r], k), mpz_tdiv_q_2exp(v[r], v[r], k);
        b.expect(r, op == 7 ? "bitLShift" : "bitRShift");
        break;
    }
    case 9:
    case 10:
    case 11:
        if (op == 9) F::bitAnd(h[r], h[a], h[c]);
        if (op == 10) F::bitOr(h[r], h[a], h[c]);
        if (op == 11) F::bitXor(h[r], h[a], h[c]);
        signMagnitude(v[r], v[a], v[c], int(op - 9));
        b.expect(r, op == 9 ? "bitAnd" : op == 10 ? "bitOr" : "bitXor");
        break;
    case 12: {
        std::uint32_t e = in.u8() % 64;
        const std::size_t bits = bitsOf(v[a]);
        if (bits > 1 && bits * e > kMaxBits) e = std::uint32_t(kMaxBits / bits);
        F::pow(h[r], h[a], e);
        if (r != a) {  // r == a leaves the value as it is
            if (mpz_sgn(v[a]) == 0) mpz_set_ui(v[r], 0);  // 0^0 too
            else mpz_pow_ui(v[r], v[a], e);
        }
        b.expect(r, "pow");
        break;
    }
    case 13: {
        const std::uint32_t n = drawWord(in);
        const int which = in.u8() % 3;
        mpz_abs(t, v[a]);
        if (which == 0) {  // a negative a of magnitude below n stays negative
            F::add_u32(h[r], h[a], n);
            if (mpz_sgn(v[a]) < 0 && mpz_cmp_ui(t, n) < 0) mpz_ui_sub(v[r], n, t), mpz_neg(v[r], v[r]);
            else mpz_add_ui(v[r], v[a], n);
        } else if (which == 1) {  // a positive a below n stays positive
            F::sub_u32(h[r], h[a], n);
            if (mpz_sgn(v[a]) > 0 && mpz_cmp_ui(t, n) < 0) mpz_ui_sub(v[r], n, t);
            else mpz_sub_ui(v[r], v[a], n);
        } else {
            F::mul_u32(h[r], h[a], n);
            mpz_mul_ui(v[r], v[a], n);
        }
        b.expect(r, which == 0 ? "add_u32" : which == 1 ? "sub_u32" : "mul_u32");
        break;
    }
    case 14:
        if (c == 0) F::negate(h[r]), mpz_neg(v[r], v[r]);
        if (c == 1) F::abs(h[r]), mpz_abs(v[r], v[r]);
        if (c == 2) F::swap(h[r], h[a]), mpz_swap(v[r], v[a]), b.expect(a, "swap");
        b.expect(r, "negate, abs or swap");
        break;
    case 15: {  // questions about a and c
        check(F::compare(h[a], h[c]) == (mpz_cmp(v[a], v[c]) > 0) - (mpz_cmp(v[a], v[c]) < 0), "compare");
        check(F::compareAbs(h[a], h[c]) == (mpz_cmpabs(v[a], v[c]) > 0) - (mpz_cmpabs(v[a], v[c]) < 0), "compareAbs");
        check(F::getSign(h[a]) == mpz_sgn(v[a]), "getSign");
        check(F::isZero(h[a]) == (mpz_sgn(v[a]) == 0), "isZero");
        check(F::isEven(h[a]) == mpz_even_p(v[a]) && F::isOdd(h[a]) == mpz_odd_p(v[a]), "isEven, isOdd");
        check(F::getBits(h[a]) == bitsOf(v[a]), "getBits");
        mpz_abs(t, v[a]);
        check(F::getDigits(h[a]) == t.str(10).size(), "getDigits");
        if constexpr (F::binary) {
            check(HX_getTailBitZeros(h[a]) == (mpz_sgn(t) ? mpz_scan1(t, 0) : 0), "getTailBitZeros");
            const std::uint32_t k = in.u16();
            check(HX_isBitOne(h[a], k) == unsigned(mpz_tstbit(t, k)), "isBitOne");
        } else {
            const std::string s = t.str(10);
            const std::size_t zeros = mpz_sgn(t) ? s.size() - 1 - s.find_last_not_of('0') : 0;
            check(HI_getTailDecZeros(h[a]) == zeros, "getTailDecZeros");
        }
        check(F::get_s64(h[a]) == (mpz_fits_slong_p(v[a]) ? mpz_get_si(v[a]) : 0), "get_s64");
        const bool fitsU64 = mpz_sgn(v[a]) >= 0 && bitsOf(v[a]) <= 64;
        check(F::get_u64(h[a]) == (fitsU64 ? mpz_get_ui(v[a]) : 0), "get_u64");
        expectError(0, "questions");
        break;
    }
    case 16:
        textStep(b, in, r, a);
        break;
    case 17: {  // delete and create: the old handle is refused from then on
        const typename F::H old = h[r];
        check(F::destroy(old) == 1, "delete");
        h[r] = F::create();
        check(h[r] != nullptr && h[r] != old, "new after delete");
        check(F::isZero(old) == 1, "deleted handle");
        expectError(TW_ERR_HANDLE, "deleted handle");
        mpz_set_ui(v[r], 0);
        b.expect(r, "new number");
        break;
    }
    case 18:
        converterStep(b, in, r, a);
        break;
    case 19:
        if constexpr (!F::binary) {  // decimal shifts
            const std::uint32_t k = in.u16() % 5000;
            mpz_ui_pow_ui(t, 10, k);
            if (in.u8() & 1) {
                if (bitsOf(v[r]) + 4 * k > kMaxBits) return;
                HI_decLShift(h[r], k), mpz_mul(v[r], v[r], t);
            } else {
                HI_decRShift(h[r], k), mpz_tdiv_q(v[r], v[r], t);
            }
            b.expect(r, "decimal shift");
        }
        break;
    }
    expectError(0, "a step");
}

// One number of either type set from one of the other.
void convertStep(Bytes& in) {
    auto& d = decimalBank();
    auto& x = binaryBank();
    const std::uint8_t idx = in.u8();
    const std::size_t i = idx % 3, j = idx / 3 % 3;
    if (idx & 0x80) {
        HI_set_hx(d.h[i], x.h[j]), mpz_set(d.v[i], x.v[j]);
        d.expect(i, "HI_set_hx");
    } else {
        HX_set_hi(x.h[i], d.h[j]), mpz_set(x.v[i], d.v[j]);
        x.expect(i, "HX_set_hi");
    }
    expectError(0, "conversion");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Bytes in(data, size);
    decimalBank().reset();
    binaryBank().reset();
    std::size_t spent = 0;
    for (int n = 0; n < kMaxSteps && spent < kBudgetBits && !in.empty(); ++n) {
        const std::uint8_t op = in.u8();
        const unsigned kind = (op >> 1) % 21;
        if (kind == 20) convertStep(in);
        else if (op & 1) step(binaryBank(), in, kind);
        else step(decimalBank(), in, kind);
        for (std::size_t i = 0; i < kSlots; ++i) spent += bitsOf(decimalBank().v[i]) + bitsOf(binaryBank().v[i]);
    }
    for (std::size_t i = 0; i < kSlots; ++i) {
        decimalBank().expect(i, "a decimal number at the end");
        binaryBank().expect(i, "a binary number at the end");
    }
    return 0;
}
