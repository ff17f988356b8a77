// The span kernels of arithmetic against GMP, as rows of the kernel table:
// sums and differences, the basecase products and squares, every rung of the
// product ladder, the linear helpers under it, division and the reciprocal,
// and the bitwise spans.  Sizes sit on the rung boundaries of both ladders
// and on the vector kernels' block edges; every row runs in both radices and,
// where a seam exists, on every kernel path.
#include "support/harness.h"

#include <sys/mman.h>
#include <unistd.h>

#include "arith/kernels/add_sub.h"
#include "arith/numbers/bitwise.h"
#include "arith/kernels/divide_newton.h"
#include "arith/kernels/divide.h"
#include "arith/kernels/divide_by_limb.h"
#include "arith/kernels/fast_product.h"
#include "arith/kernels/mul_basecase.h"
#include "arith/kernels/mul_ladder.h"
#include "arith/kernels/mul_span_ops.h"
#include "arith/kernels/reciprocal.h"
#include "arith/kernels/sqr_basecase.h"
#include "arith/tuning.h"

namespace twtest {
namespace {

namespace A = tw::arith;
using A::ProductRule;

template <class R>
class Kernels : public Clean {};
TYPED_TEST_SUITE(Kernels, Radices);

// ---- formulas ----

bool sum(mpz_ptr w, mpz_srcptr a, mpz_srcptr b, std::size_t, std::size_t) { return mpz_add(w, a, b), true; }
bool product(mpz_ptr w, mpz_srcptr a, mpz_srcptr b, std::size_t, std::size_t) { return mpz_mul(w, a, b), true; }
bool square(mpz_ptr w, mpz_srcptr a, mpz_srcptr, std::size_t, std::size_t) { return mpz_mul(w, a, a), true; }
std::size_t total(std::size_t an, std::size_t bn) { return an + bn; }
std::size_t twice(std::size_t an, std::size_t) { return 2 * an; }

// A difference as n limbs plus the borrow out: (a - b - in) mod R^n + borrow R^n.
template <class R>
auto difference(long borrowIn) {
    return [borrowIn](mpz_ptr w, mpz_srcptr a, mpz_srcptr b, std::size_t n, std::size_t) {
        mpz_sub(w, a, b);
        mpz_sub_ui(w, w, borrowIn);
        if (mpz_sgn(w) < 0) mpz_add(w, w, radixPower<R>(n)), mpz_add(w, w, radixPower<R>(n));
        return true;
    };
}

// Lengths around the span kernels' block of 16 limbs and the forced minimum.
const Sizes kSpanSizes = [] {
    Sizes s;
    for (std::size_t n = 1; n <= 34; ++n) s.push_back({n, n});
    for (std::size_t n : either({A::kWideAddSubMin * 3, 64, 128, 512})) s.push_back({n, n});
    return s;
}();
const std::vector<std::pair<Shape, Shape>> kCarryPairs = [] {
    auto p = shapePairs({Shape::Random, Shape::Max, Shape::NearMax});
    p.insert(p.end(), {{Shape::Max, Shape::Unit}, {Shape::Zero, Shape::Unit}, {Shape::Max, Shape::Zero},
                       {Shape::Zero, Shape::Zero}, {Shape::Unit, Shape::Max}});
    return p;
}();

// ---- sums and differences ----

TYPED_TEST(Kernels, SumsAndDifferencesOfEqualLength) {
    using R = TypeParam;
    for (Limb in : {0u, 1u}) {
        run(KernelRow<R>{"addSameLength", kSpanSizes, [](std::size_t n, std::size_t) { return n + 1; },
                         [in](Limb* o, const Limb* a, std::size_t n, const Limb* b, std::size_t) {
                             o[n] = A::addSameLength<R>(o, a, b, n, in);
                         },
                         [in](mpz_ptr w, mpz_srcptr a, mpz_srcptr b, std::size_t, std::size_t) {
                             return mpz_add(w, a, b), mpz_add_ui(w, w, in), true;
                         },
                         kCarryPairs, in ? std::vector<Alias>{Alias::OutIsB} : kAllAliases},
            10 + in);
        run(KernelRow<R>{"subSameLength", kSpanSizes, [](std::size_t n, std::size_t) { return n + 1; },
                         [in](Limb* o, const Limb* a, std::size_t n, const Limb* b, std::size_t) {
                             o[n] = A::subSameLength<R>(o, a, b, n, in);
                         },
                         difference<R>(in), kCarryPairs, in ? std::vector<Alias>{Alias::OutIsA} : kAllAliases},
            12 + in);
    }
    run(KernelRow<R>{"combineSameLength +", kSpanSizes, [](std::size_t n, std::size_t) { return n + 1; },
                     [](Limb* o, const Limb* a, std::size_t n, const Limb* b, std::size_t) {
                         o[n] = A::combineSameLength<R, false>(o, a, b, n);
                     },
                     sum, kCarryPairs, {Alias::None, Alias::OutIsA}},
        14);
    run(KernelRow<R>{"combineSameLength -", kSpanSizes, [](std::size_t n, std::size_t) { return n + 1; },
                     [](Limb* o, const Limb* a, std::size_t n, const Limb* b, std::size_t) {
                         o[n] = A::combineSameLength<R, true>(o, a, b, n);
                     },
                     difference<R>(0), kCarryPairs, {Alias::OutIsB, Alias::All}},
        15);
}

// Unequal spans and the ladder's in-place helpers (a the longer operand).
TYPED_TEST(Kernels, UnequalSpansAndInPlaceHelpers) {
    using R = TypeParam;
    const Sizes sizes = {{1, 1}, {16, 15}, {17, 16}, {40, 17}, {129, 40}, {147, 129}, {300, 1}};
    auto pairs = kCarryPairs;
    pairs.insert(pairs.end(), {{Shape::Power, Shape::Random}, {Shape::LowZeros, Shape::Max}});
    run(KernelRow<R>{"addSpans", sizes, [](std::size_t an, std::size_t) { return an + 1; },
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                         o[an] = A::addSpans<R>(o, a, an, b, bn);
                     },
                     sum, pairs, {Alias::None, Alias::OutIsA}},
        20);
    run(KernelRow<R>{"combineSpans +", sizes, [](std::size_t an, std::size_t) { return an + 1; },
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                         o[an] = A::combineSpans<R, false>(o, a, an, b, bn);
                     },
                     sum, pairs, {Alias::None, Alias::OutIsA}},
        21);
    run(KernelRow<R>{"subtractInPlace", sizes, [](std::size_t an, std::size_t) { return an; },
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                         std::copy(a, a + an, o);
                         A::subtractSpanInPlace<R>(o, an, b, bn);
                     },
                     [](mpz_ptr w, mpz_srcptr a, mpz_srcptr b, std::size_t, std::size_t) {
                         return mpz_sub(w, a, b), mpz_sgn(w) >= 0;
                     },
                     pairs},
        22);
    // |a - b| with the sign as a limb above it, both orders.
    for (bool swap : {false, true})
        run(KernelRow<R>{"absDifference", sizes, [](std::size_t an, std::size_t) { return an + 1; },
                         [swap](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                             std::fill(o, o + an, 0);
                             o[an] = swap ? A::absDifference<R>(o, b, bn, a, an) : A::absDifference<R>(o, a, an, b, bn);
                         },
                         [swap](mpz_ptr w, mpz_srcptr a, mpz_srcptr b, std::size_t an, std::size_t) {
                             swap ? mpz_sub(w, b, a) : mpz_sub(w, a, b);
                             if (mpz_sgn(w) < 0) mpz_neg(w, w), mpz_add(w, w, radixPower<R>(an));
                             return true;
                         },
                         {{Shape::Random, Shape::Random}, {Shape::Max, Shape::Max}, {Shape::Random, Shape::Max}},
                         {Alias::None, Alias::AIsB}},
            23 + swap);
    // a - m b with m the top limb of the second operand.
    run(KernelRow<R>{"subtractMultipleInPlace", {{4, 2}, {9, 8}, {40, 21}}, [](std::size_t an, std::size_t) { return an; },
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                         std::copy(a, a + an, o);
                         A::subtractMultipleInPlace<R>(o, an, b, bn - 1, b[bn - 1]);
                     },
                     [](mpz_ptr w, mpz_srcptr a, mpz_srcptr b, std::size_t, std::size_t bn) {
                         Mpz low, m;
                         mpz_fdiv_qr(m, low, b, radixPower<R>(bn - 1));
                         mpz_mul(low, low, m);
                         return mpz_sub(w, a, low), mpz_sgn(w) >= 0;
                     },
                     shapePairs({Shape::Random, Shape::Max, Shape::Power})},
        25);
    run(KernelRow<R>{"mulByLimb", {{1, 1}, {2, 1}, {9, 1}, {100, 1}}, [](std::size_t an, std::size_t) { return an + 1; },
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t) { A::mulByLimb<R>(o, a, an, b[0]); },
                     product, shapePairs({Shape::Random, Shape::Max, Shape::Unit})},
        26);
    // (2a) / 2 and (3a) / 3 exactly.
    run(KernelRow<R>{"divideExactInPlace", {{1, 0}, {30, 0}}, [](std::size_t an, std::size_t) { return an + 1; },
                     [](Limb* o, const Limb* a, std::size_t an, const Limb*, std::size_t) {
                         A::mulByLimb<R>(o, a, an, 2);
                         A::divideExactInPlace<R, 2>(o, an + 1);
                         A::mulByLimb<R>(o, o, an, 3);
                         A::divideExactInPlace<R, 3>(o, an + 1);
                     },
                     [](mpz_ptr w, mpz_srcptr a, mpz_srcptr, std::size_t, std::size_t) { return mpz_set(w, a), true; },
                     {{Shape::Random, Shape::Zero}, {Shape::Max, Shape::Zero}}},
        27);
}

