// The instruction-set paths of the kernels, chosen at run time: one probe of
// the processor, one name for each path, and one test seam that pins every
// kernel family (add/sub, basecase, transform, and those still to come) at
// once.  A family that has no kernel for the chosen path takes its widest one
// below it, so the portable path is always the fallback.
#pragma once

#include <atomic>
#include <cstdint>

namespace tw {

// Ordered by width: a processor that runs a path runs every path before it.
enum class KernelPath : std::uint8_t {
    Portable,  // plain C++, every processor
    Avx2,      // 256-bit integer vectors
    Avx512,    // 512-bit vectors (AVX-512F)
    Ifma,      // AVX-512 with 52-bit multiply-add (AVX-512 IFMA)
};

// The path in force and whether a test pinned it, read together on hot paths.
struct KernelChoice {
    KernelPath path;
    bool forced;  // pinned by a test: families use the path at every length
};

namespace detail {
// Low bits: the path; bit 7: forced.  Portable until the start-up probes.
extern std::atomic<std::uint8_t> kernelChoiceBits;
}  // namespace detail

inline KernelChoice kernelChoice() {
    const std::uint8_t bits = detail::kernelChoiceBits.load(std::memory_order_relaxed);
    return {KernelPath(bits & 0x7f), (bits & 0x80) != 0};
}

// True when this processor runs the path (Portable always).
bool processorRuns(KernelPath path);

// The widest path this processor runs.
KernelPath widestKernelPath();

// Test seam: pins every kernel family to `path` (from the shortest length on,
// so the tests reach every tail); false, and nothing changes, when the
// processor does not run it.  resetKernelPath restores the probed choice.
// Not meant to be changed while another thread computes.
bool forceKernelPathForTesting(KernelPath path);
void resetKernelPath();

}  // namespace tw
