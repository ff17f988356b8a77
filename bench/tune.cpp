// tw_tune: measures the switch-over points of arith/tuning.h on this machine.
//
//   tw_tune [--quick]
//
// For each constant it prints the value in tuning.h next to the one it would
// choose here, with the timings of both algorithms at that length.  The span
// kernels are called directly, one rung against the next: the upper rung
// recurses through the ladder as built, so each line answers "from which
// length does one more level of the upper algorithm pay", the question the
// constant settles.  Operands are random limbs from a fixed seed, balanced
// (both factors of the measured length).  --quick takes coarse steps and
// fewer repetitions (under a minute); the default takes a few minutes.
//
// The conversions' leaves (kJoinLeaf, kSplitLeaf) and bands are compiled into
// the conversion tree and cannot be varied from here; kConvertByDivisionMax
// can, since both of its sides are callable.
#include <cstdio>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "arith/convert/digit_conversion.h"
#include "arith/kernels/add_sub.h"
#include "arith/kernels/divide_by_limb.h"
#include "arith/kernels/mul_basecase.h"
#include "arith/kernels/mul_ladder.h"
#include "arith/kernels/mul_scratch.h"
#include "arith/kernels/ntt/transform_multiply.h"
#include "arith/kernels/sqr_basecase.h"
#include "arith/tuning.h"
#include "frame/kernel_paths.h"
#include "frame/number_record.h"
#include "frame/radix.h"
#include "tune_timing.h"

