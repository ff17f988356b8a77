// Addition and subtraction of limb spans on 512-bit vectors, sixteen limbs a
// block, with the carries of a block found at once by carry-lookahead on the
// lane masks.
//
// For a sum, s = a + b lane by lane (below 2^31 for both radices).  A lane
// generates a carry when s >= radix and propagates one when s == radix - 1;
// the two masks g and p are disjoint.  With lane k as bit k, the carries into
// the lanes are
//     in = ((g << 1) + p + carryIn) ^ p
// (the binary addition ripples a carry through exactly the runs of
// propagating lanes), and bit 16 of the sum before the xor is the carry out
// of the block: the loop-carried chain is one addition and one shift.  Lanes
// in `in` take 1, and any lane then at or above the radix gives it up.  A
// difference is the same with s = a - b, g = lanes below zero, p = lanes at
// zero, and the signs of the fix-up reversed.
#include "arith/kernels/add_sub.h"

#include <cstddef>
#include <cstdint>

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
// GCC 12's 512-bit min intrinsic passes an undefined vector as the (unused)
// merge source and then warns that it may be uninitialized.
#if !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#define TW_HAVE_WIDE_ADD_SUB 1
#else
#define TW_HAVE_WIDE_ADD_SUB 0
#endif

namespace tw::arith {

#if TW_HAVE_WIDE_ADD_SUB

namespace {

constexpr std::size_t kBlock = 16;   // 32-bit limbs a 512-bit vector

// The finished lanes of one block x +- y.  The live lanes are `live`, a run
// of bits ending at bit `end` - 1; `carry` comes in at the bit of the lowest
// live lane and goes out as the carry (borrow) out of the highest.
template <class R, bool Subtract>
__attribute__((target("avx512f"))) inline __m512i settleBlock(__m512i x, __m512i y, std::uint32_t& carry,
                                                             __mmask16 live, unsigned end) {
    const __m512i radix = _mm512_set1_epi32(int(R::base));
    const __m512i one = _mm512_set1_epi32(1);
    __m512i s;
    std::uint32_t g, p;
    if constexpr (Subtract) {
        s = _mm512_sub_epi32(x, y);
        g = _mm512_mask_cmplt_epi32_mask(live, s, _mm512_setzero_si512());
        p = _mm512_mask_cmpeq_epi32_mask(live, s, _mm512_setzero_si512());
    } else {
        s = _mm512_add_epi32(x, y);
        g = _mm512_mask_cmpge_epu32_mask(live, s, radix);
        p = _mm512_mask_cmpeq_epi32_mask(live, s, _mm512_set1_epi32(int(R::base - 1)));
    }
    // g and p share no bit and have none at `end` or above, so bit `end` of
    // the sum is the carry out; the xor leaves the carries into the lanes.
    const std::uint32_t sum = (g << 1) + p + carry;
    const __mmask16 takes = __mmask16(sum ^ p);
    carry = sum >> end;
    s = Subtract ? _mm512_mask_sub_epi32(s, takes, s, one) : _mm512_mask_add_epi32(s, takes, s, one);
    // Back into [0, radix): for 2^28 the low bits; for 10^9 the smaller, as
    // unsigned, of s and s -+ radix, the one of them outside [0, radix)
    // being either the larger or wrapped past 2^31.
    if constexpr (R::isBinary) {
        return _mm512_and_si512(s, _mm512_set1_epi32(int(R::mask)));
    } else {
        const __m512i other = Subtract ? _mm512_add_epi32(s, radix) : _mm512_sub_epi32(s, radix);
        return _mm512_min_epu32(s, other);
    }
}

template <class R, bool Subtract>
__attribute__((target("avx512f"))) Limb combineWide(Limb* out, const Limb* a, const Limb* b, std::size_t n,
                                                     Limb carry) {
    std::uint32_t c = carry;
    if (n < kBlock) {
        // Shorter than a vector: masked loads and store of the low n lanes
        // (nothing outside the spans is touched).
        const __mmask16 live = __mmask16((1u << n) - 1);
        const __m512i s = settleBlock<R, Subtract>(_mm512_maskz_loadu_epi32(live, a),
                                                   _mm512_maskz_loadu_epi32(live, b), c, live, unsigned(n));
        _mm512_mask_storeu_epi32(out, live, s);
        return c;
    }
    // The ragged end is done as the last sixteen limbs, of which the high
    // ones are live: its loads stay inside the spans (a load reaching past
    // them waits for any store in flight to the limbs beyond).  They come
    // before the first store: in place, loaded after the loop they would
    // overlap the block just stored at another offset and wait for it too.
    // The dead lanes count for nothing.
    const std::size_t last = n - kBlock;
    const __m512i xLast = _mm512_loadu_si512(a + last);
    const __m512i yLast = _mm512_loadu_si512(b + last);
    std::size_t i = 0;
    // Each block is loaded before it is stored, so out may equal a or b.
    for (; i + kBlock <= n; i += kBlock) {
        const __m512i s = settleBlock<R, Subtract>(_mm512_loadu_si512(a + i), _mm512_loadu_si512(b + i), c,
                                                   0xFFFF, kBlock);
        _mm512_storeu_si512(out + i, s);
    }
    if (i < n) {
        const unsigned dead = unsigned(kBlock - (n - i));
        const __mmask16 live = __mmask16(0xFFFFu << dead);
        c <<= dead;
        const __m512i s = settleBlock<R, Subtract>(xLast, yLast, c, live, kBlock);
        _mm512_mask_storeu_epi32(out + last, live, s);
    }
    return c;
}

}  // namespace

#else  // no 512-bit kernels on this target: the entry points are the scalar loops

namespace {
template <class R, bool Subtract>
Limb combineWide(Limb* out, const Limb* a, const Limb* b, std::size_t n, Limb carry) {
    return Subtract ? subSameLengthPortable<R>(out, a, b, n, carry) : addSameLengthPortable<R>(out, a, b, n, carry);
}
}  // namespace

#endif

// Plain entry points, called only on the AVX-512 path.
template <class R>
Limb addSameLengthWide(Limb* out, const Limb* a, const Limb* b, std::size_t n, Limb carry) {
    return combineWide<R, false>(out, a, b, n, carry);
}

template <class R>
Limb subSameLengthWide(Limb* out, const Limb* a, const Limb* b, std::size_t n, Limb borrow) {
    return combineWide<R, true>(out, a, b, n, borrow);
}

template Limb addSameLengthWide<DecimalRadix>(Limb*, const Limb*, const Limb*, std::size_t, Limb);
template Limb addSameLengthWide<BinaryRadix>(Limb*, const Limb*, const Limb*, std::size_t, Limb);
template Limb subSameLengthWide<DecimalRadix>(Limb*, const Limb*, const Limb*, std::size_t, Limb);
template Limb subSameLengthWide<BinaryRadix>(Limb*, const Limb*, const Limb*, std::size_t, Limb);

}  // namespace tw::arith
