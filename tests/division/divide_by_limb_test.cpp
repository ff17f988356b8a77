// Division of a limb span by one machine word, divisors up to 2^32 - 1.
#include "arith/kernels/divide_by_limb.h"

#include "division/division_check.h"

namespace twtest {
namespace {

template <class R>
class DivideByLimbTest : public ::testing::Test {};
TYPED_TEST_SUITE(DivideByLimbTest, Radices);

// q := a div d into a separate buffer or in place, checked with GMP.
template <class R>
::testing::AssertionResult dividesByLimb(const Limbs& a, std::uint32_t d, bool inPlace) {
    Limbs q(a);  // in place, the quotient overwrites this copy of the dividend
    q.push_back(kSentinel);
    const Limb rem = tw::arith::divideByLimb<R>(q.data(), inPlace ? q.data() : a.data(), a.size(), d);
    if (q[a.size()] != kSentinel) return ::testing::AssertionFailure() << "write past the quotient";
    if (auto ok = limbsInRange<R>(q.data(), a.size(), "quotient"); !ok) return ok;
    Mpz eq, gq;
    const unsigned long er = mpz_tdiv_q_ui(eq, toMpz<R>(a), d);
    limbsToMpz<R>(gq.v, q.data(), a.size());
    if (mpz_cmp(gq, eq) != 0 || rem != er)
        return ::testing::AssertionFailure() << a.size() << " limbs by " << d << ": quotient " << gq.str(16)
                                             << " want " << eq.str(16) << ", remainder " << rem << " want " << er;
    return ::testing::AssertionSuccess();
}

TYPED_TEST(DivideByLimbTest, MatchesGmpForSmallRadixSizedAndFullWordDivisors) {
    using R = TypeParam;
    LimbGenerator gen(101);
    std::vector<std::uint32_t> divisors = {1u, 2u, 3u, 10u, 641u, R::base - 1, R::base, R::base + 1,
                                           0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu};
    for (int i = 0; i < 12; ++i) divisors.push_back(std::uint32_t(gen.next() >> (gen.next() % 33)) | 1u);
    for (const std::uint32_t d : divisors) {
        for (const std::size_t n : {1, 2, 3, 7, 31, 200}) {
            const Limbs a = gen.limbs<R>(n);
            EXPECT_TRUE(dividesByLimb<R>(a, d, false));
            EXPECT_TRUE(dividesByLimb<R>(a, d, true));
            EXPECT_TRUE(dividesByLimb<R>(LimbGenerator::maxLimbs<R>(n), d, false));
        }
    }
}

TYPED_TEST(DivideByLimbTest, ZeroAndSmallDividends) {
    using R = TypeParam;
    for (const std::uint32_t d : {1u, 2u, R::base - 1, 0xFFFFFFFFu}) {
        EXPECT_TRUE(dividesByLimb<R>(Limbs{0}, d, false));
        EXPECT_TRUE(dividesByLimb<R>(Limbs{0, 0, 0}, d, false));
        EXPECT_TRUE(dividesByLimb<R>(Limbs{1}, d, false));
        EXPECT_TRUE(dividesByLimb<R>(Limbs{d % R::base, d / R::base}, d, false));  // exactly d
    }
}

}  // namespace
}  // namespace twtest
