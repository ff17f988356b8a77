/* A C99 program that sees only tarnwick.h and the shared library: creates,
 * sets, compares, reads back and deletes numbers of both families, and checks
 * the -4 of unknown handles, a handle of the wrong family and a double delete.
 * Exits non-zero on the first mismatch. */
#include <stdint.h>
#include <stdio.h>

#include "tarnwick.h"

static int failures = 0;

#define CHECK(cond)                                                   \
    do {                                                              \
        if (!(cond)) {                                                \
            fprintf(stderr, "%s:%d: failed: %s\n", __FILE__, __LINE__, #cond); \
            ++failures;                                               \
        }                                                             \
    } while (0)

static void expectError(int32_t code) {
    CHECK(TW_getLastError() == code);
    CHECK(TW_isTerminated() == (code != 0));
    TW_setTerminate(0);
}

int main(void) {
    HI_handle a = HI_new(), b = HI_new();
    HX_handle x = HX_new(), y = HX_new();
    CHECK(a && b && x && y);
    CHECK(HI_getCount() >= 2 && HX_getCount() >= 2);

    CHECK(HI_set_u64(a, UINT64_MAX) == a);
    CHECK(HI_get_u64(a) == UINT64_MAX);
    CHECK(HI_set_s64(b, INT64_MIN) == b);
    CHECK(HI_get_s64(b) == INT64_MIN);
    CHECK(HI_compare_hi(a, b) == 1 && HI_compare_hi(b, a) == -1);
    CHECK(HI_compareAbs_hi(a, b) == 1);
    CHECK(HI_getDigits(a) == 20 && HI_getBits(a) == 64);

    CHECK(HX_set_u32(x, 0xFFFFFFFFu) == x);
    CHECK(HX_get_u32(x) == 0xFFFFFFFFu && HX_getBits(x) == 32 && HX_getDigits(x) == 10);
    CHECK(HX_set_s32(y, -7) == y);
    CHECK(HX_compare_hx(x, y) == 1 && HX_compare_s32(y, -7) == 0);
    expectError(0);

    /* Unknown handles: null result, -4, the flag raised; first error wins. */
    CHECK(HI_set_u32(NULL, 1) == NULL);
    expectError(TW_ERR_HANDLE);
    CHECK(HI_get_u32((HI_handle)x) == 0); /* an HX_ handle is unknown to HI_ */
    expectError(TW_ERR_HANDLE);
    CHECK(HX_isZero((HX_handle)a) == 1);
    expectError(TW_ERR_HANDLE);

    CHECK(HI_delete(b) == 1);
    CHECK(HI_delete(b) == 0); /* double delete */
    expectError(TW_ERR_HANDLE);
    CHECK(HI_get_s64(b) == 0);
    expectError(TW_ERR_HANDLE);
    CHECK(HI_delete(NULL) == 1);
    expectError(0);

    CHECK(HI_delete(a) == 1 && HX_delete(x) == 1 && HX_delete(y) == 1);
    if (failures == 0) printf("C interface: all checks passed\n");
    return failures == 0 ? 0 : 1;
}
