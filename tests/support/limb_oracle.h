// Test support: limb vectors in either radix, their GMP values, and operand
// generators that favour the hard cases (runs of zero and maximal limbs,
// zero limbs at the bottom).
#pragma once

#include <gmp.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "frame/radix.h"
#include "frame/signed_number.h"

namespace twtest {

using tw::Limb;
using Limbs = std::vector<Limb>;

// RAII mpz.
struct Mpz {
    mpz_t v;
    Mpz() { mpz_init(v); }
    explicit Mpz(const char* decimal) { mpz_init_set_str(v, decimal, 10); }
    Mpz(const Mpz& o) { mpz_init_set(v, o.v); }
    Mpz& operator=(const Mpz& o) { mpz_set(v, o.v); return *this; }
    ~Mpz() { mpz_clear(v); }
    operator mpz_ptr() { return v; }
    operator mpz_srcptr() const { return v; }
    // GMP's macro forms (mpz_sgn, mpz_cmp_ui) dereference their argument.
    __mpz_struct* operator->() { return v; }
    const __mpz_struct* operator->() const { return v; }
    std::string str(int base = 10) const {
        std::string s(mpz_sizeinbase(v, base) + 2, '\0');
        mpz_get_str(s.data(), base, v);
        s.resize(std::char_traits<char>::length(s.c_str()));
        return s;
    }
};

// The value of limbs[0..n) in radix R.
template <class R>
void limbsToMpz(mpz_t out, const Limb* limbs, std::size_t n) {
    if constexpr (R::isBinary) {
        // Seven hexadecimal digits a 28-bit limb: building the text keeps this linear.
        std::string s;
        s.reserve(n * 7 + 1);
        char buf[16];
        for (std::size_t i = n; i-- > 0;) {
            std::snprintf(buf, sizeof buf, "%07x", limbs[i]);
            s += buf;
        }
        if (s.empty()) s = "0";
        mpz_set_str(out, s.c_str(), 16);
    } else {
        // Nine decimal digits a limb: build the decimal text.
        std::string s;
        s.reserve(n * 9 + 1);
        char buf[16];
        bool started = false;
        for (std::size_t i = n; i-- > 0;) {
            if (!started) {
                if (limbs[i] == 0 && i > 0) continue;
                std::snprintf(buf, sizeof buf, "%u", limbs[i]);
                started = true;
            } else {
                std::snprintf(buf, sizeof buf, "%09u", limbs[i]);
            }
            s += buf;
        }
        if (s.empty()) s = "0";
        mpz_set_str(out, s.c_str(), 10);
    }
}
template <class R>
Mpz toMpz(const Limbs& limbs) {
    Mpz m;
    limbsToMpz<R>(m.v, limbs.data(), limbs.size());
    return m;
}

// Limbs of |v| in radix R (at least one limb).
template <class R>
Limbs mpzToLimbs(mpz_srcptr v) {
    Mpz a;
    mpz_abs(a.v, v);
    Limbs out;
    while (mpz_sgn(a.v) != 0) {
        out.push_back(Limb(mpz_fdiv_q_ui(a.v, a.v, R::base)));
    }
    if (out.empty()) out.push_back(0);
    return out;
}

// The signed value of a number object.
template <class R>
Mpz numberToMpz(const tw::SignedNumber<R>& x) {
    Mpz m;
    limbsToMpz<R>(m.v, x.limbs(), x.rec().topIndex + 1);
    if (x.sign < 0) mpz_neg(m.v, m.v);
    return m;
}

// Sets a number object from an mpz value (sign included).
template <class R>
void setNumberFromMpz(tw::SignedNumber<R>& x, mpz_srcptr v) {
    const Limbs limbs = mpzToLimbs<R>(v);
    tw::NumberRecord& rec = x.rec();
    tw::dropTextBuffers(rec);
    tw::resizeStorage(rec, std::uint32_t(limbs.size()), true);
    std::copy(limbs.begin(), limbs.end(), rec.digits);
    tw::normalizeIndices(rec, std::uint32_t(limbs.size()));
    x.sign = mpz_sgn(v);
}

// True when the record satisfies every invariant of a public number.
template <class R>
::testing::AssertionResult recordIsNormal(const tw::SignedNumber<R>& x) {
    const tw::NumberRecord& r = x.rec();
    if (r.allocated() < 3) return ::testing::AssertionFailure() << "fewer than 3 limbs";
    for (std::size_t i = 0; i < r.allocated(); ++i)
        if (r.digits[i] >= R::base) return ::testing::AssertionFailure() << "limb " << i << " out of range";
    for (std::size_t i = r.topIndex + 1; i < r.allocated(); ++i)
        if (r.digits[i] != 0) return ::testing::AssertionFailure() << "non-zero limb above top at " << i;
    if (r.digits[r.topIndex] == 0) {
        if (r.topIndex != 0 || r.lowIndex != 0) return ::testing::AssertionFailure() << "zero with indices";
        if (x.sign != 0) return ::testing::AssertionFailure() << "zero with sign " << x.sign;
        return ::testing::AssertionSuccess();
    }
    if (x.sign != 1 && x.sign != -1) return ::testing::AssertionFailure() << "bad sign " << x.sign;
    if (r.digits[r.lowIndex] == 0) return ::testing::AssertionFailure() << "lowIndex limb is zero";
    for (std::size_t i = 0; i < r.lowIndex; ++i)
        if (r.digits[i] != 0) return ::testing::AssertionFailure() << "non-zero limb below lowIndex";
    return ::testing::AssertionSuccess();
}

// Random operands, reproducible from a fixed seed.
class LimbGenerator {
public:
    explicit LimbGenerator(std::uint64_t seed) : rng_(seed) {}

    std::uint64_t next() { return rng_(); }
    std::size_t below(std::size_t n) { return std::size_t(rng_() % n); }

    // n limbs in radix R with a non-zero top limb.  Mixes uniform limbs with
    // runs of zero and maximal limbs, and sometimes zero limbs at the bottom.
    template <class R>
    Limbs limbs(std::size_t n) {
        Limbs v(n);
        const unsigned style = unsigned(rng_() % 4);
        for (std::size_t i = 0; i < n; ++i) {
            switch (style) {
                case 0: v[i] = Limb(rng_() % R::base); break;                      // uniform
                case 1: v[i] = (rng_() % 4 == 0) ? Limb(rng_() % R::base) : R::base - 1; break;  // mostly max
                case 2: v[i] = (rng_() % 4 == 0) ? Limb(rng_() % R::base) : 0; break;  // mostly zero
                default: v[i] = (i / 7 % 2) ? R::base - 1 : Limb(rng_() % R::base); break;  // runs
            }
        }
        if (n > 4 && rng_() % 4 == 0) {
            const std::size_t zeros = below(n / 2);
            for (std::size_t i = 0; i < zeros; ++i) v[i] = 0;
        }
        if (v[n - 1] == 0) v[n - 1] = 1 + Limb(rng_() % (R::base - 1));
        return v;
    }

    // All limbs maximal: the largest carries.
    template <class R>
    static Limbs maxLimbs(std::size_t n) { return Limbs(n, R::base - 1); }

private:
    std::mt19937_64 rng_;
};

}  // namespace twtest
