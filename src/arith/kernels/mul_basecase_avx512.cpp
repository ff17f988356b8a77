// The basecase kernels on 512-bit vectors: sixteen consecutive columns a
// block, in two accumulators of eight lanes.  One 512-bit load of sixteen
// limbs S[k .. k+16) serves both: vpmuludq reads the low half of each 64-bit
// lane, so the load itself gives the limbs S[k], S[k+2], ... (the even
// columns of the block) and the same load shifted right by 32 gives S[k+1],
// S[k+3], ... (the odd columns).  For each limb L[i] that is one broadcast,
// one load, one shift and two multiplies for sixteen products, and the two
// accumulators are independent chains of additions.
//
// Settling is the scalar column sum's rule, lane by lane: for radix 10^9 each
// addition is followed by the compare with MulTraits::kSettleMark, and a lane
// at or above it gives up 17 * 10^18, owed as 17 to the column two places up
// (same parity, so the next lane of the same accumulator); radix 2^28 never
// settles inside the block, its lanes sum at most kLaneKernelMax products
// below 2^56.  The products are those of mulBasecaseColumns, so is the result.
#include "arith/kernels/mul_basecase.h"
#include "arith/kernels/sqr_basecase.h"

#include <cstddef>
#include <cstdint>

#include "arith/kernels/radix_traits.h"

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
// GCC 12's 512-bit multiply and shift intrinsics pass an undefined vector as
// the (unused) merge source and then warn that it may be uninitialized.
#if !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#define TW_HAVE_WIDE_LANES 1
#else
#define TW_HAVE_WIDE_LANES 0
#endif

namespace tw::arith {

#if TW_HAVE_WIDE_LANES

namespace {

constexpr std::size_t kHalf = 8;              // lanes of one accumulator
constexpr std::size_t kBlock = 2 * kHalf;     // columns of a block
// Zero limbs on either side of the copied operand of the product, so that
// every window of sixteen limbs a block reads lies inside the copy.
constexpr std::size_t kPad = kBlock - 1;

template <class R>
constexpr bool kSettles = MulTraits<R>::kProductsPerSettle == 1;

// Lanes that start at zero cannot reach the mark within this many additions
// of products below radix^2; the compares after them are known to say no.
template <class R>
constexpr std::size_t quietAdds() {
    if constexpr (kSettles<R>)
        return std::size_t((MulTraits<R>::kSettleMark - 1) / (std::uint64_t(R::base - 1) * (R::base - 1)));
    else
        return ~std::size_t(0);
}
static_assert(quietAdds<DecimalRadix>() == 17);

// The two accumulators of a block and, for radix 10^9, what their settles owe:
// lane k of `even` is column 2k of the block, lane k of `odd` column 2k+1;
// `owedEven`/`owedOdd` lane k counts units for the column two places above.
struct Block {
    __m512i even, odd, owedEven, owedOdd;
};

__attribute__((target("avx512f"))) inline Block zeroBlock() {
    const __m512i z = _mm512_setzero_si512();
    return {z, z, z, z};
}

// Adds x times the sixteen limbs at y into the block's columns; Checked: then
// compare every lane with the mark and settle the ones at or above it.
template <class R, bool Checked>
__attribute__((target("avx512f"))) inline void addRow(Block& b, Limb x, const Limb* y) {
    const __m512i xv = _mm512_set1_epi32(int(x));
    const __m512i yv = _mm512_loadu_si512(y);
    b.even = _mm512_add_epi64(b.even, _mm512_mul_epu32(xv, yv));
    b.odd = _mm512_add_epi64(b.odd, _mm512_mul_epu32(xv, _mm512_srli_epi64(yv, 32)));
    if constexpr (Checked && kSettles<R>) {
        using T = MulTraits<R>;
        const __m512i mark = _mm512_set1_epi64(std::int64_t(T::kSettleMark));
        const __mmask8 ke = _mm512_cmpge_epu64_mask(b.even, mark);
        const __mmask8 ko = _mm512_cmpge_epu64_mask(b.odd, mark);
        if ((ke | ko) != 0) [[unlikely]] {
            const __m512i wrap = _mm512_set1_epi64(std::int64_t(T::kSettleWrap));
            const __m512i units = _mm512_set1_epi64(std::int64_t(T::kSettleUnits));
            b.even = _mm512_mask_add_epi64(b.even, ke, b.even, wrap);
            b.odd = _mm512_mask_add_epi64(b.odd, ko, b.odd, wrap);
            b.owedEven = _mm512_mask_add_epi64(b.owedEven, ke, b.owedEven, units);
            b.owedOdd = _mm512_mask_add_epi64(b.owedOdd, ko, b.owedOdd, units);
        }
    }
}

// As addRow, keeping only the lanes k in `keep` of both accumulators.
template <class R>
__attribute__((target("avx512f"))) inline void addMaskedRow(Block& b, Limb x, const Limb* y, __mmask8 keep) {
    const __m512i xv = _mm512_set1_epi32(int(x));
    const __m512i yv = _mm512_loadu_si512(y);
    b.even = _mm512_mask_add_epi64(b.even, keep, b.even, _mm512_mul_epu32(xv, yv));
    b.odd = _mm512_mask_add_epi64(b.odd, keep, b.odd, _mm512_mul_epu32(xv, _mm512_srli_epi64(yv, 32)));
    if constexpr (kSettles<R>) {
        using T = MulTraits<R>;
        const __m512i mark = _mm512_set1_epi64(std::int64_t(T::kSettleMark));
        const __mmask8 ke = _mm512_cmpge_epu64_mask(b.even, mark);
        const __mmask8 ko = _mm512_cmpge_epu64_mask(b.odd, mark);
        const __m512i wrap = _mm512_set1_epi64(std::int64_t(T::kSettleWrap));
        const __m512i units = _mm512_set1_epi64(std::int64_t(T::kSettleUnits));
        b.even = _mm512_mask_add_epi64(b.even, ke, b.even, wrap);
        b.odd = _mm512_mask_add_epi64(b.odd, ko, b.odd, wrap);
        b.owedEven = _mm512_mask_add_epi64(b.owedEven, ke, b.owedEven, units);
        b.owedOdd = _mm512_mask_add_epi64(b.owedOdd, ko, b.owedOdd, units);
    }
}

// Rows x[i] * (the sixteen limbs at y + c - i) for i in [from, to), into a
// block that was zero before: the first quietAdds rows unchecked.
template <class R>
__attribute__((target("avx512f"))) inline void addRows(Block& b, const Limb* x, const Limb* y, std::size_t c,
                                                        std::size_t from, std::size_t to) {
    const auto at = [&](std::size_t i) { return y + (std::ptrdiff_t(c) - std::ptrdiff_t(i)); };
    const std::size_t quiet = to - from < quietAdds<R>() ? to : from + quietAdds<R>();
    std::size_t i = from;
    for (; i < quiet; ++i) addRow<R, false>(b, x[i], at(i));
    if constexpr (kSettles<R>)
        for (; i < to; ++i) addRow<R, true>(b, x[i], at(i));
}

// Turns the lane sums of successive blocks into limbs.  Each lane's sum v is
// split as q1*radix^2 + q0*radix + r (independently of the others, so the
// splits overlap), the pieces are added into their columns, and what is left
// to chain from column to column is a carry below 8.
template <class R>
struct BlockCarry {
    std::uint64_t carry = 0;
    std::uint64_t spill[2] = {};   // owed to columns 0 and 1 of the next block

