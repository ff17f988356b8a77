#include "text/number_text.h"

#include <type_traits>

#include "frame/error_state.h"
#include "arith/convert/digit_conversion.h"
#include "text/decimal_output.h"
#include "text/hex_output.h"
#include "text/radix_output.h"
#include "text/text_buffer.h"

namespace tw::text {

namespace {

// Calls write(magnitude) with the magnitude of x in limbs of radix To,
// converting into a temporary when x has the other radix.  No text when the
// conversion was stopped.
template <class To, class Char, class R, class Write>
TextView<Char> withMagnitudeIn(SignedNumber<R>& x, Write&& write) {
    if constexpr (std::is_same_v<R, To>) {
        return write(x.rec());
    } else {
        NumberRecord converted;
        setFromDigits<To>(converted, R::base, x.limbs(), x.rec().topIndex + 1);
        if (terminateRequested()) return stoppedText<Char>(x.rec());
        return write(converted);
    }
}

template <class Char, class R>
TextView<Char> decimalText(SignedNumber<R>& x, unsigned flags, std::uint32_t* digitCount) {
    return withMagnitudeIn<DecimalRadix, Char>(x, [&](const NumberRecord& value) {
        if (digitCount) *digitCount = decimalDigits(value);
        return writeDecimalText<Char>(x.rec(), value, x.sign, flags);
    });
}

template <class Char, class R>
TextView<Char> hexDigitText(SignedNumber<R>& x, unsigned flags, bool withPrefix, std::uint32_t* digitCount) {
    return withMagnitudeIn<BinaryRadix, Char>(x, [&](const NumberRecord& value) {
        if (digitCount) *digitCount = hexDigits(value);
        return writeHexText<Char>(x.rec(), value, x.sign, flags, withPrefix);
    });
}

// Common entry: no text while stopped, "0" for zero.
template <class Char, class R>
bool answeredEarly(SignedNumber<R>& x, TextView<Char>& text, std::uint32_t* digitCount) {
    if (terminateRequested()) {
        text = stoppedText<Char>(x.rec());
        return true;
    }
    if (x.isZero()) {
        if (digitCount) *digitCount = 1;
        text = zeroText<Char>(x.rec());
        return true;
    }
    return false;
}

}  // namespace

template <class Char, class R>
TextView<Char> naturalText(SignedNumber<R>& x, unsigned flags) {
    TextView<Char> text;
    if (answeredEarly(x, text, nullptr)) return text;
    if constexpr (R::isBinary)
        return hexDigitText<Char>(x, flags, true, nullptr);
    else
        return decimalText<Char>(x, flags, nullptr);
}

template <class Char, class R>
TextView<Char> hexText(SignedNumber<R>& x, unsigned flags) {
    TextView<Char> text;
    if (answeredEarly(x, text, nullptr)) return text;
    return hexDigitText<Char>(x, flags, !R::isBinary, nullptr);
}

template <class Char, class R>
TextView<Char> radixText(SignedNumber<R>& x, std::uint32_t radix, unsigned flags, std::uint32_t groupLength,
                         std::uint32_t* digitCount) {
    if (radix == 1) {
        setLastError(kErrRadix);
        return {};
    }
    TextView<Char> text;
    if (answeredEarly(x, text, digitCount)) return text;
    const bool grouped = grouping(flags);
    if (radix == 10 && (!grouped || groupLength == 0 || groupLength == 3))
        return decimalText<Char>(x, flags, digitCount);
    if (radix == 16 && (!grouped || groupLength == 0 || groupLength == 4))
        return hexDigitText<Char>(x, flags, true, digitCount);

    const std::vector<std::uint32_t> digits = toDigits<R>(x.rec(), radix);
    if (terminateRequested() || digits.empty()) return stoppedText<Char>(x.rec());
    TextView<Char> written = (radix == 0 || radix > 62)
                                 ? writeBracketedText<Char>(x.rec(), digits, radix, x.sign, flags)
                                 : writeRadixText<Char>(x.rec(), digits, radix, x.sign, flags, groupLength);
    if (written.data() && digitCount) *digitCount = std::uint32_t(digits.size());
    return written;
}

#define TW_NUMBER_TEXT_FOR(Char, R)                                                                             \
    template TextView<Char> naturalText<Char, R>(SignedNumber<R>&, unsigned);                                  \
    template TextView<Char> hexText<Char, R>(SignedNumber<R>&, unsigned);                                      \
    template TextView<Char> radixText<Char, R>(SignedNumber<R>&, std::uint32_t, unsigned, std::uint32_t,       \
                                               std::uint32_t*);
TW_NUMBER_TEXT_FOR(char, DecimalRadix)
TW_NUMBER_TEXT_FOR(char, BinaryRadix)
TW_NUMBER_TEXT_FOR(char16_t, DecimalRadix)
TW_NUMBER_TEXT_FOR(char16_t, BinaryRadix)
#undef TW_NUMBER_TEXT_FOR

}  // namespace tw::text
