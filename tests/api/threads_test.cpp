// Threads that keep to their own numbers: several create, compute and delete
// at once against GMP (run under ThreadSanitizer in CI), and the handle
// encoding those threads share without a lock.
#include "support/harness.h"

#include <random>
#include <thread>

#include "frame/handle_registry.h"

namespace twtest {
namespace {

// One thread's turns: new numbers, products, quotients and text, checked
// against GMP, then deleted; also random numbers and a converter.  Returns the wrong answers.
int ownTurns(unsigned seed, int turns) {
    std::mt19937_64 rng(seed);
    int wrong = 0;
    for (int i = 0; i < turns; ++i) {
        HI_handle a = HI_new(), b = HI_new(), r = HI_new();
        HX_handle x = HX_new();
        const std::uint64_t u = rng() | 1, v = rng() >> (rng() % 60) | 1;
        HI_set_u64(a, u);
        HI_set_u64(b, v);
        HI_pow(r, a, 3 + i % 5);
        HI_divRem(r, r, b, nullptr);
        HX_set_hi(x, r);
        Mpz want, gu, gv;
        mpz_set_ui(gu, u);
        mpz_set_ui(gv, v);
        mpz_pow_ui(want, gu, 3 + i % 5);
        mpz_tdiv_q(want, want, gv);
        wrong += !(Mpz(HI_getStrA(r, 0, nullptr)) == want) || !(numberValue(*tw::Family<HX_handle>::find(x)) == want);
        HI_random(b, 40);  // the one generator, drawn from in turn
        wrong += HI_getDigits(b) > 40;
        RC_handle c = RC_new(7);
        RC_set_u64(c, u);
        wrong += RC_get_u64(c) != u;
        RC_delete(c);
        HI_delete(a);
        HI_delete(b);
        HI_delete(r);
        HX_delete(x);
    }
    return wrong;
}

TEST(Threads, EachOnItsOwnNumbers) {
    const std::int32_t before = HI_getCount();
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (unsigned t = 0; t < 4; ++t) threads.emplace_back([t, &wrong] { wrong += ownTurns(t, 3000); });
    for (auto& t : threads) t.join();
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(HI_getCount(), before);
    EXPECT_EQ(TW_getLastError(), 0);
}

TEST(Threads, HandleValuesNameFamilySlotAndGeneration) {
    using tw::HandleCodec;
    const auto v = HandleCodec::encode(tw::HandleFamily::Binary, HandleCodec::kSlotMask, HandleCodec::kGenerationMask);
    EXPECT_EQ(HandleCodec::slot(v), HandleCodec::kSlotMask);
    EXPECT_EQ(HandleCodec::generation(v), HandleCodec::kGenerationMask);
    EXPECT_EQ(v & 3, 2u);
    EXPECT_EQ(HandleCodec::nextGeneration(HandleCodec::kGenerationMask), 0u);  // after 2^32 reuses
    if constexpr (!HandleCodec::kWide) return;
    // A value with bits outside the fields is no handle, whatever its slot holds.
    HI_handle h = HI_new();
    const auto value = reinterpret_cast<std::uintptr_t>(h);
    EXPECT_EQ(HI_isZero(reinterpret_cast<HI_handle>(value | (std::uintptr_t(1) << (2 + HandleCodec::kSlotBits)))), 1u);
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
    TW_setTerminate(0);
    HI_delete(h);
}

}  // namespace
}  // namespace twtest