// Spans laid against inaccessible pages: a read or write past either end faults.
TYPED_TEST(Kernels, SumsStayInsideTheirSpans) {
    using R = TypeParam;
    const std::size_t page = std::size_t(sysconf(_SC_PAGESIZE));
    char* base = static_cast<char*>(mmap(nullptr, 7 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(base, MAP_FAILED);
    for (int g : {0, 2, 4, 6}) ASSERT_EQ(mprotect(base + g * page, page, PROT_NONE), 0);
    Gen gen(30);
    for (const PathCase& path : kernelPaths()) {
        const Pinned pinned(path);
        for (std::size_t n : {1, 7, 15, 16, 17, 31, 33, 100}) {
            for (bool atEnd : {true, false}) {
                Limb* span[3];
                for (int k = 0; k < 3; ++k)
                    span[k] = reinterpret_cast<Limb*>(base + (2 * k + 1) * page) + (atEnd ? page / sizeof(Limb) - n : 0);
                const Limbs a = gen.limbs<R>(n), b = gen.limbs<R>(n);
                std::copy(a.begin(), a.end(), span[0]);
                std::copy(b.begin(), b.end(), span[1]);
                Limbs want(n);
                const Limb carry = A::addSameLengthPortable<R>(want.data(), a.data(), b.data(), n);
                EXPECT_EQ(A::addSameLength<R>(span[2], span[0], span[1], n), carry) << path.name << " " << n;
                EXPECT_EQ(Limbs(span[2], span[2] + n), want) << path.name << " " << n;
                A::subSameLength<R>(span[0], span[2], span[1], n, 0);
                EXPECT_EQ(Limbs(span[0], span[0] + n), a) << path.name << " " << n;
            }
        }
    }
    munmap(base, 7 * page);
}

// ---- products ----

// Every shorter length the vector kernels take, three longer ones each.
TYPED_TEST(Kernels, BasecaseAtEveryLength) {
    using R = TypeParam;
    Sizes sizes;
    for (std::size_t s = 1; s <= A::kLaneKernelMax; ++s) sizes.insert(sizes.end(), {{s, s}, {s + 7, s}, {3 * s + 5, s}});
    const auto pairs = shapePairs({Shape::Random, Shape::Max});
    run(KernelRow<R>{"mulBasecase", sizes, total,
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) { A::mulBasecase<R>(o, a, an, b, bn); },
                     product, pairs},
        40);
    Sizes squares;
    for (std::size_t n = 1; n <= A::kLaneKernelMax; ++n) squares.push_back({n, 0});
    run(KernelRow<R>{"sqrBasecase", squares, twice,
                     [](Limb* o, const Limb* a, std::size_t n, const Limb*, std::size_t) { A::sqrBasecase<R>(o, a, n); },
                     square, {{Shape::Random, Shape::Zero}, {Shape::Max, Shape::Zero}, {Shape::NearMax, Shape::Zero}}},
        41);
    // Near-maximal limbs at the lane blocks' edges, and columns long enough
    // for the portable sums to settle several times (past 252 products in
    // radix 2^28).
    run(KernelRow<R>{"mulBasecase near-max", around({5, 16, 17, 31, 64, 100, 127, 128}), total,
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) { A::mulBasecase<R>(o, a, an, b, bn); },
                     product, shapePairs({Shape::NearMax, Shape::LowZeros})},
        42);
    run(KernelRow<R>{"mulBasecaseColumns", {{300, 300}, {1000, 260}, {700, 64}}, total,
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                         A::mulBasecaseColumns<R>(o, a, an, b, bn);
                     },
                     product, {{Shape::Max, Shape::Max}, {Shape::Random, Shape::NearMax}}, {Alias::None}, false},
        43);
}

