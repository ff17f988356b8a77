#include "text/text_input.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string>
#include <type_traits>

#include "frame/error_state.h"
#include "arith/convert/digit_conversion.h"
#include "text/text_buffer.h"

namespace tw::text {

namespace {

// Digits of one base and the limb radix they fill exactly: nine decimal digits
// make a limb of 10^9, seven hexadecimal digits a limb of 2^28.
struct DecimalDigits {
    using Radix = DecimalRadix;
    static constexpr unsigned base = 10;
    static constexpr unsigned perLimb = 9;
    static constexpr Limb weight(unsigned k) { return kPowersOfTen[k]; }
};
struct HexDigits {
    using Radix = BinaryRadix;
    static constexpr unsigned base = 16;
    static constexpr unsigned perLimb = 7;
    static constexpr Limb weight(unsigned k) { return Limb(1) << (4 * k); }
};

constexpr unsigned kNotADigit = 255;

constexpr std::array<std::uint8_t, 256> kDigitValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(kNotADigit);
    for (unsigned c = 0; c < 10; ++c) values['0' + c] = std::uint8_t(c);
    for (unsigned c = 0; c < 6; ++c) values['A' + c] = values['a' + c] = std::uint8_t(10 + c);
    return values;
}();

// The value of a code unit as a digit of base up to 16, kNotADigit otherwise.
template <class Char>
unsigned digitValue(Char c) {
    const auto unit = static_cast<std::make_unsigned_t<Char>>(c);
    return unit < 256 ? kDigitValues[unit] : kNotADigit;
}

// Eight ASCII digits s[0..8), most significant first, read with a few word
// operations; false when one of them is not a digit.
inline bool readEightDigits(const char* s, std::uint32_t& value) {
    std::uint64_t v;
    std::memcpy(&v, s, 8);
    constexpr std::uint64_t highNibbles = 0xF0F0F0F0F0F0F0F0ull;
    constexpr std::uint64_t zeros = 0x3030303030303030ull;
    if ((v & highNibbles) != zeros || ((v + 0x0606060606060606ull) & highNibbles) != zeros) return false;
    v -= zeros;
    v = v * 10 + (v >> 8);  // pairs of digits in every other byte
    v = ((v & 0x000000FF000000FFull) * (100 + (1000000ull << 32)) +
         ((v >> 16) & 0x000000FF000000FFull) * (1 + (10000ull << 32))) >> 32;
    value = std::uint32_t(v);
    return true;
}

// One whole limb of plain digits s[0..perLimb), most significant first: the
// fast path for decimal 8-bit text without separators.
template <class Digits, class Char>
bool readWholeLimb(const Char* s, Limb& limb) {
    if constexpr (std::is_same_v<Char, char> && Digits::base == 10 && std::endian::native == std::endian::little) {
        std::uint32_t low;
        const unsigned first = digitValue(s[0]);
        if (first >= 10 || !readEightDigits(s + 1, low)) return false;
        limb = first * 100000000u + low;
        return true;
    } else {
        return false;
    }
}

// out := the digits of [first, last) in limbs of Digits::Radix, walking back
// from the end; characters that are not digits are skipped.  Linear.
template <class Digits, class Char>
void readDigits(NumberRecord& out, const Char* first, const Char* last) {
    constexpr unsigned perLimb = Digits::perLimb;
    const std::size_t limbCount = std::size_t(last - first) / perLimb + 1;
    resizeStorage(out, std::uint32_t(limbCount), true);
    if (out.allocated() < limbCount) return;  // -3 recorded, the record is zero
    Limb* limb = out.digits;
    const Char* p = last;
    while (p != first) {
        if (std::size_t(p - first) >= perLimb && readWholeLimb<Digits>(p - perLimb, *limb)) {
            p -= perLimb;
            ++limb;
            continue;
        }
        Limb value = 0;
        for (unsigned k = 0; k < perLimb && p != first;) {
            const unsigned digit = digitValue(*--p);
            if (digit < Digits::base) value += digit * Digits::weight(k++);
        }
        *limb++ = value;
    }
    normalizeIndices(out, std::max<std::uint32_t>(1, std::uint32_t(limb - out.digits)));
}

// Where the significant digits of a text start and end, its sign and base.
template <class Char>
struct DigitRun {
    const Char* first = nullptr;
    const Char* last = nullptr;
    bool negative = false;
    bool hex = false;
};

template <class Char>
DigitRun<Char> locateDigits(const Char* text, bool hexOnly) {
    DigitRun<Char> run;
    run.hex = hexOnly;
    if (text == nullptr) return run;
    const Char* p = text;
    while (*p == ' ' || *p == '\t' || *p == '\r' || *p == '\n') ++p;
    if (*p == '-') {
        run.negative = true;
        ++p;
    }
    bool afterZero = false;
    bool switched = hexOnly;
    for (; *p != 0; ++p) {
        const unsigned digit = digitValue(*p);
        if (digit == 0) {
            afterZero = true;
            continue;
        }
        if (digit < (run.hex ? 16u : 10u)) break;
        if (afterZero && !switched && (*p == 'x' || *p == 'X')) run.hex = switched = true;
        afterZero = false;
    }
    run.first = p;
    run.last = p + std::char_traits<Char>::length(p);
    return run;
}

// rec := the digits of [first, last), converted when R is not the digits' own radix.
template <class Digits, class R, class Char>
void readInto(NumberRecord& rec, const Char* first, const Char* last) {
    using Natural = typename Digits::Radix;
    if constexpr (std::is_same_v<R, Natural>) {
        readDigits<Digits>(rec, first, last);
    } else {
        NumberRecord natural;
        readDigits<Digits>(natural, first, last);
        setFromDigits<R>(rec, Natural::base, natural.digits, natural.topIndex + 1);
        if (terminateRequested()) setRecordZero(rec);
    }
}

// x := the run's value; x's text buffers are already detached.
template <class R, class Char>
void readRun(SignedNumber<R>& x, const DigitRun<Char>& run) {
    if (run.first == run.last) {
        x.setZero();
        return;
    }
    if (run.hex)
        readInto<HexDigits, R>(x.rec(), run.first, run.last);
    else
        readInto<DecimalDigits, R>(x.rec(), run.first, run.last);
    x.sign = run.negative ? -1 : 1;
    x.normalizeSign();
}

}  // namespace

template <class R, class Char>
void parseDecimalOrHexText(SignedNumber<R>& x, const Char* text) {
    const DetachedTextBuffers ownText(x.rec());
    readRun(x, locateDigits(text, false));
}

template <class R, class Char>
void parseHexText(SignedNumber<R>& x, const Char* text) {
    const DetachedTextBuffers ownText(x.rec());
    readRun(x, locateDigits(text, true));
}

#define TW_TEXT_INPUT_FOR(R, Char)                                                   \
    template void parseDecimalOrHexText<R, Char>(SignedNumber<R>&, const Char*);   \
    template void parseHexText<R, Char>(SignedNumber<R>&, const Char*);
TW_TEXT_INPUT_FOR(DecimalRadix, char)
TW_TEXT_INPUT_FOR(DecimalRadix, char16_t)
TW_TEXT_INPUT_FOR(BinaryRadix, char)
TW_TEXT_INPUT_FOR(BinaryRadix, char16_t)
#undef TW_TEXT_INPUT_FOR

}  // namespace tw::text
