#include "stop_latency.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <random>
#include <thread>
#include <vector>

#include <pthread.h>
#include <time.h>

#include "bench_harness.h"

namespace twbench {

namespace {

using Clock = std::chrono::steady_clock;

// One long call: `reset` puts its results in a known state before each run,
// `state` describes them after a stopped run.
struct StopProbe {
    std::function<void()> reset;
    std::function<void()> call;
    std::function<std::string()> state;
};

// A result handle's state after a stopped call: set to kMarker before it,
// so "untouched" and "zero" can be told from a half-written value.
constexpr std::uint32_t kMarker = 12345;
std::string stateOf(HI_handle h) {
    return HI_isZero(h) ? "zero" : HI_compare_u32(h, kMarker) == 0 ? "untouched" : "other";
}
std::string stateOf(HX_handle h) {
    return HX_isZero(h) ? "zero" : HX_compare_u32(h, kMarker) == 0 ? "untouched" : "other";
}

struct Outcome {
    double latency = -1;  // negative: the call ended before the flag was raised
    double cpuLatency = -1;  // the calling thread's processor time over the same stretch
    std::int32_t error = 0;
    std::string state;
};

// Processor seconds of a thread so far: the latency it measures leaves out
// the time other work on a busy machine takes from the stopped call.
double cpuSeconds(clockid_t clock) {
    timespec t;
    clock_gettime(clock, &t);
    return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
}

// Runs the call with the flag raised `delay` seconds after it starts.
Outcome stopAfter(const StopProbe& p, double delay) {
    p.reset();
    TW_setTerminate(0);
    std::atomic<Clock::rep> raisedAt{0};
    clockid_t mainClock;
    pthread_getcpuclockid(pthread_self(), &mainClock);
    std::atomic<double> cpuAtRaise{0};
    const auto start = Clock::now();
    std::thread stopper([&] {
        std::this_thread::sleep_until(start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(delay)));
        cpuAtRaise = cpuSeconds(mainClock);
        raisedAt = Clock::now().time_since_epoch().count();
        TW_setTerminate(1);
    });
    p.call();
    const auto end = Clock::now().time_since_epoch().count();
    const double cpuEnd = cpuSeconds(mainClock);
    const Clock::rep raised = raisedAt;
    Outcome o;
    o.error = TW_getLastError();
    o.state = p.state();
    if (raised != 0) {
        o.latency = std::chrono::duration<double>(Clock::duration(end - raised)).count();
        o.cpuLatency = cpuEnd - cpuAtRaise;
    }
    stopper.join();
    TW_setTerminate(0);
    return o;
}

void measure(const std::string& name, const std::string& size, const StopProbe& p) {
    TW_setTerminate(0);
    p.reset();
    const auto start = Clock::now();
    p.call();
    const double normal = std::chrono::duration<double>(Clock::now() - start).count();
    Outcome worst;
    std::string errors, states;
    for (const double fraction : {0.1, 0.5, 0.9}) {
        const Outcome o = stopAfter(p, fraction * normal);
        if (o.latency < 0) continue;  // finished first: nothing to measure
        if (o.latency > worst.latency) worst.latency = o.latency;
        worst.cpuLatency = std::max(worst.cpuLatency, o.cpuLatency);
        const std::string e = std::to_string(o.error);
        if (errors.find(e) == std::string::npos) errors += (errors.empty() ? "" : " ") + e;
        if (states.find(o.state) == std::string::npos) states += (states.empty() ? "" : " ") + o.state;
    }
    const auto show = [](double s) { return s < 0 ? std::string("-") : formatSeconds(s); };
    std::printf("| %s | %s | %s | %s | %s | %s | %s |\n", name.c_str(), size.c_str(), formatSeconds(normal).c_str(),
                show(worst.latency).c_str(), show(worst.cpuLatency).c_str(), errors.c_str(), states.c_str());
    std::fflush(stdout);
}

// A value in radix `radix` of `count` random digits, top digit non-zero.
RC_handle radixValue(std::uint32_t radix, std::size_t count, std::uint64_t seed) {
    std::mt19937_64 rng(seed);
    std::vector<std::uint32_t> digits(count);
    for (auto& d : digits) d = std::uint32_t(rng() % radix);
    digits.back() = 1 + std::uint32_t(rng() % (radix - 1));
    RC_handle h = RC_new(radix);
    RC_resetVector(h, digits.data(), std::uint32_t(count));
    RC_resetSign(h, 1);
    return h;
}

// Odd random value of `bits` bits with the top bit set.
HX_handle randomBits(unsigned bits, std::uint64_t seed) {
    std::mt19937_64 rng(seed);
    HX_handle h = HX_set_u32(HX_new(), 1);
    for (unsigned b = 1; b < bits; b += 16) {
        HX_mul_u32(h, h, 1u << std::min(16u, bits - b));
        HX_add_u32(h, h, std::uint32_t(rng() % (1u << std::min(16u, bits - b))));
    }
    if (HX_isEven(h)) HX_add_u32(h, h, 1);
    return h;
}

}  // namespace

