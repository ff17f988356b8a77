// Span kernels of modular arithmetic, written once over the radix policy:
// Montgomery reduction for moduli prime to the radix (odd for 2^28, prime to
// 10 for 10^9) and reduction by division for the others, behind one ring
// (ModRing), and the residues modulo 2^k in radix 2^28 (LowBitsRing): what
// the exponentiation of modular.h runs on.  Elements are n-limb spans below
// the modulus.  Products go through the multiplication and squaring ladders
// and the division kernel.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "arith/kernels/divide.h"
#include "arith/kernels/divide_by_limb.h"
#include "arith/kernels/multiply.h"
#include "frame/radix.h"

namespace tw::numtheory {

// -1 / v modulo the radix for v prime to it, by Newton's iteration
// x := x (2 - v x), which doubles the number of correct low digits:
// mod 2^28 from 1 correct bit (v odd), mod 10^9 from 1 correct digit
// (the inverse mod 10 among 1, 3, 7, 9).
template <class R>
Limb negativeInverseModRadix(Limb v) {
    const std::uint64_t b = R::base, vv = v % R::base;
    std::uint64_t x = 1;
    if constexpr (!R::isBinary)
        while ((vv * x) % 10 != 1) x += 2;
    for (int i = 0; i < 6; ++i) {
        const std::uint64_t vx = (vv * x) % b;
        x = (x * ((b + 2 - vx) % b)) % b;
    }
    return Limb((b - x) % b);
}

// Whether a modulus whose lowest limb is m0 admits Montgomery reduction.
template <class R>
bool primeToRadix(Limb m0) {
    if constexpr (R::isBinary) return (m0 & 1) != 0;
    else return (m0 & 1) != 0 && m0 % 5 != 0;
}

// -1, 0, +1 as a[0..n) compares with b[0..n).
inline int compareSameLength(const Limb* a, const Limb* b, std::size_t n) {
    for (std::size_t i = n; i-- > 0;)
        if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
    return 0;
}

// a[0..n) -= b[0..n), returns the borrow.  a may be b.
template <class R>
Limb subtractSameLength(Limb* a, const Limb* b, std::size_t n) {
    Limb borrow = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const std::int64_t d = std::int64_t(a[i]) - b[i] - borrow;
        borrow = d < 0;
        a[i] = Limb(d < 0 ? d + std::int64_t(R::base) : d);
    }
    return borrow;
}

// Montgomery reduction (REDC).  out[0..n) := t / B^n mod m, B the radix, for
// t[0..2n) with t < m B^n and minv = -1 / m mod B; q[0..n) is scratch.  out
// overlaps neither t nor q.
//
// Bound: the quotient digits q_i = (limb i of t + q_0..q_(i-1) m) minv mod B
// make limb i zero, so t' = t + Q m with Q = sum q_i B^i < B^n is divisible
// by B^n.  Then t' / B^n < (m B^n + B^n m) / B^n = 2m: the high half is below
// 2m, and one conditional subtraction of m leaves it below m.  Its value is
// t B^-n mod m since Q m = 0 mod m.  It fits n limbs and a top limb of 0 or 1.
//
// The sums run by columns (product scanning): column k gathers every q_j m_(k-j)
// with t_k and the carry into a + c B^2, with c taking whatever lies above B^2
// after each block of kBlock products (m also reversed in mrev, so that the
// sum is a forward dot product) (17 of 10^18 and 254 of 2^56 fit 64 bits
// beside one B^2 and the carry), so no product propagates a carry of its own.
template <class R>
void montgomeryReduce(Limb* out, const Limb* t, Limb* q, const Limb* m, const Limb* mrev, std::size_t n, Limb minv) {
    constexpr std::uint64_t b = R::base, b2 = b * b;
    constexpr std::size_t kBlock = R::isBinary ? 254 : 17;
    std::uint64_t carry = 0;
    const auto column = [&](std::size_t k, std::size_t from, std::size_t to, std::uint64_t& c) {
        std::uint64_t a = carry + t[k];
        c = 0;
        for (std::size_t j0 = from; j0 < to; j0 += kBlock) {
            const std::size_t j1 = std::min(to, j0 + kBlock);
            // mk[i] = m[k - j0 - i]: both run forwards.  Offsets from j0, so that
            // no pointer before mrev is formed in the columns of the high half.
            const Limb* qj = q + j0;
            const Limb* mk = mrev + (j0 + n - 1 - k);
            for (std::size_t i = 0; i < j1 - j0; ++i) a += std::uint64_t(qj[i]) * mk[i];
            c += a / b2;
            a %= b2;
        }
        return a;
    };
    for (std::size_t k = 0; k < n; ++k) {
        std::uint64_t c;
        std::uint64_t a = column(k, 0, k, c);
        q[k] = Limb(((a % b) * minv) % b);
        a += std::uint64_t(q[k]) * m[0];  // limb k becomes zero
        carry = a / b + c * b;
    }
    for (std::size_t k = n; k < 2 * n; ++k) {
        std::uint64_t c;
        const std::uint64_t a = column(k, k - n + 1, n, c);
        out[k - n] = Limb(a % b);
        carry = a / b + c * b;
    }
    if (carry != 0 || compareSameLength(out, m, n) >= 0) subtractSameLength<R>(out, m, n);  // the carry absorbs the borrow
}

