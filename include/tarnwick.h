/*
 * Tarnwick: arithmetic on integers of unbounded size.
 *
 * Numbers are opaque handles created with HI_new / HX_new / RC_new and released
 * with the matching *_delete.  HI_ numbers keep their magnitude in limbs of
 * radix 10^9, HX_ numbers in limbs of radix 2^28; RC_ converters hold a digit
 * vector in any radix from 2 to 2^32.  Functions that change a number return
 * their first handle on success and a null handle on failure; the reason is
 * read with TW_getLastError.  TW_setTerminate(0) clears the error state.
 *
 * This header is valid C99 and C++.
 */
#ifndef TARNWICK_H
#define TARNWICK_H

#include <stdint.h>

#if defined(_WIN32)
#  if defined(TARNWICK_BUILDING)
#    define TW_API __declspec(dllexport)
#  elif defined(TARNWICK_STATIC)
#    define TW_API
#  else
#    define TW_API __declspec(dllimport)
#  endif
#  if defined(_M_IX86) || defined(__i386__)
#    define TW_CALL __stdcall
#  else
#    define TW_CALL
#  endif
#else
#  if defined(__GNUC__) || defined(__clang__)
#    define TW_API __attribute__((visibility("default")))
#  else
#    define TW_API
#  endif
#  define TW_CALL
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef struct HI_number_ *HI_handle;
typedef struct HX_number_ *HX_handle;
typedef struct RC_converter_ *RC_handle;

#if defined(_WIN32)
typedef wchar_t tw_wchar;
#else
typedef uint16_t tw_wchar;
#endif

typedef struct DigitVectorView {
    uint32_t *data;
    uint32_t size;
} DigitVectorView;

/* Text flags (may be combined). */
#define TEXT_GROUP           0x01
#define TEXT_SPACE_SEPARATOR 0x02
#define TEXT_PLUS_SIGN       0x04
#define TEXT_SIGN_SPACE      0x08
#define TEXT_LOWER_CASE      0x10

/* Error codes returned by TW_getLastError. */
#define TW_ERR_NONE       0
#define TW_ERR_STOPPED   (-2)
#define TW_ERR_TOO_LARGE (-3)
#define TW_ERR_HANDLE    (-4)
#define TW_ERR_DIV_ZERO  (-5)
#define TW_ERR_LOG       (-6)
#define TW_ERR_RADIX     (-7)

/* ---- TW_: library-wide services ---- */
TW_API int32_t TW_CALL TW_getLastError(void);
TW_API uint32_t TW_CALL TW_isTerminated(void);
TW_API void TW_CALL TW_setTerminate(uint32_t flag);
TW_API void TW_CALL TW_enableTimer(uint32_t on);
TW_API void TW_CALL TW_resetTimer(uint32_t value, int32_t unit);
TW_API uint64_t TW_CALL TW_getTimer(int32_t unit);
TW_API const char *TW_CALL TW_getTimerStrA(int32_t format);
TW_API const tw_wchar *TW_CALL TW_getTimerStrW(int32_t format);
TW_API void TW_CALL TW_seedRandom(uint32_t seed);
TW_API const char *TW_CALL TW_getVerA(void);
TW_API const tw_wchar *TW_CALL TW_getVerW(void);
TW_API uint32_t TW_CALL TW_getExportFunNums(uint32_t mask);
TW_API uint32_t TW_CALL TW_gcd(uint32_t a, uint32_t b);
TW_API uint64_t TW_CALL TW_lcm(uint32_t a, uint32_t b);
TW_API uint32_t TW_CALL TW_gcdEx(int32_t *x, int32_t *y, int32_t a, int32_t b);
TW_API uint32_t TW_CALL TW_gcd_v32(const uint32_t *values, uint32_t count);
TW_API uint32_t TW_CALL TW_powMod(uint32_t base, int32_t exponent, uint32_t modulus);
TW_API uint32_t TW_CALL TW_invertMod(uint32_t a, uint32_t modulus);
TW_API uint32_t TW_CALL TW_isPrime(uint32_t n);
TW_API int32_t TW_CALL TW_nextPrime(int32_t n);
TW_API int32_t TW_CALL TW_previousPrime(int32_t n);
TW_API uint32_t TW_CALL TW_getPrime(uint32_t k);
TW_API uint32_t TW_CALL TW_getPrimePi(uint32_t n);
TW_API uint32_t TW_CALL TW_getPrimeCount(uint32_t low, uint32_t high);
TW_API uint32_t TW_CALL TW_getPrimeList(uint32_t *out, uint32_t low, uint32_t high, uint32_t maxCount);

