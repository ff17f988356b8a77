// Conversions between limb records and digit vectors of any radix against
// GMP: every radix from 2 to 62, 2^32 and the radices next to powers, lengths
// across the conversion tree's leaves and levels, zero digits at either end;
// the split of leaves on machine words; and the chunk powers kept between
// conversions.
#include "support/harness.h"

#include <cmath>

#include "arith/kernels/divide.h"
#include "frame/error_state.h"
#include "arith/convert/chunk_power_cache.h"
#include "arith/convert/chunk_radix.h"
#include "arith/convert/chunk_tree.h"
#include "arith/convert/digit_conversion.h"
#include "arith/convert/word_leaf.h"

namespace twtest {
namespace {

using Digits = std::vector<std::uint32_t>;

// radix^e (radix 0 is 2^32).
Mpz powerOf(std::uint32_t radix, std::size_t e) {
    Mpz m;
    radix ? mpz_ui_pow_ui(m, radix, e) : mpz_setbit(m, 32 * e);
    return m;
}

// The value of d[0..n), least significant first: halves joined by a power.
Mpz digitsValue(const std::uint32_t* d, std::size_t n, std::uint32_t radix) {
    Mpz v;
    if (n <= 64) {
        for (std::size_t i = n; i-- > 0;) {
            radix ? mpz_mul_ui(v, v, radix) : mpz_mul_2exp(v, v, 32);
            mpz_add_ui(v, v, d[i]);
        }
        return v;
    }
    v = digitsValue(d + n / 2, n - n / 2, radix);
    mpz_mul(v, v, powerOf(radix, n / 2));
    mpz_add(v, v, digitsValue(d, n / 2, radix));
    return v;
}
Mpz digitsValue(const Digits& d, std::uint32_t radix) { return digitsValue(d.data(), d.size(), radix); }

// The n lowest digits of v, split by powers.
void split(std::uint32_t* out, std::size_t n, mpz_srcptr v, std::uint32_t radix) {
    if (n <= 64) {
        Mpz a;
        mpz_set(a, v);
        for (std::size_t i = 0; i < n; ++i) {
            if (radix) {
                out[i] = std::uint32_t(mpz_fdiv_q_ui(a, a, radix));
            } else {
                out[i] = std::uint32_t(mpz_getlimbn(a, 0));
                mpz_fdiv_q_2exp(a, a, 32);
            }
        }
        return;
    }
    Mpz q, r;
    mpz_fdiv_qr(q, r, v, powerOf(radix, n / 2));
    split(out, n / 2, r, radix);
    split(out + n / 2, n - n / 2, q, radix);
}
// The digits of |v|, none for zero.
Digits digitsOf(mpz_srcptr v, std::uint32_t radix) {
    Mpz a;
    mpz_abs(a, v);
    Digits out(std::size_t(double(mpz_sizeinbase(a, 2)) / (radix ? std::log2(double(radix)) : 32.0)) + 2);
    split(out.data(), out.size(), a, radix);
    while (!out.empty() && out.back() == 0) out.pop_back();
    return out;
}

Digits randomDigits(Gen& gen, std::uint32_t radix, std::size_t n, int style) {
    const std::uint64_t r = radix ? radix : std::uint64_t(1) << 32;
    Digits d(n);
    for (auto& x : d) {
        const std::uint64_t u = gen.next() % r;
        x = std::uint32_t(style == 0 ? u : style == 1 ? (gen.below(4) ? r - 1 : u) : (gen.below(4) ? 0 : u));
    }
    return d;
}

template <class R>
class Conversion : public Clean {
protected:
    void SetUp() override { tw::convert::clearChunkPowerCache(); }
    void TearDown() override {
        tw::clearErrorState();
        tw::convert::clearChunkPowerCache();
    }
};
TYPED_TEST_SUITE(Conversion, Radices);

// digits -> record -> digits; the first difference names radix, length and style.
template <class R>
void checkBothWays(const Digits& digits, std::uint32_t radix, const char* what) {
    const Mpz want = digitsValue(digits, radix);
    tw::NumberRecord x;
    tw::setFromDigits<R>(x, radix, digits.data(), digits.size());
    ASSERT_TRUE(value<R>(x.digits, x.topIndex + 1) == want) << what << ": radix " << radix << ", " << digits.size() << " digits in";
    ASSERT_EQ(x.digits[x.topIndex] == 0, x.topIndex == 0 && mpz_sgn(want) == 0);
    ASSERT_EQ(tw::toDigits<R>(x, radix), digitsOf(want, radix)) << what << ": radix " << radix << ", " << digits.size() << " digits out";
}

TYPED_TEST(Conversion, EveryRadixBothWays) {
    using R = TypeParam;
    Gen gen(200);
    std::vector<std::uint32_t> radices = {0u, 1u << 31, (1u << 31) - 1, (1u << 31) + 1, 1000000000u, 999999999u,
                                          1000000007u, 3486784401u, 268435456u, 268435455u, 4294967295u, 65536u,
                                          65537u, 100u, 100000u, 10000000u};
    for (std::uint32_t r = 2; r <= 62; ++r) radices.push_back(r);
    for (std::uint32_t radix : radices)
        for (std::size_t n : {1, 2, 3, 7, 40, 150})
            checkBothWays<R>(randomDigits(gen, radix, n, int(n % 3)), radix, "short");
    // Lengths on both sides of the tree's leaves and levels.
    for (std::uint32_t radix : {10u, 7u, 62u, 0u, 1000000000u, 268435456u, 3486784401u, 2147483648u, 1000000007u})
        for (std::size_t n : {31, 32, 33, 64, 65, 300, 1025, 5000, 30000})
            checkBothWays<R>(randomDigits(gen, radix, n, int(n % 3)), radix, "long");
    // Zero digits at both ends; a single digit times a power of the radix.
    for (std::uint32_t radix : {0u, 2u, 10u, 1000000000u, 268435456u, 7u})
        for (std::size_t low : {0, 1, 5, 60, 3000})
            for (std::size_t high : {0, 9}) {
                Digits d = randomDigits(gen, radix, 25, 0), single(low, 0);
                d[0] = d[24] = 1;
                d.insert(d.begin(), low, 0);
                d.insert(d.end(), high, 0);
                single.push_back(1);
                single.insert(single.end(), high, 0);
                checkBothWays<R>(d, radix, "zero ends");
                checkBothWays<R>(single, radix, "power");
            }
}

// GMP's own text digits for every radix its text covers.
TYPED_TEST(Conversion, AgreesWithGmpText) {
    using R = TypeParam;
    Gen gen(201);
    for (int radix = 2; radix <= 62; ++radix) {
        const Mpz v = value<R>(gen.limbs<R>(120));
        tw::SignedNumber<R> x;
        setNumber(x, v);
        const std::string text = v.str(radix);
        Digits want;
        for (auto c = text.rbegin(); c != text.rend(); ++c)
            want.push_back(*c <= '9' ? *c - '0' : *c >= 'a' ? *c - 'a' + (radix <= 36 ? 10 : 36) : *c - 'A' + 10);
        EXPECT_EQ(tw::toDigits<R>(x.rec(), std::uint32_t(radix)), want) << "radix " << radix;
    }
}

// Kept oddities: digits not below the radix count with their full value;
// radix 1 sums the digits, gives no digits back and records the radix error;
// empty and zero vectors give zero.
TYPED_TEST(Conversion, DigitsOutsideTheRadix) {
    using R = TypeParam;
    Gen gen(202);
    for (std::uint32_t radix : {2u, 10u, 1000u, 1000000000u, 268435456u, 7u})
        for (std::size_t n : {1, 5, 200}) {
            Digits d(n);
            Mpz want;
            for (auto& x : d) x = std::uint32_t(gen.next());
            for (std::size_t i = n; i-- > 0;) mpz_mul_ui(want, want, radix), mpz_add_ui(want, want, d[i]);
            tw::NumberRecord x;
            tw::setFromDigits<R>(x, radix, d.data(), n);
            EXPECT_TRUE(value<R>(x.digits, x.topIndex + 1) == want) << "radix " << radix;
        }
    const Digits d{4000000000u, 4000000000u, 7};
    tw::NumberRecord x;
    tw::setFromDigits<R>(x, 1, d.data(), d.size());
    EXPECT_EQ(value<R>(x.digits, x.topIndex + 1).str(), "8000000007");
    EXPECT_TRUE(tw::toDigits<R>(x, 1).empty());
    EXPECT_EQ(tw::lastError(), tw::kErrRadix);
    tw::clearErrorState();
    for (const Digits& zero : {Digits{}, Digits{0}, Digits{0, 0, 0}}) {
        tw::setFromDigits<R>(x, 10, zero.data(), zero.size());
        EXPECT_TRUE(x.isZero() && x.topIndex == 0 && x.lowIndex == 0);
        EXPECT_TRUE(tw::toDigits<R>(x, 10).empty());
    }
    // A raised flag stops both directions: no digits, a zero record.
    const Digits long7 = randomDigits(gen, 7, 20000, 0);
    tw::setFromDigits<R>(x, 7, long7.data(), long7.size());
    tw::setLastError(tw::kErrStopped);
    EXPECT_TRUE(tw::toDigits<R>(x, 3).empty());
    tw::setFromDigits<R>(x, 7, long7.data(), long7.size());
    EXPECT_TRUE(x.isZero());
}

// Decimal records of 128 to 1400 limbs split by way of binary limbs.
TEST(DecimalSplit, LengthsAroundTheBinaryBand) {
    Gen gen(203);
    for (std::size_t limbs : {127, 128, 129, 1399, 1400, 1401})
        for (Shape shape : {Shape::Max, Shape::Random}) {
            tw::SignedNumber<Dec> x;
            const Mpz v = value<Dec>(gen.limbs<Dec>(limbs, shape));
            setNumber(x, v);
            for (std::uint32_t radix : {36u, 7u, 4294967295u, 1000000007u})
                ASSERT_EQ(tw::toDigits<Dec>(x.rec(), radix), digitsOf(v, radix)) << limbs << " limbs, radix " << radix;
        }
}

// Leaves cut into chunks on 64-bit words, chunks from 2 to 2^32 - 1.
TEST(WordLeaf, ChunksAgreeWithGmp) {
    Gen gen(204);
    for (std::uint64_t chunk : {2ull, 3ull, 10ull, 46656ull, 2176782336ull, 3486784401ull, 4294967295ull, 2147483647ull,
                                65537ull, 1000000007ull, 999999999ull}) {
        const tw::convert::WordChunkDivider divider(chunk);
        for (std::size_t n : {1, 2, 3, 5, 8, 17, 40, 77})
            for (int style = 0; style < 3; ++style) {
                std::vector<std::uint64_t> words(n);
                for (auto& w : words) w = style == 0 ? gen.next() : style == 1 ? ~std::uint64_t(0) : (gen.below(3) ? 0 : gen.next());
                const std::size_t count = std::size_t(64 * double(n) / std::log2(double(chunk))) + 1 + style;
                Mpz v;
                mpz_import(v, n, -1, 8, 0, 0, words.data());
                Digits want(count);
                for (auto& d : want) d = std::uint32_t(mpz_fdiv_q_ui(v, v, chunk));
                Digits out(count, 0xDEADBEEF);
                divider.split(out.data(), count, words.data(), n);
                ASSERT_EQ(out, want) << "chunk " << chunk << ", " << n << " words, style " << style;
            }
    }
    for (std::size_t n : {1, 2, 3, 15, 16, 17, 100}) {
        const Limbs limbs = gen.limbs<Bin>(n);
        std::vector<std::uint64_t> words(n * 28 / 64 + 2, 0);
        words.resize(tw::convert::binaryLimbsToWords(words.data(), limbs.data(), n));
        EXPECT_EQ(words.size(), (28 * n + 63) / 64);
        Mpz a;
        mpz_import(a, words.size(), -1, 8, 0, 0, words.data());
        EXPECT_TRUE(a == value<Bin>(limbs)) << n << " limbs";
    }
}

// More radices than the cache keeps, twice round: found or built, the powers
// give GMP's digits, and the cache stays within its entries.
TYPED_TEST(Conversion, KeptPowersAgreeWarmAndCold) {
    using R = TypeParam;
    Gen gen(205);
    for (int round = 0; round < 2; ++round)
        for (std::uint32_t radix : {36u, 7u, 3u, 62u, 1000000007u, 11u, 4294967295u}) {
            for (std::size_t limbs : {110, 1450, 4400}) {
                tw::SignedNumber<R> x;
                const Mpz v = value<R>(gen.limbs<R>(R::isBinary ? limbs * 32 / 28 : limbs * 32 / 30));
                setNumber(x, v);
                ASSERT_EQ(tw::toDigits<R>(x.rec(), radix), digitsOf(v, radix)) << "radix " << radix << ", round " << round;
            }
            EXPECT_LE(tw::convert::chunkPowerCacheEntries(), 2 * tw::convert::kChunkPowerCacheEntries);
        }
    EXPECT_GT(tw::convert::chunkPowerCacheLimbs(), 0u);
}

// Powers the flag left unfinished are dropped, never handed out again.
TYPED_TEST(Conversion, UnfinishedPowersAreDropped) {
    using R = TypeParam;
    const std::uint64_t chunk = 2176782336u;  // 36^6
    auto powers = tw::convert::acquireChunkPowers<R>(chunk, 32, false);
    ASSERT_FALSE(powers->odd(3).empty());
    tw::convert::releaseChunkPowers<R>(powers);
    EXPECT_EQ(tw::convert::chunkPowerCacheEntries(), 1u);
    auto again = tw::convert::acquireChunkPowers<R>(chunk, 32, false);
    EXPECT_EQ(again.get(), powers.get());
    tw::setLastError(tw::kErrStopped);
    EXPECT_TRUE(again->odd(6).empty());
    tw::convert::releaseChunkPowers<R>(again);
    EXPECT_EQ(tw::convert::chunkPowerCacheEntries(), 0u);
    tw::clearErrorState();
    auto fresh = tw::convert::acquireChunkPowers<R>(chunk, 32, false);
    EXPECT_NE(fresh.get(), powers.get());
    ASSERT_FALSE(fresh->odd(6).empty());
    EXPECT_TRUE(value<R>(fresh->odd(6)) == powerOf(std::uint32_t(chunk), 32 << 6));
    tw::convert::releaseChunkPowers<R>(fresh);
    // The cache keeps its bound of entries, dropping the least recently used.
    std::vector<std::shared_ptr<tw::convert::ChunkPowers<R>>> held;
    for (std::uint64_t c = 3; c < 3 + tw::convert::kChunkPowerCacheEntries + 2; ++c) {
        held.push_back(tw::convert::acquireChunkPowers<R>(c * c * c, 32, false));
        tw::convert::releaseChunkPowers<R>(held.back());
    }
    EXPECT_EQ(tw::convert::chunkPowerCacheEntries(), tw::convert::kChunkPowerCacheEntries);
    EXPECT_EQ(tw::convert::acquireChunkPowers<R>(held.back()->chunk(), 32, false), held.back());
    EXPECT_NE(tw::convert::acquireChunkPowers<R>(27, 32, false), held.front());
}

// The tree's size functions cover its frames, the divisions' included: one
// block from the first leaf to the top, cold and warm, in and out of the
// decimal detour through binary limbs.
TYPED_TEST(Conversion, ScratchSizesCoverTheTree) {
    using R = TypeParam;
    namespace C = tw::convert;
    Gen gen(207);
    for (std::size_t n : {std::size_t(50), std::size_t(700), std::size_t(6000), std::size_t(40000)})
        for (std::uint64_t chunk : {std::uint64_t(1801088541u), std::uint64_t(10)}) {
            const Limbs x = gen.limbs<R>(n);
            const std::size_t count = std::size_t(double(n) * C::limbBits<R>() / std::log2(double(chunk))) + 2;
            tw::arith::LimbScratch split(C::splitScratchLimbs<R>(n, count, chunk)), join(C::joinScratchLimbs<R>(count, chunk));
            std::vector<std::uint32_t> chunks(count);
            C::splitIntoChunks<R>(chunks.data(), count, x.data(), n, chunk, split);
            Limbs back(C::joinedLimbsBound<R>(count, chunk));
            back.resize(C::joinChunks<R>(back.data(), chunks.data(), count, chunk, join));
            EXPECT_TRUE(back == x) << n << " limbs, chunk " << chunk;
            EXPECT_LE(std::max(split.blockCount(), join.blockCount()), 1u) << n << " limbs, chunk " << chunk;
        }
}

// A level's kept reciprocal serves short and long quotients alike, as the
// plain division gives them.
TYPED_TEST(Conversion, LevelReciprocalServesEveryQuotient) {
    using R = TypeParam;
    auto powers = tw::convert::acquireChunkPowers<R>(1801088541u, 32, false);  // 21^7
    const auto d = powers->odd(3);
    Gen gen(206);
    for (std::size_t qn : {std::size_t(3), std::size_t(9), d.size(), d.size() - 5, std::size_t(1), std::size_t(20)}) {
        const Limbs a = gen.limbs<R>(d.size() + qn - 1);
        Limbs q(qn), r(d.size()), q2(qn), r2(d.size());
        tw::arith::LimbScratch scratch;
        powers->divide(3, q.data(), r.data(), a.data(), a.size(), scratch);
        tw::arith::divide<R>(q2.data(), r2.data(), a.data(), a.size(), d.data(), d.size());
        EXPECT_TRUE(q == q2 && r == r2) << qn << " quotient limbs";
    }
    tw::convert::releaseChunkPowers<R>(powers);
}

}  // namespace
}  // namespace twtest
