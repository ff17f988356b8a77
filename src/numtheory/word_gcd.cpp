#include "numtheory/word_gcd.h"

#include <algorithm>
#include <bit>
#include <utility>
#include <vector>

#include "frame/error_state.h"

namespace tw::numtheory {

std::uint32_t oddPartGcd(std::uint32_t a, std::uint32_t b) {
    std::uint32_t big = std::max(a, b), small = std::min(a, b);
    if (small == 0) return big;
    // After the first round big is odd, so the loop is a binary GCD of odd
    // parts; small never reaches zero before its shift.
    do {
        small >>= std::countr_zero(small);
        if (small < big) std::swap(small, big);
        small -= big;
    } while (small != 0);
    return big;
}

std::uint64_t oddPartLcm(std::uint32_t a, std::uint32_t b) {
    if (a == 0) return b;
    if (b == 0) return a;
    return std::uint64_t(b) * (a / oddPartGcd(a, b));
}

std::uint32_t oddPartGcdOf(const std::uint32_t* values, std::uint32_t count) {
    if (count == 0) return 0;
    if (values == nullptr) {
        setLastError(kErrHandle);
        return 0;
    }
    std::vector<std::uint32_t> sorted(values, values + count);
    std::sort(sorted.begin(), sorted.end());
    std::uint32_t g = sorted[0];
    for (std::uint32_t i = 1; i < count && g != 1; ++i) {
        if (sorted[i] == sorted[i - 1]) continue;
        if (terminateRequested()) return 1;
        g = oddPartGcd(g, sorted[i]);
    }
    return g;
}

std::uint32_t extendedGcd(std::int32_t* x, std::int32_t* y, std::int32_t a, std::int32_t b) {
    if (x == y) return 0;
    const auto write = [x, y](std::uint32_t xv, std::uint32_t yv) {
        if (x) *x = std::int32_t(xv);
        if (y) *y = std::int32_t(yv);
    };
    const auto magnitude = [](std::int32_t v) { return v < 0 ? 0u - std::uint32_t(v) : std::uint32_t(v); };
    if (b == 0) {
        write(a < 0 ? ~0u : 1u, 0);
        return magnitude(a);
    }
    if (a == 0) {
        write(0, b < 0 ? ~0u : 1u);
        return magnitude(b);
    }
    // Remainders in 64 bits, so that -2^31 / -1 cannot trap; cofactors wrap
    // modulo 2^32 as unsigned words.
    std::int64_t r0 = a, r1 = b;
    std::uint32_t s0 = 1, s1 = 0, t0 = 0, t1 = 1;
    while (r1 != 0) {
        const std::int64_t q = r0 / r1;
        const std::uint32_t qw = std::uint32_t(q);
        r0 = std::exchange(r1, r0 - q * r1);
        s0 = std::exchange(s1, s0 - qw * s1);
        t0 = std::exchange(t1, t0 - qw * t1);
    }
    std::uint32_t g = std::uint32_t(r0);
    if (std::int32_t(g) < 0) {
        g = 0u - g;
        s0 = 0u - s0;
        t0 = 0u - t0;
    }
    write(s0, t0);
    return g;
}

}  // namespace tw::numtheory
