// The one-lane "vector" of the portable path: plain 32-bit words with 64-bit
// products.  Same interface as lanes_avx2.h and lanes_avx512.h, so the kernels
// in transform_kernels.h are written once.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/radix.h"

namespace tw::arith::ntt {

struct ScalarLanes {
    using Reg = std::uint32_t;
    static constexpr std::size_t lanes = 1;

    static Reg load(const Limb* p) { return *p; }
    static void store(Limb* p, Reg v) { *p = v; }
    static Reg broadcast(std::uint32_t v) { return v; }
    static Reg add(Reg a, Reg b) { return a + b; }
    static Reg sub(Reg a, Reg b) { return a - b; }
    static Reg minu(Reg a, Reg b) { return a < b ? a : b; }
    static Reg mullo(Reg a, Reg b) { return a * b; }
    static Reg mulhi(Reg a, Reg b) { return Reg((std::uint64_t(a) * b) >> 32); }
    static void mulWide(Reg a, Reg b, Reg& hi, Reg& lo) {
        const std::uint64_t t = std::uint64_t(a) * b;
        hi = Reg(t >> 32);
        lo = Reg(t);
    }
    // Lanes 0, 2, 4, ... of the pair (a, b); lanes in reverse order.
    static Reg evenLanes(Reg a, Reg) { return a; }
    static Reg reverse(Reg a) { return a; }
};

}  // namespace tw::arith::ntt
