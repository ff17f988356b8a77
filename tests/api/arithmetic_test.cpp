// The arithmetic of both families through the C interface: rows of the
// interface table against GMP (every sign, the five aliasings, sizes across
// the ladders' rungs), then the library's kept behaviours that a formula
// cannot state: its sign rules, size guards, division conventions, zero
// divisors and the terminate flag.
#include "support/harness.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace twtest {
namespace {

template <class F>
using Arith = Family<F>;
TYPED_TEST_SUITE(Arith, BothFamilies);

template <class F>
using H = typename F::Handle;
using Want = std::function<bool(mpz_ptr, mpz_srcptr, mpz_srcptr)>;

// A binary call r := op(a, b) as an interface row.
template <class F>
auto call(H<F> (*op)(H<F>, H<F>, H<F>)) {
    return [op](H<F> r, H<F> a, H<F> b, mpz_srcptr) { return op(r, a, b); };
}
// A call with a word r := op(a, w).
template <class F, class W>
auto callWord(H<F> (*op)(H<F>, H<F>, W)) {
    return [op](H<F> r, H<F> a, H<F>, mpz_srcptr w) { return op(r, a, W(mpz_get_ui(w))); };
}
// An in-place call x := op(x, w), run on a copy in r.
template <class F>
auto inPlace(H<F> (*op)(H<F>, std::uint32_t)) {
    return [op](H<F> r, H<F> a, H<F>, mpz_srcptr w) {
        if (r != a) F::set_own(r, a);
        return op(r, std::uint32_t(mpz_get_ui(w)));
    };
}
// A query whose answer is stored in r.
template <class F, class Q>
auto query(Q q) {
    return [q](H<F> r, H<F> a, H<F> b, mpz_srcptr) { return F::set_s64(r, std::int64_t(q(a, b))); };
}
int sgn(int v) { return (v > 0) - (v < 0); }

const Sizes kSmall = {{1, 1}, {2, 1}, {1, 3}, {9, 9}, {30, 17}, {3, 40}};
const Sizes kRungs = around({1, 2, 64, 65, 128, 129, 192, 193, 256, 257, 511, 512, 700});

TYPED_TEST(Arith, RowsAgainstGmp) {
    using F = TypeParam;
    using R = typename F::Radix;
    auto both = [](void (*g)(mpz_ptr, mpz_srcptr, mpz_srcptr)) {
        return [g](mpz_ptr w, mpz_srcptr a, mpz_srcptr b) { return g(w, a, b), true; };
    };
    auto divisor = [](void (*g)(mpz_ptr, mpz_srcptr, mpz_srcptr)) {
        return [g](mpz_ptr w, mpz_srcptr a, mpz_srcptr b) { return mpz_sgn(b) != 0 && (g(w, a, b), true); };
    };
    run(ApiRow<F>{"add", kSmall, call<F>(F::add), both(mpz_add)}, 1);
    run(ApiRow<F>{"sub", kSmall, call<F>(F::sub), both(mpz_sub)}, 2);
    run(ApiRow<F>{"mul", kRungs, call<F>(F::mul), both(mpz_mul)}, 3);
    Sizes division = kSmall;
    division.insert(division.end(), {{60, 40}, {700, 300}, {1500, 700}, {1600, 1}, {40, 60}});
    run(ApiRow<F>{"divRem quotient", division,
                  [](H<F> r, H<F> a, H<F> b, mpz_srcptr) {
                      Number<F> rest;
                      return F::divRem(r, a, b, rest);
                  },
                  divisor(mpz_tdiv_q)},
        4);
    run(ApiRow<F>{"divRem remainder", division,
                  [](H<F> r, H<F> a, H<F> b, mpz_srcptr) {
                      Number<F> q;
                      F::divRem(q, a, b, r);
                      return r;
                  },
                  divisor(mpz_tdiv_r), {}, {Shape::Random, Shape::Max}, {Alias::None, Alias::AIsB}},
        5);
    run(ApiRow<F>{"mod", division, call<F>(F::mod), divisor(mpz_tdiv_r)}, 6);
    // AND, OR and XOR on the magnitudes; negative when both (AND), either
    // (OR) or exactly one (XOR) operand is.
    auto bits = [](void (*g)(mpz_ptr, mpz_srcptr, mpz_srcptr), int rule) {
        return [g, rule](mpz_ptr w, mpz_srcptr a, mpz_srcptr b) {
            Mpz x, y;
            mpz_abs(x, a), mpz_abs(y, b);
            g(w, x, y);
            const bool an = mpz_sgn(a) < 0, bn = mpz_sgn(b) < 0;
            if (rule == 0 ? an && bn : rule == 1 ? an || bn : an != bn) mpz_neg(w, w);
            return true;
        };
    };
    const Sizes bitSizes = {{1, 1}, {2, 3}, {30, 30}, {31, 29}, {1, 120}, {120, 1}, {64, 160}};
    run(ApiRow<F>{"bitAnd", bitSizes, call<F>(F::bitAnd), bits(mpz_and, 0)}, 7);
    run(ApiRow<F>{"bitOr", bitSizes, call<F>(F::bitOr), bits(mpz_ior, 1)}, 8);
    run(ApiRow<F>{"bitXor", bitSizes, call<F>(F::bitXor), bits(mpz_xor, 2)}, 9);
    run(ApiRow<F>{"compare", kSmall, query<F>([](H<F> a, H<F> b) { return F::compare(a, b); }),
                  [](mpz_ptr w, mpz_srcptr a, mpz_srcptr b) { return mpz_set_si(w, sgn(mpz_cmp(a, b))), true; }},
        10);
    run(ApiRow<F>{"compareAbs", kSmall, query<F>([](H<F> a, H<F> b) { return F::compareAbs(a, b); }),
                  [](mpz_ptr w, mpz_srcptr a, mpz_srcptr b) { return mpz_set_si(w, sgn(mpz_cmpabs(a, b))), true; }},
        11);
    run(ApiRow<F>{"getBits and getDigits", {{1, 1}, {2, 1}, {5, 1}, {40, 1}, {400, 1}},
                  query<F>([](H<F> a, H<F>) { return std::int64_t(F::getBits(a)) << 32 | F::getDigits(a); }),
                  [](mpz_ptr w, mpz_srcptr a, mpz_srcptr) {
                      mpz_set_ui(w, mpz_sgn(a) ? mpz_sizeinbase(a, 2) : 0);
                      mpz_mul_2exp(w, w, 32);
                      Mpz t;
                      mpz_abs(t, a);
                      return mpz_add_ui(w, w, mpz_sgn(a) ? t.str().size() : 1), true;
                  },
                  {}, {Shape::Random, Shape::Max, Shape::Power}},
        12);

    // Word operands.
    const std::vector<std::uint32_t> words = {0, 1, 2, 7, 1000, R::base - 1, R::base, R::base + 1, 0x7FFFFFFF, 0x80000000u,
                                              0xFFFFFFFFu};
    const Sizes wordSizes = {{1, 0}, {2, 0}, {3, 0}, {20, 0}};
    run(ApiRow<F>{"mul_u32", wordSizes, callWord<F>(F::mul_u32), both(mpz_mul), words}, 13);
    // The kept sign rules: a value below the word keeps its sign, its magnitude the difference.
    run(ApiRow<F>{"add_u32", wordSizes, callWord<F>(F::add_u32),
                  [](mpz_ptr w, mpz_srcptr a, mpz_srcptr n) {
                      if (mpz_sgn(a) >= 0) return mpz_add(w, a, n), true;
                      mpz_add(w, a, n);
                      mpz_abs(w, w);
                      return mpz_neg(w, w), true;
                  },
                  words},
        14);
    run(ApiRow<F>{"sub_u32", wordSizes, callWord<F>(F::sub_u32),
                  [](mpz_ptr w, mpz_srcptr a, mpz_srcptr n) {
                      mpz_sub(w, a, n);
                      if (mpz_sgn(a) > 0) mpz_abs(w, w);
                      return true;
                  },
                  words},
        15);
    run(ApiRow<F>{"div_s32 quotient", wordSizes,
                  [](H<F> r, H<F> a, H<F>, mpz_srcptr w) { return F::div_s32(r, a, std::int32_t(mpz_get_ui(w)), nullptr); },
                  [](mpz_ptr w, mpz_srcptr a, mpz_srcptr n) {
                      const std::int32_t d = std::int32_t(mpz_get_ui(n));
                      return d != 0 && (mpz_tdiv_q(w, a, Mpz(long(d))), true);
                  },
                  {1, 2, 3, 7, 10, 1000000000u, 0x7FFFFFFF, 0x80000000u, 0xFFFFFFFFu, 0xFFFFFFF9u}},
        16);
    const std::vector<std::uint32_t> shifts = {0, 1, 2, 9, 10, 27, 28, 29, 31, 32, 33, 56, 100, 280, 1000};
    const Sizes shiftSizes = {{1, 0}, {3, 0}, {20, 0}};
    run(ApiRow<F>{"bitLShift", shiftSizes, inPlace<F>(F::bitLShift),
                  [](mpz_ptr w, mpz_srcptr a, mpz_srcptr k) { return mpz_mul_2exp(w, a, mpz_get_ui(k)), true; }, shifts},
        17);
    run(ApiRow<F>{"bitRShift", shiftSizes, inPlace<F>(F::bitRShift),
                  [](mpz_ptr w, mpz_srcptr a, mpz_srcptr k) { return mpz_tdiv_q_2exp(w, a, mpz_get_ui(k)), true; }, shifts},
        18);
    run(ApiRow<F>{"pow", {{1, 0}, {2, 0}, {12, 0}},
                  [](H<F> r, H<F> a, H<F>, mpz_srcptr e) { return F::pow(r, a, std::uint32_t(mpz_get_ui(e))); },
                  [](mpz_ptr w, mpz_srcptr a, mpz_srcptr e) {
                      return mpz_sgn(a) ? mpz_pow_ui(w, a, mpz_get_ui(e)) : mpz_set_ui(w, 0), true;  // 0^0 is 0 here
                  },
                  {0, 1, 2, 3, 4, 5, 16, 39, 77, 300}, {Shape::Random, Shape::LowZeros, Shape::Power}, {Alias::None}},
        19);
}

TEST(DecimalFamily, DecimalShiftsAgainstGmp) {
    const std::vector<std::uint32_t> shifts = {0, 1, 8, 9, 10, 17, 18, 19, 95, 200};
    auto scaled = [](bool left) {
        return [left](mpz_ptr w, mpz_srcptr a, mpz_srcptr k) {
            Mpz p;
            mpz_ui_pow_ui(p, 10, mpz_get_ui(k));
            return left ? mpz_mul(w, a, p) : mpz_tdiv_q(w, a, p), true;
        };
    };
    run(ApiRow<DecimalFamily>{"decLShift", {{1, 0}, {3, 0}, {12, 0}}, inPlace<DecimalFamily>(HI_decLShift), scaled(true), shifts}, 20);
    run(ApiRow<DecimalFamily>{"decRShift", {{1, 0}, {3, 0}, {12, 0}}, inPlace<DecimalFamily>(HI_decRShift), scaled(false), shifts}, 21);
}

// Values of every size survive HX_set_hi and HI_set_hx both ways.
TEST_F(Clean, BetweenTheTwoFamilies) {
    Gen gen(22);
    Number<DecimalFamily> d, back;
    Number<BinaryFamily> b;
    std::vector<Mpz> values = {Mpz("268435455"), Mpz("268435456"), Mpz("-1000000000"), Mpz("72057594037927936"), Mpz(0L)};
    for (std::size_t limbs : {1, 2, 3, 11, 56, 223, 1001, 4445, 16667})
        for (Shape s : {Shape::Random, Shape::Max, Shape::Power}) values.push_back(gen.signedValue<Dec>(limbs, s));
    values.push_back(gen.signedValue<Dec>(111112));  // a million digits
    for (unsigned e : {7u, 100u, 1234u}) {
        Mpz p;
        mpz_setbit(p, 28 * e);
        values.push_back(p);
        mpz_sub_ui(p, p, 1);
        values.push_back(p);
    }
    for (const Mpz& v : values) {
        d.set(v);
        ASSERT_EQ(HX_set_hi(b, d), b.h());
        ASSERT_TRUE(holds(b, v));
        ASSERT_EQ(HI_set_hx(back, b), back.h());
        ASSERT_TRUE(holds(back, v));
    }
    EXPECT_EQ(takeError(), 0);
    // A handle of the other family is unknown; the result stays.
    EXPECT_EQ(HI_set_hx(d, reinterpret_cast<HX_handle>(d.h())), nullptr);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    EXPECT_EQ(HX_set_hi(nullptr, d), nullptr);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    // The terminate flag: zero, never a partial value.
    TW_setTerminate(1);
    EXPECT_EQ(HI_set_hx(back, b), back.h());
    EXPECT_EQ(HI_getSign(back), 0);
    EXPECT_EQ(HX_set_hi(b, d), b.h());
    EXPECT_TRUE(b.normal() && HX_isZero(b));
    EXPECT_EQ(takeError(), TW_ERR_STOPPED);
}

// ---- kept behaviours ----

TYPED_TEST(Arith, PowersAndShiftsOddities) {
    using F = TypeParam;
    Number<F> r, a;
    auto power = [&](long base, std::uint32_t e) { return F::set_s64(a, base), F::pow(r, a, e), F::get_s64(r); };
    EXPECT_EQ(power(0, 0), 0);  // 0^0 is 0
    EXPECT_EQ(power(-5, 0), 1);
    EXPECT_EQ(power(-2, 3), -8);
    EXPECT_EQ(power(3, 39), 4052555153018976267);
    F::set_s64(a, 12);
    EXPECT_EQ(F::pow(a, a, 3), a.h());  // pow(x, x, e) leaves x as it was
    EXPECT_EQ(F::get_s64(a), 12);
    // Truncation toward zero.
    F::set_s64(a, -1);
    F::bitRShift(a, 1);
    EXPECT_EQ(F::getSign(a), 0);
    F::set_s64(a, -3);
    F::bitRShift(a, 1);
    EXPECT_EQ(F::get_s64(a), -1);
    // Size guards: a result whose digit count passes 32 bits is refused, as
    // zero with -3 (the left shift's guard multiplies by log2(10), not log10(2),
    // and so refuses early).
    F::set_u64(a, 9999999999ull);
    EXPECT_EQ(F::pow(r, a, 477218589), r.h());
    EXPECT_EQ(takeError(), TW_ERR_TOO_LARGE);
    EXPECT_EQ(F::getSign(r), 0);
    F::set_s64(a, 99);
    F::pow(r, a, 4294967295u);
    EXPECT_EQ(takeError(), TW_ERR_TOO_LARGE);
    F::set_s64(a, 1);
    EXPECT_EQ(F::bitLShift(a, 1292913987u), a.h());
    EXPECT_EQ(takeError(), TW_ERR_TOO_LARGE);
    EXPECT_EQ(F::getSign(a), 0);
    // A one-digit base passes the guard: 9^(2^32 - 1) is only stopped by the flag.
    F::set_s64(a, 9);
    TW_setTerminate(1);
    F::pow(r, a, 4294967295u);
    EXPECT_EQ(takeError(), TW_ERR_STOPPED);
}

TEST_F(Clean, DecimalShiftsAndPowersOfTheRadix) {
    Number<DecimalFamily> r, x(123);
    EXPECT_EQ(HI_decLShift(x, 4294967293u), x.h());
    EXPECT_EQ(takeError(), TW_ERR_TOO_LARGE);
    EXPECT_EQ(HI_getSign(x), 0);
    HI_set_s32(x, -19);
    HI_decRShift(x, 1);
    EXPECT_EQ(HI_get_s32(x), -1);
    HI_set_u64(x, 123456789123456789ull);
    HI_decRShift(x, 9);
    EXPECT_EQ(x.object().rec().topIndex, 0u);
    HI_set_u32(x, 1000000000u);
    HI_pow(r, x, 1000);
    EXPECT_EQ(HI_getDigits(r), 9001u);
    EXPECT_EQ(HI_getTailDecZeros(r), 9000u);
    EXPECT_EQ(r.object().rec().lowIndex, 1000u);
    HI_set_s64(x, -1200000000000000000);
    EXPECT_EQ(HI_getTailDecZeros(x), 17u);
    HI_set_u32(x, 0);
    EXPECT_EQ(HI_getTailDecZeros(x), 0u);
    TW_setTerminate(1);
    HI_set_u32(x, 1000);
    EXPECT_EQ(HI_getTailDecZeros(x), 0u);
    EXPECT_EQ(HI_getDigits(x), 0u);
}

TYPED_TEST(Arith, DivisionConventions) {
    using F = TypeParam;
    Number<F> q, r, a, b;
    auto divRem = [&](long x, long y) {
        F::set_s64(a, x), F::set_s64(b, y);
        F::divRem(q, a, b, r);
        return std::pair{F::get_s64(q), F::get_s64(r)};
    };
    EXPECT_EQ(divRem(-7, 2), std::pair(-3L, -1L));  // truncating; the remainder has the dividend's sign
    EXPECT_EQ(divRem(7, -2), std::pair(-3L, 1L));
    EXPECT_EQ(divRem(3, 7), std::pair(0L, 3L));
    // The 32-bit division's remainder follows the quotient's sign.
    auto divS32 = [&](long x, std::int32_t d) {
        std::int32_t rest = 12345;
        F::set_s64(a, x);
        F::div_s32(q, a, d, &rest);
        return std::pair{F::get_s64(q), long(rest)};
    };
    EXPECT_EQ(divS32(-7, -2), std::pair(3L, 1L));
    EXPECT_EQ(divS32(7, -2), std::pair(-3L, -1L));
    EXPECT_EQ(divS32(1, -2), std::pair(0L, -1L));
    EXPECT_EQ(divS32(-9000000000000000000, INT32_MIN), std::pair(4190951585L, 1652817920L));
    // A remainder handle that is a or b: quotient 0, remainder untouched.
    F::set_s64(a, 1000), F::set_s64(b, -7), F::set_s64(q, 5);
    F::divRem(q, a, b, a);
    EXPECT_EQ(F::getSign(q), 0);
    EXPECT_EQ(F::get_s64(a), 1000);
    F::set_s64(q, 5);
    F::divRem(q, a, b, b);
    EXPECT_EQ(F::getSign(q), 0);
    EXPECT_EQ(F::get_s64(b), -7);
    // Zero divisors: -5, the quotient zero, the remainder left (mod: zero).
    Number<F> zero;
    F::set_s64(r, 6);
    EXPECT_EQ(F::divRem(q, a, zero, r), q.h());
    EXPECT_EQ(takeError(), TW_ERR_DIV_ZERO);
    EXPECT_EQ(F::getSign(q), 0);
    EXPECT_EQ(F::get_s64(r), 6);
    EXPECT_EQ(F::mod(r, a, zero), r.h());
    EXPECT_EQ(takeError(), TW_ERR_DIV_ZERO);
    EXPECT_EQ(F::getSign(r), 0);
    std::int32_t rest = 42;
    F::set_s64(q, 5);
    EXPECT_EQ(F::div_s32(q, a, 0, &rest), q.h());
    EXPECT_EQ(takeError(), TW_ERR_DIV_ZERO);
    EXPECT_EQ(rest, 42);
    EXPECT_EQ(F::getSign(q), 0);
}

// Small sums that carry exactly into one and two new limbs, of either sign,
// into a result that held a longer value.
TYPED_TEST(Arith, SmallSumsCarryIntoNewLimbs) {
    using F = TypeParam;
    for (unsigned long limbs : {1ul, 2ul})
        for (long sign : {1l, -1l}) {
            Mpz va, one(sign), want;
            mpz_ui_pow_ui(want, F::Radix::base, limbs);
            mpz_mul_si(want, want, sign);
            mpz_sub(va, want, one);
            Number<F> r, a, b;
            a.set(va);
            b.set(one);
            for (auto op : {F::add, F::sub}) {
                r.set(Mpz("-987654321987654321987654321"));
                if (op == F::sub) mpz_neg(one, one), b.set(one);
                op(r, a, b);
                EXPECT_TRUE(r.value() == want && r.normal()) << limbs << " limbs, sign " << sign;
            }
        }
}

TYPED_TEST(Arith, WordOperationsAndTheirHandleChecks) {
    using F = TypeParam;
    Number<F> r(11), a(-6);
    F::mul_u32(a, a, 1);
    EXPECT_EQ(F::get_s64(a), -6);
    F::add_u32(a, a, 10);  // -6 + 10 stays negative
    EXPECT_EQ(F::get_s64(a), -4);
    F::set_u64(a, UINT64_MAX);
    F::add_u32(a, a, 1);  // past 64 bits: no longer a machine integer
    EXPECT_EQ(F::get_u64(a), 0u);
    EXPECT_EQ(F::getBits(a), 65u);
    // sub_u32 and mul_u32 check only the result handle: an unknown source
    // leaves the result as it was, without an error; add_u32 checks both.
    H<F> stale = F::newNumber();
    F::deleteNumber(stale);
    EXPECT_EQ(F::sub_u32(r, stale, 3), r.h());
    EXPECT_EQ(F::mul_u32(r, stale, 3), r.h());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(F::get_s64(r), 11);
    EXPECT_EQ(F::add_u32(r, stale, 3), nullptr);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    EXPECT_EQ(F::sub_u32(stale, a, 3), nullptr);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    for (auto op : {F::add, F::sub, F::mul, F::mod, F::bitAnd, F::bitOr, F::bitXor}) {
        EXPECT_EQ(op(r, a, stale), nullptr);
        EXPECT_EQ(takeError(), TW_ERR_HANDLE);
        EXPECT_EQ(op(nullptr, a, a), nullptr);
        EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    }
    EXPECT_EQ(F::get_s64(r), 11);
    EXPECT_EQ(F::random(nullptr, 10), nullptr);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
}

TEST_F(Clean, BitsOfBinaryNumbers) {
    Gen gen(23);
    Number<BinaryFamily> x;
    const Mpz v = gen.signedValue<Bin>(40, Shape::LowZeros);
    x.set(v);
    Mpz m;
    mpz_abs(m, v);  // a negative value answers for its magnitude
    for (unsigned k = 0; k < 1200; ++k) ASSERT_EQ(HX_isBitOne(x, k), unsigned(mpz_tstbit(m, k))) << k;
    EXPECT_EQ(HX_isBitOne(x, 0xFFFFFFFFu), 0u);
    EXPECT_EQ(HX_getTailBitZeros(x), mpz_sgn(v) ? mpz_scan1(v, 0) : 0u);
    for (unsigned k : {0u, 1u, 27u, 28u, 29u, 56u, 100u, 999u, 1120u, 1121u, 5000u}) {
        Mpz want;
        x.set(v);
        EXPECT_EQ(HX_modPowTwo(x, k), x.h());
        k ? mpz_tdiv_r_2exp(want, v, k) : mpz_set(want, v);  // k = 0 leaves the value as it is
        EXPECT_TRUE(holds(x, want)) << "k " << k;
    }
    HX_set_u32(x, 0);
    EXPECT_EQ(HX_getTailBitZeros(x), 0u);
    HX_handle stale = HX_new();
    HX_delete(stale);
    EXPECT_EQ(HX_isBitOne(stale, 0), 0u);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    EXPECT_EQ(HX_modPowTwo(stale, 3), nullptr);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    TW_setTerminate(1);
    HX_set_u32(x, 8);
    EXPECT_EQ(HX_getTailBitZeros(x), 0u);
}

// Bit and digit counts next to the powers of 2 and 10, where a count steps up.
TYPED_TEST(Arith, CountsNextToPowers) {
    using F = TypeParam;
    Number<F> x;
    for (unsigned k : {1u, 2u, 27u, 28u, 29u, 63u, 64u, 83u, 84u, 85u, 90u, 91u, 200u, 1001u, 33333u})
        for (long add : {-1L, 0L, 1L})
            for (int base : {2, 10}) {
                Mpz v;
                mpz_ui_pow_ui(v, base, k);
                add < 0 ? mpz_sub_ui(v, v, 1) : mpz_add_ui(v, v, add);
                if (k % 2) mpz_neg(v, v);
                x.set(v);
                Mpz m;
                mpz_abs(m, v);
                ASSERT_EQ(F::getBits(x), mpz_sizeinbase(v, 2)) << base << "^" << k << " + " << add;
                ASSERT_EQ(F::getDigits(x), m.str().size()) << base << "^" << k << " + " << add;
            }
}

// A raised flag makes long operations give zero; lowered, work goes on.
TYPED_TEST(Arith, TerminateFlagMakesResultsZero) {
    using F = TypeParam;
    using R = typename F::Radix;
    Gen gen(24);
    Number<F> r, a, b, q;
    a.set(value<R>(gen.limbs<R>(700)));
    b.set(value<R>(gen.limbs<R>(300)));
    TW_setTerminate(1);
    for (auto op : {F::mul, F::bitAnd, F::bitOr, F::bitXor}) {
        F::set_s64(r, 5);
        op(r, a, b);
        EXPECT_TRUE(r.normal() && F::getSign(r) == 0);
    }
    F::divRem(q, a, b, nullptr);
    EXPECT_EQ(F::getSign(q), 0);
    F::set_s32(r, 3);
    F::pow(q, r, 1000);
    EXPECT_EQ(F::getSign(q), 0);
    EXPECT_EQ(takeError(), TW_ERR_STOPPED);
    F::mul(r, a, b);
    EXPECT_EQ(F::getSign(r), 1);
}

// A product of two ten-million-digit numbers, stopped from another thread
// once it runs: zero, never a partial product.
TYPED_TEST(Arith, SecondThreadStopsALongProduct) {
    using F = TypeParam;
    using R = typename F::Radix;
    const std::size_t limbs = R::isBinary ? 1189000 : 1111112;
    Gen gen(25);
    Number<F> r, a, b;
    for (auto* x : {&a, &b}) {
        auto& rec = x->object().rec();
        tw::resizeStorage(rec, std::uint32_t(limbs), true);
        for (std::size_t i = 0; i < limbs; ++i) rec.digits[i] = Limb(gen.next() % R::base);
        rec.digits[limbs - 1] |= 1;
        tw::normalizeIndices(rec, std::uint32_t(limbs));
        x->object().sign = 1;
    }
    std::atomic<bool> started{false};
    std::thread stopper([&] {
        while (!started.load()) std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        TW_setTerminate(1);
    });
    started.store(true);
    EXPECT_EQ(F::mul(r, a, b), r.h());
    stopper.join();
    EXPECT_EQ(takeError(), TW_ERR_STOPPED);
    EXPECT_TRUE(r.normal() && F::getSign(r) == 0);
}

}  // namespace
}  // namespace twtest
