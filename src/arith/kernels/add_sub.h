// Linear-time kernels over limb spans in radix R: addition, subtraction and
// multiplication by one machine word.  No allocation; the contracts say what
// may alias.
#pragma once

#include <cstddef>
#include <cstdint>

#include "arith/kernels/radix_traits.h"
#include "arith/tuning.h"
#include "frame/kernel_paths.h"
#include "frame/radix.h"
#include "frame/span_contracts.h"

namespace tw::arith {

// Spans of equal length are added and subtracted by the scalar loops below
// (the portable and AVX2 paths) or by the 512-bit carry-lookahead kernels
// (add_sub_avx512.cpp, the AVX-512 path and wider; frame/kernel_paths.h).

// Whether spans of n limbs take the 512-bit kernels: from kWideAddSubMin on
// the AVX-512 path, from one limb when a test pinned it.
inline bool useWideAddSub(std::size_t n) {
    const KernelChoice choice = kernelChoice();
    return choice.path >= KernelPath::Avx512 && (choice.forced || n >= kWideAddSubMin);
}

// The 512-bit kernels: the contracts of addSameLength and subSameLength,
// called only on the AVX-512 path.
template <class R>
Limb addSameLengthWide(Limb* out, const Limb* a, const Limb* b, std::size_t n, Limb carry);
template <class R>
Limb subSameLengthWide(Limb* out, const Limb* a, const Limb* b, std::size_t n, Limb borrow);

// out[0..n) := a[0..n) + b[0..n) + carryIn; returns the carry (0 or 1).
// out may equal a or b.  Scalar, one limb at a time.
template <class R>
Limb addSameLengthPortable(Limb* out, const Limb* a, const Limb* b, std::size_t n, Limb carry = 0) {
    for (std::size_t i = 0; i < n; ++i) {
        Limb s = a[i] + b[i] + carry;
        carry = s >= R::base;
        out[i] = carry ? s - R::base : s;
    }
    return carry;
}

// out[0..n) := a[0..n) + b[0..n) + carryIn; returns the carry (0 or 1).
// out may equal a or b.
template <class R>
Limb addSameLength(Limb* out, const Limb* a, const Limb* b, std::size_t n, Limb carry = 0) {
    assert(spansSameOrDisjoint(out, n, a, n) && spansSameOrDisjoint(out, n, b, n));
    if (useWideAddSub(n)) return addSameLengthWide<R>(out, a, b, n, carry);
    return addSameLengthPortable<R>(out, a, b, n, carry);
}

// out[0..n) := a[0..n) + carry; returns the carry out.  out may equal a.
template <class R>
Limb addCarry(Limb* out, const Limb* a, std::size_t n, Limb carry) {
    std::size_t i = 0;
    for (; carry && i < n; ++i) {
        Limb s = a[i] + carry;
        carry = s >= R::base;
        out[i] = carry ? s - R::base : s;
    }
    if (out != a)
        for (; i < n; ++i) out[i] = a[i];
    return carry;
}

// out[0..an) := a[0..an) + b[0..bn), an >= bn; returns the carry.  out may equal a or b.
template <class R>
Limb addSpans(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    const Limb carry = addSameLength<R>(out, a, b, bn);
    return addCarry<R>(out + bn, a + bn, an - bn, carry);
}

// out[0..n) := a[0..n) - b[0..n) - borrow; returns the borrow.  out may equal
// a or b.  Scalar, one limb at a time.
template <class R>
Limb subSameLengthPortable(Limb* out, const Limb* a, const Limb* b, std::size_t n, Limb borrow = 0) {
    for (std::size_t i = 0; i < n; ++i) {
        Limb d = a[i] - b[i] - borrow;
        borrow = a[i] < b[i] + borrow;
        out[i] = borrow ? d + R::base : d;
    }
    return borrow;
}

// out[0..n) := a[0..n) - b[0..n) - borrow; returns the borrow.  out may equal a or b.
template <class R>
Limb subSameLength(Limb* out, const Limb* a, const Limb* b, std::size_t n, Limb borrow = 0) {
    assert(spansSameOrDisjoint(out, n, a, n) && spansSameOrDisjoint(out, n, b, n));
    if (useWideAddSub(n)) return subSameLengthWide<R>(out, a, b, n, borrow);
    return subSameLengthPortable<R>(out, a, b, n, borrow);
}

// out[0..n) := a[0..n) - borrow; returns the borrow out.  out may equal a.
template <class R>
Limb subBorrow(Limb* out, const Limb* a, std::size_t n, Limb borrow) {
    std::size_t i = 0;
    for (; borrow && i < n; ++i) {
        borrow = a[i] == 0;
        out[i] = borrow ? R::base - 1 : a[i] - 1;
    }
    if (out != a)
        for (; i < n; ++i) out[i] = a[i];
    return borrow;
}

// out[0..an) := a[0..an) - b[0..bn), an >= bn; returns the borrow (1 when b > a).
template <class R>
Limb subSpans(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    const Limb borrow = subSameLength<R>(out, a, b, bn);
    return subBorrow<R>(out + bn, a + bn, an - bn, borrow);
}

// out[0..n] := a[0..n) * m, m < radix (the top limb out[n] is the carry).
// out may equal a.  One row of the schoolbook method; mulByWord below
// takes any 32-bit m.
template <class R>
void mulByLimb(Limb* out, const Limb* a, std::size_t n, Limb m) {
    using T = MulTraits<R>;
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint64_t t = std::uint64_t(a[i]) * m + carry;
        out[i] = T::low(t);
        carry = T::high(t);
    }
    out[n] = Limb(carry);
}

// out[0..n) := a[0..n) * m + carryIn for any 32-bit m and a carryIn below
// 2^33; returns the carry out, also below 2^33.  out may equal a.  A limb is
// below 2^30, so limb * m + carry < 2^62 + 2^33 stays in 64 bits and the
// split is a 64-bit division by the constant radix (a multiplication).
template <class R>
std::uint64_t mulByWord(Limb* out, const Limb* a, std::size_t n, std::uint32_t m, std::uint64_t carry = 0) {
    static_assert(R::base <= (Limb(1) << 30));
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint64_t t = std::uint64_t(a[i]) * m + carry;
        out[i] = Limb(t % R::base);
        carry = t / R::base;
    }
    return carry;
}

// Writes a carry of any size as limbs at out; returns the number of limbs written.
template <class R>
std::size_t storeCarry(Limb* out, std::uint64_t carry) {
    std::size_t n = 0;
    for (; carry; ++n) {
        out[n] = Limb(carry % R::base);
        carry /= R::base;
    }
    return n;
}

// -1, 0, +1 comparing a[0..n) with b[0..n).
inline int compareSameLength(const Limb* a, const Limb* b, std::size_t n) {
    for (std::size_t i = n; i-- > 0;)
        if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
    return 0;
}

}  // namespace tw::arith
