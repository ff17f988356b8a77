#include "arith/kernels/ntt/cyclic_multiply.h"

#include <algorithm>
#include <cassert>
#include <tuple>
#include <utility>

#include "arith/kernels/add_sub.h"
#include "arith/kernels/ntt/prime_by_prime.h"
#include "arith/kernels/ntt/transform_lengths.h"
#include "arith/tuning.h"
#include "frame/error_state.h"
#include "frame/span_contracts.h"

namespace tw::arith {

namespace {

// A residue in [0, radix^N] made reduced: radix^N - 1 (every limb maximal) is zero.
template <class R>
void reduceAllMaximal(Limb* x, std::size_t length) {
    if (std::all_of(x, x + length, [](Limb v) { return v == R::base - 1; })) std::fill(x, x + length, 0);
}

// x[0..N) += y0 + y1 radix modulo radix^N - 1 (x below radix^N on entry,
// N >= 2): the carry out of the top re-enters at the bottom.  The sum is below
// radix^N + radix^2, so after one wrap the value is below radix^2 + 1 and a
// second carry cannot happen.
template <class R>
void addTwoLimbsCyclic(Limb* x, std::size_t length, Limb y0, Limb y1) {
    const Limb y[2] = {y0, y1};
    if (addSpans<R>(x, x, length, y, 2)) {
        [[maybe_unused]] const Limb again = addCarry<R>(x, x, length, 1);
        assert(again == 0);
    }
}

// a trimmed at the top; when longer than N, reduced into N limbs taken from `frame`.
template <class R>
std::pair<const Limb*, std::size_t> operandOf(LimbScratch::Frame& frame, std::size_t length, const Limb* a,
                                              std::size_t an) {
    while (an > 0 && a[an - 1] == 0) --an;
    if (an <= length) return {a, an};
    Limb* folded = frame.take(length);
    reduceCyclic<R>(folded, length, a, an);
    std::size_t n = length;
    while (n > 0 && folded[n - 1] == 0) --n;
    return {folded, n};
}

// out[0..N) := x[0..xn) * y mod (radix^N - 1), reduced, y of yn limbs (both
// trimmed, non-zero), with convolveOnPrime(kernels, plan, r) leaving one
// prime's cyclic convolution in r.  At most N sums, each of at most N
// products below radix^2: within the bound of the Chinese remainder step
// (crt_constants.h).  Their value is below N radix^(N+1) < radix^(N+2), so
// two limbs spill over the top and wrap round.
template <class R, class ConvolveOnPrime>
void convolveCyclic(LimbScratch& scratch, Limb* out, std::size_t length, std::size_t xn, std::size_t yn,
                    std::size_t extraWords, ConvolveOnPrime convolveOnPrime) {
    const std::size_t count = std::min(length, xn + yn - 1);
    LimbScratch::Frame frame(scratch);
    Limb* sums = frame.take(length + 2);
    std::fill(sums, sums + length + 2, 0);
    ntt::primeByPrime<R>(scratch, sums, length + 2, count, length, extraWords, convolveOnPrime);
    if (terminateRequested()) return;
    addTwoLimbsCyclic<R>(sums, length, sums[length], sums[length + 1]);
    reduceAllMaximal<R>(sums, length);
    std::copy(sums, sums + length, out);
}

}  // namespace

std::size_t cyclicScratchLimbs(std::size_t length) {
    // Both operands folded, the sums, and primeByPrime with room for one transform.
    return 3 * length + 2 + ntt::primeByPrimeScratchLimbs(length, length) + 3 * LimbScratch::kAlignedTakeSlack;
}

bool cyclicFits(std::size_t minimum) { return minimum <= kTransformMaxLength; }

std::size_t cyclicLength(std::size_t minimum) {
    assert(cyclicFits(minimum));
    const std::size_t length = ntt::roundTransformLength(std::max<std::size_t>(minimum, 4));
    // Below 768 the three-times-a-power-of-two lengths run slower than the
    // next power of two (measured: 384 words take longer than 512, 192 than
    // 256; 48 even falls back to the portable kernels), so they are passed over.
    if (length < 768 && !ntt::isPowerOfTwo(length)) return ntt::nextPowerOfTwo(length);
    return length;
}

template <class R>
void reduceCyclic(Limb* out, std::size_t length, const Limb* a, std::size_t an) {
    assert(length >= 2);
    const std::size_t first = std::min(an, length);
    std::copy(a, a + first, out);
    std::fill(out + first, out + length, 0);
    // Each further piece of N limbs is worth itself: radix^N = 1.  The sum of
    // two values below radix^N is below 2 radix^N - 1, so the carry that wraps
    // round cannot carry out again.
    for (std::size_t at = length; at < an; at += length) {
        const std::size_t n = std::min(length, an - at);
        const Limb carry = addSpans<R>(out, out, length, a + at, n);
        if (carry) {
            [[maybe_unused]] const Limb again = addCarry<R>(out, out, length, 1);
            assert(again == 0);
        }
    }
    reduceAllMaximal<R>(out, length);
}

template <class R>
void cyclicMultiply(Limb* out, std::size_t length, const Limb* a, std::size_t an, const Limb* b, std::size_t bn,
                    LimbScratch& scratch) {
    assert(spansDisjoint(out, length, a, an) && spansDisjoint(out, length, b, bn));
    using namespace ntt;
    assert(length >= 4 && length <= kTransformMaxLength && roundTransformLength(length) == length);
    if (terminateRequested()) return;
    LimbScratch::Frame frame(scratch);
    // Plain variables, not structured bindings: the lambda below captures them.
    const Limb *x, *y;
    std::size_t xn, yn;
    std::tie(x, xn) = operandOf<R>(frame, length, a, an);
    std::tie(y, yn) = operandOf<R>(frame, length, b, bn);
    if (xn == 0 || yn == 0) {
        std::fill(out, out + length, 0);
        return;
    }
    if (xn < yn) {
        std::swap(x, y);
        std::swap(xn, yn);
    }
    convolveCyclic<R>(scratch, out, length, xn, yn, length,
                      [&](const TransformKernels& kernels, const TransformPlan& plan, Limb* r, Limb* extra) {
                          kernels.forward(extra, y, yn, plan);
                          if (!terminateRequested()) kernels.convolve(r, x, xn, extra, plan);
                      });
}

template <class R>
void CyclicFactor::prepare(std::size_t length, const Limb* b, std::size_t bn) {
    using namespace ntt;
    assert(length >= 4 && length <= kTransformMaxLength && roundTransformLength(length) == length);
    clear();
    const TransformKernels& kernels = transformKernels(length);
    const std::size_t m = transformBlockLength(length);
    // The folded operand and the root table are temporaries; the transforms are kept.
    LimbScratch scratch(length + topRootWords(m) + 2 * LimbScratch::kAlignedTakeSlack);
    LimbScratch::Frame frame(scratch);
    auto [y, yn] = operandOf<R>(frame, length, b, bn);
    Limb* top = frame.takeAligned(topRootWords(m));
    // Each prime's transform starts on a cache line, as the scratch buffers do.
    const std::size_t stride = (length + 15) / 16 * 16;
    AlignedWords transforms = allocateWords(kPrimes * stride);
    for (std::size_t k = 0; k < kPrimes && yn > 0; ++k) {
        if (terminateRequested()) return;
        const TransformPlan plan = makePlan(k, length, buildTopRootTable(kernels, k, m, top));
        if (terminateRequested()) return;
        kernels.forward(transforms.get() + k * stride, y, yn, plan);
    }
    if (terminateRequested()) return;
    length_ = length;
    stride_ = stride;
    limbs_ = yn;
    kernels_ = &kernels;
    transforms_ = std::move(transforms);
}

bool CyclicFactor::readyFor(std::size_t length) const {
    return transforms_ && length_ == length && kernels_ == &ntt::transformKernels(length);
}

void CyclicFactor::clear() {
    transforms_.reset();
    length_ = stride_ = limbs_ = 0;
    kernels_ = nullptr;
}

template <class R>
void cyclicMultiplyBy(Limb* out, std::size_t length, const Limb* a, std::size_t an, const CyclicFactor& b,
                      LimbScratch& scratch) {
    using namespace ntt;
    assert(b.readyFor(length));
    if (terminateRequested()) return;
    LimbScratch::Frame frame(scratch);
    const Limb* x;
    std::size_t xn;
    std::tie(x, xn) = operandOf<R>(frame, length, a, an);
    if (xn == 0 || b.limbs_ == 0) {
        std::fill(out, out + length, 0);
        return;
    }
    convolveCyclic<R>(scratch, out, length, xn, b.limbs_, 0,
                      [&](const TransformKernels& kernels, const TransformPlan& plan, Limb* r, Limb*) {
                          kernels.convolve(r, x, xn, b.transforms_.get() + plan.primeIndex * b.stride_, plan);
                      });
}

template <class R>
void cyclicMultiply(Limb* out, std::size_t length, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    LimbScratch scratch(cyclicScratchLimbs(length));
    cyclicMultiply<R>(out, length, a, an, b, bn, scratch);
}

template <class R>
void cyclicMultiplyBy(Limb* out, std::size_t length, const Limb* a, std::size_t an, const CyclicFactor& b) {
    LimbScratch scratch(cyclicScratchLimbs(length));
    cyclicMultiplyBy<R>(out, length, a, an, b, scratch);
}

template void CyclicFactor::prepare<DecimalRadix>(std::size_t, const Limb*, std::size_t);
template void CyclicFactor::prepare<BinaryRadix>(std::size_t, const Limb*, std::size_t);
template void cyclicMultiplyBy<DecimalRadix>(Limb*, std::size_t, const Limb*, std::size_t, const CyclicFactor&);
template void cyclicMultiplyBy<BinaryRadix>(Limb*, std::size_t, const Limb*, std::size_t, const CyclicFactor&);
template void reduceCyclic<DecimalRadix>(Limb*, std::size_t, const Limb*, std::size_t);
template void reduceCyclic<BinaryRadix>(Limb*, std::size_t, const Limb*, std::size_t);
template void cyclicMultiply<DecimalRadix>(Limb*, std::size_t, const Limb*, std::size_t, const Limb*, std::size_t);
template void cyclicMultiply<BinaryRadix>(Limb*, std::size_t, const Limb*, std::size_t, const Limb*, std::size_t);
template void cyclicMultiplyBy<DecimalRadix>(Limb*, std::size_t, const Limb*, std::size_t, const CyclicFactor&,
                                             LimbScratch&);
template void cyclicMultiplyBy<BinaryRadix>(Limb*, std::size_t, const Limb*, std::size_t, const CyclicFactor&,
                                            LimbScratch&);
template void cyclicMultiply<DecimalRadix>(Limb*, std::size_t, const Limb*, std::size_t, const Limb*, std::size_t,
                                           LimbScratch&);
template void cyclicMultiply<BinaryRadix>(Limb*, std::size_t, const Limb*, std::size_t, const Limb*, std::size_t,
                                          LimbScratch&);

}  // namespace tw::arith
