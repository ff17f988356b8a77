// Lehmer's GCD on 64-bit words: the one-word cofactor matrix of a round, read
// off 128-bit leading parts, and its application to whole numbers and to
// cofactor rows in one pass each.
//
// The matrices are those of the subtractive form of Euclid's algorithm: a
// step replaces the larger number by itself less q >= 1 times the smaller,
// so every matrix M of a round (and every product of them) has non-negative
// entries and determinant 1, with (A, B) = M (alpha, beta) for the numbers
// before and after.  Any such M that leaves alpha, beta >= 0 is a valid
// reduction: gcd(alpha, beta) = gcd(A, B), the intermediate numbers are all
// non-negative, and the product of the rounds yields bounded cofactors (see
// word_euclid.h).  A step need not take the full quotient.
#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>

#include "numtheory/word_spans.h"

namespace tw::numtheory {

// (A, B) = M (alpha, beta): the numbers before a round are M times those after.
struct WordMatrix {
    Word m00 = 1, m01 = 0, m10 = 0, m11 = 1;
};

// Bits [k, k + 128) of p[0..n).
inline u128 bitsFrom(const Word* p, std::size_t n, std::size_t k) {
    const std::size_t w = k / 64;
    const unsigned off = unsigned(k % 64);
    const auto at = [p, n](std::size_t i) { return i < n ? p[i] : Word(0); };
    u128 v = (u128(at(w)) | (u128(at(w + 1)) << 64)) >> off;
    if (off) v |= u128(at(w + 2)) << (128 - off);
    return v;
}

// The matrix of one round from the leading parts a = floor(A / 2^k),
// b = floor(B / 2^k); false when not one step can be taken.
//
// Why the full numbers stay non-negative.  After the round,
// alpha = m11 A - m01 B = 2^k (m11 a - m01 b) + (m11 A' - m01 B') with
// 0 <= A', B' < 2^k, and m11 a - m01 b is the reduced leading part a_r, so
// alpha > 2^k (a_r - m01) and alpha >= m01 > 0 once a_r >= m01; likewise
// beta against m10.  With `floor` F the condition is a_r >= m01 + F, which
// gives alpha >= 2^k F: the half-GCD passes F = 2^(S - k) to keep both
// numbers at least 2^S.  When a and b are the whole numbers (`exact`, k = 0)
// only a_r >= F is needed.
//
// Each step takes the true quotient of the leading parts when the condition
// and 64-bit entries allow; when only the condition fails, the largest
// quotient that satisfies it, and the round ends.  Entries below 2^63; the leading parts
// shrink, so nothing overflows 128 bits (F < 2^127).
namespace detail {

// What a step of the round did.
enum class Step { None, Full, Partial };

// One step of lehmerWordMatrix: big -= q small with bounded += q boundedStep
// and other += q otherStep, under the round's condition.
inline Step lehmerStep(u128& big, u128 small, Word& bounded, Word& other, Word boundedStep, Word otherStep,
                       u128 floor, bool exact) {
    if (small == 0) return Step::None;
    // The quotient: most are 1 or 2 (Gauss-Kuzmin: 58 %); larger ones from a
    // 64-bit division of the leading bits, or past 2^11 a 128-bit division.
    u128 r = big - small, q = 1;
    if (r >= small) {
        r -= small, q = 2;
        if (r >= small) {
            // Both shifted until r fits 63 bits: below 2^11 the quotient of
            // the shifted values is off by at most one (the divisor keeps 51
            // bits or more), so it is lowered by one and corrected upwards.
            const Word high = Word(r >> 64);
            const unsigned shift = high ? 65 - unsigned(__builtin_clzll(high)) : 0;
            const Word rs = Word(r >> shift), ss = Word(small >> shift);
            if (ss != 0 && rs / ss < (Word(1) << 11)) {
                Word e = rs / ss;
                e = e ? e - 1 : 0;
                r -= u128(e) * small, q += e;
                while (r >= small) r -= small, ++q;
            } else {
                const u128 more = r / small;
                q += more, r -= more * small;
            }
        }
    }
    // A quotient whose entries reach 2^63 ends the round (a division takes
    // it when it is the first): the matrix is applied with signed carries.
    if ((q >> 64) != 0) return Step::None;
    const u128 nb = u128(Word(q)) * boundedStep + bounded, no = u128(Word(q)) * otherStep + other;
    if (((nb | no) >> 63) != 0) return Step::None;
    if (r >= (exact ? floor : nb + floor)) {
        big = r, bounded = Word(nb), other = Word(no);
        return Step::Full;
    }
    // The floor allows less than the quotient: the largest q' < q with
    // big - q' small >= base + q' slope + floor (small < 2^127 once q >= 2).
    const Word base = exact ? 0 : bounded, slope = exact ? 0 : boundedStep;
    if (q == 1 || big < base + floor) return Step::None;
    const Word qp = Word((big - base - floor) / (small + slope));
    if (qp == 0) return Step::None;
    big -= u128(qp) * small, bounded += qp * boundedStep, other += qp * otherStep;
    return Step::Partial;
}

}  // namespace detail

inline bool lehmerWordMatrix(u128 a, u128 b, u128 floor, bool exact, WordMatrix& m) {
    using detail::Step;
    // Reducing a moves m01 += q m00 (bounded by a_r) and m11 += q m10;
    // reducing b moves m10 += q m11 (bounded by b_r) and m00 += q m01.  A
    // full step leaves the reduced number below the other, so the two
    // alternate.
    Word m00 = 1, m01 = 0, m10 = 0, m11 = 1;
    Step s = Step::Full;
    bool progress = false;
    if (a < b) {
        s = detail::lehmerStep(b, a, m10, m00, m11, m01, floor, exact);
        progress = s != Step::None;
    }
    while (s == Step::Full) {
        s = detail::lehmerStep(a, b, m01, m11, m00, m10, floor, exact);
        if (s == Step::None) break;
        progress = true;
        if (s == Step::Partial) break;
        s = detail::lehmerStep(b, a, m10, m00, m11, m01, floor, exact);
        progress |= s != Step::None;
    }
    m = WordMatrix{m00, m01, m10, m11};
    return progress;
}

// (a, b) := (m11 a - m01 b, m00 b - m10 a) over n words in place, one pass.
// Both results must be non-negative; they are then at most a and b.  Each
// row keeps one signed carry, in [-m01, m11) for a (the prefix's m11 x - m01 y
// over the words done): with entries below 2^63, x m11 - y m01 + carry stays
// within (-2^127, 2^127), so it is taken modulo 2^128 and its top word read
// as signed.  Twice as fast as two unsigned carry chains a product.
inline void applyInverse(Word* a, Word* b, std::size_t n, const WordMatrix& m) {
    u128 ca = 0, cb = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const Word x = a[i], y = b[i];
        const u128 ta = u128(x) * m.m11 - u128(y) * m.m01 + ca;
        const u128 tb = u128(y) * m.m00 - u128(x) * m.m10 + cb;
        a[i] = Word(ta), b[i] = Word(tb);
        ca = u128(std::int64_t(Word(ta >> 64))), cb = u128(std::int64_t(Word(tb >> 64)));
    }
    assert(ca == 0 && cb == 0);
}

// (x, y) := (x s00 + y s10, x s01 + y s11): a row of a product matrix times
// s.  x and y hold n + 2 words, zero above n; the sums fit them.  With entries
// below 2^63 both products and the carry fit one 128-bit sum.
inline void rowTimesMatrix(Word* x, Word* y, std::size_t n, const WordMatrix& s) {
    Word cx = 0, cy = 0;
    for (std::size_t i = 0; i < n + 2; ++i) {
        const Word u = x[i], v = y[i];
        const u128 tx = u128(u) * s.m00 + u128(v) * s.m10 + cx;
        const u128 ty = u128(u) * s.m01 + u128(v) * s.m11 + cy;
        x[i] = Word(tx), y[i] = Word(ty);
        cx = Word(tx >> 64), cy = Word(ty >> 64);
    }
    assert(cx == 0 && cy == 0);
}

// gcd of two numbers below 2^128.
inline u128 gcdOfWords(u128 a, u128 b) {
    while (b != 0) {
        if ((a >> 64) == 0 && (b >> 64) == 0) {
            Word x = Word(a), y = Word(b);
            while (y != 0) x %= y, std::swap(x, y);
            return x;
        }
        a %= b, std::swap(a, b);
    }
    return a;
}

}  // namespace tw::numtheory
