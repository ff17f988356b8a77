#include "numtheory/word_modular.h"

#include <bit>
#include <utility>

#include "frame/error_state.h"

namespace tw::numtheory {

namespace {

// The exponentiation with the reduction `reduce` of a 64-bit product.
template <class Reduce>
std::uint32_t powerBy(std::uint32_t r, std::uint32_t exponent, Reduce reduce) {
    std::uint32_t bit = std::uint32_t(1) << (31 - std::countl_zero(exponent));
    std::uint32_t acc = r;
    for (;;) {
        if (acc == 0) return 0;
        bit >>= 1;
        if (bit == 0) return acc;
        acc = reduce(std::uint64_t(acc) * acc);
        if (exponent & bit) acc = reduce(std::uint64_t(acc) * r);
    }
}

}  // namespace

std::uint32_t powModWord(std::uint32_t base, std::uint32_t exponent, std::uint32_t modulus) {
    if (modulus == 0) {
        setLastError(kErrDivZero);
        return 0;
    }
    if (modulus == 1 || base == 0) return 0;
    if (base == 1 || exponent == 0) return 1;
    const std::uint32_t r = base % modulus;
    if (std::has_single_bit(modulus)) {
        const std::uint32_t mask = modulus - 1;
        return powerBy(r, exponent, [mask](std::uint64_t p) { return std::uint32_t(p) & mask; });
    }
    return powerBy(r, exponent, [modulus](std::uint64_t p) { return std::uint32_t(p % modulus); });
}

std::uint32_t invertModWord(std::uint32_t a, std::uint32_t modulus) {
    if (modulus == 0) {
        setLastError(kErrDivZero);
        return 0;
    }
    if (modulus == 1) return 1;
    std::int64_t r0 = modulus, r1 = a % modulus, c0 = 0, c1 = 1;
    while (r1 != 0) {
        const std::int64_t q = r0 / r1;
        r0 = std::exchange(r1, r0 - q * r1);
        c0 = std::exchange(c1, c0 - q * c1);
    }
    if (r0 != 1) return 0;
    return std::uint32_t(c0 < 0 ? c0 + modulus : c0);
}

}  // namespace tw::numtheory