// The ladder's entry points on both sides of every rung, balanced and lopsided.
TYPED_TEST(Kernels, LadderAtEveryRungBoundary) {
    using R = TypeParam;
    constexpr const A::LadderBounds& b = A::kLadder<R>;
    const std::size_t mb = b.mulBasecaseMax, mk = b.mulKaratsubaMax, mt = b.mulTransformMin;
    Sizes sizes = around({1, 2, mb, mb + 1, 128, 129, mk, mk + 1, mt - 1, mt, mt + 1});
    sizes.insert(sizes.end(), {{2, 3000}, {65, 2000}, {3000, 2}, {3000, 64}, {2000, 65}, {701, 150}, {2500, 193}, {5000, 600}});
    auto withZeros = shapePairs(kProductShapes);
    withZeros.insert(withZeros.end(), {{Shape::Zero, Shape::Random}, {Shape::Random, Shape::Zero}});
    run(KernelRow<R>{"multiply", sizes, total,
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) { A::multiply<R>(o, a, an, b, bn); },
                     product, withZeros},
        50);
    Sizes squares;
    for (std::size_t n : either({b.sqrBasecaseMax, b.sqrKaratsubaMax, b.sqrTransformMin})) squares.push_back({n, 0});
    squares.insert(squares.end(), {{1, 0}, {2, 0}, {64, 0}, {65, 0}, {193, 0}, {700, 0}});
    run(KernelRow<R>{"square", squares, twice,
                     [](Limb* o, const Limb* a, std::size_t n, const Limb*, std::size_t) { A::square<R>(o, a, n); },
                     square, {{Shape::Random, Shape::Zero}, {Shape::Max, Shape::Zero}, {Shape::LowZeros, Shape::Zero},
                              {Shape::Power, Shape::Zero}, {Shape::Zero, Shape::Zero}}},
        51);
    // A value times itself through multiply.
    run(KernelRow<R>{"multiply a*a", equal({3, 100, 300}), total,
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) { A::multiply<R>(o, a, an, b, bn); },
                     product, {{Shape::Random, Shape::Random}}, {Alias::AIsB}},
        52);
    // The raised basecase rung of the conversions, and the product rules.
    run(KernelRow<R>{"multiplyWideBasecase", around({11, 12, 64, 65, 127, 128, 129, 192, 193, 256}), total,
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                         A::multiplyWideBasecase<R>(o, a, an, b, bn);
                     },
                     product},
        53);
    for (ProductRule rule : {ProductRule::Ladder, ProductRule::Fastest})
        run(KernelRow<R>{"multiplyBy", {{192, 192}, {193, 193}, {256, 256}, {287, 287}, {288, 288}, {511, 511}, {512, 511},
                                        {511, 300}, {700, 250}, {1500, 193}, {2000, 511}, {600, 64}},
                         total,
                         [rule](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                             A::multiplyBy<R>(rule, o, b, bn, a, an);  // shorter first: either order
                         },
                         product, shapePairs({Shape::Random, Shape::LowZeros}), {Alias::None}, false},
            54 + int(rule));
}

