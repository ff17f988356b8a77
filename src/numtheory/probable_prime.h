// Strong probable-prime tests of an odd n > 1 given as 64-bit words: the
// Miller-Rabin test to a base and the strong Lucas test with Selfridge's
// parameters, the two halves of the Baillie-PSW test.  Both run on a ring of
// Montgomery residues modulo n: the words of residue_words.h or the lanes of
// lane_residues.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "frame/error_state.h"

namespace tw::numtheory {
namespace detail {

// Bit i of the words w.
inline bool wordBit(const std::vector<std::uint64_t>& w, std::size_t i) { return (w[i / 64] >> (i % 64)) & 1; }

// Bits of the words w up to the top set one.
inline std::size_t wordBitLength(const std::vector<std::uint64_t>& w) {
    for (std::size_t i = w.size(); i-- > 0;)
        if (w[i] != 0) return 64 * i + 64 - std::size_t(__builtin_clzll(w[i]));
    return 0;
}

// v := v / 2^k for the trailing zero bits of v; returns k (v non-zero).
inline std::size_t stripTwos(std::vector<std::uint64_t>& v) {
    std::size_t k = 0;
    while (!wordBit(v, k)) ++k;
    const std::size_t words = k / 64, bits = k % 64;
    for (std::size_t i = 0; i < v.size(); ++i) {
        const std::uint64_t lo = i + words < v.size() ? v[i + words] : 0;
        const std::uint64_t hi = i + words + 1 < v.size() ? v[i + words + 1] : 0;
        v[i] = bits == 0 ? lo : (lo >> bits) | (hi << (64 - bits));
    }
    return k;
}

// The Jacobi symbol (a / m) for an odd m > 0 below 2^64.
inline int jacobiSmall(std::uint64_t a, std::uint64_t m) {
    int result = 1;
    a %= m;
    while (a != 0) {
        while ((a & 1) == 0) {
            a >>= 1;
            if ((m & 7) == 3 || (m & 7) == 5) result = -result;
        }
        std::swap(a, m);
        if ((a & 3) == 3 && (m & 3) == 3) result = -result;
        a %= m;
    }
    return m == 1 ? result : 0;
}

// n mod d for n in 64-bit words and a small d > 0.
inline std::uint64_t wordsModSmall(const std::uint64_t* n, std::size_t size, std::uint64_t d) {
    u128 r = 0;
    for (std::size_t i = size; i-- > 0;) r = ((r << 64) | n[i]) % d;
    return std::uint64_t(r);
}

}  // namespace detail

namespace detail {

// The strong test: x = base^d for n - 1 = d 2^s, d odd, left to right from
// x = base with timesBase(x) taking x to x base; then n passes when x is 1
// or one of x, x^2, ..., x^(2^(s-1)) is -1.  A raised terminate flag makes it pass.
template <class Ring, class TimesBase>
bool strongTest(Ring& ring, const std::vector<std::uint64_t>& n, typename Ring::Element x, TimesBase timesBase) {
    std::vector<std::uint64_t> d = n;
    d[0] -= 1;  // n odd: no borrow
    const std::size_t s = stripTwos(d);
    typename Ring::Element minusOne(ring.size()), zero(ring.size(), 0);
    ring.sub(minusOne.data(), zero.data(), ring.one().data());
    for (std::size_t i = wordBitLength(d) - 1; i-- > 0;) {
        ring.sqr(x.data(), x.data());
        if (wordBit(d, i)) timesBase(x);
        if ((i & 63) == 0 && terminateRequested()) return true;
    }
    if (ring.equal(x.data(), ring.one().data()) || ring.equal(x.data(), minusOne.data())) return true;
    for (std::size_t r = 1; r < s; ++r) {
        ring.sqr(x.data(), x.data());
        if (ring.equal(x.data(), minusOne.data())) return true;
        if (ring.equal(x.data(), ring.one().data())) return false;
    }
    return false;
}

}  // namespace detail

// Whether n passes the strong test to the base given in the ring's form (a
// non-zero residue).
template <class Ring>
bool strongProbablePrime(Ring& ring, const std::vector<std::uint64_t>& n, const typename Ring::Element& base) {
    return detail::strongTest(ring, n, base, [&](typename Ring::Element& x) { ring.mul(x.data(), x.data(), base.data()); });
}

// The strong test to the base 2: 2^d by squarings and doublings only.
template <class Ring>
bool strongProbablePrimeBaseTwo(Ring& ring, const std::vector<std::uint64_t>& n) {
    typename Ring::Element two = ring.one();
    ring.add(two.data(), two.data(), two.data());
    return detail::strongTest(ring, n, two, [&](typename Ring::Element& x) { ring.add(x.data(), x.data(), x.data()); });
}

// Selfridge's D: the first of 5, -7, 9, -11, ... with (D / n) = -1; 0 when a
// D shares a factor with n below it (n composite), 1 when none turned up
// below maxMagnitude (a square n has none: the caller looks first).
inline std::int64_t selfridgeD(const std::vector<std::uint64_t>& n, std::int64_t maxMagnitude) {
    const std::uint64_t nMod4 = n[0] & 3;
    const bool nIsSmall = n.size() == 1;
    for (std::int64_t magnitude = 5, sign = 1; magnitude < maxMagnitude; magnitude += 2, sign = -sign) {
        const std::uint64_t r = detail::wordsModSmall(n.data(), n.size(), std::uint64_t(magnitude));
        // (D/n) = (-1/n)^[D<0] (|D|/n), and (|D|/n) = (n/|D|) (-1)^((|D|-1)/2 (n-1)/2).
        int j = detail::jacobiSmall(r, std::uint64_t(magnitude));
        if (j == 0) {
            if (nIsSmall && n[0] == std::uint64_t(magnitude)) continue;
            return 0;
        }
        if ((magnitude & 3) == 3 && nMod4 == 3) j = -j;
        if (sign < 0 && nMod4 == 3) j = -j;
        if (j == -1) return sign * magnitude;
    }
    return 1;
}

// The strong Lucas test with P = 1, Q = (1 - D) / 4: n + 1 = d 2^s, and n
// passes when U_d = 0 or V_(d 2^r) = 0 for some r < s (mod n).
template <class Ring>
bool strongLucasProbablePrime(Ring& ring, const std::vector<std::uint64_t>& n, std::int64_t D) {
    const std::size_t size = ring.size();
    std::vector<std::uint64_t> d = n;
    d.push_back(0);
    for (std::size_t i = 0; i < d.size() && ++d[i] == 0; ++i) {
    }
    const std::size_t s = detail::stripTwos(d);
    const typename Ring::Element Dm = ring.small(D), Qm = ring.small((1 - D) / 4);
    typename Ring::Element U = ring.one(), V = ring.one(), Qk = Qm, t(size);
    for (std::size_t i = detail::wordBitLength(d) - 1; i-- > 0;) {
        ring.mul(U.data(), U.data(), V.data());  // U_2k = U_k V_k
        ring.sqr(V.data(), V.data());            // V_2k = V_k^2 - 2 Q^k
        ring.add(t.data(), Qk.data(), Qk.data());
        ring.sub(V.data(), V.data(), t.data());
        ring.sqr(Qk.data(), Qk.data());
        if (detail::wordBit(d, i)) {  // U_(2k+1) = (U + V) / 2, V_(2k+1) = (D U + V) / 2
            ring.mul(t.data(), Dm.data(), U.data());
            ring.add(U.data(), U.data(), V.data());
            ring.half(U.data(), U.data());
            ring.add(V.data(), t.data(), V.data());
            ring.half(V.data(), V.data());
            ring.mul(Qk.data(), Qk.data(), Qm.data());
        }
        if ((i & 63) == 0 && terminateRequested()) return true;
    }
    if (ring.isZero(U.data())) return true;
    for (std::size_t r = 0; r < s; ++r) {
        if (ring.isZero(V.data())) return true;
        if (r + 1 == s) break;
        ring.sqr(V.data(), V.data());
        ring.add(t.data(), Qk.data(), Qk.data());
        ring.sub(V.data(), V.data(), t.data());
        ring.sqr(Qk.data(), Qk.data());
    }
    return false;
}

}  // namespace tw::numtheory
