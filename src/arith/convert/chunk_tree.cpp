#include "arith/convert/chunk_tree.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "arith/kernels/add_sub.h"
#include "arith/kernels/divide_newton.h"
#include "arith/kernels/reciprocal.h"
#include "arith/tuning.h"
#include "frame/error_state.h"
#include "arith/convert/chunk_power_cache.h"
#include "arith/convert/chunk_powers.h"
#include "arith/convert/chunk_radix.h"
#include "arith/convert/limb_spans.h"
#include "arith/convert/word_leaf.h"

namespace tw::convert {

namespace {

// The leaf for a run of `count` chunks: count / 2^L rounded up, for the
// smallest L that brings it to at most `most`.  Every split of the tree then
// halves a run of leaf * 2^L chunks, so the top power is half the number and
// no power is larger than the products that use it.
std::size_t leafFor(std::size_t count, std::size_t most) {
    unsigned levels = 0;
    while (((count - 1) >> levels) + 1 > most) ++levels;
    return ((count - 1) >> levels) + 1;
}

// Limbs of radix R that a value below chunk^count may need.
template <class R>
std::size_t limbsBound(std::size_t count, double chunkBits) {
    return std::size_t(double(count) * chunkBits / limbBits<R>()) + 2;
}

// p[0..n) := 0 in stripes between tests of the terminate flag: near the top
// of a tree these are millions of fresh limbs, slow to touch first.  False
// when stopped.
bool zeroPolled(Limb* p, std::size_t n) {
    constexpr std::size_t kStripe = std::size_t(1) << 16;
    for (std::size_t i = 0; i < n; i += kStripe) {
        if (terminateRequested()) return false;
        std::fill(p + i, p + std::min(n, i + kStripe), 0);
    }
    return true;
}

// Most levels a tree has: each halves its run of chunks.
constexpr std::size_t kMaxDepth = 64;

// The join writes each value straight into the buffer its parent gives it;
// a node's high half and product are frames of the scratch, taken after the
// low half is joined, so the frames live along one path of the tree at a time.
template <class R>
class Joiner {
public:
    Joiner(const std::uint32_t* chunks, std::size_t count, std::uint64_t chunk, LimbScratch& scratch)
        : chunks_(chunks), chunk_(chunk), chunkBits_(std::log2(double(chunk))),
          powers_(acquireChunkPowers<R>(chunk, joinLeaf(count, chunk), true)), scratch_(scratch) {}
    ~Joiner() { releaseChunkPowers<R>(std::move(powers_)); }
    Joiner(const Joiner&) = delete;
    Joiner& operator=(const Joiner&) = delete;

    std::size_t bound(std::size_t count) const { return limbsBound<R>(count, chunkBits_); }

    // The leaf for a run of count chunks.  In binary limbs the top split goes
    // where the high part is as long as the odd power it is multiplied by
    // (the low part takes log(chunk) / (log(chunk) + log(odd)) of the run):
    // products of equal lengths are the cheapest for their size.
    static std::size_t joinLeaf(std::size_t count, std::uint64_t chunk) {
        if (count <= kJoinLeaf<R>) return std::max<std::size_t>(count, 1);
        if (!R::isBinary) return leafFor(count, kJoinLeaf<R>);
        const double whole = std::log2(double(chunk));
        const double odd = std::log2(double(chunk >> std::countr_zero(chunk)));
        const std::size_t low = std::size_t(std::ceil(double(count) * whole / (whole + odd)));
        return leafFor(std::min(low, count - 1), kJoinLeaf<R>);
    }

