#include "radix/chunk_powers.h"

#include <bit>

#include "frame/error_state.h"

namespace tw::radix {

template <class R>
ChunkPowers<R>::ChunkPowers(std::uint64_t chunk, std::size_t leaf, bool separateTwos) : leaf_(leaf) {
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
const arith::DivisorReciprocal<R>& ChunkPowers<R>::divisor(unsigned i) {
    if (divisors_.size() <= i) divisors_.resize(i + 1);
    if (!divisors_[i]) {
        const Limbs& d = odd(i);
        // An empty power (terminate flag) stands in as 1: the results are
        // discarded anyway.
        static const Limb one = 1;
        divisors_[i] = std::make_unique<arith::DivisorReciprocal<R>>(d.empty() ? &one : d.data(),
                                                                     d.empty() ? 1 : d.size());
    }
    return *divisors_[i];
}

template class ChunkPowers<DecimalRadix>;
template class ChunkPowers<BinaryRadix>;

}  // namespace tw::radix
