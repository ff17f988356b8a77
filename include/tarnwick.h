/**
 * @file tarnwick.h
 * @brief Tarnwick: arithmetic on integers of unbounded size, as a flat C interface.
 *
 * Numbers are opaque handles created with HI_new / HX_new / RC_new and released
 * with the matching *_delete.  HI_ numbers keep their magnitude in limbs of
 * radix 10^9, HX_ numbers in limbs of radix 2^28; RC_ converters hold a digit
 * vector in any radix from 2 to 2^32.  Every HI_ function has an HX_ twin.
 *
 * Failures:
 * - an unknown, null or deleted handle records error -4 and changes nothing;
 *   the function returns a null handle, 0 (counts, values, comparisons), or 1
 *   (isZero, isEven);
 * - any other failure (division by zero -5, result too large -3, bad logarithm
 *   -6, radix 1 -7, stop request -2) still returns the first handle, with a
 *   defined value in it that each function's comment names (usually 0);
 * - the first error raises the stop flag and is kept until TW_setTerminate(0);
 *   while the flag is raised, long operations return at once with their
 *   result not completed.
 *
 * Handles may be shared by no two threads at once; threads that keep to their
 * own numbers need no locking.  The error code and the stop flag are
 * process-wide.  This header is valid C99 and C++.
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
/** Marks an exported function (import/export on Windows, default visibility elsewhere). */
#    define TW_API
#  endif
/** The calling convention: __stdcall on 32-bit Windows, empty elsewhere. */
#  define TW_CALL
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** Handle of a decimal-radix integer (limbs of radix 10^9). */
typedef struct HI_number_ *HI_handle;
/** Handle of a binary-radix integer (limbs of radix 2^28). */
typedef struct HX_number_ *HX_handle;
/** Handle of a radix converter (a digit vector in any radix). */
typedef struct RC_converter_ *RC_handle;

/** One 16-bit text code unit of the W functions. */
#if defined(_WIN32)
typedef wchar_t tw_wchar;
#else
typedef uint16_t tw_wchar;
#endif

/** The digits of a radix converter, least significant first (RC_getVector). */
typedef struct DigitVectorView {
    uint32_t *data; /**< the digits; valid until the converter changes */
    uint32_t size;  /**< how many */
} DigitVectorView;

/** @name Text flags (combined with |)
 *  Zero is always written "0", whatever the flags. */
/** @{ */
#define TEXT_GROUP           0x01 /**< separate digit groups (3 decimal, 4 hexadecimal, else groupLength) */
#define TEXT_SPACE_SEPARATOR 0x02 /**< the separator is a space instead of a comma */
#define TEXT_PLUS_SIGN       0x04 /**< write "+" before a positive number */
#define TEXT_SIGN_SPACE      0x08 /**< a space between the sign and the digits */
#define TEXT_LOWER_CASE      0x10 /**< lower-case letters in radices up to 36 */
/** @} */

/** @name Error codes (TW_getLastError)
 *  The first error since TW_setTerminate(0) is kept, and raises the stop flag. */
/** @{ */
#define TW_ERR_NONE       0    /**< no error */
#define TW_ERR_STOPPED   (-2)  /**< stopped by TW_setTerminate(1) */
#define TW_ERR_TOO_LARGE (-3)  /**< result too large, or memory exhausted */
#define TW_ERR_HANDLE    (-4)  /**< unknown, null or deleted handle, or a null array */
#define TW_ERR_DIV_ZERO  (-5)  /**< division by zero (also a zero modulus, a 0-th root) */
#define TW_ERR_LOG       (-6)  /**< logarithm of zero, or to a base below 2 */
#define TW_ERR_RADIX     (-7)  /**< radix 1 */
/** @} */

/** @name TW_: library-wide services */
/** @{ */

/* errors and the stop flag */
/** The error code recorded first since the last TW_setTerminate(0) (TW_ERR_*). */
TW_API int32_t TW_CALL TW_getLastError(void);
/** 1 while the stop flag is raised (by TW_setTerminate(1) or by an error), else 0. */
TW_API uint32_t TW_CALL TW_isTerminated(void);
/** Non-zero: records -2 and raises the stop flag (safe from any thread; long operations stop). Zero: clears the error and the flag. */
TW_API void TW_CALL TW_setTerminate(uint32_t flag);

/* stopwatch, random seed, version */
/** Starts (1) or stops (0) the stopwatch; elapsed time accumulates over starts and stops. */
TW_API void TW_CALL TW_enableTimer(uint32_t on);
/** Sets the elapsed time to value in unit (0 ms, 1 us, 2 ns), keeping the running state. */
TW_API void TW_CALL TW_resetTimer(uint32_t value, int32_t unit);
/** The elapsed time in unit (0 ms, 1 us, 2 ns); 0 for another unit. */
TW_API uint64_t TW_CALL TW_getTimer(int32_t unit);
/** The elapsed time as text: format 0 "hh:mm:ss.mmm", else seconds with six decimals (format 3 appends " s", 2 and above 3 "s"). Static buffer. */
TW_API const char *TW_CALL TW_getTimerStrA(int32_t format);
/** As TW_getTimerStrA in 16-bit characters. */
TW_API const tw_wchar *TW_CALL TW_getTimerStrW(int32_t format);
/** Re-seeds the library's random-number generator (HI_random, HX_random, generatePrime). */
TW_API void TW_CALL TW_seedRandom(uint32_t seed);
/** The version text. */
TW_API const char *TW_CALL TW_getVerA(void);
/** The version text in 16-bit characters. */
TW_API const tw_wchar *TW_CALL TW_getVerW(void);
/** The number of exported functions in the groups the mask selects (bit 0 TW_, 1 HI_, 2 HX_, 3 RC_). */
TW_API uint32_t TW_CALL TW_getExportFunNums(uint32_t mask);

