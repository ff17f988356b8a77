// Magnitudes as spans of 64-bit words, the form the GCDs work in: a Euclidean
// step on whole machine words settles twice the bits of a 28-bit limb and
// needs no carry constants.  Here are the linear span operations, the repacking
// between 28-bit limbs and words, the product (by the radix-2^28 ladder above a
// few words) and the way in and out of either integer type.
#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "arith/convert/convert_limbs.h"
#include "arith/kernels/divide.h"
#include "arith/kernels/divide_by_limb.h"
#include "arith/kernels/fast_product.h"
#include "arith/kernels/mul_span_ops.h"
#include "arith/numbers/magnitude.h"
#include "arith/tuning.h"
#include "frame/radix.h"
#include "frame/signed_number.h"

namespace tw::numtheory {

using Word = std::uint64_t;
using Words = std::vector<Word>;

inline std::size_t trimmedWords(const Word* p, std::size_t n) {
    while (n > 0 && p[n - 1] == 0) --n;
    return n;
}

// Bits of p[0..n), n trimmed (0 for zero).
inline std::size_t bitLength(const Word* p, std::size_t n) {
    return n == 0 ? 0 : 64 * n - std::size_t(__builtin_clzll(p[n - 1]));
}

// Sign of a - b for trimmed spans.
inline int compareWords(const Word* a, std::size_t an, const Word* b, std::size_t bn) {
    if (an != bn) return an < bn ? -1 : 1;
    for (std::size_t i = an; i-- > 0;)
        if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
    return 0;
}

// out[0..an) := a[0..an) + b[0..bn), an >= bn; returns the carry.  out may be a.
inline Word addWords(Word* out, const Word* a, std::size_t an, const Word* b, std::size_t bn) {
    Word carry = 0;
    std::size_t i = 0;
    for (; i < bn; ++i) {
        const u128 s = u128(a[i]) + b[i] + carry;
        out[i] = Word(s), carry = Word(s >> 64);
    }
    for (; i < an; ++i) out[i] = a[i] + carry, carry = carry && out[i] == 0;
    return carry;
}

// out[0..an) := a[0..an) - b[0..bn), an >= bn; returns the borrow.  out may be a.
inline Word subWords(Word* out, const Word* a, std::size_t an, const Word* b, std::size_t bn) {
    Word borrow = 0;
    std::size_t i = 0;
    for (; i < bn; ++i) {
        const u128 d = u128(a[i]) - b[i] - borrow;
        out[i] = Word(d), borrow = Word(d >> 64) & 1;
    }
    for (; i < an; ++i) {
        const Word x = a[i];
        out[i] = x - borrow, borrow = borrow && x == 0;
    }
    return borrow;
}

// out[0..n) += a[0..n) * m; returns the carry word.
inline Word addMulWord(Word* out, const Word* a, std::size_t n, Word m) {
    Word carry = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const u128 t = u128(a[i]) * m + out[i] + carry;  // < 2^128
        out[i] = Word(t), carry = Word(t >> 64);
    }
    return carry;
}

// x[0..n) >>= bits (bits < 64).
inline void shiftRightWords(Word* x, std::size_t n, unsigned bits) {
    if (bits == 0) return;
    for (std::size_t i = 0; i < n; ++i) x[i] = (x[i] >> bits) | (i + 1 < n ? x[i + 1] << (64 - bits) : 0);
}

// ---- repacking: 16 limbs of 28 bits are 7 words ----

inline std::size_t wordsForLimbs(std::size_t limbs) { return (28 * limbs + 63) / 64; }
inline std::size_t limbsForWords(std::size_t words) { return (64 * words + 27) / 28; }

// out[0..wordsForLimbs(n)) := the radix-2^28 limbs p[0..n).
inline void packWords(Word* out, const Limb* p, std::size_t n) {
    Word acc = 0;
    unsigned bits = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const Word limb = p[i];
        acc |= limb << bits;
        bits += 28;
        if (bits >= 64) {
            *out++ = acc;
            bits -= 64;
            acc = bits ? limb >> (28 - bits) : 0;
        }
    }
    if (bits) *out = acc;
}

// out[0..limbsForWords(n)) := the words p[0..n) as radix-2^28 limbs.
inline void unpackWords(Limb* out, const Word* p, std::size_t n) {
    const std::size_t limbs = limbsForWords(n);
    for (std::size_t i = 0, bit = 0; i < limbs; ++i, bit += 28) {
        const std::size_t w = bit / 64;
        const unsigned off = unsigned(bit % 64);
        Word v = p[w] >> off;
        if (off > 36 && w + 1 < n) v |= p[w + 1] << (64 - off);
        out[i] = Limb(v) & BinaryRadix::mask;
    }
}

