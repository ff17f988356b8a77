// Modular powers, products and inverses of both families against GMP: rows
// over sizes, shapes, signs and aliasings, powers up to 4096 bits and past,
// the word forms, HI_modPowTen, kept rules, bad input, the terminate flag.
#include "support/harness.h"

namespace twtest {
namespace {

template <class F> struct Ops;
#define MOD_OPS(Fam, P)                                                                              \
    template <> struct Ops<Fam> {                                                                    \
        static constexpr auto powMod = P##_powMod, mulMod = P##_mulMod;                              \
        static constexpr auto powModU = P##_powMod_u32;                                              \
        static constexpr auto powModUU = P##_powMod_u32_u32;                                         \
        static constexpr auto invertMod = P##_invertMod;                                             \
        static constexpr auto invertModU = P##_invertMod_u32;                                        \
    }
MOD_OPS(DecimalFamily, HI);
MOD_OPS(BinaryFamily, HX);

template <class F> using Modular = Family<F>;
template <class F> using H = typename F::Handle;
TYPED_TEST_SUITE(Modular, BothFamilies);

// w := base^e mod m by the library's rules, from mpz_powm and mpz_invert.
bool powModWant(mpz_ptr w, mpz_srcptr base, mpz_srcptr e, mpz_srcptr m) {
    if (mpz_sgn(m) == 0) return false;
    Mpz am, ab, ae;
    mpz_abs(am, m), mpz_abs(ab, base), mpz_abs(ae, e);
    mpz_powm(w, ab, ae, am);
    if (mpz_sgn(base) < 0 && mpz_odd_p(ae)) mpz_neg(w, w);
    if (mpz_sgn(e) < 0 && (mpz_cmp_ui(am, 1) == 0 || !mpz_invert(w, w, am))) mpz_set_ui(w, 0);
    return true;
}

const Sizes kSizes = {{1, 1}, {2, 1}, {1, 2}, {3, 3}, {6, 5}, {12, 12}, {40, 37}, {3, 40}};

TYPED_TEST(Modular, RowsAgainstGmp) {
    using F = TypeParam;
    using R = typename F::Radix;
    Gen gen(91);
    const Mpz full = value<R>(gen.limbs<R>(37)), shortE = value<R>(gen.limbs<R>(2));
    const std::vector<Mpz> exponents = {Mpz(0L), Mpz(1L), Mpz(2L), Mpz(65537L), Mpz(-1L), Mpz(-3L), shortE, full};
    std::uint64_t seed = 100;
    for (const Mpz& e : exponents) {  // base a, modulus b
        Number<F> eh;
        const H<F> ev = (eh.set(e), eh.h());
        run(ApiRow<F>{"powMod", kSizes, [ev](H<F> r, H<F> a, H<F> b, mpz_srcptr) { return Ops<F>::powMod(r, a, ev, b); },
                      [e](mpz_ptr w, mpz_srcptr a, mpz_srcptr b) { return powModWant(w, a, e, b); }},
            seed++);
    }
    Number<F> m;
    const Mpz mv = value<R>(gen.limbs<R>(9));
    const H<F> mh = (m.set(mv), m.h());
    run(ApiRow<F>{"mulMod", around({1, 4, 30, 200}), [mh](H<F> r, H<F> a, H<F> b, mpz_srcptr) { return Ops<F>::mulMod(r, a, b, mh); },
                  [mv](mpz_ptr w, mpz_srcptr a, mpz_srcptr b) { return mpz_mul(w, a, b), mpz_tdiv_r(w, w, mv), true; }},
        120);
    run(ApiRow<F>{"invertMod", around({1, 3, 20, 150}), [](H<F> r, H<F> a, H<F> b, mpz_srcptr) { return Ops<F>::invertMod(r, a, b); },
                  [](mpz_ptr w, mpz_srcptr a, mpz_srcptr b) {  // b = 0 is tested below
                      if (mpz_cmpabs_ui(b, 1) <= 0 || !mpz_invert(w, a, b)) mpz_set_ui(w, 0);
                      return mpz_sgn(b) != 0; }},
        121);
}

// Full exponents at 512 to 4096 bits, short ones on long moduli, the moduli
// of every path; up to 1024 bits every aliasing of r, base, exponent, modulus.
TYPED_TEST(Modular, LargeOperandsAndAliasedExponent) {
    using F = TypeParam;
    using R = typename F::Radix;
    Gen gen(92);
    const std::size_t bitsPerLimb = R::isBinary ? 28 : 29;
    struct Size { std::size_t bits, eLimbs; };
    for (const Size s : {Size{512, 0}, Size{1024, 0}, Size{2048, 0}, Size{4096, 0}, Size{20000, 2}, Size{60000, 1}})
        for (int kind = 0; kind < 5; ++kind) {  // m odd, even, a multiple of 5, 2^k, 2^(28 j) times odd
            const std::size_t n = s.bits / bitsPerLimb + 1;
            Mpz vm = value<R>(gen.limbs<R>(n)), vb = value<R>(gen.limbs<R>(n + kind % 3)), ve = value<R>(gen.limbs<R>(s.eLimbs ? s.eLimbs : n)), want;
            if (kind == 0) mpz_setbit(vm, 0);
            if (kind == 1) mpz_clrbit(vm, 0), mpz_neg(vb, vb);
            if (kind == 2) mpz_mul_ui(vm, vm, 5), mpz_neg(ve, ve);
            if (kind == 3) mpz_set_ui(vm, 0), mpz_setbit(vm, s.bits), mpz_setbit(vb, 0);
            if (kind == 4) mpz_setbit(vm, 0), mpz_mul_2exp(vm, vm, 28 * (n / 2));
            Number<F> r, b, e, m;
            b.set(vb), e.set(ve), m.set(vm);
            powModWant(want, vb, ve, vm);
            EXPECT_TRUE(Ops<F>::powMod(r, b, e, m) == r.h() && holds(r, want)) << s.bits << " " << kind;
            EXPECT_TRUE(holds(b, vb) && holds(e, ve) && holds(m, vm));
            if (s.bits > 1024) continue;
            using P = std::array<int, 4>;  // r, base, exponent, modulus among the handles of b, e, m
            for (const P p : {P{0, 0, 1, 2}, P{1, 0, 1, 2}, P{2, 0, 1, 2}, P{0, 0, 0, 2}, P{1, 0, 1, 1}, P{2, 2, 1, 2}, P{0, 0, 0, 0}}) {
                Number<F> x[3];
                const Mpz v[3] = {vb, ve, vm};
                x[0].set(vb), x[1].set(ve), x[2].set(vm), powModWant(want, v[p[1]], v[p[2]], v[p[3]]);
                EXPECT_TRUE(Ops<F>::powMod(x[p[0]], x[p[1]], x[p[2]], x[p[3]]) == x[p[0]].h() && holds(x[p[0]], want)) << p[0] << p[1] << p[2] << p[3];
            }
        }
}

// Moduli at the edges of the word kernels' lengths (64-bit words up to
// kWordMontgomeryMaxBits, 52-bit lanes in whole vectors of eight, the sum in
// place up to 64 lanes and moving above, up to 320) on every
// path: any pinned path runs the 64-bit words, Ifma the lanes, the library's
// own choice either; odd, even and 2^k - 1 moduli, negative bases.
TYPED_TEST(Modular, PowersOnEveryKernelPath) {
    using F = TypeParam;
    using R = typename F::Radix;
    Gen gen(94);
    std::vector<PathCase> paths = kernelPaths();
    if (tw::processorRuns(tw::KernelPath::Ifma)) paths.push_back({"ifma", true, tw::KernelPath::Ifma});
    for (const PathCase& path : paths) {
        const Pinned pinned(path);
        for (const std::size_t bits : {3, 50, 51, 64, 65, 414, 415, 1040, 3326, 3327, 8192, 8193, 16636})
            for (int kind = 0; kind < 3; ++kind) {  // m odd, even, 2^bits - 1
                const std::size_t n = bits / 28 + 2;
                Mpz vm = value<R>(gen.mixed<R>(n)), vb = value<R>(gen.mixed<R>(n + kind)), ve = value<R>(gen.limbs<R>(bits > 1100 ? 2 : n)), want;
                mpz_tdiv_r_2exp(vm, vm, bits), mpz_setbit(vm, bits - 1), mpz_setbit(vm, 0);
                if (kind == 1) mpz_mul_2exp(vm, vm, 1 + bits % 5), mpz_neg(vb, vb);
                if (kind == 2) mpz_set_ui(vm, 0), mpz_setbit(vm, bits), mpz_sub_ui(vm, vm, 1), mpz_sub_ui(vb, vm, 1);
                Number<F> r, b, e, m;
                b.set(vb), e.set(ve), m.set(vm), powModWant(want, vb, ve, vm);
                EXPECT_TRUE(Ops<F>::powMod(r, b, e, m) == r.h() && holds(r, want)) << path.name << " " << bits << " " << kind;
            }
    }
}

TYPED_TEST(Modular, WordFormsAndModPowTen) {
    using F = TypeParam;
    using R = typename F::Radix;
    Gen gen(93);
    Number<F> r, e, m;
    for (int i = 0; i < 40; ++i) {
        Mpz ve = value<R>(gen.limbs<R>(1 + i % 7)), vm = value<R>(gen.limbs<R>(1 + i % 5)), want;
        const std::uint32_t base = std::uint32_t(gen.next()) >> (i % 30), mod = std::uint32_t(gen.next()) >> (i % 31) | 2;
        if (i % 3 == 0) mpz_neg(ve, ve);
        e.set(ve), m.set(vm);
        EXPECT_TRUE(powModWant(want, Mpz(long(base)), ve, vm) && Ops<F>::powModU(r, base, e, m) == r.h() && holds(r, want));
        if (mpz_sgn(ve) < 0) continue;
        EXPECT_TRUE(powModWant(want, Mpz(long(base)), ve, Mpz(long(mod))) && Ops<F>::powModUU(base, e, mod) == mpz_get_ui(want));
        if (mpz_cmp_ui(vm, 1) == 0 || !mpz_invert(want, Mpz(long(base)), vm)) mpz_set_ui(want, 0);
        EXPECT_TRUE(Ops<F>::invertModU(r, base, m) == r.h() && holds(r, want));
    }
    e.set(Mpz(-1L));  // a negative exponent: the word inverse's steps
    EXPECT_TRUE(Ops<F>::powModUU(3, e, 7) == 5 && Ops<F>::powModUU(2, e, 4) == 0 && Ops<F>::powModUU(9, e, 1) == 1);
    EXPECT_TRUE(Ops<F>::powModUU(0, Number<F>(0), 7) == 1 && Ops<F>::powModUU(5, Number<F>(0), 1) == 0 && takeError() == 0);
    if constexpr (!R::isBinary) {
        const Mpz big("-98765432109876543210987654321098765432109876543210");
        for (std::uint32_t n : {0u, 1u, 2u, 8u, 9u, 10u, 18u, 27u, 45u, 49u, 50u, 60u}) {
            Mpz p, want;
            mpz_ui_pow_ui(p, 10, n), mpz_tdiv_r(want, big, p), r.set(big);
            EXPECT_TRUE(HI_modPowTen(r, n) == r.h() && holds(r, want)) << n;
        }
        r.set(Mpz("1000000000000000000005000000000"));
        EXPECT_TRUE(HI_modPowTen(r, 9) == r.h() && holds(r, 0L) && HI_modPowTen(r, 3) == r.h() && holds(r, 0L));
        EXPECT_TRUE((r.set(Mpz(-1234L)), HI_modPowTen(r, 2)) && holds(r, -34L));
    }
}

TYPED_TEST(Modular, KeptRulesBadInputAndTheTerminateFlag) {
    using F = TypeParam;
    Number<F> r(77), zero(0), one(1), minusOne(-1), minusTwo(-2), two(2), three(3), five(5), seven(7), m6(-6);
    const auto gives = [&r](H<F> h, long want) { return h == r.h() && holds(r, want) && takeError() == 0; };
    EXPECT_TRUE(gives(Ops<F>::powMod(r, zero, zero, seven), 1) && gives(Ops<F>::powMod(r, zero, zero, minusOne), 0));
    EXPECT_TRUE(gives(Ops<F>::powMod(r, seven, three, one), 0) && gives(Ops<F>::powMod(r, minusTwo, three, five), -3));
    EXPECT_TRUE(gives(Ops<F>::powMod(r, two, minusOne, m6), 0) && gives(Ops<F>::powMod(r, minusTwo, minusOne, seven), 3));
    EXPECT_TRUE(gives(Ops<F>::invertMod(r, two, m6), 0) && gives(Ops<F>::invertMod(r, three, minusOne), 0));
    EXPECT_TRUE(gives(Ops<F>::invertMod(r, minusTwo, seven), 3) && gives(Ops<F>::invertModU(r, 5, m6), 5));
    F::set_s32(r, 77);  // a zero modulus: -5, r unchanged; an unknown handle: -4
    const auto fails = [&r](bool ok, int code) { return ok && takeError() == code && holds(r, 77L); };
    EXPECT_TRUE(fails(Ops<F>::powMod(r, two, three, zero) == r.h(), -5) && fails(Ops<F>::powModU(r, 2, three, zero) == r.h(), -5));
    EXPECT_TRUE(fails(Ops<F>::mulMod(r, two, three, zero) == r.h(), -5) && fails(Ops<F>::invertMod(r, two, zero) == r.h(), -5));
    EXPECT_TRUE(fails(Ops<F>::invertModU(r, 2, zero) == r.h(), -5) && fails(Ops<F>::powModUU(2, three, 0) == 0, -5));
    EXPECT_TRUE(fails(Ops<F>::powModUU(2, minusTwo, 0) == 0, -5));
    const H<F> dead = F::newNumber();  // then deleted
    F::deleteNumber(dead);
    EXPECT_TRUE(fails(!Ops<F>::powMod(r, two, dead, seven), -4) && fails(!Ops<F>::powModU(dead, 2, three, seven), -4));
    EXPECT_TRUE(fails(!Ops<F>::mulMod(r, two, three, dead), -4) && fails(!Ops<F>::invertMod(r, dead, seven), -4));
    EXPECT_TRUE(fails(!Ops<F>::invertModU(r, 2, dead), -4) && fails(Ops<F>::powModUU(2, dead, 7) == 0, -4));
    TW_setTerminate(1);
    EXPECT_TRUE(Ops<F>::powMod(r, three, seven, seven) == r.h() && holds(r, 0L) && F::set_s32(r, 77));
    EXPECT_TRUE(Ops<F>::mulMod(r, three, two, seven) == r.h() && holds(r, 0L) && F::set_s32(r, 77));
    EXPECT_TRUE(Ops<F>::invertMod(r, three, seven) == r.h() && holds(r, 0L) && Ops<F>::powModUU(3, seven, 11) == 0);
}

}  // namespace
}  // namespace twtest