    // out[0..bound(count)) := the value of chunks[begin .. begin + count);
    // returns its length without zero limbs at the top.
    std::size_t join(Limb* out, std::size_t begin, std::size_t count) {
        const std::size_t leaf = powers_->leaf();
        if (count <= leaf) return horner(out, chunks_ + begin, count);
        if (terminateRequested()) return 0;
        const unsigned level = ChunkPowers<R>::levelFor(count, leaf);
        const std::size_t half = leaf << level;
        const std::size_t total = bound(count);
        const std::size_t lowLength = join(out, begin, half);
        std::fill(out + lowLength, out + total, 0);
        LimbScratch::Frame frame(scratch_);
        Limb* high = frame.take(bound(count - half));
        const std::size_t highLength = join(high, begin + half, count - half);
        const Limbs& odd = powers_->odd(level);
        if (highLength == 0 || odd.empty()) return lowLength;
        Limb* product = frame.take(highLength + odd.size());
        multiplyFast<R>(product, high, highLength, odd.data(), odd.size());
        std::size_t productLength = highLength + odd.size();
        while (productLength > 0 && product[productLength - 1] == 0) --productLength;
        // out := low + product * 2^shift (binary) or low + product (decimal).
        if constexpr (R::isBinary) {
            const std::uint64_t shift = powers_->shift(level);
            addShiftedBits(out, total, std::size_t(shift / BinaryRadix::bitsPerLimb), product, productLength,
                           unsigned(shift % BinaryRadix::bitsPerLimb));
        } else {
            arith::addSpans<R>(out, out, total, product, productLength);
        }
        std::size_t length = total;
        while (length > 0 && out[length - 1] == 0) --length;
        return length;
    }

private:
    // Horner's rule over chunks[0..count) into out; returns the length.
    std::size_t horner(Limb* out, const std::uint32_t* chunks, std::size_t count) const {
        if constexpr (R::isBinary) {
            return hornerInWords(out, chunks, count);
        } else {
            std::size_t n = 0;
            for (std::size_t j = count; j-- > 0;) {
                std::uint64_t carry = chunks[j];
                for (std::size_t i = 0; i < n; ++i) {
                    const std::uint64_t t = std::uint64_t(out[i]) * chunk_ + carry;
                    out[i] = Limb(t % R::base);
                    carry = t / R::base;
                }
                for (; carry != 0; carry /= R::base) out[n++] = Limb(carry % R::base);
            }
            return n;
        }
    }

    // Horner's rule in 64-bit words, two chunks a step (chunk^2 < 2^64: a
    // chunk that is a power of two never reaches the tree), then the bits
    // regrouped into limbs: a quarter of the steps of limb-wise Horner, each
    // on a word that holds more than two limbs.
    std::size_t hornerInWords(Limb* out, const std::uint32_t* chunks, std::size_t count) const {
        std::uint64_t words[kJoinLeaf<R> / 2 + 2];
        std::size_t n = 0;
        auto mulAdd = [&](std::uint64_t m, std::uint64_t add) {
            std::uint64_t carry = add;
            for (std::size_t i = 0; i < n; ++i) {
                const u128 t = u128(words[i]) * m + carry;
                words[i] = std::uint64_t(t);
                carry = std::uint64_t(t >> 64);
            }
            if (carry != 0) words[n++] = carry;
        };
        std::size_t j = count;
        if (j % 2 != 0) mulAdd(chunk_, chunks[--j]);
        const std::uint64_t square = chunk_ * chunk_;
        for (; j >= 2; j -= 2) mulAdd(square, chunks[j - 1] * chunk_ + chunks[j - 2]);
        if (n == 0) return 0;
        // Exactly the limbs the value needs: the top word's zero bits make none.
        const std::size_t bits = 64 * (n - 1) + std::size_t(std::bit_width(words[n - 1]));
        const std::size_t length = (bits + BinaryRadix::bitsPerLimb - 1) / BinaryRadix::bitsPerLimb;
        std::size_t written = 0;
        u128 pending = 0;
        unsigned held = 0;
        for (std::size_t i = 0; i < n; ++i) {
            pending |= u128(words[i]) << held;
            for (held += 64; held >= BinaryRadix::bitsPerLimb && written < length; held -= BinaryRadix::bitsPerLimb) {
                out[written++] = Limb(pending) & BinaryRadix::mask;
                pending >>= BinaryRadix::bitsPerLimb;
            }
        }
        if (written < length) out[written] = Limb(pending);
        return length;
    }

    const std::uint32_t* chunks_;
    std::uint64_t chunk_;
    double chunkBits_;
    std::shared_ptr<ChunkPowers<R>> powers_;
    LimbScratch& scratch_;
};

template <class R>
class Splitter {
public:
    // The leaf is fixed, not fitted to the count, so that conversions of any
    // length share the cached powers; a run a little longer than leaf * 2^i
    // then splits off a short high part, whose division is cheap.
    Splitter(std::uint64_t chunk, LimbScratch& scratch)
        : divisor_(chunk), wordDivider_(chunk), powers_(acquireChunkPowers<R>(chunk, kSplitLeaf, false)),
          scratch_(scratch) {}
    ~Splitter() { releaseChunkPowers<R>(std::move(powers_)); }
    Splitter(const Splitter&) = delete;
    Splitter& operator=(const Splitter&) = delete;

