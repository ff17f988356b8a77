// The plain GCD path on words: Lehmer rounds of one-word matrices, with a
// full division whenever the leading parts allow no step (a quotient of 64
// bits or more), optionally following one cofactor.
//
// Cofactors.  The product P of all rounds has (A0, B0) = P (a, b) for the
// operands A0, B0 and the current pair a, b; the run keeps P's second row
// (u, v) = (p10, p11), which grows by additions only.  When b reaches 0,
// g = a = p11 A0 - p01 B0, so x = v; when a reaches 0, g = b = p00 B0 - p10 A0,
// so x = -u.  The step that zeroed the number multiplied P on the right by
// [1 q; 0 1] (or its transpose) with q >= 1, which leaves x at most the
// other row entry, and that one times g is B0: |x| <= B0 / g.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>

#include "frame/error_state.h"
#include "numtheory/word_lehmer.h"

namespace tw::numtheory {

// The pair a, b (lengths an, bn, spare zero words above) and, with `track`,
// the cofactor row (u, v) (lengths un, vn, two spare zero words above).
struct EuclidState {
    Words a, b, u, v;
    std::size_t an = 0, bn = 0, un = 0, vn = 0;
    bool track = false;

    // a and b trimmed and non-zero; the row starts at the identity's (0, 1).
    EuclidState(Words a0, Words b0, bool followCofactor) : a(std::move(a0)), b(std::move(b0)), track(followCofactor) {
        an = a.size(), bn = b.size();
        const std::size_t n = std::max(an, bn) + 1;
        a.resize(n, 0), b.resize(n, 0);
        if (track) u.assign(2, 0), v.assign(3, 0), v[0] = 1, vn = 1;
    }

    const Words& gcd() const { return an ? a : b; }
    // |x| with gcd = x A0 + y B0 once one number is zero, and its sign.
    const Words& cofactor() const { return bn == 0 ? v : u; }
    bool cofactorNegative() const { return bn != 0; }
};

// t += q s for trimmed vectors (t keeps two spare zero words).
inline void addProductTo(Words& t, std::size_t& tn, const Words& q, const Word* s, std::size_t sn) {
    if (q.empty() || sn == 0) return;
    Words p(q.size() + sn);
    multiplyWords(p.data(), q.data(), q.size(), s, sn);
    const std::size_t pn = trimmedWords(p.data(), p.size()), n = std::max(tn, pn) + 1;
    if (t.size() < n + 2) t.resize(n + 2, 0);
    if (tn >= pn)
        t[tn] = addWords(t.data(), t.data(), tn, p.data(), pn);
    else
        t[pn] = addWords(t.data(), p.data(), pn, t.data(), tn);
    tn = trimmedWords(t.data(), n);
}

// One round's matrix on the pair and the row.
inline void applyRound(EuclidState& st, const WordMatrix& m, std::size_t n) {
    applyInverse(st.a.data(), st.b.data(), n, m);
    st.an = trimmedWords(st.a.data(), n), st.bn = trimmedWords(st.b.data(), n);
    if (!st.track) return;
    const std::size_t rn = std::max(st.un, st.vn);
    for (Words* w : {&st.u, &st.v})
        if (w->size() < rn + 2) w->resize(rn + 2 + rn / 8, 0);
    rowTimesMatrix(st.u.data(), st.v.data(), rn, m);
    st.un = trimmedWords(st.u.data(), rn + 2), st.vn = trimmedWords(st.v.data(), rn + 2);
}

// The larger number by the smaller: big := big mod small, and the row times
// [1 q; 0 1] (v += q u) or [1 0; q 1] (u += q v).
inline void divisionStep(EuclidState& st) {
    const bool reduceA = compareWords(st.a.data(), st.an, st.b.data(), st.bn) >= 0;
    Words& big = reduceA ? st.a : st.b;
    std::size_t& bigN = reduceA ? st.an : st.bn;
    Words q, r;
    divideWords(q, r, big.data(), bigN, (reduceA ? st.b : st.a).data(), reduceA ? st.bn : st.an);
    std::fill(big.begin(), big.begin() + std::ptrdiff_t(bigN), 0);
    std::copy(r.begin(), r.end(), big.begin());
    bigN = r.size();
    if (!st.track) return;
    if (reduceA)
        addProductTo(st.v, st.vn, q, st.u.data(), st.un);
    else
        addProductTo(st.u, st.un, q, st.v.data(), st.vn);
}

// Both numbers below 2^128: Euclid on machine integers.
inline void finishInWords(EuclidState& st) {
    const auto value = [](const Words& w, std::size_t n) { return n == 2 ? (u128(w[1]) << 64) | w[0] : u128(w[0]); };
    const u128 g = gcdOfWords(value(st.a, st.an), value(st.b, st.bn));
    st.a[0] = Word(g), st.a[1] = Word(g >> 64);
    st.an = trimmedWords(st.a.data(), 2), st.bn = 0;
}

// The plain run to the end; false when the terminate flag stopped it.
inline bool runPlain(EuclidState& st) {
    while (st.an != 0 && st.bn != 0) {
        if (terminateRequested()) return false;
        const std::size_t n = std::max(st.an, st.bn);
        if (!st.track && n <= 2) {
            finishInWords(st);
            break;
        }
        const std::size_t bits = std::max(bitLength(st.a.data(), st.an), bitLength(st.b.data(), st.bn));
        const std::size_t k = bits > 128 ? bits - 128 : 0;
        WordMatrix m;
        if (lehmerWordMatrix(bitsFrom(st.a.data(), n, k), bitsFrom(st.b.data(), n, k), 0, k == 0, m))
            applyRound(st, m, n);
        else
            divisionStep(st);
    }
    return true;
}

}  // namespace tw::numtheory