/* 32-bit number theory */
/** Binary GCD that strips factors of two from the smaller operand only, so common factors of two are lost: TW_gcd(4, 6) is 1 and TW_gcd(6, 6) is 3 (kept as it stands). A zero argument gives the other. */
TW_API uint32_t TW_CALL TW_gcd(uint32_t a, uint32_t b);
/** b * (a / TW_gcd(a, b)) in 64 bits, so TW_lcm(4, 6) is 24 (kept); a zero argument gives the other. */
TW_API uint64_t TW_CALL TW_lcm(uint32_t a, uint32_t b);
/** g = gcd(a, b) >= 0 with a*x + b*y = g written to *x and *y, the cofactors of plain Euclid; x and y the same pointer returns 0 and writes nothing. */
TW_API uint32_t TW_CALL TW_gcdEx(int32_t *x, int32_t *y, int32_t a, int32_t b);
/** TW_gcd folded over count values from the smallest (0 for an empty list); a null array with count > 0 gives error -4 and 0. */
TW_API uint32_t TW_CALL TW_gcd_v32(const uint32_t *values, uint32_t count);
/** base^exponent mod modulus, exponent read as unsigned; 0^e is 0 (e = 0 too, kept); modulus 0 gives error -5 and 0. */
TW_API uint32_t TW_CALL TW_powMod(uint32_t base, int32_t exponent, uint32_t modulus);
/** The inverse of a modulo modulus, 0 when none exists (no error); modulus 1 gives 1; modulus 0 gives error -5 and 0. */
TW_API uint32_t TW_CALL TW_invertMod(uint32_t a, uint32_t modulus);
/** 1 when n is prime, else 0 (exact for every 32-bit n). */
TW_API uint32_t TW_CALL TW_isPrime(uint32_t n);
/** The least prime above n, negative primes included (-3, -2, 2, 3 ...); 1 when none fits. */
TW_API int32_t TW_CALL TW_nextPrime(int32_t n);
/** The greatest prime below n, negative primes included; -1 when none fits. */
TW_API int32_t TW_CALL TW_previousPrime(int32_t n);
/** The k-th prime (TW_getPrime(1) is 2); 0 for k = 0 or k above 203 280 221. */
TW_API uint32_t TW_CALL TW_getPrime(uint32_t k);
/** pi(n), the count of primes not above n. */
TW_API uint32_t TW_CALL TW_getPrimePi(uint32_t n);
/** The count of primes in [low, high]; 0 when low > high. */
TW_API uint32_t TW_CALL TW_getPrimeCount(uint32_t low, uint32_t high);
/** Writes at most maxCount primes of [low, high] ascending to out and returns how many; a null out only counts them. */
TW_API uint32_t TW_CALL TW_getPrimeList(uint32_t *out, uint32_t low, uint32_t high, uint32_t maxCount);
/** @} */

/** @name HI_: integers in radix 10^9 (decimal text for free) */
/** @{ */

/* HI_: life of a number */
/** Creates a number with the value 0; returns its handle (null when memory runs out). */
TW_API HI_handle TW_CALL HI_new(void);
/** Deletes a number and frees its storage; returns 1, also for a null handle, or 0 with error -4 for an unknown handle. */
TW_API uint32_t TW_CALL HI_delete(HI_handle h);
/** Number of live HI_ handles. */
TW_API int32_t TW_CALL HI_getCount(void);

/* HI_: setting and reading */
/** Sets h to an unsigned 32-bit value; returns h. */
TW_API HI_handle TW_CALL HI_set_u32(HI_handle h, uint32_t v);
/** Sets h to a signed 32-bit value; returns h. */
TW_API HI_handle TW_CALL HI_set_s32(HI_handle h, int32_t v);
/** Sets h to an unsigned 64-bit value; returns h. */
TW_API HI_handle TW_CALL HI_set_u64(HI_handle h, uint64_t v);
/** Sets h to a signed 64-bit value; returns h. */
TW_API HI_handle TW_CALL HI_set_s64(HI_handle h, int64_t v);
/** Copies the value of the decimal number a into r; returns r. */
TW_API HI_handle TW_CALL HI_set_hi(HI_handle r, HI_handle a);
/** Copies the value of the binary number a into r; returns r. */
TW_API HI_handle TW_CALL HI_set_hx(HI_handle r, HX_handle a);
/** Sets r to the value held by the radix converter a; returns r. */
TW_API HI_handle TW_CALL HI_set_rc(HI_handle r, RC_handle a);
/** The value as uint32_t; 0 when it does not fit (every negative value included). */
TW_API uint32_t TW_CALL HI_get_u32(HI_handle h);
/** The value as int32_t; 0 when it does not fit. */
TW_API int32_t TW_CALL HI_get_s32(HI_handle h);
/** The value as uint64_t; 0 when it does not fit (every negative value included). */
TW_API uint64_t TW_CALL HI_get_u64(HI_handle h);
/** The value as int64_t; 0 when it does not fit. */
TW_API int64_t TW_CALL HI_get_s64(HI_handle h);

/* HI_: sign, tests, comparison and sizes */
/** The sign: -1, 0 or +1 (0 for an unknown handle). */
TW_API int32_t TW_CALL HI_getSign(HI_handle h);
/** 1 when the value is 0, else 0; 1 for an unknown handle. */
TW_API uint32_t TW_CALL HI_isZero(HI_handle h);
/** 1 when the value is even, else 0; 1 for an unknown handle. */
TW_API uint32_t TW_CALL HI_isEven(HI_handle h);
/** 1 when the value is odd, else 0 (also for an unknown handle). */
TW_API uint32_t TW_CALL HI_isOdd(HI_handle h);
/** 1 when the value is 1 or -1, else 0. */
TW_API uint32_t TW_CALL HI_isAbsOne(HI_handle h);
/** Negates h in place; returns h. */
TW_API HI_handle TW_CALL HI_negate(HI_handle h);
/** Replaces h by its absolute value; returns h. */
TW_API HI_handle TW_CALL HI_abs(HI_handle h);
/** Exchanges the values of a and b without copying digits; returns a. */
TW_API HI_handle TW_CALL HI_swap(HI_handle a, HI_handle b);
/** Compares a with b: -1, 0 or +1 (0 on a failed handle check). */
TW_API int32_t TW_CALL HI_compare_hi(HI_handle a, HI_handle b);
/** Compares a with a signed 32-bit value: -1, 0 or +1. */
TW_API int32_t TW_CALL HI_compare_s32(HI_handle a, int32_t v);
/** Compares a with an unsigned 32-bit value: -1, 0 or +1. */
TW_API int32_t TW_CALL HI_compare_u32(HI_handle a, uint32_t v);
/** Compares |a| with |b|: -1, 0 or +1. */
TW_API int32_t TW_CALL HI_compareAbs_hi(HI_handle a, HI_handle b);
/** Compares |a| with |v|: -1, 0 or +1. */
TW_API int32_t TW_CALL HI_compareAbs_s32(HI_handle a, int32_t v);
/** Compares |a| with v: -1, 0 or +1. */
TW_API int32_t TW_CALL HI_compareAbs_u32(HI_handle a, uint32_t v);
/** Number of decimal digits of |h| (1 for zero); 0 while the stop flag is raised. */
TW_API uint32_t TW_CALL HI_getDigits(HI_handle h);
/** Number of trailing decimal zeros of h (0 for zero). */
TW_API uint32_t TW_CALL HI_getTailDecZeros(HI_handle h);
/** Number of bits of |h|, floor(log2 |h|) + 1; 0 for zero. */
TW_API uint32_t TW_CALL HI_getBits(HI_handle h);

