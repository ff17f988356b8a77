// The basecase kernels on 256-bit vectors: four consecutive columns at once,
// one column a lane.  For each limb L[i] the four products L[i]*S[c-i+j],
// j = 0..3, come from one broadcast, one widening load and one vpmuludq, and
// add into the lanes; the lanes are settled by the same rule as the scalar
// column sum (MulTraits), so the products and the carries are those of
// mulBasecaseColumns, only summed four columns wide.
#include "arith/kernels/mul_basecase.h"
#include "arith/kernels/sqr_basecase.h"

#include <cstddef>
#include <cstdint>

#include "arith/kernels/radix_traits.h"

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#define TW_HAVE_LANES 1
#else
#define TW_HAVE_LANES 0
#endif

namespace tw::arith {

#if TW_HAVE_LANES

namespace {

constexpr std::size_t kLanes = 4;
// Zero limbs around the copied operand, so that every widening load of four
// limbs stays inside the copy and reads zeros outside the operand.
constexpr std::size_t kPad = kLanes - 1;

// Carries between blocks of four columns, and what settling owes to the
// columns up to two places above the block.
template <class R>
struct LaneCarry {
    std::uint64_t carry = 0;
    std::uint64_t owed[kLanes + 2] = {};   // columns c .. c+5 of the current block

    // Settles any lane at or above the mark (rare for radix 10^9; never
    // needed for radix 2^28, whose lanes sum at most kLaneKernelMax products).
    void settle(std::uint64_t (&lane)[kLanes]) {
        for (std::size_t j = 0; j < kLanes; ++j) MulTraits<R>::settle(lane[j], owed[j + 2]);
    }

    // Writes the block's columns out[0 .. count) from the lane sums and moves on
    // to the next block.
    void finish(std::uint64_t (&lane)[kLanes], Limb* out, std::size_t count) {
        using T = MulTraits<R>;
        for (std::size_t j = 0; j < kLanes; ++j) {
            std::uint64_t v = lane[j] + carry + owed[j];
            T::settle(v, owed[j + 2]);
            if (j < count) out[j] = T::low(v);
            carry = T::high(v);
        }
        owed[0] = owed[kLanes];
        owed[1] = owed[kLanes + 1];
        for (std::size_t j = 2; j < kLanes + 2; ++j) owed[j] = 0;
    }
};

// For radix 10^9 the lanes hold each sum plus 2^63 (mod 2^64): a signed
// compare of the biased lanes is then the unsigned compare with the mark,
// one instruction after each addition.  Radix 2^28 needs no compare.
template <class R>
constexpr bool kLanesSettle = MulTraits<R>::kProductsPerSettle == 1;
template <class R>
constexpr std::uint64_t kLaneBias = kLanesSettle<R> ? std::uint64_t(1) << 63 : 0;

template <class R>
__attribute__((target("avx2"))) inline __m256i zeroLanes() {
    return _mm256_set1_epi64x(std::int64_t(kLaneBias<R>));
}

// The biased lanes as plain sums.
template <class R>
__attribute__((target("avx2"))) inline void storeLanes(__m256i acc, std::uint64_t (&lane)[kLanes]) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(lane), acc);
    for (std::uint64_t& v : lane) v ^= kLaneBias<R>;
}

// Settles any lane at or above the mark (never the case for radix 2^28,
// whose lanes sum at most kLaneKernelMax products).
template <class R>
__attribute__((target("avx2"))) inline void settleLanes(__m256i& acc, LaneCarry<R>& lc) {
    if constexpr (kLanesSettle<R>) {
        const __m256i markBiased = _mm256_set1_epi64x(std::int64_t((MulTraits<R>::kSettleMark - 1) ^ kLaneBias<R>));
        if (_mm256_movemask_pd(_mm256_castsi256_pd(_mm256_cmpgt_epi64(acc, markBiased))) != 0) [[unlikely]] {
            std::uint64_t lane[kLanes];
            storeLanes<R>(acc, lane);
            lc.settle(lane);
            acc = _mm256_set_epi64x(std::int64_t(lane[3] ^ kLaneBias<R>), std::int64_t(lane[2] ^ kLaneBias<R>),
                                    std::int64_t(lane[1] ^ kLaneBias<R>), std::int64_t(lane[0] ^ kLaneBias<R>));
        }
    } else {
        (void)acc;
        (void)lc;
    }
}

