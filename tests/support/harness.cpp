// The harness's kernel paths and case bookkeeping, compiled once.
#include "support/harness.h"

#include "frame/kernel_paths.h"

namespace twtest {

std::vector<PathCase> kernelPaths() {
    const PathCase all[] = {
        {"portable", true, tw::KernelPath::Portable},
        {"avx2", true, tw::KernelPath::Avx2},
        {"avx512", true, tw::KernelPath::Avx512},
        kOwnChoice,
    };
    std::vector<PathCase> out;
    for (const PathCase& p : all)
        if (!p.pinned || tw::processorRuns(p.path)) out.push_back(p);
    return out;
}

void pin(const PathCase& p) {
    if (p.pinned)
        tw::forceKernelPathForTesting(p.path);
    else
        tw::resetKernelPath();
}

void unpinAll() { tw::resetKernelPath(); }

std::uint64_t caseSeed(std::uint64_t rowSeed, std::size_t index) {
    std::uint64_t z = rowSeed * 0x9E3779B97F4A7C15ull + index + 1;  // splitmix64
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

std::ostream& operator<<(std::ostream& o, const Case& c) {
    return o << c.row << " on path " << c.path << ": " << c.an << " x " << c.bn << " limbs, shapes " << name(c.sa)
             << "/" << name(c.sb) << ", " << name(c.alias) << ", seed " << c.seed;
}

}  // namespace twtest