/* HI_: addition, subtraction and shifts */
/** r = a + b (any handles may be equal); returns r. */
TW_API HI_handle TW_CALL HI_add(HI_handle r, HI_handle a, HI_handle b);
/** r = a - b (any handles may be equal); returns r. */
TW_API HI_handle TW_CALL HI_sub(HI_handle r, HI_handle a, HI_handle b);
/** r = a + n, except that a negative a whose magnitude is below n stays negative (-5 + 7 gives -2); returns r. */
TW_API HI_handle TW_CALL HI_add_u32(HI_handle r, HI_handle a, uint32_t n);
/** r = a - n, except that a positive a whose magnitude is below n stays positive (3 - 5 gives 2); a is not checked; returns r. */
TW_API HI_handle TW_CALL HI_sub_u32(HI_handle r, HI_handle a, uint32_t n);
/** r = a * n, n read as unsigned; a is not checked; returns r. */
TW_API HI_handle TW_CALL HI_mul_u32(HI_handle r, HI_handle a, uint32_t n);
/** x = x * 10^k in place; returns x. */
TW_API HI_handle TW_CALL HI_decLShift(HI_handle x, uint32_t k);
/** x = x / 10^k, truncated toward zero, in place; returns x. */
TW_API HI_handle TW_CALL HI_decRShift(HI_handle x, uint32_t k);
/** x = x * 2^k in place; a result estimated too large gives error -3 and x = 0; returns x. */
TW_API HI_handle TW_CALL HI_bitLShift(HI_handle x, uint32_t k);
/** x = x / 2^k truncated toward zero (so -3 >> 1 is -1), in place; returns x. */
TW_API HI_handle TW_CALL HI_bitRShift(HI_handle x, uint32_t k);

/* HI_: multiplication, division, powers and roots */
/** r = a * b (any handles may be equal; a == b squares); returns r. */
TW_API HI_handle TW_CALL HI_mul(HI_handle r, HI_handle a, HI_handle b);
/** q = a / b truncated toward zero and, when r is not null, r = a - q*b. A zero b gives error -5 and q = 0; r equal to a or b gives q = 0. Returns q. */
TW_API HI_handle TW_CALL HI_divRem(HI_handle q, HI_handle a, HI_handle b, HI_handle r);
/** r = a - b*trunc(a/b), with the sign of a; a zero b gives error -5 and r = 0. Returns r. */
TW_API HI_handle TW_CALL HI_mod(HI_handle r, HI_handle a, HI_handle b);
/** q = a / d truncated toward zero; *remainder (when not null) gets |a| mod |d| with the sign of the quotient. d = 0 gives error -5. Returns q. */
TW_API HI_handle TW_CALL HI_div_s32(HI_handle q, HI_handle a, int32_t d, int32_t *remainder);
/** r = a^e, with 0^0 = 0; r == a leaves the value unchanged; a result too large gives error -3 and 0. Returns r. */
TW_API HI_handle TW_CALL HI_pow(HI_handle r, HI_handle a, uint32_t e);
/** root = sign(a)*floor(|a|^(1/n)), rem (may be null) = sign(a)*(|a| - |root|^n). n = 0 gives error -5 and leaves root. Returns root. */
TW_API HI_handle TW_CALL HI_rootRem(HI_handle root, HI_handle rem, HI_handle a, uint32_t n);
/** floor(log_|base| |a|); a zero a or |base| < 2 gives error -6 and 0. */
TW_API uint32_t TW_CALL HI_log(HI_handle a, HI_handle base);
/** floor(log_base |a|); a zero a or base < 2 gives error -6 and 0. */
TW_API uint32_t TW_CALL HI_log_u32(HI_handle a, uint32_t base);
/** Keeps the n leading decimal digits of x and rounds the rest toward minus infinity, in place (n = 0, or n at least the length, leaves x). Returns x. */
TW_API HI_handle TW_CALL HI_floor(HI_handle x, uint32_t n);
/** Keeps the n leading decimal digits of x and rounds the rest toward zero, in place. Returns x. */
TW_API HI_handle TW_CALL HI_truncate(HI_handle x, uint32_t n);
/** Keeps the n leading decimal digits of x and rounds the rest toward plus infinity (a carry may add a digit), in place. Returns x. */
TW_API HI_handle TW_CALL HI_ceil(HI_handle x, uint32_t n);

/* HI_: bitwise operations on sign and magnitude */
/** r = |a| AND |b|, negative only when a and b both are ((-6) AND 3 is 2); returns r. */
TW_API HI_handle TW_CALL HI_bitAnd(HI_handle r, HI_handle a, HI_handle b);
/** r = |a| OR |b|, negative when either is ((-6) OR 3 is -7); returns r. */
TW_API HI_handle TW_CALL HI_bitOr(HI_handle r, HI_handle a, HI_handle b);
/** r = |a| XOR |b|, negative when exactly one is; r = 0 when a == b. Returns r. */
TW_API HI_handle TW_CALL HI_bitXor(HI_handle r, HI_handle a, HI_handle b);