// Each divide-and-conquer rung called directly, on shapes that steer it
// through all its branches.
TYPED_TEST(Kernels, RungsCalledDirectly) {
    using R = TypeParam;
    using Rung = void (*)(Limb*, const Limb*, std::size_t, const Limb*, std::size_t, A::LimbScratch&);
    using SqrRung = void (*)(Limb*, const Limb*, std::size_t, A::LimbScratch&);
    const std::pair<Rung, Sizes> rungs[] = {
        {A::mulKaratsuba<R>, {{2, 2}, {3, 2}, {65, 65}, {66, 65}, {131, 66}, {192, 192}, {193, 150}, {140, 70}, {140, 65}, {400, 70}}},
        {A::mulToom3<R>, {{3, 3}, {5, 5}, {193, 193}, {301, 250}, {300, 201}, {511, 511}, {512, 500}, {3, 2}, {300, 101},
                          {300, 200}, {302, 150}, {511, 250}, {300, 100}, {600, 65}, {900, 193}}},
        {A::mulUnbalanced<R>, {{5, 5}, {5, 1}, {30, 7}, {200, 64}, {700, 65}, {1000, 193}, {1100, 512}, {1000, 1}, {1000, 7},
                               {1000, 64}, {3000, 65}}},
        {A::mulLadder<R>, {{700, 650}, {2000, 300}}},
    };
    std::uint64_t seed = 60;
    for (const auto& [mulRung, sizes] : rungs)
        run(KernelRow<R>{"rung", sizes, total,
                         [rung = mulRung](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                             A::LimbScratch scratch(1);  // grows past a poor first block
                             rung(o, a, an, b, bn, scratch);
                         },
                         product, shapePairs({Shape::Random, Shape::Max, Shape::LowZeros, Shape::OneMax}), {Alias::None}, false},
            seed++);
    const std::pair<SqrRung, std::vector<std::size_t>> squares[] = {
        {A::sqrKaratsuba<R>, {2, 3, 129, 130, 200, 255, 256}},
        {A::sqrToom3<R>, {3, 4, 5, 257, 258, 259, 400, 511}},
        {A::sqrLadder<R>, {700}},
    };
    for (const auto& [sqrRung, lengths] : squares) {
        Sizes sizes;
        for (std::size_t n : lengths) sizes.push_back({n, 0});
        run(KernelRow<R>{"square rung", sizes, twice,
                         [rung = sqrRung](Limb* o, const Limb* a, std::size_t n, const Limb*, std::size_t) {
                             A::LimbScratch scratch(1);
                             rung(o, a, n, scratch);
                         },
                         square, {{Shape::Random, Shape::Zero}, {Shape::Max, Shape::Zero}, {Shape::OneMax, Shape::Zero}},
                         {Alias::None}, false},
            seed++);
    }
}

