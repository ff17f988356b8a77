#include "arith/kernels/ntt/transform_multiply.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "arith/kernels/add_sub.h"
#include "arith/kernels/ntt/crt.h"
#include "arith/kernels/ntt/prime_by_prime.h"
#include "arith/kernels/ntt/roots.h"
#include "arith/kernels/ntt/roots_of_unity.h"
#include "arith/kernels/ntt/transform_dispatch.h"
#include "arith/kernels/ntt/transform_lengths.h"
#include "arith/tuning.h"
#include "frame/error_state.h"
#include "frame/span_contracts.h"

namespace tw::arith {

namespace ntt {
namespace {

// A stretch of limbs without zero limbs at either end, `offset` limbs above
// where the untrimmed stretch began.
struct Span {
    const Limb* limbs;
    std::size_t length;
    std::size_t offset;
};

Span trimmed(const Limb* p, std::size_t n) {
    std::size_t lo = 0;
    while (lo < n && p[lo] == 0) ++lo;
    std::size_t hi = n;
    while (hi > lo && p[hi - 1] == 0) --hi;
    return {p + lo, hi - lo, lo};
}

// out[0 .. n] := a[0..n) * m.
template <class R>
void multiplyByLimb(Limb* out, const Span& a, Limb m) {
    const std::uint64_t carry = mulByWord<R>(out, a.limbs, a.length, m);
    out[a.length] = Limb(carry);  // a * m < R^(n+1)
}

// out[0 .. room) += a[0..n) * m; the sum must fit.
template <class R>
void addMultipleOfLimb(Limb* out, std::size_t room, const Span& a, Limb m) {
    std::uint64_t carry = 0;
    std::size_t i = 0;
    for (; i < a.length; ++i) {
        const std::uint64_t t = std::uint64_t(a.limbs[i]) * m + out[i] + carry;
        out[i] = Limb(t % R::base);
        carry = t / R::base;
    }
    for (; carry && i < room; ++i) {
        const std::uint64_t t = out[i] + carry;
        out[i] = Limb(t % R::base);
        carry = t / R::base;
    }
}

// The shortest transform length able to hold `needed` coefficients whose
// transform of S is a prefix of the one of the full length (a power-of-two
// fraction of a power-of-two length), on the same code path.
std::size_t chunkTransformLength(std::size_t length, std::size_t needed) {
    const TransformKernels* kernels = &transformKernels(length);
    while (isPowerOfTwo(length) && length / 2 >= needed && &transformKernels(length / 2) == kernels)
        length /= 2;
    return length;
}

// The transform length of a product of trimmed factors of l >= s >= 2 limbs,
// and whether the longer one goes in chunks (productInChunks) because the
// length cannot hold the whole product.
struct ProductShape {
    std::size_t length;
    bool inChunks;
};

ProductShape productShape(std::size_t l, std::size_t s) {
    std::size_t length = 2 * nextPowerOfTwo(s);
    if (l + s <= kTransformMaxLength && l < 2 * (length - s)) length = l + s;
    length = roundTransformLength(length);
    return {length, length - s < l};
}

// The scratch of productInChunks: per prime, two residue vectors and a root table.
std::size_t chunkScratchLimbs(std::size_t length) {
    return kPrimeCount * (2 * length + topRootWords(transformBlockLength(length)) + 3 * LimbScratch::kAlignedTakeSlack);
}

// The longer factor in chunks of (length - len(S)) limbs, each convolved with
// the transforms of S (kept for all three primes) and added in at its offset.
// out[0 .. room) is zero on entry; six residue vectors live at a time.
template <class R>
void productInChunks(Limb* out, std::size_t room, const Span& longer, const Span& shorter, std::size_t length,
                     LimbScratch& scratch) {
    const TransformKernels& kernels = transformKernels(length);
    const std::size_t chunk = length - shorter.length;
    const std::size_t m = transformBlockLength(length);
    LimbScratch::Frame frame(scratch);
    Limb *transformOfS[kPrimeCount], *work[kPrimeCount];
    TopRootTable top[kPrimeCount];
    for (std::size_t k = 0; k < kPrimeCount; ++k) {
        transformOfS[k] = frame.takeAligned(length);
        work[k] = frame.takeAligned(length);
        top[k] = buildTopRootTable(kernels, k, m, frame.takeAligned(topRootWords(m)));
        if (terminateRequested()) return;
        kernels.forward(transformOfS[k], shorter.limbs, shorter.length, makePlan(k, length, top[k]));
        if (terminateRequested()) return;
    }

    for (std::size_t start = 0; start < longer.length; start += chunk) {
        const Span piece = trimmed(longer.limbs + start, std::min(chunk, longer.length - start));
        if (piece.length == 0) continue;
        Limb* at = out + start + piece.offset;
        const std::size_t atRoom = room - (start + piece.offset);
        if (piece.length == 1) {
            addMultipleOfLimb<R>(at, atRoom, shorter, piece.limbs[0]);
            continue;
        }
        const std::size_t count = piece.length + shorter.length - 1;
        const std::size_t pieceLength = chunkTransformLength(length, count);
        for (std::size_t k = 0; k < kPrimeCount; ++k) {
            kernels.convolve(work[k], piece.limbs, piece.length, transformOfS[k], makePlan(k, pieceLength, top[k]));
            if (terminateRequested()) return;
        }
        crtToLimbs<R>(at, atRoom, work[0], work[1], work[2], count, garnerForLength(pieceLength), kernels, true);
    }
}

}  // namespace
}  // namespace ntt

bool transformFits(std::size_t shorterLength) {
    return shorterLength <= kTransformMaxLength / 2 &&
           2 * ntt::nextPowerOfTwo(shorterLength) <= kTransformMaxLength;
}

std::size_t transformScratchLimbs(std::size_t an, std::size_t bn) {
    using namespace ntt;
    const std::size_t l = std::max(an, bn), s = std::min(an, bn);
    if (s <= 1) return 0;
    const ProductShape shape = productShape(l, s);
    if (shape.inChunks) return chunkScratchLimbs(shape.length);
    return primeByPrimeScratchLimbs(shape.length, shape.length);
}

template <class R>
void transformMultiply(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn, LimbScratch& scratch) {
    assert(spansDisjoint(out, an + bn, a, an) && spansDisjoint(out, an + bn, b, bn));
    using namespace ntt;
    const std::size_t total = an + bn;
    Span longer = trimmed(a, an), shorter = trimmed(b, bn);
    if (longer.length == 0 || shorter.length == 0) {
        std::fill(out, out + total, 0);
        return;
    }
    if (longer.length < shorter.length) std::swap(longer, shorter);
    const std::size_t offset = longer.offset + shorter.offset;
    Limb* at = out + offset;
    const std::size_t room = total - offset;
    // The product fills at[0 .. longer + shorter); only the limbs around it need clearing.
    std::fill(out, at, 0);
    std::fill(at + longer.length + shorter.length, out + total, 0);
    if (shorter.length == 1) {
        multiplyByLimb<R>(at, longer, shorter.limbs[0]);
        return;
    }

    const std::size_t s = shorter.length;
    const ProductShape shape = productShape(longer.length, s);
    if (shape.inChunks) {
        std::fill(at, at + longer.length + s, 0);  // the chunks add into it
        productInChunks<R>(at, room, longer, shorter, shape.length, scratch);
        return;
    }
    // The extra words hold the transform of S.
    primeByPrime<R>(scratch, at, room, longer.length + s - 1, shape.length, shape.length,
                    [&](const TransformKernels& kernels, const TransformPlan& plan, Limb* r, Limb* extra) {
                        kernels.forward(extra, shorter.limbs, shorter.length, plan);
                        if (!terminateRequested()) kernels.convolve(r, longer.limbs, longer.length, extra, plan);
                    });
}

template <class R>
void transformSquare(Limb* out, const Limb* a, std::size_t n, LimbScratch& scratch) {
    assert(spansDisjoint(out, 2 * n, a, n));
    using namespace ntt;
    const Span x = trimmed(a, n);
    const std::size_t length = roundTransformLength(2 * x.length);
    if (x.length <= 1 || length > kTransformMaxLength) {
        transformMultiply<R>(out, a, n, a, n, scratch);
        return;
    }
    Limb* at = out + 2 * x.offset;
    std::fill(out, at, 0);
    std::fill(at + 2 * x.length, out + 2 * n, 0);
    primeByPrime<R>(scratch, at, 2 * (n - x.offset), 2 * x.length - 1, length, 0,
                    [&](const TransformKernels& kernels, const TransformPlan& plan, Limb* r, Limb*) {
                        kernels.squareConvolve(r, x.limbs, x.length, plan);
                    });
}

template <class R>
void transformMultiply(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    LimbScratch scratch(transformScratchLimbs(ntt::trimmed(a, an).length, ntt::trimmed(b, bn).length));
    transformMultiply<R>(out, a, an, b, bn, scratch);
}

template <class R>
void transformSquare(Limb* out, const Limb* a, std::size_t n) {
    const std::size_t trimmedLength = ntt::trimmed(a, n).length;
    LimbScratch scratch(transformScratchLimbs(trimmedLength, trimmedLength));
    transformSquare<R>(out, a, n, scratch);
}

template void transformMultiply<DecimalRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t);
template void transformMultiply<BinaryRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t);
template void transformSquare<DecimalRadix>(Limb*, const Limb*, std::size_t);
template void transformSquare<BinaryRadix>(Limb*, const Limb*, std::size_t);
template void transformMultiply<DecimalRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t, LimbScratch&);
template void transformMultiply<BinaryRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t, LimbScratch&);
template void transformSquare<DecimalRadix>(Limb*, const Limb*, std::size_t, LimbScratch&);
template void transformSquare<BinaryRadix>(Limb*, const Limb*, std::size_t, LimbScratch&);

}  // namespace tw::arith