/* HI_: greatest common divisors and least common multiples */
/** r = gcd(a, b) >= 0 (gcd(0, 0) = 0); returns r. */
TW_API HI_handle TW_CALL HI_gcd(HI_handle r, HI_handle a, HI_handle b);
/** r = lcm(a, b) >= 0, 0 when either is 0; returns r. */
TW_API HI_handle TW_CALL HI_lcm(HI_handle r, HI_handle a, HI_handle b);
/** g = gcd(a, b) >= 0 with cofactors a*x + b*y = g (signed operands); returns g. */
TW_API HI_handle TW_CALL HI_gcdEx(HI_handle g, HI_handle x, HI_handle y, HI_handle a, HI_handle b);
/** r = gcd of count numbers (0 for an empty list); a null array with count > 0 gives error -4 and null. Returns r. */
TW_API HI_handle TW_CALL HI_gcd_vhi(HI_handle r, const HI_handle *values, uint32_t count);
/** r = lcm of count 32-bit values (1 for an empty list); returns r. */
TW_API HI_handle TW_CALL HI_lcm_v32(HI_handle r, const uint32_t *values, uint32_t count);
/** r = lcm of count numbers (1 for an empty list); a null array with count > 0 gives error -4 and null. Returns r. */
TW_API HI_handle TW_CALL HI_lcm_vhi(HI_handle r, const HI_handle *values, uint32_t count);

/* HI_: modular arithmetic */
/** r = |base|^|exponent| mod |modulus|, negative when base < 0 and exponent odd; a negative exponent then takes the inverse. A zero modulus gives error -5. Returns r. */
TW_API HI_handle TW_CALL HI_powMod(HI_handle r, HI_handle base, HI_handle exponent, HI_handle modulus);
/** As HI_powMod with a 32-bit base; returns r. */
TW_API HI_handle TW_CALL HI_powMod_u32(HI_handle r, uint32_t base, HI_handle exponent, HI_handle modulus);
/** base^exponent mod modulus as a 32-bit value; a zero modulus gives error -5 and 0. */
TW_API uint32_t TW_CALL HI_powMod_u32_u32(uint32_t base, HI_handle exponent, uint32_t modulus);
/** r = a*b mod modulus; a zero modulus gives error -5. Returns r. */
TW_API HI_handle TW_CALL HI_mulMod(HI_handle r, HI_handle a, HI_handle b, HI_handle modulus);
/** r = the inverse of a modulo modulus, 0 when there is none (no error); a zero modulus gives error -5. Returns r. */
TW_API HI_handle TW_CALL HI_invertMod(HI_handle r, HI_handle a, HI_handle modulus);
/** As HI_invertMod with a 32-bit a; returns r. */
TW_API HI_handle TW_CALL HI_invertMod_u32(HI_handle r, uint32_t a, HI_handle modulus);
/** Keeps the n lowest decimal digits of h, sign kept (h mod 10^n truncated); n = 0 gives 0. Returns h. */
TW_API HI_handle TW_CALL HI_modPowTen(HI_handle h, uint32_t n);

/* HI_: primes and random numbers */
/** 1 when h is prime (exact below 10^16) or a Baillie-PSW probable prime (above), else 0. */
TW_API uint32_t TW_CALL HI_isPrime(HI_handle h);
/** 0 composite, 2 prime (proven below 10^16), 1 probable prime: Baillie-PSW plus `rounds` Miller-Rabin rounds to random bases. */
TW_API uint32_t TW_CALL HI_testPrimality(HI_handle h, uint32_t rounds);
/** r = the least prime above a; returns r. */
TW_API HI_handle TW_CALL HI_nextPrime(HI_handle r, HI_handle a);
/** r = the greatest prime below a; returns r. */
TW_API HI_handle TW_CALL HI_previousPrime(HI_handle r, HI_handle a);
/** r = a random prime of exactly size decimal digits (0 when none has that length); returns r. */
TW_API HI_handle TW_CALL HI_generatePrime(HI_handle r, uint32_t size);
/** r = a uniform random number in [0, 10^|size|), negated when size < 0; |size| above 1 292 913 986 gives error -3 and 0. Returns r. */
TW_API HI_handle TW_CALL HI_random(HI_handle r, int32_t size);

/* HI_: combinatorics and sequences */
/** r = n!; returns r. */
TW_API HI_handle TW_CALL HI_factorial(HI_handle r, uint32_t n);
/** r = n!!, the product of the numbers up to n of n's parity; returns r. */
TW_API HI_handle TW_CALL HI_factorial2(HI_handle r, uint32_t n);
/** r = n#, the product of the primes up to n; returns r. */
TW_API HI_handle TW_CALL HI_primeFactorial(HI_handle r, uint32_t n);
/** r = C(n, k); 0 when n < 0, k < 0 or k > n. Returns r. */
TW_API HI_handle TW_CALL HI_combination(HI_handle r, int32_t n, int32_t k);
/** r = n! / (n-k)!; 0 when n < 0, k < 0 or k > n. Returns r. */
TW_API HI_handle TW_CALL HI_permutation(HI_handle r, int32_t n, int32_t k);
/** r = F(n) (negative n too); returns r. */
TW_API HI_handle TW_CALL HI_fibonacci(HI_handle r, int32_t n);
/** r = L(n), with L(0) = 2 (negative n too); returns r. */
TW_API HI_handle TW_CALL HI_lucas(HI_handle r, int32_t n);
/** r = the product of count 32-bit values (1 for an empty list); returns r. */
TW_API HI_handle TW_CALL HI_product_v32(HI_handle r, const uint32_t *values, uint32_t count);
/** r = the signed product of count numbers (1 for an empty list); a null array with count > 0 gives error -4 and null. Returns r. */
TW_API HI_handle TW_CALL HI_product_vhi(HI_handle r, const HI_handle *values, uint32_t count);
/** r = the sum of values[i]^power (0 for an empty list; power 0 gives the product); returns r. */
TW_API HI_handle TW_CALL HI_sumsOfLikePowers_v32(HI_handle r, const uint32_t *values, uint32_t count, uint32_t power);
/** r = the sum of values[i]^power over signed numbers ((-2)^3 counts -8); returns r. */
TW_API HI_handle TW_CALL HI_sumsOfLikePowers_vhi(HI_handle r, const HI_handle *values, uint32_t count, uint32_t power);