    // out[0..count) := the chunks of x[0..n) < chunk^count; x is overwritten.
    // The quotient and remainder of a node are frames of the scratch that
    // live while its two halves are split.
    void split(std::uint32_t* out, std::size_t count, Limb* x, std::size_t n) {
        while (n > 0 && x[n - 1] == 0) --n;
        if (n == 0) {
            std::fill(out, out + count, 0);
            return;
        }
        const std::size_t leaf = powers_->leaf();
        if (count <= leaf) {
            divideOut(out, count, x, n);
            return;
        }
        if (terminateRequested()) return;
        const unsigned level = ChunkPowers<R>::levelFor(count, leaf);
        const std::size_t half = leaf << level;
        // x div P_level and x mod P_level (the splitter keeps no power of two
        // apart, so odd(level) is the whole power).
        const Limbs& d = powers_->odd(level);
        if (d.empty()) return;  // the power was cut short by the terminate flag
        if (n < d.size()) {
            split(out, half, x, n);
            split(out + half, count - half, nullptr, 0);
            return;
        }
        LimbScratch::Frame frame(scratch_);
        const std::size_t qn = n - d.size() + 1, rn = d.size();
        Limb* q = frame.take(qn);
        Limb* r = frame.take(rn);
        // Zeros stand should the terminate flag cut the division short.
        if (!zeroPolled(q, qn) || !zeroPolled(r, rn)) return;
        powers_->divide(level, q, r, x, n, scratch_);
        if (terminateRequested()) return;  // q and r are unfinished: splitting them is wasted
        split(out, half, r, rn);
        split(out + half, count - half, q, qn);
    }

private:
    // Repeated division of x by the chunk, count times.  Each division runs
    // from the top limb down, so the next one can start on a quotient limb as
    // soon as it is out: kLanes divisions go down together, one limb apart,
    // and their chains of dependent multiplications overlap instead of
    // following one another.
    void divideOut(std::uint32_t* out, std::size_t count, Limb* x, std::size_t n) {
        if constexpr (R::isBinary) {
            // x < chunk^count < 2^(32 count): the words fit a leaf's bound.  A
            // value the terminate flag left unfinished is cut to fit, its
            // chunks being unspecified anyway.
            std::uint64_t words[kLeafWords];
            n = std::min(n, kLeafWords * 64 / BinaryRadix::bitsPerLimb);
            const std::size_t w = binaryLimbsToWords(words, x, n);
            wordDivider_.split(out, count, words, w);
            return;
        }
        std::size_t j = 0;
        for (; j + kLanes <= count && n > 0; j += kLanes) {
            std::uint64_t rem[kLanes] = {};
            for (std::size_t i = n; i-- > 0;) {
                std::uint64_t limb = x[i];
                for (unsigned k = 0; k < kLanes; ++k) limb = divisor_.divide(rem[k] * R::base + limb, rem[k]);
                x[i] = Limb(limb);
            }
            for (unsigned k = 0; k < kLanes; ++k) out[j + k] = std::uint32_t(rem[k]);
            while (n > 0 && x[n - 1] == 0) --n;
        }
        for (; j < count; ++j) {
            std::uint64_t rem = 0;
            for (std::size_t i = n; i-- > 0;) x[i] = Limb(divisor_.divide(rem * R::base + x[i], rem));
            out[j] = std::uint32_t(rem);
            while (n > 0 && x[n - 1] == 0) --n;
        }
    }

    static constexpr unsigned kLanes = 4;
    // 64-bit words of a leaf's value (below 2^(32 kSplitLeaf)), and one for
    // the partial word binaryLimbsToWords may add.
    static constexpr std::size_t kLeafWords = kSplitLeaf / 2 + 1;

