// Products of many factors by balanced product trees: the two halves of a
// list are multiplied recursively and then with each other, so the big
// products meet operands of equal length, where the transform pays best.
// Machine words are first gathered into limbs: a leaf multiplies a running
// product by words packed two or more to a 32-bit word.  The word tree takes
// its buffers from one LimbScratch; an interrupted product is zero.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "arith/kernels/fast_product.h"
#include "arith/kernels/mul_scratch.h"
#include "arith/numbers/magnitude.h"
#include "arith/numbers/power.h"
#include "arith/numbers/signed_add.h"
#include "arith/numbers/signed_mul.h"
#include "arith/tuning.h"
#include "frame/error_state.h"
#include "frame/machine_int.h"
#include "frame/signed_number.h"

namespace tw::numtheory {

// p[0..n) *= m in place for any 32-bit m; returns the new length.  In 64
// bits: a limb below 2^30 times m below 2^32 plus a carry below 2^34 stays
// below 2^63, so no 128-bit division is needed.  p has room for two more limbs.
template <class R>
std::size_t multiplyLimbsByWord(Limb* p, std::size_t n, std::uint32_t m) {
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint64_t t = std::uint64_t(p[i]) * m + carry;
        p[i] = Limb(t % R::base);
        carry = t / R::base;
    }
    for (; carry != 0; carry /= R::base) p[n++] = Limb(carry % R::base);
    return n;
}

// Limbs for the product of words of `bits` bits in all: a value below
// 2^bits has at most bits / 28 + 1 limbs of 2^28 and bits / 29 + 1 of 10^9
// (above 2^29), and the buffer of a product takes its two factors' lengths,
// which may add up to one limb more.
template <class R>
constexpr std::size_t wordProductBound(std::uint64_t bits) {
    return std::size_t(bits / (R::isBinary ? 28 : 29)) + 2;
}

// out[0 .. wordProductBound(bits of the words)) := w[0] * ... * w[n-1]
// for non-zero words, with bitsBefore[i] the bits of the words before w[i];
// returns the product's length (its top limb non-zero).  A raised terminate
// flag stops the work and leaves the limbs unspecified.
template <class R>
std::size_t productOfWordsInto(Limb* out, const std::uint32_t* w, const std::uint64_t* bitsBefore, std::size_t n,
                               arith::LimbScratch& scratch) {
    if (n <= arith::kWordProductLeaf) {
        out[0] = 1;
        std::size_t length = 1;
        std::uint64_t packed = 1;
        for (std::size_t i = 0; i < n; ++i) {
            if (packed * w[i] > UINT32_MAX) {
                length = multiplyLimbsByWord<R>(out, length, std::uint32_t(packed));
                packed = 1;
            }
            packed *= w[i];
        }
        return multiplyLimbsByWord<R>(out, length, std::uint32_t(packed));
    }
    out[0] = 1;
    if (terminateRequested()) return 1;
    const std::size_t half = n / 2;
    arith::LimbScratch::Frame frame(scratch);
    Limb* a = frame.take(wordProductBound<R>(bitsBefore[half] - bitsBefore[0]));
    Limb* b = frame.take(wordProductBound<R>(bitsBefore[n] - bitsBefore[half]));
    const std::size_t an = productOfWordsInto<R>(a, w, bitsBefore, half, scratch);
    const std::size_t bn = productOfWordsInto<R>(b, w + half, bitsBefore + half, n - half, scratch);
    if (terminateRequested()) return 1;
    arith::multiplyFast<R>(out, a, an, b, bn);
    std::size_t length = an + bn;
    while (length > 1 && out[length - 1] == 0) --length;
    return length;
}

// x := the product of the words w[0..n), positive; 1 for an empty list and 0
// when a word is 0 or the terminate flag is raised.
template <class R>
void setProductOfWords(SignedNumber<R>& x, const std::uint32_t* w, std::size_t n) {
    if (terminateRequested() || std::find(w, w + n, 0u) != w + n) {
        x.setZero();
        return;
    }
    std::vector<std::uint64_t> bitsBefore(n + 1, 0);
    for (std::size_t i = 0; i < n; ++i) bitsBefore[i + 1] = bitsBefore[i] + bitLength32(w[i]);
    const std::size_t bound = wordProductBound<R>(bitsBefore[n]);
    NumberRecord out;
    if (!arith::prepareResult(out, bound)) {
        x.setZero();
        return;
    }
    arith::LimbScratch scratch(2 * bound);
    const std::size_t length = productOfWordsInto<R>(out.digits, w, bitsBefore.data(), n, scratch);
    if (terminateRequested()) {
        x.setZero();
        return;
    }
    arith::installResult(x.rec(), std::move(out), length);
    x.sign = 1;
}

// The product of v[0..n) (n >= 1) with its sign, by halves.
template <class R>
SignedNumber<R> productOfNumbers(const SignedNumber<R>* const* v, std::size_t n) {
    if (n == 1 || terminateRequested()) return *v[0];
    SignedNumber<R> left = productOfNumbers<R>(v, n / 2);
    const SignedNumber<R> right = productOfNumbers<R>(v + n / 2, n - n / 2);
    arith::multiplyInto(left, left, right);
    return left;
}

// x := the product of a list of numbers, signs included; 1 for an empty list.
template <class R>
void productOfList(SignedNumber<R>& x, const std::vector<const SignedNumber<R>*>& list) {
    SignedNumber<R> product;
    if (list.empty())
        setU64(product, 1);
    else if (std::none_of(list.begin(), list.end(), [](const SignedNumber<R>* v) { return v->isZero(); }))
        product = productOfNumbers<R>(list.data(), list.size());
    if (terminateRequested()) product.setZero();
    x.swap(product);
}

// x := the sum of values[i]^power over the list, signs included (a negative
// value to an odd power counts negatively).  Power 0 is the list's product,
// as the library has always answered.
template <class R>
void sumOfLikePowers(SignedNumber<R>& x, const std::vector<const SignedNumber<R>*>& list, std::uint32_t power) {
    if (power == 0) {
        productOfList(x, list);
        return;
    }
    SignedNumber<R> sum, term;
    for (const SignedNumber<R>* v : list) {
        if (terminateRequested()) break;
        term = *v;
        arith::powerInPlace(term, power);
        if (term.isZero() && !v->isZero()) {  // a power too large: -3 is recorded
            sum.setZero();
            break;
        }
        arith::addInPlace(sum, term);
    }
    if (terminateRequested()) sum.setZero();
    x.swap(sum);
}

// The same over machine words.
template <class R>
void sumOfLikePowersOfWords(SignedNumber<R>& x, const std::uint32_t* values, std::uint32_t count,
                            std::uint32_t power) {
    if (power == 0) {
        setProductOfWords(x, values, count);
        return;
    }
    std::vector<SignedNumber<R>> numbers(count);
    std::vector<const SignedNumber<R>*> list(count);
    for (std::uint32_t i = 0; i < count; ++i) setU64(numbers[i], values[i]), list[i] = &numbers[i];
    sumOfLikePowers(x, list, power);
}

}  // namespace tw::numtheory
