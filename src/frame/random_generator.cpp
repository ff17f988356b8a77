#include "frame/random_generator.h"

#include "frame/radix.h"

namespace tw {

namespace {

constexpr std::size_t KK = LaggedFibonacciGenerator::kLongLag;
constexpr std::size_t LL = LaggedFibonacciGenerator::kShortLag;
constexpr std::uint32_t kMask = LaggedFibonacciGenerator::kMask;

// Subtraction modulo 2^30.
constexpr std::uint32_t minus(std::uint32_t a, std::uint32_t b) { return (a - b) & kMask; }

constexpr std::uint32_t kSeedMix = 1000000000u ^ (1u << 28);
static_assert(kSeedMix == 0x2B9ACA00u);

}  // namespace

void LaggedFibonacciGenerator::start(std::uint32_t seed) {
    while (seed > kMaxSeed) seed >>= 1;

    // The seed selects a power of x in polynomial arithmetic folded at the two
    // lags (coefficients mod 2^30); its coefficients become the state.  Start
    // from even coefficients (successive doublings mod 2^30 - 2) with one odd
    // one, so that the state cannot be all even.
    std::uint32_t poly[KK + KK - 1] = {};
    std::uint32_t v = (seed + 2) & (kMask - 1);
    for (std::size_t j = 0; j < KK; ++j) {
        poly[j] = v;
        v <<= 1;
        if (v > kMask) v -= kMask - 1;
    }
    ++poly[1];

    // Square-and-multiply over the seed's bits, then 69 further squarings.
    std::uint32_t bits = seed & kMask;
    for (unsigned rounds = kSeedingRounds - 1; rounds != 0;) {
        for (std::size_t j = KK - 1; j > 0; --j) {
            poly[j + j] = poly[j];
            poly[j + j - 1] = 0;
        }
        // Fold each term of degree j >= KK back onto degrees j - (KK - LL) and j - KK.
        for (std::size_t j = KK + KK - 2; j >= KK; --j) {
            poly[j - (KK - LL)] = minus(poly[j - (KK - LL)], poly[j]);
            poly[j - KK] = minus(poly[j - KK], poly[j]);
        }
        if (bits & 1) {
            // Multiply by x: shift up one place and fold the term of degree KK.
            for (std::size_t j = KK; j > 0; --j) poly[j] = poly[j - 1];
            poly[0] = poly[KK];
            poly[LL] = minus(poly[LL], poly[KK]);
        }
        if (bits != 0)
            bits >>= 1;
        else
            --rounds;
    }

    for (std::size_t j = 0; j < LL; ++j) state_[j + KK - LL] = poly[j];
    for (std::size_t j = LL; j < KK; ++j) state_[j - LL] = poly[j];
    for (int warmUp = 0; warmUp < 10; ++warmUp) generate(poly, KK + KK - 1);
    readPosition_ = kBatchUsed;
}

void LaggedFibonacciGenerator::generate(std::uint32_t* out, std::size_t n) {
    std::size_t j = 0;
    for (; j < KK; ++j) out[j] = state_[j];
    for (; j < n; ++j) out[j] = minus(out[j - KK], out[j - LL]);
    // The next 100 numbers become the state; the first 37 of them still
    // reach back into `out` for both lags.
    std::size_t i = 0;
    for (; i < LL; ++i, ++j) state_[i] = minus(out[j - KK], out[j - LL]);
    for (; i < KK; ++i, ++j) state_[i] = minus(out[j - KK], state_[i - LL]);
}

std::uint32_t LaggedFibonacciGenerator::next() {
    if (readPosition_ == kBatchUsed) {
        generate(batch_.data(), kBatchLength);
        readPosition_ = 0;
    }
    return batch_[readPosition_++];
}

LaggedFibonacciGenerator& libraryGenerator() {
    static LaggedFibonacciGenerator generator = [] {
        LaggedFibonacciGenerator g;
        g.start(0 ^ kSeedMix);
        return g;
    }();
    return generator;
}

std::unique_lock<std::mutex> lockLibraryGenerator() {
    static std::mutex* lock = new std::mutex;  // never destroyed, like the generator's users
    return std::unique_lock<std::mutex>(*lock);
}

void seedLibraryGenerator(std::uint32_t seed) {
    const auto lock = lockLibraryGenerator();
    libraryGenerator().start(seed ^ kSeedMix);
}

std::uint32_t randomBelow(std::uint32_t bound) {
    const unsigned shift = LaggedFibonacciGenerator::kBits - bitLength32(bound - 1);
    LaggedFibonacciGenerator& g = libraryGenerator();
    std::uint32_t v;
    do {
        v = g.next() >> shift;
    } while (v >= bound);
    return v;
}

}  // namespace tw
