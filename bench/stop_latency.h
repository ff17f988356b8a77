// tw_bench --stop-latency: how long long calls take to notice TW_setTerminate(1).
#pragma once

#include <cstddef>
#include <string>

namespace twbench {

// Runs each long operation (at most maxDigits digits) whose name contains
// `only`, raises the flag from another thread at 10 %, 50 % and 90 % of its
// normal run time, and prints the table of worst latencies.
int runStopLatency(std::size_t maxDigits, const std::string& only);

}  // namespace twbench