// Zero limbs inside the longer operand: whole pieces, the start of a piece,
// all of a piece but its last limb.
TYPED_TEST(Kernels, UnbalancedProductSkipsZeroPieces) {
    using R = TypeParam;
    run(KernelRow<R>{"mulUnbalanced", {{703, 70}}, total,
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                         A::LimbScratch scratch;
                         A::mulUnbalanced<R>(o, a, an, b, bn, scratch);
                     },
                     product, {{Shape::Random, Shape::Random}}, {Alias::None}, false,
                     [](Gen&, Limbs& a, Limbs&) {
                         std::fill(a.begin(), a.begin() + 140, 0);
                         std::fill(a.begin() + 210, a.begin() + 260, 0);
                         std::fill(a.begin() + 340, a.begin() + 421, 0);
                     }},
        70);
}

// The scratch estimate covers the whole recursion below the transform.
TYPED_TEST(Kernels, ScratchEstimateCoversTheRecursion) {
    using R = TypeParam;
    Gen gen(71);
    for (const auto& [l, s] : Sizes{{65, 65}, {192, 130}, {300, 300}, {511, 511}, {511, 200}, {2000, 300}}) {
        const Limbs a = gen.limbs<R>(l), b = gen.limbs<R>(s);
        A::LimbScratch scratch(A::mulScratchEstimate(l, s)), sqrScratch(A::mulScratchEstimate(l, l));
        Limbs out(l + s), sq(2 * l);
        A::mulLadder<R>(out.data(), a.data(), l, b.data(), s, scratch);
        A::sqrLadder<R>(sq.data(), a.data(), l, sqrScratch);
        EXPECT_LE(scratch.blockCount(), 1u) << l << " x " << s;
        EXPECT_LE(sqrScratch.blockCount(), 1u) << l << " squared";
    }
}

// With the flag raised every rung returns at once and writes nothing outside
// the product; lowered, the same product is right.
TYPED_TEST(Kernels, TerminateFlagStopsTheLadder) {
    using R = TypeParam;
    Gen gen(72);
    TW_setTerminate(1);
    for (const auto& [l, s] : Sizes{{5, 5}, {100, 100}, {300, 300}, {700, 600}, {5000, 70}}) {
        const Limbs a = gen.limbs<R>(l), b = gen.limbs<R>(s);
        Limbs out(l + s + 1, kSentinel), sq(2 * l + 1, kSentinel);
        A::multiply<R>(out.data(), a.data(), l, b.data(), s);
        A::square<R>(sq.data(), a.data(), l);
        EXPECT_EQ(out.back(), kSentinel);
        EXPECT_EQ(sq.back(), kSentinel);
    }
}

// ---- division ----

