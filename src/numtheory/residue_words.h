// Residues modulo an odd n on 64-bit words in Montgomery form (x R mod n,
// R = 2^(64 size)), with the additions, subtractions and halvings that the
// Lucas sequences of the primality test need beside the products of
// montgomery_words.h.  Every element is fully reduced: size() words below n.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "frame/radix.h"
#include "numtheory/montgomery_words.h"

namespace tw::numtheory {

class ResidueWords {
public:
    using Word = std::uint64_t;
    using Element = std::vector<Word>;

    // n[0..size) odd, with a non-zero top word.
    ResidueWords(const Word* n, std::size_t size) : n_(n, n + size), q_(size), one_(size, 0) {
        minv_ = negativeInverseMod64(n_[0]);
        one_[0] = 1;
        for (std::size_t i = 0; i < 64 * size; ++i) add(one_.data(), one_.data(), one_.data());  // 2^(64 size) mod n
    }

    std::size_t size() const { return n_.size(); }
    const Word* modulus() const { return n_.data(); }
    const Element& one() const { return one_; }

    void mul(Word* out, const Word* a, const Word* b) {
        montgomeryMulWords(out, a, b, n_.data(), size(), minv_, q_.data());
    }
    void sqr(Word* out, const Word* a) { montgomerySqrWords(out, a, n_.data(), size(), minv_, q_.data()); }

    // out := a + b mod n; out may be a or b.
    void add(Word* out, const Word* a, const Word* b) const {
        Word carry = 0;
        for (std::size_t i = 0; i < size(); ++i) {
            const u128 s = u128(a[i]) + b[i] + carry;
            out[i] = Word(s);
            carry = Word(s >> 64);
        }
        if (carry != 0 || !below(out)) subtractModulus(out);
    }
    // out := a - b mod n.
    void sub(Word* out, const Word* a, const Word* b) const {
        Word borrow = 0;
        for (std::size_t i = 0; i < size(); ++i) {
            const u128 d = u128(a[i]) - b[i] - borrow;
            out[i] = Word(d);
            borrow = Word(d >> 64) & 1;
        }
        if (borrow != 0) addModulus(out);
    }
    // out := a / 2 mod n: a, or a + n when a is odd, halved.
    void half(Word* out, const Word* a) const {
        Word top = 0;
        if (a[0] & 1) {
            Word carry = 0;
            for (std::size_t i = 0; i < size(); ++i) {
                const u128 s = u128(a[i]) + n_[i] + carry;
                out[i] = Word(s);
                carry = Word(s >> 64);
            }
            top = carry;
        } else if (out != a) {
            for (std::size_t i = 0; i < size(); ++i) out[i] = a[i];
        }
        for (std::size_t i = 0; i + 1 < size(); ++i) out[i] = (out[i] >> 1) | (out[i + 1] << 63);
        out[size() - 1] = (out[size() - 1] >> 1) | (top << 63);
    }

    // x R mod n for x below n given plainly (size() words), by one product
    // with R^2 mod n.
    Element enter(const std::vector<std::uint64_t>& x) {
        if (rSquared_.empty()) {
            rSquared_ = one_;
            for (std::size_t i = 0; i < 64 * size(); ++i) add(rSquared_.data(), rSquared_.data(), rSquared_.data());
        }
        Element out(size());
        mul(out.data(), x.data(), rSquared_.data());
        return out;
    }

    // v R mod n for a small signed v, by doubling and adding R mod n.
    Element small(std::int64_t v) const {
        Element x(size(), 0);
        const std::uint64_t magnitude = v < 0 ? 0 - std::uint64_t(v) : std::uint64_t(v);
        for (int bit = 63; bit >= 0; --bit) {
            add(x.data(), x.data(), x.data());
            if ((magnitude >> bit) & 1) add(x.data(), x.data(), one_.data());
        }
        if (v < 0) {
            Element zero(size(), 0);
            sub(x.data(), zero.data(), x.data());
        }
        return x;
    }

    bool equal(const Word* a, const Word* b) const {
        for (std::size_t i = 0; i < size(); ++i)
            if (a[i] != b[i]) return false;
        return true;
    }
    bool isZero(const Word* a) const {
        for (std::size_t i = 0; i < size(); ++i)
            if (a[i] != 0) return false;
        return true;
    }

private:
    bool below(const Word* a) const {
        for (std::size_t i = size(); i-- > 0;)
            if (a[i] != n_[i]) return a[i] < n_[i];
        return false;
    }
    void subtractModulus(Word* a) const {
        Word borrow = 0;
        for (std::size_t i = 0; i < size(); ++i) {
            const u128 d = u128(a[i]) - n_[i] - borrow;
            a[i] = Word(d);
            borrow = Word(d >> 64) & 1;
        }
    }
    void addModulus(Word* a) const {
        Word carry = 0;
        for (std::size_t i = 0; i < size(); ++i) {
            const u128 s = u128(a[i]) + n_[i] + carry;
            a[i] = Word(s);
            carry = Word(s >> 64);
        }
    }

    Element n_, q_, one_, rSquared_;
    Word minv_;
};

}  // namespace tw::numtheory
