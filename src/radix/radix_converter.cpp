#include "radix/radix_converter.h"

#include <algorithm>
#include <climits>
#include <exception>

#include "frame/error_state.h"
#include "frame/machine_int.h"
#include "arith/convert/chunk_radix.h"
#include "arith/convert/digit_conversion.h"
#include "text/text_input.h"

namespace tw {

namespace {

bool valueIsZero(const Digits& d) {
    return std::all_of(d.rbegin(), d.rend(), [](std::uint32_t x) { return x == 0; });
}

// The integer type a conversion from `fromRadix` to `toRadix` passes through:
// binary for a power of two, decimal for a divisor of 10^9, else decimal
// unless the digits come from a power of two.  Each of those ends makes the
// conversion a regrouping, or a chunk that divides the limb radix.
bool throughBinary(std::uint32_t toRadix, std::uint32_t fromRadix) {
    const std::uint64_t to = convert::radixValue(toRadix);
    if (convert::powerOfTwoExponent(to) != 0) return true;
    if (DecimalRadix::base % to == 0) return false;
    return convert::powerOfTwoExponent(convert::radixValue(fromRadix)) != 0;
}

// Calls op on a fresh number of the chosen type.
template <class Op>
void withTemporary(bool binary, Op&& op) {
    if (binary) {
        BinaryNumber t;
        op(t);
    } else {
        DecimalNumber t;
        op(t);
    }
}

}  // namespace

RC_handle createConverter(std::uint32_t radix) {
    if (radix == 1) {
        setLastError(kErrRadix);
        return nullptr;
    }
    RC_handle h = createHandle<RC_handle, RadixConverter>();
    if (RadixConverter* c = Family<RC_handle>::find(h)) {
        c->radix = radix;
        c->sign = 1;
        try {
            c->digitList = std::make_unique<Digits>();
        } catch (const std::exception&) {
            deleteConverter(h);
            setLastError(kErrTooLarge);
            return nullptr;
        }
    }
    return h;
}

std::uint32_t deleteConverter(RC_handle h) { return deleteHandle(h); }

std::int32_t readSign(RadixConverter& c) {
    if (valueIsZero(*c.digitList)) c.sign = 0;
    return c.sign;
}

void clearConverter(RadixConverter& c) {
    c.digitList->clear();
    c.sign = 0;
}

std::int32_t resetDigits(RadixConverter& c, const std::uint32_t* digits, std::uint32_t count) {
    if (c.radix != 0 && std::any_of(digits, digits + count, [&](std::uint32_t d) { return d >= c.radix; })) {
        setLastError(kErrRadix);
        return kErrRadix;
    }
    c.digitList->assign(digits, digits + count);
    return std::int32_t(std::min<std::uint32_t>(count, INT32_MAX));
}

std::uint32_t resetRadix(RadixConverter& c, std::uint32_t radix) {
    if (radix == 1)
        setLastError(kErrRadix);
    else
        c.radix = radix;
    return c.radix;
}

template <class R>
void numberFromConverter(SignedNumber<R>& x, RadixConverter& c) {
    const std::int32_t sign = readSign(c);
    setFromDigits<R>(x.rec(), c.radix, c.digitList->data(), c.digitList->size());
    x.sign = sign < 0 ? -1 : 1;
    x.normalizeSign();
}

template <class R>
void converterFromNumber(RadixConverter& c, const SignedNumber<R>& x) {
    *c.digitList = toDigits<R>(x.rec(), c.radix);
    c.sign = c.digitList->empty() ? 0 : x.sign;
}

bool convertToRadix(RadixConverter& c, std::uint32_t newRadix) {
    if (newRadix == 1) {
        setLastError(kErrRadix);
        return false;
    }
    if (newRadix == c.radix) return true;
    withTemporary(throughBinary(newRadix, c.radix), [&](auto& t) {
        numberFromConverter(t, c);
        c.radix = newRadix;
        converterFromNumber(c, t);
    });
    return true;
}

void setFromConverter(RadixConverter& c, RadixConverter& source) {
    withTemporary(throughBinary(c.radix, source.radix), [&](auto& t) {
        numberFromConverter(t, source);
        converterFromNumber(c, t);
    });
}

void setFromMachineValue(RadixConverter& c, std::int32_t sign, std::uint64_t magnitude) {
    BinaryNumber t;
    setMagnitude64(t, sign, magnitude);
    converterFromNumber(c, t);
}

template <class Char>
void setFromText(RadixConverter& c, const Char* text) {
    withTemporary(convert::powerOfTwoExponent(convert::radixValue(c.radix)) != 0, [&](auto& t) {
        text::parseDecimalOrHexText(t, text);
        converterFromNumber(c, t);
    });
}

MachineValue machineValue(RadixConverter& c) {
    const std::int32_t sign = readSign(c);
    const Digits& d = *c.digitList;
    const std::uint64_t radix = convert::radixValue(c.radix);
    u128 v = 0;
    for (std::size_t i = d.size(); i-- > 0;) {
        v = v * radix + d[i];
        if (v > UINT64_MAX) return {false, sign, 0};
    }
    return {true, sign, std::uint64_t(v)};
}

std::uint64_t sumOfDigits(const RadixConverter& c) {
    const Digits& d = *c.digitList;
    std::size_t count = d.size();
    while (count > 0 && d[count - 1] == 0) --count;
    const std::uint64_t largestDigit = std::uint32_t(c.radix - 1);
    if (u128(largestDigit) * count > UINT32_MAX) {
        std::uint64_t sum = 0;
        for (std::size_t i = 0; i < count; ++i) sum += d[i];
        return sum;
    }
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < count; ++i) sum += d[i];
    return sum;
}

template void numberFromConverter<DecimalRadix>(DecimalNumber&, RadixConverter&);
template void numberFromConverter<BinaryRadix>(BinaryNumber&, RadixConverter&);
template void converterFromNumber<DecimalRadix>(RadixConverter&, const DecimalNumber&);
template void converterFromNumber<BinaryRadix>(RadixConverter&, const BinaryNumber&);
template void setFromText<char>(RadixConverter&, const char*);
template void setFromText<char16_t>(RadixConverter&, const char16_t*);

}  // namespace tw