// out = q followed by r: value q + r R^qn.
template <class R>
bool quotientThenRemainder(mpz_ptr w, mpz_srcptr a, mpz_srcptr b, std::size_t an, std::size_t bn) {
    if (an < bn || mpz_sgn(b) == 0) return false;
    Mpz q, r;
    mpz_tdiv_qr(q, r, a, b);
    mpz_mul(r, r, radixPower<R>(an - bn + 1));
    return mpz_add(w, q, r), true;
}
std::size_t quotientAndRemainderLength(std::size_t an, std::size_t) { return an + 1; }

// The dividend next to a multiple of the divisor: q b + delta for delta in
// {-1, 0, 1, b - 1}, where a quotient estimate is most often one off.
template <class R>
void nextToMultiple(Gen& gen, Limbs& a, Limbs& b) {
    Mpz q, v;
    const Mpz bv = value<R>(b);
    mpz_tdiv_q(q, value<R>(a), bv);
    if (gen.below(4) == 0) mpz_set(q, value<R>(gen.limbs<R>(a.size() - b.size() + 1, Shape::Max)));
    mpz_mul(v, q, bv);
    switch (gen.below(4)) {
        case 0: mpz_sub_ui(v, v, 1); break;
        case 1: break;
        case 2: mpz_add_ui(v, v, 1); break;
        default: mpz_add(v, v, bv), mpz_sub_ui(v, v, 1); break;
    }
    if (mpz_cmp(v, bv) >= 0) a = limbsOf<R>(v);
}

const Sizes kDivisionSizes = [] {
    Sizes s = {{1, 1}, {5, 1}, {64, 1}, {2, 2}, {3, 2}, {9, 2}, {300, 2}, {700, 3}, {5, 4}, {8, 5}, {16, 8}, {40, 9},
               {31, 17}, {60, 30}, {44, 4}, {127, 64}, {101, 50}, {199, 100}, {298, 150}, {900, 40}, {700, 333},
               {1201, 600}, {760, 700}, {1300, 1200}, {286, 160}, {320, 160}, {508, 254}, {1046, 1000}, {1047, 1000},
               {3068, 1534}, {6000, 3000}, {300, 285}};
    return s;
}();

TYPED_TEST(Kernels, DivisionAgainstGmp) {
    using R = TypeParam;
    KernelRow<R> row{"divide", kDivisionSizes, quotientAndRemainderLength,
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                         A::divide<R>(o, o + an - bn + 1, a, an, b, bn);
                     },
                     quotientThenRemainder<R>, shapePairs(kAllShapes), {Alias::None}, false};
    run(row, 80);
    row.adjust = nextToMultiple<R>;
    run(row, 81);
    // Without the remainder; zero limbs below the divisor; zero top limbs of the dividend.
    run(KernelRow<R>{"divide, no remainder", kDivisionSizes, [](std::size_t an, std::size_t bn) { return an - bn + 1; },
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                         A::divide<R>(o, nullptr, a, an, b, bn);
                     },
                     [](mpz_ptr w, mpz_srcptr a, mpz_srcptr b, std::size_t an, std::size_t bn) {
                         return an >= bn && (mpz_tdiv_q(w, a, b), true);
                     },
                     shapePairs({Shape::Random, Shape::Max}), {Alias::None}, false, nextToMultiple<R>},
        82);
    run(KernelRow<R>{"divide, low zero divisor", {{6, 5}, {12, 5}, {60, 25}, {200, 45}}, quotientAndRemainderLength,
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                         A::divide<R>(o, o + an - bn + 1, a, an, b, bn);
                     },
                     quotientThenRemainder<R>, shapePairs({Shape::Random, Shape::LowZeros, Shape::Power}), {Alias::None},
                     false},
        83);
    run(KernelRow<R>{"divide, zero top limbs", {{4, 3}, {5, 1}, {40, 12}, {14, 12}}, quotientAndRemainderLength,
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                         A::divide<R>(o, o + an - bn + 1, a, an, b, bn);
                     },
                     quotientThenRemainder<R>, {{Shape::Random, Shape::Random}, {Shape::Zero, Shape::Random}}, {Alias::None},
                     false, [](Gen& gen, Limbs& a, Limbs&) { std::fill(a.end() - 1 - gen.below(a.size() - 1), a.end(), 0); }},
        84);
}

