// The recursion of one transform plan on one code path: blocks above the
// leaf take two levels per pass over memory and recurse depth first into
// their quarters until a block fits kLeafLength (transform_plan.h), where the
// leaves take over while it is in cache.  Cost per transform: (N/2) log2 N
// butterflies, plus for N = 3M one radix-3 layer (transform_radix3.h).
//
// Every block of more than two leaves tests the terminate flag before its
// work and returns at once when it is raised, so a transform of millions of
// words stops within a pass or two over memory; the caller, who tests the
// flag after the transform, discards the residues.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "arith/kernels/ntt/transform_leaves.h"
#include "frame/error_state.h"

namespace tw::arith::ntt {

template <class V>
class TransformPasses : public TransformLeaves<V> {
    using Base = TransformLeaves<V>;
    using Base::firstLevelFrom;
    using Base::forwardLevel;
    using Base::forwardLevelPair;
    using Base::inverseLevel;
    using Base::inverseLevelPair;
    using Base::leafForward;
    using Base::leafInverse;
    using Base::loadBlock;

public:
    explicit TransformPasses(const TransformPlan& plan) : Base(plan) {}

    // x[0..n) := forward transform of src[0..len) padded with zeros (src may be x).
    void forwardFrom(Limb* x, const Limb* src, std::size_t len, std::size_t n) const {
        if (n <= kLeafLength) {
            loadBlock(x, src, len, n);
            leafForward(x, n);
            return;
        }
        firstLevelFrom(x, src, len, n);
        forward(x, n / 2);
        forward(x + n / 2, n / 2);
    }

    // x[0..n) := inverse(forward(src padded) * y) (y := the forward transform itself when Square).
    template <bool Square>
    void convolveFrom(Limb* x, const Limb* src, std::size_t len, const Limb* y, std::size_t n) const {
        if (n <= kLeafLength) {
            loadBlock(x, src, len, n);
            this->template leafConvolve<Square>(x, y, n);
            return;
        }
        firstLevelFrom(x, src, len, n);
        convolve<Square>(x, y, n / 2);
        convolve<Square>(x + n / 2, y + n / 2, n / 2);
        inverseLevel(x, n, n / 2);
    }

    // Forward transform of the power-of-two block x[0..n), n >= 2L.
    // Above the leaf two levels run per pass over the block, then the four
    // quarters recurse; a lone level remains when only one is above the leaf.
    void forward(Limb* x, std::size_t n) const {
        if (n <= kLeafLength) {
            leafForward(x, n);
        } else if (n / 2 <= kLeafLength) {
            forwardLevel(x, n, n / 2);
            leafForward(x, n / 2);
            leafForward(x + n / 2, n / 2);
        } else {
            if (terminateRequested()) return;
            forwardLevelPair(x, n, n / 2);
            for (std::size_t k = 0; k < 4; ++k) forward(x + k * (n / 4), n / 4);
        }
    }

    // n times the inverse transform of the block x[0..n).
    void inverse(Limb* x, std::size_t n) const {
        if (n <= kLeafLength) {
            leafInverse(x, n);
        } else if (n / 2 <= kLeafLength) {
            leafInverse(x, n / 2);
            leafInverse(x + n / 2, n / 2);
            inverseLevel(x, n, n / 2);
        } else {
            if (terminateRequested()) return;
            for (std::size_t k = 0; k < 4; ++k) inverse(x + k * (n / 4), n / 4);
            inverseLevelPair(x, n, n / 2);
        }
    }

    // x := inverse(forward(x) * y) on the block (y := x when Square).
    template <bool Square>
    void convolve(Limb* x, const Limb* y, std::size_t n) const {
        if (n <= kLeafLength) {
            this->template leafConvolve<Square>(x, y, n);
        } else if (n / 2 <= kLeafLength) {
            forwardLevel(x, n, n / 2);
            this->template leafConvolve<Square>(x, y, n / 2);
            this->template leafConvolve<Square>(x + n / 2, y + n / 2, n / 2);
            inverseLevel(x, n, n / 2);
        } else {
            if (terminateRequested()) return;
            forwardLevelPair(x, n, n / 2);
            for (std::size_t k = 0; k < 4; ++k) convolve<Square>(x + k * (n / 4), y + k * (n / 4), n / 4);
            inverseLevelPair(x, n, n / 2);
        }
    }
};

}  // namespace tw::arith::ntt
