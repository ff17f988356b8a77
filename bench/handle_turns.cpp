// Ten million turns of HI_new, HI_add, HI_delete: whether deleted handles
// cost anything as they pile up, in resident memory and in time per turn.
#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

#include "bench_harness.h"

namespace twbench {

namespace {

// Resident memory of this process in KiB, from /proc (0 where there is none).
long residentKiB() {
    std::ifstream statm("/proc/self/statm");
    long pages = 0, resident = 0;
    statm >> pages >> resident;
    return resident * 4;
}

}  // namespace

void runHandleTurnCases(const std::string& only) {
    const std::string name = "10^7 turns of HI_new, HI_add, HI_delete";
    if (!only.empty() && name.find(only) == std::string::npos) return;
    constexpr int kBlocks = 10, kTurns = 1000000;
    HI_handle a = HI_set_s64(HI_new(), 123456789012345678), b = HI_set_s64(HI_new(), 987654321098765432);
    double seconds[kBlocks];
    long kib[kBlocks];
    for (int block = 0; block < kBlocks; ++block) {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < kTurns; ++i) {
            HI_handle r = HI_new();
            HI_add(r, a, b);
            HI_delete(r);
        }
        seconds[block] = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        kib[block] = residentKiB();
    }
    HI_delete(a);
    HI_delete(b);
    std::printf("| %s | 18 | resident +%ld KiB after the first 10^6 | - | last / second 10^6: %.2f |\n", name.c_str(),
                kib[kBlocks - 1] - kib[0], seconds[kBlocks - 1] / seconds[1]);
}

}  // namespace twbench