/* HI_: text */
/** Decimal text of h (TEXT_ flags), valid until h changes or the next call; *textLength (may be null) gets its length. Null on failure. */
TW_API const char  *TW_CALL HI_getStrA(HI_handle h, uint8_t flags, uint32_t *textLength);
/** As HI_getStrA in 16-bit characters. */
TW_API const tw_wchar  *TW_CALL HI_getStrW(HI_handle h, uint8_t flags, uint32_t *textLength);
/** Hexadecimal text of h with "0x" (TEXT_ flags); null on failure. */
TW_API const char  *TW_CALL HI_getHexStrA(HI_handle h, uint8_t flags, uint32_t *textLength);
/** As HI_getHexStrA in 16-bit characters. */
TW_API const tw_wchar  *TW_CALL HI_getHexStrW(HI_handle h, uint8_t flags, uint32_t *textLength);
/** Text of h in any radix from 2 (radix 0 is 2^32; above 62 each digit is written [ddd]), grouped by groupLength with TEXT_GROUP; *digitCount gets the digit count. Radix 1 gives error -7 and null. */
TW_API const char  *TW_CALL HI_getStrRadixA(HI_handle h, uint32_t radix, uint32_t *digitCount, uint8_t flags, uint32_t groupLength, uint32_t *textLength);
/** As HI_getStrRadixA in 16-bit characters. */
TW_API const tw_wchar  *TW_CALL HI_getStrRadixW(HI_handle h, uint32_t radix, uint32_t *digitCount, uint8_t flags, uint32_t groupLength, uint32_t *textLength);
/** Reads decimal text, or hexadecimal after "0x"; one leading '-', other non-digits skipped, never refused (null text gives 0). Returns h. */
TW_API HI_handle TW_CALL HI_set_strA(HI_handle h, const char *text);
/** As HI_set_strA from 16-bit characters. */
TW_API HI_handle TW_CALL HI_set_strW(HI_handle h, const tw_wchar *text);
/** Reads the whole text as hexadecimal (non-hex characters skipped; one leading '-'). Returns h. */
TW_API HI_handle TW_CALL HI_setHexStrA(HI_handle h, const char *text);
/** As HI_setHexStrA from 16-bit characters. */
TW_API HI_handle TW_CALL HI_setHexStrW(HI_handle h, const tw_wchar *text);
/** Frees the text buffers of h (their pointers become invalid). */
TW_API void TW_CALL HI_freeStrBuffer(HI_handle h);
/** @} */

/** @name HX_: integers in radix 2^28 (bits and hexadecimal for free) */
/** @{ */

/* HX_: life of a number */
/** Creates a number with the value 0; returns its handle (null when memory runs out). */
TW_API HX_handle TW_CALL HX_new(void);
/** Deletes a number and frees its storage; returns 1, also for a null handle, or 0 with error -4 for an unknown handle. */
TW_API uint32_t TW_CALL HX_delete(HX_handle h);
/** Number of live HX_ handles. */
TW_API int32_t TW_CALL HX_getCount(void);

/* HX_: setting and reading */
/** Sets h to an unsigned 32-bit value; returns h. */
TW_API HX_handle TW_CALL HX_set_u32(HX_handle h, uint32_t v);
/** Sets h to a signed 32-bit value; returns h. */
TW_API HX_handle TW_CALL HX_set_s32(HX_handle h, int32_t v);
/** Sets h to an unsigned 64-bit value; returns h. */
TW_API HX_handle TW_CALL HX_set_u64(HX_handle h, uint64_t v);
/** Sets h to a signed 64-bit value; returns h. */
TW_API HX_handle TW_CALL HX_set_s64(HX_handle h, int64_t v);
/** Copies the value of the decimal number a into r; returns r. */
TW_API HX_handle TW_CALL HX_set_hi(HX_handle r, HI_handle a);
/** Copies the value of the binary number a into r; returns r. */
TW_API HX_handle TW_CALL HX_set_hx(HX_handle r, HX_handle a);
/** Sets r to the value held by the radix converter a; returns r. */
TW_API HX_handle TW_CALL HX_set_rc(HX_handle r, RC_handle a);
/** The value as uint32_t; 0 when it does not fit (every negative value included). */
TW_API uint32_t TW_CALL HX_get_u32(HX_handle h);
/** The value as int32_t; 0 when it does not fit. */
TW_API int32_t TW_CALL HX_get_s32(HX_handle h);
/** The value as uint64_t; 0 when it does not fit (every negative value included). */
TW_API uint64_t TW_CALL HX_get_u64(HX_handle h);
/** The value as int64_t; 0 when it does not fit. */
TW_API int64_t TW_CALL HX_get_s64(HX_handle h);

/* HX_: sign, tests, comparison and sizes */
/** The sign: -1, 0 or +1 (0 for an unknown handle). */
TW_API int32_t TW_CALL HX_getSign(HX_handle h);
/** 1 when the value is 0, else 0; 1 for an unknown handle. */
TW_API uint32_t TW_CALL HX_isZero(HX_handle h);
/** 1 when the value is even, else 0; 1 for an unknown handle. */
TW_API uint32_t TW_CALL HX_isEven(HX_handle h);
/** 1 when the value is odd, else 0 (also for an unknown handle). */
TW_API uint32_t TW_CALL HX_isOdd(HX_handle h);
/** 1 when the value is 1 or -1, else 0. */
TW_API uint32_t TW_CALL HX_isAbsOne(HX_handle h);
/** Negates h in place; returns h. */
TW_API HX_handle TW_CALL HX_negate(HX_handle h);
/** Replaces h by its absolute value; returns h. */
TW_API HX_handle TW_CALL HX_abs(HX_handle h);
/** Exchanges the values of a and b without copying digits; returns a. */
TW_API HX_handle TW_CALL HX_swap(HX_handle a, HX_handle b);
/** Compares a with b: -1, 0 or +1 (0 on a failed handle check). */
TW_API int32_t TW_CALL HX_compare_hx(HX_handle a, HX_handle b);
/** Compares a with a signed 32-bit value: -1, 0 or +1. */
TW_API int32_t TW_CALL HX_compare_s32(HX_handle a, int32_t v);
/** Compares a with an unsigned 32-bit value: -1, 0 or +1. */
TW_API int32_t TW_CALL HX_compare_u32(HX_handle a, uint32_t v);
/** Compares |a| with |b|: -1, 0 or +1. */
TW_API int32_t TW_CALL HX_compareAbs_hx(HX_handle a, HX_handle b);
/** Compares |a| with |v|: -1, 0 or +1. */
TW_API int32_t TW_CALL HX_compareAbs_s32(HX_handle a, int32_t v);
/** Compares |a| with v: -1, 0 or +1. */
TW_API int32_t TW_CALL HX_compareAbs_u32(HX_handle a, uint32_t v);
/** Number of decimal digits of |h| (1 for zero); 0 while the stop flag is raised. */
TW_API uint32_t TW_CALL HX_getDigits(HX_handle h);
/** Number of trailing zero bits of |h| (0 for zero). */
TW_API uint32_t TW_CALL HX_getTailBitZeros(HX_handle h);
/** 1 when bit k of |h| is set, else 0 (the sign is not considered). */
TW_API uint32_t TW_CALL HX_isBitOne(HX_handle h, uint32_t k);
/** Number of bits of |h|, floor(log2 |h|) + 1; 0 for zero. */
TW_API uint32_t TW_CALL HX_getBits(HX_handle h);

