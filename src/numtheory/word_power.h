// Modular powers of binary numbers for odd moduli on machine words: the
// modulus and the base are regrouped from 28-bit limbs into the words of a
// ring (64-bit words, or 52-bit lanes for the multiply-add kernel), the base
// enters the Montgomery form x R mod m by one product with R^2 mod m, the
// power runs on the ring, and the result leaves by one product with 1.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "arith/numbers/signed_div.h"
#include "frame/signed_number.h"
#include "numtheory/gcd.h"
#include "numtheory/montgomery_ifma.h"
#include "numtheory/montgomery_words.h"
#include "numtheory/ring_power.h"
#include "numtheory/word_regroup.h"

namespace tw::numtheory {

// x := 2x mod m for x < 2m, both n digits of `bits` bits (at most 64).
template <class Word>
void doubleModulo(Word* x, const Word* m, std::size_t n, unsigned bits) {
    const u128 base = u128(1) << bits;
    const auto subtractIfAbove = [&](Word carry) {
        std::size_t i = n;
        while (carry == 0 && i-- > 0 && x[i] == m[i]) {
        }
        if (carry == 0 && i != std::size_t(-1) && x[i] < m[i]) return;
        Word borrow = 0;  // cancels the carry when that is set
        for (std::size_t j = 0; j < n; ++j) {
            const u128 d = u128(x[j]) + base - m[j] - borrow;
            x[j] = Word(d & (base - 1));
            borrow = d < base;
        }
    };
    subtractIfAbove(0);
    Word carry = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const u128 v = (u128(x[i]) << 1) | carry;
        x[i] = Word(v & (base - 1));
        carry = Word(v >> bits);
    }
    subtractIfAbove(carry);
}

// out := R^2 mod m (below 2m), the ring's form of R = 2^E, E = bits n: R mod
// m by doubling 2^(|m| - 1), the ring's form of 1, then left to right over
// the bits of E a square for each and a doubling for each one; m has n
// digits of `bits` bits.
template <class Ring, class Word>
void ringFormOfRadix(Ring& ring, Word* out, const Word* m, std::size_t n, unsigned bits) {
    std::size_t top = n - 1;
    while (m[top] == 0) --top;
    const std::size_t mBits = bits * top + std::size_t(std::bit_width(m[top]));
    std::fill(out, out + ring.size(), Word(0));
    out[(mBits - 1) / bits] = Word(1) << ((mBits - 1) % bits);
    const std::size_t e = bits * n;
    for (std::size_t k = mBits - 1; k <= e; ++k) doubleModulo(out, m, n, bits);  // the form of 2
    for (unsigned k = unsigned(std::bit_width(e)) - 1; k-- > 0;) {
        ring.sqr(out, out);
        if ((e >> k) & 1) doubleModulo(out, m, n, bits);
    }
}

// The residues modulo an odd m in Montgomery form on n 64-bit words,
// R = 2^(64 n).
class WordMontgomeryRing {
public:
    using Word = std::uint64_t;
    static constexpr unsigned kWordBits = 64;

    WordMontgomeryRing(const Limb* m, std::size_t limbs)
        : n_((limbs * BinaryRadix::bitsPerLimb + 63) / 64), m_(n_), q_(n_) {
        regroupWords(m_.data(), n_, 64, m, limbs, BinaryRadix::bitsPerLimb);
        while (m_[n_ - 1] == 0) --n_;  // the words the modulus needs
        minv_ = negativeInverseMod64(m_[0]);
        r2_.resize(n_);
        ringFormOfRadix(*this, r2_.data(), m_.data(), n_, 64);
    }
    std::size_t size() const { return n_; }
    void mul(Word* out, const Word* a, const Word* b) {
        if (a == b) montgomerySqrWords(out, a, m_.data(), n_, minv_, q_.data());
        else montgomeryMulWords(out, a, b, m_.data(), n_, minv_, q_.data());
    }
    void sqr(Word* out, const Word* a) { montgomerySqrWords(out, a, m_.data(), n_, minv_, q_.data()); }
    // out := x R mod m for x < R.
    void enter(Word* out, const Word* x) { mul(out, x, r2_.data()); }
    // out := x / R mod m, fully reduced.
    void leave(Word* out, const Word* x) {
        std::vector<Word> one(n_, 0);
        one[0] = 1;
        montgomeryMulWords(out, x, one.data(), m_.data(), n_, minv_, q_.data());
    }

private:
    std::size_t n_;
    std::vector<Word> m_, q_, r2_;
    Word minv_ = 0;
};

// The residues modulo an odd m in almost-Montgomery form on 52-bit lanes
// (montgomery_ifma.h): n limbs with 4m < R = 2^(52 n), elements below 2m,
// padded to whole vectors.
class IfmaMontgomeryRing {
public:
    using Word = std::uint64_t;
    static constexpr unsigned kWordBits = 52;