/*
 * The two integer families share every operation.  TW_INTEGER_FAMILY(P, H, S)
 * declares one family: P is the prefix (HI/HX), H its handle type and S the
 * suffix naming its own handles in _S / _vS functions.
 */
#define TW_FN(P, name) P##_##name
#define TW_INTEGER_FAMILY(P, H, S)                                                                   \
    TW_API H TW_CALL TW_FN(P, new)(void);                                                            \
    TW_API uint32_t TW_CALL TW_FN(P, delete)(H h);                                                   \
    TW_API int32_t TW_CALL TW_FN(P, getCount)(void);                                                 \
    TW_API H TW_CALL TW_FN(P, set_u32)(H h, uint32_t v);                                             \
    TW_API H TW_CALL TW_FN(P, set_s32)(H h, int32_t v);                                              \
    TW_API H TW_CALL TW_FN(P, set_u64)(H h, uint64_t v);                                             \
    TW_API H TW_CALL TW_FN(P, set_s64)(H h, int64_t v);                                              \
    TW_API H TW_CALL TW_FN(P, set_hi)(H r, HI_handle a);                                             \
    TW_API H TW_CALL TW_FN(P, set_hx)(H r, HX_handle a);                                             \
    TW_API H TW_CALL TW_FN(P, set_rc)(H r, RC_handle a);                                             \
    TW_API uint32_t TW_CALL TW_FN(P, get_u32)(H h);                                                  \
    TW_API int32_t TW_CALL TW_FN(P, get_s32)(H h);                                                   \
    TW_API uint64_t TW_CALL TW_FN(P, get_u64)(H h);                                                  \
    TW_API int64_t TW_CALL TW_FN(P, get_s64)(H h);                                                   \
    TW_API int32_t TW_CALL TW_FN(P, getSign)(H h);                                                   \
    TW_API uint32_t TW_CALL TW_FN(P, isZero)(H h);                                                   \
    TW_API uint32_t TW_CALL TW_FN(P, isEven)(H h);                                                   \
    TW_API uint32_t TW_CALL TW_FN(P, isOdd)(H h);                                                    \
    TW_API uint32_t TW_CALL TW_FN(P, isAbsOne)(H h);                                                 \
    TW_API H TW_CALL TW_FN(P, negate)(H h);                                                          \
    TW_API H TW_CALL TW_FN(P, abs)(H h);                                                             \
    TW_API H TW_CALL TW_FN(P, swap)(H a, H b);                                                       \
    TW_API int32_t TW_CALL TW_FN(P, compare_##S)(H a, H b);                                          \
    TW_API int32_t TW_CALL TW_FN(P, compare_s32)(H a, int32_t v);                                    \
    TW_API int32_t TW_CALL TW_FN(P, compare_u32)(H a, uint32_t v);                                   \
    TW_API int32_t TW_CALL TW_FN(P, compareAbs_##S)(H a, H b);                                       \
    TW_API int32_t TW_CALL TW_FN(P, compareAbs_s32)(H a, int32_t v);                                 \
    TW_API int32_t TW_CALL TW_FN(P, compareAbs_u32)(H a, uint32_t v);                                \
    TW_API uint32_t TW_CALL TW_FN(P, getDigits)(H h);                                                \
    TW_API uint32_t TW_CALL TW_FN(P, getBits)(H h);                                                  \
    TW_API H TW_CALL TW_FN(P, add)(H r, H a, H b);                                                   \
    TW_API H TW_CALL TW_FN(P, sub)(H r, H a, H b);                                                   \
    TW_API H TW_CALL TW_FN(P, add_u32)(H r, H a, uint32_t n);                                        \
    TW_API H TW_CALL TW_FN(P, sub_u32)(H r, H a, uint32_t n);                                        \
    TW_API H TW_CALL TW_FN(P, mul_u32)(H r, H a, uint32_t n);                                        \
    TW_API H TW_CALL TW_FN(P, bitLShift)(H x, uint32_t k);                                           \
    TW_API H TW_CALL TW_FN(P, bitRShift)(H x, uint32_t k);                                           \
    TW_API H TW_CALL TW_FN(P, mul)(H r, H a, H b);                                                   \
    TW_API H TW_CALL TW_FN(P, divRem)(H q, H a, H b, H r);                                           \
    TW_API H TW_CALL TW_FN(P, mod)(H r, H a, H b);                                                   \
    TW_API H TW_CALL TW_FN(P, div_s32)(H q, H a, int32_t d, int32_t *remainder);                     \
    TW_API H TW_CALL TW_FN(P, pow)(H r, H a, uint32_t e);                                            \
    TW_API H TW_CALL TW_FN(P, rootRem)(H root, H rem, H a, uint32_t n);                              \
    TW_API uint32_t TW_CALL TW_FN(P, log)(H a, H base);                                              \
    TW_API uint32_t TW_CALL TW_FN(P, log_u32)(H a, uint32_t base);                                   \
    TW_API H TW_CALL TW_FN(P, floor)(H x, uint32_t n);                                               \
    TW_API H TW_CALL TW_FN(P, truncate)(H x, uint32_t n);                                            \
    TW_API H TW_CALL TW_FN(P, ceil)(H x, uint32_t n);                                                \
    TW_API H TW_CALL TW_FN(P, bitAnd)(H r, H a, H b);                                                \
    TW_API H TW_CALL TW_FN(P, bitOr)(H r, H a, H b);                                                 \
    TW_API H TW_CALL TW_FN(P, bitXor)(H r, H a, H b);                                                \
    TW_API H TW_CALL TW_FN(P, gcd)(H r, H a, H b);                                                   \
    TW_API H TW_CALL TW_FN(P, lcm)(H r, H a, H b);                                                   \
    TW_API H TW_CALL TW_FN(P, gcdEx)(H g, H x, H y, H a, H b);                                       \
    TW_API H TW_CALL TW_FN(P, gcd_v##S)(H r, const H *values, uint32_t count);                       \
    TW_API H TW_CALL TW_FN(P, lcm_v32)(H r, const uint32_t *values, uint32_t count);                 \
    TW_API H TW_CALL TW_FN(P, lcm_v##S)(H r, const H *values, uint32_t count);                       \
    TW_API H TW_CALL TW_FN(P, powMod)(H r, H base, H exponent, H modulus);                           \
    TW_API H TW_CALL TW_FN(P, powMod_u32)(H r, uint32_t base, H exponent, H modulus);                \
    TW_API uint32_t TW_CALL TW_FN(P, powMod_u32_u32)(uint32_t base, H exponent, uint32_t modulus);   \
    TW_API H TW_CALL TW_FN(P, mulMod)(H r, H a, H b, H modulus);                                     \
    TW_API H TW_CALL TW_FN(P, invertMod)(H r, H a, H modulus);                                       \
    TW_API H TW_CALL TW_FN(P, invertMod_u32)(H r, uint32_t a, H modulus);                            \
    TW_API uint32_t TW_CALL TW_FN(P, isPrime)(H h);                                                  \
    TW_API uint32_t TW_CALL TW_FN(P, testPrimality)(H h, uint32_t rounds);                           \
    TW_API H TW_CALL TW_FN(P, nextPrime)(H r, H a);                                                  \
    TW_API H TW_CALL TW_FN(P, previousPrime)(H r, H a);                                              \
    TW_API H TW_CALL TW_FN(P, generatePrime)(H r, uint32_t size);                                    \
    TW_API H TW_CALL TW_FN(P, random)(H r, int32_t size);                                            \
    TW_API H TW_CALL TW_FN(P, factorial)(H r, uint32_t n);                                           \
    TW_API H TW_CALL TW_FN(P, factorial2)(H r, uint32_t n);                                          \
    TW_API H TW_CALL TW_FN(P, primeFactorial)(H r, uint32_t n);                                      \
    TW_API H TW_CALL TW_FN(P, combination)(H r, int32_t n, int32_t k);                               \
    TW_API H TW_CALL TW_FN(P, permutation)(H r, int32_t n, int32_t k);                               \
    TW_API H TW_CALL TW_FN(P, fibonacci)(H r, int32_t n);                                            \
    TW_API H TW_CALL TW_FN(P, lucas)(H r, int32_t n);                                                \
    TW_API H TW_CALL TW_FN(P, product_v32)(H r, const uint32_t *values, uint32_t count);             \
    TW_API H TW_CALL TW_FN(P, product_v##S)(H r, const H *values, uint32_t count);                   \
    TW_API H TW_CALL TW_FN(P, sumsOfLikePowers_v32)(H r, const uint32_t *values, uint32_t count,     \
                                                    uint32_t power);                                 \
    TW_API H TW_CALL TW_FN(P, sumsOfLikePowers_v##S)(H r, const H *values, uint32_t count,           \
                                                     uint32_t power);                                \
    TW_API const char *TW_CALL TW_FN(P, getStrA)(H h, uint8_t flags, uint32_t *textLength);          \
    TW_API const tw_wchar *TW_CALL TW_FN(P, getStrW)(H h, uint8_t flags, uint32_t *textLength);      \
    TW_API const char *TW_CALL TW_FN(P, getHexStrA)(H h, uint8_t flags, uint32_t *textLength);       \
    TW_API const tw_wchar *TW_CALL TW_FN(P, getHexStrW)(H h, uint8_t flags, uint32_t *textLength);   \
    TW_API const char *TW_CALL TW_FN(P, getStrRadixA)(H h, uint32_t radix, uint32_t *digitCount,     \
                                                      uint8_t flags, uint32_t groupLength,           \
                                                      uint32_t *textLength);                         \
    TW_API const tw_wchar *TW_CALL TW_FN(P, getStrRadixW)(H h, uint32_t radix, uint32_t *digitCount, \
                                                          uint8_t flags, uint32_t groupLength,       \
                                                          uint32_t *textLength);                     \
    TW_API H TW_CALL TW_FN(P, set_strA)(H h, const char *text);                                      \
    TW_API H TW_CALL TW_FN(P, set_strW)(H h, const tw_wchar *text);                                  \
    TW_API H TW_CALL TW_FN(P, setHexStrA)(H h, const char *text);                                    \
    TW_API H TW_CALL TW_FN(P, setHexStrW)(H h, const tw_wchar *text);                                \
    TW_API void TW_CALL TW_FN(P, freeStrBuffer)(H h);

/* ---- HI_: integers in radix 10^9 ---- */
TW_INTEGER_FAMILY(HI, HI_handle, hi)
TW_API uint32_t TW_CALL HI_getTailDecZeros(HI_handle h);
TW_API HI_handle TW_CALL HI_decLShift(HI_handle x, uint32_t k);
TW_API HI_handle TW_CALL HI_decRShift(HI_handle x, uint32_t k);
TW_API HI_handle TW_CALL HI_modPowTen(HI_handle h, uint32_t n);

/* ---- HX_: integers in radix 2^28 ---- */
TW_INTEGER_FAMILY(HX, HX_handle, hx)
TW_API uint32_t TW_CALL HX_isBitOne(HX_handle h, uint32_t k);
TW_API uint32_t TW_CALL HX_getTailBitZeros(HX_handle h);
TW_API HX_handle TW_CALL HX_modPowTwo(HX_handle h, uint32_t k);
TW_API const char *TW_CALL HX_getTextA(HX_handle h);
TW_API const tw_wchar *TW_CALL HX_getTextW(HX_handle h);
TW_API HX_handle TW_CALL HX_setTextA(HX_handle h, const char *text);
TW_API HX_handle TW_CALL HX_setTextW(HX_handle h, const tw_wchar *text);

#undef TW_INTEGER_FAMILY
#undef TW_FN

/* ---- RC_: digit vectors in any radix from 2 to 2^32 (radix 0 stands for 2^32) ---- */
TW_API RC_handle TW_CALL RC_new(uint32_t radix);
TW_API RC_handle TW_CALL RC_new_strA(uint32_t radix, const char *text);
TW_API RC_handle TW_CALL RC_new_strW(uint32_t radix, const tw_wchar *text);
TW_API uint32_t TW_CALL RC_delete(RC_handle h);
TW_API int32_t TW_CALL RC_getCount(void);
TW_API uint32_t TW_CALL RC_getRadix(RC_handle h);
TW_API int32_t TW_CALL RC_getSign(RC_handle h);
TW_API DigitVectorView *TW_CALL RC_getVector(RC_handle h, DigitVectorView *view);
TW_API int32_t TW_CALL RC_resetVector(RC_handle h, const uint32_t *digits, uint32_t count);
TW_API void TW_CALL RC_clearVector(RC_handle h);
TW_API int32_t TW_CALL RC_resetRadix(RC_handle h, int32_t radix);
TW_API int32_t TW_CALL RC_resetSign(RC_handle h, int32_t sign);
TW_API RC_handle TW_CALL RC_convert2Radix(RC_handle h, uint32_t newRadix);
TW_API RC_handle TW_CALL RC_set_hi(RC_handle h, HI_handle a);
TW_API RC_handle TW_CALL RC_set_hx(RC_handle h, HX_handle a);
TW_API RC_handle TW_CALL RC_set_rc(RC_handle h, RC_handle a);
TW_API RC_handle TW_CALL RC_set_s32(RC_handle h, int32_t v);
TW_API RC_handle TW_CALL RC_set_u32(RC_handle h, uint32_t v);
TW_API RC_handle TW_CALL RC_set_s64(RC_handle h, int64_t v);
TW_API RC_handle TW_CALL RC_set_u64(RC_handle h, uint64_t v);
TW_API int32_t TW_CALL RC_get_s32(RC_handle h);
TW_API uint32_t TW_CALL RC_get_u32(RC_handle h);
TW_API int64_t TW_CALL RC_get_s64(RC_handle h);
TW_API uint64_t TW_CALL RC_get_u64(RC_handle h);
TW_API uint64_t TW_CALL RC_sumOfDigits(RC_handle h);

#ifdef __cplusplus
}
#endif

#endif /* TARNWICK_H */
