// Shared checks of the division tests: run a kernel, compare with GMP, and
// make sure nothing is written past the outputs.
#pragma once

#include <gmp.h>
#include <gtest/gtest.h>

#include <string>

#include "arith/kernels/mul_scratch.h"
#include "support/limb_oracle.h"

namespace twtest {

// The scratch arena the division kernels take, shared by the tests of a thread.
inline tw::arith::LimbScratch& divisionScratch() {
    thread_local tw::arith::LimbScratch scratch;
    return scratch;
}

using Radices = ::testing::Types<tw::DecimalRadix, tw::BinaryRadix>;

// Not a limb of either radix, so an output limb left at this value shows.
inline constexpr Limb kSentinel = 0xFFFFFFFFu;

template <class R>
::testing::AssertionResult limbsInRange(const Limb* x, std::size_t n, const char* what) {
    for (std::size_t i = 0; i < n; ++i)
        if (x[i] >= R::base) return ::testing::AssertionFailure() << what << " limb " << i << " is " << x[i];
    return ::testing::AssertionSuccess();
}

// q[0..qn) and r[0..rn) (r may be null) hold a div b and a mod b, and the
// limb after each still holds kSentinel.
template <class R>
::testing::AssertionResult matchesGmp(const Limbs& a, const Limbs& b, const Limb* q, std::size_t qn, const Limb* r) {
    const std::size_t rn = b.size();
    if (q[qn] != kSentinel) return ::testing::AssertionFailure() << "write past the quotient";
    if (r && r[rn] != kSentinel) return ::testing::AssertionFailure() << "write past the remainder";
    if (auto ok = limbsInRange<R>(q, qn, "quotient"); !ok) return ok;
    if (r)
        if (auto ok = limbsInRange<R>(r, rn, "remainder"); !ok) return ok;
    const Mpz av = toMpz<R>(a), bv = toMpz<R>(b);
    Mpz eq, er, gq, gr;
    mpz_tdiv_qr(eq, er, av, bv);
    limbsToMpz<R>(gq.v, q, qn);
    if (mpz_cmp(gq, eq) != 0)
        return ::testing::AssertionFailure() << "quotient of " << a.size() << " by " << b.size() << " limbs: got "
                                             << gq.str(16) << " want " << eq.str(16);
    if (r) {
        limbsToMpz<R>(gr.v, r, rn);
        if (mpz_cmp(gr, er) != 0)
            return ::testing::AssertionFailure() << "remainder of " << a.size() << " by " << b.size()
                                                 << " limbs: got " << gr.str(16) << " want " << er.str(16);
    }
    return ::testing::AssertionSuccess();
}

// Limbs of v >= 0, padded with zero limbs to at least n; through GMP's text,
// so that it stays linear for long values.
template <class R>
Limbs limbsOf(mpz_srcptr v, std::size_t n = 1) {
    const int base = R::isBinary ? 16 : 10;
    const std::size_t digitsPerLimb = R::isBinary ? 7 : 9;
    std::string text(mpz_sizeinbase(v, base) + 2, '\0');
    mpz_get_str(text.data(), base, v);
    text.resize(std::char_traits<char>::length(text.c_str()));
    Limbs out;
    for (std::size_t end = text.size(); end > 0;) {
        const std::size_t start = end > digitsPerLimb ? end - digitsPerLimb : 0;
        out.push_back(Limb(std::stoul(text.substr(start, end - start), nullptr, base)));
        end = start;
    }
    while (out.size() > 1 && out.back() == 0) out.pop_back();
    if (out.size() < n) out.resize(n, 0);
    return out;
}

// The limbs of q * b + delta (delta >= -q * b).
template <class R>
Limbs multiplePlus(const Limbs& q, const Limbs& b, mpz_srcptr delta) {
    Mpz v;
    mpz_mul(v, toMpz<R>(q), toMpz<R>(b));
    mpz_add(v, v, delta);
    return limbsOf<R>(v);
}

// The offset from a multiple of b that case i of a correction test takes:
// -1 and 0 and +1 around the multiple, and b - 1 (the largest remainder).
template <class R>
void setCorrectionDelta(mpz_t delta, std::size_t i, const Limbs& b) {
    switch (i % 4) {
        case 0: mpz_set_si(delta, -1); break;
        case 1: mpz_set_si(delta, 0); break;
        case 2: mpz_set_si(delta, 1); break;
        default: mpz_sub_ui(delta, toMpz<R>(b), 1); break;
    }
}

// floor(radix^(dn+n) / D) + shift, as n + 2 limbs: a reciprocal of precision
// n anywhere in (or at the ends of) its contract.
template <class R>
Limbs shiftedReciprocal(const Limbs& d, std::size_t n, long shift) {
    Mpz power, f;
    mpz_ui_pow_ui(power, R::base, d.size() + n);
    mpz_fdiv_q(f, power, toMpz<R>(d));
    if (shift >= 0)
        mpz_add_ui(f, f, (unsigned long)shift);
    else
        mpz_sub_ui(f, f, (unsigned long)-shift);
    return limbsOf<R>(f, n + 2);
}

}  // namespace twtest
