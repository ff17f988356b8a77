// Magnitude operations on number records: the layer between span kernels and
// signed numbers.  Records hold the limbs; these helpers form spans from the
// lowest non-zero limb, size storage through resizeStorage, and renormalise.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include "arith/kernels/add_sub.h"
#include "frame/compare.h"
#include "frame/error_state.h"
#include "frame/number_record.h"

namespace tw::arith {

// The stretch of a magnitude from its lowest non-zero limb to its top limb;
// `offset` counts the zero limbs skipped below it.
struct Span {
    const Limb* limbs;
    std::size_t length;
    std::size_t offset;
};

inline Span spanOf(const NumberRecord& r) {
    return {r.digits + r.lowIndex, std::size_t(r.topIndex - r.lowIndex + 1), r.lowIndex};
}

// Limb count as a 32-bit storage request; results past 2^32 - 1 limbs cannot be
// held, so they are refused as too large.
inline bool fitsLimbCount(std::size_t limbs) { return limbs < std::size_t(UINT32_MAX); }

// A fresh record of `limbs` zero limbs for a result that is then moved into
// place with installResult.  Returns false (and records -3) when too large.
inline bool prepareResult(NumberRecord& out, std::size_t limbs) {
    if (!fitsLimbCount(limbs)) {
        setLastError(kErrTooLarge);
        return false;
    }
    resizeStorage(out, std::uint32_t(limbs), true);
    return out.allocated() >= limbs;
}

// Normalises a result written into limbs [0, limbs) of `out` and moves it into
// `target`, whose text buffers are dropped.
inline void installResult(NumberRecord& target, NumberRecord&& out, std::size_t limbs) {
    normalizeIndices(out, std::uint32_t(limbs));
    dropTextBuffers(target);
    std::swap(target, out);
}

// |x| += the magnitude ys stands for, in place; ys is not in x's storage.
template <class R>
void addSpanInPlace(NumberRecord& x, Span ys) {
    dropTextBuffers(x);
    const std::uint32_t n = std::max<std::uint32_t>(x.topIndex + 1, std::uint32_t(ys.offset + ys.length));
    resizeStorage(x, n + 1, false);
    if (x.allocated() < n + 1u) return;  // storage exhausted: x is zero, -3 recorded
    const Limb carry = addSpans<R>(x.digits + ys.offset, x.digits + ys.offset, n - ys.offset, ys.limbs, ys.length);
    x.digits[n] = carry;
    normalizeIndices(x, n + 1);
}

// |x| -= the magnitude ys stands for, requires |x| >= it.  A raised terminate
// flag makes x zero.
template <class R>
void subtractSpanInPlace(NumberRecord& x, Span ys) {
    dropTextBuffers(x);
    if (terminateRequested()) {
        setRecordZero(x);
        return;
    }
    subSpans<R>(x.digits + ys.offset, x.digits + ys.offset, x.topIndex + 1 - ys.offset, ys.limbs, ys.length);
    normalizeIndices(x, x.topIndex + 1);
}

// |x| += |y| and |x| -= |y| (|x| >= |y|) in place; x and y are distinct records.
template <class R>
void addMagnitudeInPlace(NumberRecord& x, const NumberRecord& y) { addSpanInPlace<R>(x, spanOf(y)); }
template <class R>
void subtractMagnitudeInPlace(NumberRecord& x, const NumberRecord& y) { subtractSpanInPlace<R>(x, spanOf(y)); }

// A machine word n > 0 as a span of its one or two limbs, held in `limbs`.
template <class R>
Span wordSpan(Limb (&limbs)[3], std::uint32_t n) {
    return {limbs, storeCarry<R>(limbs, n), 0};
}

// |x| := |y| - |x|, requires |y| > |x|: works on a copy of y whose storage then
// replaces x's.
template <class R>
void reverseSubtractMagnitude(NumberRecord& x, const NumberRecord& y) {
    NumberRecord copy(y);
    subtractMagnitudeInPlace<R>(copy, x);
    dropTextBuffers(x);
    std::swap(x, copy);
    resizeStorage(x, x.topIndex + 1, false);  // a copy may hold fewer than three limbs
}

// |x| := |x| * m + 0 for a machine word m.
template <class R>
void multiplyMagnitudeByWord(NumberRecord& x, std::uint32_t m) {
    dropTextBuffers(x);
    const std::uint32_t n = x.topIndex + 1;
    // A 32-bit factor adds at most two limbs of 10^9 and two of 2^28.
    resizeStorage(x, n + 2, false);
    if (x.allocated() < n + 2u) return;
    const Span xs = spanOf(x);
    const std::uint64_t carry = mulByWord<R>(x.digits + xs.offset, xs.limbs, xs.length, m);
    storeCarry<R>(x.digits + n, carry);
    normalizeIndices(x, n + 2);
}

// Writes the value v (below 2^64) as the whole magnitude of x.
template <class R>
void setMagnitudeWord(NumberRecord& x, std::uint64_t v) {
    dropTextBuffers(x);
    resizeStorage(x, 3, true);
    storeCarry<R>(x.digits, v);
    normalizeIndices(x, 3);
}

// Inserts `count` zero limbs below the lowest limb (multiplies by radix^count).
// Returns false, with -3 recorded and x zero, when the result cannot be held.
inline bool insertLowLimbs(NumberRecord& x, std::size_t count) {
    if (count == 0 || x.isZero()) return true;
    const std::size_t n = x.topIndex + 1;
    if (!fitsLimbCount(n + count)) {
        setLastError(kErrTooLarge);
        setRecordZero(x);
        return false;
    }
    dropTextBuffers(x);
    resizeStorage(x, std::uint32_t(n + count), false);
    if (x.allocated() < n + count) return false;
    std::memmove(x.digits + count, x.digits, n * sizeof(Limb));
    std::fill(x.digits, x.digits + count, 0);
    x.topIndex += std::uint32_t(count);
    x.lowIndex += std::uint32_t(count);
    return true;
}

// Drops the lowest `count` limbs (divides by radix^count, truncating).
inline void dropLowLimbs(NumberRecord& x, std::size_t count) {
    if (count == 0) return;
    dropTextBuffers(x);
    const std::size_t n = x.topIndex + 1;
    if (count >= n) {
        setRecordZero(x);
        return;
    }
    std::memmove(x.digits, x.digits + count, (n - count) * sizeof(Limb));
    std::fill(x.digits + (n - count), x.digits + n, 0);
    normalizeIndices(x, std::uint32_t(n - count));
}

}  // namespace tw::arith
