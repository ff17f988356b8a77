// Lehmer's GCD on limb spans in radix R: the cofactor matrix of one round,
// read off the leading parts, its application to the whole numbers as one
// linear combination, and the Euclidean run that alternates rounds with a
// full division whenever the leading parts settle no quotient.  Magnitudes
// only: signs, handles and records belong to gcd.h.
//
// The run follows the Euclidean remainder sequence r0 = a, r1 = b,
// r(i+1) = r(i-1) mod r(i) exactly (every round is a run of its true
// quotients), so it can follow the cofactors s(i) with r(i) = s(i) a + t(i) b
// on the way.  Their signs alternate, s(i) = (-1)^i |s(i)|, and
// |s(i+1)| = |s(i-1)| + q(i) |s(i)|: only magnitudes and the step count are
// kept.
#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

#include "arith/kernels/add_sub.h"
#include "arith/kernels/divide.h"
#include "arith/kernels/divide_by_limb.h"
#include "arith/kernels/mul_span_ops.h"
#include "arith/kernels/multiply.h"
#include "frame/error_state.h"
#include "frame/radix.h"

namespace tw::numtheory {

using arith::trimmedLength;

// The product of `steps` Euclidean steps [0 1; 1 -q]: the pair (a, b) becomes
// (u0 a + u1 b, v0 a + v1 b).  Entries below the radix in magnitude; the
// identity (steps 0) when the leading parts settle no quotient.
struct LehmerMatrix {
    std::int64_t u0 = 1, u1 = 0, v0 = 0, v1 = 1;
    std::uint32_t steps = 0;
};

// The matrix of one round for a[0..an) >= b[0..bn), an >= bn, a's top limb
// non-zero.
//
// The leading parts are x = floor(a / D), y = floor(b / D) for
// D = radix^(an-3) * 2^k, the top three limbs shifted to below 2^62.  The
// loop is Knuth's Algorithm L (TAOCP 4.5.2): with a/D in [x, x+1) and b/D in
// [y, y+1), after some steps with matrix [A B; C D'] the current remainders
// over D lie between x + A and x + B, and between y + C and y + D', so when
// floor((x+A)/(y+C)) = floor((x+B)/(y+D')) that value is the true quotient
// of the whole numbers; otherwise the round ends.
//
// Bounds.  A step is taken only when q < radix and both new entries
// |A - qC|, |B - qD'| are below the radix; entries only grow in magnitude
// along the sequence, so every entry of the returned matrix is below the
// radix (<= 2^30).  q |C| < 2^60 and q |y| <= x + A + q |C| < 2^63, so no
// step overflows 64 bits.
template <class R>
LehmerMatrix lehmerMatrix(const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    u128 x = 0, y = 0;
    for (std::size_t i = an, low = an > 3 ? an - 3 : 0; i-- > low;) {
        x = x * R::base + a[i];
        y = y * R::base + (i < bn ? b[i] : 0);
    }
    const std::uint64_t high = std::uint64_t(x >> 64);
    const unsigned bits = high ? 128 - unsigned(__builtin_clzll(high)) : 64 - unsigned(__builtin_clzll(std::uint64_t(x)));
    if (bits > 62) x >>= bits - 62, y >>= bits - 62;
    std::int64_t xh = std::int64_t(x), yh = std::int64_t(y);
    constexpr std::int64_t limit = R::base;
    LehmerMatrix m;
    std::int64_t A = 1, B = 0, C = 0, D = 1;
    for (;;) {
        if (yh + C <= 0 || yh + D <= 0 || xh + A < 0 || xh + B < 0) break;
        const std::int64_t q = (xh + A) / (yh + C);
        if (q >= limit || q != (xh + B) / (yh + D)) break;
        const std::int64_t c = A - q * C, d = B - q * D;
        if (c >= limit || -c >= limit || d >= limit || -d >= limit) break;
        A = C, C = c, B = D, D = d;
        const std::int64_t r = xh - q * yh;
        xh = yh, yh = r;
        ++m.steps;
    }
    m.u0 = A, m.u1 = B, m.v0 = C, m.v1 = D;
    return m;
}

// The low limb of a signed value and its floor quotient by the radix.
template <class R>
Limb splitSigned(std::int64_t s, std::int64_t& carry) {
    if constexpr (R::isBinary) {
        carry = s >> R::bitsPerLimb;  // arithmetic shift: the floor
        return Limb(s & std::int64_t(R::mask));
    } else {
        // |s| < 2^62: biased by a multiple of the radix, s divides unsigned.
        constexpr std::uint64_t bias = ((std::uint64_t(1) << 62) + R::base - 1) / R::base;
        const std::uint64_t u = std::uint64_t(s) + bias * R::base, q = u / R::base;
        carry = std::int64_t(q) - std::int64_t(bias);
        return Limb(u - q * R::base);
    }
}

// (a, b) := (u0 a + u1 b, v0 a + v1 b) over n limbs in place, in one pass.
// Requires both results in [0, radix^n).  Each limb sums two products below
// 2^60 and a carry below 2^33 in magnitude: no overflow of 64 bits.  a and b
// are distinct spans.
template <class R>
void combineRows(Limb* a, Limb* b, std::size_t n, const LehmerMatrix& m) {
    assert(spansDisjoint(a, n, b, n));
    std::int64_t ca = 0, cb = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const std::int64_t x = a[i], y = b[i];
        a[i] = splitSigned<R>(m.u0 * x + m.u1 * y + ca, ca);
        b[i] = splitSigned<R>(m.v0 * x + m.v1 * y + cb, cb);
    }
    assert(ca == 0 && cb == 0);
}

