// The sub-quadratic GCD: half-GCD reductions (Moller, "On Schonhage's
// algorithm and subquadratic integer gcd computation", Math. Comp. 2008) on
// 64-bit words, whose matrix products and reductions run on the library's
// products (multiplyWords: the radix-2^28 ladder up to the transform).
//
// halfGcd(a, b) of n words with s = n/2 + 1 reduces both numbers as far as
// it can while both stay at least 2^(64 s), and returns the product M of its
// steps, whose entries are then below 2^(64 (n - s)): A = m00 alpha + m01 beta
// >= m01 beta.  It first reduces the top half alone: the matrix of a top part
// A_t = floor(A / 2^(64 p)) of n_t words is valid for the whole numbers, for
// alpha = 2^(64 p) alpha_t + m11 A_lo - m01 B_lo > 2^(64 p) (alpha_t - m01),
// and alpha_t >= 2^(64 s_t) > 2^(64 (n_t - s_t)) > m01 (s_t = n_t/2 + 1), so
// alpha > 2^(64 (p + s_t) - 1) >= 2^(64 s) whenever p + s_t > s, which both
// recursive calls below satisfy.  Single steps (word_lehmer.h's matrix with a
// floor, or a division) bring the rest down.
#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <utility>

#include "arith/tuning.h"
#include "frame/error_state.h"
#include "numtheory/word_euclid.h"

namespace tw::numtheory {

// t += q s, all trimmed.
inline void addProductTo(Words& t, const Words& q, const Words& s) {
    std::size_t tn = t.size();
    addProductTo(t, tn, q, s.data(), s.size());
    t.resize(tn);
}

// (x, y) := (x n00 + y n10, x n01 + y n11) for trimmed entries: four products.
inline void rowTimesBig(Words& x, Words& y, const Words (&n)[2][2]) {
    Words x2 = productOf(x, n[0][0]), y2 = productOf(x, n[0][1]);
    addProductTo(x2, y, n[1][0]);
    addProductTo(y2, y, n[1][1]);
    x = std::move(x2), y = std::move(y2);
}

// A product of reduction steps with entries of any length: (A, B) = M (alpha, beta).
struct WordMatrixBig {
    Words e[2][2];  // trimmed

    WordMatrixBig() { e[0][0] = {1}, e[1][1] = {1}; }

    // M := M s.
    void times(const WordMatrix& s) {
        for (Words* row : e) {
            const std::size_t n = std::max(row[0].size(), row[1].size());
            row[0].resize(n + 2, 0), row[1].resize(n + 2, 0);
            rowTimesMatrix(row[0].data(), row[1].data(), n, s);
            trim(row[0]), trim(row[1]);
        }
    }

    // M := M [1 q; 0 1] (column 1 += q column 0) or M [1 0; q 1].
    void addColumnMultiple(int to, const Words& q) {
        for (Words* row : e) addProductTo(row[to], q, row[1 - to]);
    }

    // M := M N.
    void times(const WordMatrixBig& n) {
        for (Words* row : e) rowTimesBig(row[0], row[1], n.e);
    }

