// The terminate flag: a raised flag makes long operations yield zero, and a
// second thread can stop a running product of ten million digits.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "arith_api/arith_support.h"

namespace {

using namespace twtest;

template <class F>
class Terminate : public ErrorStateGuard {};
TYPED_TEST_SUITE(Terminate, BothFamilies);

TYPED_TEST(Terminate, RaisedFlagMakesLongOperationsZero) {
    using F = TypeParam;
    using R = typename F::Radix;
    LimbGenerator gen(10);
    Number<F> r, a, b, q;
    a.set(toMpz<R>(gen.limbs<R>(700)));
    b.set(toMpz<R>(gen.limbs<R>(300)));
    TW_setTerminate(1);
    F::mul(r, a, b);
    EXPECT_EQ(F::getSign(r), 0);
    F::mul(r, a, a);
    EXPECT_EQ(F::getSign(r), 0);
    F::divRem(q, a, b, nullptr);
    EXPECT_EQ(F::getSign(q), 0);
    F::set_s32(r, 3);
    F::pow(q, r, 1000);
    EXPECT_EQ(F::getSign(q), 0);
    EXPECT_EQ(TW_getLastError(), TW_ERR_STOPPED);
    TW_setTerminate(0);
    F::mul(r, a, b);
    EXPECT_EQ(F::getSign(r), 1);
}

// A product of two 10^7-digit numbers, stopped from another thread shortly
// after it starts: the result is zero (never a partial product) and the error
// is "stopped by the caller".
TYPED_TEST(Terminate, SecondThreadStopsALongProduct) {
    using F = TypeParam;
    using R = typename F::Radix;
    const std::size_t limbs = R::isBinary ? 1189000 : 1111112;  // about 10^7 digits
    LimbGenerator gen(11);
    Number<F> r, a, b;
    for (auto* x : {&a, &b}) {
        auto& rec = x->object().rec();
        tw::resizeStorage(rec, std::uint32_t(limbs), true);
        for (std::size_t i = 0; i < limbs; ++i) rec.digits[i] = tw::Limb(gen.next() % R::base);
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
    EXPECT_EQ(TW_getLastError(), TW_ERR_STOPPED);
    EXPECT_EQ(F::getSign(r), 0);
    EXPECT_TRUE(recordIsNormal(r.object()));
}

}  // namespace
