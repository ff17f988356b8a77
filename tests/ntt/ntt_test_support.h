// Shared pieces of the transform tests: the code paths this CPU can run, a
// slow reference transform, and scalar helpers modulo one prime.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include "arith/kernels/ntt/kernel_table.h"
#include "arith/kernels/ntt/prime_field.h"
#include "arith/kernels/ntt/roots.h"
#include "arith/kernels/ntt/roots_of_unity.h"
#include "arith/kernels/ntt/transform_dispatch.h"
#include "frame/kernel_paths.h"
#include "arith/kernels/ntt/transform_lengths.h"

namespace twtest {

using tw::Limb;
namespace ntt = tw::arith::ntt;

struct PathCase {
    const char* name;
    tw::KernelPath path;
    const ntt::TransformKernels* kernels;
};

// Every code path this CPU supports, portable first.
inline std::vector<PathCase> supportedPaths() {
    std::vector<PathCase> paths{{"scalar", tw::KernelPath::Portable, &ntt::scalarKernels()}};
    if (tw::processorRuns(tw::KernelPath::Avx2))
        paths.push_back({"avx2", tw::KernelPath::Avx2, &ntt::avx2Kernels()});
    if (tw::processorRuns(tw::KernelPath::Avx512))
        paths.push_back({"avx512", tw::KernelPath::Avx512, &ntt::avx512Kernels()});
    return paths;
}

// Pins the path for the lifetime of the object.
class ForcedPath {
public:
    explicit ForcedPath(tw::KernelPath path) { tw::forceKernelPathForTesting(path); }
    ~ForcedPath() { tw::resetKernelPath(); }
    ForcedPath(const ForcedPath&) = delete;
    ForcedPath& operator=(const ForcedPath&) = delete;
};

// A transform length's plan with the long-level tables it needs.
struct PlannedTransform {
    std::vector<Limb> topWords;
    ntt::TransformPlan plan;
    PlannedTransform(const ntt::TransformKernels& k, std::size_t prime, std::size_t length)
        : topWords(ntt::topRootWords(ntt::transformBlockLength(length))) {
        plan = ntt::makePlan(prime, length, ntt::buildTopRootTable(k, prime, ntt::transformBlockLength(length), topWords.data()));
    }
};

inline std::vector<Limb> randomResidues(std::mt19937_64& rng, std::size_t n, std::uint32_t p) {
    std::vector<Limb> v(n);
    for (auto& x : v) x = Limb(rng() % p);
    return v;
}

// Sum_j x[j] w^(jk) mod p, directly.
inline std::uint32_t dftAt(const std::vector<Limb>& x, std::uint32_t w, std::size_t k, std::uint32_t p) {
    const std::uint32_t step = ntt::powMod(w, k, p);
    std::uint32_t power = 1;
    std::uint64_t sum = 0;
    for (const Limb v : x) {
        sum = (sum + std::uint64_t(v) * power) % p;
        power = ntt::mulMod(power, step, p);
    }
    return std::uint32_t(sum);
}

// (x conv y)[k] of the cyclic convolution of length n, directly.
inline std::uint32_t cyclicConvolutionAt(const std::vector<Limb>& x, const std::vector<Limb>& y, std::size_t k,
                                         std::uint32_t p) {
    const std::size_t n = x.size();
    std::uint64_t sum = 0;
    for (std::size_t j = 0; j < n; ++j) sum = (sum + std::uint64_t(x[j]) * y[(k + n - j) % n]) % p;
    return std::uint32_t(sum);
}

}  // namespace twtest