/* HX_: addition, subtraction and shifts */
/** r = a + b (any handles may be equal); returns r. */
TW_API HX_handle TW_CALL HX_add(HX_handle r, HX_handle a, HX_handle b);
/** r = a - b (any handles may be equal); returns r. */
TW_API HX_handle TW_CALL HX_sub(HX_handle r, HX_handle a, HX_handle b);
/** r = a + n, except that a negative a whose magnitude is below n stays negative (-5 + 7 gives -2); returns r. */
TW_API HX_handle TW_CALL HX_add_u32(HX_handle r, HX_handle a, uint32_t n);
/** r = a - n, except that a positive a whose magnitude is below n stays positive (3 - 5 gives 2); a is not checked; returns r. */
TW_API HX_handle TW_CALL HX_sub_u32(HX_handle r, HX_handle a, uint32_t n);
/** r = a * n, n read as unsigned; a is not checked; returns r. */
TW_API HX_handle TW_CALL HX_mul_u32(HX_handle r, HX_handle a, uint32_t n);
/** x = x * 2^k in place; a result too large gives error -3 and x = 0; returns x. */
TW_API HX_handle TW_CALL HX_bitLShift(HX_handle x, uint32_t k);
/** x = x / 2^k truncated toward zero (so -3 >> 1 is -1), in place; returns x. */
TW_API HX_handle TW_CALL HX_bitRShift(HX_handle x, uint32_t k);

/* HX_: multiplication, division, powers and roots */
/** r = a * b (any handles may be equal; a == b squares); returns r. */
TW_API HX_handle TW_CALL HX_mul(HX_handle r, HX_handle a, HX_handle b);
/** q = a / b truncated toward zero and, when r is not null, r = a - q*b. A zero b gives error -5 and q = 0; r equal to a or b gives q = 0. Returns q. */
TW_API HX_handle TW_CALL HX_divRem(HX_handle q, HX_handle a, HX_handle b, HX_handle r);
/** r = a - b*trunc(a/b), with the sign of a; a zero b gives error -5 and r = 0. Returns r. */
TW_API HX_handle TW_CALL HX_mod(HX_handle r, HX_handle a, HX_handle b);
/** q = a / d truncated toward zero; *remainder (when not null) gets |a| mod |d| with the sign of the quotient. d = 0 gives error -5. Returns q. */
TW_API HX_handle TW_CALL HX_div_s32(HX_handle q, HX_handle a, int32_t d, int32_t *remainder);
/** r = a^e, with 0^0 = 0; r == a leaves the value unchanged; a result too large gives error -3 and 0. Returns r. */
TW_API HX_handle TW_CALL HX_pow(HX_handle r, HX_handle a, uint32_t e);
/** root = sign(a)*floor(|a|^(1/n)), rem (may be null) = sign(a)*(|a| - |root|^n). n = 0 gives error -5 and leaves root. Returns root. */
TW_API HX_handle TW_CALL HX_rootRem(HX_handle root, HX_handle rem, HX_handle a, uint32_t n);
/** floor(log_|base| |a|); a zero a or |base| < 2 gives error -6 and 0. */
TW_API uint32_t TW_CALL HX_log(HX_handle a, HX_handle base);
/** floor(log_base |a|); a zero a or base < 2 gives error -6 and 0. */
TW_API uint32_t TW_CALL HX_log_u32(HX_handle a, uint32_t base);
/** Keeps the n leading bits of x and rounds the rest toward minus infinity, in place (n = 0, or n at least the length, leaves x). Returns x. */
TW_API HX_handle TW_CALL HX_floor(HX_handle x, uint32_t n);
/** Keeps the n leading bits of x and rounds the rest toward zero, in place. Returns x. */
TW_API HX_handle TW_CALL HX_truncate(HX_handle x, uint32_t n);
/** Keeps the n leading bits of x and rounds the rest toward plus infinity (a carry may add a digit), in place. Returns x. */
TW_API HX_handle TW_CALL HX_ceil(HX_handle x, uint32_t n);

/* HX_: bitwise operations on sign and magnitude */
/** r = |a| AND |b|, negative only when a and b both are ((-6) AND 3 is 2); returns r. */
TW_API HX_handle TW_CALL HX_bitAnd(HX_handle r, HX_handle a, HX_handle b);
/** r = |a| OR |b|, negative when either is ((-6) OR 3 is -7); returns r. */
TW_API HX_handle TW_CALL HX_bitOr(HX_handle r, HX_handle a, HX_handle b);
/** r = |a| XOR |b|, negative when exactly one is; r = 0 when a == b. Returns r. */
TW_API HX_handle TW_CALL HX_bitXor(HX_handle r, HX_handle a, HX_handle b);

/* HX_: greatest common divisors and least common multiples */
/** r = gcd(a, b) >= 0 (gcd(0, 0) = 0); returns r. */
TW_API HX_handle TW_CALL HX_gcd(HX_handle r, HX_handle a, HX_handle b);
/** r = lcm(a, b) >= 0, 0 when either is 0; returns r. */
TW_API HX_handle TW_CALL HX_lcm(HX_handle r, HX_handle a, HX_handle b);
/** g = gcd(a, b) >= 0 with cofactors a*x + b*y = g (signed operands); returns g. */
TW_API HX_handle TW_CALL HX_gcdEx(HX_handle g, HX_handle x, HX_handle y, HX_handle a, HX_handle b);
/** r = gcd of count numbers (0 for an empty list); a null array with count > 0 gives error -4 and null. Returns r. */
TW_API HX_handle TW_CALL HX_gcd_vhx(HX_handle r, const HX_handle *values, uint32_t count);
/** r = lcm of count 32-bit values (1 for an empty list); returns r. */
TW_API HX_handle TW_CALL HX_lcm_v32(HX_handle r, const uint32_t *values, uint32_t count);
/** r = lcm of count numbers (1 for an empty list); a null array with count > 0 gives error -4 and null. Returns r. */
TW_API HX_handle TW_CALL HX_lcm_vhx(HX_handle r, const HX_handle *values, uint32_t count);

