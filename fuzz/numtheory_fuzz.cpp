// Number theory of both types against GMP, or against identities where GMP
// has no twin: GCD, LCM, the extended GCD's cofactors, modular powers,
// products and inverses, roots with remainder, logarithms, rounding to
// leading digits, the lowest digits, primality where the answer is certain,
// prime search, and the 32-bit services.
//
// Input: steps of an operation byte (bit 0 the type) and its operands, each
// drawn at bit lengths where the library changes method.
#include <cmath>

#include "fuzz_support.h"

using namespace twfuzz;

namespace {

// Steps end after kMaxSteps or once the bits of their first operands add up
// to kBudgetBits: an input of long operands runs a few steps only.
constexpr int kMaxSteps = 24;
constexpr std::size_t kBudgetBits = 60000;

std::size_t bitsOf(mpz_srcptr v) { return mpz_sgn(v) ? mpz_sizeinbase(v, 2) : 0; }

// An operand of a length in bits near where a method changes: word and
// Montgomery bounds, the half-GCD's, or small; random bits or long runs.
void drawOperand(Bytes& in, gmp_randstate_t rs, mpz_ptr out, bool allowNegative = true) {
    static constexpr unsigned long kBits[] = {1,    2,    3,    31,   32,   33,   63,   64,   65,   127,  128,
                                              200,  335,  336,  337,  1000, 2559, 2560, 2561, 4000, 8191, 8192,
                                              8193, 12000, 16638, 16639, 20000};
    const std::uint8_t b = in.u8();
    unsigned long bits = b < 96 ? b % 24 : kBits[b % std::size(kBits)];
    if (bits > 3) bits -= in.u8() % 3;
    gmp_randseed_ui(rs, in.u16());
    if (bits == 0) mpz_set_ui(out, 0);
    else if (b & 1) mpz_rrandomb(out, rs, bits);  // long runs of ones and zeros
    else mpz_urandomb(out, rs, bits), mpz_setbit(out, bits - 1);
    if (allowNegative && in.u8() & 1) mpz_neg(out, out);
}

template <class F>
struct Numbers {
    typename F::H a = F::create(), b = F::create(), m = F::create(), r = F::create(), s = F::create(),
                  t = F::create();
};

template <class F>
Numbers<F>& numbers() {
    static Numbers<F> n;
    return n;
}

template <class F>
void set(typename F::H h, mpz_srcptr v) {
    F::set_strA(h, F::text(v).c_str());
}

// floor(log_base |a|) by GMP: an estimate from the lengths, then corrected.
unsigned long floorLog(mpz_srcptr a, mpz_srcptr base) {
    Mpz x, y, p;
    mpz_abs(x, a), mpz_abs(y, base);
    long ea, eb;
    const double la = std::log2(mpz_get_d_2exp(&ea, x)) + double(ea), lb = std::log2(mpz_get_d_2exp(&eb, y)) + double(eb);
    unsigned long k = (unsigned long)std::max(0.0, std::floor(la / lb) - 1);
    mpz_pow_ui(p, y, k);
    while (mpz_cmp(p, x) > 0) mpz_tdiv_q(p, p, y), --k;
    for (mpz_mul(p, p, y); mpz_cmp(p, x) <= 0; mpz_mul(p, p, y)) ++k;
    return k;
}

// Keeps the n leading digits (decimal for HI_, bits for HX_) of x, the
// rest rounded by `round` (0 toward minus infinity, 1 toward zero, 2 toward plus).
void leadingDigits(mpz_ptr x, unsigned long n, int round, bool binary) {
    Mpz t, p;
    mpz_abs(t, x);
    const std::size_t length = binary ? bitsOf(t) : (mpz_sgn(t) ? t.str(10).size() : 1);
    if (n == 0 || n >= length) return;
    if (binary) mpz_setbit(p, length - n);
    else mpz_ui_pow_ui(p, 10, length - n);
    if (round == 0) mpz_fdiv_q(x, x, p);
    if (round == 1) mpz_tdiv_q(x, x, p);
    if (round == 2) mpz_cdiv_q(x, x, p);
    mpz_mul(x, x, p);
}

// One step; returns the bits of its first operand.
template <class F>
std::size_t step(Bytes& in, gmp_randstate_t rs, unsigned op) {
    auto& n = numbers<F>();
    Mpz a, b, m, w, x, y;
    drawOperand(in, rs, a);
    const std::size_t cost = bitsOf(a);
    set<F>(n.a, a);
    switch (op) {
    case 0: {  // gcd, lcm, the extended GCD
        drawOperand(in, rs, b);
        set<F>(n.b, b);
        F::gcd(n.r, n.a, n.b), mpz_gcd(w, a, b);
        expectValue<F>(n.r, w, "gcd");
        F::lcm(n.r, n.a, n.b), mpz_lcm(w, a, b);
        expectValue<F>(n.r, w, "lcm");
        F::gcdEx(n.r, n.s, n.t, n.a, n.b), mpz_gcd(w, a, b);
        expectValue<F>(n.r, w, "gcdEx gcd");
        valueOf<F>(n.s, x), valueOf<F>(n.t, y);
        mpz_mul(x, x, a), mpz_addmul(x, y, b);
        if (mpz_cmp(x, w) != 0) fail("gcdEx: a*x + b*y", x.str(10), w.str(10));
        F::gcd(n.a, n.a, n.a), mpz_abs(w, a);
        expectValue<F>(n.a, w, "gcd(a, a) in place");
        break;
    }
    case 1: {  // modular power, three forms
        drawOperand(in, rs, b);
        drawOperand(in, rs, m);
        // The exponent short enough that one power of the longest modulus stays fast.
        mpz_tdiv_r_2exp(b, b, bitsOf(m) > 9000 ? 12 : bitsOf(m) > 4000 ? 64 : 300);
        set<F>(n.b, b), set<F>(n.m, m);
        F::set_s64(n.r, 77);
        F::powMod(n.r, n.a, n.b, n.m);
        if (mpz_sgn(m) == 0) {
            expectError(TW_ERR_DIV_ZERO, "powMod by zero");
            mpz_set_ui(w, 77);
            expectValue<F>(n.r, w, "powMod by zero leaves the result");
            return cost;
        }
        mpz_abs(m, m), mpz_abs(x, a), mpz_abs(y, b);
        mpz_powm(w, x, y, m);
        if (mpz_sgn(a) < 0 && mpz_odd_p(y)) mpz_neg(w, w);
        if (mpz_sgn(b) < 0 && (mpz_cmp_ui(m, 1) == 0 || !mpz_invert(w, w, m))) mpz_set_ui(w, 0);
        expectValue<F>(n.r, w, "powMod");
        const std::uint32_t base = in.u32();
        F::powMod_u32(n.r, base, n.b, n.m);
        mpz_set_ui(x, base);
        mpz_powm(w, x, y, m);
        if (mpz_sgn(b) < 0 && (mpz_cmp_ui(m, 1) == 0 || !mpz_invert(w, w, m))) mpz_set_ui(w, 0);
        expectValue<F>(n.r, w, "powMod_u32");
        const std::uint32_t modulus = in.u32() | 1;
        const std::uint32_t got = F::powMod_u32_u32(base, n.b, modulus);
        mpz_set_ui(m, modulus);
        mpz_powm(w, x, y, m);
        if (mpz_sgn(b) < 0 && (modulus == 1 ? (mpz_set_ui(w, 1), false) : !mpz_invert(w, w, m))) mpz_set_ui(w, 0);
        if (mpz_get_ui(w) != got) fail("powMod_u32_u32", std::to_string(got), w.str(10));
        break;
    }
    case 2: {  // modular product and inverse
        drawOperand(in, rs, b);
        drawOperand(in, rs, m);
        set<F>(n.b, b), set<F>(n.m, m);
        F::mulMod(n.r, n.a, n.b, n.m);
        if (mpz_sgn(m) == 0) {
            expectError(TW_ERR_DIV_ZERO, "mulMod by zero");
            break;
        }
        mpz_mul(w, a, b), mpz_tdiv_r(w, w, m);
        expectValue<F>(n.r, w, "mulMod");
        F::invertMod(n.r, n.a, n.m);
        if (mpz_cmpabs_ui(m, 1) <= 0 || !mpz_invert(w, a, m)) mpz_set_ui(w, 0);
        expectValue<F>(n.r, w, "invertMod");
        const std::uint32_t small = in.u32();
        F::invertMod_u32(n.r, small, n.m);
        mpz_set_ui(x, small);
        if (mpz_cmpabs_ui(m, 1) <= 0 || !mpz_invert(w, x, m)) mpz_set_ui(w, 0);
        expectValue<F>(n.r, w, "invertMod_u32");
        break;
    }
    case 3: {  // roots with remainder
        const std::uint8_t k = in.u8();
        const std::uint32_t degree = k < 200 ? 1 + k % 12 : k;
        const bool withRest = in.u8() & 1;
        F::rootRem(n.r, withRest ? n.s : nullptr, n.a, degree);
        mpz_abs(x, a);
        mpz_rootrem(w, y, x, degree);
        if (mpz_sgn(a) < 0) mpz_neg(w, w), mpz_neg(y, y);
        expectValue<F>(n.r, w, "rootRem root");
        if (withRest) expectValue<F>(n.s, y, "rootRem remainder");
        break;
    }
    case 4: {  // logarithms
        drawOperand(in, rs, b);
        set<F>(n.b, b);
        const std::uint32_t got = F::log(n.a, n.b);
        if (mpz_sgn(a) == 0 || mpz_cmpabs_ui(b, 2) < 0) {
            expectError(TW_ERR_LOG, "log of zero or to a base below 2");
            check(got == 0, "log failure value");
        } else if (got != floorLog(a, b)) {
            fail("log", std::to_string(got), std::to_string(floorLog(a, b)));
        }
        const std::uint32_t base = in.u32() >> (in.u8() % 32);
        const std::uint32_t got32 = F::log_u32(n.a, base);
        mpz_set_ui(x, base);
        if (mpz_sgn(a) == 0 || base < 2) {
            expectError(TW_ERR_LOG, "log_u32 of zero or to a base below 2");
            check(got32 == 0, "log_u32 failure value");
        } else if (got32 != floorLog(a, x)) {
            fail("log_u32", std::to_string(got32), std::to_string(floorLog(a, x)));
        }
        break;
    }
    case 5: {  // leading digits rounded three ways, the lowest digits
        const std::uint32_t count = in.u16() % 7000;
        const int round = in.u8() % 4;
        mpz_set(w, a);
        if (round == 0) F::floor(n.a, count);
        if (round == 1) F::truncate(n.a, count);
        if (round == 2) F::ceil(n.a, count);
        if (round < 3) {
            leadingDigits(w, count, round, F::binary);
        } else if constexpr (F::binary) {
            HX_modPowTwo(n.a, count);  // sign kept; k = 0 leaves the number
            if (count) mpz_tdiv_r_2exp(w, w, count);
        } else {
            HI_modPowTen(n.a, count);  // sign kept; n = 0 gives 0
            mpz_ui_pow_ui(x, 10, count);
            mpz_tdiv_r(w, w, x);
        }
        expectValue<F>(n.a, w, "floor, truncate, ceil or the lowest digits");
        break;
    }
    case 6: {  // primality where the answer is certain, prime search
        mpz_tdiv_r_2exp(a, a, 256);
        mpz_abs(a, a);
        const std::uint8_t form = in.u8() % 4;
        if (form == 1) mpz_nextprime(a, a);
        if (form == 2) mpz_nextprime(a, a), mpz_nextprime(x, a), mpz_mul(a, a, x);  // a product of adjacent primes
        set<F>(n.a, a);
        const int gmp = mpz_probab_prime_p(a, 30);
        const bool below = mpz_cmp_d(a, 1e16) < 0;
        const std::uint32_t quick = F::isPrime(n.a), tested = F::testPrimality(n.a, 2);
        if (below ? (quick != 0) != (gmp != 0) || tested != (gmp ? 2u : 0u) : (gmp == 0 && (quick || tested)) ||
                                                                                 (gmp != 0 && (!quick || !tested)))
            fail("isPrime, testPrimality", std::to_string(quick) + ", " + std::to_string(tested),
                 "GMP " + std::to_string(gmp));
        if (mpz_cmp_ui(a, 2) < 0) break;
        mpz_tdiv_r_2exp(a, a, 160), mpz_add_ui(a, a, 3);
        set<F>(n.a, a);
        F::nextPrime(n.r, n.a), mpz_nextprime(w, a);
        expectValue<F>(n.r, w, "nextPrime");
        F::previousPrime(n.r, n.a), valueOf<F>(n.r, w);
        mpz_nextprime(x, w);
        check(mpz_cmp(w, a) < 0 && mpz_probab_prime_p(w, 30) && mpz_cmp(x, a) >= 0, "previousPrime");
        break;
    }
    case 7: {  // the 32-bit services
        const std::uint32_t u = std::uint32_t(mpz_get_ui(a)), v = in.u32() >> (in.u8() % 32);
        mpz_set_ui(x, u);
        check(TW_isPrime(u) == (mpz_probab_prime_p(x, 30) != 0), "TW_isPrime");
        mpz_set_ui(m, v);
        const std::uint32_t inverse = TW_invertMod(u, v);
        if (v == 0) expectError(TW_ERR_DIV_ZERO, "TW_invertMod by zero"), check(inverse == 0, "TW_invertMod(a, 0)");
        else if (v == 1) check(inverse == 1, "TW_invertMod(a, 1)");
        else check(inverse == (mpz_invert(w, x, m) ? mpz_get_ui(w) : 0), "TW_invertMod");
        const std::uint32_t e = in.u32();
        const std::uint32_t power = TW_powMod(u, std::int32_t(e), v);
        if (v == 0) {
            expectError(TW_ERR_DIV_ZERO, "TW_powMod by zero");
            check(power == 0, "TW_powMod(b, e, 0)");
        } else {
            if (v == 1 || u == 0) mpz_set_ui(w, 0);
            else mpz_powm_ui(w, x, e, m);
            check(power == mpz_get_ui(w), "TW_powMod");
        }
        const std::int32_t sa = std::int32_t(u), sb = std::int32_t(v);
        if (sa != INT32_MIN && sb != INT32_MIN) {
            std::int32_t cx = 0, cy = 0;
            const std::uint32_t g = TW_gcdEx(&cx, &cy, sa, sb);
            mpz_set_si(x, sa), mpz_set_si(y, sb), mpz_gcd(w, x, y);
            check(g == mpz_get_ui(w), "TW_gcdEx gcd");
            check(std::int64_t(sa) * cx + std::int64_t(sb) * cy == std::int64_t(g), "TW_gcdEx cofactors");
        }
        break;
    }
    }
    expectError(0, "a step");
    return cost;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static gmp_randstate_t rs;
    static const bool ready = (gmp_randinit_default(rs), true);
    (void)ready;
    Bytes in(data, size);
    std::size_t spent = 0;
    for (int n = 0; n < kMaxSteps && spent < kBudgetBits && !in.empty(); ++n) {
        const std::uint8_t op = in.u8();
        spent += op & 1 ? step<Hx>(in, rs, (op >> 1) % 8) : step<Hi>(in, rs, (op >> 1) % 8);
    }
    return 0;
}
