// Test oracle for the conversion tests: digit vectors of any radix and limb
// records of either radix against GMP values, fast enough for vectors of a
// million digits.  Built from GMP's own operations only (set_str / get_str,
// import / export with nail bits, and a divide-and-conquer over mpz powers),
// so it shares no code with the library's conversion engine.
#pragma once

#include <gmp.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "arith/numbers/magnitude.h"
#include "frame/signed_number.h"
#include "support/limb_oracle.h"

namespace twtest {

using Digits = std::vector<std::uint32_t>;

namespace oracle_detail {

inline void powerOf(mpz_t out, std::uint32_t radix, std::size_t e) {
    if (radix == 0) {
        mpz_set_ui(out, 0);
        mpz_setbit(out, 32 * e);
    } else {
        mpz_ui_pow_ui(out, radix, e);
    }
}

inline void join(mpz_t out, const std::uint32_t* d, std::size_t n, std::uint32_t radix) {
    if (n <= 64) {
        mpz_set_ui(out, 0);
        for (std::size_t i = n; i-- > 0;) {
            if (radix == 0)
                mpz_mul_2exp(out, out, 32);
            else
                mpz_mul_ui(out, out, radix);
            mpz_add_ui(out, out, d[i]);
        }
        return;
    }
    const std::size_t h = n / 2;
    Mpz high, power;
    join(high.v, d + h, n - h, radix);
    join(out, d, h, radix);
    powerOf(power.v, radix, h);
    mpz_addmul(out, high.v, power.v);
}

// out[0..n) := the n lowest digits of v (v < radix^n).
inline void split(std::uint32_t* out, std::size_t n, mpz_srcptr v, std::uint32_t radix) {
    if (n <= 64) {
        Mpz a;
        mpz_set(a.v, v);
        for (std::size_t i = 0; i < n; ++i) {
            if (radix == 0) {
                out[i] = std::uint32_t(mpz_getlimbn(a.v, 0));
                mpz_fdiv_q_2exp(a.v, a.v, 32);
            } else {
                out[i] = std::uint32_t(mpz_fdiv_q_ui(a.v, a.v, radix));
            }
        }
        return;
    }
    const std::size_t h = n / 2;
    Mpz q, r, power;
    powerOf(power.v, radix, h);
    mpz_fdiv_qr(q.v, r.v, v, power.v);
    split(out, h, r.v, radix);
    split(out + h, n - h, q.v, radix);
}

}  // namespace oracle_detail

// The value of digits in `radix` (0 = 2^32), least significant first.
inline Mpz digitsToMpz(const Digits& digits, std::uint32_t radix) {
    Mpz m;
    oracle_detail::join(m.v, digits.data(), digits.size(), radix);
    return m;
}

// The digits of |v| in `radix`, least significant first, none for zero.
inline Digits mpzToDigits(mpz_srcptr v, std::uint32_t radix) {
    Mpz a;
    mpz_abs(a.v, v);
    std::size_t n = 1;
    if (mpz_sgn(a.v) != 0) {
        // An upper bound on the digit count; the top zeros are dropped below.
        const double bits = double(mpz_sizeinbase(a.v, 2));
        n = std::size_t(bits / (radix == 0 ? 32.0 : std::log2(double(radix)))) + 2;
    }
    Digits out(n);
    oracle_detail::split(out.data(), n, a.v, radix);
    while (!out.empty() && out.back() == 0) out.pop_back();
    return out;
}

// The magnitude of a record of radix R, and a record holding |v|.
template <class R>
Mpz recordToMpz(const tw::NumberRecord& x) {
    Mpz m;
    const std::size_t n = x.topIndex + 1;
    if constexpr (R::isBinary)
        mpz_import(m.v, n, -1, sizeof(Limb), 0, 32 - R::bitsPerLimb, x.digits);
    else
        limbsToMpz<R>(m.v, x.digits, n);
    return m;
}

template <class R>
Limbs mpzToRecordLimbs(mpz_srcptr v) {
    Limbs out;
    if (mpz_sgn(v) == 0) return Limbs{0};
    if constexpr (R::isBinary) {
        out.resize(mpz_sizeinbase(v, 2) / R::bitsPerLimb + 2);
        std::size_t n = 0;
        mpz_export(out.data(), &n, -1, sizeof(Limb), 0, 32 - R::bitsPerLimb, v);
        out.resize(n);
    } else {
        std::string s(mpz_sizeinbase(v, 10) + 2, '\0');
        mpz_get_str(s.data(), 10, v);
        s.resize(std::strlen(s.c_str()));
        if (s[0] == '-') s.erase(0, 1);
        for (std::size_t end = s.size(); end > 0;) {
            const std::size_t begin = end >= 9 ? end - 9 : 0;
            out.push_back(Limb(std::stoul(s.substr(begin, end - begin))));
            end = begin;
        }
    }
    return out;
}

// Sets a number object to v (sign included).
template <class R>
void setFromMpz(tw::SignedNumber<R>& x, mpz_srcptr v) {
    const Limbs limbs = mpzToRecordLimbs<R>(v);
    tw::NumberRecord fresh;
    tw::arith::prepareResult(fresh, limbs.size());
    std::copy(limbs.begin(), limbs.end(), fresh.digits);
    tw::arith::installResult(x.rec(), std::move(fresh), limbs.size());
    x.sign = mpz_sgn(v);
}

// The signed value of a number object.
template <class R>
Mpz valueOf(const tw::SignedNumber<R>& x) {
    Mpz m = recordToMpz<R>(x.rec());
    if (x.sign < 0) mpz_neg(m.v, m.v);
    return m;
}

// Random digits below the radix (0 = 2^32): uniform, mostly maximal or mostly zero.
inline Digits randomDigits(LimbGenerator& gen, std::uint32_t radix, std::size_t n) {
    const std::uint64_t r = radix == 0 ? std::uint64_t(1) << 32 : radix;
    const unsigned style = unsigned(gen.below(3));
    Digits d(n);
    for (auto& x : d) {
        const std::uint64_t u = gen.next() % r;
        x = std::uint32_t(style == 0 ? u : style == 1 ? (gen.below(4) ? r - 1 : u) : (gen.below(4) ? 0 : u));
    }
    return d;
}

}  // namespace twtest