// out[0..an+bn) := a[0..an) * b[0..bn); out overlaps neither.  Either may be
// empty (zero).  A short operand takes rows of word products; longer ones the
// radix-2^28 products (transform included), through repacking, which is linear.
inline void multiplyWords(Word* out, const Word* a, std::size_t an, const Word* b, std::size_t bn) {
    if (an < bn) std::swap(a, b), std::swap(an, bn);
    if (bn == 0) {
        std::fill(out, out + an, 0);
        return;
    }
    if (bn <= kWordProductRowsMax) {
        std::fill(out, out + an, 0);
        for (std::size_t j = 0; j < bn; ++j) out[an + j] = addMulWord(out + j, a, an, b[j]);
        return;
    }
    const std::size_t al = limbsForWords(an), bl = limbsForWords(bn);
    std::vector<Limb> la(al), lb(bl), lp(al + bl);
    unpackWords(la.data(), a, an), unpackWords(lb.data(), b, bn);
    arith::multiplyFast<BinaryRadix>(lp.data(), la.data(), al, lb.data(), bl);
    Words packed(wordsForLimbs(al + bl));
    packWords(packed.data(), lp.data(), al + bl);
    std::copy(packed.begin(), packed.begin() + (an + bn), out);
}

// a * b, trimmed.
inline Words productOf(const Words& a, const Words& b) {
    if (a.empty() || b.empty()) return {};
    Words p(a.size() + b.size());
    multiplyWords(p.data(), a.data(), a.size(), b.data(), b.size());
    p.resize(trimmedWords(p.data(), p.size()));
    return p;
}

// q := a div b, r := a mod b for trimmed a[0..an) >= b[0..bn) > 0, through
// the radix-2^28 division.  q and r are resized to their trimmed lengths.
inline void divideWords(Words& q, Words& r, const Word* a, std::size_t an, const Word* b, std::size_t bn) {
    std::vector<Limb> la(limbsForWords(an)), lb(limbsForWords(bn));
    unpackWords(la.data(), a, an), unpackWords(lb.data(), b, bn);
    const std::size_t al = arith::trimmedLength(la.data(), la.size()), bl = arith::trimmedLength(lb.data(), lb.size());
    std::vector<Limb> lq(al - bl + 1), lr(bl);
    if (bl == 1)
        lr[0] = arith::divideByLimb<BinaryRadix>(lq.data(), la.data(), al, lb[0]);
    else
        arith::divide<BinaryRadix>(lq.data(), lr.data(), la.data(), al, lb.data(), bl);
    const auto pack = [](Words& out, const std::vector<Limb>& limbs) {
        out.assign(wordsForLimbs(limbs.size()), 0);
        packWords(out.data(), limbs.data(), limbs.size());
        out.resize(trimmedWords(out.data(), out.size()));
    };
    pack(q, lq), pack(r, lr);
}

// ---- in and out of the integer types ----

// The magnitude p[0..n) of radix R as words, trimmed.  Decimal limbs go
// through the sub-quadratic conversion to radix 2^28 first.
template <class R>
Words wordsOfMagnitude(const Limb* p, std::size_t n) {
    Words out;
    if constexpr (R::isBinary) {
        out.resize(wordsForLimbs(n));
        packWords(out.data(), p, n);
    } else {
        const std::vector<Limb> binary = convertLimbs<DecimalRadix, BinaryRadix>(p, n);
        out.resize(wordsForLimbs(binary.size()));
        packWords(out.data(), binary.data(), binary.size());
    }
    out.resize(trimmedWords(out.data(), out.size()));
    return out;
}

// x := p[0..n) times radix^offset, positive (zero when n is 0).
template <class R>
void setFromWords(SignedNumber<R>& x, const Word* p, std::size_t n, std::size_t offset) {
    n = trimmedWords(p, n);
    std::vector<Limb> limbs(limbsForWords(n));
    unpackWords(limbs.data(), p, n);
    if constexpr (!R::isBinary) limbs = convertLimbs<BinaryRadix, DecimalRadix>(limbs.data(), limbs.size());
    const std::size_t ln = arith::trimmedLength(limbs.data(), limbs.size());
    NumberRecord out;
    if (ln == 0 || !arith::prepareResult(out, offset + ln)) {
        x.setZero();
        return;
    }
    std::fill(out.digits, out.digits + offset, 0);
    std::copy(limbs.data(), limbs.data() + ln, out.digits + offset);
    arith::installResult(x.rec(), std::move(out), offset + ln);
    x.sign = 1;
    x.normalizeSign();
}

}  // namespace tw::numtheory
