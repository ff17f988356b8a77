// Timing and crossover search for tw_tune.
//
// A crossover is measured by timing the algorithm below a switch-over point
// ("lower") and the one above it ("upper") at a series of candidate lengths,
// alternating their batches so that both see the same machine state.  The
// chosen value is the first length from which the upper one wins at several
// consecutive candidates: a single win is often noise on a shared machine.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace twtune {

struct Settings {
    double minBatchSeconds;  // a batch runs at least this long (clock resolution, timer noise)
    int repetitions;         // best of this many batches per algorithm
    std::size_t winsNeeded;  // consecutive candidates the upper algorithm must win
    bool quick;
};

// Keeps the compiler from dropping or merging calls whose results are never read.
inline void clobberMemory() { asm volatile("" ::: "memory"); }

// One algorithm at one length; each call does the whole operation once.
using Call = std::function<void()>;

inline double secondsOfBatch(const Call& f, std::size_t batch) {
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < batch; ++i) {
        f();
        clobberMemory();
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Calls a batch must hold to last minBatchSeconds (after a warm-up call that
// allocates scratch and fills caches of tables).
inline std::size_t batchSize(const Call& f, const Settings& s) {
    f();
    std::size_t batch = 1;
    for (;;) {
        const double t = secondsOfBatch(f, batch);
        if (t >= s.minBatchSeconds) return batch;
        // Grow towards the target, at most 16 times a step.
        const double factor = t > 0 ? std::min(16.0, 1.2 * s.minBatchSeconds / t) : 16.0;
        batch = std::max(batch + 1, std::size_t(double(batch) * factor));
    }
}

struct Pair {
    double lower, upper;  // seconds per call
};

// Best seconds per call of both algorithms, batches taken in turn.
inline Pair timePair(const Call& lower, const Call& upper, const Settings& s) {
    const std::size_t bl = batchSize(lower, s), bu = batchSize(upper, s);
    Pair best{1e30, 1e30};
    for (int r = 0; r < s.repetitions; ++r) {
        best.lower = std::min(best.lower, secondsOfBatch(lower, bl) / double(bl));
        best.upper = std::min(best.upper, secondsOfBatch(upper, bu) / double(bu));
    }
    return best;
}

// Candidate lengths first, first + step, ... up to last.
inline std::vector<std::size_t> lengths(std::size_t first, std::size_t last, std::size_t step) {
    std::vector<std::size_t> v;
    for (std::size_t n = first; n <= last; n += step) v.push_back(n);
    return v;
}

struct Crossover {
    bool found;
    std::size_t length;  // the chosen length, or the last candidate when not found
    bool atFirst;        // found at the first candidate: the crossover may lie lower
    Pair timing;         // at that length
};

// Scans the candidates upwards and stops at the first run of winsNeeded wins
// of the upper algorithm.  makePair(n) builds both calls for length n.
inline Crossover findCrossover(const std::vector<std::size_t>& candidates,
                               const std::function<std::pair<Call, Call>(std::size_t)>& makePair,
                               const Settings& s) {
    std::size_t wins = 0;
    Crossover first{false, 0, false, {0, 0}}, last{false, 0, false, {0, 0}};
    for (std::size_t n : candidates) {
        const auto [lower, upper] = makePair(n);
        const Pair p = timePair(lower, upper, s);
        last = {false, n, false, p};
        if (p.upper < p.lower) {
            if (wins++ == 0) first = {true, n, n == candidates.front(), p};
            if (wins >= s.winsNeeded || n == candidates.back()) return first;
        } else {
            wins = 0;
        }
    }
    return last;
}

// Whether a constant names the last length of the lower algorithm (the
// ...Max bounds of the ladders) or the first of the upper one.
enum class Bound { LastLower, FirstUpper };

// One line of the result: constant, radix, value in tuning.h, measured value,
// and both timings at the crossover length (the first the upper one wins).
inline void printHeader() {
    std::printf("%-22s %-8s %8s %9s   %s\n", "constant", "radix", "current", "measured",
                "timings where the upper one starts to win (lower | upper)");
}

inline void printLine(const char* name, const char* radix, const std::string& current, const Crossover& c,
                      Bound bound, const char* lowerName, const char* upperName, const char* note = "") {
    // Not found: the lower algorithm won up to the last candidate.
    const bool last = bound == Bound::LastLower;
    const std::string measured = c.found ? (c.atFirst ? "<=" : "") + std::to_string(last ? c.length - 1 : c.length)
                                         : (last ? ">=" : ">") + std::to_string(c.length);
    std::printf("%-22s %-8s %8s %9s   %s %.3f us | %s %.3f us%s\n", name, radix, current.c_str(), measured.c_str(),
                lowerName, c.timing.lower * 1e6, upperName, c.timing.upper * 1e6, note);
    std::fflush(stdout);
}

}  // namespace twtune
