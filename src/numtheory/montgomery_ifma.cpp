// The Montgomery product on 52-bit lanes, one limb of a a step (operand
// scanning), the running sum in vector registers.  Step i adds a_i b and q_i m
// at lane i, with q_i = -(lane i) / m mod 2^52 chosen so that lane i, with the
// carry from below, becomes a multiple of 2^52.  Nothing moves: b and m are
// read moved up i mod 8 lanes (lo halves) and one more (hi halves) by
// unaligned loads from between zero lanes, and after eight steps the first
// vector of the sum, done, leaves the registers.  q_i is chosen in scalar
// from lane i as the vectors held it a step before plus the terms added
// since, so the vectors' latency stays off the chain of the q's.  Lanes are
// not normalised between steps: a lane gains at most four terms below 2^52 a
// step over at most n + 1 steps, below 2^63 for n <= 320.
//
// Bound: the sum a b + Q m < 4m^2 + R m < 2 R m for 4m < R, so the result
// above lane n (with the carry out of lane n - 1) is below 2m; normalising
// the carries leaves it in n lanes below 2^52.
#include "numtheory/montgomery_ifma.h"

#include "arith/tuning.h"
#include "frame/radix.h"

#include <array>
#include <utility>

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
// GCC 12's 512-bit intrinsics pass an undefined vector as the (unused)
// merge source and then warn that it is or may be uninitialized.
#ifndef __clang__
#if !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif
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

// Lane k of v for a lane known when compiling.
template <std::size_t K>
TW_IFMA inline std::uint64_t lane(__m512i v) {
    const __m128i pair = K < 2 ? _mm512_castsi512_si128(v) : _mm512_extracti32x4_epi32(v, K / 2);
    return std::uint64_t(K % 2 ? _mm_extract_epi64(pair, 1) : _mm_cvtsi128_si64(pair));
}

// The product's running state: the lanes from the block's first on (lo
// halves in x, hi halves in y); lane i as the vectors held it before step
// i - 1 added a_(i-1) b; the carry into lane i; q_(i-1) and a_(i-1).
template <std::size_t V>
struct Lanes {
    __m512i x[V + 1], y[V + 1];
    std::uint64_t ext = 0, carry = 0, qPrev = 0, aPrev = 0;
};

// The constants of the scalar side: b_0 and m_0 moved up 12 bits (the high
// word of x times them is the high half of x b_0, x m_0 in radix 2^52), b_1,
// m_1, k0.
struct Scalars {
    std::uint64_t b0, b0up, b1, m0up, m1, k0;
};

inline std::uint64_t high52(std::uint64_t x, std::uint64_t yUp) { return std::uint64_t((u128(x) * yUp) >> 64); }

// x += lo(v p_S), y += hi(v p_(S+1)) for the table p of a number moved up
// 0..8 lanes (V + 1 vectors each); vectors that are all zero are left out.
template <std::size_t V, std::size_t S>
TW_IFMA __attribute__((always_inline)) inline void addProducts(Lanes<V>& st, __m512i v, const std::uint64_t* p,
                                                              bool loTop, bool hiTop) {
    const std::uint64_t* lo = p + S * 8 * (V + 1);
    const std::uint64_t* hi = lo + 8 * (V + 1);
    for (std::size_t r = 0; r < V; ++r) {
        st.x[r] = _mm512_madd52lo_epu64(st.x[r], v, _mm512_load_si512(lo + 8 * r));
        if (S < 7 || r > 0) st.y[r] = _mm512_madd52hi_epu64(st.y[r], v, _mm512_load_si512(hi + 8 * r));
    }
    if (loTop) st.x[V] = _mm512_madd52lo_epu64(st.x[V], v, _mm512_load_si512(lo + 8 * V));
    if (hiTop) st.y[V] = _mm512_madd52hi_epu64(st.y[V], v, _mm512_load_si512(hi + 8 * V));
}

// Step i = 8 block + S: adds a_i b, chooses q_i, adds q_i m; b and m are read
// moved up S lanes (lo halves) and S + 1 lanes (hi halves), from their
// tables.  q_i comes from lane i in scalar: its vector value of a
// step ago plus the terms added since, of which only q_(i-1)'s wait for the
// step before: a multiply-high, a multiply and a mask a step, while the
// vectors have two steps to bring their part.  The carry out of lane i is
// known before q_i: q_i makes the low 52 bits zero, so it is t's top plus one
// unless they were zero already.
template <std::size_t V, std::size_t S>
TW_IFMA __attribute__((always_inline)) inline void step(Lanes<V>& st, std::uint64_t ai, const Scalars& c,
                                                       const std::uint64_t* bp, const std::uint64_t* m, std::size_t n) {
    // the last vector of lanes reads only zeros above limb n until S reaches into it
    const bool loTop = 8 * V - S < n, hiTop = 8 * V - S - 1 < n;
    // lane i + 1 before a_i b
    const std::uint64_t next = lane<(S + 1) % 8>(st.x[(S + 1) / 8]) + lane<(S + 1) % 8>(st.y[(S + 1) / 8]);
    const __m512i av = _mm512_set1_epi64(std::int64_t(ai));
    addProducts<V, S>(st, av, bp, loTop, hiTop);
    const std::uint64_t known = st.ext + st.carry + (st.aPrev * c.b1 & kMask52) + high52(st.aPrev, c.b0up) + (ai * c.b0 & kMask52);
    const std::uint64_t t = known + (st.qPrev * c.m1 & kMask52) + high52(st.qPrev, c.m0up);
    const std::uint64_t q = t * c.k0 & kMask52;
    st.carry = (t >> 52) + ((t & kMask52) != 0);
    st.ext = next;
    st.qPrev = q;
    st.aPrev = ai;
    addProducts<V, S>(st, _mm512_set1_epi64(std::int64_t(q)), m, loTop, hiTop);
}

