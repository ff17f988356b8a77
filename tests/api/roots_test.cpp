// Roots, logarithms and rounding to leading digits of both families against
// GMP: one limb to about 10^4 digits, at and next to perfect powers and powers
// of the base, both signs; every aliasing of rootRem; bad input, unknown
// handles and the terminate flag.
#include "support/harness.h"

namespace twtest {
namespace {

template <class F> struct Ops;
#define ROOT_OPS(Fam, P)                                                                                   \
    template <> struct Ops<Fam> {                                                                          \
        static constexpr auto rootRem = P##_rootRem;                                                       \
        static constexpr auto log = P##_log;                                                               \
        static constexpr auto logWord = P##_log_u32;                                                       \
        static constexpr auto floor = P##_floor, truncate = P##_truncate, ceil = P##_ceil;                 \
    }
ROOT_OPS(DecimalFamily, HI);
ROOT_OPS(BinaryFamily, HX);

template <class F> using Roots = Family<F>;
TYPED_TEST_SUITE(Roots, BothFamilies);
template <class F> using H = typename F::Handle;
template <class F> H<F> deadHandle() { const H<F> h = F::newNumber(); return F::deleteNumber(h), h; }

void nudge(Mpz& v, int d) { d < 0 ? mpz_sub_ui(v, v, unsigned(-d)) : mpz_add_ui(v, v, unsigned(d)); }
// floor(|a|^(1/n)) and |a| - root^n, both with a's sign.
void wantRoot(Mpz& root, Mpz& rem, const Mpz& a, unsigned long n) {
    Mpz m;
    mpz_abs(m, a), mpz_rootrem(root, rem, m, n);
    if (mpz_sgn(a) < 0) mpz_neg(root, root), mpz_neg(rem, rem);
}
// floor(log_|b| |a|) by the powers of b.
std::uint32_t wantLog(const Mpz& a, const Mpz& b) {
    Mpz m, p, bb;
    mpz_abs(m, a), mpz_abs(bb, b);
    long ea, eb;
    const double q = (std::log2(mpz_get_d_2exp(&ea, m)) + ea) / (std::log2(mpz_get_d_2exp(&eb, bb)) + eb);
    unsigned long k = q > 2 ? (unsigned long)q - 2 : 0;
    for (mpz_pow_ui(p, bb, k); mpz_mul(p, p, bb), mpz_cmp(p, m) <= 0;) ++k;
    return std::uint32_t(k);
}

TYPED_TEST(Roots, RootRemAgainstGmpAtAndNextToPowers) {
    using F = TypeParam;
    using R = typename F::Radix;
    Gen gen(81);
    for (std::size_t limbs : {1, 2, 3, 5, 12, 40, 130, 600, 1150})
        for (std::uint32_t n : {2u, 3u, 4u, 5u, 7u, 31u, 100u}) {
            Mpz r = value<R>(gen.mixed<R>(limbs / n + 1)), power;
            mpz_pow_ui(power, r, n);
            for (int shape = 0; shape < 5; ++shape) {  // random twice, r^n - 1, r^n, r^n + 1
                Mpz va = shape < 2 ? value<R>(gen.mixed<R>(limbs)) : power, wr, wm;
                if (shape >= 2) nudge(va, shape - 3);
                if (gen.next() & 1) mpz_neg(va, va);
                wantRoot(wr, wm, va, n);
                Number<F> a, root, rem;
                a.set(va);
                ASSERT_TRUE(Ops<F>::rootRem(root, rem, a, n) == root.h() && holds(root, wr) && holds(rem, wm) &&
                            holds(a, va))
                    << limbs << " limbs, n " << n << ", " << shape;
            }
        }
    EXPECT_EQ(takeError(), 0);
}

TYPED_TEST(Roots, RootRemAliasingsRulesAndTheTerminateFlag) {
    using F = TypeParam;
    using R = typename F::Radix;
    Gen gen(82);
    for (std::uint32_t n : {1u, 2u, 3u}) {
        Mpz va = value<R>(gen.mixed<R>(25)), wr, wm;
        mpz_neg(va, va), wantRoot(wr, wm, va, n);
        Number<F> a, b;
        const auto fresh = [&] { return a.set(va), b.set(Mpz(7)), true; };
        EXPECT_TRUE(fresh() && Ops<F>::rootRem(a, b, a, n) && holds(a, wr) && holds(b, wm)) << n;  // root on a
        EXPECT_TRUE(fresh() && Ops<F>::rootRem(b, a, a, n) && holds(b, wr) && holds(a, wm)) << n;  // rem on a
        EXPECT_TRUE(fresh() && Ops<F>::rootRem(b, b, a, n) && holds(b, wr) && holds(a, va)) << n;  // the root wins
        EXPECT_TRUE(fresh() && Ops<F>::rootRem(a, a, a, n) && holds(a, wr)) << n;
        EXPECT_TRUE(fresh() && Ops<F>::rootRem(b, nullptr, a, n) && holds(b, wr) && holds(a, va)) << n;
    }
    const H<F> dead = deadHandle<F>();
    Number<F> a(-1000001), root(5), rem(6);
    EXPECT_TRUE(Ops<F>::rootRem(root, dead, a, 3) == root.h() && holds(root, -100) && takeError() == 0);
    EXPECT_TRUE(Ops<F>::rootRem(root, rem, a, 0) == root.h() && takeError() == -5);
    EXPECT_TRUE(holds(root, -100) && holds(rem, 6));  // n = 0: both left alone
    EXPECT_TRUE(Ops<F>::rootRem(dead, rem, a, 2) == nullptr && takeError() == -4 && holds(rem, 6));
    EXPECT_TRUE(Ops<F>::rootRem(root, rem, dead, 2) == nullptr && takeError() == -4 && holds(root, -100));
    Ops<F>::rootRem(root, rem, a, 2);  // even n, negative a: truncated, the remainder negative
    EXPECT_TRUE(holds(root, -1000) && holds(rem, -1) && takeError() == 0);
    a.set(value<R>(gen.limbs<R>(300)));
    TW_setTerminate(1);
    EXPECT_TRUE(Ops<F>::rootRem(root, rem, a, 3) == root.h() && holds(root, 0L) && holds(rem, 0L));
    EXPECT_EQ(Ops<F>::logWord(a, 7), 0u);
}

TYPED_TEST(Roots, LogarithmsNextToPowersOfTheBase) {
    using F = TypeParam;
    using R = typename F::Radix;
    Gen gen(83);
    for (std::uint32_t b : {2u, 3u, 10u, 16u, 1000u, 999999999u, 1u << 28, 4294967295u})
        for (std::size_t limbs : {1, 2, 7, 60, 1150}) {
            Mpz vb = Mpz(long(b)), p;
            mpz_pow_ui(p, vb, wantLog(value<R>(gen.limbs<R>(limbs)), vb));
            for (int shape = 0; shape < 4; ++shape) {  // b^k - 1, b^k, b^k + 1, random
                Mpz va = shape == 3 ? value<R>(gen.mixed<R>(limbs)) : p;
                if (shape < 3) nudge(va, shape - 1);
                if (mpz_sgn(va) == 0) continue;
                if (shape & 1) mpz_neg(va, va);
                Number<F> a, big;
                a.set(va), big.set(p);
                EXPECT_EQ(Ops<F>::logWord(a, b), wantLog(va, vb)) << b << " " << limbs << " " << shape;
                if (mpz_cmp_ui(p, 2) >= 0)  // a base of many limbs
                    EXPECT_EQ(Ops<F>::log(a, big), wantLog(va, p)) << b << " " << limbs << " " << shape;
            }
        }
    EXPECT_EQ(takeError(), 0);
    Number<F> zero(0), minusOne(-1), a(-12345);
    EXPECT_TRUE(Ops<F>::log(a, a) == 1 && Ops<F>::logWord(a, 12346) == 0 && takeError() == 0);
    EXPECT_TRUE(Ops<F>::logWord(zero, 10) == 0 && takeError() == -6 && Ops<F>::logWord(a, 1) == 0 && takeError() == -6);
    EXPECT_TRUE(Ops<F>::log(a, minusOne) == 0 && takeError() == -6 && Ops<F>::log(a, deadHandle<F>()) == 0);
    EXPECT_EQ(takeError(), -4);
}

TYPED_TEST(Roots, RoundingToLeadingDigits) {
    using F = TypeParam;
    using R = typename F::Radix;
    const bool bin = R::isBinary;  // 12345 = 0b11000000111001, 999 = 0b1111100111
    H<F> (*const ops[])(H<F>, std::uint32_t) = {Ops<F>::floor, Ops<F>::truncate, Ops<F>::ceil};
    const struct { int op; long x; std::uint32_t n; long dec, bin; } named[] = {
        {0, 12345, 2, 12000, 12288}, {1, 12345, 2, 12000, 12288}, {2, 12345, 2, 13000, 16384},
        {0, -12345, 2, -13000, -16384}, {1, -12345, 2, -12000, -12288}, {2, -12345, 2, -12000, -12288},
        {2, 999, 1, 1000, 1024}, {2, 12345, 0, 12345, 12345}, {0, -12345, 14, -12345, -12345}};
    for (const auto& c : named) {
        Number<F> v(c.x);
        EXPECT_TRUE(ops[c.op](v, c.n) == v.h() && holds(v, bin ? c.bin : c.dec)) << c.op << " " << c.x << " " << c.n;
    }
    Gen gen(84);
    for (std::size_t limbs : {1, 2, 3, 9, 50, 1150})
        for (int shape = 0; shape < 12; ++shape) {
            Mpz vx = value<R>(gen.mixed<R>(limbs)), w, p;
            if (shape % 3 == 1) mpz_mul(vx, vx, radixPower<R>(2));  // zeros below the cut
            if (shape & 1) mpz_neg(vx, vx);
            const std::size_t d = bin ? mpz_sizeinbase(vx, 2) : Mpz(vx).str().size() - (shape & 1);
            const std::uint32_t n = std::uint32_t(shape < 6 ? 1 + gen.below(d + 1) : std::size_t(shape - 7) + d);
            mpz_ui_pow_ui(p, bin ? 2 : 10, n < d ? d - n : 0);
            for (int op = 0; op < 3; ++op) {
                (op == 0 ? mpz_fdiv_q : op == 1 ? mpz_tdiv_q : mpz_cdiv_q)(w, vx, p);
                mpz_mul(w, w, p);
                Number<F> x;
                x.set(vx);
                ASSERT_TRUE(ops[op](x, n) == x.h() && holds(x, w)) << limbs << " limbs, " << shape << ", op " << op;
            }
        }
    EXPECT_TRUE(Ops<F>::ceil(deadHandle<F>(), 3) == nullptr && takeError() == -4);
}

}  // namespace
}  // namespace twtest
