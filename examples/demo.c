/* A first look at the library: big numbers from machine integers, compared
 * and read back, in both integer types. */
#include <inttypes.h>
#include <stdio.h>

#include "tarnwick.h"

int main(void) {
    HI_handle a = HI_new();
    HI_handle b = HI_new();
    HX_handle x = HX_new();

    HI_set_u64(a, UINT64_MAX);
    HI_set_s64(b, INT64_MIN);
    HX_set_u32(x, 0xFFFFFFFFu);

    printf("a = %" PRIu64 " (%" PRIu32 " digits, %" PRIu32 " bits)\n", HI_get_u64(a), HI_getDigits(a), HI_getBits(a));
    printf("b = %" PRId64 " (sign %" PRId32 ")\n", HI_get_s64(b), HI_getSign(b));
    printf("compare(a, b) = %" PRId32 ", compareAbs(a, b) = %" PRId32 "\n", HI_compare_hi(a, b), HI_compareAbs_hi(a, b));
    printf("x = %" PRIu32 " in radix 2^28 (%" PRIu32 " bits, %" PRIu32 " digits)\n", HX_get_u32(x), HX_getBits(x), HX_getDigits(x));

    /* A handle of the other family is unknown here: error -4 and a null result. */
    if (HI_set_u32((HI_handle)x, 1) == NULL)
        printf("wrong family: error %" PRId32 "\n", TW_getLastError());
    TW_setTerminate(0);

    HI_delete(a);
    HI_delete(b);
    HX_delete(x);
    return 0;
}
