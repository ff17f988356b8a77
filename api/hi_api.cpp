// Exported functions of the HI_ family: integers in limbs of radix 10^9.
#define FAMILY_HANDLE HI_handle
#define FAMILY_FN(name) HI_##name
#define FAMILY_OWN(name) HI_##name##_hi
#define FAMILY_VECTOR(name) HI_##name##_vhi
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

TW_API HI_handle TW_CALL HI_set_hx(HI_handle r, HX_handle a) {
    return tw::frameUpdate([](Number& x, const tw::BinaryNumber& y) { tw::setFromOtherRadix(x, y); }, r, a);
}
TW_API uint32_t TW_CALL HI_getTailDecZeros(HI_handle h) {
    return tw::frameQuery(0u, [](const Number& x) { return tw::trailingDecimalZeros(x); }, h);
}
TW_API HI_handle TW_CALL HI_decLShift(HI_handle x, uint32_t k) {
    return tw::frameUpdate([k](Number& v) { tw::arith::decimalShiftLeft(v, k); }, x);
}
TW_API HI_handle TW_CALL HI_decRShift(HI_handle x, uint32_t k) {
    return tw::frameUpdate([k](Number& v) { tw::arith::decimalShiftRight(v, k); }, x);
}
TW_API HI_handle TW_CALL HI_modPowTen(HI_handle h, uint32_t n) {
    return tw::frameUpdate([n](Number& v) { tw::numtheory::keepLowDecimalDigits(v, n); }, h);
}

}  // extern "C"
