// Residues modulo an odd n on the 52-bit lanes of the AVX-512 multiply-add
// (montgomery_ifma.h), with the same operations as residue_words.h so that
// the probable-prime tests run on either.  Elements are almost reduced, below
// 2n as the lane products leave them; additions, subtractions and halvings
// keep them there, and comparisons reduce first.  The caller checks
// processorRuns(KernelPath::Ifma) and takes(bits).
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "frame/radix.h"
#include "numtheory/montgomery_ifma.h"
#include "numtheory/montgomery_words.h"
#include "numtheory/word_regroup.h"

namespace tw::numtheory {

class LaneResidues {
public:
    using Word = std::uint64_t;
    using Element = std::vector<Word>;
    static constexpr Word kMask = (Word(1) << 52) - 1;

    // Limbs of 52 bits with room for 4n, as the lane products need.
    static std::size_t limbsFor(std::size_t bits) { return (bits + 2 + 51) / 52; }
    static bool takes(std::size_t bits) { return limbsFor(bits) <= kIfmaMaxLimbs; }

    // n[0..size) odd 64-bit words with a non-zero top word, of `bits` bits.
    LaneResidues(const std::uint64_t* n, std::size_t size, std::size_t bits)
        : limbs_(limbsFor(bits)), lanes_(ifmaLanes(limbs_)), m_(lanes_, 0), twoM_(lanes_, 0) {
        regroupWords(m_.data(), limbs_, 52, n, size, 64);
        Word carry = 0;
        for (std::size_t i = 0; i < limbs_; ++i) {
            const Word t = (m_[i] << 1) + carry;
            twoM_[i] = t & kMask;
            carry = t >> 52;
        }
        storage_.assign(ifmaModulusTableWords(limbs_) + 8, 0);
        const std::uintptr_t at = reinterpret_cast<std::uintptr_t>(storage_.data());
        table_ = storage_.data() + ((64 - at % 64) % 64) / sizeof(Word);  // 64-byte aligned
        prepareIfmaModulus(table_, m_.data(), limbs_);
        k0_ = negativeInverseMod64(m_[0]) & kMask;
        one_.assign(lanes_, 0);
        one_[0] = 1;
        for (std::size_t i = 0; i < 52 * limbs_; ++i) add(one_.data(), one_.data(), one_.data());  // R mod n
    }
    LaneResidues(const LaneResidues&) = delete;
    LaneResidues& operator=(const LaneResidues&) = delete;

    std::size_t size() const { return lanes_; }
    const Element& one() const { return one_; }

    void mul(Word* out, const Word* a, const Word* b) { montgomeryMulIfma(out, a, b, table_, limbs_, k0_); }
    void sqr(Word* out, const Word* a) { montgomeryMulIfma(out, a, a, table_, limbs_, k0_); }

    // out := a + b, below 2n again.
    void add(Word* out, const Word* a, const Word* b) const {
        Word carry = 0;
        for (std::size_t i = 0; i < limbs_; ++i) {
            const Word t = a[i] + b[i] + carry;
            out[i] = t & kMask;
            carry = t >> 52;
        }
        if (!below(out, twoM_.data())) subtract(out, twoM_.data());
    }
    // out := a - b + 2n, below 2n again.
    void sub(Word* out, const Word* a, const Word* b) const {
        std::int64_t carry = 0;
        for (std::size_t i = 0; i < limbs_; ++i) {
            const std::int64_t t = std::int64_t(a[i]) - std::int64_t(b[i]) + std::int64_t(twoM_[i]) + carry;
            out[i] = Word(t) & kMask;
            carry = t >> 52;  // arithmetic: -1, 0 or 1
        }
        if (!below(out, twoM_.data())) subtract(out, twoM_.data());
    }
    // out := a / 2 mod n: a, or a + n when a is odd (below 3n), halved.
    void half(Word* out, const Word* a) const {
        Word carry = 0;
        const bool odd = a[0] & 1;
        for (std::size_t i = 0; i < limbs_; ++i) {
            const Word t = a[i] + (odd ? m_[i] : 0) + carry;
            out[i] = t & kMask;
            carry = t >> 52;
        }
        for (std::size_t i = 0; i + 1 < limbs_; ++i) out[i] = (out[i] >> 1) | ((out[i + 1] & 1) << 51);
        out[limbs_ - 1] = (out[limbs_ - 1] >> 1) | (carry << 51);
    }

    Element small(std::int64_t v) const {
        Element x(lanes_, 0), zero(lanes_, 0);
        const std::uint64_t magnitude = v < 0 ? 0 - std::uint64_t(v) : std::uint64_t(v);
        for (int bit = 63; bit >= 0; --bit) {
            add(x.data(), x.data(), x.data());
            if ((magnitude >> bit) & 1) add(x.data(), x.data(), one_.data());
        }
        if (v < 0) sub(x.data(), zero.data(), x.data());
        return x;
    }
    // x R mod n for x below n given as 64-bit words.
    Element enter(const std::vector<std::uint64_t>& x) {
        Element plain(lanes_, 0), r2 = one_, out(lanes_, 0);
        regroupWords(plain.data(), limbs_, 52, x.data(), x.size(), 64);
        for (std::size_t i = 0; i < 52 * limbs_; ++i) add(r2.data(), r2.data(), r2.data());  // R^2 mod n
        mul(out.data(), plain.data(), r2.data());
        return out;
    }

    bool equal(const Word* a, const Word* b) const {
        const Element x = reduced(a), y = reduced(b);
        return x == y;
    }
    bool isZero(const Word* a) const {
        const Element x = reduced(a);
        for (std::size_t i = 0; i < limbs_; ++i)
            if (x[i] != 0) return false;
        return true;
    }

private:
    bool below(const Word* a, const Word* b) const {
        for (std::size_t i = limbs_; i-- > 0;)
            if (a[i] != b[i]) return a[i] < b[i];
        return false;
    }
    void subtract(Word* a, const Word* b) const {
        std::int64_t carry = 0;
        for (std::size_t i = 0; i < limbs_; ++i) {
            const std::int64_t t = std::int64_t(a[i]) - std::int64_t(b[i]) + carry;
            a[i] = Word(t) & kMask;
            carry = t >> 52;
        }
    }
    Element reduced(const Word* a) const {
        Element x(a, a + lanes_);
        if (!below(x.data(), m_.data())) subtract(x.data(), m_.data());
        return x;
    }

    std::size_t limbs_, lanes_;
    Element m_, twoM_, one_, storage_;
    Word* table_;
    Word k0_;
};

}  // namespace tw::numtheory