// The products x * y[j] of the four limbs at y, widened to 64 bits.
__attribute__((target("avx2"))) inline __m256i laneProducts(Limb x, const Limb* y) {
    return _mm256_mul_epu32(_mm256_set1_epi32(int(x)),
                            _mm256_cvtepu32_epi64(_mm_loadu_si128(reinterpret_cast<const __m128i*>(y))));
}

// Lanes that start at zero cannot reach the mark within this many additions
// of products below radix^2, so the compare after each of them is skipped:
// its answer is known.  (Radix 2^28 never compares.)
template <class R>
constexpr std::size_t addsBeforeMark() {
    if constexpr (kLanesSettle<R>)
        return std::size_t((MulTraits<R>::kSettleMark - 1) / (std::uint64_t(R::base - 1) * (R::base - 1)));
    else
        return ~std::size_t(0);
}
template <class R>
constexpr std::size_t kAddsBeforeMark = addsBeforeMark<R>();
static_assert(kAddsBeforeMark<DecimalRadix> == 17);

// acc += x[i] * (the four limbs at y + c - i) for i in [from, to), two at a
// time; Checked: compare with the mark after each addition.
template <class R, bool Checked>
__attribute__((target("avx2"))) inline void addLaneRange(__m256i& acc, const Limb* x, const Limb* y, std::size_t c,
                                                       std::size_t from, std::size_t to, LaneCarry<R>& lc) {
    const auto at = [&](std::size_t i) { return y + (std::ptrdiff_t(c) - std::ptrdiff_t(i)); };
    std::size_t i = from;
    for (; i + 2 <= to; i += 2) {
        acc = _mm256_add_epi64(acc, laneProducts(x[i], at(i)));
        if constexpr (Checked) settleLanes<R>(acc, lc);
        acc = _mm256_add_epi64(acc, laneProducts(x[i + 1], at(i + 1)));
        if constexpr (Checked) settleLanes<R>(acc, lc);
    }
    if (i < to) {
        acc = _mm256_add_epi64(acc, laneProducts(x[i], at(i)));
        if constexpr (Checked) settleLanes<R>(acc, lc);
    }
}

// The products of columns c .. c+3 for i in [from, to), into lanes that were
// zero before.
template <class R>
__attribute__((target("avx2"))) inline void addLaneColumns(__m256i& acc, const Limb* x, const Limb* y, std::size_t c,
                                                         std::size_t from, std::size_t to, LaneCarry<R>& lc) {
    const std::size_t quiet = to - from < kAddsBeforeMark<R> ? to : from + kAddsBeforeMark<R>;
    addLaneRange<R, false>(acc, x, y, c, from, quiet, lc);
    if constexpr (kLanesSettle<R>) addLaneRange<R, true>(acc, x, y, c, quiet, to, lc);
}

// One checked addition of x * (the four limbs at y), keeping only the lanes
// set in mask.
template <class R>
__attribute__((target("avx2"))) inline void addMaskedLaneProducts(__m256i& acc, Limb x, const Limb* y, __m256i mask,
                                                                 LaneCarry<R>& lc) {
    acc = _mm256_add_epi64(acc, _mm256_and_si256(laneProducts(x, y), mask));
    settleLanes<R>(acc, lc);
}

template <class R>
__attribute__((target("avx2"))) inline void finishBlock(__m256i acc, LaneCarry<R>& lc, Limb* out, std::size_t count) {
    std::uint64_t lane[kLanes];
    storeLanes<R>(acc, lane);
    lc.finish(lane, out, count);
}

