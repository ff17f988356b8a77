#include "frame/stopwatch.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>

#include "frame/platform.h"
#include "frame/radix.h"

namespace tw {

namespace {

struct Stopwatch {
    std::uint64_t (*now)() = platform::counterTicks;
    std::uint64_t frequency = 0;                 // 0: no counter (until the start-up reads it)
    std::uint32_t running = 0;                   // the last `on` that changed the state
    std::uint64_t value = 0;                     // virtual start while running, elapsed ticks while stopped
};

Stopwatch watch;

constexpr std::uint64_t kUnitFactors[3] = {1000u, 1000000u, 1000000000u};

bool validUnit(std::int32_t unit) { return unit >= 0 && unit <= 2; }

std::uint64_t elapsedTicks() { return watch.running ? watch.now() - watch.value : watch.value; }

// ---- text ----

// "00" .. "99" and "0000" .. "9999": the text is assembled from whole groups.
template <std::size_t Width, std::size_t Count>
constexpr auto makeDigitGroups() {
    std::array<std::array<char, Width>, Count> groups{};
    for (std::size_t v = 0; v < Count; ++v) {
        std::size_t rest = v;
        for (std::size_t i = Width; i-- > 0; rest /= 10) groups[v][i] = char('0' + rest % 10);
    }
    return groups;
}
constexpr auto kTwoDigits = makeDigitGroups<2, 100>();
constexpr auto kFourDigits = makeDigitGroups<4, 10000>();

// Format 0 shows at most 99:59:59.999.
constexpr std::uint64_t kMaxClockMilliseconds = 359999999u;

// Writes digits[0..n) so that they end just before p; returns the new start.
template <class Ch>
Ch* putBefore(Ch* p, const char* digits, std::size_t n) {
    p -= n;
    std::copy(digits, digits + n, p);
    return p;
}

template <class Ch>
Ch* putTwoDigits(Ch* p, std::uint64_t v) { return putBefore(p, kTwoDigits[v].data(), 2); }

// hh:mm:ss.mmm, every field with leading zeros.
template <class Ch>
Ch* writeClockText(Ch* p, std::uint64_t milliseconds) {
    milliseconds = std::min(milliseconds, kMaxClockMilliseconds);
    p = putBefore(p, kFourDigits[milliseconds % 1000].data() + 1, 3);
    *--p = '.';
    const std::uint64_t seconds = milliseconds / 1000;
    p = putTwoDigits(p, seconds % 60);
    *--p = ':';
    p = putTwoDigits(p, seconds / 60 % 60);
    *--p = ':';
    return putTwoDigits(p, seconds / 3600);
}

// Seconds with six decimals.  The seconds field holds four digits, so whole
// seconds are taken modulo 10 000 (elapsed times of 2 h 46 min and more wrap).
template <class Ch>
Ch* writeSecondsText(Ch* p, std::uint64_t microseconds) {
    const std::uint64_t fraction = microseconds % 1000000;
    p = putBefore(p, kFourDigits[fraction % 10000].data(), 4);
    p = putTwoDigits(p, fraction / 10000);
    *--p = '.';
    const std::uint32_t seconds = std::uint32_t(microseconds / 1000000 % 10000);
    const unsigned width = decimalDigitsOfLimb(seconds);
    return putBefore(p, kFourDigits[seconds].data() + 4 - width, width);
}

const char* unitSuffix(std::int32_t format) {
    if (format == 3) return " s";
    if (format == 2 || format > 3) return "s";
    return "";  // format 1 and negative formats
}

constexpr std::size_t kTextCapacity = 16;  // "9999.999999 s" and the terminator

// Builds the text right to left so that it ends at the end of `buffer`.
template <class Ch>
const Ch* formatElapsed(std::int32_t format, Ch (&buffer)[kTextCapacity]) {
    if (watch.frequency == 0) return nullptr;
    Ch* p = std::end(buffer);
    *--p = 0;
    if (format == 0) return writeClockText(p, stopwatchRead(0));
    const char* suffix = unitSuffix(format);
    const std::size_t suffixLength = std::char_traits<char>::length(suffix);
    p = putBefore(p, suffix, suffixLength);
    return writeSecondsText(p, stopwatchRead(1));
}

}  // namespace

void stopwatchStart() { watch.frequency = platform::counterFrequency(); }

void stopwatchEnable(std::uint32_t on) {
    if (watch.frequency == 0 || on == watch.running) return;
    watch.running = on;
    const std::uint64_t c = watch.now();
    watch.value = c > watch.value ? c - watch.value : 0;
}

void stopwatchReset(std::uint32_t value, std::int32_t unit) {
    if (watch.frequency == 0 || !validUnit(unit)) return;
    const std::uint64_t factor = kUnitFactors[unit];
    // Whole ticks, rounded up; below 2^32 * 2^64 / 10^3, so 128 bits hold it.
    const u128 ticks128 = (u128(value) * watch.frequency + factor - 1) / factor;
    const std::uint64_t ticks = std::uint64_t(ticks128);
    if (!watch.running) {
        watch.value = ticks;
        return;
    }
    const std::uint64_t c = watch.now();
    watch.value = c > ticks ? c - ticks : 0;
}

std::uint64_t stopwatchRead(std::int32_t unit) {
    if (watch.frequency == 0 || !validUnit(unit)) return 0;
    // 128 bits: ticks * 10^9 passes 2^64 after 18 s at 10^9 ticks a second.
    return std::uint64_t(u128(elapsedTicks()) * kUnitFactors[unit] / watch.frequency);
}

const char* stopwatchTextA(std::int32_t format) {
    static char buffer[kTextCapacity];
    return formatElapsed(format, buffer);
}

const tw_wchar* stopwatchTextW(std::int32_t format) {
    static tw_wchar buffer[kTextCapacity];
    return formatElapsed(format, buffer);
}

void stopwatchHaltOnError() {
    if (watch.running) stopwatchEnable(0);
}

void setStopwatchClockForTesting(std::uint64_t (*now)(), std::uint64_t frequency) {
    watch.now = now ? now : platform::counterTicks;
    watch.frequency = now ? frequency : platform::counterFrequency();
}

}  // namespace tw
