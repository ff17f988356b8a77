#include "bench_harness.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>


namespace twbench {

namespace {

using Clock = std::chrono::steady_clock;

double secondsPerCall(const std::function<void()>& f, std::size_t calls) {
    const auto start = Clock::now();
    for (std::size_t i = 0; i < calls; ++i) f();
    return std::chrono::duration<double>(Clock::now() - start).count() / double(calls);
}

}  // namespace

Operand::Operand(std::uint64_t seed, std::size_t digits) {
    std::mt19937_64 rng(seed);
    std::string text(digits, '0');
    for (auto& c : text) c = char('0' + rng() % 10);
    text[0] = char('1' + rng() % 9);
    mpz_init_set_str(gmp, text.c_str(), 10);
    hi = HI_new();
    hx = HX_new();
    HI_set_strA(hi, text.c_str());
    HX_set_strA(hx, text.c_str());
}

Operand::~Operand() {
    HI_delete(hi);
    HX_delete(hx);
    mpz_clear(gmp);
}

Timing timeSideBySide(const std::function<void()>& ours, const std::function<void()>& gmp, double budgetSeconds) {
    // Size the batches from one warm-up call of each so a batch lasts about 20 ms.
    const double one = std::max(secondsPerCall(ours, 1), secondsPerCall(gmp, 1));
    const std::size_t calls = std::max<std::size_t>(1, std::size_t(0.02 / std::max(one, 1e-9)));
    const int rounds = std::clamp(int(budgetSeconds / (2 * 0.02 + 2 * one)), 3, 15);
    Timing best{1e30, 1e30};
    for (int i = 0; i < rounds; ++i) {
        best.ours = std::min(best.ours, secondsPerCall(ours, calls));
        best.gmp = std::min(best.gmp, secondsPerCall(gmp, calls));
    }
    return best;
}

std::string formatSeconds(double s) {
    char buf[32];
    if (s < 1e-6)
        std::snprintf(buf, sizeof buf, "%.1f ns", s * 1e9);
    else if (s < 1e-3)
        std::snprintf(buf, sizeof buf, "%.2f us", s * 1e6);
    else if (s < 1)
        std::snprintf(buf, sizeof buf, "%.2f ms", s * 1e3);
    else
        std::snprintf(buf, sizeof buf, "%.3f s", s);
    return buf;
}

void printHeader() {
    std::printf("| operation | size | ours | GMP | ratio |\n|---|---|---|---|---|\n");
}

std::string powerOfTen(std::size_t digits) {
    return "10^" + std::to_string(std::lround(std::log10(double(digits))));
}

void printRow(const Row& row) {
    std::printf("| %s | %s | %s | %s | %.2f |\n", row.operation.c_str(), row.size.c_str(),
                formatSeconds(row.timing.ours).c_str(),
                formatSeconds(row.timing.gmp).c_str(), row.timing.ours / row.timing.gmp);
    std::fflush(stdout);
}

}  // namespace twbench
