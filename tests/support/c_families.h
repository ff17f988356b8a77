// Test support: the two integer families of the C interface behind one type,
// so that typed tests run every case on HI_ and HX_ alike.  Number<F> owns a
// handle for the life of a test.
#pragma once

#include <gtest/gtest.h>

#include "frame/handles.h"
#include "support/limb_oracle.h"
#include "tarnwick.h"

namespace twtest {

// Every shared function as a static member named without its prefix.
#define TWTEST_FAMILY(Name, P, S)                                      \
    struct Name {                                                      \
        using Handle = P##_handle;                                     \
        using Radix = tw::Family<Handle>::Number::Radix;               \
        static constexpr const char* prefix = #P;                      \
        static constexpr auto newNumber = P##_new;                     \
        static constexpr auto deleteNumber = P##_delete;               \
        static constexpr auto getCount = P##_getCount;                 \
        static constexpr auto set_u32 = P##_set_u32;                   \
        static constexpr auto set_s32 = P##_set_s32;                   \
        static constexpr auto set_u64 = P##_set_u64;                   \
        static constexpr auto set_s64 = P##_set_s64;                   \
        static constexpr auto set_own = P##_set_##S;                   \
        static constexpr auto get_u32 = P##_get_u32;                   \
        static constexpr auto get_s32 = P##_get_s32;                   \
        static constexpr auto get_u64 = P##_get_u64;                   \
        static constexpr auto get_s64 = P##_get_s64;                   \
        static constexpr auto getSign = P##_getSign;                   \
        static constexpr auto isZero = P##_isZero;                     \
        static constexpr auto isEven = P##_isEven;                     \
        static constexpr auto isOdd = P##_isOdd;                       \
        static constexpr auto isAbsOne = P##_isAbsOne;                 \
        static constexpr auto negate = P##_negate;                     \
        static constexpr auto abs = P##_abs;                           \
        static constexpr auto swap = P##_swap;                         \
        static constexpr auto compare = P##_compare_##S;               \
        static constexpr auto compare_s32 = P##_compare_s32;           \
        static constexpr auto compare_u32 = P##_compare_u32;           \
        static constexpr auto compareAbs = P##_compareAbs_##S;         \
        static constexpr auto compareAbs_s32 = P##_compareAbs_s32;     \
        static constexpr auto compareAbs_u32 = P##_compareAbs_u32;     \
        static constexpr auto getDigits = P##_getDigits;               \
        static constexpr auto getBits = P##_getBits;                   \
        static constexpr auto add = P##_add;                           \
        static constexpr auto sub = P##_sub;                           \
        static constexpr auto add_u32 = P##_add_u32;                   \
        static constexpr auto sub_u32 = P##_sub_u32;                   \
        static constexpr auto mul_u32 = P##_mul_u32;                   \
        static constexpr auto bitLShift = P##_bitLShift;               \
        static constexpr auto bitRShift = P##_bitRShift;               \
        static constexpr auto mul = P##_mul;                           \
        static constexpr auto divRem = P##_divRem;                     \
        static constexpr auto mod = P##_mod;                           \
        static constexpr auto div_s32 = P##_div_s32;                   \
        static constexpr auto pow = P##_pow;                           \
        static constexpr auto random = P##_random;                     \
        static constexpr auto bitAnd = P##_bitAnd;                     \
        static constexpr auto bitOr = P##_bitOr;                       \
        static constexpr auto bitXor = P##_bitXor;                     \
        static constexpr auto getStrA = P##_getStrA;                   \
        static constexpr auto getStrW = P##_getStrW;                   \
        static constexpr auto getHexStrA = P##_getHexStrA;             \
        static constexpr auto getHexStrW = P##_getHexStrW;             \
        static constexpr auto getStrRadixA = P##_getStrRadixA;         \
        static constexpr auto getStrRadixW = P##_getStrRadixW;         \
        static constexpr auto set_strA = P##_set_strA;                 \
        static constexpr auto set_strW = P##_set_strW;                 \
        static constexpr auto setHexStrA = P##_setHexStrA;             \
        static constexpr auto setHexStrW = P##_setHexStrW;             \
        static constexpr auto freeStrBuffer = P##_freeStrBuffer;       \
    }
TWTEST_FAMILY(DecimalFamily, HI, hi);
TWTEST_FAMILY(BinaryFamily, HX, hx);
#undef TWTEST_FAMILY

using BothFamilies = ::testing::Types<DecimalFamily, BinaryFamily>;

// A handle owned by a test.
template <class F>
class Number {
public:
    Number() : h_(F::newNumber()) {}
    explicit Number(std::int64_t v) : Number() { F::set_s64(h_, v); }
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;
    ~Number() { F::deleteNumber(h_); }
    typename F::Handle h() const { return h_; }
    operator typename F::Handle() const { return h_; }
    // The object behind the handle, for checks against GMP.
    auto& object() const { return *h_->number; }
    Mpz value() const { return numberToMpz(object()); }
    void set(mpz_srcptr v) { setNumberFromMpz(object(), v); }

private:
    typename F::Handle h_;
};

// Clears the error state around each test so that a failure cannot leak into the next.
class ErrorStateGuard : public ::testing::Test {
protected:
    void SetUp() override { TW_setTerminate(0); }
    void TearDown() override { TW_setTerminate(0); }
};

}  // namespace twtest