    static void trim(Words& w) { w.resize(trimmedWords(w.data(), w.size())); }
};

// The whole numbers after a half-GCD of their top parts: a[p..p+nn) and
// b[p..p+nn) hold the reduced top parts, a[0..p), b[0..p) the low parts
// still untouched; a := 2^(64 p) alpha_t + m11 a_lo - m01 b_lo and
// b := 2^(64 p) beta_t + m00 b_lo - m10 a_lo.  The sums before the
// subtraction fit n + 1 words (alpha_t + m11 <= A_t + B_t); both buffers
// hold them, zero above n.  Returns the new length.
inline std::size_t adjustToTopMatrix(Word* a, Word* b, std::size_t n, std::size_t p, const WordMatrixBig& m) {
    const Words aLow(a, a + trimmedWords(a, p)), bLow(b, b + trimmedWords(b, p));
    const auto combine = [n, p](Word* x, const Words& plus, const Words& minus) {
        std::fill(x, x + p, 0);
        const std::size_t room = n + 1;
        if (!plus.empty()) {
            const Word carry = addWords(x, x, room, plus.data(), plus.size());
            (void)carry, assert(carry == 0);
        }
        if (!minus.empty()) {
            const Word borrow = subWords(x, x, room, minus.data(), minus.size());
            (void)borrow, assert(borrow == 0);
        }
    };
    combine(a, productOf(aLow, m.e[1][1]), productOf(bLow, m.e[0][1]));
    combine(b, productOf(bLow, m.e[0][0]), productOf(aLow, m.e[1][0]));
    return std::max(trimmedWords(a, n + 1), trimmedWords(b, n + 1));
}

// Whether p[0..n) is at least 2^bits.
inline bool atLeastPowerOfTwo(const Word* p, std::size_t n, std::size_t bits) {
    return bitLength(p, trimmedWords(p, n)) > bits;
}

// One reduction of (a, b), n words, that keeps both at least 2^S (S = 64 s):
// a Lehmer round on the leading 128 bits with the floor that guarantees it,
// or, when those allow no step, the larger less the largest multiple of the
// smaller that keeps it there.  M := M times the step.  Returns the new
// length, 0 when no reduction is possible.
inline std::size_t halfGcdStep(Word* a, Word* b, std::size_t n, std::size_t s, WordMatrixBig& M) {
    const std::size_t S = 64 * s;
    const std::size_t bits = std::max(bitLength(a, trimmedWords(a, n)), bitLength(b, trimmedWords(b, n)));
    const std::size_t k = bits > 128 ? bits - 128 : 0;
    if (bits >= S + 2) {
        const bool exact = k == 0;
        const u128 floor = exact ? u128(1) << S : k <= S ? u128(1) << (S - k) : u128(1);
        WordMatrix m;
        if ((!exact || S < 127) && lehmerWordMatrix(bitsFrom(a, n, k), bitsFrom(b, n, k), floor, exact, m)) {
            applyInverse(a, b, n, m);
            M.times(m);
            return std::max(trimmedWords(a, n), trimmedWords(b, n));
        }
    }
    const std::size_t an = trimmedWords(a, n), bn = trimmedWords(b, n);
    const bool reduceA = compareWords(a, an, b, bn) >= 0;
    Word* big = reduceA ? a : b;
    const Word* small = reduceA ? b : a;
    const std::size_t bigN = reduceA ? an : bn, smallN = reduceA ? bn : an;
    Words q, r;
    divideWords(q, r, big, bigN, small, smallN);
    if (!atLeastPowerOfTwo(r.data(), r.size(), S)) {
        // One multiple fewer: r + small >= small >= 2^S.
        if (q.size() == 1 && q[0] == 1) return 0;
        const Word one = 1;
        subWords(q.data(), q.data(), q.size(), &one, 1);
        WordMatrixBig::trim(q);
        r.resize(smallN + 1, 0);
        r[smallN] = addWords(r.data(), small, smallN, r.data(), trimmedWords(r.data(), smallN));
        WordMatrixBig::trim(r);
    }
    std::fill(big, big + bigN, 0);
    std::copy(r.begin(), r.end(), big);
    M.addColumnMultiple(reduceA ? 1 : 0, q);
    return std::max(trimmedWords(a, n), trimmedWords(b, n));
}

// The half-GCD of a[0..n), b[0..n) (one top word non-zero), in place; M is
// the product of the steps.  Returns the new length, 0 when not one step
// keeps both numbers at least 2^(64 s), s = n/2 + 1 (M the identity).  Both
// buffers hold n + 1 words, the last zero.
inline std::size_t halfGcd(Word* a, Word* b, std::size_t n, WordMatrixBig& M) {
    M = WordMatrixBig{};
    const std::size_t s = n / 2 + 1;
    if (!atLeastPowerOfTwo(a, n, 64 * s) || !atLeastPowerOfTwo(b, n, 64 * s)) return 0;
    bool progress = false;
    if (n >= kHalfGcdMinWords) {
        const std::size_t n0 = n;
        std::size_t p = n / 2;  // the top half first: p + s_t > s
        WordMatrixBig top;
        std::size_t nn = halfGcd(a + p, b + p, n - p, top);
        if (nn) n = adjustToTopMatrix(a, b, n, p, top), M = std::move(top), progress = true;
        while (n > 3 * n0 / 4 + 1 && !terminateRequested()) {
            nn = halfGcdStep(a, b, n, s, M);
            if (!nn) return progress ? n : 0;
            n = nn, progress = true;
        }
        // Stopped short of 3/4: the second half would recurse on nearly all
        // of n words, three fewer per level.
        if (terminateRequested()) return progress ? n : 0;
        if (n > s + 2) {
            p = 2 * s - n + 1;  // the top part of 2 (n - s) - 1 words: p + s_t = s + 1
            nn = halfGcd(a + p, b + p, n - p, top);
            if (nn) n = adjustToTopMatrix(a, b, n, p, top), M.times(top), progress = true;
        }
    }
    while (!terminateRequested()) {
        const std::size_t nn = halfGcdStep(a, b, n, s, M);
        if (!nn) break;
        n = nn, progress = true;
    }
    return progress ? n : 0;
}

// The sub-quadratic run: while both numbers are long, a half-GCD of the top
// part (a third of the numbers for the GCD alone, half when the cofactor row
// is followed, whose products then cost more) and its matrix applied to the
// whole; a division when it takes no step.  The plain run finishes.  False
// when the terminate flag stopped it.
inline bool runSubquadratic(EuclidState& st) {
    while (st.an != 0 && st.bn != 0) {
        if (terminateRequested()) return false;
        const std::size_t n = std::max(st.an, st.bn);
        if (n < kHalfGcdMinWords) break;
        st.a.resize(std::max(st.a.size(), n + 1), 0), st.b.resize(st.a.size(), 0);
        const std::size_t p = st.track ? n / 2 : 2 * n / 3;
        WordMatrixBig M;
        const std::size_t nn = halfGcd(st.a.data() + p, st.b.data() + p, n - p, M);
        if (nn == 0) {
            divisionStep(st);
            continue;
        }
        adjustToTopMatrix(st.a.data(), st.b.data(), n, p, M);
        st.an = trimmedWords(st.a.data(), n), st.bn = trimmedWords(st.b.data(), n);
        if (st.track) {
            st.u.resize(st.un), st.v.resize(st.vn);
            rowTimesBig(st.u, st.v, M.e);
            st.un = st.u.size(), st.vn = st.v.size();
            st.u.resize(st.un + 2, 0), st.v.resize(st.vn + 2, 0);
        }
    }
    return runPlain(st);
}

}  // namespace tw::numtheory