// The residues modulo m in the form the reduction wants: Montgomery form
// x B^n mod m when m is prime to the radix, else plain residues reduced by
// division.  mul and sqr may write over their operands.
template <class R>
class ModRing {
public:
    ModRing(const Limb* m, std::size_t n)
        : m_(m, m + n), mrev_(m, m + n), n_(n), montgomery_(primeToRadix<R>(m[0])), t_(2 * n + 1), q_(n + 2) {
        if (montgomery_) minv_ = negativeInverseModRadix<R>(m[0]);
        std::reverse(mrev_.begin(), mrev_.end());
    }
    std::size_t size() const { return n_; }
    bool montgomery() const { return montgomery_; }

    // out := a b in the ring's form.
    void mul(Limb* out, const Limb* a, const Limb* b) {
        const std::size_t an = used(a), bn = used(b);
        std::fill(t_.begin() + (an + bn), t_.end(), 0);
        if (a == b) arith::square<R>(t_.data(), a, an);
        else arith::multiply<R>(t_.data(), a, an, b, bn);
        reduceProduct(out, an + bn);
    }
    void sqr(Limb* out, const Limb* a) { mul(out, a, a); }

    // out := the ring form of x (x[0..xn), any value).
    void enter(Limb* out, const Limb* x, std::size_t xn) {
        std::vector<Limb> shifted(xn + (montgomery_ ? n_ : 0), 0);
        std::copy(x, x + xn, shifted.begin() + (montgomery_ ? n_ : 0));
        reduce(out, shifted.data(), shifted.size());
    }
    // out := the residue in [0, m) of x in the ring's form.
    void leave(Limb* out, const Limb* x) {
        if (!montgomery_) {
            std::copy(x, x + n_, out);
            return;
        }
        std::fill(t_.begin(), t_.end(), 0);
        std::copy(x, x + n_, t_.begin());
        montgomeryReduce<R>(out, t_.data(), q_.data(), m_.data(), mrev_.data(), n_, minv_);
    }

private:
    // Limbs of a[0..n) up to its top non-zero one, at least one.
    std::size_t used(const Limb* a) const {
        std::size_t k = n_;
        while (k > 1 && a[k - 1] == 0) --k;
        return k;
    }
    void reduceProduct(Limb* out, std::size_t len) {
        if (montgomery_) montgomeryReduce<R>(out, t_.data(), q_.data(), m_.data(), mrev_.data(), n_, minv_);
        else reduce(out, t_.data(), len);
    }
    // out[0..n) := x[0..xn) mod m by the division kernel; x is kept.
    void reduce(Limb* out, const Limb* x, std::size_t xn) {
        while (xn > 1 && x[xn - 1] == 0) --xn;
        if (xn < n_ || (xn == n_ && compareSameLength(x, m_.data(), n_) < 0)) {
            std::fill(std::copy(x, x + xn, out), out + n_, 0);
            return;
        }
        if (q_.size() < xn - n_ + 1) q_.resize(xn - n_ + 1);
        if (n_ == 1) {
            out[0] = arith::divideByLimb<R>(q_.data(), x, xn, m_[0]);
            return;
        }
        arith::divide<R>(q_.data(), out, x, xn, m_.data(), n_);
    }

    std::vector<Limb> m_, mrev_;
    std::size_t n_;
    bool montgomery_;
    Limb minv_ = 0;
    std::vector<Limb> t_, q_;
};

// Residues modulo 2^k in radix 2^28 on n = ceil(k / 28) limbs: a product
// keeps its low limbs, the top one cut to the bits of 2^k.
template <class R>
class LowBitsRing {
    static_assert(R::isBinary);

public:
    explicit LowBitsRing(std::uint32_t k)
        : n_((k + R::bitsPerLimb - 1) / R::bitsPerLimb),
          topMask_(k % R::bitsPerLimb ? (Limb(1) << (k % R::bitsPerLimb)) - 1 : R::mask), t_(2 * n_) {}
    std::size_t size() const { return n_; }
    Limb topMask() const { return topMask_; }
    void mul(Limb* out, const Limb* a, const Limb* b) {
        const std::size_t an = used(a), bn = used(b);
        if (a == b) arith::square<R>(t_.data(), a, an);
        else arith::multiply<R>(t_.data(), a, an, b, bn);
        std::fill(t_.begin() + (an + bn), t_.end(), 0);
        std::copy(t_.begin(), t_.begin() + n_, out);
        out[n_ - 1] &= topMask_;
    }
    void sqr(Limb* out, const Limb* a) { mul(out, a, a); }

private:
    std::size_t used(const Limb* a) const {
        std::size_t k = n_;
        while (k > 1 && a[k - 1] == 0) --k;
        return k;
    }
    std::size_t n_;
    Limb topMask_;
    std::vector<Limb> t_;
};

}  // namespace tw::numtheory