/* HX_: modular arithmetic */
/** r = |base|^|exponent| mod |modulus|, negative when base < 0 and exponent odd; a negative exponent then takes the inverse. A zero modulus gives error -5. Returns r. */
TW_API HX_handle TW_CALL HX_powMod(HX_handle r, HX_handle base, HX_handle exponent, HX_handle modulus);
/** As HX_powMod with a 32-bit base; returns r. */
TW_API HX_handle TW_CALL HX_powMod_u32(HX_handle r, uint32_t base, HX_handle exponent, HX_handle modulus);
/** base^exponent mod modulus as a 32-bit value; a zero modulus gives error -5 and 0. */
TW_API uint32_t TW_CALL HX_powMod_u32_u32(uint32_t base, HX_handle exponent, uint32_t modulus);
/** r = a*b mod modulus; a zero modulus gives error -5. Returns r. */
TW_API HX_handle TW_CALL HX_mulMod(HX_handle r, HX_handle a, HX_handle b, HX_handle modulus);
/** r = the inverse of a modulo modulus, 0 when there is none (no error); a zero modulus gives error -5. Returns r. */
TW_API HX_handle TW_CALL HX_invertMod(HX_handle r, HX_handle a, HX_handle modulus);
/** As HX_invertMod with a 32-bit a; returns r. */
TW_API HX_handle TW_CALL HX_invertMod_u32(HX_handle r, uint32_t a, HX_handle modulus);
/** Keeps the k lowest bits of |h|, sign kept; k = 0 leaves h. Returns h. */
TW_API HX_handle TW_CALL HX_modPowTwo(HX_handle h, uint32_t k);

/* HX_: primes and random numbers */
/** 1 when h is prime (exact below 10^16) or a Baillie-PSW probable prime (above), else 0. */
TW_API uint32_t TW_CALL HX_isPrime(HX_handle h);
/** 0 composite, 2 prime (proven below 10^16), 1 probable prime: Baillie-PSW plus `rounds` Miller-Rabin rounds to random bases. */
TW_API uint32_t TW_CALL HX_testPrimality(HX_handle h, uint32_t rounds);
/** r = the least prime above a; returns r. */
TW_API HX_handle TW_CALL HX_nextPrime(HX_handle r, HX_handle a);
/** r = the greatest prime below a; returns r. */
TW_API HX_handle TW_CALL HX_previousPrime(HX_handle r, HX_handle a);
/** r = a random prime of exactly size bits (0 when none has that length); returns r. */
TW_API HX_handle TW_CALL HX_generatePrime(HX_handle r, uint32_t size);
/** r = a uniform random number in [0, 2^|size|), negated when size < 0; |size| above 1 292 913 986 gives error -3 and 0. Returns r. */
TW_API HX_handle TW_CALL HX_random(HX_handle r, int32_t size);

/* HX_: combinatorics and sequences */
/** r = n!; returns r. */
TW_API HX_handle TW_CALL HX_factorial(HX_handle r, uint32_t n);
/** r = n!!, the product of the numbers up to n of n's parity; returns r. */
TW_API HX_handle TW_CALL HX_factorial2(HX_handle r, uint32_t n);
/** r = n#, the product of the primes up to n; returns r. */
TW_API HX_handle TW_CALL HX_primeFactorial(HX_handle r, uint32_t n);
/** r = C(n, k); 0 when n < 0, k < 0 or k > n. Returns r. */
TW_API HX_handle TW_CALL HX_combination(HX_handle r, int32_t n, int32_t k);
/** r = n! / (n-k)!; 0 when n < 0, k < 0 or k > n. Returns r. */
TW_API HX_handle TW_CALL HX_permutation(HX_handle r, int32_t n, int32_t k);
/** r = F(n) (negative n too); returns r. */
TW_API HX_handle TW_CALL HX_fibonacci(HX_handle r, int32_t n);
/** r = L(n), with L(0) = 2 (negative n too); returns r. */
TW_API HX_handle TW_CALL HX_lucas(HX_handle r, int32_t n);
/** r = the product of count 32-bit values (1 for an empty list); returns r. */
TW_API HX_handle TW_CALL HX_product_v32(HX_handle r, const uint32_t *values, uint32_t count);
/** r = the signed product of count numbers (1 for an empty list); a null array with count > 0 gives error -4 and null. Returns r. */
TW_API HX_handle TW_CALL HX_product_vhx(HX_handle r, const HX_handle *values, uint32_t count);
/** r = the sum of values[i]^power (0 for an empty list; power 0 gives the product); returns r. */
TW_API HX_handle TW_CALL HX_sumsOfLikePowers_v32(HX_handle r, const uint32_t *values, uint32_t count, uint32_t power);
/** r = the sum of values[i]^power over signed numbers ((-2)^3 counts -8); returns r. */
TW_API HX_handle TW_CALL HX_sumsOfLikePowers_vhx(HX_handle r, const HX_handle *values, uint32_t count, uint32_t power);

