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
#include <vector>

#include "arith/kernels/divide_newton.h"
#include "arith/kernels/mul_scratch.h"
#include "arith/convert/limb_spans.h"
#include "arith/tuning.h"

namespace tw::convert {

template <class R>
class ChunkPowers {
public:
    // separateTwos: keep the power of two of a binary chunk apart (products);
    // divisions take the whole power, which keeps dividend and divisor balanced.
    ChunkPowers(std::uint64_t chunk, std::size_t leaf, bool separateTwos);

    std::size_t leaf() const { return leaf_; }
    std::uint64_t chunk() const { return chunk_; }
    bool separateTwos() const { return separateTwos_; }
    // The smallest i with leaf * 2^(i+1) >= count, for count > leaf: the level
    // at which a run of `count` chunks splits into leaf * 2^i low chunks and the rest.
    static unsigned levelFor(std::size_t count, std::size_t leaf);

    // odd_i, trimmed.  Empty when the terminate flag cut the squaring short.
    const Limbs& odd(unsigned i);
    std::uint64_t shift(unsigned i) const { return twoExponent_ * (std::uint64_t(leaf_) << i); }
    // q[0..an-dn+1) := a div odd_i, r[0..dn) := a mod odd_i (dn = odd(i).size(),
    // an >= dn, outputs overlap nothing) through a reciprocal of the power kept
    // for every division of the level.  The reciprocal is built for the
    // quotient at hand: the power's full length for the balanced divisions of
    // the tree, shorter for a short quotient (a longer one asked for later
    // replaces it; a shorter one is served by truncation).  Temporaries are
    // frames of `scratch`, the reciprocal's included (it is kept, they are not).
    void divide(unsigned i, Limb* q, Limb* r, const Limb* a, std::size_t an, arith::LimbScratch& scratch);

    // Limbs held by the powers and the reciprocals.
    std::size_t limbsHeld() const;
    // False when the terminate flag left a power or a reciprocal unfinished.
    bool whole() const;

private:
    std::uint64_t chunk_;
    std::size_t leaf_;
    bool separateTwos_;
    unsigned twoExponent_ = 0;
    std::vector<Limbs> odd_;
    struct Reciprocal {
        Limbs v;                    // of odd_i above its zero bottom limbs
        std::size_t precision = 0;  // 0: none yet
        arith::KeptTransforms kept; // of odd_i and of v, made as the divisions ask
    };
    std::vector<Reciprocal> reciprocals_;
};

}  // namespace tw::convert
