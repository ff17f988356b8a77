#include "arith/convert/chunk_powers.h"

#include <algorithm>
#include <bit>

#include "arith/kernels/reciprocal.h"
#include "frame/error_state.h"

namespace tw::convert {

template <class R>
ChunkPowers<R>::ChunkPowers(std::uint64_t chunk, std::size_t leaf, bool separateTwos)
    : chunk_(chunk), leaf_(leaf), separateTwos_(separateTwos) {
    if (R::isBinary && separateTwos) twoExponent_ = unsigned(std::countr_zero(chunk));
    // odd^leaf by left-to-right binary powering.
    const std::uint64_t odd = chunk >> twoExponent_;
    Limbs first{1};
    for (int bit = std::bit_width(leaf) - 1; bit >= 0; --bit) {
        first = productOf<R>(first, first);
        if ((leaf >> bit) & 1) mulAddWord<R>(first, odd, 0);
    }
    odd_.push_back(std::move(first));
}

template <class R>
unsigned ChunkPowers<R>::levelFor(std::size_t count, std::size_t leaf) {
    unsigned i = 0;
    while ((leaf << (i + 1)) < count) ++i;
    return i;
}

template <class R>
const Limbs& ChunkPowers<R>::odd(unsigned i) {
    while (odd_.size() <= i) {
        Limbs next = productOf<R>(odd_.back(), odd_.back());
        if (terminateRequested()) next.clear();
        odd_.push_back(std::move(next));
    }
    return odd_[i];
}

template <class R>
void ChunkPowers<R>::divide(unsigned i, Limb* q, Limb* r, const Limb* a, std::size_t an,
                            arith::LimbScratch& scratch) {
    const Limbs& d = odd(i);
    const std::size_t dn = d.size();
    std::size_t low = 0;
    while (d[low] == 0) ++low;
    const std::size_t m = dn - low;          // the divisor above its zero limbs
    const std::size_t n = an - dn + 1;       // quotient limbs at most
    if (m < 2 || n < 2) {                    // no reciprocal needed
        arith::divideMagnitude<R>(scratch, q, r, a, an, d.data(), dn, nullptr, 0, arith::ProductRule::Fastest);
        return;
    }
    if (reciprocals_.size() <= i) reciprocals_.resize(i + 1);
    Reciprocal& rec = reciprocals_[i];
    if (rec.precision < n) {
        const std::size_t p = 2 * n >= m ? std::max(n, arith::blockPrecision(m)) : n;
        rec.v.assign(arith::reciprocalLimbs(p), 0);
        rec.precision = 0;
        rec.kept.clear();
        arith::reciprocal<R>(scratch, rec.v.data(), d.data() + low, m, p, arith::ProductRule::Fastest);
        if (terminateRequested()) return;
        rec.precision = p;
    }
    arith::divideMagnitude<R>(scratch, q, r, a, an, d.data(), dn, rec.v.data(), rec.precision,
                              arith::ProductRule::Fastest, dn <= kKeptTransformsMaxLimbs ? &rec.kept : nullptr);
}

template <class R>
std::size_t ChunkPowers<R>::limbsHeld() const {
    std::size_t sum = 0;
    for (const Limbs& p : odd_) sum += p.size();
    for (const Reciprocal& rec : reciprocals_) sum += rec.v.size() + rec.kept.words();
    return sum;
}

template <class R>
bool ChunkPowers<R>::whole() const {
    // A reciprocal cut short keeps precision 0 and is built again when asked for.
    return std::none_of(odd_.begin(), odd_.end(), [](const Limbs& p) { return p.empty(); });
}

template class ChunkPowers<DecimalRadix>;
template class ChunkPowers<BinaryRadix>;

}  // namespace tw::convert
