// The library's random source: Knuth's subtractive lagged-Fibonacci generator
// (TAOCP vol. 2, section 3.6), X[n] = (X[n-100] - X[n-37]) mod 2^30, seeded by
// his ran_start procedure, which spreads the seed through repeated polynomial
// squaring folded at the two lags, so that different seeds give unrelated streams.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>

namespace tw {

class LaggedFibonacciGenerator {
public:
    static constexpr std::size_t kLongLag = 100;            // KK
    static constexpr std::size_t kShortLag = 37;            // LL
    static constexpr unsigned kBits = 30;                   // numbers below MM = 2^30
    static constexpr std::uint32_t kMask = (1u << kBits) - 1;
    static constexpr unsigned kSeedingRounds = 70;          // TT
    static constexpr std::uint32_t kMaxSeed = (1u << kBits) - 3;
    // Numbers are drawn from batches of 1009, of which only the first 100 are
    // handed out: consecutive outputs of a lagged generator are correlated at
    // the lags, and discarding most of each batch breaks that up.
    static constexpr std::size_t kBatchLength = 1009;
    static constexpr std::size_t kBatchUsed = kLongLag;

    // ran_start: seeds above kMaxSeed are halved until they fit.
    void start(std::uint32_t seed);

    // ran_array: out[0..n) := the next n numbers of the sequence, n >= 100;
    // the state moves on by n.
    void generate(std::uint32_t* out, std::size_t n);

    // The next number below 2^30 from the current batch.
    std::uint32_t next();

    // The last 100 numbers generated, oldest first (ran_x).
    const std::array<std::uint32_t, kLongLag>& state() const { return state_; }

private:
    std::array<std::uint32_t, kLongLag> state_{};
    std::array<std::uint32_t, kBatchLength> batch_{};
    std::size_t readPosition_ = kBatchUsed;  // kBatchUsed: a new batch is due
};

// The process-wide generator behind TW_seedRandom, HI_random and prime
// generation.  Before the first TW_seedRandom it runs as if seeded with 0, so
// a program that never seeds sees the same numbers on every run.
LaggedFibonacciGenerator& libraryGenerator();

// Threads draw from the one generator in turn: whoever draws holds this lock
// for the whole of one random value.
std::unique_lock<std::mutex> lockLibraryGenerator();

// TW_seedRandom: the seed is mixed with 0x2B9ACA00 (10^9 XOR 2^28) first.
void seedLibraryGenerator(std::uint32_t seed);

// Uniform in [0, bound) for 1 <= bound <= 2^30, from the library generator:
// the top bits of each number, redrawn while at or above bound.  The caller
// holds lockLibraryGenerator().
std::uint32_t randomBelow(std::uint32_t bound);

}  // namespace tw
