// Exported functions of the HX_ family: integers in limbs of radix 2^28.
#define FAMILY_HANDLE HX_handle
#define FAMILY_FN(name) HX_##name
#define FAMILY_OWN(name) HX_##name##_hx
#include "api/integer_family.inc"
#include "api/integer_conversion.inc"
#include "api/integer_text.inc"
