// Eight 32-bit lanes in an AVX2 register.  Include only in a translation unit
// compiled for AVX2 (transform_avx2.cpp sets the target before including it).
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "frame/radix.h"

namespace tw::arith::ntt {

struct Avx2Lanes {
    using Reg = __m256i;
    static constexpr std::size_t lanes = 8;

    static Reg load(const Limb* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
    static void store(Limb* p, Reg v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
    static Reg broadcast(std::uint32_t v) { return _mm256_set1_epi32(int(v)); }
    static Reg add(Reg a, Reg b) { return _mm256_add_epi32(a, b); }
    static Reg sub(Reg a, Reg b) { return _mm256_sub_epi32(a, b); }
    static Reg minu(Reg a, Reg b) { return _mm256_min_epu32(a, b); }
    static Reg mullo(Reg a, Reg b) { return _mm256_mullo_epi32(a, b); }
    static void mulWide(Reg a, Reg b, Reg& hi, Reg& lo) {
        const Reg even = _mm256_mul_epu32(a, b);
        const Reg odd = _mm256_mul_epu32(_mm256_srli_epi64(a, 32), _mm256_srli_epi64(b, 32));
        hi = _mm256_blend_epi32(_mm256_srli_epi64(even, 32), odd, 0xAA);
        lo = _mm256_blend_epi32(even, _mm256_slli_epi64(odd, 32), 0xAA);
    }
    static Reg mulhi(Reg a, Reg b) {
        Reg hi, lo;
        mulWide(a, b, hi, lo);  // the low words fold away
        return hi;
    }

    // Four 64-bit lanes, for the limb-radix weights of the Chinese remainder step.
    using Wide = __m256i;
    static void widen(Reg a, Wide& low, Wide& high) {
        low = _mm256_cvtepu32_epi64(_mm256_castsi256_si128(a));
        high = _mm256_cvtepu32_epi64(_mm256_extracti128_si256(a, 1));
    }
    static Wide broadcastWide(std::uint64_t v) { return _mm256_set1_epi64x(std::int64_t(v)); }
    static Wide mulLowWords(Wide a, Wide b) { return _mm256_mul_epu32(a, b); }  // 64-bit products of the low words
    static Wide addWide(Wide a, Wide b) { return _mm256_add_epi64(a, b); }
    static void storeWide(std::uint64_t* p, Wide v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }

    // Lanes 0, 2, 4, ... of the pair (a, b); lanes in reverse order.
    static Reg evenLanes(Reg a, Reg b) {
        const __m256 e = _mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), _MM_SHUFFLE(2, 0, 2, 0));
        return _mm256_permute4x64_epi64(_mm256_castps_si256(e), _MM_SHUFFLE(3, 1, 2, 0));
    }
    static Reg reverse(Reg a) { return _mm256_permutevar8x32_epi32(a, _mm256_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0)); }

    // Shuffles inside each 128-bit quarter, for the in-register levels (butterflies.h).
    static Reg unpackLo64(Reg a, Reg b) { return _mm256_unpacklo_epi64(a, b); }
    static Reg unpackHi64(Reg a, Reg b) { return _mm256_unpackhi_epi64(a, b); }
    static Reg unpackLo32(Reg a, Reg b) { return _mm256_unpacklo_epi32(a, b); }
    static Reg unpackHi32(Reg a, Reg b) { return _mm256_unpackhi_epi32(a, b); }
    static Reg evenWords(Reg a, Reg b) { return shuffleWords<_MM_SHUFFLE(2, 0, 2, 0)>(a, b); }
    static Reg oddWords(Reg a, Reg b) { return shuffleWords<_MM_SHUFFLE(3, 1, 3, 1)>(a, b); }

    // The split of span 4 across 128-bit halves: exchanging them undoes itself.
    template <std::size_t H>
    static void splitHalves(Reg& a, Reg& b) {
        static_assert(H == 4);
        const Reg p = _mm256_permute2x128_si256(a, b, 0x20), q = _mm256_permute2x128_si256(a, b, 0x31);
        a = p;
        b = q;
    }
    template <std::size_t H>
    static void mergeHalves(Reg& p, Reg& q) {
        splitHalves<H>(p, q);
    }

private:
    template <int Imm>
    static Reg shuffleWords(Reg a, Reg b) {
        return _mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), Imm));
    }
};

}  // namespace tw::arith::ntt
