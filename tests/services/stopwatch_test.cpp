// The stopwatch through the C interface, driven by a fake tick source so that
// no test waits on the real clock.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "frame/stopwatch.h"
#include "tarnwick.h"

namespace {

std::uint64_t fakeTicks = 0;
std::uint64_t fakeNow() { return fakeTicks; }

constexpr std::uint64_t kGiga = 1000000000u;

class Stopwatch : public ::testing::Test {
protected:
    void SetUp() override { useFrequency(kGiga); }
    void TearDown() override {
        TW_enableTimer(0);
        TW_resetTimer(0, 0);
        tw::setStopwatchClockForTesting(nullptr, 0);
        TW_setTerminate(0);
    }
    // A stopped stopwatch reading zero on a counter of `frequency` ticks a second.
    static void useFrequency(std::uint64_t frequency) {
        fakeTicks = 5 * frequency;  // the counter does not start at zero
        tw::setStopwatchClockForTesting(fakeNow, frequency);
        TW_enableTimer(0);
        TW_resetTimer(0, 0);
    }
    static void advanceSeconds(double seconds) { fakeTicks += std::uint64_t(seconds * kGiga); }
    // The text of a format, checked to be the same in both widths.
    static std::string text(std::int32_t format) {
        const char* a = TW_getTimerStrA(format);
        const tw_wchar* w = TW_getTimerStrW(format);
        EXPECT_TRUE(a != nullptr && w != nullptr);
        if (a == nullptr || w == nullptr) return "<null>";
        std::string wide;
        for (; *w != 0; ++w) wide += char(*w);
        EXPECT_EQ(wide, a) << "format " << format;
        return a;
    }
    static void setElapsedMicroseconds(std::uint64_t us) {
        TW_enableTimer(0);
        TW_resetTimer(0, 0);
        fakeTicks = 5 * kGiga;
        TW_enableTimer(1);
        fakeTicks += us * 1000;
        TW_enableTimer(0);
    }
};

TEST_F(Stopwatch, AccumulatesOverStartStopCycles) {
    TW_enableTimer(1);
    advanceSeconds(2);
    EXPECT_EQ(TW_getTimer(0), 2000u);  // readable while running
    TW_enableTimer(0);
    advanceSeconds(7);  // stopped: not counted
    EXPECT_EQ(TW_getTimer(0), 2000u);
    TW_enableTimer(1);
    advanceSeconds(0.25);
    TW_enableTimer(1);  // already running: no restart
    advanceSeconds(2.75);
    TW_enableTimer(0);
    EXPECT_EQ(TW_getTimer(0), 5000u);
    EXPECT_EQ(TW_getTimer(1), 5000000u);
    EXPECT_EQ(TW_getTimer(2), 5000000000u);
}

TEST_F(Stopwatch, NanosecondsStayExactPastEighteenSeconds) {
    // ticks * 10^9 leaves 64 bits after 18.4 s at 10^9 ticks a second.
    TW_enableTimer(1);
    advanceSeconds(100000);
    EXPECT_EQ(TW_getTimer(2), 100000 * kGiga);
    EXPECT_EQ(TW_getTimer(0), 100000000u);
}

TEST_F(Stopwatch, InvalidUnitsReadZeroAndChangeNothing) {
    TW_resetTimer(1500, 0);
    for (std::int32_t unit : {-1, 3, 1000, INT32_MIN}) {
        EXPECT_EQ(TW_getTimer(unit), 0u);
        TW_resetTimer(7, unit);
    }
    EXPECT_EQ(TW_getTimer(0), 1500u);
}

TEST_F(Stopwatch, ResetWhileStoppedSetsTheElapsedTime) {
    TW_resetTimer(1500, 0);
    advanceSeconds(3);
    EXPECT_EQ(TW_getTimer(1), 1500000u);  // still stopped
    TW_resetTimer(42, 1);
    EXPECT_EQ(TW_getTimer(2), 42000u);
    TW_resetTimer(0, 2);
    EXPECT_EQ(TW_getTimer(2), 0u);
    TW_enableTimer(1);  // starts from the value set
    TW_resetTimer(250, 0);
    advanceSeconds(1);
    EXPECT_EQ(TW_getTimer(0), 1250u);
}

TEST_F(Stopwatch, ResetWhileRunningKeepsRunning) {
    TW_enableTimer(1);
    advanceSeconds(4);
    TW_resetTimer(0, 0);
    EXPECT_EQ(TW_getTimer(2), 0u);
    advanceSeconds(1.5);
    EXPECT_EQ(TW_getTimer(0), 1500u);
    TW_resetTimer(10, 0);
    advanceSeconds(0.005);
    EXPECT_EQ(TW_getTimer(0), 15u);
    // A value beyond the counter reading clamps the virtual start to 0, so
    // the counter itself is read as the elapsed time.
    fakeTicks = 300;
    TW_resetTimer(1000, 0);
    EXPECT_EQ(TW_getTimer(2), 300u);
}

TEST_F(Stopwatch, ResetRoundsUpToWholeTicks) {
    // A 3.579545 MHz counter, as on many PCs: 1 us is 3.58 ticks, kept as 4.
    useFrequency(3579545);
    TW_resetTimer(1, 1);
    EXPECT_EQ(TW_getTimer(2), 4 * kGiga / 3579545);  // 1117 ns, not the 838 of 3 ticks
    TW_resetTimer(1000, 0);                           // exactly 3579545 ticks
    EXPECT_EQ(TW_getTimer(2), kGiga);
    useFrequency(3);
    TW_resetTimer(1, 0);  // 0.003 ticks -> 1 tick
    EXPECT_EQ(TW_getTimer(0), 333u);
    TW_enableTimer(1);
    TW_resetTimer(1, 2);  // running: the same rounding
    EXPECT_EQ(TW_getTimer(0), 333u);
}

TEST_F(Stopwatch, SecondsTextFormats) {
    setElapsedMicroseconds(1500000);
    EXPECT_EQ(text(3), "1.500000 s");
    EXPECT_EQ(text(2), "1.500000s");
    EXPECT_EQ(text(4), "1.500000s");
    EXPECT_EQ(text(INT32_MAX), "1.500000s");
    EXPECT_EQ(text(1), "1.500000");
    EXPECT_EQ(text(-1), "1.500000");
    EXPECT_EQ(text(INT32_MIN), "1.500000");

    setElapsedMicroseconds(0);
    EXPECT_EQ(text(1), "0.000000");
    setElapsedMicroseconds(7000089);
    EXPECT_EQ(text(1), "7.000089");
    setElapsedMicroseconds(9999999999u);
    EXPECT_EQ(text(3), "9999.999999 s");
    setElapsedMicroseconds(10000000001u);  // the four-digit seconds field wraps
    EXPECT_EQ(text(2), "0.000001s");
    setElapsedMicroseconds(12345678901u);
    EXPECT_EQ(text(1), "2345.678901");
}

TEST_F(Stopwatch, ClockTextFormat) {
    setElapsedMicroseconds(0);
    EXPECT_EQ(text(0), "00:00:00.000");
    setElapsedMicroseconds(3723004999u);  // 1 h 2 min 3.004999 s: milliseconds truncate
    EXPECT_EQ(text(0), "01:02:03.004");
    setElapsedMicroseconds(359999999000u);
    EXPECT_EQ(text(0), "99:59:59.999");
    setElapsedMicroseconds(360000000000u);  // 100 hours: capped
    EXPECT_EQ(text(0), "99:59:59.999");
    setElapsedMicroseconds(4000000000000000u);
    EXPECT_EQ(text(0), "99:59:59.999");
}

TEST_F(Stopwatch, RecordedErrorStopsIt) {
    TW_enableTimer(1);
    advanceSeconds(2);
    EXPECT_EQ(HI_get_u32(nullptr), 0u);  // records -4
    EXPECT_EQ(TW_getLastError(), TW_ERR_HANDLE);
    advanceSeconds(3);
    EXPECT_EQ(TW_getTimer(0), 2000u);
    TW_setTerminate(0);
    TW_enableTimer(1);  // it was stopped, so this starts it again
    advanceSeconds(1);
    EXPECT_EQ(TW_getTimer(0), 3000u);
    TW_setTerminate(1);  // the caller's stop is an error too
    advanceSeconds(1);
    EXPECT_EQ(TW_getTimer(0), 3000u);
}

TEST_F(Stopwatch, WithoutACounterEverythingIsInert) {
    TW_resetTimer(1500, 0);
    tw::setStopwatchClockForTesting(fakeNow, 0);
    TW_enableTimer(1);
    TW_resetTimer(9, 0);
    for (std::int32_t unit : {0, 1, 2}) EXPECT_EQ(TW_getTimer(unit), 0u);
    EXPECT_EQ(TW_getTimerStrA(0), nullptr);
    EXPECT_EQ(TW_getTimerStrW(1), nullptr);
    tw::setStopwatchClockForTesting(fakeNow, kGiga);
    advanceSeconds(1);
    EXPECT_EQ(TW_getTimer(0), 1500u);  // neither started nor reset meanwhile
}

}  // namespace