// The Euclidean run on two non-zero magnitudes.  Work buffers are zero above
// their lengths; storage exhaustion is std::bad_alloc.
template <class R>
class EuclidRun {
public:
    // a[0..an), b[0..bn) trimmed and non-zero; with `track` the cofactor of a
    // is followed.
    EuclidRun(const Limb* a, std::size_t an, const Limb* b, std::size_t bn, bool track)
        : a_(std::max(an, bn) + 1), b_(a_.size()), an_(an), bn_(bn), track_(track) {
        std::copy(a, a + an, a_.begin());
        std::copy(b, b + bn, b_.begin());
        if (track_) s_.assign(2, 0), t_.assign(2, 0), s_[0] = 1, sn_ = 1;
        if (arith::compareSpans(a, an, b, bn) < 0) swapPair();  // the step of quotient 0
    }

    // Runs to the end; false when the terminate flag stopped it.
    bool run() {
        while (bn_ != 0) {
            if (terminateRequested()) return false;
            if (!track_ && an_ <= 2) {
                finishInWords();
                break;
            }
            const LehmerMatrix m = lehmerMatrix<R>(a_.data(), an_, b_.data(), bn_);
            if (m.steps == 0)
                divisionStep();
            else
                applyMatrix(m);
        }
        return true;
    }

    const Limb* gcd() const { return a_.data(); }
    std::size_t gcdLength() const { return an_; }
    // |s| with gcd = s a + t b, and its sign.
    const Limb* cofactor() const { return s_.data(); }
    std::size_t cofactorLength() const { return sn_; }
    bool cofactorNegative() const { return steps_ % 2 == 1; }

private:
    std::vector<Limb> a_, b_, s_, t_, q_, r_, p_;
    std::size_t an_, bn_, sn_ = 0, tn_ = 0;
    bool track_;
    std::uint64_t steps_ = 0;

    void swapPair() {
        std::swap(a_, b_), std::swap(an_, bn_);
        if (track_) std::swap(s_, t_), std::swap(sn_, tn_);
        ++steps_;
    }

    static void reserveLimbs(std::vector<Limb>& v, std::size_t n) {
        if (v.size() < n) v.resize(n, 0);
    }

    // One round: the numbers and the cofactors through the matrix.  The
    // remainders shrink, so n limbs hold them; the cofactors grow by at most
    // two limbs (|u0| s + |u1| t < 2 radix max(s, t)).
    void applyMatrix(const LehmerMatrix& m) {
        combineRows<R>(a_.data(), b_.data(), an_, m);
        bn_ = trimmedLength(b_.data(), an_);
        an_ = trimmedLength(a_.data(), an_);
        if (track_) {
            const std::size_t n = std::max(sn_, tn_) + 2;
            reserveLimbs(s_, n), reserveLimbs(t_, n);
            const LehmerMatrix magnitudes{std::abs(m.u0), std::abs(m.u1), std::abs(m.v0), std::abs(m.v1), m.steps};
            combineRows<R>(s_.data(), t_.data(), n, magnitudes);
            sn_ = trimmedLength(s_.data(), n), tn_ = trimmedLength(t_.data(), n);
        }
        steps_ += m.steps;
    }

    // One step by a full division: (a, b) := (b, a mod b), (s, t) := (t, s + q t).
    void divisionStep() {
        const std::size_t qn = an_ - bn_ + 1;
        q_.resize(qn), r_.resize(bn_);
        if (bn_ == 1)
            r_[0] = arith::divideByLimb<R>(q_.data(), a_.data(), an_, b_[0]);
        else
            arith::divide<R>(q_.data(), r_.data(), a_.data(), an_, b_.data(), bn_);
        std::copy(r_.begin(), r_.begin() + bn_, a_.begin());
        std::fill(a_.begin() + bn_, a_.begin() + an_, 0);
        an_ = trimmedLength(a_.data(), bn_);
        if (track_) {
            const std::size_t ql = trimmedLength(q_.data(), qn);
            if (ql && tn_) {
                const bool qLonger = ql >= tn_;
                p_.resize(ql + tn_);
                arith::multiply<R>(p_.data(), qLonger ? q_.data() : t_.data(), qLonger ? ql : tn_,
                                   qLonger ? t_.data() : q_.data(), qLonger ? tn_ : ql);
                const std::size_t pn = trimmedLength(p_.data(), ql + tn_), n = std::max(sn_, pn);
                reserveLimbs(s_, n + 1);
                s_[n] = arith::addSpans<R>(s_.data(), s_.data(), n, p_.data(), pn);
                sn_ = trimmedLength(s_.data(), n + 1);
            }
        }
        swapPair();
    }

    // Both numbers below 2^60: Euclid on machine words.
    void finishInWords() {
        auto word = [](const std::vector<Limb>& v, std::size_t n) {
            return n == 2 ? std::uint64_t(v[1]) * R::base + v[0] : std::uint64_t(v[0]);
        };
        const std::uint64_t g = std::gcd(word(a_, an_), word(b_, bn_));
        a_[0] = Limb(g % R::base), a_[1] = Limb(g / R::base);
        an_ = trimmedLength(a_.data(), 2);
        bn_ = 0;
    }
};

}  // namespace tw::numtheory
