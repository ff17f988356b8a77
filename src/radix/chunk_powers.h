// The powers of a chunk that the divide-and-conquer conversions split and join
// at: P_i = chunk^(leaf * 2^i), each the square of the one before, computed
// when first asked for and kept for every node of the tree that uses it.
//
// In binary limbs the power of two inside the chunk (chunk = odd * 2^a) is
// kept apart: P_i = odd_i * 2^shift_i with odd_i = odd^(leaf * 2^i) and
// shift_i = a * leaf * 2^i, so that products and divisions see only the odd
// part (for the chunk 10^9 that is 5^9, 30 % shorter than 10^9) and the rest
// is a shift.  Decimal limbs have no such cheap factor, and divisions want the
// whole power (a divisor shortened that way leaves the quotient as long as
// before, so the division runs in two blocks): there odd_i is P_i.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "arith/reciprocal.h"
#include "radix/limb_spans.h"

namespace tw::radix {

template <class R>
class ChunkPowers {
public:
    // separateTwos: keep the power of two of a binary chunk apart (products);
    // divisions take the whole power, which keeps dividend and divisor balanced.
    ChunkPowers(std::uint64_t chunk, std::size_t leaf, bool separateTwos);

    std::size_t leaf() const { return leaf_; }
    // The smallest i with leaf * 2^(i+1) >= count, for count > leaf: the level
    // at which a run of `count` chunks splits into leaf * 2^i low chunks and the rest.
    static unsigned levelFor(std::size_t count, std::size_t leaf);

    // odd_i, trimmed.  Empty when the terminate flag cut the squaring short.
    const Limbs& odd(unsigned i);
    std::uint64_t shift(unsigned i) const { return twoExponent_ * (std::uint64_t(leaf_) << i); }
    // A divisor by odd_i with its reciprocal, for the divisions of level i.
    const arith::DivisorReciprocal<R>& divisor(unsigned i);

private:
    std::size_t leaf_;
    unsigned twoExponent_ = 0;
    std::vector<Limbs> odd_;
    std::vector<std::unique_ptr<arith::DivisorReciprocal<R>>> divisors_;
};

}  // namespace tw::radix