/* HX_: text */
/** Hexadecimal text of h with "0x" (TEXT_ flags), valid until h changes or the next call; *textLength (may be null) gets its length. Null on failure. */
TW_API const char  *TW_CALL HX_getStrA(HX_handle h, uint8_t flags, uint32_t *textLength);
/** As HX_getStrA in 16-bit characters. */
TW_API const tw_wchar  *TW_CALL HX_getStrW(HX_handle h, uint8_t flags, uint32_t *textLength);
/** Bare hexadecimal digits of h, without "0x" (TEXT_ flags); null on failure. */
TW_API const char  *TW_CALL HX_getHexStrA(HX_handle h, uint8_t flags, uint32_t *textLength);
/** As HX_getHexStrA in 16-bit characters. */
TW_API const tw_wchar  *TW_CALL HX_getHexStrW(HX_handle h, uint8_t flags, uint32_t *textLength);
/** Text of h in any radix from 2 (radix 0 is 2^32; above 62 each digit is written [ddd]), grouped by groupLength with TEXT_GROUP; *digitCount gets the digit count. Radix 1 gives error -7 and null. */
TW_API const char  *TW_CALL HX_getStrRadixA(HX_handle h, uint32_t radix, uint32_t *digitCount, uint8_t flags, uint32_t groupLength, uint32_t *textLength);
/** As HX_getStrRadixA in 16-bit characters. */
TW_API const tw_wchar  *TW_CALL HX_getStrRadixW(HX_handle h, uint32_t radix, uint32_t *digitCount, uint8_t flags, uint32_t groupLength, uint32_t *textLength);
/** Reads decimal text, or hexadecimal after "0x"; one leading '-', other non-digits skipped, never refused (null text gives 0). Returns h. */
TW_API HX_handle TW_CALL HX_set_strA(HX_handle h, const char *text);
/** As HX_set_strA from 16-bit characters. */
TW_API HX_handle TW_CALL HX_set_strW(HX_handle h, const tw_wchar *text);
/** Reads the whole text as hexadecimal (non-hex characters skipped; one leading '-'). Returns h. */
TW_API HX_handle TW_CALL HX_setHexStrA(HX_handle h, const char *text);
/** As HX_setHexStrA from 16-bit characters. */
TW_API HX_handle TW_CALL HX_setHexStrW(HX_handle h, const tw_wchar *text);
/** Frees the text buffers of h (their pointers become invalid). */
TW_API void TW_CALL HX_freeStrBuffer(HX_handle h);
/** |h| packed as bytes, one radix-256 digit each, most significant first (zero digits are zero bytes: take the length from HX_getBits). Null on failure. */
TW_API const char  *TW_CALL HX_getTextA(HX_handle h);
/** |h| packed as 16-bit characters, one radix-65536 digit each, most significant first. */
TW_API const tw_wchar  *TW_CALL HX_getTextW(HX_handle h);
/** Sets h from zero-terminated packed radix-256 text (null gives 0). Returns h. */
TW_API HX_handle TW_CALL HX_setTextA(HX_handle h, const char *text);
/** Sets h from zero-terminated packed radix-65536 text. Returns h. */
TW_API HX_handle TW_CALL HX_setTextW(HX_handle h, const tw_wchar *text);
/** @} */

/** @name RC_: digit vectors in any radix from 2 to 2^32 (radix 0 stands for 2^32) */
/** @{ */
/** Creates an empty converter in the radix (its value reads 0). */
TW_API RC_handle TW_CALL RC_new(uint32_t radix);
/** Creates a converter holding the value of decimal (or "0x" hexadecimal) text, read as HI_set_strA reads it. */
TW_API RC_handle TW_CALL RC_new_strA(uint32_t radix, const char *text);
/** As RC_new_strA from 16-bit characters. */
TW_API RC_handle TW_CALL RC_new_strW(uint32_t radix, const tw_wchar *text);
/** Deletes a converter; 1 on success or for null, 0 with error -4 for an unknown handle. */
TW_API uint32_t TW_CALL RC_delete(RC_handle h);
/** Number of live RC_ handles. */
TW_API int32_t TW_CALL RC_getCount(void);
/** The converter's radix (0 for 2^32). */
TW_API uint32_t TW_CALL RC_getRadix(RC_handle h);
/** The sign of the value: -1, 0 or +1. */
TW_API int32_t TW_CALL RC_getSign(RC_handle h);
/** Fills *view with the digits, least significant first, and returns view (null view: null). */
TW_API DigitVectorView *TW_CALL RC_getVector(RC_handle h, DigitVectorView *view);
/** Replaces the digits by a copy of count digits (radix and sign kept); returns count, or -7 (error -7) when a digit is not below the radix, or 0 (error -4) for a null array with count > 0. */
TW_API int32_t TW_CALL RC_resetVector(RC_handle h, const uint32_t *digits, uint32_t count);
/** Empties the digit vector; the value becomes 0. */
TW_API void TW_CALL RC_clearVector(RC_handle h);
/** Sets the radix without touching the digits (the value changes meaning); radix 1 gives error -7. Returns the radix held. */
TW_API int32_t TW_CALL RC_resetRadix(RC_handle h, int32_t radix);
/** Stores the sign as given; returns it. */
TW_API int32_t TW_CALL RC_resetSign(RC_handle h, int32_t sign);
/** Converts the digits to a new radix, same value; radix 1 gives error -7 and no change. Returns h. */
TW_API RC_handle TW_CALL RC_convert2Radix(RC_handle h, uint32_t newRadix);
/** Sets the converter to the value of a decimal number, in its current radix; returns h. */
TW_API RC_handle TW_CALL RC_set_hi(RC_handle h, HI_handle a);
/** Sets the converter to the value of a binary number, in its current radix; returns h. */
TW_API RC_handle TW_CALL RC_set_hx(RC_handle h, HX_handle a);
/** Sets the converter to the value of another converter, in its own radix; returns h. */
TW_API RC_handle TW_CALL RC_set_rc(RC_handle h, RC_handle a);
/** Sets the converter to a signed 32-bit value; returns h. */
TW_API RC_handle TW_CALL RC_set_s32(RC_handle h, int32_t v);
/** Sets the converter to an unsigned 32-bit value; returns h. */
TW_API RC_handle TW_CALL RC_set_u32(RC_handle h, uint32_t v);
/** Sets the converter to a signed 64-bit value; returns h. */
TW_API RC_handle TW_CALL RC_set_s64(RC_handle h, int64_t v);
/** Sets the converter to an unsigned 64-bit value; returns h. */
TW_API RC_handle TW_CALL RC_set_u64(RC_handle h, uint64_t v);
/** The value as int32_t; 0 when it does not fit. */
TW_API int32_t TW_CALL RC_get_s32(RC_handle h);
/** The value as uint32_t; 0 when it does not fit or is negative. */
TW_API uint32_t TW_CALL RC_get_u32(RC_handle h);
/** The value as int64_t; 0 when it does not fit. */
TW_API int64_t TW_CALL RC_get_s64(RC_handle h);
/** The value as uint64_t; 0 when it does not fit or is negative. */
TW_API uint64_t TW_CALL RC_get_u64(RC_handle h);
/** The sum of the digits (the sign ignored). */
TW_API uint64_t TW_CALL RC_sumOfDigits(RC_handle h);
/** @} */

#ifdef __cplusplus
}
#endif

#endif /* TARNWICK_H */
