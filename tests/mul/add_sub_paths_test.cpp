// Span addition and subtraction on every path this processor runs, pinned in
// turn: limb for limb against the portable scalar loops and against GMP, at
// every length up to five vectors and around the larger block counts (every
// ragged end and the vector threshold), with carries rippling across whole
// spans and across block edges from every lane, with every aliasing of out,
// and with the spans against inaccessible pages so that a read or write past
// either end faults.  The product ladder, whose combination steps run on
// these kernels, is checked on each path too.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

#include "arith/kernels/add_sub.h"
#include "arith/kernels/mul_span_ops.h"
#include "arith/kernels/multiply.h"
#include "mul_check.h"

namespace {

using namespace twtest;
using tw::Limb;
using AddSubPath = tw::KernelPath;

template <class R>
class AddSubPaths : public ::testing::Test {
protected:
    void TearDown() override { tw::resetKernelPath(); }
};
TYPED_TEST_SUITE(AddSubPaths, Radices);

std::vector<AddSubPath> supportedPaths() {
    std::vector<AddSubPath> paths;
    for (const AddSubPath p : {AddSubPath::Portable, AddSubPath::Avx512})
        if (tw::processorRuns(p)) paths.push_back(p);
    return paths;
}

const char* pathName(AddSubPath p) {
    switch (p) {
        case AddSubPath::Portable: return "portable";
        case AddSubPath::Avx512: return "wide";
        default: return "auto";
    }
}

// Every length up to five vectors, then either side of larger block counts.
std::vector<std::size_t> lengths() {
    std::vector<std::size_t> n;
    for (std::size_t i = 1; i <= 80; ++i) n.push_back(i);
    for (const std::size_t m : {96u, 128u, 256u, 512u})
        for (const std::size_t d : {m - 1, m, m + 1}) n.push_back(d);
    return n;
}

// The entry points under test: the plain sums and differences (with a carry
// or borrow in) and the ladder's combination step (without).
enum class Op { Add, Sub, CombineAdd, CombineSub };
constexpr Op kOps[] = {Op::Add, Op::Sub, Op::CombineAdd, Op::CombineSub};

bool subtracts(Op op) { return op == Op::Sub || op == Op::CombineSub; }
bool takesCarry(Op op) { return op == Op::Add || op == Op::Sub; }

template <class R>
Limb apply(Op op, Limb* out, const Limb* a, const Limb* b, std::size_t n, Limb carry) {
    using namespace tw::arith;
    switch (op) {
        case Op::Add: return addSameLength<R>(out, a, b, n, carry);
        case Op::Sub: return subSameLength<R>(out, a, b, n, carry);
        case Op::CombineAdd: return combineSameLength<R, false>(out, a, b, n);
        default: return combineSameLength<R, true>(out, a, b, n);
    }
}

// The same operation by the scalar loops, whatever path is forced.
template <class R>
Limb applyPortable(Op op, Limb* out, const Limb* a, const Limb* b, std::size_t n, Limb carry) {
    using namespace tw::arith;
    switch (op) {
        case Op::Add: return addSameLengthPortable<R>(out, a, b, n, carry);
        case Op::Sub: return subSameLengthPortable<R>(out, a, b, n, carry);
        case Op::CombineAdd: return combineSameLengthTwoChains<R, false>(out, a, b, n);
        default: return combineSameLengthTwoChains<R, true>(out, a, b, n);
    }
}

// out + carry * radix^n must be a + b + carryIn (out - borrow * radix^n must
// be a - b - borrowIn).
template <class R>
::testing::AssertionResult agreesWithGmp(Op op, const Limbs& a, const Limbs& b, Limb carryIn, const Limbs& out,
                                         Limb carryOut) {
    Mpz want, got, top;
    if (subtracts(op)) {
        mpz_sub(want.v, toMpz<R>(a).v, toMpz<R>(b).v);
        mpz_sub_ui(want.v, want.v, carryIn);
    } else {
        mpz_add(want.v, toMpz<R>(a).v, toMpz<R>(b).v);
        mpz_add_ui(want.v, want.v, carryIn);
    }
    mpz_ui_pow_ui(top.v, R::base, out.size());
    mpz_mul_ui(top.v, top.v, carryOut);
    got = toMpz<R>(out);
    if (subtracts(op))
        mpz_sub(got.v, got.v, top.v);
    else
        mpz_add(got.v, got.v, top.v);
    if (mpz_cmp(got.v, want.v) != 0) return ::testing::AssertionFailure() << "disagrees with GMP";
    return ::testing::AssertionSuccess();
}

// Which operand the result overwrites.
enum class Alias { None, OutIsA, OutIsB, AllThree };
constexpr Alias kAliases[] = {Alias::None, Alias::OutIsA, Alias::OutIsB, Alias::AllThree};

const char* aliasName(Alias a) {
    switch (a) {
        case Alias::None: return "separate";
        case Alias::OutIsA: return "out == a";
        case Alias::OutIsB: return "out == b";
        default: return "out == a == b";
    }
}

constexpr std::size_t kGuard = 17;   // sentinel limbs either side of the result

// Runs op on the current path with the given aliasing (b is taken as a for
// AllThree), the result between sentinel limbs; checks it limb for limb
// against the portable loops on copies, and against GMP when asked.
template <class R>
void expectOp(Op op, Alias alias, const Limbs& a, const Limbs& bIn, Limb carry, bool withOracle,
              const char* path) {
    const std::size_t n = a.size();
    const Limbs& b = alias == Alias::AllThree ? a : bIn;
    Limbs want(n);
    const Limb wantCarry = applyPortable<R>(op, want.data(), a.data(), b.data(), n, carry);

    Limbs buf(n + 2 * kGuard, kSentinel);
    Limb* out = buf.data() + kGuard;
    Limbs aCopy = a, bCopy = b;
    const Limb* x = aCopy.data();
    const Limb* y = bCopy.data();
    if (alias == Alias::OutIsA || alias == Alias::AllThree) std::copy(a.begin(), a.end(), out), x = out;
    if (alias == Alias::OutIsB || alias == Alias::AllThree) std::copy(b.begin(), b.end(), out), y = out;
    const Limb gotCarry = apply<R>(op, out, x, y, n, carry);

    const Limbs got(out, out + n);
    SCOPED_TRACE(::testing::Message() << path << ", " << aliasName(alias) << ", n = " << n << ", op "
                                      << int(op) << ", carry in " << carry);
    ASSERT_EQ(gotCarry, wantCarry);
    ASSERT_EQ(got, want);
    for (std::size_t i = 0; i < kGuard; ++i) {
        ASSERT_EQ(buf[i], kSentinel) << "limb " << kGuard - i << " before the result written";
        ASSERT_EQ(buf[kGuard + n + i], kSentinel) << "limb " << i << " behind the result written";
    }
    if (alias == Alias::None) {
        ASSERT_EQ(aCopy, a) << "operand a written";
        ASSERT_EQ(bCopy, b) << "operand b written";
    }
    if (withOracle) EXPECT_TRUE(agreesWithGmp<R>(op, a, b, carry, got, gotCarry));
}

TYPED_TEST(AddSubPaths, RandomSpansMatchPortableLoopsAndGmp) {
    using R = TypeParam;
    for (const AddSubPath path : supportedPaths()) {
        tw::forceKernelPathForTesting(path);
        LimbGenerator gen(211);
        for (const std::size_t n : lengths()) {
            for (const Op op : kOps) {
                for (int rep = 0; rep < 3; ++rep) {
                    const Limbs a = gen.limbs<R>(n), b = gen.limbs<R>(n);
                    const Limb carry = takesCarry(op) ? Limb(rep & 1) : 0;
                    expectOp<R>(op, Alias::None, a, b, carry, rep == 0, pathName(path));
                    if (::testing::Test::HasFatalFailure()) return;
                }
            }
        }
    }
}

TYPED_TEST(AddSubPaths, EveryAliasingOfTheResult) {
    using R = TypeParam;
    for (const AddSubPath path : supportedPaths()) {
        tw::forceKernelPathForTesting(path);
        LimbGenerator gen(212);
        for (const std::size_t n : lengths()) {
            for (const Op op : kOps) {
                for (const Alias alias : kAliases) {
                    const Limbs a = gen.limbs<R>(n), b = gen.limbs<R>(n);
                    const Limb carry = takesCarry(op) ? Limb(n & 1) : 0;
                    expectOp<R>(op, alias, a, b, carry, n % 5 == 0, pathName(path));
                    if (::testing::Test::HasFatalFailure()) return;
                }
            }
        }
    }
}

// All-maximal limbs plus one carry out of the top and leave zeros; zeros
// minus one borrow out and leave all-maximal limbs; the one comes in as the
// low limb of b or as the carry (borrow) in.
TYPED_TEST(AddSubPaths, CarriesAndBorrowsRippleThroughWholeSpans) {
    using R = TypeParam;
    for (const AddSubPath path : supportedPaths()) {
        tw::forceKernelPathForTesting(path);
        for (const std::size_t n : lengths()) {
            const Limbs top = LimbGenerator::maxLimbs<R>(n), zero(n, 0);
            Limbs one(n, 0);
            one[0] = 1;
            for (const Op op : kOps) {
                const Limbs& a = subtracts(op) ? zero : top;
                expectOp<R>(op, Alias::None, a, one, 0, n < 20, pathName(path));
                if (takesCarry(op)) expectOp<R>(op, Alias::None, a, zero, 1, n < 20, pathName(path));
                // The operand that is overwritten must not be read after its limbs change.
                expectOp<R>(op, Alias::OutIsA, a, one, 0, false, pathName(path));
                if (::testing::Test::HasFatalFailure()) return;
            }
            Limbs got(n);
            EXPECT_EQ(tw::arith::addSameLength<R>(got.data(), top.data(), one.data(), n), 1u);
            EXPECT_EQ(got, zero) << pathName(path) << " n = " << n;
            EXPECT_EQ(tw::arith::subSameLength<R>(got.data(), zero.data(), zero.data(), n, 1), 1u);
            EXPECT_EQ(got, top) << pathName(path) << " n = " << n;
        }
    }
}

// A carry (borrow) born in each lane in turn, with propagating limbs (radix-1
// in a sum, 0 in a difference) above and below it: it must stop exactly at
// the first non-propagating limb, wherever that is in the block or beyond.
TYPED_TEST(AddSubPaths, CarryBornInEveryLaneStopsWhereTheRunEnds) {
    using R = TypeParam;
    for (const AddSubPath path : supportedPaths()) {
        tw::forceKernelPathForTesting(path);
        for (const std::size_t n : {16u, 37u, 48u, 64u}) {
            for (std::size_t born = 0; born < n; ++born) {
                for (const std::size_t stop : {born + 1, born + 2, born + 17, n}) {
                    for (const Op op : kOps) {
                        Limbs a(n, subtracts(op) ? 0 : R::base - 1), b(n, 0);
                        // Generating limb at `born`; the run of propagating limbs ends at `stop`.
                        a[born] = subtracts(op) ? 3 : R::base - 2;
                        b[born] = subtracts(op) ? 5 : 7;
                        if (stop < n) a[stop] = subtracts(op) ? 9 : 11;
                        expectOp<R>(op, Alias::None, a, b, 0, born % 13 == 0, pathName(path));
                        if (::testing::Test::HasFatalFailure()) return;
                    }
                }
            }
        }
    }
}

// Spans laid right against inaccessible pages, ending at one and starting
// just after one: any access past either end of a, b or out faults.
class GuardedPages {
public:
    GuardedPages() : page_(std::size_t(sysconf(_SC_PAGESIZE))) {
        // Pages: guard, a, guard, b, guard, out, guard.
        base_ = static_cast<char*>(mmap(nullptr, 7 * page_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        ok_ = base_ != MAP_FAILED;
        if (ok_)
            for (int g : {0, 2, 4, 6}) ok_ = ok_ && mprotect(base_ + g * page_, page_, PROT_NONE) == 0;
    }
    ~GuardedPages() {
        if (base_ != MAP_FAILED) munmap(base_, 7 * page_);
    }
    bool ok() const { return ok_; }
    std::size_t capacity() const { return page_ / sizeof(Limb); }
    // The k-th open page (0: a, 1: b, 2: out); n limbs at its end or start.
    Limb* span(int k, std::size_t n, bool atEnd) const {
        Limb* p = reinterpret_cast<Limb*>(base_ + (2 * k + 1) * page_);
        return atEnd ? p + capacity() - n : p;
    }

private:
    std::size_t page_;
    char* base_;
    bool ok_ = false;
};

TYPED_TEST(AddSubPaths, NoAccessPastEitherEndOfTheSpans) {
    using R = TypeParam;
    GuardedPages pages;
    ASSERT_TRUE(pages.ok());
    for (const AddSubPath path : supportedPaths()) {
        tw::forceKernelPathForTesting(path);
        LimbGenerator gen(213);
        for (const std::size_t n : lengths()) {
            if (n > pages.capacity()) continue;
            for (const bool atEnd : {true, false}) {
                for (const Op op : kOps) {
                    const Limbs av = gen.limbs<R>(n), bv = gen.limbs<R>(n);
                    Limb* a = pages.span(0, n, atEnd);
                    Limb* b = pages.span(1, n, atEnd);
                    Limb* out = pages.span(2, n, atEnd);
                    std::copy(av.begin(), av.end(), a);
                    std::copy(bv.begin(), bv.end(), b);
                    Limbs want(n);
                    const Limb wantCarry = applyPortable<R>(op, want.data(), a, b, n, 0);
                    EXPECT_EQ(apply<R>(op, out, a, b, n, 0), wantCarry) << pathName(path) << " n = " << n;
                    EXPECT_EQ(Limbs(out, out + n), want) << pathName(path) << " n = " << n;
                    // In place, against the guard page too.
                    EXPECT_EQ(apply<R>(op, a, a, b, n, 0), wantCarry) << pathName(path) << " n = " << n;
                    EXPECT_EQ(Limbs(a, a + n), want) << pathName(path) << " n = " << n;
                }
            }
        }
    }
}

// Spans of unequal length (the longer part rippling or copied) and the
// in-place helpers of the ladder, on each path.
TYPED_TEST(AddSubPaths, UnequalSpansAndInPlaceHelpers) {
    using R = TypeParam;
    for (const AddSubPath path : supportedPaths()) {
        tw::forceKernelPathForTesting(path);
        LimbGenerator gen(214);
        for (const std::size_t bn : {15u, 16u, 17u, 40u, 129u}) {
            for (const std::size_t extra : {0u, 1u, 18u}) {
                const std::size_t an = bn + extra;
                const Limbs a = gen.limbs<R>(an), b = gen.limbs<R>(bn);
                Limbs sum(an + 1), diff(an);
                sum[an] = tw::arith::addSpans<R>(sum.data(), a.data(), an, b.data(), bn);
                Mpz want;
                mpz_add(want.v, toMpz<R>(a).v, toMpz<R>(b).v);
                EXPECT_EQ(mpz_cmp(toMpz<R>(sum).v, want.v), 0) << pathName(path) << " " << an << " + " << bn;
                // a + b - b = a, in place.
                tw::arith::subtractSpanInPlace<R>(sum.data(), an + 1, b.data(), bn);
                EXPECT_EQ(Limbs(sum.begin(), sum.begin() + an), a) << pathName(path);
                EXPECT_EQ(sum[an], 0u);
                // |b - a| both ways, with the sign.
                const bool negative = tw::arith::absDifference<R>(diff.data(), b.data(), bn, a.data(), an);
                mpz_sub(want.v, toMpz<R>(b).v, toMpz<R>(a).v);
                EXPECT_EQ(negative, mpz_sgn(want.v) < 0) << pathName(path);
                mpz_abs(want.v, want.v);
                EXPECT_EQ(mpz_cmp(toMpz<R>(diff).v, want.v), 0) << pathName(path) << " |" << bn << " - " << an << "|";
            }
        }
    }
}

// The products whose Karatsuba and Toom-3 combination steps run on these
// kernels: balanced and lopsided shapes across the divide-and-conquer rungs.
TYPED_TEST(AddSubPaths, LadderProductsOnEachPath) {
    using R = TypeParam;
    for (const AddSubPath path : supportedPaths()) {
        tw::forceKernelPathForTesting(path);
        LimbGenerator gen(215);
        for (const auto& [l, s] : {std::pair<std::size_t, std::size_t>{65, 65}, {100, 71}, {150, 149}, {193, 193},
                                   {260, 200}, {300, 120}, {450, 449}, {511, 300}}) {
            const Limbs L = gen.limbs<R>(l), S = gen.limbs<R>(s);
            const Limbs got = runKernel(l + s, [&](Limb* out) {
                tw::arith::multiply<R>(out, L.data(), l, S.data(), s);
            });
            EXPECT_TRUE(isProduct<R>(got, L, S)) << pathName(path);
            const Limbs sq = runKernel(2 * l, [&](Limb* out) { tw::arith::square<R>(out, L.data(), l); });
            EXPECT_TRUE(isProduct<R>(sq, L, L)) << pathName(path) << " square of " << l;
        }
    }
}

}  // namespace