namespace {

using namespace twtune;
using tw::Limb;
namespace ar = tw::arith;

// n random limbs below the radix with a non-zero top limb (the rungs require
// one), the same for the same (seed, n) on every run.
template <class R>
std::vector<Limb> randomLimbs(std::size_t n, std::uint64_t seed) {
    std::mt19937_64 gen(seed * 1000003u + n);
    std::vector<Limb> v(n);
    for (Limb& x : v) x = Limb(gen() % R::base);
    v.back() = Limb(1 + gen() % (R::base - 1));
    return v;
}

// The operands, result and scratch of one product at one length, kept alive
// by the calls that use them.
struct Work {
    std::vector<Limb> a, b, out;
    ar::LimbScratch scratch;
    Work(std::vector<Limb> x, std::vector<Limb> y)
        : a(std::move(x)), b(std::move(y)), out(a.size() + b.size() + 64),
          scratch(ar::mulScratchEstimate(a.size(), b.size())) {}
};

template <class R>
std::shared_ptr<Work> makeWork(std::size_t n) {
    return std::make_shared<Work>(randomLimbs<R>(n, 1), randomLimbs<R>(n, 2));
}

template <class R>
const char* radixName() {
    return R::isBinary ? "binary" : "decimal";
}

std::string str(std::size_t v) { return std::to_string(v); }

// ---- the ladders ----

// One rung of a ladder on operands of n limbs (squares read a only).
using Rung = void (*)(Work& w, std::size_t n);
template <class R>
void mulBasecaseRung(Work& w, std::size_t n) {
    ar::mulBasecase<R>(w.out.data(), w.a.data(), n, w.b.data(), n);
}
template <class R>
void mulKaratsubaRung(Work& w, std::size_t n) {
    ar::mulKaratsuba<R>(w.out.data(), w.a.data(), n, w.b.data(), n, w.scratch);
}
template <class R>
void mulToom3Rung(Work& w, std::size_t n) {
    ar::mulToom3<R>(w.out.data(), w.a.data(), n, w.b.data(), n, w.scratch);
}
template <class R>
void mulTransformRung(Work& w, std::size_t n) {
    ar::transformMultiply<R>(w.out.data(), w.a.data(), n, w.b.data(), n);
}
template <class R>
void sqrBasecaseRung(Work& w, std::size_t n) {
    ar::sqrBasecase<R>(w.out.data(), w.a.data(), n);
}
template <class R>
void sqrKaratsubaRung(Work& w, std::size_t n) {
    ar::sqrKaratsuba<R>(w.out.data(), w.a.data(), n, w.scratch);
}
template <class R>
void sqrToom3Rung(Work& w, std::size_t n) {
    ar::sqrToom3<R>(w.out.data(), w.a.data(), n, w.scratch);
}
template <class R>
void sqrTransformRung(Work& w, std::size_t n) {
    ar::transformSquare<R>(w.out.data(), w.a.data(), n);
}

// The rung right below the transform as the ladder stands: Toom-3, or
// Karatsuba where the Toom-3 band is empty or has not begun.
template <class R>
void mulBelowTransformRung(Work& w, std::size_t n) {
    n <= ar::kLadder<R>.mulKaratsubaMax ? mulKaratsubaRung<R>(w, n) : mulToom3Rung<R>(w, n);
}
template <class R>
void sqrBelowTransformRung(Work& w, std::size_t n) {
    n <= ar::kLadder<R>.sqrKaratsubaMax ? sqrKaratsubaRung<R>(w, n) : sqrToom3Rung<R>(w, n);
}

// The lower rung against the upper one over the candidate lengths.  With
// basecaseFollowsN the arena's basecase bound follows n, so one level of
// Karatsuba has halves that take the basecase, as right above the switch-over.
template <class R>
Crossover race(const std::vector<std::size_t>& cands, Rung lower, Rung upper, const Settings& s,
               bool basecaseFollowsN = false) {
    return findCrossover(cands, [=](std::size_t n) {
        auto w = makeWork<R>(n);
        if (basecaseFollowsN) w->scratch.setBasecaseMax(n);
        return std::pair<Call, Call>{[w, n, lower] { lower(*w, n); }, [w, n, upper] { upper(*w, n); }};
    }, s);
}

// The squaring ladder's basecase bound is fixed, so the halves of the square
// take the basecase up to twice sqrBasecaseMax and Karatsuba beyond.  The
// transform's cost steps where its length doubles, so its candidates are
// dense enough to see a run of wins past a step.
template <class R>
Crossover mulBasecaseKaratsuba(const Settings& s) {
    return race<R>(s.quick ? lengths(8, 256, 8) : lengths(4, 256, 2), mulBasecaseRung<R>, mulKaratsubaRung<R>, s, true);
}
template <class R>
Crossover sqrBasecaseKaratsuba(const Settings& s) {
    return race<R>(s.quick ? lengths(16, 384, 16) : lengths(8, 384, 4), sqrBasecaseRung<R>, sqrKaratsubaRung<R>, s);
}
template <class R>
Crossover mulKaratsubaToom3(const Settings& s) {
    return race<R>(s.quick ? lengths(64, 640, 32) : lengths(48, 640, 8), mulKaratsubaRung<R>, mulToom3Rung<R>, s);
}
template <class R>
Crossover sqrKaratsubaToom3(const Settings& s) {
    return race<R>(s.quick ? lengths(64, 768, 32) : lengths(48, 768, 8), sqrKaratsubaRung<R>, sqrToom3Rung<R>, s);
}
template <class R>
Crossover mulToom3Transform(const Settings& s) {
    return race<R>(s.quick ? lengths(128, 2048, 64) : lengths(128, 2048, 16), mulBelowTransformRung<R>, mulTransformRung<R>, s);
}
template <class R>
Crossover sqrToom3Transform(const Settings& s) {
    return race<R>(s.quick ? lengths(128, 2048, 64) : lengths(128, 2048, 16), sqrBelowTransformRung<R>, sqrTransformRung<R>, s);
}

// ---- the 512-bit kernels (only where the processor runs them) ----

// Scalar against 512-bit add or sub.  Two neighbouring spans written in turn,
// each from the other: the wide kernel's masked loads reach past the span
// into limbs just stored, the case that sets kWideAddSubMin.
template <class R, bool Subtract>
Crossover addSubWide(const Settings& s) {
    const auto cands = lengths(1, 48, 1);
    return findCrossover(cands, [](std::size_t n) {
        auto w = std::make_shared<Work>(randomLimbs<R>(2 * n + 64, 3), randomLimbs<R>(n, 4));
        auto portable = [w, n] {
            Limb* x = w->a.data();
            if constexpr (Subtract) {
                ar::subSameLengthPortable<R>(x + n, x, w->b.data(), n);
                ar::subSameLengthPortable<R>(x, x + n, w->b.data(), n);
            } else {
                ar::addSameLengthPortable<R>(x + n, x, w->b.data(), n);
                ar::addSameLengthPortable<R>(x, x + n, w->b.data(), n);
            }
        };
        auto wide = [w, n] {
            Limb* x = w->a.data();
            if constexpr (Subtract) {
                ar::subSameLengthWide<R>(x + n, x, w->b.data(), n, 0);
                ar::subSameLengthWide<R>(x, x + n, w->b.data(), n, 0);
            } else {
                ar::addSameLengthWide<R>(x + n, x, w->b.data(), n, 0);
                ar::addSameLengthWide<R>(x, x + n, w->b.data(), n, 0);
            }
        };
        return std::pair<Call, Call>{portable, wide};
    }, s);
}

// 256-bit against 512-bit basecase (product, or square with its diagonal).
template <class R, bool Square>
Crossover basecaseWideLanes(const Settings& s) {
    const auto cands = lengths(2, 48, 1);
    return findCrossover(cands, [](std::size_t n) {
        auto w = makeWork<R>(n);
        if constexpr (Square)
            return std::pair<Call, Call>{
                [w, n] {
                    ar::sqrTriangleLanes<R>(w->out.data(), w->a.data(), n);
                    ar::addDoubledDiagonal<R>(w->out.data(), w->a.data(), n);
                },
                [w, n] {
                    ar::sqrTriangleWideLanes<R>(w->out.data(), w->a.data(), n);
                    ar::addDoubledDiagonal<R>(w->out.data(), w->a.data(), n);
                }};
        else
            return std::pair<Call, Call>{
                [w, n] { ar::mulBasecaseLanes<R>(w->out.data(), w->a.data(), n, w->b.data(), n); },
                [w, n] { ar::mulBasecaseWideLanes<R>(w->out.data(), w->a.data(), n, w->b.data(), n); }};
    }, s);
}

// ---- conversions ----

// Repeated division by the target radix (the short branch of convertLimbs)
// against the divide-and-conquer conversion, From limbs into To limbs.
template <class From, class To>
Crossover convertByDivision(const Settings& s) {
    const auto cands = s.quick ? lengths(4, 160, 8) : lengths(4, 160, 2);
    return findCrossover(cands, [](std::size_t n) {
        auto src = std::make_shared<std::vector<Limb>>(randomLimbs<From>(n, 5));
        auto divide = [src, n] {
            std::vector<Limb> work(*src), out;
            out.reserve(n + n / 2 + 1);
            std::size_t m = n;
            while (m > 0) {
                out.push_back(ar::divideByLimb<From>(work.data(), work.data(), m, To::base));
                while (m > 0 && work[m - 1] == 0) --m;
            }
        };
        auto tree = [src, n] {
            tw::NumberRecord converted;
            tw::setFromDigits<To>(converted, From::base, src->data(), n);
        };
        return std::pair<Call, Call>{divide, tree};
    }, s);
}

// ---- one radix's lines ----

template <class R>
void tuneRadix(const Settings& s, bool avx512) {
    const char* rn = radixName<R>();
    const Bound last = Bound::LastLower, first = Bound::FirstUpper;
    const Crossover mulBk = mulBasecaseKaratsuba<R>(s);
    printLine("kMulBasecaseMax", rn, str(ar::kLadder<R>.mulBasecaseMax), mulBk, last, "basecase", "Karatsuba");
    // The conversions' own product rule lets the 512-bit basecase run further in
    // radix 2^28: the same measurement, read for that bound.
    if (R::isBinary && avx512)
        printLine("kWideBasecaseMax", rn, str(ar::kWideBasecaseMax), mulBk, last, "basecase", "Karatsuba");
    printLine("kSqrBasecaseMax", rn, str(ar::kLadder<R>.sqrBasecaseMax), sqrBasecaseKaratsuba<R>(s), last, "basecase",
              "Karatsuba");
    // Past twice the current bound the Karatsuba halves take Toom-3 themselves,
    // so a crossover found there only says the bound should be at least that.
    const auto halvesNote = [](const Crossover& c, std::size_t current) {
        return c.length > 2 * current ? "  (at least: the halves take Toom-3 there)" : "";
    };
    const Crossover mulKt = mulKaratsubaToom3<R>(s), sqrKt = sqrKaratsubaToom3<R>(s);
    printLine("kMulKaratsubaMax", rn, str(ar::kLadder<R>.mulKaratsubaMax), mulKt, last, "Karatsuba", "Toom-3",
              halvesNote(mulKt, ar::kLadder<R>.mulKaratsubaMax));
    printLine("kSqrKaratsubaMax", rn, str(ar::kLadder<R>.sqrKaratsubaMax), sqrKt, last, "Karatsuba", "Toom-3",
              halvesNote(sqrKt, ar::kLadder<R>.sqrKaratsubaMax));
    printLine("kMulTransformMin", rn, str(ar::kLadder<R>.mulTransformMin), mulToom3Transform<R>(s), first, "rung below",
              "transform");
    printLine("kSqrTransformMin", rn, str(ar::kLadder<R>.sqrTransformMin), sqrToom3Transform<R>(s), first, "rung below",
              "transform");
    if (avx512) {
        const std::string addSubMin = str(ar::kWideAddSubMin);
        printLine("kWideAddSubMin (add)", rn, addSubMin, addSubWide<R, false>(s), first, "scalar", "512-bit");
        printLine("kWideAddSubMin (sub)", rn, addSubMin, addSubWide<R, true>(s), first, "scalar", "512-bit");
        // Decimal products keep the 256-bit kernels at every length.
        const std::string wideMin = R::isBinary ? str(ar::kWideLanesMin) : "off";
        const std::string wideSqrMin = R::isBinary ? str(ar::kWideLanesSqrMin) : "off";
        printLine("kWideLanesMin", rn, wideMin, basecaseWideLanes<R, false>(s), first, "256-bit", "512-bit");
        printLine("kWideLanesSqrMin", rn, wideSqrMin, basecaseWideLanes<R, true>(s), first, "256-bit", "512-bit");
    }
}

}  // namespace

