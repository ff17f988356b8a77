// Products modulo radix^N - 1 by the three-prime transform, for callers that
// know their result up to a multiple of that modulus.
//
// A transform of length N convolves cyclically: coefficient k collects the
// products a_i b_j with i + j = k (mod N).  Since radix^N = 1 modulo
// radix^N - 1, that is exactly the product modulo radix^N - 1, so operands of
// up to N limbs each need a transform of length N instead of one of length
// an + bn - 1 for the full product.  The sums are reconstructed by the Chinese
// remainder step as in transform_multiply.h, and the two limbs that carry out
// of the top wrap round to the bottom (end-around carry).
//
// Residues are reduced: a result equal to radix^N - 1 is written as zero, so
// every result lies in [0, radix^N - 1) and two results are equal exactly when
// the residues are.
#pragma once

#include <cstddef>

#include "arith/kernels/mul_scratch.h"
#include "arith/kernels/ntt/aligned_words.h"
#include "frame/radix.h"

namespace tw::arith::ntt {
struct TransformKernels;
}

namespace tw::arith {

// True when a modulus of at least `minimum` limbs is within reach of the
// transform (its length cannot exceed kTransformMaxLength).
bool cyclicFits(std::size_t minimum);

// The modulus length N a cyclic product uses for at least `minimum` limbs: the
// fastest transform length (2^k or 3 * 2^k) not below max(minimum, 4), which
// is the first one from 768 on and the first power of two below.  Requires
// cyclicFits(minimum).
std::size_t cyclicLength(std::size_t minimum);

// out[0..N) := a[0..an) mod (radix^N - 1), reduced (below radix^N - 1).
// N >= 2; an may be anything, 0 included; out does not overlap a.  O(an + N).
template <class R>
void reduceCyclic(Limb* out, std::size_t length, const Limb* a, std::size_t an);

// The scratch a cyclic product of modulus length N takes, by either operand
// or a CyclicFactor (a size for the first block of its LimbScratch).
std::size_t cyclicScratchLimbs(std::size_t length);

// out[0..N) := a[0..an) * b[0..bn) mod (radix^N - 1), reduced, for
// N = cyclicLength(...) of some minimum.  Operands of any length: zero limbs
// at the top are dropped and an operand longer than N is reduced first.  out
// overlaps neither operand.  Temporaries are frames of `scratch`; the form
// without it takes an arena of its own.  The cost is that of one transform
// product of length N: three transforms a prime.  When the terminate flag is
// raised it returns early with out unspecified.  May throw std::bad_alloc.
template <class R>
void cyclicMultiply(Limb* out, std::size_t length, const Limb* a, std::size_t an, const Limb* b, std::size_t bn,
                    LimbScratch& scratch);
template <class R>
void cyclicMultiply(Limb* out, std::size_t length, const Limb* a, std::size_t an, const Limb* b, std::size_t bn);

// The forward transforms of one factor for one modulus length, kept for
// repeated cyclic products by that factor: each product then transforms only
// its other operand, a third fewer transforms.  Made for the kernels the
// transform uses at the time (their output order differs), so a factor made
// before a test pins another path is made again.
class CyclicFactor {
public:
    // Transforms b[0..bn) (any length; longer than N it is reduced first) for
    // the modulus length N = `length`, as cyclicMultiply takes it.  Leaves the
    // factor empty when the terminate flag is raised.  May throw std::bad_alloc.
    template <class R>
    void prepare(std::size_t length, const Limb* b, std::size_t bn);

    // Whether the factor is made for this length and the kernels now in use.
    bool readyFor(std::size_t length) const;
    void clear();
    // Words held.
    std::size_t words() const { return transforms_ ? kPrimes * stride_ : 0; }

private:
    template <class R>
    friend void cyclicMultiplyBy(Limb* out, std::size_t length, const Limb* a, std::size_t an,
                                 const CyclicFactor& b, LimbScratch& scratch);
    static constexpr std::size_t kPrimes = 3;

    std::size_t length_ = 0;
    std::size_t stride_ = 0;       // words from one prime's transform to the next
    std::size_t limbs_ = 0;        // the factor's length after trimming (and reduction)
    const ntt::TransformKernels* kernels_ = nullptr;
    ntt::AlignedWords transforms_;
};

// out[0..N) := a[0..an) * b mod (radix^N - 1), reduced, for the length N b
// was made for (b.readyFor(N)).  Otherwise the contract of cyclicMultiply.
template <class R>
void cyclicMultiplyBy(Limb* out, std::size_t length, const Limb* a, std::size_t an, const CyclicFactor& b,
                      LimbScratch& scratch);
template <class R>
void cyclicMultiplyBy(Limb* out, std::size_t length, const Limb* a, std::size_t an, const CyclicFactor& b);

}  // namespace tw::arith
