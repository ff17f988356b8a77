#include "numtheory/meissel_count.h"

#include <cmath>

#include "frame/kernel_paths.h"

namespace tw::numtheory {
namespace {

// The count of residues prime to the a-th primorial.
constexpr std::uint32_t kTotientOfPrimorial[kPhiClosedFormPrimes + 1] = {1, 1, 2, 8, 48, 480, 5760, 92160};

// Most of the time goes to counting the bits of a masked word (about ten
// thousand counts a call): one instruction where the processor has popcnt,
// a dozen in plain arithmetic.
namespace portable {
inline std::uint32_t countBits(std::uint32_t v) { return setBits(v); }
#include "numtheory/meissel_count_body.inc"
}  // namespace portable

#if defined(__x86_64__) || defined(__i386__)
#define TW_HAS_POPCNT_PATH 1
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("popcnt"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("popcnt")
#endif
namespace popcnt {
inline std::uint32_t countBits(std::uint32_t v) { return std::uint32_t(__builtin_popcount(v)); }
#include "numtheory/meissel_count_body.inc"
}  // namespace popcnt
#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif
#endif

}  // namespace

std::uint32_t meisselCount(std::uint32_t x, const PrimeTables& t) {
#ifdef TW_HAS_POPCNT_PATH
    // Every processor with AVX2 has popcnt; the portable path serves the rest
    // and the tests that pin it.
    if (kernelChoice().path >= KernelPath::Avx2) return popcnt::meissel(x, t);
#endif
    return portable::meissel(x, t);
}

}  // namespace tw::numtheory