    WordDivisor divisor_;
    WordChunkDivider wordDivider_;
    std::shared_ptr<ChunkPowers<R>> powers_;
    LimbScratch& scratch_;
};

}  // namespace

template <class R>
std::size_t joinedLimbsBound(std::size_t count, std::uint64_t chunk) {
    return limbsBound<R>(count, std::log2(double(chunk)));
}

template <class R>
std::size_t joinScratchLimbs(std::size_t count, std::uint64_t chunk) {
    // Live at once: the high halves of the nodes on one path and one node's
    // product.  The high half of a run is at most half of it, so the ancestors'
    // halves sum to less than half a bound when a node below the top is at
    // work, and its own half and product (that half times a power below
    // chunk^half) to less than three quarters; the top node's come to 1.5
    // bounds, the most there is (measured so).  Each level adds the two limbs
    // of its bounds and the sanitizer's guards.
    return 3 * joinedLimbsBound<R>(count, chunk) / 2 + 16 * kMaxDepth;
}

template <class R>
std::size_t joinChunks(Limb* out, const std::uint32_t* chunks, std::size_t count, std::uint64_t chunk,
                       LimbScratch& scratch) {
    Joiner<R> joiner(chunks, count, chunk, scratch);
    return joiner.join(out, 0, count);
}

template <class R>
std::size_t splitScratchLimbs(std::size_t n, std::size_t count, std::uint64_t chunk) {
    if constexpr (!R::isBinary) {
        if (n >= kBinarySplitMinLimbs && n <= kBinarySplitMaxLimbs) {
            const std::size_t binary = joinedLimbsBound<BinaryRadix>(n, DecimalRadix::base);
            return binary + std::max(joinScratchLimbs<BinaryRadix>(n, DecimalRadix::base),
                                     splitScratchLimbs<BinaryRadix>(binary, count, chunk));
        }
    }
    // The copy of x, and the quotients and remainders along one path: each
    // node's one limb more than its dividend, which is x at the top and at
    // most the top's remainder one level down, then shrinks by half a level.
    // With them lives the division of one node (or the reciprocal it builds
    // first), at most that of x by itself: 5 to 7.5 n limbs in all, measured,
    // against 11 n here.
    const std::size_t division = std::max(arith::divideScratchLimbs(n, n),
                                          arith::reciprocalScratchLimbs(arith::blockPrecision(n)));
    return 3 * n + division + 16 * kMaxDepth;
}

template <class R>
void splitIntoChunks(std::uint32_t* out, std::size_t count, const Limb* x, std::size_t n, std::uint64_t chunk,
                     LimbScratch& scratch) {
    LimbScratch::Frame frame(scratch);
    if constexpr (!R::isBinary) {
        if (n >= kBinarySplitMinLimbs && n <= kBinarySplitMaxLimbs) {
            Limb* binary = frame.take(joinedLimbsBound<BinaryRadix>(n, DecimalRadix::base));
            const std::size_t length = joinChunks<BinaryRadix>(binary, x, n, DecimalRadix::base, scratch);
            splitIntoChunks<BinaryRadix>(out, count, binary, length, chunk, scratch);
            return;
        }
    }
    Limb* copy = frame.take(n);
    std::copy(x, x + n, copy);
    Splitter<R> splitter(chunk, scratch);
    splitter.split(out, count, copy, n);
}

template std::size_t joinedLimbsBound<DecimalRadix>(std::size_t, std::uint64_t);
template std::size_t joinedLimbsBound<BinaryRadix>(std::size_t, std::uint64_t);
template std::size_t joinScratchLimbs<DecimalRadix>(std::size_t, std::uint64_t);
template std::size_t joinScratchLimbs<BinaryRadix>(std::size_t, std::uint64_t);
template std::size_t joinChunks<DecimalRadix>(Limb*, const std::uint32_t*, std::size_t, std::uint64_t, LimbScratch&);
template std::size_t joinChunks<BinaryRadix>(Limb*, const std::uint32_t*, std::size_t, std::uint64_t, LimbScratch&);
template std::size_t splitScratchLimbs<DecimalRadix>(std::size_t, std::size_t, std::uint64_t);
template std::size_t splitScratchLimbs<BinaryRadix>(std::size_t, std::size_t, std::uint64_t);
template void splitIntoChunks<DecimalRadix>(std::uint32_t*, std::size_t, const Limb*, std::size_t, std::uint64_t,
                                            LimbScratch&);
template void splitIntoChunks<BinaryRadix>(std::uint32_t*, std::size_t, const Limb*, std::size_t, std::uint64_t,
                                           LimbScratch&);

}  // namespace tw::convert
