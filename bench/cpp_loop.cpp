// The C++ type in a user's loop against gmpxx's: temporaries, mixed
// operands with built-in integers and compound assignment, as written by
// someone who never thinks about handles.
#include <gmpxx.h>

#include <cstdio>
#include <string>

#include "bench_harness.h"
#include "tarnwick.hpp"

namespace twbench {

void runCppLoopCases(const std::string& only, double budget) {
    const std::string name = "C++: s += Integer(i) * i + 1";
    if (!only.empty() && name.find(only) == std::string::npos) return;
    constexpr long kTurns = 1000000;
    std::string ours, theirs;
    const Timing t = timeSideBySide(
        [&] {
            tarnwick::Integer s;
            for (long i = 0; i < kTurns; ++i) s += tarnwick::Integer(i) * i + 1;
            ours = s.to_string();
        },
        [&] {
            mpz_class s;
            for (long i = 0; i < kTurns; ++i) s += mpz_class(i) * i + 1;
            theirs = s.get_str();
        },
        budget);
    if (ours != theirs) std::printf("| %s | the sums differ: %s and %s |\n", name.c_str(), ours.c_str(), theirs.c_str());
    printRow({name, "10^6 turns", t});
}

}  // namespace twbench