template <class R>
__attribute__((target("avx2"))) void mulLanes(Limb* out, const Limb* L, std::size_t l, const Limb* S,
                                                      std::size_t s) {
    // Sp[kPad + k] = S[k], zero for k outside [0, s).
    Limb Sp[kLaneKernelMax + 2 * kPad];
    for (std::size_t k = 0; k < kPad; ++k) Sp[k] = Sp[kPad + s + k] = 0;
    for (std::size_t k = 0; k < s; ++k) Sp[kPad + k] = S[k];
    const Limb* S0 = Sp + kPad;

    LaneCarry<R> lc;
    const std::size_t total = l + s;
    for (std::size_t c = 0; c < total; c += kLanes) {
        // Every i with a product in one of the columns c .. c+3.
        const std::size_t first = c + 1 > s ? c + 1 - s : 0;
        const std::size_t last = c + kLanes - 1 < l ? c + kLanes - 1 : l - 1;
        __m256i acc = zeroLanes<R>();
        if (first <= last) addLaneColumns<R>(acc, L, S0, c, first, last + 1, lc);
        finishBlock<R>(acc, lc, out + c, total - c);
    }
}

template <class R>
__attribute__((target("avx2"))) void sqrLanes(Limb* out, const Limb* a, std::size_t n) {
    // ap[k] = a[k], zero for k in [n, n + kPad + 2): loads and the ragged
    // steps below read up to there.
    Limb ap[kLaneKernelMax + kPad + 2];
    for (std::size_t k = 0; k < n; ++k) ap[k] = a[k];
    for (std::size_t k = n; k < n + kPad + 2; ++k) ap[k] = 0;

    // Column c + j takes a[i]*a[c+j-i] for i < c+j-i, i.e. i <= (c+j-1)/2.
    // Blocks start at odd c, so lanes 0 and 1 stop at i = (c-1)/2 and lanes
    // 2 and 3 take one more i, which the mask selects.
    const __m256i upperLanes = _mm256_set_epi64x(-1, -1, 0, 0);

    LaneCarry<R> lc;
    out[0] = 0;
    const std::size_t total = 2 * n;
    for (std::size_t c = 1; c < total; c += kLanes) {
        const std::size_t first = c + 1 > n ? c + 1 - n : 0;
        const std::size_t common = (c - 1) / 2;
        __m256i acc = zeroLanes<R>();
        if (first <= common) addLaneColumns<R>(acc, ap, ap, c, first, common + 1, lc);
        // The ragged end (a product below `first` is a zero of the padding).
        addMaskedLaneProducts<R>(acc, ap[(c + 1) / 2], ap + (c - 1) / 2, upperLanes, lc);
        finishBlock<R>(acc, lc, out + c, total - c);
    }
}

}  // namespace

#else  // no vector kernels on this target: the entry points are the column sums

namespace {
template <class R>
constexpr auto mulLanes = &mulBasecaseColumns<R>;
template <class R>
constexpr auto sqrLanes = &sqrTriangleColumns<R>;
}  // namespace

#endif

// The vector code stays inside functions compiled for AVX2; these entry
// points are plain functions, called only on the AVX2 path.
template <class R>
void mulBasecaseLanes(Limb* out, const Limb* L, std::size_t l, const Limb* S, std::size_t s) {
    mulLanes<R>(out, L, l, S, s);
}

template <class R>
void sqrTriangleLanes(Limb* out, const Limb* a, std::size_t n) {
    sqrLanes<R>(out, a, n);
}

template void mulBasecaseLanes<DecimalRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t);
template void mulBasecaseLanes<BinaryRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t);
template void sqrTriangleLanes<DecimalRadix>(Limb*, const Limb*, std::size_t);
template void sqrTriangleLanes<BinaryRadix>(Limb*, const Limb*, std::size_t);

}  // namespace tw::arith
