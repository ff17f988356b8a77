// Arithmetic modulo one transform prime on every lane of a register type V
// (lanes_scalar.h, lanes_avx2.h, lanes_avx512.h).  Residues are kept in
// [0, p): with p < 2^31 a sum of two residues and a difference shifted by p
// stay below 2^32, and one conditional subtraction, done as an unsigned
// minimum, brings them back.  (Keeping residues lazily in [0, 2p) would need
// 4p < 2^32, which two of the three primes break.)
#pragma once

#include <cstdint>

#include "arith/kernels/ntt/prime_field.h"

namespace tw::arith::ntt {

template <class V>
struct LaneField {
    using Reg = typename V::Reg;
    Reg p;
    Reg pinv;  // p^-1 mod 2^32

    explicit LaneField(const PrimeConstants& c) : p(V::broadcast(c.p)), pinv(V::broadcast(c.pinv)) {}

    // [0, 2p) -> [0, p): x - p wraps above p exactly when x < p.
    Reg reduce(Reg x) const { return V::minu(x, V::sub(x, p)); }
    Reg add(Reg a, Reg b) const { return reduce(V::add(a, b)); }
    // a - b + p in (0, 2p) for a, b in [0, p).
    Reg subLazy(Reg a, Reg b) const { return V::add(V::sub(a, b), p); }
    Reg sub(Reg a, Reg b) const { return reduce(subLazy(a, b)); }

    // Shoup product x * w mod p in [0, 2p), any 32-bit x, w < p with companion
    // ws: the quotient estimate floor(x ws / 2^32) falls short of floor(x w / p)
    // by at most one, so the remainder, taken modulo 2^32, is below 2p < 2^32.
    Reg mulShoupLazy(Reg x, Reg w, Reg ws) const {
        return V::sub(V::mullo(x, w), V::mullo(V::mulhi(x, ws), p));
    }
    Reg mulShoup(Reg x, Reg w, Reg ws) const { return reduce(mulShoupLazy(x, w, ws)); }

    // Signed Montgomery product a * b / 2^32 mod p in [0, p) for a * b < 2^32 p.
    // m = ab p^-1 makes ab - mp divisible by 2^32, so its high word is the
    // difference of the high words, in (-p, p); adding p fixes a negative one.
    Reg mulMontgomery(Reg a, Reg b) const {
        Reg hi, lo;
        V::mulWide(a, b, hi, lo);
        const Reg r = V::sub(hi, V::mulhi(V::mullo(lo, pinv), p));
        return V::minu(r, V::add(r, p));
    }
};

}  // namespace tw::arith::ntt
