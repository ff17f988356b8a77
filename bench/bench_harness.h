// The benchmark harness: operands shared by the library and GMP, alternating
// timed batches, and the result table.
#pragma once

#include <gmp.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tarnwick.h"

namespace twbench {

// A random operand of `digits` decimal digits, held by both libraries.
struct Operand {
    HI_handle hi = nullptr;
    HX_handle hx = nullptr;
    mpz_t gmp;
    Operand(std::uint64_t seed, std::size_t digits);
    ~Operand();
    Operand(const Operand&) = delete;
    Operand& operator=(const Operand&) = delete;
};

// Seconds per call of the fastest batch, running our batches and GMP's in
// turn so that both see the same machine state.
struct Timing {
    double ours;
    double gmp;
};
Timing timeSideBySide(const std::function<void()>& ours, const std::function<void()>& gmp, double budgetSeconds);

struct Row {
    std::string operation;
    std::string size;  // "10^4", "2048 bits"
    Timing timing;
};
std::string powerOfTen(std::size_t digits);
void printRow(const Row& row);
// "12.34 us", "1.23 ms", ...
std::string formatSeconds(double seconds);
void printHeader();

// Rows of their own files, called from the program's main.
void runCppLoopCases(const std::string& only, double budget);
void runHandleTurnCases(const std::string& only);

}  // namespace twbench
