// Exported functions of the HX_ family: integers in limbs of radix 2^28.
#define FAMILY_HANDLE HX_handle
#define FAMILY_FN(name) HX_##name
#define FAMILY_OWN(name) HX_##name##_hx
#define FAMILY_VECTOR(name) HX_##name##_vhx
#include "api/integer_family.inc"
#include "api/integer_conversion.inc"
#include "api/integer_text.inc"
#include "api/integer_numtheory.inc"
#include "api/integer_modular.inc"
#include "api/integer_roots.inc"
#include "api/integer_primes.inc"
#include "api/integer_combinatorics.inc"
#include "binary/number_conversion.h"

extern "C" {

TW_API HX_handle TW_CALL HX_set_hi(HX_handle r, HI_handle a) {
    return tw::frameUpdate([](Number& x, const tw::DecimalNumber& y) { tw::setFromOtherRadix(x, y); }, r, a);
}

}  // extern "C"

// ---- packed text: the magnitude as radix 2^8 (A) or 2^16 (W) characters ----
#include "text/packed_text.h"
#include "text/wide_units.h"

extern "C" {

TW_API const char *TW_CALL HX_getTextA(HX_handle h) {
    return tw::frameQuery<const char *>(nullptr, [](Number& x) { return tw::text::packedText<char>(x); }, h);
}
TW_API const tw_wchar *TW_CALL HX_getTextW(HX_handle h) {
    return tw::text::toWide(
        tw::frameQuery<const char16_t *>(nullptr, [](Number& x) { return tw::text::packedText<char16_t>(x); }, h));
}
TW_API HX_handle TW_CALL HX_setTextA(HX_handle h, const char *text) {
    return tw::frameUpdate([text](Number& x) { tw::text::setFromPackedText(x, text); }, h);
}
TW_API HX_handle TW_CALL HX_setTextW(HX_handle h, const tw_wchar *text) {
    const char16_t *units = tw::text::fromWide(text);
    return tw::frameUpdate([units](Number& x) { tw::text::setFromPackedText(x, units); }, h);
}

}  // extern "C"

// ---- bits of the magnitude: the operations only the binary type has ----
#include "binary/binary_bits.h"

extern "C" {

TW_API uint32_t TW_CALL HX_isBitOne(HX_handle h, uint32_t k) {
    return tw::frameQuery(0u, [k](const Number& x) { return tw::magnitudeBit(x, k); }, h);
}
TW_API uint32_t TW_CALL HX_getTailBitZeros(HX_handle h) {
    return tw::frameQuery(0u, [](const Number& x) { return tw::trailingZeroBits(x); }, h);
}
TW_API HX_handle TW_CALL HX_modPowTwo(HX_handle h, uint32_t k) {
    return tw::frameUpdate([k](Number& x) { tw::keepLowBits(x, k); }, h);
}

}  // extern "C"