int main(int argc, char** argv) {
    bool quick = false;
    for (int i = 1; i < argc; ++i) {
        if (!std::strcmp(argv[i], "--quick")) {
            quick = true;
        } else {
            std::fprintf(stderr, "usage: %s [--quick]\n", argv[0]);
            return 2;
        }
    }
    // Quick: coarse steps, short batches, a win at two candidates in a row.
    const Settings s = quick ? Settings{2e-3, 5, 2, true} : Settings{5e-3, 9, 3, false};

    // The 512-bit kernels are compared against the 256-bit ones, so both must run.
    const bool avx512 = tw::processorRuns(tw::KernelPath::Avx512) && tw::processorRuns(tw::KernelPath::Avx2);
    std::printf("tw_tune%s: crossovers on this machine (widest kernel path: %s)\n", quick ? " --quick" : "",
                avx512 ? "AVX-512" : "below AVX-512, the 512-bit lines are skipped");
    printHeader();
    tuneRadix<tw::DecimalRadix>(s, avx512);
    tuneRadix<tw::BinaryRadix>(s, avx512);
    // Below the constant, repeated division; from it on, the tree (a first length of the upper side).
    const std::string byDivision = std::to_string(tw::convert::kConvertByDivisionMax);
    printLine("kConvertByDivisionMax", "dec>bin", byDivision, convertByDivision<tw::DecimalRadix, tw::BinaryRadix>(s),
              Bound::FirstUpper, "division", "tree");
    printLine("kConvertByDivisionMax", "bin>dec", byDivision, convertByDivision<tw::BinaryRadix, tw::DecimalRadix>(s),
              Bound::FirstUpper, "division", "tree");
    return 0;
}
