// GCD, LCM and the extended GCD of both families against GMP: interface rows
// over sizes, shapes, signs and aliasings; pairs built with a large common
// factor, shared zero limbs and multiples; the identity and bounds of the
// extended GCD's cofactors under every aliasing; the vector forms; bad input
// and the terminate flag.
#include "numtheory/gcd.h"
#include "numtheory/half_gcd.h"
#include "support/harness.h"

namespace twtest {
namespace {

template <class F> struct Ops;
#define GCD_OPS(Fam, P, S)                                                                              \
    template <> struct Ops<Fam> {                                                                       \
        static constexpr auto gcd = P##_gcd, lcm = P##_lcm;                                             \
        static constexpr auto gcdEx = P##_gcdEx;                                                        \
        static constexpr auto gcdV = P##_gcd_v##S, lcmV = P##_lcm_v##S;                                 \
        static constexpr auto lcmWords = P##_lcm_v32;                                                   \
    }
GCD_OPS(DecimalFamily, HI, hi);
GCD_OPS(BinaryFamily, HX, hx);

template <class F>
using Gcd = Family<F>;
TYPED_TEST_SUITE(Gcd, BothFamilies);
template <class F>
using H = typename F::Handle;
template <class F>
Mpz valueOf(H<F> h) { return numberValue(*tw::Family<H<F>>::find(h)); }

// a x + b y = g = gcd(a, b), |x| <= max(1, |b|/g), |y| <= |a|/g + 1.
::testing::AssertionResult bezout(const Mpz& a, const Mpz& b, const Mpz& g, const Mpz& x, const Mpz& y) {
    Mpz want, sum, t, bound;
    mpz_gcd(want, a, b);
    mpz_mul(sum, a, x), mpz_mul(t, b, y), mpz_add(sum, sum, t);
    if (!(g == want) || !(sum == g)) return ::testing::AssertionFailure() << "g " << g << ", a x + b y " << sum;
    if (mpz_sgn(g) == 0) return ::testing::AssertionResult(mpz_sgn(x) == 0 && mpz_sgn(y) == 0) << "x, y not 0";
    mpz_tdiv_q(bound, b, g), mpz_abs(bound, bound);
    if (mpz_cmp_ui(bound, 1) < 0) mpz_set_ui(bound, 1);
    if (mpz_cmpabs(x, bound) > 0) return ::testing::AssertionFailure() << "|x| " << x << " above " << bound;
    mpz_tdiv_q(bound, a, g), mpz_abs(bound, bound), mpz_add_ui(bound, bound, 1);
    if (mpz_cmpabs(y, bound) > 0) return ::testing::AssertionFailure() << "|y| " << y << " above " << bound;
    return ::testing::AssertionSuccess();
}

const Sizes kSizes = {{1, 1}, {2, 1}, {2, 2}, {3, 3}, {4, 2}, {17, 16}, {60, 3}, {150, 150}, {700, 650}, {2000, 1990}};

TYPED_TEST(Gcd, RowsAgainstGmp) {
    using F = TypeParam;
    run(ApiRow<F>{"gcd", kSizes, [](H<F> r, H<F> a, H<F> b, mpz_srcptr) { return Ops<F>::gcd(r, a, b); },
                  [](mpz_ptr w, mpz_srcptr a, mpz_srcptr b) { return mpz_gcd(w, a, b), true; }},
        71);
    run(ApiRow<F>{"lcm", kSizes, [](H<F> r, H<F> a, H<F> b, mpz_srcptr) { return Ops<F>::lcm(r, a, b); },
                  [](mpz_ptr w, mpz_srcptr a, mpz_srcptr b) { return mpz_lcm(w, a, b), true; }},
        72);
    run(ApiRow<F>{"gcdEx", kSizes,
                  [](H<F> r, H<F> a, H<F> b, mpz_srcptr) {  // g into r, the cofactors checked here
                      Number<F> x, y;
                      const Mpz va = valueOf<F>(a), vb = valueOf<F>(b);
                      const H<F> g = Ops<F>::gcdEx(r, x, y, a, b);
                      EXPECT_TRUE(bezout(va, vb, valueOf<F>(r), x.value(), y.value())) << va << ", " << vb;
                      return g;
                  },
                  [](mpz_ptr w, mpz_srcptr a, mpz_srcptr b) { return mpz_gcd(w, a, b), true; }},
        73);
}

// a = g u R^s, b = g v R^(s+t): a large g, runs of zero limbs, cofactors of
// every size, v = 1 (b divides a), u = v (|a| = |b|); the extended GCD with
// g, x or y on an operand's handle gives what distinct handles give.
TYPED_TEST(Gcd, CommonFactorsZeroLimbsMultiplesAndAliasedCofactors) {
    using F = TypeParam;
    using R = typename F::Radix;
    Gen gen(74);
    for (std::size_t gn : {1, 4, 300, 1500})
        for (std::size_t un : {0, 1, 2, 40, 600})
            for (std::size_t shift : {0, 3, 200}) {
                Mpz g = value<R>(gen.mixed<R>(gn)), u = value<R>(gen.mixed<R>(un + 1)), v = u, va, vb, want;
                if (un > 1) v = value<R>(gen.mixed<R>(un / 2 + 1));
                if (un == 1) mpz_set_ui(v, 1);
                mpz_mul(va, g, u), mpz_mul(va, va, radixPower<R>(shift));
                mpz_mul(vb, g, v), mpz_mul(vb, vb, radixPower<R>(shift + (un == 40 ? 2 : 0)));
                if (gen.next() & 1) mpz_neg(va, va);
                for (int turn = 0; turn < 2; ++turn, std::swap(va, vb)) {
                    const auto where = ::testing::Message() << gn << " " << un << " " << shift << " " << turn;
                    Number<F> a, b, r, x, y;
                    a.set(va), b.set(vb);
                    mpz_gcd(want, va, vb);
                    EXPECT_TRUE(Ops<F>::gcd(r, a, b) == r.h() && holds(r, want)) << where;
                    mpz_lcm(want, va, vb);
                    EXPECT_TRUE(Ops<F>::lcm(r, a, b) == r.h() && holds(r, want)) << where;
                    ASSERT_EQ(Ops<F>::gcdEx(r, x, y, a, b), r.h());
                    ASSERT_TRUE(bezout(va, vb, r.value(), x.value(), y.value())) << where;
                    if (gn > 4 || shift) continue;
                    const Mpz gx = r.value(), xx = x.value(), yx = y.value();
                    for (int k = 0; k < 6; ++k) {  // g, x, y on a, then on b
                        Number<F> a2, b2, r2, x2, y2;
                        a2.set(va), b2.set(vb);
                        const H<F> on = k < 3 ? a2.h() : b2.h();
                        const H<F> hg = k % 3 == 0 ? on : r2.h(), hx = k % 3 == 1 ? on : x2.h(), hy = k % 3 == 2 ? on : y2.h();
                        Ops<F>::gcdEx(hg, hx, hy, a2, b2);
                        EXPECT_TRUE(valueOf<F>(hg) == gx && valueOf<F>(hx) == xx && valueOf<F>(hy) == yx) << where << " k " << k;
                    }
                }
            }
}

// Both sides of the sub-quadratic switch (65 536 digits above the common
// zero limbs), common zero limbs that take a pair back under it, a long run
// of zero limbs inside one operand, and a cheap pair of 10^6 digits (a large
// common factor).  GCD and cofactors against GMP.
TYPED_TEST(Gcd, AroundTheSubquadraticSwitch) {
    using F = TypeParam;
    using R = typename F::Radix;
    Gen gen(76);
    const auto digits = [&](unsigned long n) {  // a random number of exactly n digits
        Mpz low, v = value<R>(gen.limbs<R>(n / 9 + 2));
        mpz_ui_pow_ui(low, 10, n - 1);
        mpz_mod(v, v, low), mpz_add(v, v, low);
        return v;
    };
    struct Case { unsigned long da, db; std::size_t zeros; bool above; };
    for (const Case c : {Case{65530, 65533, 0, false}, Case{65545, 65540, 0, true}, Case{65530, 65540, 2, false},
                         Case{65545, 65545, 2, true}, Case{1000000, 1000000, 0, true}}) {
        const Mpz g = digits(c.da < 100000 ? 3000 : 999990);
        Mpz va = digits(c.da - mpz_sizeinbase(g, 10) + 1), vb = digits(c.db - mpz_sizeinbase(g, 10) + 1);
        mpz_mul(va, va, g), mpz_mul(vb, vb, g);
        mpz_mul(va, va, radixPower<R>(c.zeros)), mpz_mul(vb, vb, radixPower<R>(c.zeros + 3 * c.zeros));
        if (c.zeros) mpz_neg(vb, vb);
        Number<F> a, b, r, x, y;
        a.set(va), b.set(vb);
        EXPECT_EQ(tw::numtheory::useSubquadraticGcd(a.object(), b.object()), c.above) << c.da;
        ASSERT_EQ(Ops<F>::gcdEx(r, x, y, a, b), r.h());
        EXPECT_TRUE(bezout(va, vb, r.value(), x.value(), y.value())) << c.da;
    }
    Mpz va = digits(80000), vb = digits(20000), want;
    mpz_mul(vb, vb, radixPower<R>(6000)), mpz_add(vb, vb, digits(30000));  // zero limbs inside
    Number<F> a, b, r;
    a.set(va), b.set(vb);
    mpz_gcd(want, va, vb);
    EXPECT_TRUE(Ops<F>::gcd(r, a, b) == r.h() && holds(r, want));
}

TYPED_TEST(Gcd, VectorForms) {
    using F = TypeParam;
    using R = typename F::Radix;
    Gen gen(75);
    Number<F> r, v[6];
    Mpz val[6], g, l(1);
    for (int i = 0; i < 6; ++i) {
        val[i] = value<R>(gen.limbs<R>(1 + 30 * i));
        mpz_mul(val[i], val[i], val[0]);  // all multiples of the first: no early 1
        if (i == 3) val[i] = val[1];      // a duplicate
        if (i == 4) mpz_neg(val[i], val[i]);
        v[i].set(val[i]);
        mpz_gcd(g, g, val[i]), mpz_lcm(l, l, val[i]);
    }
    const H<F> list[] = {v[5], v[2], v[3], v[0], v[4], v[1]};
    EXPECT_TRUE(Ops<F>::gcdV(r, list, 6) == r.h() && holds(r, g));
    EXPECT_TRUE(Ops<F>::lcmV(r, list, 6) == r.h() && holds(r, l));
    Number<F> one(1), zero(0);
    const H<F> withOne[] = {v[5], one, v[1]}, withZero[] = {v[5], zero, v[1]};
    EXPECT_TRUE(Ops<F>::gcdV(r, withOne, 3) == r.h() && holds(r, 1L));
    EXPECT_TRUE(Ops<F>::lcmV(r, withZero, 3) == r.h() && holds(r, 0L));
    mpz_gcd(g, val[5], val[1]);
    EXPECT_TRUE(Ops<F>::gcdV(r, withZero, 3) == r.h() && holds(r, g));
    EXPECT_TRUE(Ops<F>::gcdV(r, nullptr, 0) == r.h() && holds(r, 0L));
    EXPECT_TRUE(Ops<F>::lcmV(r, nullptr, 0) == r.h() && holds(r, 1L));
    EXPECT_TRUE(Ops<F>::lcmWords(r, nullptr, 0) == r.h() && holds(r, 1L));
    const std::uint32_t words[] = {4294967295u, 12, 18, 12, 7, 4294967291u};
    Mpz w(1);
    for (std::uint32_t x : words) mpz_lcm_ui(w, w, x);
    EXPECT_TRUE(Ops<F>::lcmWords(r, words, 6) == r.h() && holds(r, w));
    const std::uint32_t wordsWithZero[] = {5, 0, 7};
    EXPECT_TRUE(Ops<F>::lcmWords(r, wordsWithZero, 3) == r.h() && holds(r, 0L));
    EXPECT_EQ(takeError(), 0);
    EXPECT_TRUE(Ops<F>::gcdV(r, nullptr, 2) == nullptr && takeError() == -4);
    EXPECT_TRUE(Ops<F>::lcmV(r, nullptr, 1) == nullptr && takeError() == -4);
    EXPECT_TRUE(Ops<F>::lcmWords(r, nullptr, 3) == nullptr && takeError() == -4);
}

TYPED_TEST(Gcd, UnknownHandlesAndTheTerminateFlag) {
    using F = TypeParam;
    Number<F> a(-84), b(36), r(5), x(5), y(5);
    const H<F> dead = F::newNumber();
    F::deleteNumber(dead);
    const H<F> list[] = {a, dead};
    EXPECT_TRUE(Ops<F>::gcd(r, dead, b) == nullptr && takeError() == -4);
    EXPECT_TRUE(Ops<F>::lcm(dead, a, b) == nullptr && takeError() == -4);
    EXPECT_TRUE(Ops<F>::gcdEx(r, x, dead, a, b) == nullptr && takeError() == -4);
    EXPECT_TRUE(Ops<F>::gcdV(r, list, 2) == nullptr && takeError() == -4);
    EXPECT_TRUE(holds(r, 5L) && holds(x, 5L) && holds(y, 5L));  // nothing written
    Ops<F>::gcdEx(r, r, r, a, b);  // g, x and y one handle: g is written last
    EXPECT_TRUE(holds(r, 12L));
    Ops<F>::gcdEx(r, x, y, a, b);
    const Mpz distinctX = x.value();
    Ops<F>::gcdEx(r, x, x, a, b);  // x over y
    EXPECT_TRUE(holds(x, distinctX) && holds(r, 12L));
    TW_setTerminate(1);
    const auto zeroAfter = [&](H<F> h) { return h == r.h() && holds(r, 0L) && F::set_s32(r, 5); };
    EXPECT_TRUE(zeroAfter(Ops<F>::gcd(r, a, b)));
    EXPECT_TRUE(zeroAfter(Ops<F>::lcm(r, a, b)));
    EXPECT_TRUE(zeroAfter(Ops<F>::gcdV(r, list, 1)));
    EXPECT_TRUE(zeroAfter(Ops<F>::lcmV(r, list, 1)));
    Ops<F>::gcdEx(r, x, y, a, b);
    EXPECT_TRUE(holds(r, 0L) && holds(x, 0L) && holds(y, 0L));
}

// Stopped before its first step, the half-GCD returns at once instead of
// going on to its second half, which would recurse three words a level.
TEST(HalfGcd, ReturnsUnderTheFlag) {
    Gen gen(31);
    const std::size_t n = 600;
    tw::numtheory::Words a(n + 1, 0), b(n + 1, 0);
    for (std::size_t i = 0; i < n; ++i) a[i] = gen.next(), b[i] = gen.next();
    tw::numtheory::WordMatrixBig m;
    TW_setTerminate(1);
    EXPECT_LE(tw::numtheory::halfGcd(a.data(), b.data(), n, m), n);
    EXPECT_EQ(takeError(), TW_ERR_STOPPED);
}

}  // namespace
}  // namespace twtest