TYPED_TEST(Kernels, DivisionByOneWord) {
    using R = TypeParam;
    Gen gen(90);
    std::vector<std::uint32_t> divisors = {1u, 2u, 3u, 10u, 641u, R::base - 1, R::base, R::base + 1, 0x7FFFFFFFu, 0x80000000u,
                                           0xFFFFFFFEu, 0xFFFFFFFFu};
    for (int i = 0; i < 8; ++i) divisors.push_back(std::uint32_t(gen.next() >> (gen.next() % 33)) | 1u);
    for (std::uint32_t d : divisors)
        for (std::size_t n : {1, 2, 3, 7, 31, 200})
            for (Shape shape : {Shape::Random, Shape::Max, Shape::Zero})
                for (bool inPlace : {false, true}) {
                    const Limbs a = gen.limbs<R>(n, shape);
                    Limbs q = a;
                    q.push_back(kSentinel);
                    const Limb rem = A::divideByLimb<R>(q.data(), inPlace ? q.data() : a.data(), n, d);
                    Mpz want;
                    const unsigned long wantRem = mpz_tdiv_q_ui(want, value<R>(a), d);
                    ASSERT_TRUE(q[n] == kSentinel && inRange<R>(q.data(), n) && value<R>(q.data(), n) == want && rem == wantRem)
                        << n << " limbs (" << name(shape) << ") by " << d;
                }
}

// V - floor(R^(dn+n) / D) for v[0..n+2).
template <class R>
long reciprocalError(const Limb* v, std::size_t n, const Limbs& d) {
    Mpz got = value<R>(v, n + 2), exact;
    mpz_fdiv_q(exact, radixPower<R>(d.size() + n), value<R>(d));
    mpz_sub(got, got, exact);
    return mpz_fits_slong_p(got) ? mpz_get_si(got) : 1000;
}

// The reciprocal stays within [-2, 3] of floor(R^(dn+n) / D) at every
// precision, its truncations too, under both product rules.
TYPED_TEST(Kernels, ReciprocalWithinItsContract) {
    using R = TypeParam;
    Gen gen(91);
    Sizes shapes = {{300, 300}, {5, 500}, {700, 20}, {40, 650}, {254, 254}, {160, 320}, {766, 764}, {1000, 1020}, {3000, 764}};
    for (std::size_t dn : {1, 2, 3, 5, 12, 40})
        for (std::size_t n : {1, 2, 3, 4, 5, 9, 17, 64}) shapes.push_back({dn, n});
    for (const auto& [dn, n] : shapes)
        for (Shape shape : kAllShapes)
            for (ProductRule rule : {ProductRule::Ladder, ProductRule::Fastest}) {
                if (rule == ProductRule::Fastest && dn < 150) continue;
                const Limbs d = gen.limbs<R>(dn, shape);
                Limbs v(A::reciprocalLimbs(n) + 1, kSentinel);
                A::reciprocal<R>(v.data(), d.data(), dn, n, rule);
                ASSERT_EQ(v[n + 2], kSentinel);
                ASSERT_TRUE(inRange<R>(v.data(), n + 2));
                for (std::size_t j : {std::size_t(0), std::size_t(1), n / 2, n - 1}) {
                    if (j >= n) continue;
                    const long e = reciprocalError<R>(v.data() + j, n - j, d);
                    ASSERT_TRUE(e >= -2 && e <= 3) << dn << " limbs (" << name(shape) << "), precision " << n - j << ": " << e;
                }
            }
}

// floor(R^(dn+p) / D) + shift: a reciprocal anywhere in its contract.
template <class R>
Limbs shiftedReciprocal(const Limbs& d, std::size_t p, long shift) {
    Mpz f;
    mpz_fdiv_q(f, radixPower<R>(d.size() + p), value<R>(d));
    shift >= 0 ? mpz_add_ui(f, f, shift) : mpz_sub_ui(f, f, -shift);
    return limbsOf<R>(f, p + 2);
}

