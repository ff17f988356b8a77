// Sixteen 32-bit lanes in an AVX-512 register.  Include only in a translation
// unit compiled for AVX-512F (transform_avx512.cpp sets the target first).
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "frame/radix.h"

namespace tw::arith::ntt {

struct Avx512Lanes {
    using Reg = __m512i;
    static constexpr std::size_t lanes = 16;

    static Reg load(const Limb* p) { return _mm512_loadu_si512(p); }
    static void store(Limb* p, Reg v) { _mm512_storeu_si512(p, v); }
    static Reg broadcast(std::uint32_t v) { return _mm512_set1_epi32(int(v)); }
    static Reg add(Reg a, Reg b) { return _mm512_add_epi32(a, b); }
    static Reg sub(Reg a, Reg b) { return _mm512_sub_epi32(a, b); }
    static Reg minu(Reg a, Reg b) { return _mm512_min_epu32(a, b); }
    static Reg mullo(Reg a, Reg b) { return _mm512_mullo_epi32(a, b); }
    static void mulWide(Reg a, Reg b, Reg& hi, Reg& lo) {
        const Reg even = _mm512_mul_epu32(a, b);
        const Reg odd = _mm512_mul_epu32(_mm512_srli_epi64(a, 32), _mm512_srli_epi64(b, 32));
        hi = _mm512_mask_blend_epi32(0xAAAA, _mm512_srli_epi64(even, 32), odd);
        lo = _mm512_mask_blend_epi32(0xAAAA, even, _mm512_slli_epi64(odd, 32));
    }
    static Reg mulhi(Reg a, Reg b) {
        Reg hi, lo;
        mulWide(a, b, hi, lo);  // the low words fold away
        return hi;
    }

    // Eight 64-bit lanes, for the limb-radix weights of the Chinese remainder step.
    using Wide = __m512i;
    static void widen(Reg a, Wide& low, Wide& high) {
        low = _mm512_cvtepu32_epi64(_mm512_castsi512_si256(a));
        high = _mm512_cvtepu32_epi64(_mm512_extracti64x4_epi64(a, 1));
    }
    static Wide broadcastWide(std::uint64_t v) { return _mm512_set1_epi64(std::int64_t(v)); }
    static Wide mulLowWords(Wide a, Wide b) { return _mm512_mul_epu32(a, b); }  // 64-bit products of the low words
    static Wide addWide(Wide a, Wide b) { return _mm512_add_epi64(a, b); }
    static void storeWide(std::uint64_t* p, Wide v) { _mm512_storeu_si512(p, v); }

    // Lanes 0, 2, 4, ... of the pair (a, b); lanes in reverse order.
    static Reg evenLanes(Reg a, Reg b) {
        return _mm512_permutex2var_epi32(
            a, _mm512_setr_epi32(0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30), b);
    }
    static Reg reverse(Reg a) {
        return _mm512_permutexvar_epi32(_mm512_setr_epi32(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0), a);
    }

    // Shuffles inside each 128-bit quarter, for the in-register levels (butterflies.h).
    static Reg unpackLo64(Reg a, Reg b) { return _mm512_unpacklo_epi64(a, b); }
    static Reg unpackHi64(Reg a, Reg b) { return _mm512_unpackhi_epi64(a, b); }
    static Reg unpackLo32(Reg a, Reg b) { return _mm512_unpacklo_epi32(a, b); }
    static Reg unpackHi32(Reg a, Reg b) { return _mm512_unpackhi_epi32(a, b); }
    static Reg evenWords(Reg a, Reg b) { return shuffleWords<_MM_SHUFFLE(2, 0, 2, 0)>(a, b); }
    static Reg oddWords(Reg a, Reg b) { return shuffleWords<_MM_SHUFFLE(3, 1, 3, 1)>(a, b); }

    // The splits of spans 8 and 4 across 128-bit quarters.
    template <std::size_t H>
    static void splitHalves(Reg& a, Reg& b) {
        Reg p, q;
        if constexpr (H == 8) {
            p = _mm512_shuffle_i64x2(a, b, 0x44);  // quarters 0,1 of a, then of b
            q = _mm512_shuffle_i64x2(a, b, 0xEE);  // quarters 2,3
        } else {
            static_assert(H == 4);
            p = _mm512_shuffle_i64x2(a, b, 0x88);  // quarters 0,2
            q = _mm512_shuffle_i64x2(a, b, 0xDD);  // quarters 1,3
        }
        a = p;
        b = q;
    }
    // Exchanging 256-bit halves (H = 8) undoes itself; H = 4 interleaves the
    // quarters back: a = p0 q0 p1 q1, b = p2 q2 p3 q3 (in 64-bit elements).
    template <std::size_t H>
    static void mergeHalves(Reg& p, Reg& q) {
        if constexpr (H == 8) {
            splitHalves<H>(p, q);
        } else {
            static_assert(H == 4);
            const Reg a = _mm512_permutex2var_epi64(p, _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11), q);
            const Reg b = _mm512_permutex2var_epi64(p, _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15), q);
            p = a;
            q = b;
        }
    }

private:
    template <int Imm>
    static Reg shuffleWords(Reg a, Reg b) {
        return _mm512_castps_si512(_mm512_shuffle_ps(_mm512_castsi512_ps(a), _mm512_castsi512_ps(b), Imm));
    }
};

}  // namespace tw::arith::ntt
