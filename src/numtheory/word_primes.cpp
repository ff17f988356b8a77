#include "numtheory/word_primes.h"

#include <algorithm>
#include <bit>
#include <vector>

#include "arith/tuning.h"
#include "numtheory/meissel_count.h"
#include "numtheory/prime_tables.h"

namespace tw::numtheory {
namespace {

// Composite, yet a strong probable prime to the bases 2, 7 and 61 below the
// cut-over point of the two base lists: answered without a test.
constexpr std::uint32_t kListedComposite = 9080191;
// Below this, the bases 31 and 73 decide; from it on, 2, 7 and 61.
constexpr std::uint32_t kTwoBaseLimit = 15560651;

constexpr std::uint32_t kWheelResidue[8] = {1, 7, 11, 13, 17, 19, 23, 29};
constexpr std::uint32_t kWheelGap[8] = {6, 4, 2, 4, 2, 4, 6, 2};
// The index of the least wheel residue not below r.
constexpr std::uint8_t kWheelIndex[30] = {0, 0, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 4,
                                          4, 4, 4, 5, 5, 6, 6, 6, 6, 7, 7, 7, 7, 7, 7};

// pi(2^k) for k = 0..31 and pi(10^k) for k = 0..6.
constexpr std::uint32_t kPiOfPowerOfTwo[32] = {
    0,      1,      2,      4,       6,       11,      18,      31,       54,       97,       172,
    309,    564,    1028,   1900,    3512,    6542,    12251,   23000,    43390,    82025,    155611,
    295947, 564163, 1077871, 2063689, 3957809, 7603553, 14630843, 28192750, 54400028, 105097565};
constexpr std::uint32_t kPiOfPowerOfTen[7] = {0, 4, 25, 168, 1229, 9592, 78498};

// pi(10^7), pi(10^8), pi(10^9): the brackets of the k-th prime's bisection.
constexpr std::uint32_t kPiTenToSeven = 664579, kPiTenToEight = 5761455, kPiTenToNine = 50847534;

std::uint32_t powMod(std::uint32_t b, std::uint32_t e, std::uint32_t n) {
    std::uint64_t result = 1, base = b % n;
    for (; e != 0; e >>= 1) {
        if (e & 1) result = result * base % n;
        base = base * base % n;
    }
    return std::uint32_t(result);
}

bool strongProbablePrime(std::uint32_t n, std::uint32_t base) {
    std::uint32_t d = n - 1;
    int s = 0;
    while ((d & 1) == 0) d >>= 1, ++s;
    std::uint64_t x = powMod(base, d, n);
    if (x == 1 || x == n - 1) return true;
    while (--s > 0) {
        x = x * x % n;
        if (x == n - 1) return true;
    }
    return false;
}

// The exact test of an odd n between the tables.
bool strongTestSaysPrime(std::uint32_t n) {
    if (n == kListedComposite) return false;
    if (n < kTwoBaseLimit) return strongProbablePrime(n, 31) && strongProbablePrime(n, 73);
    return strongProbablePrime(n, 2) && strongProbablePrime(n, 7) && strongProbablePrime(n, 61);
}

bool inTable(const std::vector<std::uint32_t>& table, std::uint32_t n) {
    return std::binary_search(table.begin(), table.end(), n);
}

// Entries of the table not above n.
std::uint32_t countNotAbove(const std::vector<std::uint32_t>& table, std::uint32_t n) {
    return std::uint32_t(std::upper_bound(table.begin(), table.end(), n) - table.begin());
}

// Primes in [low, high] by sieving windows of the range; stops after
// maxCount and writes them when out is given.
std::uint32_t sieveRange(std::uint32_t* out, std::uint32_t low, std::uint32_t high, std::uint32_t maxCount) {
    constexpr std::uint32_t kWindow = 1u << 18;
    std::vector<std::uint8_t> composite;
    std::uint32_t found = 0;
    for (std::uint64_t start = low; start <= high && found < maxCount; start += kWindow) {
        const std::uint32_t length = std::uint32_t(std::min<std::uint64_t>(kWindow, std::uint64_t(high) - start + 1));
        sieveSegment(std::uint32_t(start), length, composite);
        for (std::uint32_t i = 0; i < length && found < maxCount; ++i) {
            if (composite[i]) continue;
            if (out != nullptr) out[found] = std::uint32_t(start + i);
            ++found;
        }
    }
    return found;
}

}  // namespace

std::uint32_t isPrimeWord(std::uint32_t n) {
    if (n < 2) return 0;
    if ((n & 1) == 0) return n == 2;
    const PrimeTables& t = primeTables();
    if (n <= kSmallPrimeLimit + 1) return inTable(t.small, n);
    if (n >= kTopPrimeStart) return inTable(t.top, n);
    return strongTestSaysPrime(n);
}

std::uint32_t nextPrimeWord(std::uint32_t n) {
    if (n < 2) return 2;
    const PrimeTables& t = primeTables();
    if (n <= kSmallPrimeLimit + 1) {
        if (n >= kSmallPrimeLimit) return 2643913;  // the first prime past the table
        return *std::upper_bound(t.small.begin(), t.small.end(), n);
    }
    if (n >= kTopPrimeStart) {
        const auto it = std::upper_bound(t.top.begin(), t.top.end(), n);
        return it == t.top.end() ? 0 : *it;
    }
    // Candidates on the mod-30 wheel from n + 1 on.
    const std::uint32_t r = (n + 1) % 30;
    std::uint32_t i = kWheelIndex[r];
    std::uint32_t c = kWheelResidue[i] - r + n + 1;
    while (c == kListedComposite || !strongTestSaysPrime(c)) {
        c += kWheelGap[i];
        i = (i + 1) & 7;
        if (c >= kTopPrimeStart) return kTopPrimeStart;
    }
    return c;
}

std::uint32_t previousPrimeWord(std::uint32_t n) {
    if (n <= 2) return 0;
    const PrimeTables& t = primeTables();
    if (n > kTopPrimeStart) return *(std::lower_bound(t.top.begin(), t.top.end(), n) - 1);
    if (n <= kSmallPrimeLimit + 1) return *(std::lower_bound(t.small.begin(), t.small.end(), n) - 1);
    // Wheel candidates downward from n - 1; the small table ends the walk.
    std::uint32_t c = n - 1;
    while (kWheelResidue[kWheelIndex[c % 30]] != c % 30) --c;
    for (;;) {
        if (c <= kSmallPrimeLimit) return kSmallPrimeLimit;
        if (strongTestSaysPrime(c)) return c;
        const std::uint32_t index = kWheelIndex[c % 30];
        c -= kWheelGap[(index + 7) & 7];
    }
}

std::int32_t nextPrimeSigned(std::int32_t n) {
    if (n < -2) return -std::int32_t(previousPrimeWord(0u - std::uint32_t(n)));
    if (n <= 1) return 2;
    if (n == 2147483647) return 1;
    return std::int32_t(nextPrimeWord(std::uint32_t(n)));
}

std::int32_t previousPrimeSigned(std::int32_t n) {
    if (n < -1) {
        if (n <= -2147483647) return -1;
        return -std::int32_t(nextPrimeWord(std::uint32_t(-n)));
    }
    if (n <= 2) return -2;
    return std::int32_t(previousPrimeWord(std::uint32_t(n)));
}

std::uint32_t primePi(std::uint32_t n) {
    if (n < 2) return 0;
    if ((n & (n - 1)) == 0) return kPiOfPowerOfTwo[std::countr_zero(n)];
    const PrimeTables& t = primeTables();
    if (n <= kSmallPrimeLimit + 1) {
        for (std::uint32_t k = 0, power = 1; k < 7; ++k, power *= 10)
            if (n == power) return kPiOfPowerOfTen[k];
        return t.smallPi(n);
    }
    if (n >= kTopPrimeStart) return kPrimesBelowTop + countNotAbove(t.top, n);
    return meisselCount(n, t);
}

std::uint32_t nthPrime(std::uint32_t k) {
    if (k == 0) return 0;
    const PrimeTables& t = primeTables();
    if (k <= kSmallPrimeCount) return t.small[k - 1];
    if (k > kPrimesBelowTop) return k - kPrimesBelowTop <= kTopPrimeCount ? t.top[k - kPrimesBelowTop - 1] : 0;
    // The least x with pi(x) >= k is the k-th prime; bisect in the bracket
    // the counts of powers of ten give, and count the last stretch by sieving.
    std::uint64_t low = kSmallPrimeLimit, high;
    if (k < kPiTenToSeven) high = 10000000;
    else if (k < kPiTenToEight) low = 10000000, high = 100000000;
    else if (k < kPiTenToNine) low = 100000000, high = 1000000000;
    else low = 1000000000, high = kTopPrimeStart;
    // Invariant: pi(low) < k <= pi(high).  A power of ten is itself a bracket's
    // start with pi(low) = k possible; a prime lies within 1000 below each.
    if (low != kSmallPrimeLimit) low -= 1000;
    while (high - low > kPrimeSieveFinishSpan) {
        const std::uint64_t mid = low + (high - low) / 2;
        if (primePi(std::uint32_t(mid)) >= k) high = mid;
        else low = mid;
    }
    std::uint32_t need = k - primePi(std::uint32_t(low));
    std::vector<std::uint8_t> composite;
    sieveSegment(std::uint32_t(low + 1), std::uint32_t(high - low), composite);
    for (std::uint32_t i = 0;; ++i)
        if (!composite[i] && --need == 0) return std::uint32_t(low + 1 + i);
}

std::uint32_t primeCount(std::uint32_t low, std::uint32_t high) {
    if (low > high) return 0;
    if (high - low < kPrimeSieveCountSpan && low > kSmallPrimeLimit && high < kTopPrimeStart)
        return sieveRange(nullptr, low, high, 0xFFFFFFFFu);
    return primePi(high) - (low == 0 ? 0 : primePi(low - 1));
}

std::uint32_t primeList(std::uint32_t* out, std::uint32_t low, std::uint32_t high, std::uint32_t maxCount) {
    if (out == nullptr) return primeCount(low, high);
    if (low > high || maxCount == 0) return 0;
    return sieveRange(out, low, high, maxCount);
}

}  // namespace tw::numtheory
