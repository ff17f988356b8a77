// The multiplication and squaring ladders: trimming of the operands and the
// choice of the rung.  The rungs themselves live in mul_*.cpp / sqr_*.cpp.
#include "arith/kernels/multiply.h"

#include <algorithm>
#include <utility>

#include "arith/kernels/mul_basecase.h"
#include "arith/kernels/mul_ladder.h"
#include "arith/kernels/mul_scratch.h"
#include "arith/kernels/mul_span_ops.h"
#include "arith/kernels/ntt/transform_lengths.h"
#include "arith/kernels/ntt/transform_multiply.h"
#include "arith/kernels/sqr_basecase.h"
#include "arith/tuning.h"
#include "frame/error_state.h"
#include "frame/span_contracts.h"

namespace tw::arith {

namespace {

// The longest shorter operand the basecase takes: the caller's bound if it
// set one, else the radix's (raised in radix 2^28 where the 512-bit basecase runs).
template <class R>
std::size_t basecaseBound(const LimbScratch& scratch) {
    if (scratch.basecaseMax()) return scratch.basecaseMax();
    if (R::isBinary && basecasePathFor<R>(kWideBasecaseMax) == KernelPath::Avx512) return kWideBasecaseMax;
    return kLadder<R>.mulBasecaseMax;
}

// The rung for L[0..l) * S[0..s): l >= s >= 1, both spans with non-zero top
// and bottom limbs.  Only s decides.
template <class R>
void mulSpans(Limb* out, const Limb* L, std::size_t l, const Limb* S, std::size_t s, LimbScratch& scratch) {
    if (s == 1) {
        mulByLimb<R>(out, L, l, S[0]);
    } else if (s <= basecaseBound<R>(scratch)) {
        mulBasecase<R>(out, L, l, S, s);
    } else if (s <= kLadder<R>.mulKaratsubaMax) {
        mulKaratsuba<R>(out, L, l, S, s, scratch);
    } else if (s < kLadder<R>.mulTransformMin) {
        mulToom3<R>(out, L, l, S, s, scratch);
    } else if (transformFits(s)) {
        transformMultiply<R>(out, L, l, S, s);
    } else if (2 * ntt::nextPowerOfTwo(s) > kTransformToomLength) {
        // Too long for the transform: split until the pieces fit it.
        mulToom3<R>(out, L, l, S, s, scratch);
    } else {
        mulKaratsuba<R>(out, L, l, S, s, scratch);
    }
}

// The squaring rung for a[0..n), a span with non-zero top and bottom limbs.
template <class R>
void sqrSpan(Limb* out, const Limb* a, std::size_t n, LimbScratch& scratch) {
    if (n <= kLadder<R>.sqrBasecaseMax) {
        sqrBasecase<R>(out, a, n);
    } else if (n <= kLadder<R>.sqrKaratsubaMax) {
        sqrKaratsuba<R>(out, a, n, scratch);
    } else if (n < kLadder<R>.sqrTransformMin) {
        sqrToom3<R>(out, a, n, scratch);
    } else {
        // The transform length of a square: the allowed length not below 2n.
        // (Its basic length may still be too long for the transform when
        // 2n is just above a power of two; Karatsuba then halves it.)
        const std::size_t length = ntt::roundTransformLength(2 * n);
        if (length <= kTransformMaxLength && transformFits(n))
            transformSquare<R>(out, a, n);
        else if (length > kTransformToomLength)
            sqrToom3<R>(out, a, n, scratch);
        else
            sqrKaratsuba<R>(out, a, n, scratch);
    }
}

}  // namespace

template <class R>
void mulLadder(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn, LimbScratch& scratch) {
    if (terminateRequested()) return;
    const std::size_t total = an + bn;
    an = trimmedLength(a, an);
    bn = trimmedLength(b, bn);
    if (an == 0 || bn == 0) {
        zeroLimbs(out, total);
        return;
    }
    // Zero limbs at the bottom are never multiplied: they only shift the product.
    const std::size_t az = lowZeroLimbs(a), bz = lowZeroLimbs(b);
    a += az;
    an -= az;
    b += bz;
    bn -= bz;
    const std::size_t shift = az + bz;
    zeroLimbs(out, shift);
    zeroLimbs(out + shift + an + bn, total - shift - an - bn);
    if (an < bn) {
        std::swap(a, b);
        std::swap(an, bn);
    }
    mulSpans<R>(out + shift, a, an, b, bn, scratch);
}

template <class R>
void sqrLadder(Limb* out, const Limb* a, std::size_t n, LimbScratch& scratch) {
    if (terminateRequested()) return;
    const std::size_t total = 2 * n;
    n = trimmedLength(a, n);
    if (n == 0) {
        zeroLimbs(out, total);
        return;
    }
    const std::size_t z = lowZeroLimbs(a);
    a += z;
    n -= z;
    zeroLimbs(out, 2 * z);
    zeroLimbs(out + 2 * z + 2 * n, total - 2 * z - 2 * n);
    sqrSpan<R>(out + 2 * z, a, n, scratch);
}

std::size_t mulScratchEstimate(std::size_t longer, std::size_t shorter) {
    // Only the rungs above the basecase take scratch (the arena allocates on
    // first use).  Those that take it in proportion to the longer operand
    // see l <= 3s (else they cut L into pieces of s limbs), and each level
    // needs a few times that, shrinking geometrically down the recursion.
    return 8 * (std::min(longer, 3 * shorter) + shorter) + 512;
}

template <class R>
void multiply(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    assert(an >= 1 && bn >= 1);
    assert(spansDisjoint(out, an + bn, a, an) && spansDisjoint(out, an + bn, b, bn));
    LimbScratch scratch(mulScratchEstimate(std::max(an, bn), std::min(an, bn)));
    mulLadder<R>(out, a, an, b, bn, scratch);
}

template <class R>
void multiplyWideBasecase(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    assert(an >= 1 && bn >= 1);
    assert(spansDisjoint(out, an + bn, a, an) && spansDisjoint(out, an + bn, b, bn));
    LimbScratch scratch(mulScratchEstimate(std::max(an, bn), std::min(an, bn)));
    if (R::isBinary && basecasePathFor<R>(kWideBasecaseMax) == KernelPath::Avx512)
        scratch.setBasecaseMax(kWideBasecaseMax);
    mulLadder<R>(out, a, an, b, bn, scratch);
}

template <class R>
void square(Limb* out, const Limb* a, std::size_t n) {
    assert(n >= 1 && spansDisjoint(out, 2 * n, a, n));
    LimbScratch scratch(mulScratchEstimate(n, n));
    sqrLadder<R>(out, a, n, scratch);
}

template void mulLadder<DecimalRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t, LimbScratch&);
template void mulLadder<BinaryRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t, LimbScratch&);
template void sqrLadder<DecimalRadix>(Limb*, const Limb*, std::size_t, LimbScratch&);
template void sqrLadder<BinaryRadix>(Limb*, const Limb*, std::size_t, LimbScratch&);
template void multiply<DecimalRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t);
template void multiply<BinaryRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t);
template void multiplyWideBasecase<DecimalRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t);
template void multiplyWideBasecase<BinaryRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t);
template void square<DecimalRadix>(Limb*, const Limb*, std::size_t);
template void square<BinaryRadix>(Limb*, const Limb*, std::size_t);

}  // namespace tw::arith
