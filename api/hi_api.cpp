// Exported functions of the HI_ family: integers in limbs of radix 10^9.
#define FAMILY_HANDLE HI_handle
#define FAMILY_FN(name) HI_##name
#define FAMILY_OWN(name) HI_##name##_hi
#include "api/integer_family.inc"

extern "C" {

TW_API uint32_t TW_CALL HI_getTailDecZeros(HI_handle h) {
    return tw::queryNumbers(0u, [](const Number& x) { return tw::trailingDecimalZeros(x); }, h);
}

}  // extern "C"
