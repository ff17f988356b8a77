// setFromDigits and toDigits against GMP: every radix from 2 to 62, radix 0
// (2^32), radices next to powers, and vectors with zero digits at both ends.
#include "radix/digit_conversion.h"

#include <gmp.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "frame/signed_number.h"
#include "support/limb_oracle.h"

namespace {

using twtest::Mpz;
using Digits = std::vector<std::uint32_t>;

// The value of digits[0..n) in `radix` (0 = 2^32), least significant first.
Mpz digitsToMpz(const Digits& digits, std::uint32_t radix) {
    Mpz m;
    if (radix == 0) {
        if (!digits.empty()) mpz_import(m.v, digits.size(), -1, sizeof(std::uint32_t), 0, 0, digits.data());
        return m;
    }
    for (std::size_t i = digits.size(); i-- > 0;) {
        mpz_mul_ui(m.v, m.v, radix);
        mpz_add_ui(m.v, m.v, digits[i]);
    }
    return m;
}

// The digits of v >= 0 in `radix`, least significant first, none for zero.
Digits mpzToDigits(const Mpz& v, std::uint32_t radix) {
    Digits out;
    if (radix == 0) {
        std::size_t n = 0;
        out.resize((mpz_sizeinbase(v.v, 2) + 31) / 32 + 1);
        mpz_export(out.data(), &n, -1, sizeof(std::uint32_t), 0, 0, v.v);
        out.resize(mpz_sgn(v.v) == 0 ? 0 : n);
        return out;
    }
    Mpz a(v);
    while (mpz_sgn(a.v) != 0) out.push_back(std::uint32_t(mpz_fdiv_q_ui(a.v, a.v, radix)));
    return out;
}

template <class R>
Mpz recordToMpz(const tw::NumberRecord& x) {
    Mpz m;
    twtest::limbsToMpz<R>(m.v, x.digits, x.topIndex + 1);
    return m;
}

template <class R>
tw::NumberRecord recordOf(const Mpz& v) {
    tw::SignedNumber<R> n;
    twtest::setNumberFromMpz(n, v.v);
    return n.rec();
}

// Random digits below the radix; style picks uniform, mostly-maximal or mostly-zero.
Digits randomDigits(twtest::LimbGenerator& gen, std::uint32_t radix, std::size_t n) {
    const std::uint64_t r = radix == 0 ? std::uint64_t(1) << 32 : radix;
    const unsigned style = unsigned(gen.below(3));
    Digits d(n);
    for (auto& x : d) {
        const std::uint64_t u = gen.next() % r;
        x = std::uint32_t(style == 0 ? u : style == 1 ? (gen.below(4) ? r - 1 : u) : (gen.below(4) ? 0 : u));
    }
    return d;
}

template <class R>
class DigitConversion : public ::testing::Test {};
using Radices = ::testing::Types<tw::DecimalRadix, tw::BinaryRadix>;
TYPED_TEST_SUITE(DigitConversion, Radices);

template <class R>
void checkBothWays(const Digits& digits, std::uint32_t radix) {
    const Mpz expected = digitsToMpz(digits, radix);
    tw::NumberRecord x;
    tw::resizeStorage(x, 3, true);
    tw::setFromDigits<R>(x, radix, digits.data(), digits.size());
    ASSERT_EQ(mpz_cmp(recordToMpz<R>(x).v, expected.v), 0) << "radix " << radix << ", " << digits.size() << " digits";
    EXPECT_EQ(tw::toDigits<R>(x, radix), mpzToDigits(expected, radix)) << "radix " << radix;
}

TYPED_TEST(DigitConversion, EveryRadixBothWays) {
    twtest::LimbGenerator gen(11);
    std::vector<std::uint32_t> radices;
    for (std::uint32_t r = 2; r <= 62; ++r) radices.push_back(r);
    for (std::uint32_t r : {0u, 1u << 31, (1u << 31) - 1, 1000000000u, 1000000007u, 999999999u, 3486784401u,
                            268435456u, 4294967295u, 65536u, 100u})
        radices.push_back(r);
    for (std::uint32_t radix : radices)
        for (std::size_t n : {1, 2, 3, 7, 40, 300}) checkBothWays<TypeParam>(randomDigits(gen, radix, n), radix);
}

TYPED_TEST(DigitConversion, ZeroDigitsAtBothEnds) {
    twtest::LimbGenerator gen(12);
    for (std::uint32_t radix : {0u, 2u, 10u, 1000000000u, 268435456u, 7u}) {
        for (std::size_t low : {0, 1, 5, 60}) {
            for (std::size_t high : {0, 1, 9}) {
                Digits d = randomDigits(gen, radix, 25);
                d[0] = d[24] = 1;
                d.insert(d.begin(), low, 0);
                d.insert(d.end(), high, 0);
                checkBothWays<TypeParam>(d, radix);
                // A single significant digit scaled by the radix power.
                Digits single(low, 0);
                single.push_back(radix == 2 ? 1 : 5);
                single.insert(single.end(), high, 0);
                checkBothWays<TypeParam>(single, radix);
            }
        }
    }
}

TYPED_TEST(DigitConversion, EmptyAndZeroVectorsGiveZero) {
    for (const Digits& d : {Digits{}, Digits{0}, Digits{0, 0, 0}}) {
        tw::NumberRecord x = recordOf<TypeParam>(Mpz("123456789012345678901234567890"));
        tw::setFromDigits<TypeParam>(x, 10, d.data(), d.size());
        EXPECT_TRUE(x.isZero());
        EXPECT_EQ(x.topIndex, 0u);
        EXPECT_TRUE(tw::toDigits<TypeParam>(x, 10).empty());
    }
}

}  // namespace