int runStopLatency(std::size_t maxDigits, const std::string& only) {
    const std::size_t d = maxDigits;
    const std::string size = powerOfTen(d);
    const auto wanted = [&](const std::string& name) { return only.empty() || name.find(only) != std::string::npos; };
    std::printf("| operation | size | normal time | worst latency | its processor time | error | result |\n"
                "|---|---|---|---|---|---|---|\n");
    HI_handle ri = HI_new(), si = HI_new(), ti = HI_new();
    HX_handle rx = HX_new(), sx = HX_new(), tx = HX_new();
    const auto resetHi = [&] { HI_set_u32(ri, kMarker), HI_set_u32(si, kMarker), HI_set_u32(ti, kMarker); };
    const auto resetHx = [&] { HX_set_u32(rx, kMarker), HX_set_u32(sx, kMarker), HX_set_u32(tx, kMarker); };
    const auto hiState = [&] { return stateOf(ri); };
    const auto hxState = [&] { return stateOf(rx); };
    {
        Operand a(51, d), b(52, d), big(53, 2 * d);
        if (wanted("HI_mul")) measure("HI_mul", size, {resetHi, [&] { HI_mul(ri, a.hi, b.hi); }, hiState});
        if (wanted("HI_mul square")) measure("HI_mul square", size, {resetHi, [&] { HI_mul(ri, a.hi, a.hi); }, hiState});
        if (wanted("HX_mul")) measure("HX_mul", size, {resetHx, [&] { HX_mul(rx, a.hx, b.hx); }, hxState});
        const auto qr = [](auto q, auto r) { return "q " + stateOf(q) + ", r " + stateOf(r); };
        if (wanted("HI_divRem"))
            measure("HI_divRem 2n/n", size, {resetHi, [&] { HI_divRem(ri, big.hi, a.hi, si); }, [&] { return qr(ri, si); }});
        if (wanted("HX_divRem"))
            measure("HX_divRem 2n/n", size, {resetHx, [&] { HX_divRem(rx, big.hx, a.hx, sx); }, [&] { return qr(rx, sx); }});
        if (wanted("HX_set_hi")) measure("HX_set_hi", size, {resetHx, [&] { HX_set_hi(rx, a.hi); }, hxState});
        if (wanted("HI_set_hx")) measure("HI_set_hx", size, {resetHi, [&] { HI_set_hx(ri, a.hx); }, hiState});
        const char* text = nullptr;
        const auto textState = [&] { return std::string(text == nullptr ? "null text" : "text"); };
        const auto noReset = [&] { text = nullptr; };
        if (wanted("HX_getStrA"))
            measure("HX_getStrA", size, {noReset, [&] { text = HX_getStrRadixA(a.hx, 10, nullptr, 0, 0, nullptr); }, textState});
        for (const std::uint32_t radix : {7u, 36u}) {
            const std::string r = std::to_string(radix);
            if (wanted("HI_getStrRadixA " + r))
                measure("HI_getStrRadixA " + r, size,
                        {noReset, [&] { text = HI_getStrRadixA(a.hi, radix, nullptr, 0, 0, nullptr); }, textState});
            if (wanted("HX_getStrRadixA " + r))
                measure("HX_getStrRadixA " + r, size,
                        {noReset, [&] { text = HX_getStrRadixA(a.hx, radix, nullptr, 0, 0, nullptr); }, textState});
        }
        if (wanted("HI_gcd")) measure("HI_gcd", size, {resetHi, [&] { HI_gcd(ri, a.hi, b.hi); }, hiState});
        if (wanted("HX_gcd")) measure("HX_gcd", size, {resetHx, [&] { HX_gcd(rx, a.hx, b.hx); }, hxState});
        if (wanted("HI_gcdEx"))
            measure("HI_gcdEx", size, {resetHi, [&] { HI_gcdEx(ri, si, ti, a.hi, b.hi); },
                                       [&] { return "g " + stateOf(ri) + ", x " + stateOf(si) + ", y " + stateOf(ti); }});
        for (const std::uint32_t n : {2u, 3u}) {
            const std::string name = "HI_rootRem n=" + std::to_string(n);
            if (wanted(name))
                measure(name, size, {resetHi, [&] { HI_rootRem(ri, si, a.hi, n); },
                                     [&] { return "root " + stateOf(ri) + ", rem " + stateOf(si); }});
        }
        std::uint32_t log = 0;
        if (wanted("HI_log_u32"))
            measure("HI_log_u32 base 7", size, {[&] { log = 1; }, [&] { log = HI_log_u32(a.hi, 7); },
                                                 [&] { return "returns " + std::to_string(log); }});
    }
    // 3^e with a result of about d digits.
    const auto exponent = std::uint32_t(double(d) / std::log10(3.0));
    if (wanted("HI_pow"))
        measure("HI_pow 3^e", size, {resetHi, [&] { HI_pow(ri, HI_set_u32(si, 3), exponent); }, hiState});
    if (wanted("HX_pow"))
        measure("HX_pow 3^e", size, {resetHx, [&] { HX_pow(rx, HX_set_u32(sx, 3), exponent); }, hxState});
    for (const std::uint32_t radix : {7u, 36u}) {
        const std::string r = std::to_string(radix);
        // As many digits of the radix as d decimal digits take.
        RC_handle rc = radixValue(radix, std::size_t(double(d) / std::log10(double(radix))), 60 + radix);
        if (wanted("HI_set_rc radix " + r)) measure("HI_set_rc radix " + r, size, {resetHi, [&] { HI_set_rc(ri, rc); }, hiState});
        if (wanted("HX_set_rc radix " + r)) measure("HX_set_rc radix " + r, size, {resetHx, [&] { HX_set_rc(rx, rc); }, hxState});
        RC_delete(rc);
    }
    if (wanted("HX_set_strA")) {
        Operand a(54, d);
        const std::string text = HI_getStrA(a.hi, 0, nullptr);
        measure("HX_set_strA", size, {resetHx, [&] { HX_set_strA(rx, text.c_str()); }, hxState});
    }
    // The index functions, at the n whose result has about d digits.
    const auto digitsToIndex = [&](double digitsPerUnit) { return std::int32_t(double(d) / digitsPerUnit); };
    if (wanted("HI_fibonacci"))
        measure("HI_fibonacci", size, {resetHi, [&] { HI_fibonacci(ri, digitsToIndex(std::log10((1 + std::sqrt(5.0)) / 2))); }, hiState});
    if (wanted("HX_fibonacci"))
        measure("HX_fibonacci", size, {resetHx, [&] { HX_fibonacci(rx, digitsToIndex(std::log10((1 + std::sqrt(5.0)) / 2))); }, hxState});
    if (wanted("HX_combination"))
        measure("HX_combination(n, n/2)", size, {resetHx, [&] {
                    const std::int32_t n = digitsToIndex(std::log10(2.0));
                    HX_combination(rx, n, n / 2);
                }, hxState});
    // n! has about d digits at n = d / 5.7 near 10^6.
    const auto factorialIndex = std::uint32_t(d / 5.7);
    if (wanted("HI_factorial")) measure("HI_factorial", size, {resetHi, [&] { HI_factorial(ri, factorialIndex); }, hiState});
    if (wanted("HX_factorial")) measure("HX_factorial", size, {resetHx, [&] { HX_factorial(rx, factorialIndex); }, hxState});
    // Modular powers and the prime search run long at a few ten thousand bits.
    const unsigned powModBits = unsigned(std::min<std::size_t>(32768, d / 32));
    if (wanted("HX_powMod")) {
        HX_handle b = randomBits(powModBits, 71), e = randomBits(powModBits, 72), m = randomBits(powModBits, 73);
        measure("HX_powMod", std::to_string(powModBits) + " bits", {resetHx, [&] { HX_powMod(rx, b, e, m); }, hxState});
        HX_delete(b), HX_delete(e), HX_delete(m);
    }
    if (wanted("HX_nextPrime")) {
        const unsigned bits = powModBits / 8;
        HX_handle a = randomBits(bits, 74);
        measure("HX_nextPrime", std::to_string(bits) + " bits", {resetHx, [&] { HX_nextPrime(rx, a); }, hxState});
        HX_delete(a);
    }
    HI_delete(ri), HI_delete(si), HI_delete(ti);
    HX_delete(rx), HX_delete(sx), HX_delete(tx);
    return 0;
}

}  // namespace twbench