// The quotient from a reciprocal at either end of its contract needs at most
// one correction, and both directions occur; the block loop and the divisor
// that keeps its reciprocal divide like divide().
TYPED_TEST(Kernels, DivisionByAReciprocal) {
    using R = TypeParam;
    Sizes sizes = {{2, 2}, {3, 2}, {15, 14}, {20, 5}, {274, 200}, {275, 200}, {287, 200}, {438, 256}, {470, 256}, {1063, 1000},
                   {1064, 1000}, {506, 254}, {507, 254}, {449, 300}, {1533, 766}, {1899, 1000}, {2733, 1534}, {2400, 1200}};
    int corrections[3] = {0, 0, 0};
    for (long shift : {0L, -2L, 2L})
        for (ProductRule rule : {ProductRule::Ladder, ProductRule::Fastest})
            run(KernelRow<R>{"divideByReciprocal", sizes, quotientAndRemainderLength,
                             [&corrections, shift, rule](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                                 const std::size_t n = an - bn + 1;
                                 const Limbs d(b, b + bn), v = shiftedReciprocal<R>(d, n, shift);
                                 const int c = A::divideByReciprocal<R>(divisionScratch(), o, n, o + n, a, an, b, bn, v.data(), n, rule);
                                 if (c < -1 || c > 1) o[0] = kSentinel;  // outside the contract: fails the row
                                 else ++corrections[c + 1];
                             },
                             quotientThenRemainder<R>, shapePairs({Shape::Random, Shape::Max, Shape::OneMax, Shape::Power}),
                             {Alias::None}, false, nextToMultiple<R>},
                93);
    EXPECT_GT(corrections[0], 0) << "no estimate was one too big";
    EXPECT_GT(corrections[1], 0) << "no estimate was exact";
    EXPECT_GT(corrections[2], 0) << "no estimate was one too small";

    for (ProductRule rule : {ProductRule::Ladder, ProductRule::Fastest})
        run(KernelRow<R>{"divideInBlocks", {{2, 2}, {9, 3}, {40, 7}, {305, 30}, {287, 160}, {509, 254}, {1127, 1000}, {1503, 300}},
                         quotientAndRemainderLength,
                         [rule](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                             const std::size_t p = bn + 1;
                             Limbs v(p + 2);
                             A::reciprocal<R>(v.data(), b, bn, p);
                             A::divideInBlocks<R>(divisionScratch(), o, o + an - bn + 1, a, an, b, bn, v.data(), p, rule);
                         },
                         quotientThenRemainder<R>, shapePairs({Shape::Random, Shape::Max, Shape::OneMax, Shape::Power}),
                         {Alias::None}, false},
            94);
    Sizes kept;
    for (std::size_t dn : {1, 2, 5, 34, 150, 192, 193, 511, 512, 1100})
        for (std::size_t an : {dn, dn + 1, 2 * dn - 1, 2 * dn + 1, 3 * dn + 7}) kept.push_back({an, dn});
    run(KernelRow<R>{"DivisorReciprocal", kept, quotientAndRemainderLength,
                     [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                         const A::DivisorReciprocal<R> divisor(b, bn);
                         divisor.divide(o, o + an - bn + 1, a, an);
                     },
                     quotientThenRemainder<R>, shapePairs({Shape::Random, Shape::Max, Shape::LowZeros}), {Alias::None}, false},
        95);
}

TYPED_TEST(Kernels, TerminateFlagStopsDivision) {
    using R = TypeParam;
    Gen gen(96);
    const Limbs a = gen.limbs<R>(400), b = gen.limbs<R>(150);
    Limbs q(252, kSentinel), r(151, kSentinel);
    TW_setTerminate(1);
    A::divide<R>(q.data(), r.data(), a.data(), a.size(), b.data(), b.size());
    const A::DivisorReciprocal<R> divisor(b.data(), b.size());
    EXPECT_FALSE(divisor.valid());
    TW_setTerminate(0);
    divisor.divide(q.data(), nullptr, a.data(), a.size());
    EXPECT_EQ(std::count(q.begin(), q.end(), kSentinel), 252);
    EXPECT_EQ(std::count(r.begin(), r.end(), kSentinel), 151);
}

// ---- bitwise spans (radix 2^28) ----

template <A::BitOp Op>
void bitwiseRow(const char* name, void (*gmp)(mpz_ptr, mpz_srcptr, mpz_srcptr)) {
    run(KernelRow<Bin>{name, {{1, 1}, {1, 9}, {9, 1}, {5, 5}, {3, 40}, {40, 3}, {17, 18}, {64, 1}},
                       [](std::size_t an, std::size_t bn) { return A::combinedLength<Op>(an, bn); },
                       [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
                           A::combineBitwiseSpans<Op, Bin>(o, a, an, b, bn);
                       },
                       [gmp](mpz_ptr w, mpz_srcptr a, mpz_srcptr b, std::size_t, std::size_t) { return gmp(w, a, b), true; },
                       shapePairs({Shape::Random, Shape::Max, Shape::LowZeros}), {Alias::None}, false},
        97);
}

TEST(BitwiseSpans, AgainstGmp) {
    bitwiseRow<A::BitOp::And>("and", mpz_and);
    bitwiseRow<A::BitOp::Or>("or", mpz_ior);
    bitwiseRow<A::BitOp::Xor>("xor", mpz_xor);
}

}  // namespace
}  // namespace twtest
