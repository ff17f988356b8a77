// Exported library-wide functions of the TW_ family.
#include "frame/error_state.h"
#include "frame/random_generator.h"
#include "frame/stopwatch.h"
#include "frame/version.h"
#include "numtheory/word_gcd.h"
#include "numtheory/word_modular.h"
#include "numtheory/word_primes.h"
#include "tarnwick.h"

extern "C" {

TW_API int32_t TW_CALL TW_getLastError(void) { return tw::lastError(); }
TW_API uint32_t TW_CALL TW_isTerminated(void) { return tw::terminateRequested() ? 1u : 0u; }
TW_API void TW_CALL TW_setTerminate(uint32_t flag) {
    if (flag != 0)
        tw::setLastError(tw::kErrStopped);
    else
        tw::clearErrorState();
}

// ---- stopwatch ----
TW_API void TW_CALL TW_enableTimer(uint32_t on) { tw::stopwatchEnable(on); }
TW_API void TW_CALL TW_resetTimer(uint32_t value, int32_t unit) { tw::stopwatchReset(value, unit); }
TW_API uint64_t TW_CALL TW_getTimer(int32_t unit) { return tw::stopwatchRead(unit); }
TW_API const char *TW_CALL TW_getTimerStrA(int32_t format) { return tw::stopwatchTextA(format); }
TW_API const tw_wchar *TW_CALL TW_getTimerStrW(int32_t format) { return tw::stopwatchTextW(format); }

// ---- random seed, version, export table ----
TW_API void TW_CALL TW_seedRandom(uint32_t seed) { tw::seedLibraryGenerator(seed); }
TW_API const char *TW_CALL TW_getVerA(void) { return tw::versionTextA(); }
TW_API const tw_wchar *TW_CALL TW_getVerW(void) { return tw::versionTextW(); }
TW_API uint32_t TW_CALL TW_getExportFunNums(uint32_t mask) { return tw::exportedFunctionCount(mask); }

// ---- 32-bit number theory ----
TW_API uint32_t TW_CALL TW_gcd(uint32_t a, uint32_t b) { return tw::numtheory::oddPartGcd(a, b); }
TW_API uint64_t TW_CALL TW_lcm(uint32_t a, uint32_t b) { return tw::numtheory::oddPartLcm(a, b); }
TW_API uint32_t TW_CALL TW_gcdEx(int32_t *x, int32_t *y, int32_t a, int32_t b) {
    return tw::numtheory::extendedGcd(x, y, a, b);
}
TW_API uint32_t TW_CALL TW_gcd_v32(const uint32_t *values, uint32_t count) {
    return tw::numtheory::oddPartGcdOf(values, count);
}
TW_API uint32_t TW_CALL TW_powMod(uint32_t base, int32_t exponent, uint32_t modulus) {
    return tw::numtheory::powModWord(base, uint32_t(exponent), modulus);
}
TW_API uint32_t TW_CALL TW_invertMod(uint32_t a, uint32_t modulus) { return tw::numtheory::invertModWord(a, modulus); }

// ---- 32-bit primes ----
TW_API uint32_t TW_CALL TW_isPrime(uint32_t n) { return tw::numtheory::isPrimeWord(n); }
TW_API int32_t TW_CALL TW_nextPrime(int32_t n) { return tw::numtheory::nextPrimeSigned(n); }
TW_API int32_t TW_CALL TW_previousPrime(int32_t n) { return tw::numtheory::previousPrimeSigned(n); }
TW_API uint32_t TW_CALL TW_getPrime(uint32_t k) { return tw::numtheory::nthPrime(k); }
TW_API uint32_t TW_CALL TW_getPrimePi(uint32_t n) { return tw::numtheory::primePi(n); }
TW_API uint32_t TW_CALL TW_getPrimeCount(uint32_t low, uint32_t high) { return tw::numtheory::primeCount(low, high); }
TW_API uint32_t TW_CALL TW_getPrimeList(uint32_t *out, uint32_t low, uint32_t high, uint32_t maxCount) {
    return tw::numtheory::primeList(out, low, high, maxCount);
}

}  // extern "C"
