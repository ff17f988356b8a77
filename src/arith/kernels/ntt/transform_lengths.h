// The transform lengths the product may use: powers of two and three times
// powers of two, from a sorted table of 64 entries (0, 1, 2, 3, 4, 6, 8, 12, ...,
// 2^31, 3 * 2^30).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace tw::arith::ntt {

inline constexpr std::size_t kTransformLengthCount = 64;

constexpr std::array<std::uint32_t, kTransformLengthCount> makeTransformLengths() {
    std::array<std::uint32_t, kTransformLengthCount> t{};
    t[0] = 0;
    t[1] = 1;
    for (unsigned k = 1; k <= 31; ++k) {
        t[2 * k] = std::uint32_t(1) << k;
        t[2 * k + 1] = std::uint32_t(3) << (k - 1);
    }
    return t;
}

inline constexpr std::array<std::uint32_t, kTransformLengthCount> kTransformLengths = makeTransformLengths();

// A power of two is returned as it is (2^31 included); any other length is
// rounded up to the first table entry not below it, found by binary search.
// Precondition: length <= 3 * 2^30.
std::size_t roundTransformLength(std::size_t length);

constexpr bool isPowerOfTwo(std::size_t n) { return (n & (n - 1)) == 0; }

// The power-of-two block M of a length N = M or N = 3M.
constexpr std::size_t transformBlockLength(std::size_t length) {
    return isPowerOfTwo(length) ? length : length / 3;
}

// The smallest power of two >= n (n >= 1).
constexpr std::size_t nextPowerOfTwo(std::size_t n) {
    std::size_t p = 1;
    while (p < n) p <<= 1;
    return p;
}

}  // namespace tw::arith::ntt
