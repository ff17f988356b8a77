// Modular arithmetic of numbers: powers by left-to-right sliding windows
// (binary numbers; decimal ones are converted): odd moduli on the 52-bit
// lanes or 64-bit words of word_power.h up to their limits, above them in
// Montgomery form on the limbs of montgomery.h; an even m = 2^k o splits into
// low limbs modulo 2^k and a power modulo o, joined by the CRT.  Products
// modulo a number, inverses by the extended GCD, and the lowest decimal
// digits of a decimal number.  Results are built
// apart and moved in, so any handle may be any operand.  A zero modulus
// records -5 and leaves the result alone; a raised terminate flag makes the
// result zero.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "arith/kernels/divide_by_limb.h"
#include "arith/numbers/signed_add.h"
#include "arith/numbers/signed_div.h"
#include "arith/numbers/signed_mul.h"
#include "arith/numbers/shifts.h"
#include "arith/convert/digit_conversion.h"
#include "arith/tuning.h"
#include "frame/kernel_paths.h"
#include "frame/machine_int.h"
#include "frame/signed_number.h"
#include "numtheory/gcd.h"
#include "numtheory/montgomery.h"
#include "numtheory/ring_power.h"
#include "numtheory/word_modular.h"
#include "numtheory/word_power.h"

namespace tw::numtheory {

template <class R>
void powModMagnitude(SignedNumber<R>& res, const NumberRecord& base, const NumberRecord& e, const NumberRecord& m);
template <class R>
void invertModInto(SignedNumber<R>& r, const SignedNumber<R>& a, const SignedNumber<R>& m);

// res := |base|^|e| mod m for the binary radix and an even m = 2^k o, o odd,
// e non-zero: x2 = base^e mod 2^k on the low limbs, x1 = base^e mod o in
// Montgomery form, joined by x = x1 + o ((x2 - x1) o^-1 mod 2^k), below m.
template <class R>
void powModEvenBinary(SignedNumber<R>& res, const NumberRecord& base, const NumberRecord& e, const NumberRecord& m) {
    const std::uint32_t k = R::bitsPerLimb * m.lowIndex + unsigned(__builtin_ctz(m.digits[m.lowIndex]));
    LowBitsRing<R> ring(k);
    const std::size_t n = ring.size();
    std::vector<Limb> b(n), acc(n);
    std::copy(base.digits, base.digits + std::min<std::size_t>(n, base.topIndex + 1), b.begin());
    b[n - 1] &= ring.topMask();
    SignedNumber<R> x2, x1, o, twoK = arith::powerOfTwo<R>(k), inverse;
    if (std::any_of(b.begin(), b.end(), [](Limb x) { return x != 0; })) {
        if (!ringPower(ring, acc.data(), b.data(), bitChunks<R>(e))) return res.setZero();
        setMagnitudeFromLimbs(x2, acc.data(), n, 0);
    }
    o.rec() = m;
    o.sign = 1;
    arith::bitShiftRight(o, k);
    if (o.rec().topIndex == 0 && o.limb(0) == 1) return res.swap(x2);
    powModMagnitude(x1, base, e, o.rec());
    invertModInto(inverse, o, twoK);
    arith::subtractInPlace(x2, x1);  // h = (x2 - x1) o^-1 mod 2^k, then x1 + o h
    arith::multiplyInto(x2, x2, inverse);
    arith::remainder(x2, x2, twoK);
    if (x2.sign < 0) arith::addInPlace(x2, twoK);
    arith::multiplyInto(x2, x2, o);
    arith::addInPlace(x2, x1);
    res.swap(x2);
}

// res := |base|^|e| mod |m| for decimal numbers by way of binary ones: the
// conversions cost far less than the power, and the binary radix has
// Montgomery reduction on words for every odd modulus and the split of the
// even ones, where the decimal radix would divide for moduli with a factor
// 2 or 5.
inline void powModThroughBinary(DecimalNumber& res, const NumberRecord& base, const NumberRecord& e,
                                const NumberRecord& m) {
    BinaryNumber b, x, mod, out;
    const auto toBinary = [](BinaryNumber& to, const NumberRecord& from) {
        setFromDigits<BinaryRadix>(to.rec(), DecimalRadix::base, from.digits, from.topIndex + 1);
        to.sign = 1;
        to.normalizeSign();
    };
    toBinary(b, base), toBinary(x, e), toBinary(mod, m);
    powModMagnitude(out, b.rec(), x.rec(), mod.rec());
    setFromDigits<DecimalRadix>(res.rec(), BinaryRadix::base, out.limbs(), out.rec().topIndex + 1);
    res.sign = 1;
    res.normalizeSign();
}

// res := |base|^|e| mod |m| (>= 0) for a non-zero m; |b|^0 = 1 mod |m|.
template <class R>
void powModMagnitude(SignedNumber<R>& res, const NumberRecord& base, const NumberRecord& e, const NumberRecord& m) {
    const std::size_t n = m.topIndex + 1;
    if (n == 1 && m.digits[0] == 1) {
        res.setZero();
        return;
    }
    if (e.isZero()) {
        setU64(res, 1);
        return;
    }
    if constexpr (R::isBinary) {
        if ((m.digits[0] & 1) == 0) return powModEvenBinary(res, base, e, m);
        const std::size_t bits = R::bitsPerLimb * (n - 1) + bitLength32(m.digits[n - 1]);
        const KernelChoice choice = kernelChoice();
        const bool lanes = choice.path == KernelPath::Ifma && IfmaMontgomeryRing::takes(bits) &&
                           (choice.forced || bits >= kIfmaMontgomeryMinBits);
        if (lanes || bits <= kWordMontgomeryMaxBits) {
            const std::vector<std::uint32_t> chunks = bitChunks<R>(e);
            if (!(lanes ? powModOddOnWords<IfmaMontgomeryRing>(res, base, chunks, m)
                        : powModOddOnWords<WordMontgomeryRing>(res, base, chunks, m)))
                res.setZero();
            return;
        }
    } else {
        return powModThroughBinary(res, base, e, m);
    }
    ModRing<R> ring(m.digits, n);
    std::vector<Limb> b(n), acc(n), out(n);
    ring.enter(b.data(), base.digits, base.topIndex + 1);
    if (std::all_of(b.begin(), b.end(), [](Limb x) { return x == 0; })) {
        res.setZero();
        return;
    }
    if (!ringPower(ring, acc.data(), b.data(), bitChunks<R>(e))) {
        res.setZero();
        return;
    }
    ring.leave(out.data(), acc.data());
    setMagnitudeFromLimbs(res, out.data(), n, 0);
}

// r := the inverse of a modulo |m| in [0, |m|); 0 when there is none and for
// |m| = 1.  Zero m: -5, r unchanged.
template <class R>
void invertModInto(SignedNumber<R>& r, const SignedNumber<R>& a, const SignedNumber<R>& m) {
    if (m.isZero()) {
        setLastError(kErrDivZero);
        return;
    }
    SignedNumber<R> mod = m, res;
    mod.sign = 1;
    const bool unit = mod.rec().topIndex == 0 && mod.limb(0) == 1;
    if (!unit && !terminateRequested()) {
        SignedNumber<R> reduced, g, x, y;
        arith::remainder(reduced, a, mod);
        if (reduced.sign < 0) arith::addInPlace(reduced, mod);
        if (!reduced.isZero()) {
            extendedGcdInto(g, x, y, reduced, mod);
            if (g.rec().topIndex == 0 && g.limb(0) == 1 && g.sign == 1) {
                arith::remainder(res, x, mod);
                if (res.sign < 0) arith::addInPlace(res, mod);
            }
        }
    }
    if (terminateRequested()) res.setZero();
    r.swap(res);
}

// r := base^e mod m: |base|^|e| mod |m|, negative for a negative base and an
// odd e; a negative e then takes the inverse of that modulo m.
template <class R>
void powModInto(SignedNumber<R>& r, const SignedNumber<R>& base, const SignedNumber<R>& e, const SignedNumber<R>& m) {
    if (m.isZero()) {
        setLastError(kErrDivZero);
        return;
    }
    SignedNumber<R> res;
    if (!terminateRequested()) {
        powModMagnitude(res, base.rec(), e.rec(), m.rec());
        if (base.sign < 0 && (e.limb(0) & 1)) res.negate();
        if (e.sign < 0) invertModInto(res, res, m);
    }
    if (terminateRequested()) res.setZero();
    r.swap(res);
}

// r := a b mod m, truncated (the sign of a b).
template <class R>
void mulModInto(SignedNumber<R>& r, const SignedNumber<R>& a, const SignedNumber<R>& b, const SignedNumber<R>& m) {
    if (m.isZero()) {
        setLastError(kErrDivZero);
        return;
    }
    SignedNumber<R> product, res;
    arith::multiplyInto(product, a, b);
    arith::remainder(res, product, m);
    if (terminateRequested()) res.setZero();
    r.swap(res);
}

// base^|e| mod modulus for machine words; a negative e then takes the inverse
// by invertModWord (modulus 1 gives 1 there).  Modulus 0: -5 and 0.
template <class R>
std::uint32_t powModWords(std::uint32_t base, const SignedNumber<R>& e, std::uint32_t modulus) {
    if (modulus == 0) {
        setLastError(kErrDivZero);
        return 0;
    }
    const std::vector<std::uint32_t> chunks = bitChunks<R>(e.rec());
    const std::uint64_t b = base % modulus;
    std::uint64_t acc = 1 % modulus;
    for (std::size_t c = chunks.size(); c-- > 0;) {
        if (terminateRequested()) return 0;
        for (int i = kChunkBits - 1; i >= 0; --i) {
            acc = acc * acc % modulus;
            if ((chunks[c] >> i) & 1) acc = acc * b % modulus;
        }
    }
    if (terminateRequested()) return 0;
    return e.sign < 0 ? invertModWord(std::uint32_t(acc), modulus) : std::uint32_t(acc);
}

// x := x mod 10^n truncated (x's sign): the lowest n decimal digits.
inline void keepLowDecimalDigits(DecimalNumber& x, std::uint32_t n) {
    NumberRecord& rec = x.rec();
    const std::uint32_t whole = n / 9, rest = n % 9;
    if (whole > rec.topIndex) return;
    dropTextBuffers(rec);
    rec.digits[whole] = rest ? rec.digits[whole] % kPowersOfTen[rest] : 0;
    std::fill(rec.digits + whole + 1, rec.digits + rec.topIndex + 1, 0);
    normalizeIndices(rec, whole + 1);
    x.normalizeSign();
}

}  // namespace tw::numtheory
