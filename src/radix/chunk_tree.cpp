#include "radix/chunk_tree.h"

#include <algorithm>

#include "arith/add_sub.h"
#include "frame/error_state.h"
#include "radix/chunk_powers.h"
#include "radix/chunk_radix.h"
#include "radix/limb_spans.h"

namespace tw::radix {

namespace {

// Chunks a leaf of the tree holds.  Horner's rule and repeated division by
// the chunk cost about leaf^2 / 2 word steps there, and beat the products and
// divisions of the tree up to these lengths.
constexpr std::size_t kJoinLeaf = 32;
constexpr std::size_t kSplitLeaf = 32;

// low + high * 2^shift (binary) or low + high (decimal), trimmed; consumes low.
template <class R>
Limbs addAtShift(Limbs low, const Limbs& high, std::uint64_t shift) {
    const std::size_t offset = std::size_t(shift / BinaryRadix::bitsPerLimb);
    low.resize(std::max(low.size(), high.size() + offset + 1) + 1, 0);
    if constexpr (R::isBinary) {
        addShiftedBits(low, offset, high.data(), high.size(), unsigned(shift % BinaryRadix::bitsPerLimb));
    } else {
        arith::addSpans<R>(low.data(), low.data(), low.size(), high.data(), high.size());
    }
    trimTop(low);
    return low;
}

template <class R>
class Joiner {
public:
    Joiner(const std::uint32_t* chunks, std::uint64_t chunk) : chunks_(chunks), chunk_(chunk), powers_(chunk, kJoinLeaf) {}

    // The value of chunks[begin .. begin + count).
    Limbs join(std::size_t begin, std::size_t count) {
        if (count <= kJoinLeaf) return horner(begin, count);
        if (terminateRequested()) return {};
        const unsigned level = ChunkPowers<R>::levelFor(count, kJoinLeaf);
        const std::size_t half = kJoinLeaf << level;
        const Limbs high = join(begin + half, count - half);
        Limbs low = join(begin, half);
        if (high.empty()) return low;
        return addAtShift<R>(std::move(low), productOf<R>(high, powers_.odd(level)), powers_.shift(level));
    }

private:
    Limbs horner(std::size_t begin, std::size_t count) {
        Limbs x;
        for (std::size_t j = begin + count; j-- > begin;) mulAddWord<R>(x, chunk_, chunks_[j]);
        return x;
    }

    const std::uint32_t* chunks_;
    std::uint64_t chunk_;
    ChunkPowers<R> powers_;
};

template <class R>
class Splitter {
public:
    explicit Splitter(std::uint64_t chunk) : divisor_(chunk), powers_(chunk, kSplitLeaf) {}

    // out[0..count) := the chunks of x < chunk^count.
    void split(std::uint32_t* out, std::size_t count, Limbs x) {
        trimTop(x);
        if (x.empty()) {
            std::fill(out, out + count, 0);
            return;
        }
        if (count <= kSplitLeaf) {
            divideOut(out, count, x);
            return;
        }
        if (terminateRequested()) return;
        const unsigned level = ChunkPowers<R>::levelFor(count, kSplitLeaf);
        const std::size_t half = kSplitLeaf << level;
        Limbs quotient, remainder;
        if constexpr (R::isBinary) {
            // x = (top * 2^s) + bottom; top = q * odd + r'; remainder = r' * 2^s + bottom.
            const std::uint64_t s = powers_.shift(level);
            divide(level, shiftedDown(x.data(), x.size(), s), quotient, remainder);
            remainder = addAtShift<R>(lowBits(x.data(), x.size(), s), remainder, s);
        } else {
            divide(level, std::move(x), quotient, remainder);
        }
        split(out, half, std::move(remainder));
        split(out + half, count - half, std::move(quotient));
    }

private:
    // q, r := a div odd_level, a mod odd_level.
    void divide(unsigned level, Limbs a, Limbs& q, Limbs& r) {
        const Limbs& d = powers_.odd(level);
        if (a.size() < d.size() || d.empty()) {
            q.clear();
            r = std::move(a);
            return;
        }
        q.assign(a.size() - d.size() + 1, 0);
        r.assign(d.size(), 0);
        powers_.divisor(level).divide(q.data(), r.data(), a.data(), a.size());
        trimTop(q);
        trimTop(r);
    }

    // Repeated division of x by the chunk, count times.
    void divideOut(std::uint32_t* out, std::size_t count, Limbs& x) {
        std::size_t n = x.size();
        for (std::size_t j = 0; j < count; ++j) {
            std::uint64_t rem = 0;
            for (std::size_t i = n; i-- > 0;) x[i] = Limb(divisor_.divide(rem * R::base + x[i], rem));
            out[j] = std::uint32_t(rem);
            while (n > 0 && x[n - 1] == 0) --n;
        }
    }

    WordDivisor divisor_;
    ChunkPowers<R> powers_;
};

}  // namespace

template <class R>
std::vector<Limb> joinChunks(const std::uint32_t* chunks, std::size_t count, std::uint64_t chunk) {
    Joiner<R> joiner(chunks, chunk);
    return joiner.join(0, count);
}

template <class R>
void splitIntoChunks(std::uint32_t* out, std::size_t count, const Limb* x, std::size_t n, std::uint64_t chunk) {
    Splitter<R> splitter(chunk);
    splitter.split(out, count, Limbs(x, x + n));
}

template std::vector<Limb> joinChunks<DecimalRadix>(const std::uint32_t*, std::size_t, std::uint64_t);
template std::vector<Limb> joinChunks<BinaryRadix>(const std::uint32_t*, std::size_t, std::uint64_t);
template void splitIntoChunks<DecimalRadix>(std::uint32_t*, std::size_t, const Limb*, std::size_t, std::uint64_t);
template void splitIntoChunks<BinaryRadix>(std::uint32_t*, std::size_t, const Limb*, std::size_t, std::uint64_t);

}  // namespace tw::radix
