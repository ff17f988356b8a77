// Handles and what they hold: the handle tables, the failure values of
// unknown, deleted and wrong-family handles, the error state and its
// first-error-wins rule, machine integers in and out, the storage rules of
// the number record, and the radix converter (RC_).
#include "support/harness.h"

#include <limits>
#include <set>

#include "api/call_frame.h"
#include "frame/machine_int.h"
#include "frame/number_record.h"

namespace twtest {
namespace {

template <class F>
using Handles = Family<F>;
TYPED_TEST_SUITE(Handles, BothFamilies);

TYPED_TEST(Handles, TableCountsAndNeverReusesAHandle) {
    using F = TypeParam;
    const std::int32_t before = F::getCount();
    typename F::Handle h[5];
    for (auto& x : h) x = F::newNumber();
    EXPECT_EQ(F::getCount(), before + 5);
    EXPECT_EQ(F::isZero(h[0]), 1u);
    EXPECT_EQ(F::getDigits(h[0]), 1u);
    EXPECT_EQ(F::getBits(h[0]), 0u);
    for (auto& x : h) EXPECT_EQ(F::deleteNumber(x), 1u);
    EXPECT_EQ(F::getCount(), before);
    // Slots are reused under new generations: a handle value is not handed
    // out again, and a stale one keeps failing, also millions of turns later.
    std::set<const void*> seen;
    // A new number is zero with no text, though its storage may be a
    // deleted one's.
    for (int i = 0; i < 200; ++i) {
        auto x = F::newNumber();
        EXPECT_TRUE(seen.insert(x).second) << "handle value reused";
        ASSERT_TRUE(F::getSign(x) == 0 && F::isZero(x) == 1 && F::getDigits(x) == 1);
        F::set_u64(x, ~0ull);
        if (i % 2) F::negate(x), F::getStrA(x, 0, nullptr), F::getStrW(x, 0, nullptr);
        F::deleteNumber(x);
    }
    for (int i = 0; i < 2000000; ++i) F::deleteNumber(F::newNumber());
    for (const void* old : seen) ASSERT_EQ(F::isZero(static_cast<typename F::Handle>(const_cast<void*>(old))), 1u);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    EXPECT_EQ(F::getCount(), before);
    // Deleting null succeeds quietly; deleting twice or a stranger fails with -4.
    EXPECT_EQ(F::deleteNumber(nullptr), 1u);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(F::deleteNumber(h[0]), 0u);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    int local = 0;
    EXPECT_EQ(F::deleteNumber(reinterpret_cast<typename F::Handle>(&local)), 0u);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
}

// Every kind of function answers an unknown handle with its own failure
// value, -4 and the flag raised, and changes no other argument.
TYPED_TEST(Handles, UnknownHandleFailureValues) {
    using F = TypeParam;
    Number<F> good(-42);
    const auto stale = F::newNumber();
    F::deleteNumber(stale);
    for (auto bad : {static_cast<typename F::Handle>(nullptr), stale}) {
        auto fails = [](bool failureValue, const char* what) {
            EXPECT_TRUE(failureValue) << what;
            EXPECT_EQ(TW_isTerminated(), 1u) << what;
            EXPECT_EQ(takeError(), TW_ERR_HANDLE) << what;
        };
        fails(F::set_u32(bad, 5) == nullptr, "set_u32");
        fails(F::set_own(good, bad) == nullptr, "set_own");
        fails(F::set_own(bad, good) == nullptr, "set_own");
        fails(F::get_s64(bad) == 0, "get_s64");
        fails(F::get_u32(bad) == 0u, "get_u32");
        fails(F::getSign(bad) == 0, "getSign");
        fails(F::isZero(bad) == 1u, "isZero");
        fails(F::isEven(bad) == 1u, "isEven");
        fails(F::isOdd(bad) == 0u, "isOdd");
        fails(F::isAbsOne(bad) == 0u, "isAbsOne");
        fails(F::negate(bad) == nullptr, "negate");
        fails(F::swap(good, bad) == nullptr, "swap");
        fails(F::compare(good, bad) == 0, "compare");
        fails(F::compareAbs(bad, good) == 0, "compareAbs");
        fails(F::compare_s32(bad, -1) == 0, "compare_s32");
        fails(F::getDigits(bad) == 0u, "getDigits");
        fails(F::getBits(bad) == 0u, "getBits");
    }
    EXPECT_EQ(F::get_s64(good), -42);
}

// Arrays of handles pass the frame in order: a null array with a count, or an
// unknown handle anywhere, is -4 and a null result, with the operation not run.
TEST_F(Clean, HandleArraysInTheFrame) {
    Number<DecimalFamily> r(0), a(3), b(-5), gone(1);
    const HI_handle deleted = gone.h();
    HI_delete(deleted);
    std::vector<std::int64_t> seen;
    const auto record = [&](tw::DecimalNumber& out, const std::vector<const tw::DecimalNumber*>& xs) {
        seen.clear();
        for (const tw::DecimalNumber* x : xs) seen.push_back(tw::getS64(*x));
        tw::setS64(out, std::int64_t(xs.size()));
    };
    const HI_handle both[] = {a, b, a};
    EXPECT_EQ(tw::frameUpdateFromArray(record, r.h(), both, 3), r.h());
    EXPECT_EQ(seen, (std::vector<std::int64_t>{3, -5, 3}));
    EXPECT_EQ(HI_get_s64(r), 3);
    EXPECT_EQ(tw::frameUpdateFromArray(record, r.h(), static_cast<const HI_handle*>(nullptr), 0), r.h());
    EXPECT_TRUE(seen.empty());
    EXPECT_EQ(HI_get_s64(r), 0);
    seen = {7};
    EXPECT_EQ(tw::frameUpdateFromArray(record, r.h(), static_cast<const HI_handle*>(nullptr), 2), nullptr);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    const HI_handle withDeleted[] = {a, deleted};
    EXPECT_EQ(tw::frameUpdateFromArray(record, r.h(), withDeleted, 2), nullptr);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    EXPECT_EQ(tw::frameUpdateFromArray(record, deleted, both, 3), nullptr);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    EXPECT_EQ(seen, (std::vector<std::int64_t>{7}));
    EXPECT_EQ(HI_get_s64(r), 0);
}

TEST_F(Clean, ErrorStateRules) {
    Number<DecimalFamily> hi(7), a(1), b(2);
    Number<BinaryFamily> hx(7);
    // A handle of the other family is unknown.
    EXPECT_EQ(HI_get_u32(reinterpret_cast<HI_handle>(hx.h())), 0u);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    EXPECT_EQ(HX_delete(reinterpret_cast<HX_handle>(hi.h())), 0u);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    EXPECT_EQ(HI_get_u32(hi), 7u);
    // The first error wins until cleared: the flag's -1, then a handle's -4.
    TW_setTerminate(1);
    EXPECT_EQ(TW_getLastError(), TW_ERR_STOPPED);
    EXPECT_EQ(HI_get_u32(nullptr), 0u);
    EXPECT_EQ(takeError(), TW_ERR_STOPPED);
    EXPECT_EQ(TW_isTerminated(), 0u);
    HX_abs(nullptr);
    TW_setTerminate(1);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    // Handles are checked in argument order; the first unknown one stops the call.
    EXPECT_EQ(HI_swap(a, nullptr), nullptr);
    EXPECT_EQ(HI_get_u32(a), 1u);
    TW_setTerminate(0);
    EXPECT_EQ(HI_swap(nullptr, b), nullptr);
    EXPECT_EQ(HI_get_u32(b), 2u);
}

// ---- machine integers ----

TYPED_TEST(Handles, MachineIntegerExtremesAndFitRules) {
    using F = TypeParam;
    constexpr std::int64_t i64min = std::numeric_limits<std::int64_t>::min();
    Number<F> x;
    auto reads = [&](std::uint32_t u32, std::int32_t s32, std::uint64_t u64, std::int64_t s64) {
        EXPECT_TRUE(x.normal());
        return F::get_u32(x) == u32 && F::get_s32(x) == s32 && F::get_u64(x) == u64 && F::get_s64(x) == s64;
    };
    F::set_s32(x, INT32_MIN);
    EXPECT_TRUE(reads(0, INT32_MIN, 0, INT32_MIN));  // a reader that cannot hold the value gives 0
    F::set_u32(x, 4294967295u);
    EXPECT_TRUE(reads(4294967295u, 0, 4294967295u, 4294967295));
    F::set_u32(x, 2147483648u);
    EXPECT_TRUE(reads(2147483648u, 0, 2147483648u, 2147483648));
    F::negate(x);
    EXPECT_TRUE(reads(0, INT32_MIN, 0, -2147483648));
    F::set_u64(x, UINT64_MAX);
    EXPECT_TRUE(reads(0, 0, UINT64_MAX, 0));
    F::set_s64(x, i64min);
    EXPECT_TRUE(reads(0, 0, 0, i64min));
    F::abs(x);
    EXPECT_TRUE(reads(0, 0, 1ull << 63, 0));
    Mpz big;
    mpz_setbit(big, 64);
    x.set(big);
    EXPECT_TRUE(reads(0, 0, 0, 0));
    F::set_s64(x, 0);
    EXPECT_EQ(F::getSign(x), 0);
    F::negate(x);
    EXPECT_TRUE(reads(0, 0, 0, 0) && F::getSign(x) == 0);
    Gen gen(30);
    for (int i = 0; i < 2000; ++i) {
        const std::uint64_t u = gen.next() >> gen.below(64);
        F::set_u64(x, u);
        ASSERT_TRUE(holds(x, Mpz(u)) || u > std::uint64_t(LONG_MAX));
        ASSERT_TRUE(reads(u <= UINT32_MAX ? std::uint32_t(u) : 0, u <= INT32_MAX ? std::int32_t(u) : 0, u,
                          u <= std::uint64_t(INT64_MAX) ? std::int64_t(u) : 0));
        const std::int64_t s = -std::int64_t(u >> 1);
        F::set_s64(x, s);
        ASSERT_TRUE(holds(x, Mpz(long(s))));
        ASSERT_EQ(F::get_s32(x), s >= INT32_MIN ? std::int32_t(s) : 0);
    }
}

TEST(MachineIntegers, LimbLayouts) {
    Number<DecimalFamily> d;
    HI_set_u64(d, UINT64_MAX);
    const auto& r = d.object().rec();
    EXPECT_EQ(Limbs(r.digits, r.digits + 3), (Limbs{709551615u, 446744073u, 18u}));
    EXPECT_EQ(r.topIndex, 2u);
    HI_set_u32(d, 1000000000u);
    EXPECT_TRUE(r.lowIndex == 1 && r.topIndex == 1 && r.digits[1] == 1);
    HI_set_u32(d, 4294967295u);
    EXPECT_TRUE(r.digits[0] == 294967295u && r.digits[1] == 4);
    Number<BinaryFamily> b;
    HX_set_u32(b, 0xFFFFFFFFu);
    const auto& s = b.object().rec();
    EXPECT_TRUE(s.digits[0] == 0x0FFFFFFFu && s.digits[1] == 0xF && s.topIndex == 1);
    HX_set_u32(b, 1u << 28);
    EXPECT_TRUE(s.lowIndex == 1 && s.digits[1] == 1);
    // Equal top limbs: the lower limbs decide.
    HI_set_u64(d, 1000000001ull);
    Number<DecimalFamily> e(1000000000);
    EXPECT_EQ(HI_compareAbs_hi(d, e), 1);
    EXPECT_EQ(HI_compareAbs_hi(e, d), -1);
}

TYPED_TEST(Handles, CopySwapSignsAndWordComparisons) {
    using F = TypeParam;
    Number<F> a(-123456789012345), b(77), x(-5), zero;
    EXPECT_EQ(F::set_own(b, a), b.h());
    EXPECT_EQ(F::get_s64(b), -123456789012345);
    EXPECT_EQ(F::set_own(a, a), a.h());
    F::set_s64(b, 5);
    const auto* limbsA = a.object().limbs();
    EXPECT_EQ(F::swap(a, b), a.h());
    EXPECT_EQ(F::get_s64(a), 5);
    EXPECT_EQ(b.object().limbs(), limbsA);  // limbs exchanged, not copied
    EXPECT_EQ(F::swap(a, a), a.h());
    EXPECT_EQ(F::get_s64(a), 5);
    EXPECT_TRUE(F::isOdd(x) && !F::isEven(x) && !F::isAbsOne(x));
    F::set_s32(x, -1);
    EXPECT_EQ(F::isAbsOne(x), 1u);
    F::set_u64(x, 1000000000ull * 268435456ull);  // a zero low limb in both radices
    EXPECT_TRUE(F::isEven(x) && !F::isAbsOne(x));
    F::set_s32(x, -1);
    EXPECT_EQ(F::compare_u32(x, 0), -1);  // every negative is below every u32
    EXPECT_EQ(F::compare_s32(zero, -3), 1);
    EXPECT_EQ(F::compare_s32(zero, 3), -1);
    EXPECT_EQ(F::compare_s32(zero, 0), 0);
    F::set_s32(x, INT32_MIN);
    EXPECT_EQ(F::compare_s32(x, INT32_MIN), 0);
    EXPECT_EQ(F::compareAbs_s32(x, INT32_MIN), 0);
    EXPECT_EQ(F::compareAbs_u32(x, 2147483648u), 0);
    F::set_u64(x, 1ull << 40);
    EXPECT_EQ(F::compareAbs_u32(x, UINT32_MAX), 1);
    F::negate(x);
    EXPECT_EQ(F::compare_s32(x, INT32_MIN), -1);
    EXPECT_EQ(F::compare_u32(x, 5), -1);
    Gen gen(31);
    for (int i = 0; i < 300; ++i) {
        const Mpz v = gen.signedValue<typename F::Radix>(1 + gen.below(3));
        x.set(v);
        const std::uint32_t u = std::uint32_t(gen.next());
        const std::int32_t s = std::int32_t(gen.next());
        Mpz m;
        mpz_abs(m, v);
        ASSERT_EQ(F::compare_u32(x, u), (mpz_cmp_ui(v, u) > 0) - (mpz_cmp_ui(v, u) < 0));
        ASSERT_EQ(F::compare_s32(x, s), (mpz_cmp_si(v, s) > 0) - (mpz_cmp_si(v, s) < 0));
        ASSERT_EQ(F::compareAbs_u32(x, u), (mpz_cmp_ui(m, u) > 0) - (mpz_cmp_ui(m, u) < 0));
        const unsigned long as = s < 0 ? std::uint32_t(0u - std::uint32_t(s)) : std::uint32_t(s);
        ASSERT_EQ(F::compareAbs_s32(x, s), (mpz_cmp_ui(m, as) > 0) - (mpz_cmp_ui(m, as) < 0));
    }
}

// ---- the number record ----

class Records : public Clean {
protected:
    void TearDown() override {
        tw::setLimbAllocationCeilingForTesting(UINT32_MAX);
        Clean::TearDown();
    }
    static void write(tw::NumberRecord& r, std::initializer_list<Limb> limbs) {
        tw::resizeStorage(r, std::uint32_t(limbs.size()), true);
        std::copy(limbs.begin(), limbs.end(), r.digits);
        tw::normalizeIndices(r, std::uint32_t(limbs.size()));
    }
};

TEST_F(Records, StorageRules) {
    tw::DecimalNumber fresh;
    EXPECT_TRUE(fresh.sign == 0 && fresh.rec().allocated() == 3 && fresh.isZero());
    tw::NumberRecord r;
    tw::resizeStorage(r, 0, false);
    EXPECT_EQ(r.allocated(), 3u);  // never fewer than three limbs
    write(r, {1, 2, 3, 4, 5, 6, 7, 8});
    tw::resizeStorage(r, 2, false);  // shrinking keeps the length, zeroes from the count up
    EXPECT_EQ(r.allocated(), 8u);
    EXPECT_EQ(Limbs(r.digits, r.digits + 8), (Limbs{1, 2, 0, 0, 0, 0, 0, 0}));
    write(r, {9, 8, 7});
    tw::resizeStorage(r, 40, false);  // growing keeps the value
    EXPECT_TRUE(r.allocated() == 40 && r.digits[0] == 9 && r.digits[2] == 7 && r.digits[39] == 0);
    tw::resizeStorage(r, 5, true);  // discarding zeroes everything
    EXPECT_EQ(std::count(r.digits, r.digits + r.allocated(), 0u), std::ptrdiff_t(r.allocated()));
    // Advanced digits move back to the start of the storage.
    write(r, {0, 0, 5, 6, 7});
    r.digits += 2;
    tw::resizeStorage(r, 3, false);
    EXPECT_EQ(r.digits, r.limbs.data());
    EXPECT_EQ(Limbs(r.digits, r.digits + 3), (Limbs{5, 6, 7}));
    // A copy holds exactly the used limbs and no text.
    write(r, {0, 1, 0, 0, 0, 4, 0, 0, 0, 0});
    EXPECT_TRUE(r.topIndex == 5 && r.lowIndex == 1);
    r.textBufferA = std::make_unique<std::string>("text");
    tw::NumberRecord copy(r);
    EXPECT_TRUE(copy.allocated() == 6 && copy.topIndex == 5 && copy.lowIndex == 1 && copy.textBufferA == nullptr);
    tw::NumberRecord target;
    target.textBufferW = std::make_unique<std::u16string>(u"old");
    target = r;
    EXPECT_TRUE(target.textBufferW == nullptr && target.digits[5] == 4);
    write(r, {0, 0, 0, 0});
    EXPECT_TRUE(r.topIndex == 0 && r.lowIndex == 0 && r.allocated() == 3);
    // Growing again within the capacity zeroes the limbs a longer value left.
    tw::resizeStorage(r, 9, false);
    EXPECT_EQ(std::count(r.digits, r.digits + 9, 0u), 9);
}

// Storage that cannot grow turns a number into zero with -3 and the flag raised.
TEST_F(Records, ExhaustedStorageLeavesZero) {
    tw::DecimalNumber x;
    x.sign = 1;
    write(x.rec(), {1, 2, 3});
    x.rec().textBufferA = std::make_unique<std::string>("3000000002000000001");
    tw::setLimbAllocationCeilingForTesting(100);
    tw::resizeStorage(x.rec(), 1000, false);
    x.normalizeSign();
    EXPECT_TRUE(x.isZero() && x.sign == 0 && x.rec().allocated() >= 3 && x.rec().textBufferA == nullptr);
    EXPECT_EQ(TW_isTerminated(), 1u);
    EXPECT_EQ(takeError(), TW_ERR_TOO_LARGE);
    tw::BinaryNumber big, into;
    big.sign = -1;
    tw::setLimbAllocationCeilingForTesting(UINT32_MAX);
    tw::resizeStorage(big.rec(), 50, true);
    std::fill(big.rec().digits, big.rec().digits + 50, 7);
    tw::normalizeIndices(big.rec(), 50);
    tw::setLimbAllocationCeilingForTesting(10);
    into = big;
    EXPECT_TRUE(into.isZero() && into.sign == 0);
    EXPECT_EQ(takeError(), TW_ERR_TOO_LARGE);
}

// ---- the radix converter ----

using Digits = std::vector<std::uint32_t>;

class Converter {
public:
    explicit Converter(std::uint32_t radix) : h_(RC_new(radix)) {}
    ~Converter() { RC_delete(h_); }
    operator RC_handle() const { return h_; }
    Digits digits() const {
        DigitVectorView view{};
        RC_getVector(h_, &view);
        return Digits(view.data, view.data + view.size);
    }
    void set(const Digits& d) { EXPECT_EQ(RC_resetVector(h_, d.data(), std::uint32_t(d.size())), std::int32_t(d.size())); }

private:
    RC_handle h_;
};

// Digits of |v| in a radix (0 = 2^32) through GMP's division.
Digits digitsOf(mpz_srcptr v, std::uint32_t radix) {
    Digits out;
    Mpz a;
    mpz_abs(a, v);
    while (mpz_sgn(a)) {
        if (radix) {
            out.push_back(std::uint32_t(mpz_fdiv_q_ui(a, a, radix)));
        } else {
            out.push_back(std::uint32_t(mpz_get_ui(a)));
            mpz_fdiv_q_2exp(a, a, 32);
        }
    }
    return out;
}
Mpz valueOf(const Digits& d, std::uint32_t radix) {
    Mpz v;
    for (std::size_t i = d.size(); i-- > 0;) radix ? mpz_mul_ui(v, v, radix) : mpz_mul_2exp(v, v, 32), mpz_add_ui(v, v, d[i]);
    return v;
}

TEST_F(Clean, ConverterFieldsAndRules) {
    const std::int32_t before = RC_getCount();
    {
        Converter c(10);
        EXPECT_EQ(RC_getCount(), before + 1);
        EXPECT_TRUE(RC_getRadix(c) == 10 && RC_getSign(c) == 0 && c.digits().empty() && RC_sumOfDigits(c) == 0);
        EXPECT_EQ(RC_getVector(c, nullptr), nullptr);
        c.set({5});
        EXPECT_EQ(RC_getSign(c), 0);  // resetVector keeps the cleared sign
        EXPECT_EQ(RC_resetSign(c, 7), 7);  // any value is stored; conversions read plus or minus
        EXPECT_EQ(RC_get_s32(c), 5);
        RC_resetSign(c, -9);
        EXPECT_EQ(RC_get_s32(c), -5);
        c.set({0, 0, 0});
        EXPECT_EQ(RC_getSign(c), 0);  // zero reads sign 0 however spelled
        // Machine integers in and out, with the readers' fit rules.
        RC_set_s32(c, -5);
        EXPECT_TRUE(c.digits() == Digits{5} && RC_getSign(c) == -1 && RC_get_u32(c) == 0 && RC_get_s64(c) == -5);
        RC_set_u32(c, 0xFFFFFFFFu);
        EXPECT_EQ(c.digits(), (Digits{5, 9, 2, 7, 6, 9, 4, 9, 2, 4}));
        EXPECT_EQ(RC_get_s32(c), 0);
        RC_set_s64(c, INT64_MIN);
        EXPECT_TRUE(RC_get_s64(c) == INT64_MIN && RC_get_u64(c) == 0);
        RC_set_u64(c, UINT64_MAX);
        EXPECT_TRUE(RC_get_u64(c) == UINT64_MAX && RC_get_s64(c) == 0);
        Digits d = c.digits();
        d[0] += 1;
        c.set(d);
        EXPECT_EQ(RC_get_u64(c), 0u);
        RC_set_s32(c, -1234);
        EXPECT_EQ(RC_sumOfDigits(c), 10u);  // the sign is ignored
        // Every digit is checked: a bad one leaves the vector as it was.
        const std::uint32_t bad[] = {1, 10, 2};
        EXPECT_EQ(RC_resetVector(c, bad, 3), TW_ERR_RADIX);
        EXPECT_EQ(takeError(), TW_ERR_RADIX);
        EXPECT_EQ(RC_resetVector(c, nullptr, 2), 0);
        EXPECT_EQ(takeError(), TW_ERR_HANDLE);
        EXPECT_EQ(c.digits(), (Digits{4, 3, 2, 1}));
        EXPECT_EQ(RC_resetVector(c, nullptr, 0), 0);
        EXPECT_TRUE(c.digits().empty());
        // Radix 1 is refused everywhere, leaving the converter as it was.
        RC_set_s32(c, 907);
        EXPECT_EQ(RC_convert2Radix(c, 1), nullptr);
        EXPECT_EQ(takeError(), TW_ERR_RADIX);
        EXPECT_EQ(RC_resetRadix(c, 1), 10);
        EXPECT_EQ(takeError(), TW_ERR_RADIX);
        EXPECT_TRUE(RC_getRadix(c) == 10 && c.digits() == (Digits{7, 0, 9}) && RC_getSign(c) == 1);
    }
    EXPECT_EQ(RC_getCount(), before);
    EXPECT_EQ(RC_new(1), nullptr);
    EXPECT_EQ(takeError(), TW_ERR_RADIX);
    // Radix 0 is 2^32: every digit fits, sums are taken in 64 bits.
    Converter wide(0);
    RC_set_u64(wide, 0x123456789ABCDEF0ull);
    EXPECT_EQ(wide.digits(), (Digits{0x9ABCDEF0u, 0x12345678u}));
    wide.set(Digits(5000, 0xFFFFFFFFu));
    EXPECT_EQ(RC_sumOfDigits(wide), 5000ull * 0xFFFFFFFFull);
    // Digits left above a smaller radix: summed in 32 bits where (radix - 1)
    // times the count fits 32 bits.
    wide.set({0xFFFFFFFFu, 0xFFFFFFFFu});
    RC_resetRadix(wide, 3);
    EXPECT_EQ(RC_sumOfDigits(wide), 0xFFFFFFFEull);
    RC_resetRadix(wide, -1);
    EXPECT_EQ(RC_getRadix(wide), 0xFFFFFFFFu);
    EXPECT_EQ(RC_sumOfDigits(wide), 2 * 0xFFFFFFFFull);
}

TEST_F(Clean, ConverterConversionsAgainstGmp) {
    Gen gen(40);
    const std::uint32_t radices[] = {2, 3, 8, 10, 16, 20, 36, 62, 1000, 65536, 1000000000, 268435456, 1000000007,
                                     2147483648u, 3486784401u, 0};
    for (std::uint32_t from : radices)
        for (std::uint32_t to : radices) {
            Converter x(from);
            Digits d(1 + gen.below(300));
            for (auto& v : d) v = std::uint32_t(from ? gen.next() % from : gen.next());
            x.set(d);
            RC_resetSign(x, -1);
            EXPECT_EQ(RC_convert2Radix(x, to), static_cast<RC_handle>(x));
            // The same radix leaves the digits as they are, top zeros included.
            ASSERT_EQ(x.digits(), from == to ? d : digitsOf(valueOf(d, from), to)) << from << " -> " << to;
            ASSERT_EQ(RC_getSign(x), -1);
        }
    Number<DecimalFamily> d;
    Number<BinaryFamily> b;
    for (std::uint32_t radix : {2u, 7u, 10u, 16u, 62u, 1000000000u, 268435456u, 0u, 4294967291u}) {
        Converter c(radix), copy(radix == 10 ? 7 : 10);
        const Mpz v = gen.signedValue<Dec>(300);
        d.set(v);
        b.set(v);
        ASSERT_EQ(RC_set_hi(c, d), static_cast<RC_handle>(c));
        ASSERT_EQ(c.digits(), digitsOf(v, radix)) << radix;
        ASSERT_EQ(RC_getSign(c), mpz_sgn(v));
        ASSERT_EQ(RC_set_hx(c, b), static_cast<RC_handle>(c));
        ASSERT_EQ(c.digits(), digitsOf(v, radix)) << radix;
        ASSERT_EQ(RC_set_rc(copy, c), static_cast<RC_handle>(copy));
        ASSERT_EQ(HI_set_rc(d, copy), d.h());
        ASSERT_EQ(HX_set_rc(b, c), b.h());
        ASSERT_TRUE(holds(d, v) && holds(b, v)) << radix;
    }
    // A new radix gives the same digits another value; a converter set from itself drops top zeros.
    Converter c(10);
    c.set({1, 2, 3});
    RC_resetRadix(c, 16);
    HI_set_rc(d, c);
    EXPECT_EQ(HI_get_s32(d), 0x321);
    c.set({4, 0, 5, 0, 0});
    RC_set_rc(c, c);
    EXPECT_EQ(c.digits(), (Digits{4, 0, 5}));
    HI_set_u32(d, 0);
    RC_set_hi(c, d);
    EXPECT_TRUE(c.digits().empty() && RC_getSign(c) == 0);
    // Text: the reading rules of the numbers, in the converter's radix.
    RC_handle t = RC_new_strA(10, "  -0x1F");
    EXPECT_EQ(RC_get_s32(t), -31);
    RC_delete(t);
    const tw_wchar wide[] = {'1', ',', '0', '2', '4', 0};
    t = RC_new_strW(2, wide);
    EXPECT_EQ(RC_get_u32(t), 1024u);
    RC_delete(t);
    t = RC_new_strA(16, nullptr);
    EXPECT_EQ(RC_getSign(t), 0);
    RC_delete(t);
    EXPECT_EQ(RC_new_strA(1, "5"), nullptr);
    EXPECT_EQ(takeError(), TW_ERR_RADIX);
}

TEST_F(Clean, ConverterHandlesAndTheFlag) {
    RC_handle deleted = RC_new(10);
    EXPECT_EQ(RC_delete(deleted), 1u);
    EXPECT_EQ(RC_delete(nullptr), 1u);
    EXPECT_EQ(takeError(), 0);
    Converter live(10);
    Number<DecimalFamily> d(77);
    const std::uint32_t one = 1;
    DigitVectorView view{};
    for (RC_handle bad : {deleted, static_cast<RC_handle>(nullptr), reinterpret_cast<RC_handle>(d.h())}) {
        auto fails = [](bool failureValue) {
            EXPECT_TRUE(failureValue);
            EXPECT_EQ(takeError(), TW_ERR_HANDLE);
        };
        fails(RC_delete(bad ? bad : deleted) == 0);
        fails(RC_getRadix(bad) == 0);
        fails(RC_getSign(bad) == 0);
        fails(RC_getVector(bad, &view) == nullptr);
        fails(RC_resetVector(bad, &one, 1) == 0);
        fails(RC_resetRadix(bad, 8) == 0);
        fails(RC_resetSign(bad, -1) == 0);
        fails(RC_convert2Radix(bad, 2) == nullptr);
        fails(RC_set_hi(bad, d) == nullptr);
        fails(RC_set_rc(bad, live) == nullptr);
        fails(RC_set_rc(live, bad) == nullptr);
        fails(RC_set_s32(bad, 1) == nullptr);
        fails(RC_set_u64(bad, 1) == nullptr);
        fails(RC_get_s32(bad) == 0 && RC_get_u32(bad) == 0 && RC_get_s64(bad) == 0 && RC_get_u64(bad) == 0);
        fails(RC_sumOfDigits(bad) == 0);
        fails(HI_set_rc(d, bad) == nullptr);
        RC_clearVector(bad);
        EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    }
    EXPECT_EQ(HI_get_s32(d), 77);
    EXPECT_TRUE(live.digits().empty());
    HX_handle staleNumber = HX_new();
    HX_delete(staleNumber);
    EXPECT_EQ(RC_set_hx(live, staleNumber), nullptr);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    EXPECT_EQ(HX_set_rc(staleNumber, live), nullptr);
    EXPECT_EQ(takeError(), TW_ERR_HANDLE);
    // A raised flag stops a conversion: the converter is left empty.
    Gen gen(41);
    Digits seven(20000);
    for (auto& x : seven) x = std::uint32_t(gen.below(7));
    seven.back() = 1;
    live.set(seven);
    RC_resetRadix(live, 7);
    TW_setTerminate(1);
    EXPECT_EQ(RC_convert2Radix(live, 10), static_cast<RC_handle>(live));
    EXPECT_TRUE(live.digits().empty() && RC_getSign(live) == 0);
    EXPECT_EQ(takeError(), TW_ERR_STOPPED);
}

}  // namespace
}  // namespace twtest