    // Whether the kernel takes an odd modulus of `bits` bits.
    static bool takes(std::size_t bits) { return limbsFor(bits) <= kIfmaMaxLimbs; }

    IfmaMontgomeryRing(const Limb* m, std::size_t limbs) {
        std::size_t bits = BinaryRadix::bitsPerLimb * (limbs - 1) + bitLength32(m[limbs - 1]);
        n_ = limbsFor(bits);
        lanes_ = ifmaLanes(n_);
        std::vector<Word> plain(lanes_, 0);
        regroupWords(plain.data(), n_, 52, m, limbs, BinaryRadix::bitsPerLimb);
        storage_.assign(ifmaModulusTableWords(n_) + 8, 0);
        const std::uintptr_t at = reinterpret_cast<std::uintptr_t>(storage_.data());
        m_ = storage_.data() + ((64 - at % 64) % 64) / sizeof(Word);  // 64-byte aligned
        prepareIfmaModulus(m_, plain.data(), n_);
        k0_ = negativeInverseMod64(m_[0]) & ((std::uint64_t(1) << 52) - 1);
        r2_.resize(lanes_);
        ringFormOfRadix(*this, r2_.data(), m_, n_, 52);
    }
    IfmaMontgomeryRing(const IfmaMontgomeryRing&) = delete;
    IfmaMontgomeryRing& operator=(const IfmaMontgomeryRing&) = delete;
    std::size_t size() const { return lanes_; }
    void mul(Word* out, const Word* a, const Word* b) { montgomeryMulIfma(out, a, b, m_, n_, k0_); }
    void sqr(Word* out, const Word* a) { montgomeryMulIfma(out, a, a, m_, n_, k0_); }
    // out := x R mod m, below 2m, for x < 2m.
    void enter(Word* out, const Word* x) { mul(out, x, r2_.data()); }
    // out := x / R mod m, fully reduced: below m + 1, so m at most once too many.
    void leave(Word* out, const Word* x) {
        std::vector<Word> one(lanes_, 0);
        one[0] = 1;
        montgomeryMulIfma(out, x, one.data(), m_, n_, k0_);
        std::size_t i = n_;
        while (i-- > 0 && out[i] == m_[i]) {
        }
        if (i != std::size_t(-1) && out[i] < m_[i]) return;
        std::uint64_t borrow = 0;
        for (std::size_t j = 0; j < n_; ++j) {
            const std::uint64_t d = out[j] - m_[j] - borrow;
            borrow = d >> 63;
            out[j] = d & ((std::uint64_t(1) << 52) - 1);
        }
    }

private:
    // Limbs of 52 bits with room for 4m.
    static std::size_t limbsFor(std::size_t bits) { return (bits + 2 + 51) / 52; }
    std::size_t n_, lanes_;
    std::vector<Word> storage_, r2_;
    Word* m_;  // the modulus's table in storage_, whose first lanes are m
    Word k0_ = 0;
};

// res := |base|^e mod m for an odd binary m > 1 and non-zero e (28-bit
// chunks) on the words of Ring.  A base of no more bits than m enters as it
// is (below 2m), a longer one after a division.  False, res untouched, when
// the terminate flag stopped it.
template <class Ring>
bool powModOddOnWords(BinaryNumber& res, const NumberRecord& base, const std::vector<std::uint32_t>& e,
                      const NumberRecord& m) {
    using Word = typename Ring::Word;
    const std::size_t limbs = m.topIndex + 1;
    Ring ring(m.digits, limbs);
    const std::size_t n = ring.size();
    std::vector<Word> b(n), acc(n);
    const auto bitLength = [](const NumberRecord& x) { return BinaryRadix::bitsPerLimb * x.topIndex + bitLength32(x.digits[x.topIndex]); };
    if (bitLength(base) <= bitLength(m)) {
        regroupWords(b.data(), n, Ring::kWordBits, base.digits, base.topIndex + 1, BinaryRadix::bitsPerLimb);
    } else {
        BinaryNumber x, mod;
        x.rec() = base, x.sign = 1, x.normalizeSign();
        mod.rec() = m, mod.sign = 1;
        arith::remainder(x, x, mod);
        regroupWords(b.data(), n, Ring::kWordBits, x.limbs(), x.rec().topIndex + 1, BinaryRadix::bitsPerLimb);
    }
    ring.enter(b.data(), b.data());
    if (!ringPower(ring, acc.data(), b.data(), e)) return false;
    ring.leave(b.data(), acc.data());
    std::vector<Limb> out(limbs);
    regroupWords(out.data(), limbs, BinaryRadix::bitsPerLimb, b.data(), n, Ring::kWordBits);
    setMagnitudeFromLimbs(res, out.data(), limbs, 0);
    return true;
}

}  // namespace tw::numtheory
