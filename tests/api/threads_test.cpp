// Threads that keep to their own numbers: several create, compute and delete
// at once against GMP (run under ThreadSanitizer in CI), conversions between
// the types at lengths that use the shared cache of powers, a stop requested
// from another thread, and the handle encoding those threads share without a lock.
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

// Random decimal digits, the first not zero.
std::string decimalDigits(std::mt19937_64& rng, std::size_t count) {
    std::string s(count, '0');
    for (auto& c : s) c = char('0' + rng() % 10);
    s[0] = char('1' + rng() % 9);
    return s;
}

// A number of 3 000 to 20 000 digits squared in binary limbs, converted both
// ways, written in decimal, hexadecimal and radix 7, divided back.  Returns the wrong answers.
int ownConversions(unsigned seed, int turns) {
    std::mt19937_64 rng(seed);
    int wrong = 0;
    for (int i = 0; i < turns; ++i) {
        const std::string digits = decimalDigits(rng, 3000 + rng() % 17000);
        HI_handle a = HI_new(), b = HI_new();
        HX_handle x = HX_new(), y = HX_new();
        HI_set_strA(a, digits.c_str());
        HX_set_hi(x, a);
        HX_mul(y, x, x);
        HI_set_hx(b, y);
        Mpz want(digits.c_str());
        mpz_mul(want, want, want);
        wrong += !(Mpz(HI_getStrA(b, 0, nullptr)) == want);
        wrong += HX_getStrA(y, 0, nullptr) != "0x" + want.str(-16);
        wrong += HI_getStrRadixA(b, 7, nullptr, 0, 0, nullptr) != want.str(7);
        HI_divRem(b, b, a, nullptr);
        wrong += HI_compare_hi(b, a) != 0;
        HI_delete(a), HI_delete(b), HX_delete(x), HX_delete(y);
    }
    return wrong;
}

TEST(Threads, ConversionsOnTheirOwnNumbers) {
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (unsigned t = 0; t < 3; ++t) threads.emplace_back([t, &wrong] { wrong += ownConversions(10 + t, 6); });
    for (auto& t : threads) t.join();
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(TW_getLastError(), 0);
}

// Threads square and convert until a stop requested from the main thread
// reaches them; each result is checked only when the flag stayed down all
// through its computation.  Stopped, the library answers as documented.
TEST(Threads, StopRequestedFromAnotherThread) {
    const std::int32_t before = HI_getCount() + HX_getCount();
    std::atomic<int> turns{0}, wrong{0};
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < 3; ++t)
        threads.emplace_back([t, &turns, &wrong] {
            std::mt19937_64 rng(20 + t);
            HI_handle a = HI_new(), r = HI_new();
            HX_handle x = HX_new();
            for (;;) {
                const std::string digits = decimalDigits(rng, 5000);
                HI_set_strA(a, digits.c_str());
                HI_mul(r, a, a);
                HX_set_hi(x, r);
                const char* text = HX_getStrA(x, 0, nullptr);
                if (TW_isTerminated()) break;
                Mpz want(digits.c_str());
                mpz_mul(want, want, want);
                wrong += !text || text != "0x" + want.str(-16);
                ++turns;
            }
            std::uint32_t length = 7, count = 7;
            wrong += TW_getLastError() != TW_ERR_STOPPED;
            wrong += HI_getStrA(a, 0, &length) != nullptr || length != 0;
            wrong += HX_getStrRadixA(x, 7, &count, 0, 0, &length) != nullptr || length != 0;
            wrong += HI_getDigits(a) != 0;
            HI_gcd(r, a, a);
            wrong += HI_getSign(r) != 0;
            HI_delete(a), HI_delete(r), HX_delete(x);
        });
    while (turns.load() < 6) std::this_thread::yield();
    TW_setTerminate(1);
    for (auto& t : threads) t.join();
    TW_setTerminate(0);
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(HI_getCount() + HX_getCount(), before);
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
