// The Montgomery product on 52-bit lanes, one limb of a a step (operand
// scanning), the whole accumulator in vector registers.  Step i adds the low
// halves of a_i b and q m, with q = -(lane 0) / m mod 2^52 chosen so that lane
// 0 becomes a multiple of 2^52; the accumulator moves down one lane, lane 0
// taking that lane's carry; then the high halves of a_i b and q m land in the
// lanes of their low halves, one limb up before the move.  Lanes are not
// normalised between steps: each gains at most four terms below 2^52 and a
// carry below 2^13 a step, so after n <= 160 steps it holds below 2^63.
//
// Bound: the sum a b + Q m < 4m^2 + R m < 2 R m for 4m < R, so the result
// after the n steps is below 2m; normalising the carries leaves it in n lanes
// below 2^52.
#include "numtheory/montgomery_ifma.h"

#include <array>
#include <utility>

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
// GCC 12's 512-bit intrinsics pass an undefined vector as the (unused)
// merge source and then warn that it may be uninitialized.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#define TW_HAVE_IFMA 1
#else
#define TW_HAVE_IFMA 0
#endif

namespace tw::numtheory {

#if TW_HAVE_IFMA

namespace {

#define TW_IFMA __attribute__((target("avx512f,avx512ifma")))

constexpr std::uint64_t kMask52 = (std::uint64_t(1) << 52) - 1;

// Carries of every lane into the lane above until each is below 2^52; the
// top lane's carry would be lost, and there is none for values below 2^(52 n).
template <std::size_t V>
TW_IFMA inline void normalise(__m512i (&acc)[V]) {
    const __m512i mask = _mm512_set1_epi64(std::int64_t(kMask52)), zero = _mm512_setzero_si512();
    for (;;) {
        __mmask8 any = 0;
        for (std::size_t r = 0; r < V; ++r) any |= _mm512_cmpgt_epu64_mask(acc[r], mask);
        if (!any) return;
        __m512i carry[V];
        for (std::size_t r = 0; r < V; ++r) {
            carry[r] = _mm512_srli_epi64(acc[r], 52);
            acc[r] = _mm512_and_si512(acc[r], mask);
        }
        // each lane takes the carry of the lane below: a move up one lane
        for (std::size_t r = V; r-- > 0;)
            acc[r] = _mm512_add_epi64(acc[r], _mm512_alignr_epi64(carry[r], r ? carry[r - 1] : zero, 7));
    }
}

template <std::size_t V>
TW_IFMA void mulLanes(std::uint64_t* out, const std::uint64_t* a, const std::uint64_t* b, const std::uint64_t* m,
                      std::size_t n, std::uint64_t k0) {
    __m512i acc[V], bv[V], mv[V];
    for (std::size_t r = 0; r < V; ++r) {
        acc[r] = _mm512_setzero_si512();
        bv[r] = _mm512_loadu_si512(b + 8 * r);
        mv[r] = _mm512_loadu_si512(m + 8 * r);
    }
    const __m512i zero = _mm512_setzero_si512();
    const std::uint64_t b0 = b[0], m0 = m[0];
    for (std::size_t i = 0; i < n; ++i) {
        const __m512i ai = _mm512_set1_epi64(std::int64_t(a[i]));
        // lane 0 after a_i b (the low 52 bits of a product are those of its
        // 64-bit wrap): q and the carry out of lane 0 in scalar
        const std::uint64_t t0 = std::uint64_t(_mm_cvtsi128_si64(_mm512_castsi512_si128(acc[0]))) +
                                 (a[i] * b0 & kMask52);
        const std::uint64_t q = (t0 * k0) & kMask52;
        const std::uint64_t carry = (t0 + (q * m0 & kMask52)) >> 52;
        const __m512i qv = _mm512_set1_epi64(std::int64_t(q));
        for (std::size_t r = 0; r < V; ++r) {
            acc[r] = _mm512_madd52lo_epu64(acc[r], ai, bv[r]);
            acc[r] = _mm512_madd52lo_epu64(acc[r], qv, mv[r]);
        }
        // down one lane; lane 0 of the first vector, a multiple of 2^52, leaves
        for (std::size_t r = 0; r + 1 < V; ++r) acc[r] = _mm512_alignr_epi64(acc[r + 1], acc[r], 1);
        acc[V - 1] = _mm512_alignr_epi64(zero, acc[V - 1], 1);
        acc[0] = _mm512_add_epi64(acc[0], _mm512_zextsi128_si512(_mm_cvtsi64_si128(std::int64_t(carry))));
        for (std::size_t r = 0; r < V; ++r) {
            acc[r] = _mm512_madd52hi_epu64(acc[r], ai, bv[r]);
            acc[r] = _mm512_madd52hi_epu64(acc[r], qv, mv[r]);
        }
    }
    normalise(acc);
    for (std::size_t r = 0; r < V; ++r) _mm512_storeu_si512(out + 8 * r, acc[r]);
}

using MulLanes = void (*)(std::uint64_t*, const std::uint64_t*, const std::uint64_t*, const std::uint64_t*,
                          std::size_t, std::uint64_t);

template <std::size_t... V>
constexpr std::array<MulLanes, sizeof...(V)> mulTable(std::index_sequence<V...>) {
    return {&mulLanes<V + 1>...};
}
constexpr auto kMulByVectors = mulTable(std::make_index_sequence<kIfmaMaxLimbs / 8>());

}  // namespace

void montgomeryMulIfma(std::uint64_t* out, const std::uint64_t* a, const std::uint64_t* b, const std::uint64_t* m,
                       std::size_t n, std::uint64_t k0) {
    kMulByVectors[ifmaLanes(n) / 8 - 1](out, a, b, m, n, k0);
}

#else

void montgomeryMulIfma(std::uint64_t*, const std::uint64_t*, const std::uint64_t*, const std::uint64_t*, std::size_t,
                       std::uint64_t) {}

#endif

}  // namespace tw::numtheory