    __attribute__((target("avx512f"))) void finish(const Block& b, Limb* out, std::size_t count) {
        using T = MulTraits<R>;
        alignas(64) std::uint64_t ev[kHalf], od[kHalf], oe[kHalf], oo[kHalf];
        _mm512_store_si512(ev, b.even);
        _mm512_store_si512(od, b.odd);
        if constexpr (R::isBinary) {
            // A limb is a mask and a shift: one chain of an addition and a
            // shift a column costs less than splitting the lanes apart.  The
            // carry stays below 2^37 (lane sums are below 2^63), so the sum
            // with it never wraps.
            if (count >= kBlock) {
                for (std::size_t k = 0; k < kHalf; ++k) {
                    std::uint64_t v = ev[k] + carry;
                    out[2 * k] = Limb(v) & BinaryRadix::mask;
                    v = od[k] + (v >> BinaryRadix::bitsPerLimb);
                    out[2 * k + 1] = Limb(v) & BinaryRadix::mask;
                    carry = v >> BinaryRadix::bitsPerLimb;
                }
            } else {
                for (std::size_t j = 0; j < count; ++j) {
                    const std::uint64_t v = (j % 2 == 0 ? ev[j / 2] : od[j / 2]) + carry;
                    out[j] = Limb(v) & BinaryRadix::mask;
                    carry = v >> BinaryRadix::bitsPerLimb;
                }
            }
            return;
        }
        std::uint64_t col[kBlock + 2];
        for (std::size_t k = 0; k < kHalf; ++k) {
            col[2 * k] = T::low(ev[k]);
            col[2 * k + 1] = T::low(od[k]);
        }
        col[kBlock] = col[kBlock + 1] = 0;
        col[0] += spill[0];
        col[1] += spill[1];
        for (std::size_t k = 0; k < kHalf; ++k) {
            const std::uint64_t qe = T::high(ev[k]), qo = T::high(od[k]);
            col[2 * k + 1] += T::low(qe);
            col[2 * k + 2] += T::high(qe) + T::low(qo);
            col[2 * k + 3] += T::high(qo);
        }
        if constexpr (kSettles<R>) {
            _mm512_store_si512(oe, b.owedEven);
            _mm512_store_si512(oo, b.owedOdd);
            for (std::size_t k = 0; k < kHalf; ++k) {
                col[2 * k + 2] += oe[k];
                col[2 * k + 3] += oo[k];
            }
        }
        for (std::size_t j = 0; j < kBlock; ++j) {
            const std::uint64_t v = col[j] + carry;
            if (j < count) out[j] = T::low(v);
            carry = T::high(v);
        }
        spill[0] = col[kBlock];
        spill[1] = col[kBlock + 1];
    }
};

template <class R>
__attribute__((target("avx512f"))) void mulWide(Limb* out, const Limb* L, std::size_t l, const Limb* S,
                                                 std::size_t s) {
    // Sp[kPad + k] = S[k], zero for k outside [0, s).
    alignas(64) Limb Sp[kLaneKernelMax + 2 * kPad + 1];
    for (std::size_t k = 0; k < kPad; ++k) Sp[k] = Sp[kPad + s + k] = 0;
    for (std::size_t k = 0; k < s; ++k) Sp[kPad + k] = S[k];
    const Limb* S0 = Sp + kPad;

    BlockCarry<R> bc;
    const std::size_t total = l + s;
    for (std::size_t c = 0; c < total; c += kBlock) {
        // Every i with a product in one of the columns c .. c+15.
        const std::size_t first = c + 1 > s ? c + 1 - s : 0;
        const std::size_t last = c + kBlock - 1 < l ? c + kBlock - 1 : l - 1;
        Block b = zeroBlock();
        if (first <= last) addRows<R>(b, L, S0, c, first, last + 1);
        bc.finish(b, out + c, total - c);
    }
}

template <class R>
__attribute__((target("avx512f"))) void sqrWide(Limb* out, const Limb* a, std::size_t n) {
    // a0[k] = a[k], zero for k in [-kHalf, 0) and [n, n + kBlock): the
    // windows of the ragged rows below start down to kHalf - 1 limbs before
    // the operand (in lanes they mask off) and reach up to n + kBlock - 2.
    alignas(64) Limb ap[kHalf + kLaneKernelMax + kBlock];
    Limb* const a0 = ap + kHalf;
    for (std::size_t k = 0; k < kHalf; ++k) ap[k] = 0;
    for (std::size_t k = 0; k < n; ++k) a0[k] = a[k];
    for (std::size_t k = n; k < n + kBlock; ++k) a0[k] = 0;

    // Column c + j takes a[i]*a[c+j-i] for i <= (c+j-1)/2.  Blocks start at
    // odd c, so every column of the block takes i <= (c-1)/2, and row
    // (c-1)/2 + m, m = 1..7, belongs to the columns j >= 2m: lanes k >= m of
    // both accumulators.  A product with c+j-i >= n is a zero of the padding.
    BlockCarry<R> bc;
    out[0] = 0;
    const std::size_t total = 2 * n;
    for (std::size_t c = 1; c < total; c += kBlock) {
        const std::size_t first = c + 1 > n ? c + 1 - n : 0;
        const std::size_t common = (c - 1) / 2;
        Block b = zeroBlock();
        if (first <= common) addRows<R>(b, a0, a0, c, first, common + 1);
        for (std::size_t m = 1; m < kHalf; ++m) {
            const std::size_t i = common + m;
            if (i >= n) break;
            addMaskedRow<R>(b, a0[i], a0 + (std::ptrdiff_t(c) - std::ptrdiff_t(i)), __mmask8(0xFFu << m));
        }
        bc.finish(b, out + c, total - c);
    }
}

}  // namespace

#else  // no 512-bit kernels on this target: the entry points are the column sums

namespace {
template <class R>
constexpr auto mulWide = &mulBasecaseColumns<R>;
template <class R>
constexpr auto sqrWide = &sqrTriangleColumns<R>;
}  // namespace

#endif

// Plain entry points, called only on the AVX-512 path.
template <class R>
void mulBasecaseWideLanes(Limb* out, const Limb* L, std::size_t l, const Limb* S, std::size_t s) {
    mulWide<R>(out, L, l, S, s);
}

template <class R>
void sqrTriangleWideLanes(Limb* out, const Limb* a, std::size_t n) {
    sqrWide<R>(out, a, n);
}

template void mulBasecaseWideLanes<DecimalRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t);
template void mulBasecaseWideLanes<BinaryRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t);
template void sqrTriangleWideLanes<DecimalRadix>(Limb*, const Limb*, std::size_t);
template void sqrTriangleWideLanes<BinaryRadix>(Limb*, const Limb*, std::size_t);

}  // namespace tw::arith
