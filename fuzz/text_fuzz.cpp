// Text input of both types against a model of the reading rules written
// here from scratch: the 8-bit and 16-bit readers of HI_ and HX_, the
// hexadecimal readers, and the radix converter's reader, on the same text.
//
// Input: one byte of mode (bit 0: the 16-bit text is the bytes taken in
// pairs instead of widened, so code units above 255 occur; bits 1-7: the
// converter's radix), then the text, which ends at its first zero byte.
#include <vector>

#include "fuzz_support.h"

using namespace twfuzz;

namespace {

bool isSpace(unsigned u) { return u == ' ' || u == '\t' || u == '\r' || u == '\n'; }
bool isDecimal(unsigned u) { return u >= '0' && u <= '9'; }
bool isHex(unsigned u) { return isDecimal(u) || (u >= 'a' && u <= 'f') || (u >= 'A' && u <= 'F'); }

// What a reader should make of a text: its sign, radix and the digits that count.
struct Reading {
    bool negative = false, hex = false;
    std::string digits;

    void value(mpz_ptr out) const {
        if (digits.empty()) mpz_set_ui(out, 0);
        else mpz_set_str(out, digits.c_str(), hex ? 16 : 10);
        if (negative) mpz_neg(out, out);
    }
};

// Leading white space, then one '-' or none; "0x" after a zero before the
// first significant digit switches to hexadecimal once; from the first
// significant digit on every digit counts and everything else is skipped.
template <class U>
Reading readNumber(const U* text) {
    Reading r;
    std::size_t i = 0;
    while (isSpace(text[i])) ++i;
    if (text[i] == '-') r.negative = true, ++i;
    bool afterZero = false;
    for (; text[i]; ++i) {
        const unsigned u = text[i];
        if (u == '0') {
            afterZero = true;
            continue;
        }
        if (!r.hex && afterZero && (u == 'x' || u == 'X')) {
            r.hex = true;
            afterZero = false;
            continue;
        }
        if (r.hex ? isHex(u) : isDecimal(u)) break;
        afterZero = false;
    }
    for (; text[i]; ++i)
        if (r.hex ? isHex(text[i]) : isDecimal(text[i])) r.digits += char(text[i]);
    return r;
}

// The hexadecimal readers: white space, one '-', then every hexadecimal digit.
template <class U>
Reading readHex(const U* text) {
    Reading r;
    r.hex = true;
    std::size_t i = 0;
    while (isSpace(text[i])) ++i;
    if (text[i] == '-') r.negative = true, ++i;
    for (; text[i]; ++i)
        if (isHex(text[i])) r.digits += char(text[i]);
    return r;
}

std::uint32_t converterRadix(std::uint8_t mode) {
    const unsigned pick = mode >> 1;  // 0..127
    if (pick < 61) return 2 + pick;   // 2..62
    if (pick < 64) return 0;          // 2^32
    return 63 + (pick - 64) * 997;    // bracketed digits up to about 62 000
}

// The value a converter holds, from its digit vector.
void converterValue(RC_handle rc, mpz_ptr out) {
    DigitVectorView view{};
    RC_getVector(rc, &view);
    const std::uint32_t radix = RC_getRadix(rc);
    mpz_set_ui(out, 0);
    for (std::uint32_t i = view.size; i-- > 0;) {
        check(radix == 0 || view.data[i] < radix, "converter digit below its radix");
        if (radix == 0) mpz_mul_2exp(out, out, 32);
        else mpz_mul_ui(out, out, radix);
        mpz_add_ui(out, out, view.data[i]);
    }
    if (RC_getSign(rc) < 0) mpz_neg(out, out);
}

struct Numbers {
    HI_handle hi = HI_new();
    HX_handle hx = HX_new();
};

// Every reader of one width on the same text, against the two models.
template <class U>
void readAll(const Numbers& n, const U* text, std::uint32_t radix, bool wide) {
    Mpz want, got;
    readNumber(text).value(want);
    if constexpr (sizeof(U) == 1) {
        const char* t = reinterpret_cast<const char*>(text);
        HI_set_strA(n.hi, t), expectValue<Hi>(n.hi, want, "HI_set_strA");
        HX_set_strA(n.hx, t), expectValue<Hx>(n.hx, want, "HX_set_strA");
    } else {
        const tw_wchar* t = reinterpret_cast<const tw_wchar*>(text);
        HI_set_strW(n.hi, t), expectValue<Hi>(n.hi, want, "HI_set_strW");
        HX_set_strW(n.hx, t), expectValue<Hx>(n.hx, want, "HX_set_strW");
    }
    expectError(0, "reading text records no error");
    // The converter reads as HI_set_str does; its digits are checked for
    // short texts only (rebuilding the value from them is quadratic here).
    RC_handle rc = sizeof(U) == 1 ? RC_new_strA(radix, reinterpret_cast<const char*>(text))
                                  : RC_new_strW(radix, reinterpret_cast<const tw_wchar*>(text));
    check(rc != nullptr, "RC_new_str gives a converter");
    HI_set_rc(n.hi, rc), expectValue<Hi>(n.hi, want, wide ? "RC_new_strW" : "RC_new_strA");
    check(RC_getSign(rc) == mpz_sgn(want), "converter sign");
    if (mpz_sizeinbase(want, 2) < 4000) {
        converterValue(rc, got);
        if (mpz_cmp(got, want) != 0) fail("RC_new_str digits", got.str(10), want.str(10));
    }
    RC_delete(rc);

    readHex(text).value(want);
    if constexpr (sizeof(U) == 1) {
        const char* t = reinterpret_cast<const char*>(text);
        HI_setHexStrA(n.hi, t), expectValue<Hi>(n.hi, want, "HI_setHexStrA");
        HX_setHexStrA(n.hx, t), expectValue<Hx>(n.hx, want, "HX_setHexStrA");
    } else {
        const tw_wchar* t = reinterpret_cast<const tw_wchar*>(text);
        HI_setHexStrW(n.hi, t), expectValue<Hi>(n.hi, want, "HI_setHexStrW");
        HX_setHexStrW(n.hx, t), expectValue<Hx>(n.hx, want, "HX_setHexStrW");
    }
    expectError(0, "reading hexadecimal text records no error");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    static const Numbers numbers;
    const std::uint8_t mode = data[0];
    const std::uint32_t radix = converterRadix(mode);
    ++data, --size;

    // Exact buffers, so that a reader that runs past the terminator meets the sanitizer.
    std::vector<std::uint8_t> narrow(data, data + size);
    narrow.push_back(0);
    readAll(numbers, narrow.data(), radix, false);

    std::vector<std::uint16_t> wide;
    if (mode & 1) {
        for (std::size_t i = 0; i + 1 < size; i += 2) wide.push_back(std::uint16_t(data[i] | data[i + 1] << 8));
    } else {
        wide.assign(data, data + size);
    }
    wide.push_back(0);
    readAll(numbers, wide.data(), radix, true);
    return 0;
}
