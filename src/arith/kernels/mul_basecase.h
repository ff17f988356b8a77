// Column-wise schoolbook product: the bottom rung of the ladder, and the
// column accumulator it shares with the basecase square.
#pragma once

#include <cstddef>
#include <cstdint>

#include "arith/kernels/radix_traits.h"
#include "arith/tuning.h"
#include "frame/kernel_paths.h"
#include "frame/radix.h"

namespace tw::arith {

// Running state of a column-by-column product.  `acc` is the 64-bit sum of the
// current column; what settle() takes out of it is owed, in limb units, to the
// column two places up (`owedTwoUp`), and one column later that becomes
// `owedNext`.
template <class R>
struct ColumnSum {
    std::uint64_t acc = 0;
    std::uint64_t owedNext = 0;
    std::uint64_t owedTwoUp = 0;

    // acc += x[0]*y[0] + x[1]*y[-1] + ... + x[count-1]*y[-(count-1)]: the
    // products of one column, L read upwards and S downwards.
    void add(const Limb* x, const Limb* y, std::size_t count) {
        using T = MulTraits<R>;
        if constexpr (T::kProductsPerSettle == 1) {
            // Settle after every product; four at a time to keep the loop tight.
            std::size_t t = 0;
            for (; t + 4 <= count; t += 4) {
                acc += std::uint64_t(x[t]) * y[-std::ptrdiff_t(t)];
                T::settle(acc, owedTwoUp);
                acc += std::uint64_t(x[t + 1]) * y[-std::ptrdiff_t(t + 1)];
                T::settle(acc, owedTwoUp);
                acc += std::uint64_t(x[t + 2]) * y[-std::ptrdiff_t(t + 2)];
                T::settle(acc, owedTwoUp);
                acc += std::uint64_t(x[t + 3]) * y[-std::ptrdiff_t(t + 3)];
                T::settle(acc, owedTwoUp);
            }
            for (; t < count; ++t) {
                acc += std::uint64_t(x[t]) * y[-std::ptrdiff_t(t)];
                T::settle(acc, owedTwoUp);
            }
        } else {
            // Whole blocks of products between settles.
            while (count > 0) {
                const std::size_t n = count < T::kProductsPerSettle ? count : T::kProductsPerSettle;
                std::uint64_t block = 0;
                for (std::size_t t = 0; t < n; ++t) block += std::uint64_t(x[t]) * y[-std::ptrdiff_t(t)];
                acc += block;
                T::settle(acc, owedTwoUp);
                x += n;
                y -= n;
                count -= n;
            }
        }
    }

    // Ends the column: returns its limb and starts the next column with the
    // carry and whatever was owed to it.
    Limb finish() {
        using T = MulTraits<R>;
        const Limb limb = T::low(acc);
        acc = T::high(acc) + owedNext;
        owedNext = owedTwoUp;
        owedTwoUp = 0;
        return limb;
    }
};

// out[0 .. l+s) := L[0..l) * S[0..s), l >= s >= 1, out overlapping neither.
// Column c of the result sums L[i]*S[c-i] in one 64-bit accumulator (see
// MulTraits for how it is kept from overflowing), so there is no carry
// handling per product: l*s products and one division per column.  Portable.
template <class R>
void mulBasecaseColumns(Limb* out, const Limb* L, std::size_t l, const Limb* S, std::size_t s) {
    ColumnSum<R> col;
    for (std::size_t c = 0; c + 1 < l + s; ++c) {
        const std::size_t first = c < s ? 0 : c - s + 1;
        const std::size_t last = c < l ? c : l - 1;
        col.add(L + first, S + (c - first), last - first + 1);
        out[c] = col.finish();
    }
    out[l + s - 1] = Limb(col.acc);
}

// The longest shorter operand (and square) the vector kernels take.
inline constexpr std::size_t kLaneKernelMax = 128;

// mulBasecaseColumns summed four columns at a time in 256-bit lanes, with the
// same settling rule per lane: same contract, s <= kLaneKernelMax, and only
// on the AVX2 path (elsewhere it is mulBasecaseColumns).
template <class R>
void mulBasecaseLanes(Limb* out, const Limb* L, std::size_t l, const Limb* S, std::size_t s);

// The same sixteen columns at a time in two 512-bit accumulators: same
// contract, s <= kLaneKernelMax, only where the AVX-512 path.
template <class R>
void mulBasecaseWideLanes(Limb* out, const Limb* L, std::size_t l, const Limb* S, std::size_t s);

// The kernels of a basecase of shorter operand s (wideMin: kWideLanesMin for
// a product, kWideLanesSqrMin for a square): Portable for the column sums,
// Avx2 for the 256-bit lanes, Avx512 for the 512-bit ones.  A pinned path is
// taken at every length and in both radices, so the tests reach every kernel.
template <class R>
KernelPath basecasePathFor(std::size_t s, std::size_t wideMin = kWideLanesMin) {
    if (s > kLaneKernelMax) return KernelPath::Portable;
    const KernelChoice choice = kernelChoice();
    if (choice.path >= KernelPath::Avx512 && (choice.forced || (R::isBinary && s >= wideMin)))
        return KernelPath::Avx512;
    return choice.path >= KernelPath::Avx2 ? KernelPath::Avx2 : KernelPath::Portable;
}

// The basecase rung: the vector kernel the processor has.
template <class R>
void mulBasecase(Limb* out, const Limb* L, std::size_t l, const Limb* S, std::size_t s) {
    switch (basecasePathFor<R>(s)) {
        case KernelPath::Avx512: mulBasecaseWideLanes<R>(out, L, l, S, s); return;
        case KernelPath::Avx2: mulBasecaseLanes<R>(out, L, l, S, s); return;
        default: mulBasecaseColumns<R>(out, L, l, S, s); return;
    }
}

}  // namespace tw::arith