// Steps S.. of a block while i < n; true when the last was step n - 1.
template <std::size_t V, std::size_t S = 0>
TW_IFMA __attribute__((always_inline)) inline bool block(Lanes<V>& st, std::size_t& i, std::size_t n,
                                                        const std::uint64_t* a, const Scalars& c,
                                                        const std::uint64_t* bp, const std::uint64_t* m) {
    step<V, S>(st, a[i], c, bp, m, n);
    if (++i == n) return true;
    if constexpr (S < 7) return block<V, S + 1>(st, i, n, a, c, bp, m);
    return false;
}

// Rows S..7 of a table: b moved up S lanes, from its vectors bv[1..V]
// between zero vectors bv[0] and bv[V + 1].
template <std::size_t V, std::size_t S>
TW_IFMA __attribute__((always_inline)) inline void moveUp(std::uint64_t* table, const __m512i* bv) {
    for (std::size_t r = 0; r <= V; ++r)
        _mm512_store_si512(table + 8 * (S * (V + 1) + r), _mm512_alignr_epi64(bv[r + 1], bv[r], 8 - S));
    if constexpr (S < 7) moveUp<V, S + 1>(table, bv);
}

template <std::size_t V>
TW_IFMA void mulLanes(std::uint64_t* out, const std::uint64_t* a, const std::uint64_t* b, const std::uint64_t* m,
                      std::size_t n, std::uint64_t k0) {
    // the table of b, built from its vectors: aligned loads in the steps
    alignas(64) std::uint64_t bt[9 * 8 * (V + 1)];
    const __m512i zero = _mm512_setzero_si512();
    __m512i bv[V + 2];
    bv[0] = bv[V + 1] = zero;
    for (std::size_t r = 0; r < V; ++r) bv[r + 1] = _mm512_loadu_si512(b + 8 * r);
    for (std::size_t r = 0; r <= V; ++r) {
        _mm512_store_si512(bt + 8 * r, bv[r + 1]);
        _mm512_store_si512(bt + 8 * (8 * (V + 1) + r), bv[r]);
    }
    moveUp<V, 1>(bt, bv);
    const Scalars c{b[0], b[0] << 12, b[1], m[0] << 12, m[1], k0};
    Lanes<V> st;
    for (std::size_t r = 0; r <= V; ++r) st.x[r] = st.y[r] = zero;
    std::size_t i = 0;
    for (;;) {
        const bool last = block<V>(st, i, n, a, c, bt, m);
        if (last && i % 8 != 0) break;
        // the block's first vector is done: its lanes are multiples of 2^52 with the carries
        for (std::size_t r = 0; r < V; ++r) st.x[r] = st.x[r + 1], st.y[r] = st.y[r + 1];
        st.x[V] = st.y[V] = zero;
        if (last) break;
    }
    // the result starts at lane n, i % 8 lanes into the block, and takes the carry out of lane n - 1
    __m512i sum[V + 1], acc[V];
    for (std::size_t r = 0; r <= V; ++r) sum[r] = _mm512_add_epi64(st.x[r], st.y[r]);
    const __m512i from = _mm512_add_epi64(_mm512_set1_epi64(std::int64_t(i % 8)), _mm512_set_epi64(7, 6, 5, 4, 3, 2, 1, 0));
    for (std::size_t r = 0; r < V; ++r) acc[r] = _mm512_permutex2var_epi64(sum[r], from, sum[r + 1]);
    acc[0] = _mm512_mask_add_epi64(acc[0], 1, acc[0], _mm512_set1_epi64(std::int64_t(st.carry)));
    normalise(acc);
    for (std::size_t r = 0; r < V; ++r) _mm512_storeu_si512(out + 8 * r, acc[r]);
}

// For sums longer than the registers hold: the sum moves down one lane a
// step (valignq), so it and b and m stay aligned; q_i is chosen from lane 0
// after a_i b, which waits for the vectors each step.
template <std::size_t V>
TW_IFMA void mulLanesMoving(std::uint64_t* out, const std::uint64_t* a, const std::uint64_t* b, const std::uint64_t* m,
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

template <std::size_t V>
constexpr MulLanes kernelFor() {
    if constexpr (V <= kIfmaStillSumMaxVectors) return &mulLanes<V>;
    else return &mulLanesMoving<V>;
}
template <std::size_t... V>
constexpr std::array<MulLanes, sizeof...(V)> mulTable(std::index_sequence<V...>) {
    return {kernelFor<V + 1>()...};
}
constexpr auto kMulByVectors = mulTable(std::make_index_sequence<kIfmaMaxLimbs / 8>());

}  // namespace

void montgomeryMulIfma(std::uint64_t* out, const std::uint64_t* a, const std::uint64_t* b,
                       const std::uint64_t* mTable, std::size_t n, std::uint64_t k0) {
    kMulByVectors[ifmaLanes(n) / 8 - 1](out, a, b, mTable, n, k0);
}

#else

void montgomeryMulIfma(std::uint64_t*, const std::uint64_t*, const std::uint64_t*, const std::uint64_t*, std::size_t,
                       std::uint64_t) {}

#endif

void prepareIfmaModulus(std::uint64_t* table, const std::uint64_t* m, std::size_t n) {
    const std::size_t row = ifmaLanes(n) + 8;
    for (std::size_t s = 0; s <= 8; ++s)
        for (std::size_t k = 0; k < row; ++k) table[s * row + k] = k >= s && k - s < n ? m[k - s] : 0;
}

}  // namespace tw::numtheory
